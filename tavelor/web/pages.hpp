// SPDX-License-Identifier: MIT
// The files of the till and the back office, inside of the program.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace tavelor::web {

struct Page {
  std::string_view path;  ///< "/till", "/assets/till-6Q2GE345.js"
  std::string_view type;
  std::string_view tag;  ///< for If-None-Match, with its quotes
  bool isForever;        ///< what is behind its path never changes
  std::string_view plain;
  std::string_view packed;  ///< by gzip
};

/// None where the program was built without them. Made by the build, from web/dist.
const std::vector<Page>& pages();

}  // namespace tavelor::web
