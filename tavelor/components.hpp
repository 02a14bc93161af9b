// SPDX-License-Identifier: MIT
// All public classes: creation by class identifier.
#pragma once

#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// By family, in the order of components.cpp.
TAVELOR_API const std::vector<const Component*>& components();

/// By class name ("ClsBancos", "Tavelor.ClsBancos") or class identifier, without regard to case.
/// Raises 438 with the nearest name when there is none.
TAVELOR_API const Component& component(std::string_view nameOrClassId);

}  // namespace tavelor
