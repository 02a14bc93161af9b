// SPDX-License-Identifier: MIT
// A value of any of the platform's types, and its conversions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

struct Locale;

/// What a Variant can hold besides values: connections, record sets, controls.
class TAVELOR_API Object {
 public:
  virtual ~Object();
  /// "Connection", "Recordset": for messages.
  virtual std::string typeName() const = 0;

 protected:
  Object() = default;
  /// A copy of an object is another object.
  Object(const Object&) = default;
  /// The same.
  Object& operator=(const Object&) = default;
};

/// What a column of bytes holds.
using Bytes = std::vector<std::byte>;
/// An object, shared.
using ObjectPtr = std::shared_ptr<Object>;

/// Never assigned. Reads as "" in text and 0 in a number.
struct TAVELOR_API Empty {
  friend constexpr bool operator==(Empty, Empty) = default;
};
/// No value in a database column. Reading it as anything raises 94, invalid use of Null.
struct TAVELOR_API Null {
  friend constexpr bool operator==(Null, Null) = default;
};

/// What a Variant may hold, in the order of its alternatives.
enum class VariantType : std::uint8_t {
  kEmpty,
  kNull,
  kBoolean,
  kInt16,
  kInt32,
  kSingle,
  kDouble,
  kCurrency,
  kDate,
  kText,
  kBytes,
  kObject
};

/// "Empty", "Null", "Boolean", "Integer", "Long", "Single", "Double", "Currency", "Date", "String",
/// "Byte()", "Object".
TAVELOR_API std::string_view typeName(VariantType type);

/// One value. Text is UTF-8.
///
/// Conversions follow the classic rules: text is read by the locale ("1.234,5" in Spanish is
/// 1234.5), numbers become whole by rounding halves to even, True is -1.
/// Errors: 94 for Null, 13 for a text that does not read as the asked type or for an object,
/// 6 when the value does not fit.
class TAVELOR_API Variant {
 public:
  Variant() = default;
  /// Nothing was given.
  Variant(Empty) {}
  /// A value that a column does not have.
  Variant(Null n) : value_(n) {}
  /// A truth value.
  Variant(bool v) : value_(v) {}
  /// An integer of 16 bits.
  Variant(std::int16_t v) : value_(v) {}
  /// An integer of 32 bits.
  Variant(std::int32_t v) : value_(v) {}
  /// Becomes a 32-bit integer where it fits, else a double.
  Variant(std::int64_t v);
  /// A number of single precision.
  Variant(float v) : value_(v) {}
  /// A number of double precision.
  Variant(double v) : value_(v) {}
  /// Money.
  Variant(Currency v) : value_(v) {}
  /// A date with its time.
  Variant(Date v) : value_(v) {}
  /// A text, in UTF-8.
  Variant(std::string v) : value_(std::move(v)) {}
  /// A text, in UTF-8, copied.
  Variant(std::string_view v) : value_(std::string(v)) {}
  /// A text, in UTF-8, copied.
  Variant(const char* v) : value_(std::string(v)) {}
  /// Bytes.
  Variant(Bytes v) : value_(std::move(v)) {}
  /// An object, shared.
  Variant(ObjectPtr v) : value_(std::move(v)) {}

  /// What it holds.
  VariantType type() const { return static_cast<VariantType>(value_.index()); }
  /// Whether nothing was given.
  bool isEmpty() const { return type() == VariantType::kEmpty; }
  /// Whether it is Null.
  bool isNull() const { return type() == VariantType::kNull; }
  /// Whether it is a text.
  bool isText() const { return type() == VariantType::kText; }
  /// Boolean, integers, single, double, currency.
  bool isNumber() const;

  /// The held value itself, without conversion; null when another type is held.
  template <typename T>
  const T* getIf() const {
    return std::get_if<T>(&value_);
  }

  /// Not zero; also the words of the locale and True and False.
  bool toBoolean(const Locale& locale) const;
  /// Halves round to even. Raises 6 beyond 16 bits.
  std::int16_t toInt16(const Locale& locale) const;
  /// Halves round to even. Raises 6 beyond 32 bits.
  std::int32_t toInt32(const Locale& locale) const;
  /// A text reads by the locale.
  double toDouble(const Locale& locale) const;
  /// Rounded to four decimals, halves to even.
  Currency toCurrency(const Locale& locale) const;
  /// A text that is no date but a number is a day number.
  Date toDate(const Locale& locale) const;
  /// A double prints with at most 15 significant digits and the locale's decimal sign; a date as
  /// short date, plus the time when there is one; True as the locale's word.
  std::string toText(const Locale& locale) const;

  /// Same type and same value. No conversion: Variant(1) and Variant("1") differ.
  friend bool operator==(const Variant&, const Variant&) = default;

 private:
  std::variant<Empty, Null, bool, std::int16_t, std::int32_t, float, double, Currency, Date,
               std::string, Bytes, ObjectPtr>
      value_;
};

/// The platform's test: a number, a boolean, Empty, or a text that reads as a number by the locale
/// (" 37 ", "-37,5e2", "&H37", "12 €"). False for Null, "", dates and other text.
TAVELOR_API bool isNumeric(const Variant& value, const Locale& locale);
/// A date, or a text that reads as one by the locale. False for Null and numbers.
TAVELOR_API bool isDate(const Variant& value, const Locale& locale);

}  // namespace tavelor
