// SPDX-License-Identifier: MIT
// Number masks.
#include <array>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tavelor/platform/format_parts.hpp"
#include "tavelor/platform/locale.hpp"

namespace tavelor {

namespace {

enum class Kind { kZero, kOptional, kPoint, kComma, kPercent, kExponent, kLiteral, kEnd };

struct Token {
  Kind kind = Kind::kEnd;
  std::string_view text;  ///< of a literal, without its backslash or quotes
  bool plus = false;      ///< of an exponent: E+ against E-
  int places = 0;         ///< of an exponent
};

/// Takes a number mask apart, one token a call.
class Scanner {
 public:
  explicit Scanner(std::string_view mask) : mask_(mask) {}

  Token next() {
    if (at_ >= mask_.size()) return {};
    const std::size_t begin = at_++;
    switch (mask_[begin]) {
      case '0':
        return {Kind::kZero, {}, false, 0};
      case '#':
        return {Kind::kOptional, {}, false, 0};
      case '.':
        return {Kind::kPoint, mask_.substr(begin, 1), false, 0};
      case ',':
        return {Kind::kComma, mask_.substr(begin, 1), false, 0};
      case '%':
        return {Kind::kPercent, mask_.substr(begin, 1), false, 0};
      case 'E':
      case 'e':
        return exponent(begin);
      case '\\':
        if (at_ >= mask_.size()) return {Kind::kLiteral, {}, false, 0};
        return {Kind::kLiteral, mask_.substr(at_++, 1), false, 0};
      case '"': {
        const std::size_t end = mask_.find('"', at_);
        const std::string_view text = mask_.substr(at_, end == npos ? npos : end - at_);
        at_ = end == npos ? mask_.size() : end + 1;
        return {Kind::kLiteral, text, false, 0};
      }
      default:
        return {Kind::kLiteral, mask_.substr(begin, 1), false, 0};
    }
  }

  /// Moves behind the next section mark and returns the section before it.
  std::string_view nextSection() {
    const std::size_t begin = at_;
    while (at_ < mask_.size() && mask_[at_] != ';') next();
    const std::string_view section = mask_.substr(begin, at_ - begin);
    if (at_ < mask_.size()) ++at_;
    return section;
  }

 private:
  static constexpr std::size_t npos = std::string_view::npos;

  bool isPlace(std::size_t i) const {
    return i < mask_.size() && (mask_[i] == '0' || mask_[i] == '#');
  }

  Token exponent(std::size_t begin) {
    const char sign = at_ < mask_.size() ? mask_[at_] : '\0';
    if ((sign != '+' && sign != '-') || !isPlace(at_ + 1)) {
      return {Kind::kLiteral, mask_.substr(begin, 1), false, 0};
    }
    Token token{Kind::kExponent, mask_.substr(begin, 1), sign == '+', 0};
    for (++at_; isPlace(at_); ++at_) token.places += mask_[at_] == '0' ? 1 : 0;
    return token;
  }

  std::string_view mask_;
  std::size_t at_ = 0;
};

/// What must be known of a section before its first character is written.
struct Layout {
  int integerPlaces = 0;
  int leastIntegers = 0;  ///< digits written even when they are leading zeros
  int decimals = 0;
  int leastDecimals = 0;
  int shift = 0;  ///< powers of ten from percent signs and scaling commas
  bool grouping = false;
  bool hasPoint = false;
  bool hasExponent = false;
};

Layout layoutOf(std::string_view section) {
  Layout layout;
  int commas = 0;
  const auto endOfIntegers = [&] {
    layout.shift -= 3 * commas;
    commas = 0;
  };
  Scanner scanner(section);
  for (Token token = scanner.next(); token.kind != Kind::kEnd; token = scanner.next()) {
    switch (token.kind) {
      case Kind::kZero:
      case Kind::kOptional:
        if (layout.hasPoint) {
          ++layout.decimals;
          if (token.kind == Kind::kZero) layout.leastDecimals = layout.decimals;
          break;
        }
        if (commas > 0) layout.grouping = true;
        commas = 0;
        ++layout.integerPlaces;
        if (token.kind == Kind::kZero || layout.leastIntegers > 0) ++layout.leastIntegers;
        break;
      case Kind::kComma:
        if (layout.integerPlaces > 0 && !layout.hasPoint) ++commas;
        break;
      case Kind::kPoint:
        endOfIntegers();
        layout.hasPoint = true;
        break;
      case Kind::kPercent:
        layout.shift += 2;
        break;
      case Kind::kExponent:
        layout.hasExponent = true;
        break;
      default:
        break;
    }
  }
  endOfIntegers();
  return layout;
}

/// Writes one section. The number comes without its sign.
class SectionWriter {
 public:
  SectionWriter(std::string_view section, const Locale& locale)
      : section_(section), layout_(layoutOf(section)), locale_(locale) {}

