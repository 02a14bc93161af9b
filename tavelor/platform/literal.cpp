// SPDX-License-Identifier: MIT
// Values as the dialect writes them, in statements and in filters.
#include "tavelor/platform/literal.hpp"

#include <fmt/compile.h>
#include <fmt/format.h>

#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/platform/decimal_digits.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor {

namespace {

/// What a double means of itself: the rest of its digits is noise.
constexpr int kDecimals = 20;
constexpr int kCurrencyDecimals = 4;

}  // namespace

Literal sqlText(std::string_view text) {
  return Literal('\'' + doubledQuotes(text) + '\'');
}

Literal sqlLiteral(double number) {
  return Literal(sqlNumber(number, kDecimals));
}

Literal sqlLiteral(Currency amount) {
  std::string text;
  appendPlain(text, digitsOf(amount.scaled(), kCurrencyDecimals), ".");
  return Literal(std::move(text));
}

Literal sqlLiteral(Date date) {
  const CivilTime at = date.civil();
  std::string text = fmt::format(FMT_COMPILE("#{:02}/{:02}/{:04}"), at.month, at.day, at.year);
  if (at.hour != 0 || at.minute != 0 || at.second != 0) {
    fmt::format_to(std::back_inserter(text), FMT_COMPILE(" {:02}:{:02}:{:02}"), at.hour, at.minute,
                   at.second);
  }
  text += '#';
  return Literal(std::move(text));
}

Literal sqlLiteral(const Variant& variant) {
  switch (variant.type()) {
    case VariantType::kEmpty:
      return sqlText({});
    case VariantType::kNull:
      return Literal("Null");
    case VariantType::kBoolean:
      return sqlLiteral(*variant.getIf<bool>());
    case VariantType::kInt16:
      return sqlLiteral(*variant.getIf<std::int16_t>());
    case VariantType::kInt32:
      return sqlLiteral(*variant.getIf<std::int32_t>());
    case VariantType::kSingle:
      return sqlLiteral(static_cast<double>(*variant.getIf<float>()));
    case VariantType::kDouble:
      return sqlLiteral(*variant.getIf<double>());
    case VariantType::kCurrency:
      return sqlLiteral(*variant.getIf<Currency>());
    case VariantType::kDate:
      return sqlLiteral(*variant.getIf<Date>());
    case VariantType::kText:
      return sqlText(*variant.getIf<std::string>());
    case VariantType::kBytes:
    case VariantType::kObject:
      break;
  }
  raise(errors::kTypeMismatch, "sqlLiteral",
        "A statement has no literal for " + std::string(typeName(variant.type())) + ".");
}

}  // namespace tavelor
