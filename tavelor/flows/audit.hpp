// SPDX-License-Identifier: MIT
// Compares what the main database and the documents tell of the same tickets and closings.
#pragma once

#include <vector>

#include "tavelor/flows/both_databases.hpp"
#include "tavelor/flows/findings.hpp"

namespace tavelor::flows {

/// Reads under the locks of a flow, so that it never sees the half of one. Inside a flow's own
/// transactions it sees what the flow has written.
class Audit {
 public:
  /// Behind the last number that a ticket or a closing can have.
  static constexpr double kNoEnd = 9e15;

  Audit(ConnectionPtr main, ConnectionPtr documents)
      : main_(std::move(main)), documents_(std::move(documents)) {}

  /// The tickets from `first` to `last`, both included, by their numbers. Of tickets of a series
  /// that is not sold here only those that are lost. Costs what lies between the two.
  std::vector<Finding> tickets(double first, double last);
  /// The closings from `first` to `last`, both included, by their numbers.
  std::vector<Finding> closings(double first, double last);
  /// All there is, a piece at a time; sales go on between two pieces.
  std::vector<Finding> everything();

 private:
  ConnectionPtr main_;
  ConnectionPtr documents_;
};

}  // namespace tavelor::flows
