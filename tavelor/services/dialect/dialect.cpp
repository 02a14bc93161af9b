// SPDX-License-Identifier: MIT
// Translation of a statement.
#include "tavelor/services/dialect/dialect.hpp"

#include "tavelor/platform/statement.hpp"
#include "tavelor/services/dialect/binder.hpp"
#include "tavelor/services/dialect/lexer.hpp"
#include "tavelor/services/dialect/parser.hpp"
#include "tavelor/services/dialect/writer.hpp"

namespace tavelor::dialect {

Plan translate(const Statement& statement, const engine::Catalogue& catalogue, const Writer& writer,
               Literals& literals) {
  TokenList tokens = lex(statement);
  Arena arena;
  TreeStatement* tree = parse(tokens, arena);
  Plan plan;
  Binder binder(tokens.text, catalogue, arena, writer.words().row);
  binder.bind(*tree, plan);
  plan.steps.push_back(StepText(writer, tokens.text, 0).write(*tree));
  literals = std::move(tokens.literals);
  return plan;
}

}  // namespace tavelor::dialect
