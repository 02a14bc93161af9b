// SPDX-License-Identifier: MIT
// What the build writes of the public headers.
#pragma once

#include <cstddef>

#include "tavelor/c/documentation.hpp"

namespace tavelor::c {

extern const DocumentedClass kDocumentedClasses[];  // NOLINT(*-c-arrays): written by a script
extern const std::size_t kDocumentedClassCount;
extern const DocumentedMember kDocumentedMembers[];  // NOLINT(*-c-arrays)
extern const std::size_t kDocumentedMemberCount;

}  // namespace tavelor::c
