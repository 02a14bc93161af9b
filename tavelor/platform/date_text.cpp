// SPDX-License-Identifier: MIT
// Text as dates.
#include "tavelor/platform/date_text.hpp"

#include <array>
#include <cstddef>
#include <span>
#include <string>

#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/words.hpp"

namespace tavelor {

namespace {

struct Token {
  enum class Kind { kNumber, kWord, kDateMark, kTimeMark, kComma, kEnd };
  Kind kind = Kind::kEnd;
  int value = 0;          ///< of a number
  std::size_t width = 0;  ///< digits of a number
  std::string_view text;  ///< of a word
};

/// A part of a date as read: its digits' count tells a year of four digits from a day.
struct Part {
  int value = 0;
  std::size_t width = 0;
};

/// The places of year, month and day in the order of reading.
struct Order {
  std::size_t year;
  std::size_t month;
  std::size_t day;
};
constexpr Order kDmy{2, 1, 0};
constexpr Order kMdy{2, 0, 1};
constexpr Order kYmd{0, 1, 2};
constexpr Order kYdm{0, 2, 1};

constexpr std::size_t kLongestNumber = 4;
constexpr std::size_t kShortestFullYear = 3;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80U;
}

int fullYear(Part year) {
  if (year.width >= kShortestFullYear) return year.value;
  return year.value < 30 ? 2000 + year.value : 1900 + year.value;
}

/// The words that every country's dates may have, and the locale's own.
class Names {
 public:
  explicit Names(const Locale& locale) : locale_(locale) {}

  /// 1 to 12, or 0.
  int month(std::string_view word) const {
    const Locale& english = *Locale::neutral();
    for (const auto* names : {&locale_.monthNames, &locale_.shortMonthNames, &english.monthNames,
                              &english.shortMonthNames}) {
      if (const int place = find(*names, word); place != 0) return place;
    }
    return 0;
  }

  bool isDay(std::string_view word) const {
    const Locale& english = *Locale::neutral();
    for (const auto* names :
         {&locale_.dayNames, &locale_.shortDayNames, &english.dayNames, &english.shortDayNames}) {
      if (find(*names, word) != 0) return true;
    }
    return false;
  }

  /// "5 de marzo del 2024".
  static bool isLink(std::string_view word) {
    return text::equalsIgnoreCase(word, "de") || text::equalsIgnoreCase(word, "del");
  }

 private:
  static int find(std::span<const std::string> names, std::string_view word) {
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (text::equalsIgnoreCase(names[i], word)) return static_cast<int>(i) + 1;
    }
    return 0;
  }

  const Locale& locale_;
};

/// "03/15/2026", month first, which is what nearly all literals of statements are. Nothing for any
/// other text.
std::optional<Date> readPlainDay(std::string_view text) {
  if (text.size() != 10) return std::nullopt;
  // What is left of a digit is its number, of a slash nothing.
  const Word64 begin = loadWord(text.data()) ^ loadWord("00/00/00");
  const Word64 end = loadWord(text.data() + 8, 2) ^ loadWord("00", 2);
  constexpr Word64 kSlashes = Word64{0xFF} << 16 | Word64{0xFF} << 40;
  if ((begin & kSlashes) != 0 || !areDigits(begin) || !areDigits(end)) return std::nullopt;
  const auto two = [](Word64 digits, int place) {
    return static_cast<int>((digits >> 8 * place & 0xF) * 10 + (digits >> 8 * (place + 1) & 0xF));
  };
  return Date::tryOf(
      {.year = two(begin, 6) * 100 + two(end, 0), .month = two(begin, 0), .day = two(begin, 3)});
}

/// Reads a date and a time, once each and in any order. Orders are tried as given.
class DateReader {
 public:
  DateReader(const Locale& locale, std::span<const Order> orders)
      : names_(locale), locale_(locale), orders_(orders) {}

  std::optional<Date> read(std::string_view source) {
    if (!split(source) || count_ == 0) return std::nullopt;
    bool hasDate = false;
    bool hasTime = false;
    while (at_ < count_) {
      if (!hasTime && startsTime()) {
        hasTime = true;
        if (!readTime()) return std::nullopt;
      } else if (!hasDate) {
        hasDate = true;
        if (!readDate()) return std::nullopt;
      } else {
        return std::nullopt;
      }
    }
    return Date::tryOf(civil_);
  }

 private:
  using Kind = Token::Kind;

  bool split(std::string_view source) {
    std::size_t i = 0;
    while (i < source.size()) {
      const char c = source[i];
      if (c == ' ' || c == '\t') {
        ++i;
        continue;
      }
      if (count_ == tokens_.size()) return false;
      Token& token = tokens_[count_++];
      const std::size_t begin = i;
      if (isDigit(c)) {
        token.kind = Kind::kNumber;
        for (; i < source.size() && isDigit(source[i]); ++i) {
          if (i - begin == kLongestNumber) return false;
          token.value = token.value * 10 + (source[i] - '0');
        }
        token.width = i - begin;
      } else if (isLetter(c)) {
        token.kind = Kind::kWord;
        while (i < source.size() && isLetter(source[i])) ++i;
        token.text = source.substr(begin, i - begin);
      } else if (!readMark(source, i, token)) {
        return false;
      }
    }
    return true;
  }

