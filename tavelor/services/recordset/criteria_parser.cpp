// SPDX-License-Identifier: MIT
// Reading of criteria.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/criteria.hpp"

namespace tavelor::criteria {

namespace {

using dialect::OutputColumn;
using engine::ColumnType;

constexpr std::string_view kSource = "Recordset.Filter";
// Deeper nesting than any form composes; keeps hostile texts off the stack.
constexpr int kMaxDepth = 200;

enum class LiteralKind : std::uint8_t { kText, kHash, kNumber, kBoolean, kNull };

struct Literal {
  LiteralKind kind = LiteralKind::kText;
  std::string text;
  double number = 0;  // of a number; -1 or 0 of a boolean
  std::size_t at = 0;
};

/// A clause, or several nodes joined by AND or by OR.
struct Node {
  enum class Kind : std::uint8_t { kClause, kAnd, kOr };
  Kind kind = Kind::kClause;
  Clause clause;
  std::vector<Node> parts;
};

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool isDelimiter(char c) {
  return isBlank(c) || c == '(' || c == ')' || c == '<' || c == '>' || c == '=' || c == '\'' ||
         c == '#' || c == '[' || c == ']';
}

/// `*` and `%` keep their meaning, the other signs of a pattern become plain characters.
std::string patternOf(std::string_view text) {
  std::string pattern;
  for (const char c : text) {
    const bool special = c == '?' || c == '_' || c == '#' || c == '[';
    if (special) pattern += '[';
    pattern += c;
    if (special) pattern += ']';
  }
  return pattern;
}

/// A value that meets a field: makes the clause's test.
class Typing {
 public:
  Typing(const OutputColumn& column, const Locale& locale) : column_(column), locale_(locale) {}

  void apply(Clause& clause, const Literal& literal) const {
    const bool holdsText = engine::isText(column_.type) || column_.type == ColumnType::kBinary;
    if (!holdsText && isNothing(literal)) {
      clause.test = Test::kNothing;
      return;
    }
    switch (column_.type) {
      case ColumnType::kText:
      case ColumnType::kMemo:
        return text(clause, literal);
      case ColumnType::kBoolean:
        return flag(clause, literal);
      case ColumnType::kDate:
        return date(clause, literal);
      case ColumnType::kBinary:
        return mismatch(literal);
      default:
        return number(clause, literal);
    }
  }

 private:
  /// As in statements: what is no text holds no empty one, and nothing compares with it.
  static bool isNothing(const Literal& literal) {
    return literal.kind == LiteralKind::kText && literal.text.empty();
  }

  [[noreturn]] void mismatch(const Literal& literal) const {
    raise(errors::kCriteriaTypeMismatch, kSource,
          "Field '" + column_.name + "' does not compare with '" + literal.text + "'");
  }

  void text(Clause& clause, const Literal& literal) const {
    if (literal.kind == LiteralKind::kBoolean) mismatch(literal);
    clause.test = Test::kText;
    clause.text = literal.text;
  }

  void flag(Clause& clause, const Literal& literal) const {
    double value = literal.number;
    if (literal.kind == LiteralKind::kText) {
      const Variant word(literal.text);
      try {
        value = word.toBoolean(locale_) ? -1 : 0;
      } catch (const Error&) {
        mismatch(literal);
      }
    } else if (literal.kind == LiteralKind::kHash) {
      mismatch(literal);
    }
    clause.test = Test::kInteger;
    clause.integer = value != 0 ? -1 : 0;  // any number but 0 is true, and true is -1
  }

  void date(Clause& clause, const Literal& literal) const {
    std::optional<Date> value;
    if (literal.kind == LiteralKind::kHash) value = parseSqlDate(literal.text);
    if (literal.kind == LiteralKind::kText) value = parseDate(literal.text, locale_);
    if (literal.kind == LiteralKind::kNumber) value = Date(literal.number);
    if (!value) mismatch(literal);
    clause.test = Test::kReal;
    clause.real = value->days();
  }

