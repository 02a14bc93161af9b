// SPDX-License-Identifier: MIT
// Any statement on the tables of the system: it is refused with a number and a place, or the engine
// takes what it becomes, whatever the values are.
#include "fuzz/database.hpp"
#include "fuzz/input.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/dialect/dialect.hpp"

namespace tavelor::fuzz {

namespace {

bool samePlan(const dialect::Plan& a, const dialect::Plan& b) {
  if (a.kind != b.kind || a.steps.size() != b.steps.size() ||
      a.columns.size() != b.columns.size() || a.updateTable != b.updateTable) {
    return false;
  }
  for (std::size_t i = 0; i < a.steps.size(); ++i) {
    if (a.steps[i].sql != b.steps[i].sql ||
        a.steps[i].parameters.size() != b.steps[i].parameters.size()) {
      return false;
    }
  }
  return true;
}

dialect::Plan translated(const Statement& statement, dialect::Literals& literals) {
  return dialect::translate(statement, *database().catalogue, dialect::sqliteWriter(), literals);
}

void checkEngineText(const Statement& statement, const dialect::Step& step,
                     const dialect::Literals& literals) {
  for (const dialect::Parameter& parameter : step.parameters) {
    require(parameter.literal >= 0 && static_cast<std::size_t>(parameter.literal) < literals.size(),
            "a placeholder names a literal", statement.text());
  }
  try {
    const auto prepared = database().session->prepare(step.sql);
    require(static_cast<std::size_t>(prepared->parameterCount()) == step.parameters.size(),
            "a parameter a placeholder", statement.text() + "\n" + step.sql);
  } catch (const Error& error) {
    require(false, "the engine takes what was translated",
            statement.text() + "\n" + step.sql + "\n" + error.what());
  }
}

void check(const Statement& statement) {
  dialect::Literals literals;
  const dialect::Plan plan = translated(statement, literals);
  require(!plan.steps.empty(), "a plan has a step", statement.text());
  for (const dialect::Step& step : plan.steps) checkEngineText(statement, step, literals);

  const dialect::Shape shape = dialect::shapeOf(statement);
  dialect::Literals others;
  const Statement changed = withOtherValues(statement, shape);
  require(samePlan(plan, translated(changed, others)), "the plan does not depend on the values",
          statement.text() + "\n" + changed.text());
}

}  // namespace

}  // namespace tavelor::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavelor;
  const Statement statement = fuzz::statementOf({reinterpret_cast<const char*>(data), size});
  try {
    fuzz::check(statement);
  } catch (const Error& error) {
    fuzz::require(!error.description().empty() && error.number() != errors::kUnspecified,
                  "an error has a number and a sentence", error.what());
  }
  return 0;
}
