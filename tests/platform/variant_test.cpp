// SPDX-License-Identifier: MIT
// Values and their conversions.
#include "tavelor/platform/variant.hpp"

#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "tavelor/platform/locale.hpp"
#include "tests/platform/expect_error.hpp"
#include "tests/platform/locales.hpp"

namespace tavelor {
namespace {

using test::es;
using test::neutral;

class Thing : public Object {
 public:
  std::string typeName() const override { return "Thing"; }
};
Variant thing() {
  return Variant(ObjectPtr(std::make_shared<Thing>()));
}

TEST(Variant, KnowsWhatItHolds) {
  EXPECT_EQ(Variant().type(), VariantType::kEmpty);
  EXPECT_EQ(Variant(Null()).type(), VariantType::kNull);
  EXPECT_EQ(Variant(true).type(), VariantType::kBoolean);
  EXPECT_EQ(Variant(std::int16_t{1}).type(), VariantType::kInt16);
  EXPECT_EQ(Variant(1).type(), VariantType::kInt32);
  EXPECT_EQ(Variant(1.0F).type(), VariantType::kSingle);
  EXPECT_EQ(Variant(1.0).type(), VariantType::kDouble);
  EXPECT_EQ(Variant(Currency()).type(), VariantType::kCurrency);
  EXPECT_EQ(Variant(Date()).type(), VariantType::kDate);
  EXPECT_EQ(Variant("a").type(), VariantType::kText);
  EXPECT_EQ(Variant(Bytes()).type(), VariantType::kBytes);
  EXPECT_EQ(thing().type(), VariantType::kObject);
}

TEST(Variant, TypesHaveTheirClassicNames) {
  EXPECT_EQ(typeName(VariantType::kEmpty), "Empty");
  EXPECT_EQ(typeName(VariantType::kInt16), "Integer");
  EXPECT_EQ(typeName(VariantType::kInt32), "Long");
  EXPECT_EQ(typeName(VariantType::kText), "String");
  EXPECT_EQ(typeName(VariantType::kBytes), "Byte()");
  EXPECT_EQ(typeName(VariantType::kObject), "Object");
}

TEST(Variant, AWideIntegerBecomesADoubleWhenItMust) {
  EXPECT_EQ(Variant(std::int64_t{2147483647}), Variant(2147483647));
  EXPECT_EQ(Variant(std::int64_t{-2147483648}).type(), VariantType::kInt32);
  EXPECT_EQ(Variant(std::int64_t{2147483648}), Variant(2147483648.0));
}

TEST(Variant, NumbersAreBooleanToCurrency) {
  EXPECT_TRUE(Variant(true).isNumber());
  EXPECT_TRUE(Variant(Currency()).isNumber());
  EXPECT_FALSE(Variant(Date()).isNumber());
  EXPECT_FALSE(Variant("1").isNumber());
  EXPECT_FALSE(Variant().isNumber());
}

TEST(Variant, EqualityConvertsNothing) {
  EXPECT_NE(Variant(1), Variant("1"));
  EXPECT_NE(Variant(1), Variant(1.0));
  EXPECT_EQ(Variant("a"), Variant(std::string("a")));
  EXPECT_EQ(Variant(), Variant(Empty()));
  EXPECT_NE(Variant(), Variant(Null()));
}

TEST(Variant, ReadingNullRaisesInvalidUseOfNull) {
  const Variant null = Null();
  EXPECT_EQ(raisedBy([&] { null.toText(es()); }), 94);
  EXPECT_EQ(raisedBy([&] { null.toDouble(es()); }), 94);
  EXPECT_EQ(raisedBy([&] { null.toInt16(es()); }), 94);
  EXPECT_EQ(raisedBy([&] { null.toInt32(es()); }), 94);
  EXPECT_EQ(raisedBy([&] { null.toBoolean(es()); }), 94);
  EXPECT_EQ(raisedBy([&] { null.toCurrency(es()); }), 94);
  EXPECT_EQ(raisedBy([&] { null.toDate(es()); }), 94);
}

TEST(Variant, EmptyIsNothingAndZero) {
  const Variant empty;
  EXPECT_EQ(empty.toText(es()), "");
  EXPECT_EQ(empty.toDouble(es()), 0);
  EXPECT_EQ(empty.toInt16(es()), 0);
  EXPECT_EQ(empty.toInt32(es()), 0);
  EXPECT_FALSE(empty.toBoolean(es()));
  EXPECT_EQ(empty.toCurrency(es()), Currency());
  EXPECT_EQ(empty.toDate(es()), Date());
}

TEST(Variant, ObjectsAndBytesDoNotConvert) {
  for (const Variant& value : {thing(), Variant(Bytes{std::byte{1}})}) {
    EXPECT_EQ(raisedBy([&] { value.toText(es()); }), 13);
    EXPECT_EQ(raisedBy([&] { value.toDouble(es()); }), 13);
    EXPECT_EQ(raisedBy([&] { value.toBoolean(es()); }), 13);
    EXPECT_EQ(raisedBy([&] { value.toInt32(es()); }), 13);
    EXPECT_EQ(raisedBy([&] { value.toCurrency(es()); }), 13);
    EXPECT_EQ(raisedBy([&] { value.toDate(es()); }), 13);
  }
}

TEST(Variant, TextIsReadByTheLocale) {
  EXPECT_EQ(Variant("1.234,5").toDouble(es()), 1234.5);
  EXPECT_EQ(Variant("1,234.5").toDouble(neutral()), 1234.5);
  EXPECT_EQ(Variant("166,386").toDouble(es()), 166.386);
  EXPECT_EQ(Variant("166,386").toDouble(neutral()), 166386);
  EXPECT_EQ(Variant("12 €").toCurrency(es()), Currency::fromScaled(120000));
}

TEST(Variant, TextThatDoesNotReadRaisesTypeMismatch) {
  for (const char* text : {"", " ", "abc", "1,2,3"}) {
    const Variant value = text;
    EXPECT_EQ(raisedBy([&] { value.toDouble(es()); }), 13) << text;
    EXPECT_EQ(raisedBy([&] { value.toInt32(es()); }), 13) << text;
    EXPECT_EQ(raisedBy([&] { value.toInt16(es()); }), 13) << text;
    EXPECT_EQ(raisedBy([&] { value.toBoolean(es()); }), 13) << text;
    EXPECT_EQ(raisedBy([&] { value.toCurrency(es()); }), 13) << text;
    EXPECT_EQ(raisedBy([&] { value.toDate(es()); }), 13) << text;
  }
}

TEST(Variant, TextOfANumberTooLargeRaisesOverflow) {
  EXPECT_EQ(raisedBy([] { Variant("1e999").toDouble(es()); }), 6);
  EXPECT_EQ(raisedBy([] { Variant("1e20").toCurrency(es()); }), 6);
  EXPECT_EQ(raisedBy([] { Variant("40000").toInt16(es()); }), 6);
}

TEST(Variant, NumbersBecomeWholeByRoundingHalvesToEven) {
  EXPECT_EQ(Variant(0.5).toInt32(es()), 0);
  EXPECT_EQ(Variant(1.5).toInt32(es()), 2);
  EXPECT_EQ(Variant(2.5).toInt32(es()), 2);
  EXPECT_EQ(Variant(-2.5).toInt32(es()), -2);
  EXPECT_EQ(Variant(-3.5).toInt32(es()), -4);
  EXPECT_EQ(Variant(-0.5).toInt32(es()), 0);
  EXPECT_EQ(Variant(2.51).toInt16(es()), 3);
  EXPECT_EQ(Variant("2,5").toInt32(es()), 2);
  EXPECT_EQ(Variant(Currency::fromScaled(25000)).toInt32(es()), 2);
  EXPECT_EQ(Variant(Currency::fromScaled(25001)).toInt32(es()), 3);
  EXPECT_EQ(Variant(Currency::fromScaled(-35000)).toInt16(es()), -4);
  EXPECT_EQ(Variant(Date(45356.5)).toInt32(es()), 45356);
}

TEST(Variant, WholeNumbersThatDoNotFitRaiseOverflow) {
  EXPECT_EQ(Variant(32767.4).toInt16(es()), 32767);
  EXPECT_EQ(raisedBy([] { Variant(32767.5).toInt16(es()); }), 6);
  EXPECT_EQ(raisedBy([] { Variant(32768).toInt16(es()); }), 6);
  EXPECT_EQ(Variant(-32768).toInt16(es()), -32768);
  EXPECT_EQ(raisedBy([] { Variant(-32769).toInt16(es()); }), 6);
  EXPECT_EQ(Variant(2147483647.4).toInt32(es()), 2147483647);
  EXPECT_EQ(raisedBy([] { Variant(2147483647.5).toInt32(es()); }), 6);
  EXPECT_EQ(Variant(-2147483648.5).toInt32(es()), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(raisedBy([] { Variant(-2147483649.0).toInt32(es()); }), 6);
  EXPECT_EQ(raisedBy([] { Variant(HUGE_VAL).toInt32(es()); }), 6);
  EXPECT_EQ(raisedBy([] { Variant(std::nan("")).toInt32(es()); }), 6);
  EXPECT_EQ(raisedBy([] {
              Variant(Currency::fromScaled(std::numeric_limits<std::int64_t>::max())).toInt32(es());
            }),
            6);
}

TEST(Variant, TrueIsMinusOne) {
  EXPECT_EQ(Variant(true).toInt32(es()), -1);
  EXPECT_EQ(Variant(true).toInt16(es()), -1);
  EXPECT_EQ(Variant(true).toDouble(es()), -1);
  EXPECT_EQ(Variant(true).toCurrency(es()), Currency::fromScaled(-10000));
  EXPECT_EQ(Variant(false).toInt32(es()), 0);
}

TEST(Variant, AnythingButZeroIsTrue) {
  EXPECT_TRUE(Variant(-1).toBoolean(es()));
  EXPECT_TRUE(Variant(0.1).toBoolean(es()));
  EXPECT_FALSE(Variant(0.0).toBoolean(es()));
  EXPECT_TRUE(Variant("2").toBoolean(es()));
  EXPECT_FALSE(Variant("0").toBoolean(es()));
  EXPECT_TRUE(Variant("TRUE").toBoolean(es()));
  EXPECT_TRUE(Variant("verdadero").toBoolean(es()));
  EXPECT_FALSE(Variant(" False ").toBoolean(es()));
  EXPECT_FALSE(Variant("Falso").toBoolean(es()));
  EXPECT_FALSE(Variant(Date()).toBoolean(es()));
}

TEST(Variant, CurrencyKeepsEveryDigitOfAText) {
  EXPECT_EQ(Variant("922.337.203.685.477,5807").toCurrency(es()).scaled(),
            std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(Variant("-922.337.203.685.477,5808").toCurrency(es()).scaled(),
            std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(raisedBy([] { Variant("922337203685477,5808").toCurrency(es()); }), 6);
  EXPECT_EQ(Variant("0,00005").toCurrency(es()).scaled(), 0);
  EXPECT_EQ(Variant("0,00015").toCurrency(es()).scaled(), 2);
  EXPECT_EQ(
      Variant("0,000050000000000000000000000000000000000000000000001").toCurrency(es()).scaled(),
      1);
  EXPECT_EQ(Variant("1,5e3").toCurrency(es()).scaled(), 15000000);
}

TEST(Variant, CurrencyOfASingleReadsItsOwnDigits) {
  EXPECT_EQ(Variant(0.1F).toCurrency(es()).scaled(), 1000);
  EXPECT_EQ(raisedBy([] { Variant(3e38F).toCurrency(es()); }), 6);
  EXPECT_EQ(raisedBy([] { Variant(HUGE_VALF).toCurrency(es()); }), 6);
}

TEST(Variant, DatesComeFromTextsAndNumbers) {
  EXPECT_EQ(Variant("5/3/2024").toDate(es()), Date::of(2024, 3, 5));
  EXPECT_EQ(Variant("46347").toDate(es()), Date::of(2026, 11, 21));
  EXPECT_EQ(Variant(46347).toDate(es()), Date::of(2026, 11, 21));
  EXPECT_EQ(Variant(-1.25).toDate(es()), Date::of({1899, 12, 29, 6, 0, 0}));
  EXPECT_EQ(raisedBy([] { Variant(1e9).toDate(es()); }), 6);
  EXPECT_EQ(raisedBy([] { Variant(-657435).toDate(es()); }), 6);
  EXPECT_EQ(raisedBy([] { Variant("31/2/2024").toDate(es()); }), 13);
}

TEST(Variant, PrintsByTheLocale) {
  EXPECT_EQ(Variant(1234.5).toText(es()), "1234,5");
  EXPECT_EQ(Variant(1234.5).toText(neutral()), "1234.5");
  EXPECT_EQ(Variant(-7).toText(es()), "-7");
  EXPECT_EQ(Variant(std::int16_t{7}).toText(es()), "7");
  EXPECT_EQ(Variant(true).toText(es()), "Verdadero");
  EXPECT_EQ(Variant(false).toText(es()), "Falso");
  EXPECT_EQ(Variant(true).toText(neutral()), "True");
  EXPECT_EQ(Variant("ñ").toText(es()), "ñ");
}

TEST(Variant, ASinglePrintsSevenDigits) {
  EXPECT_EQ(Variant(0.1F).toText(es()), "0,1");
  EXPECT_EQ(Variant(1.0F / 3).toText(es()), "0,3333333");
  EXPECT_EQ(Variant(HUGE_VALF).toText(es()), "Infinity");
}

TEST(Variant, CurrencyPrintsItsDecimalsWithoutTrailingZeros) {
  EXPECT_EQ(Variant(Currency::fromScaled(12345000)).toText(es()), "1234,5");
  EXPECT_EQ(Variant(Currency::fromScaled(-1)).toText(es()), "-0,0001");
  EXPECT_EQ(Variant(Currency()).toText(es()), "0");
  EXPECT_EQ(Variant(Currency::fromScaled(std::numeric_limits<std::int64_t>::min())).toText(es()),
            "-922337203685477,5808");
}

TEST(Variant, DatesPrintShortWithTheTimeWhenThereIsOne) {
  EXPECT_EQ(Variant(Date::of(2024, 3, 5)).toText(es()), "05/03/2024");
  EXPECT_EQ(Variant(Date::of({2024, 3, 5, 9, 5, 9})).toText(es()), "05/03/2024 9:05:09");
  EXPECT_EQ(Variant(Date(0.25)).toText(es()), "6:00:00");
  EXPECT_EQ(Variant(Date()).toText(es()), "0:00:00");
  EXPECT_EQ(Variant(Date::of(2024, 3, 5)).toText(neutral()), "2024-03-05");
  EXPECT_EQ(raisedBy([] { Variant(Date(1e9)).toText(es()); }), 6);
}

TEST(IsNumeric, IsWhatReadsAsANumber) {
  for (const char* text : {"4,5", "1.025", " 37 ", "-37,5e2", "&H37", "12 €", "3d2"}) {
    EXPECT_TRUE(isNumeric(text, es())) << text;
  }
  for (const char* text : {"", " ", "33d", "abc", "05/03/2024", "True"}) {
    EXPECT_FALSE(isNumeric(text, es())) << text;
  }
  EXPECT_TRUE(isNumeric(true, es()));
  EXPECT_TRUE(isNumeric(Variant(), es()));
  EXPECT_TRUE(isNumeric(1.5, es()));
  EXPECT_FALSE(isNumeric(Null(), es()));
  EXPECT_FALSE(isNumeric(Date(), es()));
  EXPECT_FALSE(isNumeric(thing(), es()));
}

TEST(IsDate, IsWhatReadsAsADate) {
  EXPECT_TRUE(isDate("13-1-1970", es()));
  EXPECT_TRUE(isDate("13-1-1970", neutral()));
  EXPECT_TRUE(isDate("12:30", es()));
  EXPECT_TRUE(isDate(Date(), es()));
  EXPECT_FALSE(isDate("02.01.1970", es()));
  EXPECT_FALSE(isDate("46347", es()));
  EXPECT_FALSE(isDate("", es()));
  EXPECT_FALSE(isDate(46347, es()));
  EXPECT_FALSE(isDate(Null(), es()));
}

}  // namespace
}  // namespace tavelor
