// SPDX-License-Identifier: MIT
// Text to tokens, literals lifted out, every value from outside held inside one literal.
#include "tavelor/services/dialect/lexer.hpp"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/utf8.hpp"
#include "tavelor/services/dialect/literal_value.hpp"
#include "tavelor/services/dialect/reserved_words.hpp"

namespace tavelor::dialect {

namespace {

enum class CharClass : std::uint8_t { kOther, kBlank, kDigit, kLetter };

/// Every byte of a character beyond ASCII counts as a letter, so names may bear accents.
constexpr std::array<CharClass, 256> makeCharClasses() {
  std::array<CharClass, 256> classes{};
  for (std::size_t c = 0; c < 256; ++c) {
    if (c == ' ' || (c >= '\t' && c <= '\r')) classes[c] = CharClass::kBlank;
    if (c >= '0' && c <= '9') classes[c] = CharClass::kDigit;
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c >= 0x80) {
      classes[c] = CharClass::kLetter;
    }
  }
  return classes;
}
constexpr std::array<CharClass, 256> kCharClasses = makeCharClasses();

CharClass classOf(char c) {
  return kCharClasses[static_cast<unsigned char>(c)];
}
bool isBlank(char c) {
  return classOf(c) == CharClass::kBlank;
}
bool isDigit(char c) {
  return classOf(c) == CharClass::kDigit;
}
bool isNameCharacter(char c) {
  return classOf(c) >= CharClass::kDigit;
}

enum class Lifting : std::uint8_t { kOn, kOff };

class Lexer {
 public:
  Lexer(Statement::Joined statement, Lifting lifting)
      : ranges_(std::move(statement.ranges)), lifting_(lifting) {
    list_.text = std::move(statement.text);
    text_ = list_.text;
    list_.tokens.reserve(text_.size() / 4 + 2);
    list_.values.reserve(ranges_.size());
    list_.literals.reserve(ranges_.size() + 4);
  }

  TokenList run() {
    checkBytes();
    while (skipBlanks(), position_ < text_.size() || atValue()) {
      if (atValue()) {
        lexBareValue();
      } else {
        lexTrusted();
      }
    }
    Token end;
    end.begin = end.end = size32();
    list_.tokens.push_back(end);
    return std::move(list_);
  }

 private:
  std::uint32_t size32() const { return static_cast<std::uint32_t>(text_.size()); }
  bool atValue() const {
    return nextRange_ < ranges_.size() && ranges_[nextRange_].begin == position_;
  }
  /// Where the next value begins: no trusted token reaches over it.
  std::size_t limit() const {
    return nextRange_ < ranges_.size() ? ranges_[nextRange_].begin : text_.size();
  }
  char charAt(std::size_t position) const {
    return position < text_.size() ? text_[position] : '\0';
  }

  [[noreturn]] void fail(std::size_t offset, const std::string& complaint) const {
    raiseSyntax(text_, offset, complaint);
  }
  std::string_view valueText(const Statement::Range& range) const {
    return text_.substr(range.begin, range.end - range.begin);
  }
  std::string nameOf(const Statement::Range& range) const {
    return "the value at " + placeText(text_, range.begin);
  }
  [[noreturn]] void failValue(const Statement::Range& range, std::string_view complaint) const {
    std::string text = nameOf(range);
    text.append(" ").append(complaint).append(": ");
    constexpr std::size_t kShown = 60;
    const std::string_view value = valueText(range);
    text.append(text::left(value, kShown));
    if (text::length(value) > kShown) text.append("...");
    fail(range.begin, text);
  }

  void checkBytes() const {
    if (const std::size_t nul = text_.find('\0'); nul != std::string_view::npos) {
      fail(nul, "a NUL byte at " + placeText(text_, nul));
    }
    if (utf8::isAscii(text_)) return;
    for (const Statement::Range& range : ranges_) {
      if (!text::isValidUtf8(valueText(range))) {
        fail(range.begin, nameOf(range) + " is no valid UTF-8");
      }
    }
    if (!text::isValidUtf8(text_)) fail(0, "the text is no valid UTF-8");
  }

