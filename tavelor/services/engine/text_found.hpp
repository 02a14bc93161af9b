// SPDX-License-Identifier: MIT
// What a text index finds.
#pragma once

#include <string>

namespace tavelor::engine {

/// A row that was found.
struct TextFound {
  std::string key;
  bool isExact = false;  ///< a code of it is the whole question
};

}  // namespace tavelor::engine
