// SPDX-License-Identifier: MIT
// Reads the texts of fields.
#include "tools/fields.hpp"

#include <algorithm>
#include <array>
#include <charconv>
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

constexpr std::string_view kDigits = "0123456789";

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

/// Digits with their marks, and an exponent as sheets write it. What else reads as a number in
/// statements, a hexadecimal one or one with a currency sign, is a slip of the hand in a file.
std::optional<double> numberIn(std::string_view text, const Locale& numbers) {
  const auto isPart = [&](char c) {
    return kDigits.find(c) != std::string_view::npos ||
           std::string_view("+-eE ").find(c) != std::string_view::npos ||
           numbers.decimal.find(c) != std::string::npos ||
           numbers.thousands.find(c) != std::string::npos;
  };
  if (!std::all_of(text.begin(), text.end(), isPart) || !groupsFit(text, numbers)) {
    return std::nullopt;
  }
  return parseNumber(text, numbers);
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

/// The numbers of a day in the order in which the locale writes them.
std::array<int, 3> partsOf(Date day, DateOrder order) {
  const CivilTime at = day.civil();
  switch (order) {
    case DateOrder::kDayMonthYear:
      return {at.day, at.month, at.year};
    case DateOrder::kMonthDayYear:
      return {at.month, at.day, at.year};
    case DateOrder::kYearMonthDay:
      break;
  }
  return {at.year, at.month, at.day};
}

/// False where the numbers of the text are not those of the day in that order: others would be
/// tried elsewhere, and the days of one file be read in two ways. Also of a year of two digits.
bool isWrittenSo(std::string_view text, Date day, DateOrder order) {
  const auto isLetter = [](char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; };
  if (std::any_of(text.begin(), text.end(), isLetter)) return true;  // a month by its name
  std::size_t part = 0;
  for (const int expected : partsOf(day, order)) {
    part = text.find_first_of(kDigits, part);
    if (part == std::string_view::npos) return false;
    const std::size_t end = std::min(text.find_first_not_of(kDigits, part), text.size());
    int number = 0;
    std::from_chars(text.data() + part, text.data() + end, number);
    if (number != expected) return false;
    part = end;
  }
  return true;
}

/// Without its time.
std::optional<Date> dayIn(std::string_view text) {
  constexpr std::size_t kYear = 4;
  const Locale& locale = Apartment::current().locale();
  const bool beginsWithYear = text.size() > kYear && text[kYear] == '-';
  const std::optional<Date> day = beginsWithYear ? parseSqlDate(text) : parseDate(text, locale);
  const DateOrder order = beginsWithYear ? DateOrder::kYearMonthDay : locale.dateOrder;
  // A time alone is of day zero.
  if (!day || day->days() < 1 || !isWrittenSo(text, *day, order)) return std::nullopt;
  return day->dayOnly();
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
