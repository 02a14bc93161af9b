// SPDX-License-Identifier: MIT
// The two locales that the tests of numbers, dates and formats ask, by short names.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor::test {

inline const Locale& es() {
  return *Locale::spanish();
}
inline const Locale& neutral() {
  return *Locale::neutral();
}

inline std::string es(const Variant& value, std::string_view mask) {
  return format(value, mask, es());
}
inline std::string neutral(const Variant& value, std::string_view mask) {
  return format(value, mask, neutral());
}

}  // namespace tavelor::test
