// SPDX-License-Identifier: MIT
// What makes one list of rows of another, as views are told it.
#pragma once

#include <cstdint>
#include <vector>

namespace tavelor::qt {

/// One step from a list to another.
struct RowChange {
  enum class Kind : std::uint8_t {
    kNone,
    kInserted,   ///< rows first to last of the new list came
    kRemoved,    ///< rows first to last of the old list went
    kMoved,      ///< row first of the old list stands before row last of it
    kReordered,  ///< the same rows in another order
    kOthers
  };
  Kind kind = Kind::kNone;
  int first = 0;
  int last = 0;
};

/// Both lists name each row once.
RowChange changeBetween(const std::vector<std::uint32_t>& before,
                        const std::vector<std::uint32_t>& after);

/// Place in the list by a row's number; -1 for those that are not in it.
std::vector<std::int32_t> placesOf(const std::vector<std::uint32_t>& rows);

}  // namespace tavelor::qt
