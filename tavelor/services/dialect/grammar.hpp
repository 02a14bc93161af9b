// SPDX-License-Identifier: MIT
// The parser: a function a rule of the grammar.
#pragma once

#include "tavelor/services/dialect/parser.hpp"

namespace tavelor::dialect {

/// Appends to a list linked by `next`.
template <typename Node>
class ListBuilder {
 public:
  void add(Node* node) {
    *tail_ = node;
    tail_ = &node->next;
  }
  Node* first() const { return first_; }

  ListBuilder() = default;
  ListBuilder(const ListBuilder&) = delete;
  ListBuilder& operator=(const ListBuilder&) = delete;

 private:
  Node* first_ = nullptr;
  Node** tail_ = &first_;
};

class Parser {
 public:
  Parser(const TokenList& tokens, Arena& arena)
      : list_(tokens), token_(tokens.tokens.data()), arena_(arena) {}

  TreeStatement* statement();

 private:
  /// How tightly operators bind. A comparison chain groups from the left: a = b = c is (a = b) = c.
  enum Level : int {
    kOrLevel = 1,
    kAndLevel,
    kNotLevel,
    kCompareLevel,
    kJoinLevel,
    kAddLevel,
    kModuloLevel,
    kWholeDivideLevel,
    kMultiplyLevel,
    kSignLevel,
    kPowerLevel
  };
  struct BinaryOperator {
    Operator op = Operator::kNone;
    int level = 0;
  };

  // Tokens.
  bool isWord(Word word) const { return token_->word == word; }
  bool isSymbol(Symbol symbol) const { return token_->symbol == symbol; }
  bool acceptWord(Word word) {
    if (token_->word != word) return false;
    ++token_;
    return true;
  }
  bool acceptSymbol(Symbol symbol) {
    if (token_->symbol != symbol) return false;
    ++token_;
    return true;
  }
  void expectWord(Word word, std::string_view name) {
    if (!acceptWord(word)) failExpected(name);
  }
  void expectSymbol(Symbol symbol, std::string_view name) {
    if (!acceptSymbol(symbol)) failExpected(name);
  }
  bool isName() const {
    return token_->kind == TokenKind::kBracketed ||
           (token_->kind == TokenKind::kWord && token_->word == Word::kNone);
  }
  std::string_view takeName() {
    const Token& token = *token_++;
    const std::string_view text = list_.textOf(token);
    return token.kind == TokenKind::kBracketed ? text.substr(1, text.size() - 2) : text;
  }
  std::string_view expectName(std::string_view what) {
    if (!isName()) failExpected(what);
    return takeName();
  }

  [[noreturn]] void fail(std::string_view complaint) const;
  [[noreturn]] void failExpected(std::string_view what) const;
  [[noreturn]] void refuseBeginning() const;

  // Expressions.
  Expr* make(ExprKind kind, std::uint32_t offset);
  Expr* make(ExprKind kind, std::uint32_t offset, Expr* left, Expr* right = nullptr,
             Expr* third = nullptr);
  BinaryOperator binaryOperator() const;
  Expr* expression(int level = kOrLevel);
  Expr* prefixed();
  bool predicateFollows() const;
  Expr* predicate(Expr* left);
  Expr* membership(Expr* left, std::uint32_t offset);
  Expr* expressionList();
  static constexpr int kOpenExpression = 4;
  /// Something that holds an expression begins, and ends; `symbols` is what an engine's parser
  /// keeps for it. Refuses what is too deep.
  void enter(int symbols = kOpenExpression);
  void leave(int symbols = kOpenExpression) { open_ -= symbols; }
  Select* subSelect();
  Expr* operand();
  Expr* wordOperand();
  Expr* parenthesised();
  Expr* columnOrCall();
  Expr* columnAfter(std::string_view name, std::uint32_t offset);
  Expr* call(std::string_view name, std::uint32_t offset);

  // Statements.
  Select* selectStatement();
  Select* selectPart();
  std::int64_t topCount();
  OutputItem* outputList();
  std::string_view aliasName();
  OrderItem* orderList();
  Join* joinList(Source*& sources);
  Join* makeJoin(JoinKind kind, Join* left, Join* right);
  bool acceptJoin(JoinKind& kind);
  Join* joinedTables(ListBuilder<Source>& found);
  Join* tableOrParentheses(ListBuilder<Source>& found);
  Source* table();
  void insertStatement(TreeStatement& tree);
  void updateStatement(TreeStatement& tree);
  void deleteStatement(TreeStatement& tree);
  Expr* deletedList();

  const TokenList& list_;
  const Token* token_;
  Arena& arena_;
  int open_ = 0;  // symbols that an engine's parser keeps at this place
};

}  // namespace tavelor::dialect
