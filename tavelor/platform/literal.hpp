// SPDX-License-Identifier: MIT
// Values as the dialect writes them, in statements and in filters.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "tavelor/platform/export.hpp"

namespace tavelor {

class Currency;
class Date;
class Statement;
class Variant;

/// A value as the dialect writes one, whatever the locale: 'L''Hospitalet', 12.5, #11/20/2026#,
/// True, Null. Goes into a Statement as a value, and joins with text for what takes text, as
/// Filter, Find and CreateFilter do.
class TAVELOR_API Literal {
 public:
  /// With its quotes.
  const std::string& text() const { return text_; }
  /// The same.
  operator const std::string&() const { return text_; }  // NOLINT(google-explicit-constructor)

  /// What stands before it, and it.
  friend std::string operator+(std::string_view before, const Literal& literal) {
    return std::string(before) += literal.text_;
  }
  /// It, and what stands behind it.
  friend std::string operator+(const Literal& literal, std::string_view after) {
    return literal.text_ + std::string(after);
  }

 private:
  friend class Statement;
  friend TAVELOR_API Literal sqlText(std::string_view text);
  friend TAVELOR_API Literal sqlLiteral(double number);
  friend TAVELOR_API Literal sqlLiteral(Currency amount);
  friend TAVELOR_API Literal sqlLiteral(Date date);
  friend TAVELOR_API Literal sqlLiteral(const Variant& variant);
  template <std::integral Whole>
  friend Literal sqlLiteral(Whole number);
  Literal() = default;
  explicit Literal(std::string text) : text_(std::move(text)) {}

  std::string text_;
};

/// A text between quotes, each quote inside of it doubled: L'Hospitalet is 'L''Hospitalet'.
TAVELOR_API Literal sqlText(std::string_view text);

/// The same.
inline Literal sqlLiteral(std::string_view text) {
  return sqlText(text);
}
/// The same.
inline Literal sqlLiteral(const char* text) {
  return sqlText(text);
}
/// With a decimal point, never an exponent; at most 15 significant digits and 20 decimals. Raises 6
/// for a number that is not finite.
TAVELOR_API Literal sqlLiteral(double number);
/// With a decimal point, to the last of its four decimals.
TAVELOR_API Literal sqlLiteral(Currency amount);
/// "#mm/dd/yyyy#", with "hh:nn:ss" where it has a time, to the nearest second. Raises 6 outside of
/// the years 100 to 9999.
TAVELOR_API Literal sqlLiteral(Date date);
/// As its type: a text is sqlText(), Empty the empty text. Raises 13 for bytes and for an object.
TAVELOR_API Literal sqlLiteral(const Variant& variant);
/// A whole number; of a bool, True or False.
template <std::integral Whole>
Literal sqlLiteral(Whole number) {
  if constexpr (std::same_as<Whole, bool>) {
    return Literal(number ? "True" : "False");
  } else {
    return Literal(std::to_string(number));
  }
}

}  // namespace tavelor
