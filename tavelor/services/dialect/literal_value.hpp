// SPDX-License-Identifier: MIT
// The text of a literal as the value of a placeholder.
#pragma once

#include <cstdint>
#include <string_view>

#include "tavelor/services/dialect/lexer.hpp"
#include "tavelor/services/dialect/plan.hpp"
#include "tavelor/services/engine/value.hpp"

namespace tavelor {
struct Locale;
}

namespace tavelor::dialect {

/// A literal that was lifted out of a statement. A number keeps how it was written: a whole one
/// stays whole, as long as it is a LONG.
struct LiteralValue {
  std::string_view text;  ///< without delimiters
  LiteralKind kind = LiteralKind::kText;
  /// Of kDecimal: its digits behind the point when `whole` has all of its digits, else -1.
  std::int16_t decimals = -1;
  std::int64_t whole = 0;  ///< of kWhole
  double real = 0;  ///< of kDecimal, infinite where no double holds it; of kDate the day number

  double asReal() const { return kind == LiteralKind::kWhole ? static_cast<double>(whole) : real; }
};

/// Reads the usual number, a sign, up to 15 digits and a decimal sign, into all of `number` but its
/// text. False for any other text, with `number` as it was.
bool readPlain(std::string_view text, char decimal, LiteralValue& number);

/// Reads the text of a literal of that kind, which the lexer found well formed.
LiteralValue readLiteral(std::string_view text, LiteralKind kind);

/// Converts literals for placeholders. Values view the literals' texts.
///
/// Errors: kTypeMismatch for a text that is no number or no date; kMultipleStep, with the name of
/// the column, for a text too long and a number out of range where a column is assigned to;
/// kOverflow for an amount out of range where none is.
/// Rounding: to a whole column and to money halves go to even.
class LiteralReader {
 public:
  explicit LiteralReader(const Locale& locale);

  /// For a parameter of a literal.
  engine::Value read(const LiteralValue& literal, const Parameter& parameter) const {
    switch (parameter.conversion) {
      case Conversion::kText:
        // No character is shorter than a byte.
        if (parameter.maxLength != 0 &&
            literal.text.size() > static_cast<std::size_t>(parameter.maxLength)) {
          checkLength(literal.text, parameter);
        }
        return engine::Value::ofText(literal.text);
      case Conversion::kNumber:
      case Conversion::kNumberByLocale:
      case Conversion::kCurrency:
      case Conversion::kAmount:
      case Conversion::kDay:
        return number(literal, parameter);
      case Conversion::kNegativeCurrency:
        return negativeMoney(literal, parameter);
      case Conversion::kDate:
      case Conversion::kDateByLocale:
        return date(literal, parameter);
      case Conversion::kBoolean:
        return boolean(literal, parameter);
      case Conversion::kNow:
      case Conversion::kToday:
      case Conversion::kTimeOfDay:
        break;
    }
    return engine::Value::null();
  }

 private:
  static void checkLength(std::string_view text, const Parameter& parameter);
  engine::Value number(const LiteralValue& literal, const Parameter& parameter) const;
  engine::Value quotedNumber(const LiteralValue& literal, const Parameter& parameter) const;
  engine::Value negativeMoney(const LiteralValue& literal, const Parameter& parameter) const;
  engine::Value date(const LiteralValue& literal, const Parameter& parameter) const;
  engine::Value boolean(const LiteralValue& literal, const Parameter& parameter) const;

  const Locale& locale_;
  char decimal_;  ///< the locale's decimal sign, or 0 if it is no single ASCII character
};

/// For a parameter of the clock.
engine::Value readClock(Date now, Conversion conversion);

}  // namespace tavelor::dialect
