// SPDX-License-Identifier: MIT
// The engines that a settings file may name.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace tavelor {

namespace engine {
class Engine;
}
namespace dialect {
class Writer;
}

/// By name ("sqlite"); null when there is none.
const engine::Engine* findEngine(std::string_view name);
/// What writes that engine's text for the tables of a schema, where it has schemas.
std::unique_ptr<const dialect::Writer> makeWriter(const engine::Engine& engine,
                                                  const std::string& schema);

}  // namespace tavelor
