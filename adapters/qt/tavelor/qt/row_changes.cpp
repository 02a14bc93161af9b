// SPDX-License-Identifier: MIT
// What makes one list of rows of another.
#include "tavelor/qt/row_changes.hpp"

#include <algorithm>

namespace tavelor::qt {

namespace {

using Rows = std::vector<std::uint32_t>;

bool areTheSame(const Rows& before, const Rows& after) {
  if (before.size() != after.size()) return false;
  const std::vector<std::int32_t> places = placesOf(after);
  return std::all_of(before.begin(), before.end(), [&](std::uint32_t number) {
    return number < places.size() && places[number] >= 0;
  });
}

}  // namespace

std::vector<std::int32_t> placesOf(const Rows& rows) {
  const auto greatest = std::max_element(rows.begin(), rows.end());
  std::vector<std::int32_t> places(greatest == rows.end() ? 0 : std::size_t{*greatest} + 1, -1);
  for (std::size_t i = 0; i < rows.size(); ++i) places[rows[i]] = static_cast<std::int32_t>(i);
  return places;
}

RowChange changeBetween(const Rows& before, const Rows& after) {
  using Kind = RowChange::Kind;
  const auto [oldFirst, newFirst] =
      std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  if (oldFirst == before.end() && newFirst == after.end()) return {};
  auto oldEnd = before.end();
  auto newEnd = after.end();
  while (oldEnd != oldFirst && newEnd != newFirst && *(oldEnd - 1) == *(newEnd - 1)) {
    --oldEnd;
    --newEnd;
  }
  const auto first = static_cast<int>(oldFirst - before.begin());
  const auto gone = static_cast<int>(oldEnd - oldFirst);
  const auto come = static_cast<int>(newEnd - newFirst);
  if (gone == 0) return {Kind::kInserted, first, first + come - 1};
  if (come == 0) return {Kind::kRemoved, first, first + gone - 1};
  if (gone == come && gone > 1) {
    if (*oldFirst == *(newEnd - 1) && std::equal(oldFirst + 1, oldEnd, newFirst)) {
      return {Kind::kMoved, first, first + gone};
    }
    if (*(oldEnd - 1) == *newFirst && std::equal(oldFirst, oldEnd - 1, newFirst + 1)) {
      return {Kind::kMoved, first + gone - 1, first};
    }
  }
  return {areTheSame(before, after) ? Kind::kReordered : Kind::kOthers, 0, 0};
}

}  // namespace tavelor::qt