  void skipBlanks() {
    const std::size_t stop = limit();
    while (position_ < stop) {
      if (isBlank(text_[position_])) {
        ++position_;
      } else if (lifting_ == Lifting::kOff && text_.compare(position_, 2, "--") == 0) {
        position_ = std::min(text_.find('\n', position_), text_.size());
      } else {
        return;
      }
    }
  }

  void push(Token token, std::size_t begin, std::size_t end) {
    token.begin = static_cast<std::uint32_t>(begin);
    token.end = static_cast<std::uint32_t>(end);
    list_.tokens.push_back(token);
    position_ = end;
  }

  void lexTrusted() {
    const char c = text_[position_];
    switch (classOf(c)) {
      case CharClass::kLetter:
        return lexWord(position_, limit());
      case CharClass::kDigit:
        return lexNumber();
      default:
        break;
    }
    switch (c) {
      case '\'':
      case '"':
        return lexText(position_, c);
      case '#':
        return lexDate();
      case '[':
        return lexBracketed(']');
      case '`':
        return lexBracketed('`');
      case '.':
        if (isDigit(charAt(position_ + 1))) return lexNumber();
        return lexSymbol();
      default:
        return lexSymbol();
    }
  }

  void lexWord(std::size_t begin, std::size_t stop) {
    std::size_t end = begin + 1;
    while (end < stop && isNameCharacter(text_[end])) ++end;
    Token token;
    token.kind = TokenKind::kWord;
    token.word = reservedWord(text_.substr(begin, end - begin));
    push(token, begin, end);
    followClause(token.word);
  }

  /// Keeps track of the clauses in which literals are not lifted.
  void followClause(Word word) {
    if (word == Word::kBy && fixedDepth_ < 0) {
      const std::size_t count = list_.tokens.size();
      const Word before = count < 2 ? Word::kNone : list_.tokens[count - 2].word;
      if (before == Word::kOrder || before == Word::kGroup) fixedDepth_ = depth_;
    } else if (depth_ == fixedDepth_ && (word == Word::kHaving || word == Word::kUnion)) {
      fixedDepth_ = -1;
    }
  }

  bool lifts() const {
    if (lifting_ == Lifting::kOff || fixedDepth_ >= 0) return false;
    return list_.tokens.empty() || list_.tokens.back().word != Word::kTop;
  }

  /// Adds a literal; `content` is its text without delimiters.
  template <typename Content>
  void pushLiteral(LiteralKind kind, std::size_t begin, std::size_t end, Content content) {
    Token token;
    token.kind = TokenKind::kLiteral;
    token.literalKind = kind;
    if (lifts()) {
      token.literal = static_cast<std::int32_t>(list_.literals.size());
      list_.literals.push_back(content());
    }
    push(token, begin, end);
  }

  struct Number {
    std::size_t end;
    LiteralKind kind;
  };
  /// Digits end at the first letter ("0and" is 0 and then a word), an exponent excepted.
  Number scanNumber(std::size_t begin, std::size_t stop) const {
    Number number{begin, LiteralKind::kWhole};
    const auto skipDigits = [&] {
      while (number.end < stop && isDigit(text_[number.end])) ++number.end;
    };
    skipDigits();
    if (number.end < stop && text_[number.end] == '.') {
      number.kind = LiteralKind::kDecimal;
      ++number.end;
      skipDigits();
    }
    if (number.end < stop && (text_[number.end] == 'e' || text_[number.end] == 'E')) {
      std::size_t digits = number.end + 1;
      if (digits < stop && (text_[digits] == '+' || text_[digits] == '-')) ++digits;
      if (digits < stop && isDigit(text_[digits])) {
        number = {digits, LiteralKind::kDecimal};
        skipDigits();
      }
    }
    return number;
  }

  /// True where no operand stands before, so that a sign can't be an operator between two.
  bool wantsOperand() const {
    if (list_.tokens.empty()) return true;
    const Token& before = list_.tokens.back();
    if (before.kind == TokenKind::kSymbol) return before.symbol != Symbol::kRightParen;
    const bool constant =
        before.word == Word::kNull || before.word == Word::kTrue || before.word == Word::kFalse;
    return before.word != Word::kNone && !constant;
  }

