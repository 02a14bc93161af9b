// SPDX-License-Identifier: MIT
// The Like operator of statements and filters.
#include "tavelor/platform/like.hpp"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/utf8.hpp"

namespace tavelor {

namespace {

/// A run of literal characters, or one character of a kind.
struct Element {
  enum class Kind { kLiteral, kAnyCharacter, kDigit, kClass };
  struct Range {
    char32_t first;
    char32_t last;
  };

  Kind kind = Kind::kLiteral;
  bool negated = false;
  std::string literal;        ///< folded
  std::vector<Range> ranges;  ///< folded

  bool contains(char32_t folded) const {
    for (const Range& range : ranges) {
      if (folded >= range.first && folded <= range.last) return !negated;
    }
    return negated;
  }

  bool takes(char32_t code) const {
    switch (kind) {
      case Kind::kAnyCharacter:
        return true;
      case Kind::kDigit:
        return code >= U'0' && code <= U'9';
      default:
        return contains(utf8::fold(code));
    }
  }
};

/// What stands between two runs: a fixed count of characters.
struct Segment {
  std::vector<Element> elements;
  std::size_t length = 0;
};

constexpr auto kNoMatch = std::string_view::npos;

/// The end of `literal` in `text` from `at`, without regard to case.
std::size_t matchLiteral(std::string_view text, std::size_t at, std::string_view literal) {
  std::size_t i = 0;
  while (i < literal.size()) {
    if (i + 8 <= literal.size() && at + 8 <= text.size()) {
      const Word64 wanted = loadWord(literal.data() + i);
      const Word64 found = loadWord(text.data() + at);
      if (((wanted | found) & utf8::kHighBits) == 0) {
        if (utf8::foldAsciiWord(found) != wanted) return kNoMatch;
        i += 8;
        at += 8;
        continue;
      }
    }
    if (at >= text.size()) return kNoMatch;
    if (utf8::isAscii(text[at]) && utf8::isAscii(literal[i])) {
      if (utf8::foldAscii(text[at]) != literal[i]) return kNoMatch;
      ++at;
      ++i;
      continue;
    }
    const utf8::Character wanted = utf8::decode(literal, i);
    const utf8::Character found = utf8::decode(text, at);
    if (utf8::fold(found.code) != wanted.code) return kNoMatch;
    i += wanted.size;
    at += found.size;
  }
  return at;
}

std::size_t matchSegment(std::string_view text, std::size_t at, const Segment& segment) {
  for (const Element& element : segment.elements) {
    if (element.kind == Element::Kind::kLiteral) {
      at = matchLiteral(text, at, element.literal);
      if (at == kNoMatch) return kNoMatch;
      continue;
    }
    if (at >= text.size()) return kNoMatch;
    const utf8::Character character = utf8::decode(text, at);
    if (!element.takes(character.code)) return kNoMatch;
    at += character.size;
  }
  return at;
}

/// The ASCII byte that a match begins with, or 0 when there is no single one.
char leadingByte(const Segment& segment) {
  if (segment.elements.empty()) return '\0';
  const Element& element = segment.elements.front();
  if (element.kind != Element::Kind::kLiteral || !utf8::isAscii(element.literal[0])) return '\0';
  return element.literal[0];
}

/// The end of the first match at or behind `at`.
std::size_t findSegment(std::string_view text, std::size_t at, const Segment& segment) {
  const char first = leadingByte(segment);
  for (;;) {
    if (first != '\0') {
      // A letter that is not ASCII may still fold to one that is, so only ASCII is skipped.
      while (at < text.size() && utf8::isAscii(text[at]) && utf8::foldAscii(text[at]) != first)
        ++at;
    }
    const std::size_t end = matchSegment(text, at, segment);
    if (end != kNoMatch) return end;
    if (at >= text.size()) return kNoMatch;
    at += utf8::decode(text, at).size;
  }
}

class Compiler {
 public:
  explicit Compiler(std::string_view pattern) : pattern_(pattern) {}

