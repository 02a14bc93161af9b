// SPDX-License-Identifier: MIT
// Values on their way in and out.
#include <charconv>
#include <cstdlib>
#include <limits>
#include <new>

#include <fmt/format.h>

#include "tavelor/c/calls.hpp"
#include "tavelor/platform/locale.hpp"

namespace tavelor::c {

namespace {

/// A copy that tavelor_value_clear() frees, with a NUL behind it.
char* copied(const void* data, std::size_t size) {
  char* const copy = static_cast<char*>(std::malloc(size + 1));  // NOLINT(*-no-malloc)
  if (copy == nullptr) throw std::bad_alloc();
  if (size > 0) std::memcpy(copy, data, size);
  copy[size] = '\0';
  return copy;
}

const ObjectPtr& objectIn(tavelor_object* given, const Room& room) {
  const tavelor_object& object = asObject(given);
  if (&object.room() != &room) {
    raise(errors::kInvalidCall, kSource,
          fmt::format("The {} belongs to another apartment",
                      object.object ? object.object->typeName() : std::string("object")));
  }
  return object.object;
}

/// Hands what a value holds to `take`, as what it is.
template <typename Take>
auto read(const tavelor_value& value, const Room& room, Take&& take) {
  switch (value.type) {
    case TAVELOR_EMPTY:
      return take(Empty{});
    case TAVELOR_NULL:
      return take(Null{});
    case TAVELOR_BOOLEAN:
      return take(value.as.boolean != 0);
    case TAVELOR_INT16:
      return take(value.as.int16);
    case TAVELOR_INT32:
      return take(value.as.int32);
    case TAVELOR_INT64:
      return take(std::int64_t{value.as.int64});
    case TAVELOR_SINGLE:
      return take(value.as.single);
    case TAVELOR_DOUBLE:
      return take(value.as.number);
    case TAVELOR_MONEY:
      return take(Currency::fromScaled(value.as.money));
    case TAVELOR_DATE:
      return take(Date(value.as.date));
    case TAVELOR_TEXT: {
      requireList(value.as.text.data, value.as.text.size, "a value's text");
      const std::string_view text(value.as.text.data, value.as.text.size);
      requireUtf8(text, "a value's text");
      return take(text);
    }
    case TAVELOR_BYTES: {
      requireList(value.as.bytes.data, value.as.bytes.size, "a value's bytes");
      const auto* data = static_cast<const std::byte*>(value.as.bytes.data);
      return take(Bytes(data, data + value.as.bytes.size));
    }
    case TAVELOR_OBJECT:
      return take(objectIn(value.as.object, room));
    default:
      raise(errors::kInvalidCall, kSource, fmt::format("A value has the type {}", value.type));
  }
}

Variant converted(const Variant& from, std::int32_t type, const Locale& locale) {
  switch (type) {
    case TAVELOR_BOOLEAN:
      return from.toBoolean(locale);
    case TAVELOR_INT16:
      return from.toInt16(locale);
    case TAVELOR_INT32:
      return from.toInt32(locale);
    case TAVELOR_SINGLE:
      return static_cast<float>(from.toDouble(locale));
    case TAVELOR_DOUBLE:
      return from.toDouble(locale);
    case TAVELOR_MONEY:
      return from.toCurrency(locale);
    case TAVELOR_DATE:
      return from.toDate(locale);
    case TAVELOR_TEXT:
      return from.toText(locale);
    default:
      raise(errors::kInvalidCall, kSource, fmt::format("Nothing is converted to type {}", type));
  }
}

}  // namespace

Variant variantOf(const tavelor_value& value, const Room& room) {
  return read(value, room, [](auto&& held) { return Variant(std::forward<decltype(held)>(held)); });
}

void append(std::vector<Variant>& variants, const tavelor_value& value, const Room& room) {
  read(value, room,
       [&](auto&& held) { variants.emplace_back(std::forward<decltype(held)>(held)); });
}

void putText(tavelor_value& value, std::string_view text) {
  const char* const copy = copied(text.data(), text.size());
  value = tavelor_of_text(copy, text.size());
  value.owned = 1;
}

void put(tavelor_value& value, const Variant& variant, const std::shared_ptr<Room>& room) {
  switch (variant.type()) {
    case VariantType::kEmpty:
      value = tavelor_of_empty();
      break;
    case VariantType::kNull:
      value = tavelor_of_null();
      break;
    case VariantType::kBoolean:
      value = tavelor_of_boolean(*variant.getIf<bool>() ? 1 : 0);
      break;
    case VariantType::kInt16:
      value = tavelor_nothing(TAVELOR_INT16);
      value.as.int16 = *variant.getIf<std::int16_t>();
      break;
    case VariantType::kInt32:
      value = tavelor_of_int32(*variant.getIf<std::int32_t>());
      break;
    case VariantType::kSingle:
      value = tavelor_nothing(TAVELOR_SINGLE);
      value.as.single = *variant.getIf<float>();
      break;
    case VariantType::kDouble:
      value = tavelor_of_double(*variant.getIf<double>());
      break;
    case VariantType::kCurrency:
      value = tavelor_of_money(variant.getIf<Currency>()->scaled());
      break;
    case VariantType::kDate:
      value = tavelor_of_date(variant.getIf<Date>()->days());
      break;
    case VariantType::kText:
      putText(value, *variant.getIf<std::string>());
      break;
    case VariantType::kBytes: {
      const Bytes& bytes = *variant.getIf<Bytes>();
      const void* const copy = copied(bytes.data(), bytes.size());
      value = tavelor_of_bytes(copy, bytes.size());
      value.owned = 1;
      break;
    }
    case VariantType::kObject: {
      const ObjectPtr& object = *variant.getIf<ObjectPtr>();
      if (object == nullptr) {
        value = tavelor_of_empty();
        break;
      }
      value = tavelor_of_object(newObject(room, object));
      value.owned = 1;
      break;
    }
  }
}

}  // namespace tavelor::c