  void number(Clause& clause, const Literal& literal) const {
    double value = literal.number;
    if (literal.kind == LiteralKind::kHash) mismatch(literal);
    if (literal.kind == LiteralKind::kText) {
      const std::optional<double> read = parseNumber(literal.text, locale_);
      if (!read) mismatch(literal);
      value = *read;
    }
    if (engine::isWhole(column_.type)) return whole(clause, value);
    if (column_.type == ColumnType::kCurrency) return amount(clause, value);
    clause.test = Test::kReal;
    // A single was stored as the decimal number that it prints as; so must the literal be.
    const bool single = column_.type == ColumnType::kSingle && std::abs(value) < 3.4e38;
    clause.real = single ? widen(static_cast<float>(value)) : value;
  }

  static void whole(Clause& clause, double value) {
    const bool exact = std::abs(value) < 9e15 && std::trunc(value) == value;
    clause.test = exact ? Test::kInteger : Test::kIntegerAsReal;
    clause.integer = exact ? static_cast<std::int64_t>(value) : 0;
    clause.real = value;
  }

  static void amount(Clause& clause, double value) {
    clause.test = Test::kCurrencyAsReal;
    clause.real = value;
    if (std::abs(value) > 9e14) return;
    const Currency rounded = Currency::fromDouble(value);
    if (rounded.toDouble() == value) {
      clause.test = Test::kInteger;
      clause.integer = rounded.scaled();
    }
  }

  const OutputColumn& column_;
  const Locale& locale_;
};

class Parser {
 public:
  Parser(std::string_view text, const RecordsetSchema& schema, const Locale& locale)
      : text_(text), schema_(schema), locale_(locale) {}

  Node criteria() {
    Node node = orChain(0);
    skipBlanks();
    if (at_ < text_.size()) fail("expected AND, OR or the end", at_);
    return node;
  }

  Node single() {
    Node node = clause();
    skipBlanks();
    if (at_ < text_.size()) fail("expected a single comparison", at_);
    return node;
  }

 private:
  [[noreturn]] void fail(std::string_view what, std::size_t at) const {
    const std::size_t character = text::length(text_.substr(0, at)) + 1;
    Error error(errors::kInvalidArgument, std::string(kSource),
                std::string(defaultDescription(errors::kInvalidArgument)) + " " +
                    std::string(what) + " at character " + std::to_string(character) +
                    " of: " + std::string(text_));
    const std::size_t quote = text_.substr(0, std::min(at + 1, text_.size())).rfind('\'');
    if (quote != std::string_view::npos && quote + 1 >= at) error.noting(kQuotesAreDoubled);
    throw error;
  }

  void skipBlanks() {
    while (at_ < text_.size() && isBlank(text_[at_])) ++at_;
  }

  bool take(char c) {
    skipBlanks();
    if (at_ >= text_.size() || text_[at_] != c) return false;
    ++at_;
    return true;
  }

  /// The word at the current place, without taking it.
  std::string_view peekWord() {
    skipBlanks();
    std::size_t end = at_;
    while (end < text_.size() && !isDelimiter(text_[end])) ++end;
    return text_.substr(at_, end - at_);
  }

  bool takeWord(std::string_view word) {
    if (!text::equalsIgnoreCase(peekWord(), word)) return false;
    at_ += word.size();
    return true;
  }

  Node orChain(int depth) {
    Node node = andChain(depth);
    if (!takeWord("OR")) return node;
    Node chain{Node::Kind::kOr, {}, {}};
    chain.parts.push_back(std::move(node));
    do {
      chain.parts.push_back(andChain(depth));
    } while (takeWord("OR"));
    return chain;
  }

  Node andChain(int depth) {
    Node node = primary(depth);
    if (!takeWord("AND")) return node;
    Node chain{Node::Kind::kAnd, {}, {}};
    chain.parts.push_back(std::move(node));
    do {
      chain.parts.push_back(primary(depth));
    } while (takeWord("AND"));
    return chain;
  }

  Node primary(int depth) {
    if (!take('(')) return clause();
    if (depth == kMaxDepth) fail("too many parentheses", at_ - 1);
    Node node = orChain(depth + 1);
    if (!take(')')) fail("expected )", at_);
    return node;
  }

