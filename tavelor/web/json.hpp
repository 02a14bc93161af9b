// SPDX-License-Identifier: MIT
// JSON as requests bring it and answers take it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "tavelor/platform/date.hpp"

namespace tavelor {
class Currency;
class Variant;
}  // namespace tavelor

namespace tavelor::web {

/// Members keep the order in which they were set.
using Json = nlohmann::ordered_json;

inline constexpr int kDeepestJson = 32;  ///< levels of arrays and objects

/// Raises Failure 400 for what is no JSON, with the byte where it ends to be one, and for what is
/// nested deeper than kDeepestJson.
Json parsed(std::string_view text);
/// Always valid UTF-8, whatever the texts of a database hold.
std::string dumped(const Json& json);

/// Null for Null and Empty; a date as its day, with "T10:32:00" where it has a time; bytes as
/// base64; money and numbers as numbers, what is no finite one as null.
Json toJson(const Variant& value);
/// The nearest number with so many decimals: sums of cents print as such.
Json toJson(double number, int decimals = 4);
Json toJson(Currency amount);
/// Null, flags, texts, and numbers, whole ones of 32 bits as such. A day stays a text: only a
/// column knows better. Raises Failure 400, naming `where`, for arrays and objects.
Variant variantOf(const Json& json, std::string_view where);

/// "2026-11-20".
std::string dayText(Date day);
/// "10:32".
std::string timeText(Date moment);
/// "2026-11-20", and with a time behind "T" or a blank. None for another text and for no day.
std::optional<Date> dayOf(std::string_view text);

/// The members of an object, each read by its type. Whatever is missing, of another type, too long
/// or out of range raises Failure 400 and names it: "lines[2].quantity must be a number".
class Fields {
 public:
  /// `where` is what stands before the names in messages: "lines[2]".
  explicit Fields(const Json& object, std::string where = {});

  /// Whether it is there and not null.
  bool has(std::string_view name) const;

  /// At most so many characters of UTF-8, none of them a control character but tab and line end.
  std::string text(std::string_view name, std::size_t most) const;
  std::string text(std::string_view name, std::size_t most, std::string_view otherwise) const;
  /// Finite.
  double number(std::string_view name) const;
  double number(std::string_view name, double otherwise) const;
  /// Whole, within the range.
  std::int64_t whole(std::string_view name, std::int64_t least, std::int64_t most) const;
  std::int64_t whole(std::string_view name, std::int64_t least, std::int64_t most,
                     std::int64_t otherwise) const;
  bool flag(std::string_view name, bool otherwise = false) const;
  Date day(std::string_view name) const;
  Date day(std::string_view name, Date otherwise) const;
  /// Each an object, or whatever the caller takes; at most so many.
  const Json& array(std::string_view name, std::size_t most) const;
  const Json& object(std::string_view name) const;
  /// "lines[2]", for the fields of an element: indexes count from 0.
  std::string placeOf(std::string_view name, std::size_t index) const;

  /// Raises Failure 400 for a member that nobody may give: a slip would be passed over.
  void allowOnly(std::initializer_list<std::string_view> names) const;

 private:
  const Json* find(std::string_view name) const;
  const Json& get(std::string_view name) const;
  [[noreturn]] void complain(std::string_view name, std::string_view fault) const;

  const Json& object_;
  std::string where_;
};

}  // namespace tavelor::web
