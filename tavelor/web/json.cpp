// SPDX-License-Identifier: MIT
// JSON as requests bring it and answers take it.
#include "tavelor/web/json.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include <fmt/format.h>
#include <openssl/evp.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/web/answer.hpp"

namespace tavelor::web {

namespace {

std::string base64(const Bytes& bytes) {
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
  const int size = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                   reinterpret_cast<const unsigned char*>(bytes.data()),
                                   static_cast<int>(bytes.size()));
  text.resize(static_cast<std::size_t>(size));
  return text;
}

std::string momentText(Date moment) {
  const CivilTime at = moment.civil();
  std::string day = fmt::format("{:04}-{:02}-{:02}", at.year, at.month, at.day);
  if (at.hour == 0 && at.minute == 0 && at.second == 0) return day;
  return fmt::format("{}T{:02}:{:02}:{:02}", day, at.hour, at.minute, at.second);
}

std::size_t charactersOf(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
  }));
}

bool isControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte < 0x20 && c != '\t' && c != '\n' && c != '\r') || byte == 0x7F;
}

/// `count` digits at `at`; -1 where something else stands there.
int digitsAt(std::string_view text, std::size_t at, std::size_t count) {
  if (at + count > text.size()) return -1;
  int value = 0;
  for (const char c : text.substr(at, count)) {
    if (c < '0' || c > '9') return -1;
    value = value * 10 + (c - '0');
  }
  return value;
}

}  // namespace

Json parsed(std::string_view text) {
  bool isTooDeep = false;
  const auto watch = [&](int depth, Json::parse_event_t event, const Json& /*value*/) {
    const bool begins =
        event == Json::parse_event_t::object_start || event == Json::parse_event_t::array_start;
    if (begins && depth >= kDeepestJson) isTooDeep = true;
    if (isTooDeep)
      throw Failure::input(fmt::format("The JSON is nested deeper than {}.", kDeepestJson));
    return true;
  };
  try {
    return Json::parse(text.begin(), text.end(), watch);
  } catch (const Json::parse_error& error) {
    throw Failure::input(
        fmt::format("This is no JSON: what stands at byte {} does not fit.", error.byte));
  } catch (const Json::exception&) {
    throw Failure::input("This JSON has a number that is too large.");
  }
}

