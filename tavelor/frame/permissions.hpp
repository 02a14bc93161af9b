// SPDX-License-Identifier: MIT
// Whether a function of the application is permitted in this installation.
#pragma once

#include <string_view>

#include "tavelor/platform/export.hpp"

namespace tavelor {

/// Whether nothing in the registry of the thread's apartment denies that identifier; what
/// RecordClass::SeguridadPermiso tells. Errors: those of RegistryTree.
TAVELOR_API bool isPermitted(std::string_view identifier);

}  // namespace tavelor
