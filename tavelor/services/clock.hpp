// SPDX-License-Identifier: MIT
// The time of day, which a test may fix.
#pragma once

#include <optional>

#include "tavelor/platform/date.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

/// Local time of this computer, to the second; also what statements take for Now(), Date() and
/// Time().
class TAVELOR_API Clock {
 public:
  /// The time of this computer, or the one that was fixed.
  Date now() const;
  /// now() without its time.
  Date today() const { return now().dayOnly(); }

  /// From here on it is always `moment`.
  void fix(Date moment) { fixed_ = moment; }
  /// Goes on with the time of this computer.
  void release() { fixed_.reset(); }

 private:
  std::optional<Date> fixed_;
};

}  // namespace tavelor