  Node clause() {
    Node node;
    node.clause.column = static_cast<std::uint32_t>(field());
    skipBlanks();
    const std::size_t operatorAt = at_;
    const bool like = takeWord("LIKE");
    if (!like) node.clause.op = comparison();
    finish(node.clause, like, operatorAt, value());
    return node;
  }

  std::size_t field() {
    skipBlanks();
    if (take('[')) {
      const std::size_t end = text_.find(']', at_);
      if (end == std::string_view::npos) fail("expected ]", text_.size());
      const std::string_view name = text_.substr(at_, end - at_);
      at_ = end + 1;
      return schema_.require(name, kSource);
    }
    // A name may have blanks: it reaches to the operator.
    const std::size_t begin = at_;
    std::size_t end = at_;
    for (std::string_view word = peekWord(); !word.empty(); word = peekWord()) {
      if (end > begin && text::equalsIgnoreCase(word, "LIKE")) break;
      at_ += word.size();
      end = at_;
    }
    if (end == begin) fail("expected a field name", begin);
    const std::string_view name = text_.substr(begin, end - begin);
    if (schema_.find(name) < 0) refuseForeignWords(begin, end);
    return schema_.require(name, kSource);
  }

  /// Words that statements have and criteria have not, where they stood in a name: NOT before a
  /// field, these and IN, BETWEEN and IS behind one.
  void refuseForeignWords(std::size_t begin, std::size_t end) {
    for (at_ = begin; at_ < end;) {
      const std::string_view word = peekWord();
      const bool behind = at_ > begin && (text::equalsIgnoreCase(word, "IN") ||
                                          text::equalsIgnoreCase(word, "BETWEEN") ||
                                          text::equalsIgnoreCase(word, "IS"));
      if (behind || text::equalsIgnoreCase(word, "NOT")) {
        fail("criteria have no " + text::upper(word) +
                 "; write comparisons (=, <>, <, <=, >, >=, LIKE) joined by AND and OR,",
             at_);
      }
      at_ += word.size();
    }
  }

  Operator comparison() {
    if (take('=')) return Operator::kEqual;
    if (take('<')) {
      if (at_ < text_.size() && text_[at_] == '>') return ++at_, Operator::kNotEqual;
      if (at_ < text_.size() && text_[at_] == '=') return ++at_, Operator::kLessEqual;
      return Operator::kLess;
    }
    if (take('>')) {
      if (at_ < text_.size() && text_[at_] == '=') return ++at_, Operator::kGreaterEqual;
      return Operator::kGreater;
    }
    fail("expected a comparison (=, <>, <, <=, >, >=, LIKE)", at_);
  }

  Literal value() {
    skipBlanks();
    Literal literal;
    literal.at = at_;
    if (at_ < text_.size() && text_[at_] == '\'') {
      literal.text = quoted();
      return literal;
    }
    if (at_ < text_.size() && text_[at_] == '#') {
      const std::size_t end = text_.find('#', at_ + 1);
      if (end == std::string_view::npos) fail("the # is never closed", at_);
      literal.kind = LiteralKind::kHash;
      literal.text = text_.substr(at_ + 1, end - at_ - 1);
      at_ = end + 1;
      return literal;
    }
    bare(literal);
    return literal;
  }

  std::string quoted() {
    const std::size_t begin = at_;
    std::string result;
    for (++at_; at_ < text_.size(); ++at_) {
      if (text_[at_] == '\'') {
        if (at_ + 1 >= text_.size() || text_[at_ + 1] != '\'') return ++at_, result;
        ++at_;
      }
      result += text_[at_];
    }
    fail("the quotation is never closed", begin);
  }

  void bare(Literal& literal) {
    const std::string_view word = peekWord();
    literal.text = word;
    at_ += word.size();
    if (text::equalsIgnoreCase(word, "Null")) {
      literal.kind = LiteralKind::kNull;
    } else if (const std::optional<bool> flag = truth(word)) {
      literal.kind = LiteralKind::kBoolean;
      literal.number = *flag ? -1 : 0;
    } else if (const std::optional<double> number = numberOf(word)) {
      literal.kind = LiteralKind::kNumber;
      literal.number = *number;
    } else {
      fail("expected a value ('text', #date#, a number with a decimal point, True, False, Null)",
           literal.at);
    }
  }