  /// The number as the section shows it: scaled and rounded.
  DecimalDigits shown(DecimalDigits number) {
    exponent_ = 0;
    if (number.isZero()) return number;
    number.point += layout_.shift;
    if (layout_.hasExponent) {
      exponent_ = number.point - layout_.integerPlaces;
      number.point = layout_.integerPlaces;
    }
    roundDigits(number, layout_.decimals, Halves::kAwayFromZero);
    if (layout_.hasExponent && number.point > layout_.integerPlaces) {  // 9.99 became 10.0
      --number.point;
      ++exponent_;
    }
    return number;
  }

  void write(std::string& out, const DecimalDigits& number) {
    const int have = number.point > 0 ? number.point : 0;
    const int total = have > layout_.leastIntegers ? have : layout_.leastIntegers;
    const int decimals =
        number.decimals() > layout_.leastDecimals ? number.decimals() : layout_.leastDecimals;
    int integersLeft = layout_.integerPlaces;
    int decimalsDone = 0;
    bool pointDone = false;
    Scanner scanner(section_);
    for (Token token = scanner.next(); token.kind != Kind::kEnd; token = scanner.next()) {
      switch (token.kind) {
        case Kind::kZero:
        case Kind::kOptional:
          if (pointDone) {
            if (++decimalsDone <= decimals) out += number.at(-decimalsDone);
            break;
          }
          // The first place also takes the digits that no place was left for.
          if (integersLeft == layout_.integerPlaces) {
            for (int place = total - 1; place >= integersLeft; --place) digit(out, number, place);
          }
          --integersLeft;
          if (integersLeft < total) digit(out, number, integersLeft);
          break;
        case Kind::kPoint:
          if (pointDone) {
            out += token.text;
            break;
          }
          if (layout_.integerPlaces == 0) {
            for (int place = total - 1; place >= 0; --place) digit(out, number, place);
          }
          out += locale_.decimal;
          pointDone = true;
          break;
        case Kind::kExponent:
          writeExponent(out, token);
          break;
        case Kind::kPercent:
        case Kind::kLiteral:
          out += token.text;
          break;
        default:
          break;
      }
    }
  }

 private:
  void digit(std::string& out, const DecimalDigits& number, int place) const {
    out += number.at(place);
    if (layout_.grouping && place > 0 && place % 3 == 0) out += locale_.thousands;
  }

  void writeExponent(std::string& out, const Token& token) const {
    out += token.text;
    if (exponent_ < 0) {
      out += '-';
    } else if (token.plus) {
      out += '+';
    }
    const std::string digits = std::to_string(std::abs(exponent_));
    const auto places = static_cast<std::size_t>(token.places);
    if (digits.size() < places) out.append(places - digits.size(), '0');
    out += digits;
  }

  std::string_view section_;
  Layout layout_;
  const Locale& locale_;
  int exponent_ = 0;
};

struct Sections {
  std::array<std::string_view, 4> text;
};

Sections sectionsOf(std::string_view mask) {
  Sections sections;
  Scanner scanner(mask);
  for (std::string_view& section : sections.text) section = scanner.nextSection();
  return sections;
}

}  // namespace

std::string formatNumber(const DecimalDigits& number, std::string_view mask, const Locale& locale) {
  const Sections sections = sectionsOf(mask);
  std::string_view section = sections.text[0];
  bool needsSign = number.negative;
  if (number.negative && !sections.text[1].empty()) {
    section = sections.text[1];
    needsSign = false;
  } else if (number.isZero() && !sections.text[2].empty()) {
    section = sections.text[2];
  }
  SectionWriter writer(section, locale);
  const DecimalDigits shown = writer.shown(number);
  std::string out;
  if (needsSign && !shown.isZero()) out += '-';
  writer.write(out, shown);
  return out;
}

int roundedDecimals(std::string_view mask) {
  constexpr int kMore = -1;
  if (mask.find_first_not_of("#0,.") != std::string_view::npos) return kMore;
  if (mask.find('.') != mask.rfind('.')) return kMore;
  const Layout layout = layoutOf(mask);
  return layout.shift == 0 && layout.leastIntegers > 0 ? layout.decimals : kMore;
}

std::string formatNullSection(std::string_view mask, const Locale& locale) {
  std::string out;
  SectionWriter(sectionsOf(mask).text[3], locale).write(out, {});
  return out;
}

}  // namespace tavelor
