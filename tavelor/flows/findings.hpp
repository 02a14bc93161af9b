// SPDX-License-Identifier: MIT
// Where the main database and the documents do not bear each other out.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tavelor/platform/date.hpp"
#include "tavelor/platform/error.hpp"

namespace tavelor::flows {

/// A ticket or a closing of which one database tells what the other does not.
struct Finding {
  /// What is told by one and missing in the other.
  enum class Kind : std::uint8_t {
    kTicketLost,        ///< movements whose ticket is nowhere
    kStockNotMoved,     ///< a ticket with lines and without movements
    kLinesDiffer,       ///< a ticket whose lines are not its movements
    kTicketsOfClosing,  ///< a closing with sums, and none of its tickets
    kClosingLost,       ///< closed tickets whose closing is nowhere
  };
  Kind kind = Kind::kTicketLost;
  double number = 0;  ///< of the ticket or the closing
  Date day;
  std::string till;            ///< of a closing
  std::int64_t lines = 0;      ///< of the ticket; tickets of a closing
  std::int64_t movements = 0;  ///< of the ticket

  /// False for one of a closing.
  bool isOfTicket() const { return kind <= Kind::kLinesDiffer; }
  friend bool operator==(const Finding&, const Finding&) = default;
};

/// For a person, a sentence each; runs of tickets with the same fault in one.
std::vector<std::string> told(const std::vector<Finding>& findings);

/// Raised by a flow that would work on top of a loss; nothing of the flow is left.
class Disagreement final : public Error {
 public:
  /// By the number of an integrity error.
  explicit Disagreement(std::vector<Finding> findings);
  /// What the databases disagree about.
  const std::vector<Finding>& findings() const { return findings_; }

 private:
  std::vector<Finding> findings_;
};

}  // namespace tavelor::flows
