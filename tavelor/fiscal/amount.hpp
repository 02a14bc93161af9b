// SPDX-License-Identifier: MIT
// Amounts, rates, days and moments as records write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tavelor/platform/date.hpp"

namespace tavelor {
class Clock;
}

namespace tavelor::fiscal {

/// Euros, or percent, with two decimals at most. It is hashed as it is written, so one that was
/// read keeps its text: "12.3" is not "12.30", though both are as much.
class Amount {
 public:
  /// "0.00".
  Amount() = default;
  /// -1205 is "-12.05".
  static Amount ofCents(std::int64_t cents);
  /// To the nearest cent, halves away from zero. Raises 6 from a billion on, and for what is not
  /// finite.
  static Amount of(double value);
  /// A sign, one to twelve digits, a point and two digits, the last part as long as the writer
  /// likes. Nothing for another text.
  static std::optional<Amount> read(std::string_view text);

  /// As it is written.
  const std::string& text() const { return text_; }
  /// Hundredths of it.
  std::int64_t cents() const { return cents_; }
  /// The same text.
  friend bool operator==(const Amount&, const Amount&) = default;

 private:
  std::string text_ = "0.00";
  std::int64_t cents_ = 0;
};

/// "01-02-2027".
std::string dayText(Date day);
/// Nothing for another form, and for a day that no calendar has.
std::optional<Date> readDay(std::string_view text);

/// The clock's time with the difference to that of Greenwich, "2027-01-02T10:32:05+01:00": the one
/// that this computer has at that moment.
std::string momentOf(const Clock& clock);
/// Seconds since the beginning of 1970 at Greenwich. Nothing for another form, one without
/// difference above all.
std::optional<std::int64_t> secondsOf(std::string_view moment);

}  // namespace tavelor::fiscal
