// SPDX-License-Identifier: MIT
// The text of a literal as the value of a placeholder.
#pragma once

#include <string_view>

#include "tavelor/services/dialect/plan.hpp"
#include "tavelor/services/engine/value.hpp"

namespace tavelor {
struct Locale;
}

namespace tavelor::dialect {

/// A literal that was lifted out of a statement.
struct Lifted {
  std::string_view text;  ///< without delimiters
  double day = 0;         ///< of a date literal: its day number
  bool quoted = false;    ///< a text, which reads as a number or a date by the locale
};

/// Converts literals for placeholders. Values view the literals' texts.
///
/// Errors: kTypeMismatch for a text that is no number or no date; kMultipleStep, with the name of
/// the column, for a text too long and a number out of range where a column is assigned to.
/// Rounding: to a whole column and to money halves go to even.
class LiteralReader {
 public:
  explicit LiteralReader(const Locale& locale);

  engine::Value read(const Lifted& literal, const Parameter& parameter) const;

 private:
  engine::Value number(const Lifted& literal, const Parameter& parameter) const;
  engine::Value date(const Lifted& literal, const Parameter& parameter) const;
  engine::Value boolean(const Lifted& literal, const Parameter& parameter) const;

  const Locale& locale_;
  char decimal_;  ///< the locale's decimal sign, or 0 if it is no single ASCII character
};

}  // namespace tavelor::dialect
