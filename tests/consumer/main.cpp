// SPDX-License-Identifier: MIT
// The smallest program on the installed library. all_headers.hpp is written by the check.
#include <cstdio>

#include "all_headers.hpp"

int main() {
  const auto price = tavelor::Currency::fromDouble(1234.5);
  if (price.toDouble() != 1234.5) return 1;
  std::puts("The installed library works.");
  return 0;
}
