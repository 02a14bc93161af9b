// SPDX-License-Identifier: MIT
// Tokens to tree: statements.
#include "tavelor/services/dialect/parser.hpp"

#include <charconv>
#include <string>

#include "tavelor/platform/text.hpp"
#include "tavelor/services/dialect/grammar.hpp"
#include "tavelor/services/dialect/rules.hpp"

namespace tavelor::dialect {

TreeStatement* Parser::statement() {
  TreeStatement* tree = arena_.make<TreeStatement>();
  if (isWord(Word::kSelect)) {
    tree->kind = StatementKind::kSelect;
    tree->select = selectStatement();
  } else if (acceptWord(Word::kInsert)) {
    insertStatement(*tree);
  } else if (acceptWord(Word::kUpdate)) {
    updateStatement(*tree);
  } else if (acceptWord(Word::kDelete)) {
    deleteStatement(*tree);
  } else {
    refuseBeginning();
  }
  acceptSymbol(Symbol::kSemicolon);
  if (token_->kind != TokenKind::kEnd) failExpected("the end of the statement");
  return tree;
}

void Parser::fail(std::string_view complaint) const {
  raiseSyntax(list_.text, token_->begin, complaint);
}

void Parser::failExpected(std::string_view what) const {
  std::string complaint(what);
  complaint += " is expected at " + placeText(list_.text, token_->begin);
  if (token_->kind == TokenKind::kEnd) {
    complaint += ", where the statement ends";
  } else {
    complaint += ", not ";
    complaint += text::left(list_.textOf(*token_), 40);
  }
  fail(complaint);
}

void Parser::refuseBeginning() const {
  const std::string_view word = list_.textOf(*token_);
  for (const std::string_view definition : {"CREATE", "ALTER", "DROP"}) {
    if (text::equalsIgnoreCase(word, definition)) {
      refuse(Rule::kDefinitionInStatement, list_.text, token_->begin);
    }
  }
  failExpected("SELECT, INSERT, UPDATE or DELETE");
}

Select* Parser::selectStatement() {
  Select* first = selectPart();
  Select* last = first;
  while (acceptWord(Word::kUnion)) {
    last->unionAll = acceptWord(Word::kAll);
    if (!isWord(Word::kSelect)) failExpected("SELECT");
    last->unionNext = selectPart();
    last = last->unionNext;
  }
  if (acceptWord(Word::kOrder)) {
    expectWord(Word::kBy, "BY");
    first->orderBy = orderList();
  }
  return first;
}

Select* Parser::selectPart() {
  Select* select = arena_.make<Select>();
  select->offset = token_->begin;
  ++token_;  // SELECT
  if (acceptWord(Word::kDistinct)) {
    select->distinct = true;
  } else if (acceptWord(Word::kDistinctRow)) {
    select->distinctRow = true;
  } else {
    acceptWord(Word::kAll);
  }
  if (acceptWord(Word::kTop)) select->top = topCount();
  select->items = outputList();
  if (acceptWord(Word::kFrom)) select->from = joinList(select->sources);
  if (acceptWord(Word::kWhere)) select->where = expression();
  if (acceptWord(Word::kGroup)) {
    expectWord(Word::kBy, "BY");
    select->groupBy = expressionList();
  }
  if (acceptWord(Word::kHaving)) select->having = expression();
  return select;
}

std::int64_t Parser::topCount() {
  const std::string_view digits = list_.textOf(*token_);
  std::int64_t count = -1;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), count);
  if (token_->literalKind != LiteralKind::kWhole || error != std::errc() ||
      end != digits.data() + digits.size()) {
    failExpected("a number of rows");
  }
  ++token_;
  if (isWord(Word::kPercent)) refuse(Rule::kPercentOfRows, list_.text, token_->begin);
  return count;
}

OutputItem* Parser::outputList() {
  ListBuilder<OutputItem> items;
  do {
    OutputItem* item = arena_.make<OutputItem>();
    if (isSymbol(Symbol::kStar)) {
      item->expr = make(ExprKind::kStar, token_->begin);
      ++token_;
    } else {
      item->expr = expression();
    }
    if (acceptWord(Word::kAs)) item->alias = aliasName();
    items.add(item);
  } while (acceptSymbol(Symbol::kComma));
  return items.first();
}

/// Behind AS any word is a name.
std::string_view Parser::aliasName() {
  if (token_->kind != TokenKind::kWord && !isName()) failExpected("a name");
  return takeName();
}

OrderItem* Parser::orderList() {
  ListBuilder<OrderItem> items;
  do {
    OrderItem* item = arena_.make<OrderItem>();
    item->expr = expression();
    item->descending = acceptWord(Word::kDesc);
    if (!item->descending) acceptWord(Word::kAsc);
    items.add(item);
  } while (acceptSymbol(Symbol::kComma));
  return items.first();
}

