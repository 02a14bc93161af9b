// SPDX-License-Identifier: MIT
// Reads the texts of fields.
#include "tools/fields.hpp"

#include <cmath>

#include <fmt/format.h>

#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tools/output.hpp"
#include "tools/typed_number.hpp"

namespace tavelor::tools {

namespace {

std::optional<bool> flagIn(std::string_view text, const Locale& numbers) {
  for (const std::string_view word : {"true", "yes", "sí", "si", "verdadero"}) {
    if (text::equalsIgnoreCase(text, word)) return true;
  }
  for (const std::string_view word : {"false", "no", "falso"}) {
    if (text::equalsIgnoreCase(text, word)) return false;
  }
  const std::optional<double> number = parseNumber(text, numbers);
  return number ? std::optional(*number != 0) : std::nullopt;
}

std::optional<double> numberIn(std::string_view text, const Locale& numbers) {
  return groupsFit(text, numbers) ? parseNumber(text, numbers) : std::nullopt;
}

/// To the digits that are printed, so that the same row compares equal the next time.
std::optional<double> printedNumber(std::string_view text, const Locale& numbers) {
  const std::optional<double> read = numberIn(text, numbers);
  return read ? parseNumber(plainNumber(*read, numbers), numbers) : read;
}

/// To the four decimals that are kept, so that the same row compares equal the next time.
std::optional<double> moneyIn(std::string_view text, const Locale& numbers) {
  constexpr double kMost = 9e14;
  const std::optional<double> amount = numberIn(text, numbers);
  if (!amount || std::abs(*amount) > kMost) return std::nullopt;
  return Currency::fromDouble(*amount).toDouble();
}

/// Without its time.
std::optional<Date> dayIn(std::string_view text) {
  constexpr std::size_t kYear = 4;
  const bool beginsWithYear = text.size() > kYear && text[kYear] == '-';
  const std::optional<Date> day =
      beginsWithYear ? parseSqlDate(text) : parseDate(text, Apartment::current().locale());
  // A time alone is of day zero.
  return day && day->days() >= 1 ? std::optional(day->dayOnly()) : std::nullopt;
}

}  // namespace

std::string fieldFault(const ImportField& field, std::string_view what, std::string_view text) {
  return fmt::format("{} is {}: {}", field.name, what, printable(text::left(text, 40)));
}

std::string readField(const ImportField& field, std::string_view text, const Locale& numbers,
                      FieldValue& to) {
  if (text.empty() && field.kind != FieldKind::kText) return {};
  const auto take = [&](const auto& value, std::string_view what) -> std::string {
    if (value) {
      to = *value;
      return {};
    }
    const std::string_view sign = groupsFit(text, numbers) ? ""
                                  : numbers.decimal == "," ? " with a decimal comma"
                                                           : " with a decimal point";
    return fieldFault(field, fmt::format("{}{}", what, sign), text);
  };
  switch (field.kind) {
    case FieldKind::kText:
    case FieldKind::kWord:
      to = text;
      return {};
    case FieldKind::kNumber:
      return take(printedNumber(text, numbers), "no number");
    case FieldKind::kPercent: {
      const std::optional<double> percent = printedNumber(text, numbers);
      const bool isOutside = percent && !(*percent >= 0 && *percent <= 100);
      return take(isOutside ? std::nullopt : percent, isOutside ? "no percentage" : "no number");
    }
    case FieldKind::kMoney:
      return take(moneyIn(text, numbers), "no amount");
    case FieldKind::kAllowance: {
      const std::optional<double> limit = moneyIn(text, numbers);
      const bool isBelow = limit && *limit < 0;
      return take(isBelow ? std::nullopt : limit, isBelow ? "below 0" : "no amount");
    }
    case FieldKind::kFlag:
      return take(flagIn(text, numbers), "no flag");
    case FieldKind::kDay: {
      const std::optional<Date> day = dayIn(text);
      if (!day) return fieldFault(field, "no day like 2026-12-31", text);
      to = *day;
      return {};
    }
  }
  return {};
}

}  // namespace tavelor::tools
