// SPDX-License-Identifier: MIT
// Sales that a till has put aside, to go on with later at whatever till.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tavelor/platform/date.hpp"
#include "tavelor/platform/error.hpp"

namespace tavelor::flows {

/// A sale that waits. Nothing of it is sold, and no stock is taken.
struct HeldSale {
  double id = 0;         ///< given by holdSale()
  std::string key;       ///< that of the sale: the same one twice is held once
  std::string till;      ///< where
  std::string employee;  ///< who
  std::string label;     ///< by which people find it
  Date moment;           ///< when; given by holdSale()
  std::string content;   ///< whatever the till needs to go on, as it sent it
  bool isTaken = false;  ///< somebody has gone on with it
};

/// What may wait.
struct HeldLimits {
  static constexpr std::size_t kSales = 500;       ///< at a time
  static constexpr std::size_t kContent = 200000;  ///< bytes of HeldSale::content
  static constexpr std::size_t kKey = 50;          ///< characters of a key, and of a taker
  static constexpr std::size_t kTill = 20;
  static constexpr std::size_t kEmployee = 20;
  static constexpr std::size_t kLabel = 100;
  static constexpr double kDaysTaken = 7;  ///< for which one that was taken can be asked for again
};

/// Raised, by number 5, where somebody else has taken it.
class HeldElsewhere final : public Error {
 public:
  /// `message` says which sale it is, and who has it.
  explicit HeldElsewhere(const std::string& message)
      : Error(errors::kInvalidCall, "HeldSales", message) {}
};

/// Puts a sale aside, once by its key, and gives its id. By a key that waits with other contents,
/// or that was taken, it waits anew with these, by another id. Raises 5 for what is wider than its
/// column and where too many wait; nothing is changed then.
double holdSale(const HeldSale& sale);

/// All that wait, the oldest first.
std::vector<HeldSale> heldSales();

/// Takes one for `taker`, a word of the taker's own: whoever asks again by the same word gets it
/// again, as after a lost answer. Of several takers at once one gets it, the others raise
/// HeldElsewhere. Nothing where there is none of that id.
std::optional<HeldSale> takeHeldSale(double id, const std::string& taker);

}  // namespace tavelor::flows