  bool readMark(std::string_view source, std::size_t& i, Token& token) const {
    const auto is = [&](const std::string& mark) {
      return !mark.empty() && source.substr(i, mark.size()) == mark;
    };
    const char c = source[i];
    std::size_t size = 1;
    if (c == ':') {
      token.kind = Kind::kTimeMark;
    } else if (c == '/' || c == '-') {
      token.kind = Kind::kDateMark;
    } else if (c == ',') {
      token.kind = Kind::kComma;
    } else if (is(locale_.dateSeparator)) {
      token.kind = Kind::kDateMark;
      size = locale_.dateSeparator.size();
    } else if (is(locale_.timeSeparator)) {
      token.kind = Kind::kTimeMark;
      size = locale_.timeSeparator.size();
    } else {
      return false;
    }
    i += size;
    return true;
  }

  const Token& peek(std::size_t ahead = 0) const {
    static const Token end;
    return at_ + ahead < count_ ? tokens_[at_ + ahead] : end;
  }

  bool take(Kind kind) {
    if (peek().kind != kind) return false;
    ++at_;
    return true;
  }

  static bool isHalfDay(const Token& token) {
    return token.kind == Kind::kWord &&
           (text::equalsIgnoreCase(token.text, "am") || text::equalsIgnoreCase(token.text, "pm"));
  }

  bool startsTime() const {
    return peek().kind == Kind::kNumber && (peek(1).kind == Kind::kTimeMark || isHalfDay(peek(1)));
  }

  bool readTime() {
    civil_.hour = tokens_[at_++].value;
    for (int* part : {&civil_.minute, &civil_.second}) {
      if (!take(Kind::kTimeMark)) break;
      if (peek().kind != Kind::kNumber) return false;
      *part = tokens_[at_++].value;
    }
    if (!isHalfDay(peek())) return true;
    const bool afternoon = text::foldCase(tokens_[at_++].text) == "pm";
    if (civil_.hour < 1 || civil_.hour > 12) return false;
    civil_.hour = civil_.hour % 12 + (afternoon ? 12 : 0);
    return true;
  }

  bool readDate() {
    // "mar" is both Tuesday and March in Spanish: a comma makes it the day.
    if (peek().kind == Kind::kWord && names_.isDay(peek().text) &&
        (peek(1).kind == Kind::kComma || names_.month(peek().text) == 0)) {
      ++at_;
      take(Kind::kComma);
    }
    std::array<Part, 3> parts;
    std::optional<std::size_t> namedMonth;
    bool marked = true;
    for (std::size_t i = 0; i < parts.size(); ++i) {
      if (i > 0) marked = skipBetween() && marked;
      if (!readPart(parts[i], namedMonth, i)) return false;
    }
    if (namedMonth) return resolveNamed(parts, *namedMonth);
    return marked && resolve(parts);
  }

  /// True for a date mark; words and commas also part a date, but only one with a named month.
  bool skipBetween() {
    if (take(Kind::kDateMark)) return true;
    take(Kind::kComma);
    if (peek().kind == Kind::kWord && Names::isLink(peek().text)) ++at_;
    return false;
  }

  bool readPart(Part& part, std::optional<std::size_t>& namedMonth, std::size_t place) {
    const Token token = peek();
    ++at_;
    if (token.kind == Kind::kNumber) {
      part = {token.value, token.width};
      return true;
    }
    if (token.kind != Kind::kWord || namedMonth) return false;
    part.value = names_.month(token.text);
    namedMonth = place;
    return part.value != 0;
  }

  bool tryOrder(const std::array<Part, 3>& parts, const Order& order) {
    CivilTime tried = civil_;
    tried.year = fullYear(parts[order.year]);
    tried.month = parts[order.month].value;
    tried.day = parts[order.day].value;
    const bool dayIsShort = parts[order.day].width < kShortestFullYear;
    const bool monthIsShort = parts[order.month].width < kShortestFullYear;
    // The time may still be unread or wrong: only the day is judged here.
    if (!dayIsShort || !monthIsShort ||
        !Date::tryOf({tried.year, tried.month, tried.day, 0, 0, 0})) {
      return false;
    }
    civil_ = tried;
    return true;
  }

  bool resolveNamed(const std::array<Part, 3>& parts, std::size_t month) {
    const std::size_t first = month == 0 ? 1 : 0;
    const std::size_t second = month == 2 ? 1 : 2;
    return tryOrder(parts, {second, month, first}) || tryOrder(parts, {first, month, second});
  }

  bool resolve(const std::array<Part, 3>& parts) {
    for (const Order& order : orders_) {
      if (tryOrder(parts, order)) return true;
    }
    return false;
  }

  Names names_;
  const Locale& locale_;
  std::span<const Order> orders_;
  std::array<Token, 16> tokens_{};
  std::size_t count_ = 0;
  std::size_t at_ = 0;
  CivilTime civil_;
};

}  // namespace

std::optional<Date> parseDate(std::string_view text, const Locale& locale) {
  static constexpr std::array kDayFirst{kDmy, kMdy, kYmd, kYdm};
  static constexpr std::array kMonthFirst{kMdy, kDmy, kYmd, kYdm};
  static constexpr std::array kYearFirst{kYmd, kMdy, kDmy, kYdm};
  const auto& orders = locale.dateOrder == DateOrder::kDayMonthYear   ? kDayFirst
                       : locale.dateOrder == DateOrder::kMonthDayYear ? kMonthFirst
                                                                      : kYearFirst;
  return DateReader(locale, orders).read(text);
}

std::optional<Date> parseSqlDate(std::string_view text) {
  if (const auto day = readPlainDay(text)) return day;
  static constexpr std::array kOrders{kMdy, kDmy, kYmd};
  // A year in front wants its four digits: "24-03-05" is March the 24th.
  return DateReader(*Locale::neutral(), kOrders).read(text);
}

}  // namespace tavelor