  /// &H1A and &O17 where an operand is wanted, and so no & that joins one with a name.
  bool lexRadix() {
    if (lifting_ == Lifting::kOff || !wantsOperand()) return false;
    const auto radix = readRadix(text_.substr(position_, limit() - position_));
    if (!radix || isNameCharacter(charAt(position_ + radix->length))) return false;
    const std::string_view text = text_.substr(position_, radix->length);
    pushLiteral(LiteralKind::kWhole, position_, position_ + radix->length,
                [&] { return std::string(text); });
    return true;
  }

  /// A minus that no operand precedes belongs to the number behind it, so that -3 in the text of a
  /// statement and a value of -3 are the same; but -2^2 is the minus of a power.
  bool startsSignedNumber() const {
    if (!isDigit(charAt(position_ + 1)) || position_ + 1 >= limit()) return false;
    if (!wantsOperand()) return false;
    std::size_t next = scanNumber(position_ + 1, limit()).end;
    while (isBlank(charAt(next))) ++next;
    return charAt(next) != '^';
  }

  void lexNumber() {
    const std::size_t digits = position_ + (text_[position_] == '-' ? 1 : 0);
    const Number number = scanNumber(digits, limit());
    pushNumber(number, position_);
  }

  /// A number with its sign.
  void pushNumber(Number number, std::size_t begin) {
    const std::string_view text = text_.substr(begin, number.end - begin);
    constexpr std::size_t kSurelyLong = 9;
    if (number.kind == LiteralKind::kWhole && text.size() > kSurelyLong) {
      LiteralValue read;
      if (!readPlain(text, '.', read) || read.kind != LiteralKind::kWhole) {
        number.kind = LiteralKind::kDecimal;
      }
    }
    pushLiteral(number.kind, begin, number.end, [&] { return std::string(text); });
  }

  void lexText(std::size_t begin, char quote) {
    const std::size_t firstRange = nextRange_;
    const std::size_t end = scanText(begin, quote);
    noteValues(firstRange, quote);
    pushText(begin, end);
  }

  void pushText(std::size_t begin, std::size_t end) {
    pushLiteral(LiteralKind::kText, begin, end,
                [&] { return unquoted(text_.substr(begin, end - begin)); });
  }

  /// The end of the literal that begins at `begin`; moves past the values inside.
  std::size_t scanText(std::size_t begin, char quote) {
    std::size_t at = begin + 1;
    while (true) {
      const std::size_t found = std::min(text_.find(quote, at), text_.size());
      while (nextRange_ < ranges_.size() && ranges_[nextRange_].end <= found) ++nextRange_;
      const bool inValue = nextRange_ < ranges_.size() && ranges_[nextRange_].begin <= found &&
                           found < ranges_[nextRange_].end;
      if (found == text_.size()) {
        fail(begin, "the text that begins at " + placeText(text_, begin) + " is never closed");
      }
      const bool doubled = charAt(found + 1) == quote;
      if (inValue) {
        const Statement::Range& range = ranges_[nextRange_];
        if (!doubled || found + 1 >= range.end) failValue(range, "ends its quotation");
      } else if (!doubled || startsValue(found + 1)) {
        return found + 1;
      }
      at = found + 2;
    }
  }

  bool startsValue(std::size_t position) const {
    std::size_t next = nextRange_;
    while (next < ranges_.size() && ranges_[next].begin < position) ++next;
    return next < ranges_.size() && ranges_[next].begin == position && ranges_[next].end > position;
  }

  /// Values from `first` on lie in the literal that is about to be added.
  void noteValues(std::size_t first, char quote) {
    ValuePlace place;
    place.token = static_cast<std::uint32_t>(list_.tokens.size());
    place.quote = quote;
    if (lifts()) place.literal = static_cast<std::int32_t>(list_.literals.size());
    for (std::size_t i = first; i < nextRange_; ++i) {
      place.begin = ranges_[i].begin;
      place.end = ranges_[i].end;
      list_.values.push_back(place);
    }
  }

  void lexDate() {
    const std::size_t begin = position_;
    const std::size_t firstRange = nextRange_;
    const std::size_t close = text_.find('#', begin + 1);
    if (close == std::string_view::npos) {
      fail(begin, "the date that begins at " + placeText(text_, begin) + " is never closed");
    }
    for (; nextRange_ < ranges_.size() && ranges_[nextRange_].begin <= close; ++nextRange_) {
      if (ranges_[nextRange_].end > close) failValue(ranges_[nextRange_], "leaves its date");
    }
    noteValues(firstRange, '#');
    pushDate(begin, close + 1);
  }

