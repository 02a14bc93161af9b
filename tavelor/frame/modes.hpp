// SPDX-License-Identifier: MIT
// The words of IniciaRs, for whoever knows a class by its name only.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;
class Object;
struct ClassInfo;

/// All words that open rows of a class: "todos" first, then its own in their order.
TAVELOR_API std::vector<std::string> modeWords(const ClassInfo& info);
/// Whether a mode opens the rows of an id only. Those that the class does not know never do.
TAVELOR_API bool looksForId(const ClassInfo& info, std::string_view word);
/// Runs IniciaRs of any of its shapes. `id` is the code itself: its quotes are doubled here.
TAVELOR_API void openMode(const Component& component, Object& object, std::string_view word,
                          std::string_view id);

}  // namespace tavelor
