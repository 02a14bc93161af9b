// SPDX-License-Identifier: MIT
// Texts and numbers as a page shows them.
#include "tavelor/flows/page_text.hpp"

#include <cmath>

#include "tavelor/platform/format.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor::flows {

std::string escaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&#39;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string PageText::money(double amount) const {
  return escaped(format(amount, "Currency", locale_));
}

std::string PageText::shortMoney(double amount) const {
  return escaped(format(amount, "#,##0", locale_));
}

std::string PageText::quantity(double units) const {
  // Sums of kilos end in the dust of binary fractions, and nobody weighs a ton by the gram.
  constexpr double kGrams = 1000;
  const double grams = std::round(units * kGrams);
  const bool showsGrams = std::fmod(grams, kGrams) != 0 && std::abs(units) < kGrams;
  return escaped(format(grams / kGrams, showsGrams ? "#,##0.000" : "#,##0", locale_));
}

std::string PageText::whole(std::int32_t count) const {
  return escaped(format(count, "#,##0", locale_));
}

std::string PageText::percent(double part, double of) const {
  constexpr double kHundred = 100;
  return escaped(format(of == 0 ? 0.0 : part / of * kHundred, "0.0", locale_)) + " %";
}

std::string PageText::rate(double percent) const {
  const bool isWhole = percent == std::floor(percent);
  return escaped(format(percent, isWhole ? "0" : "0.0#", locale_)) + " %";
}

std::string PageText::tickets(std::int32_t count) const {
  return whole(count) + (count == 1 ? " ticket" : " tickets");
}

std::string PageText::day(Date day) const {
  return escaped(format(day, "Short Date", locale_));
}

std::string PageText::longDay(Date day) const {
  return escaped(format(day, "Long Date", locale_));
}

std::string PageText::byMask(Date day, std::string_view mask) const {
  return escaped(format(day, mask, locale_));
}

}  // namespace tavelor::flows