Join* Parser::joinList(Source*& sources) {
  ListBuilder<Source> found;
  Join* join = joinedTables(found);
  while (acceptSymbol(Symbol::kComma)) {
    Join* right = joinedTables(found);
    join = makeJoin(JoinKind::kCross, join, right);
  }
  sources = found.first();
  return join;
}

Join* Parser::makeJoin(JoinKind kind, Join* left, Join* right) {
  Join* join = arena_.make<Join>();
  join->kind = kind;
  join->left = left;
  join->right = right;
  return join;
}

bool Parser::acceptJoin(JoinKind& kind) {
  if (isWord(Word::kJoin)) {
    kind = JoinKind::kInner;
  } else if (acceptWord(Word::kInner)) {
    kind = JoinKind::kInner;
  } else if (acceptWord(Word::kLeft)) {
    kind = JoinKind::kLeft;
    acceptWord(Word::kOuter);
  } else if (acceptWord(Word::kRight)) {
    kind = JoinKind::kRight;
    acceptWord(Word::kOuter);
  } else {
    return false;
  }
  expectWord(Word::kJoin, "JOIN");
  return true;
}

Join* Parser::joinedTables(ListBuilder<Source>& found) {
  Join* join = tableOrParentheses(found);
  for (JoinKind kind{}; acceptJoin(kind);) {
    join = makeJoin(kind, join, tableOrParentheses(found));
    expectWord(Word::kOn, "ON");
    join->condition = expression();
  }
  return join;
}

Join* Parser::tableOrParentheses(ListBuilder<Source>& found) {
  if (isSymbol(Symbol::kLeftParen)) {
    enter();
    ++token_;
    if (isWord(Word::kSelect)) refuse(Rule::kDerivedTable, list_.text, token_->begin);
    Join* join = joinedTables(found);
    expectSymbol(Symbol::kRightParen, ")");
    leave();
    return join;
  }
  Join* leaf = arena_.make<Join>();
  leaf->source = table();
  found.add(leaf->source);
  return leaf;
}

Source* Parser::table() {
  Source* source = arena_.make<Source>();
  source->offset = token_->begin;
  source->table = expectName("a table");
  if (acceptWord(Word::kAs)) {
    source->alias = aliasName();
  } else if (isName()) {
    source->alias = takeName();
  }
  return source;
}

void Parser::insertStatement(TreeStatement& tree) {
  tree.kind = StatementKind::kInsert;
  expectWord(Word::kInto, "INTO");
  tree.target = arena_.make<Source>();
  tree.target->offset = token_->begin;
  tree.target->table = expectName("a table");
  if (acceptSymbol(Symbol::kLeftParen)) {
    ListBuilder<Expr> columns;
    do {
      const std::uint32_t offset = token_->begin;
      columns.add(columnAfter(expectName("a column"), offset));
    } while (acceptSymbol(Symbol::kComma));
    tree.columns = columns.first();
    expectSymbol(Symbol::kRightParen, ")");
  }
  if (acceptWord(Word::kValues)) {
    expectSymbol(Symbol::kLeftParen, "(");
    tree.values = expressionList();
    expectSymbol(Symbol::kRightParen, ")");
  } else if (isWord(Word::kSelect)) {
    tree.select = selectStatement();
  } else {
    failExpected("VALUES or SELECT");
  }
}

void Parser::updateStatement(TreeStatement& tree) {
  tree.kind = StatementKind::kUpdate;
  tree.from = joinList(tree.sources);
  expectWord(Word::kSet, "SET");
  ListBuilder<Assignment> assignments;
  do {
    Assignment* assignment = arena_.make<Assignment>();
    const std::uint32_t offset = token_->begin;
    assignment->target = columnAfter(expectName("a column"), offset);
    expectSymbol(Symbol::kEqual, "=");
    // The first = assigns; any further one compares.
    assignment->value = expression();
    assignments.add(assignment);
  } while (acceptSymbol(Symbol::kComma));
  tree.assignments = assignments.first();
  if (acceptWord(Word::kWhere)) tree.where = expression();
}

void Parser::deleteStatement(TreeStatement& tree) {
  tree.kind = StatementKind::kDelete;
  acceptWord(Word::kDistinctRow);
  if (!isWord(Word::kFrom)) tree.columns = deletedList();
  expectWord(Word::kFrom, "FROM");
  tree.from = joinList(tree.sources);
  if (acceptWord(Word::kWhere)) tree.where = expression();
}

/// What stands between DELETE and FROM only names the table: t.*, t, t.column, * or a column.
Expr* Parser::deletedList() {
  ListBuilder<Expr> list;
  do {
    const std::uint32_t offset = token_->begin;
    if (acceptSymbol(Symbol::kStar)) {
      list.add(make(ExprKind::kStar, offset));
    } else {
      list.add(columnAfter(expectName("a table"), offset));
    }
  } while (acceptSymbol(Symbol::kComma));
  return list.first();
}

TreeStatement* parse(const TokenList& tokens, Arena& arena) {
  return Parser(tokens, arena).statement();
}

}  // namespace tavelor::dialect