  std::vector<Segment> compile() {
    while (at_ < pattern_.size()) {
      switch (pattern_[at_]) {
        case '*':
        case '%':
          ++at_;
          segments_.emplace_back();
          break;
        case '?':
        case '_':
          ++at_;
          single(Element::Kind::kAnyCharacter);
          break;
        case '#':
          ++at_;
          single(Element::Kind::kDigit);
          break;
        case '[':
          ++at_;
          readClass();
          break;
        default:
          literal(next());
      }
    }
    return std::move(segments_);
  }

 private:
  Segment& segment() { return segments_.back(); }

  /// The next character, folded.
  char32_t next() {
    const utf8::Character character = utf8::decode(pattern_, at_);
    at_ += character.size;
    return utf8::fold(character.code);
  }

  Element& single(Element::Kind kind) {
    ++segment().length;
    Element& element = segment().elements.emplace_back();
    element.kind = kind;
    return element;
  }

  void literal(char32_t folded) {
    auto& elements = segment().elements;
    if (elements.empty() || elements.back().kind != Element::Kind::kLiteral) {
      elements.emplace_back();
    }
    utf8::append(elements.back().literal, folded);
    ++segment().length;
  }

  [[noreturn]] void fail(std::string_view detail) const {
    raise(errors::kInvalidPattern, "Like", detail);
  }

  bool at(char c) const { return at_ < pattern_.size() && pattern_[at_] == c; }

  /// Behind the bracket. "[]" is nothing, "[!]" the mark itself, a hyphen at an end is a hyphen.
  void readClass() {
    bool negated = false;
    if (at('!') && pattern_.substr(at_, 2) != "!]") {
      negated = true;
      ++at_;
    }
    std::vector<Element::Range> ranges;
    while (!at(']')) {
      if (at_ >= pattern_.size()) fail("A [ is never closed.");
      Element::Range range{};
      range.first = range.last = next();
      if (at('-') && at_ + 1 < pattern_.size() && pattern_[at_ + 1] != ']') {
        ++at_;
        range.last = next();
        if (range.last < range.first) fail("A range of characters falls.");
      }
      ranges.push_back(range);
    }
    ++at_;
    if (ranges.empty()) return;
    if (!negated && ranges.size() == 1 && ranges[0].first == ranges[0].last) {
      literal(ranges[0].first);
      return;
    }
    Element& element = single(Element::Kind::kClass);
    element.negated = negated;
    element.ranges = std::move(ranges);
  }

  std::string_view pattern_;
  std::size_t at_ = 0;
  std::vector<Segment> segments_ = std::vector<Segment>(1);
};

}  // namespace

/// The pattern cut at its runs. The first segment stands at the beginning, the last at the end, and
/// those between are taken as early as they come, which leaves most room to the rest: no
/// combination is ever tried twice.
struct LikePattern::Program {
  std::vector<Segment> segments;
};

LikePattern::LikePattern(std::string_view pattern)
    : program_(std::make_unique<const Program>(Program{Compiler(pattern).compile()})) {}
LikePattern::~LikePattern() = default;
LikePattern::LikePattern(LikePattern&&) noexcept = default;
LikePattern& LikePattern::operator=(LikePattern&&) noexcept = default;

bool LikePattern::matches(std::string_view text) const {
  const std::vector<Segment>& segments = program_->segments;
  std::size_t at = matchSegment(text, 0, segments.front());
  if (at == kNoMatch) return false;
  if (segments.size() == 1) return at == text.size();
  for (std::size_t i = 1; i + 1 < segments.size(); ++i) {
    at = findSegment(text, at, segments[i]);
    if (at == kNoMatch) return false;
  }
  const Segment& last = segments.back();
  std::size_t begin = text.size();
  for (std::size_t left = last.length; left > 0; --left) {
    if (begin <= at) return false;
    begin -= utf8::sizeBefore(text, begin);
  }
  return begin >= at && matchSegment(text, begin, last) == text.size();
}

}  // namespace tavelor
