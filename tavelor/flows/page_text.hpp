// SPDX-License-Identifier: MIT
// Texts and numbers as a page shows them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tavelor/platform/date.hpp"

namespace tavelor {
struct Locale;
}

namespace tavelor::flows {

/// For the text and the quoted attributes of HTML and SVG: & < > " ' become references.
std::string escaped(std::string_view text);

/// Writes by the locale; what comes back is escaped already.
class PageText {
 public:
  explicit PageText(const Locale& locale) : locale_(locale) {}

  /// "1.234,50 €".
  std::string money(double amount) const;
  /// "1.235", for a mark with little room.
  std::string shortMoney(double amount) const;
  /// Pieces and kilos: "12"; "12,345" where there is a fraction, whole again from a thousand on.
  std::string quantity(double units) const;
  std::string whole(std::int32_t count) const;
  /// "12,3 %"; a share of nothing is "0,0 %".
  std::string percent(double part, double of) const;
  /// "21 %", "5,2 %".
  std::string rate(double percent) const;
  /// "1 ticket", "24 tickets".
  std::string tickets(std::int32_t count) const;

  /// "20/11/2026".
  std::string day(Date day) const;
  /// "viernes, 20 de noviembre de 2026".
  std::string longDay(Date day) const;
  /// "vie", "20", "nov".
  std::string byMask(Date day, std::string_view mask) const;

 private:
  const Locale& locale_;
};

}  // namespace tavelor::flows
