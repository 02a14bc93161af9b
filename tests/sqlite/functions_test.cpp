// SPDX-License-Identifier: MIT
// The dialect's functions inside the engine.
#include <gmock/gmock.h>

#include "tests/sqlite/support.hpp"

namespace tavelor::engine::test {
namespace {

using testing::HasSubstr;

class SqliteFunctions : public testing::Test {
 protected:
  std::string text(const std::string& expression) {
    return textOf(*session, "SELECT " + expression);
  }
  double real(const std::string& expression) { return realOf(*session, "SELECT " + expression); }
  std::int64_t whole(const std::string& expression) {
    return wholeOf(*session, "SELECT " + expression);
  }
  bool null(const std::string& expression) { return isNull(*session, "SELECT " + expression); }
  std::int32_t error(const std::string& expression) {
    return errorNumber([&] { text(expression); });
  }

  std::unique_ptr<Session> session = openInMemory();
};

TEST_F(SqliteFunctions, LikeIgnoresTheCaseOfAllLettersAndNotAccents) {
  EXPECT_EQ(whole("tv_like('CAÑA', 'c*ña')"), 1);
  EXPECT_EQ(whole("tv_like('café', 'cafe')"), 0);
  EXPECT_EQ(whole("tv_like('A12', 'a#?')"), 1);
  EXPECT_TRUE(null("tv_like(NULL, 'a')"));
  EXPECT_EQ(error("tv_like('a', '[a')"), errors::kInvalidPattern);
}

TEST_F(SqliteFunctions, LikeReadsAPatternThatChangesFromRowToRow) {
  session->execute("CREATE TABLE P (T TEXT, P TEXT)");
  session->execute("INSERT INTO P VALUES ('uno', 'u*'), ('dos', 'u*'), ('dos', 'd?s'), ('x', 'y')");
  EXPECT_EQ(textOf(*session, "SELECT group_concat(tv_like(T, P)) FROM P"), "1,0,1,0");
  EXPECT_EQ(textOf(*session, "SELECT group_concat(tv_like(T, 'd*')) FROM P"), "0,1,1,0");
}

TEST_F(SqliteFunctions, RoundGoesToEvenOnTheDigitsAsSeen) {
  EXPECT_EQ(real("tv_round(2.45, 1)"), 2.4);
  EXPECT_EQ(real("tv_round(0.12345, 4)"), 0.1234);
  EXPECT_EQ(real("tv_round(-3.5, 0)"), -4);
  EXPECT_EQ(text("typeof(tv_round(7, 2))"), "integer");
  EXPECT_EQ(error("tv_round(1.5, -1)"), errors::kInvalidCall);
}

TEST_F(SqliteFunctions, DivisionIsRealAndByZeroRaises11) {
  EXPECT_EQ(real("tv_div(7, 2)"), 3.5);
  EXPECT_EQ(error("tv_div(1, 0)"), errors::kDivisionByZero);
  EXPECT_EQ(whole("tv_intdiv(4.6, 1.49)"), 5);
  EXPECT_EQ(whole("tv_intdiv(-7, 2)"), -3);
  EXPECT_EQ(error("tv_intdiv(1, 0.4)"), errors::kDivisionByZero);
  EXPECT_EQ(whole("tv_mod(11.6, 5.5)"), 0);
  EXPECT_EQ(whole("tv_mod(-7, 3)"), -1);
  EXPECT_EQ(error("tv_mod(1, 0)"), errors::kDivisionByZero);
  EXPECT_EQ(whole("tv_mod(-9223372036854775807 - 1, -1)"), 0);
  EXPECT_EQ(error("tv_intdiv(-9223372036854775807 - 1, -1)"), errors::kOverflow);
  EXPECT_TRUE(null("tv_div(NULL, 0)"));
}

TEST_F(SqliteFunctions, SumsAndProductsAreThoseOfDecimals) {
  EXPECT_EQ(real("tv_add(0.1, 0.2)"), 0.3);
  EXPECT_EQ(real("tv_add(0.1, 0.2, 0.7)"), 1);
  EXPECT_EQ(real("tv_sub(1, 0.9, 0.1)"), 0);
  EXPECT_EQ(real("tv_mul(0.1, 3)"), 0.3);
  EXPECT_EQ(real("tv_div(0.3, 0.1)"), 3);
  EXPECT_EQ(whole("tv_int(tv_mul(4.35, 100))"), 435);
  EXPECT_EQ(real("tv_add('1,5', 1)"), 2.5) << "a text in a numeric column reads by the locale";
  EXPECT_EQ(error("tv_add('uno', 1)"), errors::kTypeMismatch);
  EXPECT_TRUE(null("tv_add(1, NULL, 2)"));
}

TEST_F(SqliteFunctions, WhatNoDoubleHoldsRaises6) {
  for (const char* text : {"tv_add(1e308, 1e308)", "tv_sub(-1e308, 1e308)", "tv_mul(1e308, 10)",
                           "tv_div(1e308, 0.1)", "tv_val('1e999')", "tv_power(10, 400)"}) {
    EXPECT_EQ(error(text), errors::kOverflow) << text;
  }
  EXPECT_EQ(real("tv_val('1e-999')"), 0) << "too small a number is no number at all";
}

TEST_F(SqliteFunctions, TotalsAreExactWhateverTheirOrder) {
  session->execute("CREATE TABLE T (A, B)");
  session->execute("INSERT INTO T VALUES (0.1, 1e16), (0.2, 1e-7), (-0.3, -1e16), (NULL, NULL)");
  EXPECT_EQ(realOf(*session, "SELECT tv_sum(A) FROM T"), 0);
  EXPECT_EQ(realOf(*session, "SELECT tv_sum(B) FROM T"), 1e-7);
  EXPECT_EQ(realOf(*session, "SELECT tv_avg(A) FROM T WHERE A > 0"), 0.15);
  EXPECT_TRUE(isNull(*session, "SELECT tv_sum(A) FROM T WHERE A > 9"));
  EXPECT_TRUE(isNull(*session, "SELECT tv_avg(A) FROM T WHERE A IS NULL"));
  session->execute("INSERT INTO T VALUES (1e308, 'uno'), (1e308, 'dos')");
  EXPECT_EQ(errorNumber([&] { textOf(*session, "SELECT tv_sum(A) FROM T"); }), errors::kOverflow);
  EXPECT_EQ(errorNumber([&] { textOf(*session, "SELECT tv_avg(B) FROM T"); }),
            errors::kTypeMismatch);
}

TEST_F(SqliteFunctions, AnErrorInAFunctionKeepsItsNumberOnlyForItsStatement) {
  EXPECT_EQ(error("tv_div(1, 0)"), errors::kDivisionByZero);
  EXPECT_EQ(errorNumber([&] { session->prepare("SELECT nada"); }), errors::kSyntax);
}

TEST_F(SqliteFunctions, TextReadsAsANumberByTheLocale) {
  EXPECT_EQ(real("tv_number('1.234,5')"), 1234.5);
  EXPECT_EQ(text("typeof(tv_number('12'))"), "integer");
  EXPECT_EQ(text("typeof(tv_number(1.5))"), "real");
  EXPECT_EQ(error("tv_number('')"), errors::kTypeMismatch);
  const auto failed = errorOf([&] { text("tv_number('doce')"); });
  ASSERT_TRUE(failed);
  EXPECT_THAT(failed->description(), HasSubstr("'doce'"));
}

TEST_F(SqliteFunctions, TheLocaleIsTheSessionsOwn) {
  OpenOptions options = creating(":memory:");
  options.locale = Locale::neutral();
  const auto neutral = sqliteEngine().open(options);
  EXPECT_EQ(realOf(*neutral, "SELECT tv_number('1.5')"), 1.5);
  EXPECT_EQ(textOf(*neutral, "SELECT tv_text(1.5, 5)"), "1.5");
  EXPECT_EQ(text("tv_text(1.5, 5)"), "1,5");
}

TEST_F(SqliteFunctions, TextOfAValueFollowsItsType) {
  EXPECT_EQ(text("tv_text(46347, 7)"), "21/11/2026");
  EXPECT_EQ(text("tv_text(-1, 11)"), "Verdadero");
  EXPECT_EQ(text("tv_text('ya', 5)"), "ya");
  EXPECT_EQ(text("tv_text(12.5, 6)"), "12,5");
  EXPECT_TRUE(null("tv_text(NULL, 5)"));
}

TEST_F(SqliteFunctions, FormatWritesByTheMask) {
  EXPECT_EQ(text("tv_format(1234.5, '#,##0.00', 5)"), "1.234,50");
  EXPECT_EQ(text("tv_format(46347, 'dd/mm/yyyy', 7)"), "21/11/2026");
  EXPECT_EQ(text("tv_format(NULL, '0', 5)"), "");
  EXPECT_FALSE(null("tv_format(NULL, '0', 5)"));
}

TEST_F(SqliteFunctions, DatesReadAndComeApart) {
  EXPECT_EQ(real("tv_date('21/11/2026')"), 46347);
  EXPECT_EQ(real("tv_date(46347.5)"), 46347.5);
  EXPECT_EQ(error("tv_date('ayer')"), errors::kTypeMismatch);
  EXPECT_EQ(whole("tv_part('yyyy', 46347.75)"), 2026);
  EXPECT_EQ(whole("tv_part('m', 46347.75)"), 11);
  EXPECT_EQ(whole("tv_part('d', 46347.75)"), 21);
  EXPECT_EQ(whole("tv_part('h', 46347.75)"), 18);
  EXPECT_EQ(whole("tv_part('n', 46347.75)"), 0);
  EXPECT_EQ(whole("tv_part('s', 46347.75)"), 0);
  EXPECT_EQ(whole("tv_part('w', 46347)"), 7);
  EXPECT_EQ(error("tv_part('z', 1)"), errors::kInvalidCall);
  EXPECT_EQ(real("tv_date_serial(2026, 13, 0)"), real("tv_date_serial(2026, 12, 31)"));
  EXPECT_EQ(error("tv_date_serial(99999999999, 1, 1)"), errors::kInvalidCall);
}

TEST_F(SqliteFunctions, TheClockAgreesWithItself) {
  EXPECT_GT(real("tv_now()"), 45000);
  EXPECT_EQ(real("tv_today() - CAST(tv_today() AS INTEGER)"), 0);
  const double clock = real("tv_clock()");
  EXPECT_GE(clock, 0);
  EXPECT_LT(clock, 1);
}

TEST_F(SqliteFunctions, CutsCountCharacters) {
  EXPECT_EQ(text("tv_left('año', 2)"), "añ");
  EXPECT_EQ(text("tv_right('año', 2)"), "ño");
  EXPECT_EQ(text("tv_mid('España', 5)"), "ña");
  EXPECT_EQ(text("tv_mid('España', 5, 1)"), "ñ");
  EXPECT_EQ(text("tv_left('año', 0)"), "");
  EXPECT_EQ(error("tv_left('a', -1)"), errors::kInvalidCall);
  EXPECT_EQ(error("tv_mid('a', 0)"), errors::kInvalidCall);
}

TEST_F(SqliteFunctions, CaseReachesAllLetters) {
  EXPECT_EQ(text("tv_ucase('camión ñ')"), "CAMIÓN Ñ");
  EXPECT_EQ(text("tv_lcase('CAMIÓN Ñ')"), "camión ñ");
}

TEST_F(SqliteFunctions, NumbersForColumnsAreCheckedAndRounded) {
  EXPECT_EQ(whole("tv_whole(2.5, 3)"), 2);
  EXPECT_EQ(error("tv_whole(40000, 2)"), errors::kOverflow);
  EXPECT_EQ(error("tv_whole(-1, 17)"), errors::kOverflow);
  EXPECT_EQ(error("tv_whole(3000000000, 3)"), errors::kOverflow);
  EXPECT_EQ(real("tv_currency(1.00005)"), 1.0);
  EXPECT_EQ(error("tv_currency(1e30)"), errors::kOverflow);
  EXPECT_EQ(real("tv_single(0.1)"), static_cast<double>(0.1F));
  EXPECT_EQ(text("tv_fit('añoño', 5)"), "añoño");
  EXPECT_EQ(error("tv_fit('añoños', 5)"), errors::kMultipleStep);
}

TEST_F(SqliteFunctions, IntFloorsFixTruncatesAndPowerIsFinite) {
  EXPECT_EQ(real("tv_int(-2.5)"), -3);
  EXPECT_EQ(real("tv_fix(-2.5)"), -2);
  EXPECT_EQ(text("typeof(tv_int(7))"), "integer");
  EXPECT_EQ(real("tv_power(2, 10)"), 1024);
  EXPECT_EQ(error("tv_power(10, 400)"), errors::kOverflow);
}

TEST_F(SqliteFunctions, ValReadsWhatBeginsTheText) {
  EXPECT_EQ(real("tv_val(' 1 615,5')"), 1615);
  EXPECT_EQ(real("tv_val('-2.5kg')"), -2.5);
  EXPECT_EQ(real("tv_val('kg')"), 0);
  EXPECT_EQ(real("tv_val('')"), 0);
  EXPECT_EQ(real("tv_val('inf')"), 0);
  EXPECT_EQ(real("tv_val('&H1F')"), 31);
  EXPECT_EQ(real("tv_val('&HFFFF')"), -1);
  EXPECT_EQ(real("tv_val(' & O 17x')"), 15);
  EXPECT_EQ(real("tv_val('1e3x')"), 1000);
}

TEST_F(SqliteFunctions, FirstAndLastFollowTheRows) {
  session->execute("CREATE TABLE T (G TEXT, V TEXT)");
  EXPECT_TRUE(isNull(*session, "SELECT tv_first(V) FROM T"));
  session->execute("INSERT INTO T VALUES ('a', 'uno'), ('a', 'dos'), ('b', NULL), ('b', 'tres')");
  EXPECT_EQ(textOf(*session, "SELECT tv_first(V) FROM T"), "uno");
  EXPECT_EQ(textOf(*session, "SELECT tv_last(V) FROM T WHERE G = 'a'"), "dos");
  EXPECT_TRUE(isNull(*session, "SELECT tv_first(V) FROM T WHERE G = 'b'"));
}

}  // namespace
}  // namespace tavelor::engine::test
