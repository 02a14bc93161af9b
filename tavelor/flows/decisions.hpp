// SPDX-License-Identifier: MIT
// What a person has decided to leave as it is.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/flows/findings.hpp"

namespace tavelor::flows {

/// Whole numbers, kept as ranges: "61-100,205".
class NumberRanges {
 public:
  NumberRanges() = default;
  /// Raises 13 for a text that text() does not give.
  explicit NumberRanges(std::string_view text);
  /// Joins the ranges that it touches.
  void add(double number);
  /// Whether it lies in one of the ranges.
  bool contains(double number) const;
  /// "61-100,205"; "" for none.
  std::string text() const;

 private:
  std::map<double, double> lastOf_;  // by first; neither touches the next
};

/// The tickets and closings whose faults are known and stay. Kept in the registry of the thread's
/// apartment, for all programs: the faults themselves stay in the databases, and are found again
/// where the registry is lost.
class Decisions {
 public:
  /// Those of `findings` that nobody has decided on.
  static std::vector<Finding> open(std::vector<Finding> findings);
  /// From now on these are decided on.
  static void keep(const std::vector<Finding>& findings);
};

}  // namespace tavelor::flows
