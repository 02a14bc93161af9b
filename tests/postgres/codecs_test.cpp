// SPDX-License-Identifier: MIT
// The server's binary formats, against the server's own reading of them.
#include "tavelor/services/postgres/codecs.hpp"

#include <cmath>
#include <random>

#include <fmt/format.h>

#include "tavelor/services/postgres/errors.hpp"
#include "tavelor/services/postgres/statement_text.hpp"
#include "tests/postgres/server.hpp"

namespace tavelor::engine::test {
namespace {

using postgres::daysOf;
using postgres::microsecondsOf;
using postgres::nativeCodeOf;
using postgres::numberOf;
using postgres::StatementText;

constexpr std::uint32_t kSeed = 20'261'122;

TEST(PostgresDates, EveryWholeSecondComesBackAsItWas) {
  std::mt19937 random(kSeed);
  std::uniform_int_distribution<int> days(-657'434, 2'958'465);
  std::uniform_int_distribution<int> seconds(0, 86'399);
  for (int i = 0; i < 200'000; ++i) {
    const int day = days(random);
    const int second = seconds(random);
    const double time = second / 86'400.0;
    const double number = day < 0 ? day - time : day + time;
    const std::int64_t exact = (std::int64_t{day} - 36'526) * 86'400'000'000 + second * 1'000'000LL;
    ASSERT_EQ(microsecondsOf(number), exact) << day << " " << second;
    ASSERT_EQ(daysOf(exact), number) << day << " " << second;
  }
}

TEST(PostgresDates, AFractionCountsAwayFromZero) {
  EXPECT_EQ(microsecondsOf(0), -36'526LL * 86'400'000'000);
  EXPECT_EQ(microsecondsOf(-1.25), (-36'527LL * 4 + 1) * 21'600'000'000);
  EXPECT_EQ(microsecondsOf(-0.25), microsecondsOf(0.25));
  EXPECT_EQ(daysOf(microsecondsOf(-1.25)), -1.25);
}

TEST(PostgresDates, WhatTheServerDoesNotHoldRaises6) {
  const double infinite = std::numeric_limits<double>::infinity();
  for (const double number : {infinite, -infinite, std::nan(""), 2e8, -3e6}) {
    EXPECT_EQ(errorNumber([&] { microsecondsOf(number); }), errors::kOverflow) << number;
  }
  EXPECT_EQ(errorNumber([] { daysOf(std::numeric_limits<std::int64_t>::max()); }),
            errors::kOverflow);
}

TEST(PostgresArguments, WhatIsLongerThanAMessageIsRefusedUnread) {
  postgres::Arguments arguments(1);
  const std::string_view huge("x", postgres::kMostBytes + 1);
  for (const Value& value : {Value::ofText(huge), Value::ofBytes(huge)}) {
    EXPECT_EQ(errorNumber([&] { arguments.set(0, value); }), errors::kMultipleStep);
  }
}

TEST(PostgresErrors, StatesHaveNumbersByTheirLongestKnownBeginning) {
  EXPECT_EQ(numberOf("23505"), errors::kIntegrityViolation);
  EXPECT_EQ(numberOf("42P01"), errors::kSyntax);
  EXPECT_EQ(numberOf("42501"), errors::kPathAccess);
  EXPECT_EQ(numberOf("40P01"), errors::kTryAgain);
  EXPECT_EQ(numberOf("57014"), errors::kTimeout);
  EXPECT_EQ(numberOf("57P01"), errors::kConnectionLost);
  EXPECT_EQ(numberOf("53300"), errors::kBusy);
  EXPECT_EQ(numberOf("XX000"), errors::kUnspecified);
  EXPECT_EQ(nativeCodeOf("00001"), 1);
  EXPECT_EQ(nativeCodeOf("0000Z"), 35);
  EXPECT_EQ(nativeCodeOf("ZZZZZ"), 60'466'175);
  EXPECT_EQ(nativeCodeOf("4270"), 0);
}

TEST(PostgresStatementText, PlaceholdersAreCountedOutsideOfTextsAndComments) {
  EXPECT_EQ(StatementText("SELECT $1, $12").placeholders, 12);
  EXPECT_EQ(
      StatementText("SELECT '$1', \"$2\", e'\\'$3', $x$ $4 $x$, $$ $5 $$ -- $6\n/* $7 /* */ $8 */")
          .placeholders,
      0);
  EXPECT_EQ(StatementText("SELECT a$1, 'it''s $2'").placeholders, 0);
}

TEST(PostgresStatementText, OneStatementMayEndWithASemicolonAndAComment) {
  EXPECT_TRUE(StatementText(" ; SELECT ';' ; ; -- end").isOneStatement);
  EXPECT_EQ(StatementText(" SELECT ';' ; -- end").body, "SELECT ';'");
  EXPECT_FALSE(StatementText("SELECT 1; SELECT 2").isOneStatement);
  EXPECT_EQ(StatementText(" -- nothing\n ; ").body, "");
  EXPECT_TRUE(StatementText("SELECT 'open").isOneStatement);
}

TEST(PostgresStatementText, ReadsAndDefinitionsAreToldByTheirWords) {
  EXPECT_TRUE(StatementText("/* x */ select 1").isRead);
  EXPECT_TRUE(StatementText("WITH x AS (SELECT 1) SELECT * FROM x").isRead);
  EXPECT_FALSE(StatementText("WITH x AS (DELETE FROM t RETURNING a) SELECT * FROM x").isRead);
  EXPECT_FALSE(StatementText("INSERT INTO t SELECT 1").isRead);
  EXPECT_FALSE(StatementText("SELECT 1").isLocking);
  EXPECT_TRUE(StatementText("SELECT a FROM t FOR UPDATE").isLocking);
  EXPECT_TRUE(StatementText("SELECT a FROM t FOR SHARE").isLocking);
  EXPECT_TRUE(StatementText("Create TABLE t (a int)").isDefinition);
  EXPECT_FALSE(StatementText("SELECT 'create'").isDefinition);
}

class PostgresCodecs : public ServerTest {
 protected:
  void SetUp() override {
    ServerTest::SetUp();
    if (IsSkipped()) return;
    schema.emplace();
    session = schema->open();
  }
  void TearDown() override {
    session.reset();
    schema.reset();
  }
  std::optional<ServerSchema> schema;
  std::unique_ptr<Session> session;
};

TEST_F(PostgresCodecs, ADayNumberIsRoundedAsTheServersFunctionRoundsIt) {
  std::vector<double> numbers{0, -0.25, 0.25, -1.25, 1.5e-14, 2.2e-14, -657'434.5, 2'958'465.75};
  std::mt19937_64 random(kSeed);
  std::uniform_real_distribution<double> days(-657'434, 2'958'465);
  std::uniform_int_distribution<int> seconds(0, 86'399);
  std::uniform_real_distribution<double> near(-3, 3);
  const auto add = [&](double day) {
    const double time = seconds(random) / 86'400.0;
    const double whole = day < 0 ? day - time : day + time;
    numbers.push_back(whole);
    // On either side of what a whole second still draws to itself, and of half a microsecond.
    const double reach = (std::abs(whole) * 4e-11 + 1e-9) / 86'400;
    numbers.push_back(whole + near(random) * reach);
    numbers.push_back(whole + near(random) * 5e-7 / 86'400);
  };
  for (int i = 0; i < 800; ++i) {
    numbers.push_back(days(random));
    add(std::trunc(days(random)));            // of all years
    add(std::trunc(days(random) / 30));       // of those of a shop
    add(std::trunc(days(random) / 300'000));  // around zero
  }
  const auto statement = session->prepare("SELECT tv_timestamp($1)::text, $2::timestamp::text");
  for (const double number : numbers) {
    statement->bind(1, Value::ofReal(number));
    statement->bind(2, Value::ofDate(Date(number)));
    RowStore rows({ColumnType::kMemo, ColumnType::kMemo});
    statement->fetch(rows);
    ASSERT_EQ(rows.text(0, 0), rows.text(0, 1)) << fmt::format("{:a} = {}", number, number);
  }
}

TEST_F(PostgresCodecs, RandomAmountsAreReadByTheServerAndComeBack) {
  std::mt19937_64 random(kSeed);
  const auto statement = session->prepare("SELECT $1::numeric(19,4)::text, $1");
  for (int i = 0; i < 2'000; ++i) {
    const auto scaled = static_cast<std::int64_t>(random()) >> (random() % 64);
    statement->bind(1, Value::ofCurrency(Currency::fromScaled(scaled)));
    RowStore rows({ColumnType::kMemo, ColumnType::kCurrency});
    statement->fetch(rows);
    const std::uint64_t size =
        scaled < 0 ? 0 - static_cast<std::uint64_t>(scaled) : static_cast<std::uint64_t>(scaled);
    ASSERT_EQ(rows.text(0, 0),
              fmt::format("{}{}.{:04}", scaled < 0 ? "-" : "", size / 10'000, size % 10'000));
    ASSERT_EQ(rows.integer(0, 1), scaled);
  }
}

TEST_F(PostgresCodecs, RandomNumericsBecomeTheNearestDouble) {
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 1'000; ++i) {
    std::string digits = random() % 2 == 0 ? "-" : "";
    for (std::size_t n = 1 + random() % 25; n > 0; --n)
      digits += static_cast<char>('0' + random() % 10);
    digits += '.';
    for (std::size_t n = 1 + random() % 25; n > 0; --n)
      digits += static_cast<char>('0' + random() % 10);
    if (random() % 4 == 0)
      digits = "0." + std::string(random() % 30, '0') + digits.substr(digits.find('.') + 1);
    const RowStore rows =
        fetchAll(*session, "SELECT " + digits + "::numeric", {ColumnType::kDouble});
    ASSERT_EQ(rows.real(0, 0), std::strtod(digits.c_str(), nullptr)) << digits;
  }
}

TEST_F(PostgresCodecs, DecimalsBehindTheTenThousandthRoundHalvesToEven) {
  const auto money = [&](const std::string& written) {
    return fetchAll(*session, "SELECT " + written + "::numeric", {ColumnType::kCurrency})
        .integer(0, 0);
  };
  EXPECT_EQ(money("0.00005"), 0);
  EXPECT_EQ(money("0.00015"), 2);
  EXPECT_EQ(money("-0.00015"), -2);
  EXPECT_EQ(money("0.00025"), 2);
  EXPECT_EQ(money("0.0002500000000001"), 3);
  EXPECT_EQ(money("0.00024999999999"), 2);
  EXPECT_EQ(money("1e-30"), 0);
  EXPECT_EQ(money("922337203685477.5807"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(money("-922337203685477.5808"), std::numeric_limits<std::int64_t>::min());
  for (const char* const written : {"922337203685477.5808", "-922337203685477.5809", "1e20",
                                    "1e300", "'NaN'", "'Infinity'", "'-Infinity'"}) {
    EXPECT_EQ(errorNumber([&] { money(written); }), errors::kOverflow) << written;
  }
}

TEST_F(PostgresCodecs, RandomMomentsAreThoseOfTheServer) {
  std::mt19937 random(kSeed);
  std::uniform_int_distribution<int> days(-657'434, 2'958'465);
  std::uniform_int_distribution<int> seconds(0, 86'399);
  const auto statement = session->prepare(
      "SELECT $1 = timestamp '1899-12-30' + make_interval(days => $2::int4, "
      "secs => $3::float8), $1, tv_days($1)");
  for (int i = 0; i < 2'000; ++i) {
    const int day = days(random);
    const int second = seconds(random);
    const double time = second / 86'400.0;
    const double number = day < 0 ? day - time : day + time;
    statement->bind(1, Value::ofDate(Date(number)));
    statement->bind(2, Value::ofInteger(day));
    statement->bind(3, Value::ofReal(second));
    RowStore rows({ColumnType::kBoolean, ColumnType::kDate, ColumnType::kDouble});
    statement->fetch(rows);
    ASSERT_EQ(rows.integer(0, 0), -1) << day << " " << second;
    ASSERT_EQ(rows.real(0, 1), number);
    ASSERT_EQ(rows.real(0, 2), number);
  }
}

TEST_F(PostgresCodecs, HostileTextsStayTexts) {
  const auto statement = session->prepare("SELECT $1 || '', length($1)");
  std::mt19937 random(kSeed);
  for (int i = 0; i < 500; ++i) {
    std::string text;
    for (std::size_t n = random() % 40; n > 0; --n) {
      constexpr std::string_view kMarks = "'\"\\;$%_{}?-/*()\n\r\t ";
      text +=
          random() % 3 == 0 ? std::string("€ñ") : std::string(1, kMarks[random() % kMarks.size()]);
    }
    statement->bind(1, Value::ofText(text));
    RowStore rows({ColumnType::kMemo, ColumnType::kInt32});
    statement->fetch(rows);
    ASSERT_EQ(rows.text(0, 0), text);
  }
}

}  // namespace
}  // namespace tavelor::engine::test
