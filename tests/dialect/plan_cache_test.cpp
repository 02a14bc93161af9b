// SPDX-License-Identifier: MIT
// Which road a statement takes to its plan, and what is bound.
#include <tuple>

#include "tests/dialect/plan_cache_fixture.hpp"

namespace tavelor::dialect::test {
namespace {

TEST_F(PlanCacheTest, AStatementThatComesAgainWithOtherValuesNeedsNoLexer) {
  for (const char* code : {"00012", "", "año", "x y", "--", "); DELETE", "a;b", "\"", "#1#"}) {
    run(byCode(code));
    EXPECT_THAT(journal.bound, ElementsAre("text " + std::string(code)));
  }
  EXPECT_EQ(cache.counters().translated, 1U);
  EXPECT_EQ(cache.counters().shapeHits, 8U);
  EXPECT_EQ(cache.counters().lexedHits, 0U);
  EXPECT_EQ(journal.prepared, 1);
}

TEST_F(PlanCacheTest, ATextWithoutRangesIsServedAfterLexing) {
  run(byCode("1"));
  run(Statement("DELETE FROM Lineas WHERE Codigo = '2'"));
  run(Statement("DELETE   FROM Lineas WHERE Codigo='3'"));
  EXPECT_EQ(cache.counters().translated, 1U);
  EXPECT_EQ(cache.counters().lexedHits, 2U);
  EXPECT_THAT(journal.bound, ElementsAre("text 3"));
}

TEST_F(PlanCacheTest, ADoubledQuoteInAValueIsOneQuote) {
  run(byCode("1"));
  run(byCode("O''Hara"));
  EXPECT_THAT(journal.bound, ElementsAre("text O'Hara"));
  EXPECT_EQ(cache.counters().translated, 1U);
}

TEST_F(PlanCacheTest, AValueThatLeavesItsPlaceIsRefusedBeforeAndAfterAHit) {
  const std::vector<std::string> hostile{
      "O'Hara",  "' or '1'='1",  "'; DELETE FROM Lineas; --", "'",
      "a'b'",    "x''' or ''='", std::string("a\0b", 3),      "\xC3",
      "\xFF\xFE"};
  for (int round = 0; round < 2; ++round) {
    for (const std::string& text : hostile)
      EXPECT_EQ(errorOf(byCode(text)), errors::kSyntax) << text;
    run(byCode("1"));
    run(byCode("2"));
  }
  EXPECT_EQ(journal.runs.size(), 4U);
}

// Without the value the letter around its place is whole.
TEST_F(PlanCacheTest, AValueWithinALetterOfTheTextIsRefusedBeforeAndAfterAnEmptyOne) {
  const auto within = [](std::string_view text) {
    return Statement("DELETE FROM Lineas WHERE Codigo = '\xC3") << spliced(text) << "\xB1'";
  };
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(errorOf(within("x")), errors::kSyntax);
    run(within(""));
    EXPECT_THAT(journal.bound, ElementsAre("text ñ"));
  }
}

TEST_F(PlanCacheTest, ABareValueMustBeOneNumberBeforeAndAfterAHit) {
  for (int round = 0; round < 2; ++round) {
    for (const char* text :
         {"", "1 or 1=1", "1)", "1,2", "a", "1e", "--1", "1.2.3", ".", "-", "'1"}) {
      EXPECT_EQ(errorOf(insertBare(text)), errors::kSyntax) << text;
    }
    run(insertBare("1"));
    run(insertBare("2.5"));
  }
  EXPECT_EQ(journal.runs.size(), 4U);
}

TEST_F(PlanCacheTest, ANumberOfAnAssignmentMayBeWholeOrNot) {
  run(insertBare("1"));
  for (const char* text : {"2.5", "-3", "+4", "123456789.012345", "5.", ".5", "-0.25"}) {
    run(insertBare(text));
  }
  EXPECT_EQ(cache.counters().shapeHits, 7U);
  EXPECT_THAT(journal.bound, ElementsAre("real -0.250000"));
  run(insertBare("2147483647"));
  EXPECT_THAT(journal.bound, ElementsAre("whole 2147483647"));
  run(insertBare("9223372036854775807"));
  EXPECT_THAT(journal.bound, ElementsAre("real 9223372036854775808.000000"));
  run(insertBare("1e3"));
  EXPECT_THAT(journal.bound, ElementsAre("real 1000.000000"));
}

// Texts are looked at eight bytes at a time: every place of every length must be seen.
TEST_F(PlanCacheTest, AQuoteInAValueIsSeenWhereverItStands) {
  run(byCode("1"));
  for (std::size_t length = 1; length <= 26; ++length) {
    for (std::size_t place = 0; place < length; ++place) {
      std::string text(length, 'x');
      text[place] = '\'';
      EXPECT_THROW(run(byCode(text)), Error) << text;
      text[place] = '\0';
      EXPECT_THROW(run(byCode(text)), Error) << length << ", " << place;
      text[place] = '\xFF';
      EXPECT_THROW(run(byCode(text)), Error) << length << ", " << place;
      text[place] = '"';
      run(byCode(text));
      ASSERT_THAT(journal.bound, ElementsAre("text " + text));
    }
  }
}

TEST_F(PlanCacheTest, ATextKnownWhenRunningOnlyIsRememberedWhenItComesAgain) {
  const std::string known("DELETE FROM Lineas WHERE Codigo = 'a' AND Cantidad > 1.5");
  const Statement text(Statement::trusted(known));
  run(text);
  run(text);
  EXPECT_EQ(cache.counters().shapeHits, 0U);
  run(text);
  EXPECT_EQ(cache.counters().shapeHits, 1U);
  EXPECT_THAT(journal.bound, ElementsAre("text a", "real 1.500000"));
  run(Statement("DELETE FROM Lineas WHERE Codigo = 'b' AND Cantidad > 1.5"));
  EXPECT_THAT(journal.bound, ElementsAre("text b", "real 1.500000"));
  run(text);
  EXPECT_THAT(journal.bound, ElementsAre("text a", "real 1.500000"));
  EXPECT_EQ(cache.counters().shapeHits, 2U);
  EXPECT_EQ(cache.counters().translated, 1U);
}

TEST_F(PlanCacheTest, WhatOnlyTheLexerCanJudgeIsRememberedOnce) {
  run(insertBare("1.5"));
  for (int count = 0; count < 20; ++count) run(insertBare("12345678901234567890"));
  EXPECT_THAT(journal.bound, ElementsAre("real 12345678901234567168.000000"));
  EXPECT_EQ(cache.counters().lexedHits, 20U);
  run(insertBare("2"));
  run(insertBare("2.5"));
  EXPECT_EQ(cache.counters().shapeHits, 2U);
  EXPECT_EQ(cache.counters().translated, 1U);
}

TEST_F(PlanCacheTest, AWholeNumberAndADecimalOneInACriterionAreTwoShapes) {
  const auto above = [](std::string_view number) {
    return Statement("DELETE FROM Lineas WHERE Cantidad > ") << spliced(number);
  };
  run(above("1"));
  run(above("1.5"));
  EXPECT_EQ(cache.counters().translated, 2U);
  run(above("2"));
  EXPECT_THAT(journal.bound, ElementsAre("whole 2"));
  run(above("2.5"));
  EXPECT_THAT(journal.bound, ElementsAre("real 2.500000"));
  EXPECT_EQ(cache.counters().shapeHits, 2U);
}

TEST_F(PlanCacheTest, ConstantsAroundAndBetweenValuesBelongToTheLiteral) {
  const auto padded = [](std::string_view year, std::string_view number) {
    return Statement("INSERT INTO Lineas (Codigo, Nota) VALUES ('F")
           << spliced(year) << "-" << spliced(number) << " ', 'it''s " << spliced(year) << "''')";
  };
  for (int round = 0; round < 3; ++round) {
    run(padded("26", "001"));
    EXPECT_THAT(journal.bound, ElementsAre("text F26-001 ", "text it's 26'"));
  }
  run(padded("", ""));
  EXPECT_THAT(journal.bound, ElementsAre("text F- ", "text it's '"));
  EXPECT_EQ(cache.counters().translated, 1U);
}

TEST_F(PlanCacheTest, ConstantsOfTheTextAreTakenFromTheStatementAtHand) {
  const auto insert = [](Statement::Constant constant, std::string_view code) {
    return Statement("INSERT INTO Lineas (Cantidad, Codigo) VALUES (")
           << constant << ", '" << spliced(code) << "')";
  };
  run(insert("1", "a"));
  run(insert("2", "b"));
  EXPECT_THAT(journal.bound, ElementsAre("whole 2", "text b"));
  run(insert("1", "c"));
  EXPECT_THAT(journal.bound, ElementsAre("whole 1", "text c"));
  EXPECT_EQ(cache.counters().translated, 1U);
  EXPECT_EQ(cache.counters().shapeHits, 1U);
}

// A buffer that is used again, a page of memory that is: the address tells nothing there.
TEST_F(PlanCacheTest, ATextThatMayChangeIsKnownByWhatItSaysNotByItsAddress) {
  std::string condition = "Codigo = '";
  const auto remove = [&](std::string_view text) {
    return Statement("DELETE FROM Lineas WHERE ")
           << Statement::trusted(condition) << spliced(text) << "'";
  };
  run(remove("a"));
  EXPECT_THAT(journal.runs.back(), HasSubstr("WHERE Codigo = "));
  condition.replace(0, 6, "  Nota");
  run(remove("b"));
  EXPECT_THAT(journal.runs.back(), HasSubstr("WHERE Nota = "));
  std::string whole = "DELETE FROM Lineas WHERE Codigo = 'c'";
  for (int count = 0; count < 3; ++count) run(Statement::trusted(whole));
  whole[whole.size() - 2] = 'd';
  run(Statement::trusted(whole));
  EXPECT_THAT(journal.bound, ElementsAre("text d"));
}

// As two files of one program may have it.
TEST_F(PlanCacheTest, AConstantThatStandsTwiceIsTheSameStatement) {
  static constexpr char kHere[] = "DELETE FROM Lineas WHERE Codigo = '";
  static constexpr char kThere[] = "DELETE FROM Lineas WHERE Codigo = '";
  for (int round = 0; round < 2; ++round) {
    run(Statement(kHere) << spliced("a") << "'");
    run(Statement(kThere) << spliced("b") << "'");
    EXPECT_THAT(journal.bound, ElementsAre("text b"));
  }
  EXPECT_EQ(journal.prepared, 1);
}

TEST_F(PlanCacheTest, TextsThatDifferBehindTheirValuesAreAllRemembered) {
  for (int round = 0; round < 3; ++round) {
    for (int constant = 10; constant < 40; ++constant) {
      run(Statement("DELETE FROM Lineas WHERE Codigo = '")
          << spliced("a") << "' AND Unidades = " << Statement::trusted(std::to_string(constant)));
      EXPECT_THAT(journal.bound, ElementsAre("text a", "whole " + std::to_string(constant)));
    }
  }
  EXPECT_EQ(cache.counters().shapeHits, 60U);
}

TEST_F(PlanCacheTest, DatesComeWithOrWithoutTheirMarks) {
  const auto whole = [](std::string_view date) {
    return Statement("DELETE FROM Lineas WHERE Fecha = ") << spliced(date);
  };
  const auto inside = [](std::string_view date) {
    return Statement("DELETE FROM Lineas WHERE Fecha = #") << spliced(date) << "#";
  };
  run(whole("#11/20/2026#"));
  run(whole("#11/21/2026#"));
  EXPECT_THAT(journal.bound, ElementsAre("date 46347.000000"));
  run(inside("11/21/2026"));
  run(inside("11/22/2026"));
  EXPECT_THAT(journal.bound, ElementsAre("date 46348.000000"));
  EXPECT_EQ(cache.counters().shapeHits, 2U);
  for (const char* text : {"#99/99/2026#", "#11/21/2026", "#1/1/2026# or #1/1/2026#", "#"}) {
    EXPECT_EQ(errorOf(whole(text)), errors::kSyntax) << text;
  }
  EXPECT_EQ(errorOf(inside("x")), errors::kSyntax);
  EXPECT_EQ(errorOf(inside("1/1/2026# or 1=1 or Fecha = #1/1/2026")), errors::kSyntax);
}

TEST_F(PlanCacheTest, AQuotedNumberForANumericColumnReadsByTheLocale) {
  run(insertQuoted("Cantidad", "1.234,5"));
  EXPECT_THAT(journal.bound, ElementsAre("real 1234.500000"));
  run(insertQuoted("Cantidad", "0,1"));
  EXPECT_THAT(journal.bound, ElementsAre("real 0.100000"));
  run(insertQuoted("Cantidad", "-7"));
  EXPECT_THAT(journal.bound, ElementsAre("whole -7"));
  EXPECT_EQ(errorOf(insertQuoted("Cantidad", "doce")), errors::kTypeMismatch);
  EXPECT_THAT(description, HasSubstr("Cantidad"));
  EXPECT_THAT(failedStatement, HasSubstr("'doce'"));
  EXPECT_EQ(errorOf(insertQuoted("Cantidad", "")), errors::kTypeMismatch);
}

TEST_F(PlanCacheTest, MoneyRoundsToFourDecimalsHalvesToEven) {
  run(insertQuoted("Importe", "0,00005"));
  EXPECT_THAT(journal.bound, ElementsAre("money 0"));
  run(insertQuoted("Importe", "12,3456"));
  EXPECT_THAT(journal.bound, ElementsAre("money 123456"));
  run(insertQuoted("Importe", "922337203685477"));
  EXPECT_THAT(journal.bound, ElementsAre("money 9223372036854770000"));
  EXPECT_EQ(errorOf(insertQuoted("Importe", "1922337203685478")), errors::kMultipleStep);
}

TEST_F(PlanCacheTest, TheFirstAndTheLastAmountAreReadFromAllOfTheirDigits) {
  run(insertQuoted("Importe", "922.337.203.685.477,5807"));
  EXPECT_THAT(journal.bound, ElementsAre("money 9223372036854775807"));
  run(insertQuoted("Importe", "-922337203685477,5808"));
  EXPECT_THAT(journal.bound, ElementsAre("money -9223372036854775808"));
  run(Statement("UPDATE Lineas SET Importe = 922337203685477.5807"));
  EXPECT_THAT(journal.bound, ElementsAre("money 9223372036854775807"));
  run(Statement("UPDATE Lineas SET Importe = +9.223372036854775807E+14"));
  EXPECT_THAT(journal.bound, ElementsAre("money 9223372036854775807"));
  EXPECT_EQ(errorOf(insertQuoted("Importe", "922337203685477,5808")), errors::kMultipleStep);
  run(insertQuoted("Importe", "0,12345"));
  EXPECT_THAT(journal.bound, ElementsAre("money 1234"));
  run(insertQuoted("Importe", "1.500"));
  EXPECT_THAT(journal.bound, ElementsAre("money 15000000"));
}

TEST_F(PlanCacheTest, ANumberThatNoDoubleHoldsIsAnOverflow) {
  EXPECT_EQ(errorOf(Statement("DELETE FROM Lineas WHERE Cantidad > 1e400")), errors::kOverflow);
  EXPECT_THAT(description, HasSubstr("1e400"));
  EXPECT_EQ(errorOf(Statement("UPDATE Lineas SET Cantidad = 1e400")), errors::kMultipleStep);
  EXPECT_THAT(description, HasSubstr("Cantidad"));
}

TEST_F(PlanCacheTest, AWholeColumnRoundsAndRefusesWhatIsOutOfItsRange) {
  run(insertQuoted("Unidades", "2,5"));
  EXPECT_THAT(journal.bound, ElementsAre("whole 2"));
  run(insertQuoted("Unidades", "-32768"));
  EXPECT_THAT(journal.bound, ElementsAre("whole -32768"));
  EXPECT_EQ(errorOf(insertQuoted("Unidades", "32768")), errors::kMultipleStep);
  EXPECT_THAT(description, HasSubstr("out of range (Unidades)"));
}

TEST_F(PlanCacheTest, ATextTooLongForItsColumnIsRefusedByCharacters) {
  run(insertQuoted("Codigo", "ññññññññññ"));
  EXPECT_EQ(errorOf(insertQuoted("Codigo", "12345678901")), errors::kMultipleStep);
  EXPECT_THAT(description, HasSubstr("11 characters is too long for the 10 of Codigo"));
  run(insertQuoted("Nota", std::string(100'000, 'x')));
}

TEST_F(PlanCacheTest, FlagsTakeNumbersAndTheLocalesWords) {
  const auto flag = [&](std::string_view text) {
    run(insertQuoted("Activa", text));
    return journal.bound.at(0);
  };
  EXPECT_EQ(flag("1"), "flag -1");
  EXPECT_EQ(flag("0"), "flag 0");
  EXPECT_EQ(flag("Verdadero"), "flag -1");
  EXPECT_EQ(flag("falso"), "flag 0");
  EXPECT_EQ(flag("True"), "flag -1");
  EXPECT_EQ(errorOf(insertQuoted("Activa", "quizá")), errors::kTypeMismatch);
}

TEST_F(PlanCacheTest, AQuotedDateForADateColumnReadsByTheLocale) {
  run(insertQuoted("Fecha", "21/11/2026"));
  EXPECT_THAT(journal.bound, ElementsAre("date 46347.000000"));
  EXPECT_EQ(errorOf(insertQuoted("Fecha", "ayer")), errors::kTypeMismatch);
}

TEST_F(PlanCacheTest, AnErrorOfTheEngineBearsTheStatement) {
  journal.failAtRun = 0;
  EXPECT_EQ(errorOf(byCode("6")), errors::kUnspecified);
  EXPECT_THAT(failedStatement, HasSubstr("Codigo = '6'"));
}

TEST_F(PlanCacheTest, APlanIsSharedByAllStatementsOfItsShape) {
  const auto select = [](std::string_view code) {
    return Statement("SELECT Codigo, Importe FROM Lineas WHERE Codigo = '") << spliced(code) << "'";
  };
  const auto plan = cache.plan(select("1"));
  EXPECT_EQ(plan, cache.plan(select("2")));
  EXPECT_EQ(journal.prepared, 0);
  std::vector<ColumnType> types;
  for (const OutputColumn& output : plan->columns) types.push_back(output.type);
  engine::RowStore rows(types);
  EXPECT_TRUE(cache.fetch(select("3"), rows));
  EXPECT_EQ(rows.rows(), 1U);
  EXPECT_THAT(journal.bound, ElementsAre("text 3"));
}

TEST_F(PlanCacheTest, FetchRefusesAStatementWithoutRowsAndDoesNotRunIt) {
  engine::RowStore rows(std::vector<ColumnType>{});
  EXPECT_THROW(std::ignore = cache.fetch(byCode("1"), rows), Error);
  EXPECT_TRUE(journal.runs.empty());
}

TEST_F(PlanCacheTest, OtherTablesThatARunHasMetForgetEveryPlan) {
  run(byCode("1"));
  tables = shopCatalogue();
  run(byCode("2"));  // nothing tells
  EXPECT_EQ(cache.counters().translated, 1U);
  journal.meetsOtherSchema = true;
  run(byCode("3"));
  run(byCode("4"));
  EXPECT_EQ(cache.counters().translated, 2U);
  EXPECT_EQ(journal.prepared, 2);
  run(byCode("5"));  // compiled again for nothing: the tables are the same
  EXPECT_EQ(cache.counters().translated, 2U);
  tables = std::make_shared<const Catalogue>();
  run(byCode("6"));
  EXPECT_EQ(errorOf(byCode("7")), errors::kTableNotFound);
}

TEST_F(PlanCacheTest, AComposedTextIsPreparedOnce) {
  const std::vector<Value> values{Value::ofText("a"), Value::ofInteger(1)};
  for (int i = 0; i < 3; ++i) EXPECT_EQ(cache.run("UPDATE T SET A=? WHERE B=?", values), 1);
  EXPECT_EQ(journal.prepared, 1);
  EXPECT_THAT(journal.bound, ElementsAre("text a", "whole 1"));
  engine::RowStore returned(std::vector<ColumnType>{ColumnType::kInt32});
  EXPECT_EQ(cache.run("INSERT INTO T VALUES (?, ?) RETURNING A", values, &returned), 1);
  EXPECT_EQ(returned.rows(), 1U);
}

TEST_F(PlanCacheTest, AComposedTextNeedsAValueForEachPlaceholder) {
  const std::vector<Value> values{Value::ofText("a")};
  EXPECT_THROW(cache.run("UPDATE T SET A=? WHERE B=?", values), Error);
  EXPECT_TRUE(journal.runs.empty());
}

TEST_F(PlanCacheTest, ManyShapesAreForgottenAndWhatIsUsedStays) {
  const auto shapeNumber = [](int number) {
    return Statement("SELECT Codigo AS C")
           << Statement::trusted(std::to_string(number)) << " FROM Lineas WHERE Codigo = '"
           << spliced("a") << "'";
  };
  run(byCode("1"));
  for (int count = 1; count <= 1500; ++count) {
    run(shapeNumber(count));
    run(byCode(std::to_string(count)));
  }
  EXPECT_EQ(cache.counters().translated, 1501U);
  EXPECT_EQ(journal.prepared, 1501);
  run(shapeNumber(1));
  EXPECT_EQ(cache.counters().translated, 1502U);
  run(shapeNumber(1500));
  EXPECT_EQ(cache.counters().translated, 1502U);
}

TEST_F(PlanCacheTest, TheTextBetweenTheValuesDecidesNotWhereTheValuesLie) {
  // The same joined text, cut differently.
  run(Statement("DELETE FROM Lineas WHERE Codigo = '") << spliced("ab") << "'");
  run(Statement("DELETE FROM Lineas WHERE Codigo = '") << spliced("a") << spliced("b") << "'");
  EXPECT_THAT(journal.bound, ElementsAre("text ab"));
  run(Statement("DELETE FROM Lineas WHERE Codigo = '") << spliced("x") << spliced("y") << "'");
  EXPECT_THAT(journal.bound, ElementsAre("text xy"));
  run(Statement("DELETE FROM Lineas WHERE Codigo = '") << "a" << spliced("b") << "'");
  EXPECT_THAT(journal.bound, ElementsAre("text ab"));
  EXPECT_EQ(cache.counters().translated, 1U);
  EXPECT_EQ(cache.counters().shapeHits, 1U);
}

}  // namespace
}  // namespace tavelor::dialect::test
