// SPDX-License-Identifier: MIT
// The comments of the public headers, which the build writes into the library.
#pragma once

#include <string_view>

namespace tavelor::c {

/// A class of the headers.
struct DocumentedClass {
  std::string_view name;
  std::string_view bases;     ///< that it is derived from, a blank between them; "" for none
  const char* documentation;  ///< a paragraph a line
};
/// A member of one.
struct DocumentedMember {
  std::string_view of;
  std::string_view name;
  const char* documentation;
};

/// What a class is for; "" where no header tells.
const char* documentationOf(std::string_view className);
/// What a member does, told by the class or by one that it is derived from; "" where nobody tells.
const char* documentationOf(std::string_view className, std::string_view member);

}  // namespace tavelor::c