  void pushDate(std::size_t begin, std::size_t end) {
    const std::string_view content = text_.substr(begin + 1, end - begin - 2);
    if (!parseSqlDate(content)) {
      fail(begin, "no date at " + placeText(text_, begin) + ": #" +
                      std::string(text::left(content, 40)) + "#");
    }
    pushLiteral(LiteralKind::kDate, begin, end, [&] { return std::string(content); });
  }

  void lexBracketed(char close) {
    const std::size_t end = text_.find(close, position_ + 1);
    if (end == std::string_view::npos) {
      fail(position_,
           "the name that begins at " + placeText(text_, position_) + " is never closed");
    }
    if (nextRange_ < ranges_.size() && ranges_[nextRange_].begin <= end) {
      failValue(ranges_[nextRange_], "stands in a name");
    }
    if (end == position_ + 1) fail(position_, "an empty name at " + placeText(text_, position_));
    Token token;
    token.kind = TokenKind::kBracketed;
    push(token, position_, end + 1);
  }

  /// A value outside of quotes: one number, one whole literal, or True or False.
  void lexBareValue() {
    const Statement::Range range = ranges_[nextRange_++];
    std::size_t begin = range.begin;
    std::size_t end = range.end;
    while (begin < end && isBlank(text_[begin])) ++begin;
    while (begin < end && isBlank(text_[end - 1])) --end;
    if (begin == end) fail(range.begin, nameOf(range) + " is empty where a number is expected");
    checkNeighbours(range);
    ValuePlace place;
    place.begin = range.begin;
    place.end = range.end;
    place.token = static_cast<std::uint32_t>(list_.tokens.size());
    const bool lifted = lifts();
    if (lifted) place.literal = static_cast<std::int32_t>(list_.literals.size());

    const char first = text_[begin];
    if (first == '#' || first == '\'' || first == '"') {
      place.quote = first;
      place.delimited = true;
      lexDelimitedValue(range, begin, end);
    } else if (classOf(first) == CharClass::kLetter) {
      lexWord(begin, end);
      const Word word = list_.tokens.back().word;
      if (position_ != end || (word != Word::kTrue && word != Word::kFalse)) {
        failValue(range, "is no number");
      }
      place.literal = -1;
    } else {
      const bool sign = first == '-' || first == '+';
      const Number number = scanNumber(begin + (sign ? 1 : 0), end);
      const bool anyDigit = std::any_of(text_.begin() + static_cast<std::ptrdiff_t>(begin),
                                        text_.begin() + static_cast<std::ptrdiff_t>(end), isDigit);
      if (number.end != end || !anyDigit) failValue(range, "is no number");
      pushNumber(number, begin);
    }
    list_.values.push_back(place);
    position_ = range.end;
  }

  void lexDelimitedValue(const Statement::Range& range, std::size_t begin, std::size_t end) {
    const char quote = text_[begin];
    const std::size_t last = end - 1;
    if (last == begin || text_[last] != quote) failValue(range, "is not closed");
    for (std::size_t at = begin + 1; at < last; ++at) {
      if (text_[at] != quote) continue;
      if (quote == '#' || at + 1 >= last || text_[at + 1] != quote) {
        failValue(range, "ends its quotation");
      }
      ++at;
    }
    if (quote == '#') {
      pushDate(begin, end);
    } else {
      pushText(begin, end);
    }
  }

  void checkNeighbours(const Statement::Range& range) const {
    if (range.begin > 0) {
      const char before = text_[range.begin - 1];
      if (isNameCharacter(before) || before == '.' || before == '\'' || before == '"' ||
          before == '#' || before == ']') {
        failValue(range, "touches what stands before it");
      }
    }
    const char after = charAt(range.end);
    if (isDigit(after) || after == '.' || after == '\'' || after == '"' || after == '#' ||
        (nextRange_ < ranges_.size() && ranges_[nextRange_].begin == range.end)) {
      failValue(range, "touches what stands behind it");
    }
  }