using namespace tavelor::c;

void tavelor_value_clear(tavelor_value* value) {
  if (value == nullptr) return;
  if (value->owned != 0) {
    if (value->type == TAVELOR_TEXT) {
      std::free(const_cast<char*>(value->as.text.data));  // NOLINT(*-no-malloc)
    } else if (value->type == TAVELOR_BYTES) {
      std::free(const_cast<void*>(value->as.bytes.data));  // NOLINT(*-no-malloc)
    } else if (value->type == TAVELOR_OBJECT) {
      tavelor_object_release(value->as.object);
    }
  }
  *value = tavelor_of_empty();
}

tavelor_status tavelor_value_convert(tavelor_apartment* apartment, const tavelor_value* value,
                                     int32_t type, tavelor_value* out, tavelor_error** error) {
  return answered(error, [&] {
    const std::shared_ptr<Room>& room = asApartment(apartment).room;
    const Inside inside(*room);
    const tavelor::Variant from = variantOf(output(value, "value"), *room);
    output(out, "out");
    tavelor_value made;
    put(made, converted(from, type, room->apartment().locale()), room);
    tavelor_value_clear(out);
    *out = made;
  });
}

// ---------------------------------------------------------------------------------------------
// Money as text

tavelor_status tavelor_money_from_text(const char* text, int64_t* money, tavelor_error** error) {
  return answered(error, [&] {
    const std::string_view given = tavelor::c::text(text, "text");
    output(money, "money");
    constexpr std::size_t kDecimals = 4;
    std::string_view digits = given;
    const bool negative = digits.starts_with('-');
    if (negative || digits.starts_with('+')) digits.remove_prefix(1);
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const std::string_view decimals = digits.substr(std::min(point + 1, digits.size()));
    const bool isNumber = digits.find_first_not_of("0123456789.") == std::string_view::npos &&
                          decimals.find('.') == std::string_view::npos &&
                          decimals.size() <= kDecimals && point + decimals.size() > 0;
    if (!isNumber) {
      tavelor::raise(
          tavelor::errors::kTypeMismatch, kSource,
          fmt::format("'{}' is no amount with a decimal point and at most four decimals", given));
    }
    std::string scaled = (negative ? "-" : "") + std::string(digits.substr(0, point));
    scaled.append(decimals).append(kDecimals - decimals.size(), '0');
    std::int64_t amount = 0;
    const auto read = std::from_chars(scaled.data(), scaled.data() + scaled.size(), amount);
    if (read.ec != std::errc()) {
      tavelor::raise(tavelor::errors::kOverflow, kSource, fmt::format("{} is no amount", given));
    }
    *money = amount;
  });
}

size_t tavelor_money_to_text(int64_t money, char* buffer, size_t size) {
  if (buffer == nullptr || size < TAVELOR_MONEY_TEXT_SIZE) return 0;
  // The least amount has no opposite.
  const std::uint64_t amount =
      money < 0 ? 0 - static_cast<std::uint64_t>(money) : static_cast<std::uint64_t>(money);
  char* end = buffer;
  if (money < 0) *end++ = '-';
  end = std::to_chars(end, buffer + size, amount / TAVELOR_MONEY_SCALE).ptr;
  std::uint64_t rest = amount % TAVELOR_MONEY_SCALE;
  if (rest > 0) {
    *end++ = '.';
    for (std::uint64_t unit = TAVELOR_MONEY_SCALE / 10; rest > 0; unit /= 10) {
      *end++ = static_cast<char>('0' + rest / unit);
      rest %= unit;
    }
  }
  *end = '\0';
  return static_cast<std::size_t>(end - buffer);
}

// ---------------------------------------------------------------------------------------------
// Dates

tavelor_status tavelor_date_from_civil(const tavelor_civil* civil, double* date,
                                       tavelor_error** error) {
  return answered(error, [&] {
    const tavelor_civil& given = output(civil, "civil");
    output(date, "date") = tavelor::Date::of({given.year, given.month, given.day, given.hour,
                                              given.minute, given.second})
                               .days();
  });
}

tavelor_status tavelor_date_to_civil(double date, tavelor_civil* civil, tavelor_error** error) {
  return answered(error, [&] {
    const tavelor::CivilTime time = tavelor::Date(date).civil();
    output(civil, "civil") = {time.year, time.month, time.day, time.hour, time.minute, time.second};
  });
}
