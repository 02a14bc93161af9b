// SPDX-License-Identifier: MIT
// Values of each type, there and back.
#include <cmath>
#include <limits>

#include "tests/contract/support.hpp"

namespace tavelor::engine::test {
namespace {

class ContractTypes : public Contract {
 protected:
  /// What a column of a type gives back of a value.
  RowStore roundTrip(const std::string& word, ColumnType type, const Value& value) {
    if (!std::exchange(isDefined_, true)) define("CREATE TABLE T (A " + word + ")");
    run("DELETE FROM {T}");
    run("INSERT INTO {T:A} VALUES (?1)", {value});
    return fetch("SELECT \"A\" FROM {T}", {type});
  }
  std::int64_t whole(const std::string& word, ColumnType type, const Value& value) {
    return roundTrip(word, type, value).integer(0, 0);
  }
  double real(const std::string& word, ColumnType type, const Value& value) {
    return roundTrip(word, type, value).real(0, 0);
  }
  std::string text(const std::string& word, ColumnType type, const Value& value) {
    return std::string(roundTrip(word, type, value).text(0, 0));
  }

 private:
  bool isDefined_ = false;
};
TAVELOR_ON_EVERY_ENGINE(ContractTypes);

TEST_P(ContractTypes, AByteHolds0To255) {
  for (const std::int64_t number : {0, 1, 127, 128, 255}) {
    EXPECT_EQ(whole("BYTE", ColumnType::kByte, Value::ofInteger(number)), number);
  }
}

TEST_P(ContractTypes, AShortHolds16Bits) {
  for (const std::int64_t number : {-32768, -1, 0, 32767}) {
    EXPECT_EQ(whole("SHORT", ColumnType::kInt16, Value::ofInteger(number)), number);
  }
}

TEST_P(ContractTypes, ALongHolds32Bits) {
  for (const std::int64_t number : {-2147483648LL, -1LL, 0LL, 2147483647LL}) {
    EXPECT_EQ(whole("LONG", ColumnType::kInt32, Value::ofInteger(number)), number);
  }
}

TEST_P(ContractTypes, AFlagIsMinusOneOrZero) {
  EXPECT_EQ(whole("BIT", ColumnType::kBoolean, Value::ofBoolean(true)), -1);
  EXPECT_EQ(whole("BIT", ColumnType::kBoolean, Value::ofBoolean(false)), 0);
  EXPECT_EQ(whole("BIT", ColumnType::kBoolean, Value::ofInteger(-1)), -1);
}

TEST_P(ContractTypes, ASingleHoldsWhatAFloatHolds) {
  using Limits = std::numeric_limits<float>;
  for (const float number :
       {0.0F, 1.5F, -0.1F, Limits::max(), Limits::lowest(), Limits::min(), Limits::denorm_min()}) {
    EXPECT_EQ(real("SINGLE", ColumnType::kSingle, Value::ofReal(static_cast<double>(number))),
              static_cast<double>(number));
  }
}

TEST_P(ContractTypes, ADoubleHoldsWhatADoubleHolds) {
  using Limits = std::numeric_limits<double>;
  for (const double number :
       {0.0, 0.1, -1.0 / 3, 1e15, 123456789.123456789, Limits::max(), Limits::lowest(),
        Limits::min(), Limits::denorm_min(), Limits::infinity()}) {
    EXPECT_EQ(real("DOUBLE", ColumnType::kDouble, Value::ofReal(number)), number);
  }
}

TEST_P(ContractTypes, MoneyIsExactToTheTenThousandth) {
  for (const std::int64_t scaled :
       {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, std::int64_t{9999}, std::int64_t{10000},
        std::int64_t{-10000}, std::int64_t{123'456'789}, std::int64_t{100'000'000},
        std::int64_t{100'000'001}, std::int64_t{999'999'999'999'999}}) {
    EXPECT_EQ(
        whole("CURRENCY", ColumnType::kCurrency, Value::ofCurrency(Currency::fromScaled(scaled))),
        scaled);
  }
}

TEST_P(ContractTypes, ADateIsTheDayNumberItWas) {
  for (const Date date : {Date(0), Date(0.5), Date(-1.25), Date::of(2026, 11, 21),
                          Date::of(100, 1, 1), Date::of({9999, 12, 31, 23, 59, 59}),
                          Date::of({2024, 2, 29, 12, 34, 56}), Date::of({1899, 12, 29, 6, 0, 1}),
                          Date::of({1899, 12, 30, 23, 59, 59}), Date::of({1600, 3, 1, 0, 0, 7})}) {
    EXPECT_EQ(real("DATETIME", ColumnType::kDate, Value::ofDate(date)), date.days());
  }
}

TEST_P(ContractTypes, ATextIsKeptToTheCharacter) {
  for (const std::string& value :
       {std::string(), std::string(" "), std::string("  x "), std::string("año 'de' \"€\" \\n"),
        std::string("line\r\nline\ttab"), std::string("\xF0\x9F\x98\x80"), std::string("1234567"),
        std::string("12345678"), std::string("'); DROP TABLE T; --"), std::string("$1 ?1 {T}"),
        std::string("NULL"), std::string("\x01\x1F\x7F")}) {
    EXPECT_EQ(text("TEXT(50)", ColumnType::kText, Value::ofText(value)), value);
  }
  EXPECT_EQ(text("TEXT(50)", ColumnType::kText, Value::ofText(std::string_view())), "");
}

TEST_P(ContractTypes, ATextOf50TakesFiftyCharactersHoweverManyBytes) {
  std::string value;
  for (int i = 0; i < 50; ++i) value += "ñ";
  EXPECT_EQ(text("TEXT(50)", ColumnType::kText, Value::ofText(value)), value);
}

TEST_P(ContractTypes, AMemoHoldsMegabytes) {
  std::string value;
  while (value.size() < 5'000'000) value += "palabra número ";
  EXPECT_EQ(text("MEMO", ColumnType::kMemo, Value::ofText(value)), value);
}

TEST_P(ContractTypes, BytesAreKeptAsTheyAre) {
  std::string every;
  for (int i = 0; i < 256; ++i) every += static_cast<char>(i);
  EXPECT_EQ(text("LONGBINARY", ColumnType::kBinary, Value::ofBytes(every)), every);
  EXPECT_EQ(text("LONGBINARY", ColumnType::kBinary, Value::ofBytes(std::string_view())), "");
  const std::string many(3'000'000, '\0');
  EXPECT_EQ(text("LONGBINARY", ColumnType::kBinary, Value::ofBytes(many)), many);
}

TEST_P(ContractTypes, ANullIsNullInEveryType) {
  define(
      "CREATE TABLE N (A TEXT(5), B MEMO, C BYTE, D SHORT, E LONG, F SINGLE, G DOUBLE, "
      "H CURRENCY, I DATETIME, J BIT, K LONGBINARY)");
  run("INSERT INTO {N:A,B,C,D,E,F,G,H,I,J,K} VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11)",
      std::vector<Value>(11));
  const RowStore rows = fetch(
      "SELECT \"A\", \"B\", \"C\", \"D\", \"E\", \"F\", \"G\", \"H\", \"I\", \"J\", \"K\" FROM {N}",
      {ColumnType::kText, ColumnType::kMemo, ColumnType::kByte, ColumnType::kInt16,
       ColumnType::kInt32, ColumnType::kSingle, ColumnType::kDouble, ColumnType::kCurrency,
       ColumnType::kDate, ColumnType::kBoolean, ColumnType::kBinary});
  for (std::size_t i = 0; i < rows.columns(); ++i) EXPECT_TRUE(rows.isNull(0, i)) << i;
}

TEST_P(ContractTypes, AStatementTakesValuesAndNullsInAnyOrder) {
  define("CREATE TABLE N (A LONG, B TEXT(5))");
  const auto insert = prepare("INSERT INTO {N:A,B} VALUES (?1, ?2)");
  const auto add = [&](const Value& a, const Value& b) {
    insert->bind(1, a);
    insert->bind(2, b);
    EXPECT_EQ(insert->run(), 1);
  };
  add(Value::null(), Value::null());
  add(Value::ofInteger(1), Value::null());
  add(Value::null(), Value::ofText("x"));
  add(Value::ofInteger(2), Value::ofText("y"));
  EXPECT_EQ(run("DELETE FROM {N} WHERE \"A\" IS NULL"), 2);
  EXPECT_EQ(run("DELETE FROM {N} WHERE \"B\" IS NULL"), 1);
  EXPECT_EQ(count("N"), 1);
}

// What a store asks of a value that is of another type.

class ContractConversions : public Contract {
 protected:
  void SetUp() override {
    Contract::SetUp();
    if (IsSkipped()) return;
    define("CREATE TABLE T (A TEXT(20), L LONG, D DOUBLE, C CURRENCY, M DATETIME)");
  }
  void put(std::string_view column, const Value& value) {
    run("DELETE FROM {T}");
    run("INSERT INTO {T} (\"" + std::string(column) + "\") VALUES (?1)", {value});
  }
  RowStore get(std::string_view column, ColumnType type) {
    return fetch("SELECT \"" + std::string(column) + "\" FROM {T}", {type});
  }
};
TAVELOR_ON_EVERY_ENGINE(ContractConversions);

TEST_P(ContractConversions, ATextReadsAsANumberByTheLocale) {
  put("A", Value::ofText("1.234,5"));
  EXPECT_EQ(get("A", ColumnType::kDouble).real(0, 0), 1234.5);
  EXPECT_EQ(get("A", ColumnType::kCurrency).integer(0, 0), 12'345'000);
  EXPECT_EQ(get("A", ColumnType::kInt32).integer(0, 0), 1234);
  EXPECT_EQ(get("A", ColumnType::kBoolean).integer(0, 0), -1);
  put("A", Value::ofText("31/12/2026"));
  EXPECT_EQ(get("A", ColumnType::kDate).real(0, 0), Date::of(2026, 12, 31).days());
}

TEST_P(ContractConversions, ATextThatIsNoneRaises13WithTheColumn) {
  put("A", Value::ofText("doce"));
  for (const ColumnType type : {ColumnType::kInt32, ColumnType::kDouble, ColumnType::kCurrency,
                                ColumnType::kBoolean, ColumnType::kDate}) {
    const auto error = errorOf([&] { get("A", type); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->number(), errors::kTypeMismatch);
    EXPECT_THAT(error->description(), testing::StartsWith("Column A: "));
  }
}

TEST_P(ContractConversions, ANumberIsPrintedByTheLocale) {
  put("D", Value::ofReal(-1234.5));
  EXPECT_EQ(get("D", ColumnType::kMemo).text(0, 0), "-1234,5");
  put("L", Value::ofInteger(-17));
  EXPECT_EQ(get("L", ColumnType::kText).text(0, 0), "-17");
  put("C", Value::ofCurrency(Currency::fromScaled(12'300)));
  EXPECT_EQ(get("C", ColumnType::kText).text(0, 0), "1,23");
}

TEST_P(ContractConversions, ANumberWithAFractionRoundsHalvesToEven) {
  put("D", Value::ofReal(2.5));
  EXPECT_EQ(get("D", ColumnType::kInt32).integer(0, 0), 2);
  put("D", Value::ofReal(-3.5));
  EXPECT_EQ(get("D", ColumnType::kInt16).integer(0, 0), -4);
  put("D", Value::ofReal(0.00005));
  EXPECT_EQ(get("D", ColumnType::kCurrency).integer(0, 0), 0);
  put("C", Value::ofCurrency(Currency::fromScaled(15'000)));
  EXPECT_EQ(get("C", ColumnType::kInt32).integer(0, 0), 2);
}

TEST_P(ContractConversions, WhatDoesNotFitRaises6) {
  put("L", Value::ofInteger(256));
  EXPECT_EQ(errorNumber([&] { get("L", ColumnType::kByte); }), errors::kOverflow);
  put("L", Value::ofInteger(-32769));
  EXPECT_EQ(errorNumber([&] { get("L", ColumnType::kInt16); }), errors::kOverflow);
  put("D", Value::ofReal(2147483647.6));
  EXPECT_EQ(errorNumber([&] { get("D", ColumnType::kInt32); }), errors::kOverflow);
  put("D", Value::ofReal(1e16));
  EXPECT_EQ(errorNumber([&] { get("D", ColumnType::kCurrency); }), errors::kOverflow);
}

TEST_P(ContractConversions, NumbersMoneyAndDatesReadAsEachOther) {
  put("C", Value::ofCurrency(Currency::fromScaled(12'345'678)));
  EXPECT_EQ(get("C", ColumnType::kDouble).real(0, 0), 1234.5678);
  put("L", Value::ofInteger(46347));
  EXPECT_EQ(get("L", ColumnType::kDate).real(0, 0), 46347);
  EXPECT_EQ(get("L", ColumnType::kCurrency).integer(0, 0), 463'470'000);
  put("M", Value::ofDate(Date(46347.25)));
  EXPECT_EQ(get("M", ColumnType::kDouble).real(0, 0), 46347.25);
  EXPECT_EQ(get("M", ColumnType::kInt32).integer(0, 0), 46347);
  EXPECT_EQ(get("M", ColumnType::kText).text(0, 0), "46347,25");
}

}  // namespace
}  // namespace tavelor::engine::test
