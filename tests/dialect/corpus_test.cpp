// SPDX-License-Identifier: MIT
// Every statement of the library, and what each engine is sent for it.
//
// corpus/*.txt hold the statements, approved/*.txt what they become: the embedded engine's text,
// behind "pg: " that of PostgreSQL for a schema "main", the values (once more behind $ where
// PostgreSQL gets other ones) and the columns. After a wanted change run the test with
// TAVELOR_APPROVE=1 and read the difference.
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/lexer.hpp"
#include "tavelor/services/dialect/literal_value.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tests/dialect/corpus_case.hpp"

namespace tavelor::dialect {
namespace {

using tests::CorpusCase;

std::string_view conversionName(Conversion conversion) {
  switch (conversion) {
    case Conversion::kText:
      return "text";
    case Conversion::kNumber:
      return "number";
    case Conversion::kCurrency:
      return "currency";
    case Conversion::kNegativeCurrency:
      return "negative currency";
    case Conversion::kDate:
      return "date";
    case Conversion::kNumberByLocale:
      return "number by locale";
    case Conversion::kDateByLocale:
      return "date by locale";
    case Conversion::kBoolean:
      return "boolean";
    case Conversion::kAmount:
      return "amount";
    case Conversion::kDay:
      return "day";
    case Conversion::kNow:
      return "now";
    case Conversion::kToday:
      return "today";
    case Conversion::kTimeOfDay:
      return "time of day";
  }
  return "";
}

std::string valueText(const engine::Value& value) {
  std::ostringstream out;
  switch (value.kind) {
    case engine::Value::Kind::kNull:
      return "Null";
    case engine::Value::Kind::kReal:
    case engine::Value::Kind::kDate:
      out.precision(15);
      out << value.real;
      return out.str();
    case engine::Value::Kind::kText:
    case engine::Value::Kind::kBytes:
      return "'" + std::string(value.text) + "'";
    case engine::Value::Kind::kCurrency:
      out << value.integer << "/10000";
      return out.str();
    default:
      return std::to_string(value.integer);
  }
}

engine::Value valueOf(const Shape& shape, const Parameter& parameter) {
  if (parameter.literal < 0) return readClock(Date(46347.5), parameter.conversion);
  const auto index = static_cast<std::size_t>(parameter.literal);
  const LiteralValue lifted = readLiteral(shape.literals[index], shape.kinds[index]);
  return LiteralReader(*Locale::spanish()).read(lifted, parameter);
}

std::string parametersText(const Step& step, const Shape& shape, char mark) {
  std::ostringstream out;
  int number = 0;
  for (const Parameter& parameter : step.parameters) {
    out << "  " << mark << ++number << " " << conversionName(parameter.conversion) << " "
        << valueText(valueOf(shape, parameter));
    if (!parameter.column.empty()) out << " -> " << parameter.column;
    if (parameter.maxLength > 0) out << " (" << parameter.maxLength << ")";
    out << "\n";
  }
  return out.str();
}

/// The text of both engines, and the values that they get.
void writeSteps(std::ostream& out, const Plan& embedded, const Plan& server, const Shape& shape) {
  EXPECT_EQ(embedded.steps.size(), server.steps.size());
  for (std::size_t i = 0; i < embedded.steps.size(); ++i) {
    out << embedded.steps[i].sql << "\npg: " << server.steps[i].sql << "\n"
        << parametersText(embedded.steps[i], shape, '?');
    if (parametersText(server.steps[i], shape, '?') !=
        parametersText(embedded.steps[i], shape, '?')) {
      out << parametersText(server.steps[i], shape, '$');
    }
  }
}

void writeColumns(std::ostream& out, const Plan& plan) {
  for (const OutputColumn& column : plan.columns) {
    out << "  " << (column.hidden ? "(" + column.name + ")" : column.name) << ": "
        << engine::ddlWord(column.type) << " " << column.definedSize;
    if (!column.baseTable.empty()) out << ", " << column.baseTable << "." << column.baseColumn;
    if (column.key) out << ", key";
    if (!column.nullable) out << ", not null";
    if (column.autoNumber) out << ", counter";
    out << "\n";
  }
  if (!plan.updateTable.empty()) out << "  writes to " << plan.updateTable << "\n";
}

struct Outcome {
  bool runs = false;
  std::string text;
};

Outcome outcomeOf(const CorpusCase& sample) {
  const Statement statement = sample.statement();
  std::ostringstream out;
  try {
    Literals literals;
    const Plan plan = translate(statement, tests::schemaCatalogue(), sqliteWriter(), literals);
    const Shape shape = shapeOf(statement);
    EXPECT_EQ(literals, shape.literals) << sample.name;
    static const auto postgres = postgresWriter("main");
    const Plan server = translate(statement, tests::schemaCatalogue(), *postgres, literals);
    writeSteps(out, plan, server, shape);
    writeColumns(out, plan);
    return {true, out.str()};
  } catch (const Error& error) {
    const TextPlace place = placeOf(statement.text(), error.offset());
    std::ostringstream refusal;
    refusal << "error " << error.number();
    if (error.offset() >= 0) refusal << " at " << place.line << ":" << place.column;
    refusal << ": " << error.description() << "\n";
    return {false, refusal.str()};
  }
}

/// The first line in which two texts differ, or "".
std::string difference(const std::string& received, const std::string& approved) {
  std::istringstream left(received);
  std::istringstream right(approved);
  for (int number = 1; left || right; ++number) {
    std::string a;
    std::string b;
    std::getline(left, a);
    std::getline(right, b);
    if (a != b) return "line " + std::to_string(number) + "\nreceived " + a + "\napproved " + b;
  }
  return "";
}

class Corpus : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(Corpus, BecomesWhatWasApproved) {
  const std::filesystem::path file = GetParam();
  std::set<std::string> names;
  std::ostringstream received;
  for (const CorpusCase& sample : tests::readCorpus(file)) {
    EXPECT_TRUE(names.insert(sample.name).second) << "two cases named " << sample.name;
    const Outcome outcome = outcomeOf(sample);
    EXPECT_EQ(outcome.runs, sample.runs)
        << file.filename().string() << ":" << sample.line << " " << sample.name << "\n"
        << sample.marked << "\n"
        << sample.reason << "\n"
        << outcome.text;
    received << "== " << sample.name << "\n" << outcome.text << "\n";
  }
  const std::filesystem::path approved = std::filesystem::path(TAVELOR_SOURCE_DIR) / "tests" /
                                         "dialect" / "approved" / file.filename();
  if (std::getenv("TAVELOR_APPROVE") != nullptr) {
    std::ofstream(approved, std::ios::binary) << received.str();
  } else {
    EXPECT_EQ(difference(received.str(), tests::readFile(approved)), "") << "in " << approved;
  }
}

INSTANTIATE_TEST_SUITE_P(Files, Corpus, testing::ValuesIn(tests::corpusFiles()),
                         [](const testing::TestParamInfo<std::filesystem::path>& sample) {
                           return tests::testName(sample.param);
                         });

}  // namespace
}  // namespace tavelor::dialect
