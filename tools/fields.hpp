// SPDX-License-Identifier: MIT
// The fields that rows of text are read into: what they are called, and how their texts are read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tavelor/platform/date.hpp"

namespace tavelor {
struct Locale;
}

namespace tavelor::tools {

/// How the text of a field is read. An empty number, flag, day or word says nothing; an empty text
/// is one.
enum class FieldKind : std::uint8_t {
  kText,
  kWord,       ///< a text that is something: a code, a letter, a word of a list
  kNumber,     ///< to the digits that are printed
  kPercent,    ///< a number from 0 to 100
  kMoney,      ///< to four decimals
  kAllowance,  ///< the same, not below 0
  kFlag,
  kDay,  ///< 2026-12-31, or as the shop's locale writes days
};

enum class FieldUse : std::uint8_t {
  kAlways,
  kForNew,   ///< only a new row takes it
  kDerived,  ///< no file gives it: it follows from others
};

/// A field of a file; its name is that of the column that it goes into.
struct ImportField {
  Statement::Constant name;
  FieldKind kind = FieldKind::kText;
  FieldUse use = FieldUse::kAlways;
};

/// What rows are taken into.
struct ImportTable {
  Statement::Constant name;
  std::string_view what;  ///< "articles"
  std::span<const ImportField> fields;
};

/// Where a field's value comes from: a column of the file, one text for all rows, or nowhere.
struct FieldSource {
  std::optional<std::size_t> column;
  std::string constant;
  bool given = false;

  /// Its text in a row that has all columns.
  const std::string& in(const std::vector<std::string>& row) const {
    return column ? row[*column] : constant;
  }
};

/// A text is that of the file's row, or one that somebody has made of it.
using FieldValue = std::variant<std::monostate, std::string_view, double, bool, std::string, Date>;

/// A row's values by field; what it does not tell is nothing.
struct FieldValues {
  std::vector<FieldValue> values;

  bool has(std::size_t field) const { return values[field].index() != 0; }
  std::string_view text(std::size_t field, std::string_view otherwise = {}) const {
    const auto* const made = std::get_if<std::string>(&values[field]);
    return made != nullptr ? *made : valueOr(field, otherwise);
  }
  double number(std::size_t field, double otherwise = 0) const { return valueOr(field, otherwise); }
  bool flag(std::size_t field, bool otherwise = false) const { return valueOr(field, otherwise); }
  std::optional<Date> day(std::size_t field) const {
    const Date* const day = std::get_if<Date>(&values[field]);
    return day != nullptr ? std::optional(*day) : std::nullopt;
  }

 private:
  template <typename T>
  T valueOr(std::size_t field, T otherwise) const {
    const T* const value = std::get_if<T>(&values[field]);
    return value != nullptr ? *value : otherwise;
  }
};

/// Reads a text; gives what is wrong with it, by the field's name, or "". `to` then keeps what it
/// had, as it does where the text says nothing. Numbers are read by `numbers`.
std::string readField(const ImportField& field, std::string_view text, const Locale& numbers,
                      FieldValue& to);

/// "Tarifa is no tariff of the shop: Z".
std::string fieldFault(const ImportField& field, std::string_view what, std::string_view text);

}  // namespace tavelor::tools