  std::optional<bool> truth(std::string_view word) const {
    if (text::equalsIgnoreCase(word, "True")) return true;
    if (text::equalsIgnoreCase(word, "False")) return false;
    if (text::equalsIgnoreCase(word, locale_.trueText)) return true;
    if (text::equalsIgnoreCase(word, locale_.falseText)) return false;
    return std::nullopt;
  }

  static std::optional<double> numberOf(std::string_view word) {
    const bool negative = !word.empty() && word.front() == '-';
    if (!word.empty() && (word.front() == '-' || word.front() == '+')) word.remove_prefix(1);
    if (!word.empty() && word.front() == '$') word.remove_prefix(1);
    const bool starts = !word.empty() && ((word.front() >= '0' && word.front() <= '9') ||
                                          (word.front() == '.' && word.size() > 1));
    if (!starts) return std::nullopt;
    double value = 0;
    const auto read = std::from_chars(word.data(), word.data() + word.size(), value);
    if (read.ec != std::errc() || read.ptr != word.data() + word.size()) return std::nullopt;
    return negative ? -value : value;
  }

  void finish(Clause& clause, bool like, std::size_t operatorAt, const Literal& literal) const {
    if (literal.kind == LiteralKind::kNull) {
      const bool equality = clause.op == Operator::kEqual || clause.op == Operator::kNotEqual;
      if (like || !equality) fail("Null compares with = and <> only", operatorAt);
      clause.test = clause.op == Operator::kEqual ? Test::kIsNull : Test::kIsNotNull;
      return;
    }
    const OutputColumn& column = schema_.columns()[clause.column];
    if (!like) return Typing(column, locale_).apply(clause, literal);
    if (column.type == ColumnType::kBinary) fail("LIKE is not for binary fields", operatorAt);
    clause.test = engine::isText(column.type) ? Test::kLikeText : Test::kLikePrinted;
    clause.pattern = std::make_unique<LikePattern>(patternOf(literal.text));
  }

  std::string_view text_;
  const RecordsetSchema& schema_;
  const Locale& locale_;
  std::size_t at_ = 0;
};

std::size_t countOf(const Node& node) {
  if (node.kind == Node::Kind::kClause) return 1;
  std::size_t count = 0;
  for (const Node& part : node.parts) count += countOf(part);
  return count;
}

/// Appends the node's clauses; the jumps out of it go to `onTrue` and `onFalse`.
void flatten(Node& node, std::int32_t onTrue, std::int32_t onFalse, std::vector<Clause>& clauses) {
  if (node.kind == Node::Kind::kClause) {
    node.clause.onTrue = onTrue;
    node.clause.onFalse = onFalse;
    clauses.push_back(std::move(node.clause));
    return;
  }
  for (std::size_t i = 0; i < node.parts.size(); ++i) {
    Node& part = node.parts[i];
    if (i + 1 == node.parts.size()) {
      flatten(part, onTrue, onFalse, clauses);
      continue;
    }
    const auto next = static_cast<std::int32_t>(clauses.size() + countOf(part));
    if (node.kind == Node::Kind::kAnd) {
      flatten(part, next, onFalse, clauses);
    } else {
      flatten(part, onTrue, next, clauses);
    }
  }
}

std::unique_ptr<Program> programOf(Node node) {
  std::vector<Clause> clauses;
  flatten(node, Clause::kAccept, Clause::kReject, clauses);
  return std::make_unique<Program>(std::move(clauses));
}

}  // namespace

std::unique_ptr<Program> parse(std::string_view text, const RecordsetSchema& schema,
                               const Locale& locale) {
  return programOf(Parser(text, schema, locale).criteria());
}

std::unique_ptr<Program> parseSingle(std::string_view text, const RecordsetSchema& schema,
                                     const Locale& locale) {
  return programOf(Parser(text, schema, locale).single());
}

}  // namespace tavelor::criteria