  void lexSymbol() {
    const char second = position_ + 1 < limit() ? charAt(position_ + 1) : '\0';
    Token token;
    token.kind = TokenKind::kSymbol;
    std::size_t length = 1;
    switch (text_[position_]) {
      case '&':
        if (lexRadix()) return;
        token.symbol = Symbol::kAmpersand;
        break;
      case '\\':
        token.symbol = Symbol::kBackslash;
        break;
      case '^':
        token.symbol = Symbol::kCaret;
        break;
      case ',':
        token.symbol = Symbol::kComma;
        break;
      case '.':
      case '!':
        token.symbol = Symbol::kDot;
        break;
      case '=':
        token.symbol = Symbol::kEqual;
        break;
      case '-':
        if (startsSignedNumber()) return lexNumber();
        token.symbol = Symbol::kMinus;
        break;
      case '+':
        token.symbol = Symbol::kPlus;
        break;
      case '*':
        token.symbol = Symbol::kStar;
        break;
      case '/':
        token.symbol = Symbol::kSlash;
        break;
      case ';':
        token.symbol = Symbol::kSemicolon;
        break;
      case '<':
        token.symbol = second == '='   ? Symbol::kLessEqual
                       : second == '>' ? Symbol::kNotEqual
                                       : Symbol::kLess;
        length = token.symbol == Symbol::kLess ? 1 : 2;
        break;
      case '>':
        token.symbol = second == '=' ? Symbol::kGreaterEqual : Symbol::kGreater;
        length = token.symbol == Symbol::kGreater ? 1 : 2;
        break;
      case '(':
        token.symbol = Symbol::kLeftParen;
        ++depth_;
        break;
      case ')':
        token.symbol = Symbol::kRightParen;
        if (depth_-- == fixedDepth_) fixedDepth_ = -1;
        break;
      default:
        fail(position_, "a character without meaning at " + placeText(text_, position_) + ": " +
                            std::string(text::left(text_.substr(position_), 1)));
    }
    push(token, position_, position_ + length);
  }

  TokenList list_;
  std::string_view text_;
  std::vector<Statement::Range> ranges_;
  Lifting lifting_;
  std::size_t position_ = 0;
  std::size_t nextRange_ = 0;
  int depth_ = 0;
  int fixedDepth_ = -1;  ///< depth of the ORDER BY or GROUP BY that keeps its literals, or -1
};

}  // namespace

TokenList lex(const Statement& statement) {
  return Lexer(statement.joined(), Lifting::kOn).run();
}

TokenList lexSchema(std::string_view ddl) {
  return Lexer({std::string(ddl), {}}, Lifting::kOff).run();
}

std::string unquoted(std::string_view literal) {
  const char quote = literal.front();
  const std::string_view content = literal.substr(1, literal.size() - 2);
  if (quote == '#' || content.find(quote) == std::string_view::npos) return std::string(content);
  std::string text;
  text.reserve(content.size());
  for (std::size_t i = 0; i < content.size(); ++i) {
    text.push_back(content[i]);
    if (content[i] == quote) ++i;
  }
  return text;
}

std::string placeText(std::string_view statement, std::size_t offset) {
  const TextPlace place = placeOf(statement, static_cast<std::int64_t>(offset));
  std::string text;
  if (place.line > 1) text = "line " + std::to_string(place.line) + ", ";
  return text + "column " + std::to_string(place.column);
}

namespace {

/// Whether a quote inside a text that nobody doubled may be the fault at `offset`: a value with a
/// quote begins there, a text that is never closed, or a word right behind a text.
bool mayBeOfAQuote(std::string_view statement, std::size_t offset) {
  if (offset >= statement.size() || !text::isValidUtf8(statement)) return false;
  const bool inText = offset > 0 && statement[offset - 1] == '\'';
  return inText || statement[offset] == '\'';
}

}  // namespace

void raiseSyntax(std::string_view statement, std::size_t offset, std::string_view complaint) {
  std::string description = "Syntax error in statement: ";
  description += complaint;
  Error error(errors::kSyntax, "Statement", std::move(description));
  error.inStatement(statement, static_cast<std::int64_t>(offset));
  if (mayBeOfAQuote(statement, offset)) error.noting(kQuotesAreDoubled);
  throw error;
}

}  // namespace tavelor::dialect
