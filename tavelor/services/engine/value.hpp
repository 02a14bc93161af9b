// SPDX-License-Identifier: MIT
// A value on its way into an engine.
#pragma once

#include <cstdint>
#include <string_view>

#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/date.hpp"

namespace tavelor::engine {

/// A typed value that an engine binds to a placeholder. Text and bytes are views: what they view
/// must live until the statement has run.
struct Value {
  /// Which of the fields holds it.
  enum class Kind : std::uint8_t {
    kNull,
    kBoolean,
    kInteger,
    kReal,
    kCurrency,
    kDate,
    kText,
    kBytes
  };

  Kind kind = Kind::kNull;
  std::int64_t integer = 0;  ///< kBoolean (0 or -1), kInteger, kCurrency (ten-thousandths)
  double real = 0;           ///< kReal, kDate (day number)
  std::string_view text;     ///< kText, kBytes

  /// Null.
  static Value null() { return {}; }
  /// A flag.
  static Value ofBoolean(bool v) { return {Kind::kBoolean, v ? -1 : 0, 0, {}}; }
  /// A whole number.
  static Value ofInteger(std::int64_t v) { return {Kind::kInteger, v, 0, {}}; }
  /// A number with a fraction.
  static Value ofReal(double v) { return {Kind::kReal, 0, v, {}}; }
  /// An amount of money.
  static Value ofCurrency(Currency v) { return {Kind::kCurrency, v.scaled(), 0, {}}; }
  /// A date.
  static Value ofDate(Date v) { return {Kind::kDate, 0, v.days(), {}}; }
  /// A text, in UTF-8, that must live until it is bound and run.
  static Value ofText(std::string_view v) { return {Kind::kText, 0, 0, v}; }
  /// Bytes that must live as long.
  static Value ofBytes(std::string_view v) { return {Kind::kBytes, 0, 0, v}; }
};

}  // namespace tavelor::engine