std::string dumped(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json toJson(double number, int decimals) {
  if (!std::isfinite(number)) return nullptr;
  const double scale = std::pow(10.0, decimals);
  const double scaled = number * scale;
  // Beyond this a double has no such decimals.
  if (std::abs(scaled) >= 9e15) return number;
  const double rounded = std::round(scaled) / scale;
  if (rounded == std::trunc(rounded)) return static_cast<std::int64_t>(rounded);
  return rounded;
}

Json toJson(Currency amount) {
  return toJson(amount.toDouble());
}

Json toJson(const Variant& value) {
  switch (value.type()) {
    case VariantType::kEmpty:
    case VariantType::kNull:
    case VariantType::kObject:
      return nullptr;
    case VariantType::kBoolean:
      return *value.getIf<bool>();
    case VariantType::kInt16:
      return *value.getIf<std::int16_t>();
    case VariantType::kInt32:
      return *value.getIf<std::int32_t>();
    case VariantType::kSingle: {
      // As its shortest text: 1.1, not the nearest double of the nearest single.
      const float number = *value.getIf<float>();
      return std::isfinite(number) ? Json(std::stod(fmt::format("{}", number))) : Json(nullptr);
    }
    case VariantType::kDouble: {
      const double number = *value.getIf<double>();
      const bool isWhole = number == std::trunc(number) && std::abs(number) < 9e15;
      if (isWhole) return static_cast<std::int64_t>(number);
      return std::isfinite(number) ? Json(number) : Json(nullptr);
    }
    case VariantType::kCurrency:
      return toJson(*value.getIf<Currency>());
    case VariantType::kDate:
      return momentText(*value.getIf<Date>());
    case VariantType::kText:
      return *value.getIf<std::string>();
    case VariantType::kBytes:
      return base64(*value.getIf<Bytes>());
  }
  return nullptr;
}

Variant variantOf(const Json& json, std::string_view where) {
  if (json.is_null()) return Null();
  if (json.is_boolean()) return json.get<bool>();
  if (json.is_string()) return json.get<std::string>();
  if (json.is_number_unsigned()) {
    const auto number = json.get<std::uint64_t>();
    if (number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
      return static_cast<double>(number);
    }
    return static_cast<std::int64_t>(number);
  }
  if (json.is_number_integer()) return json.get<std::int64_t>();
  if (json.is_number()) return json.get<double>();
  throw Failure::input(fmt::format("{} must be a text, a number, true, false or null.", where));
}

std::string dayText(Date day) {
  const CivilTime at = day.civil();
  return fmt::format("{:04}-{:02}-{:02}", at.year, at.month, at.day);
}

std::string timeText(Date moment) {
  const CivilTime at = moment.civil();
  return fmt::format("{:02}:{:02}", at.hour, at.minute);
}

std::optional<Date> dayOf(std::string_view text) {
  const bool hasTime = text.size() > 10;
  if (text.size() < 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  CivilTime civil{digitsAt(text, 0, 4), digitsAt(text, 5, 2), digitsAt(text, 8, 2)};
  if (hasTime) {
    if ((text[10] != 'T' && text[10] != ' ') || (text.size() != 16 && text.size() != 19)) {
      return std::nullopt;
    }
    if (text[13] != ':' || (text.size() == 19 && text[16] != ':')) return std::nullopt;
    civil.hour = digitsAt(text, 11, 2);
    civil.minute = digitsAt(text, 14, 2);
    civil.second = text.size() == 19 ? digitsAt(text, 17, 2) : 0;
  }
  return Date::tryOf(civil);
}

Fields::Fields(const Json& object, std::string where) : object_(object), where_(std::move(where)) {
  if (!object_.is_object()) {
    throw Failure::input(
        fmt::format("{} must be an object.", where_.empty() ? "The body" : where_));
  }
}

const Json* Fields::find(std::string_view name) const {
  const auto found = object_.find(std::string(name));
  return found == object_.end() || found->is_null() ? nullptr : &*found;
}

const Json& Fields::get(std::string_view name) const {
  const Json* const found = find(name);
  if (found == nullptr) complain(name, "is missing");
  return *found;
}

void Fields::complain(std::string_view name, std::string_view fault) const {
  Failure failure =
      Failure::input(fmt::format("{}{}{} {}.", where_, where_.empty() ? "" : ".", name, fault));
  failure.faults = {{.field = std::string(name), .reason = std::string(fault)}};
  throw failure;
}

bool Fields::has(std::string_view name) const {
  return find(name) != nullptr;
}

std::string Fields::text(std::string_view name, std::size_t most) const {
  const Json& found = get(name);
  if (!found.is_string()) complain(name, "must be a text");
  const auto& text = found.get_ref<const std::string&>();
  if (charactersOf(text) > most)
    complain(name, fmt::format("may have {} characters at most", most));
  if (std::any_of(text.begin(), text.end(), isControl)) complain(name, "has a control character");
  return text;
}

std::string Fields::text(std::string_view name, std::size_t most,
                         std::string_view otherwise) const {
  return has(name) ? text(name, most) : std::string(otherwise);
}

double Fields::number(std::string_view name) const {
  const Json& found = get(name);
  if (!found.is_number()) complain(name, "must be a number");
  const auto number = found.get<double>();
  if (!std::isfinite(number)) complain(name, "must be a number");
  return number;
}

double Fields::number(std::string_view name, double otherwise) const {
  return has(name) ? number(name) : otherwise;
}

std::int64_t Fields::whole(std::string_view name, std::int64_t least, std::int64_t most) const {
  const double value = number(name);
  if (value != std::trunc(value)) complain(name, "must be a whole number");
  if (value < static_cast<double>(least) || value > static_cast<double>(most)) {
    complain(name, fmt::format("must be from {} to {}", least, most));
  }
  return static_cast<std::int64_t>(value);
}

std::int64_t Fields::whole(std::string_view name, std::int64_t least, std::int64_t most,
                           std::int64_t otherwise) const {
  return has(name) ? whole(name, least, most) : otherwise;
}

bool Fields::flag(std::string_view name, bool otherwise) const {
  if (!has(name)) return otherwise;
  const Json& found = get(name);
  if (!found.is_boolean()) complain(name, "must be true or false");
  return found.get<bool>();
}

Date Fields::day(std::string_view name) const {
  const auto day = dayOf(text(name, 10));
  if (!day) complain(name, "must be a day as 2026-11-20");
  return *day;
}

Date Fields::day(std::string_view name, Date otherwise) const {
  return has(name) ? day(name) : otherwise;
}

const Json& Fields::array(std::string_view name, std::size_t most) const {
  const Json& found = get(name);
  if (!found.is_array()) complain(name, "must be an array");
  if (found.size() > most) complain(name, fmt::format("may have {} elements at most", most));
  return found;
}

const Json& Fields::object(std::string_view name) const {
  const Json& found = get(name);
  if (!found.is_object()) complain(name, "must be an object");
  return found;
}

std::string Fields::placeOf(std::string_view name, std::size_t index) const {
  return fmt::format("{}{}{}[{}]", where_, where_.empty() ? "" : ".", name, index);
}

void Fields::allowOnly(std::initializer_list<std::string_view> names) const {
  for (const auto& member : object_.items()) {
    if (std::find(names.begin(), names.end(), member.key()) == names.end()) {
      complain(member.key(), "is not known here");
    }
  }
}

}  // namespace tavelor::web
