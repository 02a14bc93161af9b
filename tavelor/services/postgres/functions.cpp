// SPDX-License-Identifier: MIT
// The dialect's functions on a server: their texts with the tables of letters put in, and the
// settings that they read.
#include "tavelor/services/postgres/functions.hpp"

#include <array>
#include <cstddef>
#include <vector>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/utf8.hpp"

namespace tavelor::engine::postgres {

namespace {

/// Letters that change, and what they become.
class LetterTable {
 public:
  void add(char32_t letter, char32_t becomes) {
    // A range reaches over a letter between two others that stays itself: capitals and small
    // letters alternate.
    constexpr char32_t kReach = 2;
    if (begin_ == 0 || letter - last_ > kReach) {
      endRange();
      begin_ = letter;
    }
    last_ = letter;
    utf8::append(from_, letter);
    utf8::append(to_, becomes);
  }

  const std::string& from() const { return from_; }
  const std::string& to() const { return to_; }
  /// As the inside of a character class. Those between that stay themselves are in it too.
  std::string ranges() const {
    std::string all = ranges_;
    appendRange(all);
    return all;
  }

 private:
  void appendRange(std::string& out) const {
    utf8::append(out, begin_);
    out += '-';
    utf8::append(out, last_);
  }
  void endRange() {
    if (begin_ != 0) appendRange(ranges_);
  }

  std::string from_;
  std::string to_;
  std::string ranges_;
  char32_t begin_ = 0;
  char32_t last_ = 0;
};

/// What stands between braces in the texts.
struct Insert {
  std::string name;
  std::string text;
};

/// All characters beyond ASCII up to where no letters with two cases are known.
std::string manyCharacters() {
  constexpr char32_t kFirst = 0x80;
  constexpr char32_t kEnd = 0x20000;
  constexpr char32_t kFirstSurrogate = 0xD800;
  constexpr char32_t kBehindSurrogates = 0xE000;
  std::string all;
  for (char32_t code = kFirst; code != kEnd; ++code) {
    if (code == kFirstSurrogate) code = kBehindSurrogates;
    utf8::append(all, code);
  }
  return all;
}

void addTables(std::vector<Insert>& inserts, const std::string& name, const std::string& characters,
               const std::string& changed) {
  constexpr char32_t kWesternEnd = 0x100;
  LetterTable all;
  LetterTable western;
  for (std::size_t i = 0, j = 0; i < characters.size();) {
    const utf8::Character from = utf8::decode(characters, i);
    const utf8::Character to = utf8::decode(changed, j);
    i += from.size;
    j += to.size;
    if (from.code == to.code) continue;
    all.add(from.code, to.code);
    if (from.code < kWesternEnd) western.add(from.code, to.code);
  }
  inserts.push_back({name + " letters", all.ranges()});
  inserts.push_back({name + " from", all.from()});
  inserts.push_back({name + " to", all.to()});
  inserts.push_back({name + " western", western.ranges()});
  inserts.push_back({name + " western from", western.from()});
  inserts.push_back({name + " western to", western.to()});
}

/// Letters without their marks, where that is one character. It takes a moment, once in the life of
/// a database.
std::string plain(const std::string& characters) {
  std::string all;
  for (std::size_t i = 0; i < characters.size();) {
    const utf8::Character from = utf8::decode(characters, i);
    const std::string_view letter = std::string_view(characters).substr(i, from.size);
    const std::string bare = text::foldAccents(letter);
    all += text::length(bare) == 1 ? bare : letter;
    i += from.size;
  }
  return all;
}

std::string makeDdl() {
  const std::string characters = manyCharacters();
  std::vector<Insert> inserts;
  addTables(inserts, "upper", characters, text::upper(characters));
  addTables(inserts, "lower", characters, text::lower(characters));
  addTables(inserts, "fold", characters, text::foldCase(characters));
  addTables(inserts, "plain", characters, plain(characters));
  std::string ddl;
  for (const std::string_view text : functionTexts()) ddl += text;
  for (const auto& [name, text] : inserts) {
    const std::string mark = "'{" + name + "}'";
    const std::string inClass = "{" + name + "}]";
    for (const auto& [wanted, put] : {std::pair(mark, "'" + text + "'"), {inClass, text + "]"}}) {
      for (std::size_t at = ddl.find(wanted); at != std::string::npos;
           at = ddl.find(wanted, at + put.size())) {
        ddl.replace(at, wanted.size(), put);
      }
    }
  }
  return ddl;
}

std::string_view orderName(DateOrder order) {
  switch (order) {
    case DateOrder::kDayMonthYear:
      return "dmy";
    case DateOrder::kMonthDayYear:
      return "mdy";
    default:
      return "ymd";
  }
}

template <std::size_t count>
std::string joined(const std::array<std::string, count>& names) {
  return fmt::format("{}", fmt::join(names, "|"));
}

}  // namespace

std::string_view functionsDdl() {
  static const std::string ddl = makeDdl();
  return ddl;
}

std::string localeSettings(const Locale& locale) {
  if (&locale == Locale::spanish().get()) return {};
  std::string settings;
  const auto set = [&settings](std::string_view key, std::string_view value) {
    settings.append("SET tavelor.").append(key).append(" = '");
    for (const char c : value) settings.append(c == '\'' ? 2 : 1, c);
    settings.append("';\n");
  };
  set("locale", locale.name.empty() ? "own" : locale.name);
  set("decimal", locale.decimal);
  set("thousands", locale.thousands);
  set("currency", locale.currencySymbol);
  set("currency_behind", locale.currencySymbolBehind ? "1" : "0");
  set("date_separator", locale.dateSeparator);
  set("time_separator", locale.timeSeparator);
  set("date_order", orderName(locale.dateOrder));
  set("short_date", locale.shortDate);
  set("long_date", locale.longDate);
  set("long_time", locale.longTime);
  set("short_time", locale.shortTime);
  set("days", joined(locale.dayNames));
  set("short_days", joined(locale.shortDayNames));
  set("months", joined(locale.monthNames));
  set("short_months", joined(locale.shortMonthNames));
  set("yes_text", locale.yes);
  set("no_text", locale.no);
  set("true_text", locale.trueText);
  set("false_text", locale.falseText);
  set("on_text", locale.on);
  set("off_text", locale.off);
  return settings;
}

}  // namespace tavelor::engine::postgres
