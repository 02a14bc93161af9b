// SPDX-License-Identifier: MIT
// The engines that a settings file may name.
#pragma once

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
/// The writer of that engine's text.
const dialect::Writer& writerOf(const engine::Engine& engine);

}  // namespace tavelor
