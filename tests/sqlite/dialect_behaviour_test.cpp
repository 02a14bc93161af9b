// SPDX-License-Identifier: MIT
// What statements of the dialect do to rows of the embedded engine.
#include <algorithm>

#include <gmock/gmock.h>

#include "tests/sqlite/dialect_shop.hpp"

namespace tavelor::engine::test {
namespace {

using testing::ElementsAre;

TEST_F(DialectBehaviour, GroupingByAConstantIsOneGroup) {
  EXPECT_EQ(first("SELECT Count(*) FROM Tarifas GROUP BY 1"), "2");
  EXPECT_EQ(first("SELECT Count(*) FROM Tarifas GROUP BY 444444"), "2");
  EXPECT_EQ(first("SELECT Count(*) FROM Tarifas GROUP BY True, -(-1), #1/1/2001#"), "2");
  EXPECT_EQ(first("SELECT Count(*) FROM Tarifas WHERE Orden = 9 GROUP BY 1"), "none");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Activo = True ORDER BY False, -True"), "a");
}

TEST_F(DialectBehaviour, RowsOfATableComeAsTheyWereStoredWhateverIndexesItHas) {
  run("INSERT INTO Tarifas (Codigo, Nombre, Orden) VALUES ('0', 'Tres', 2)");
  const auto rows = [&](std::string_view text) { return all(text); };
  EXPECT_THAT(rows("SELECT Codigo FROM Tarifas"), ElementsAre("a", "b", "0"));
  for (const char* index : {"(Orden, Codigo)", "(Nombre)", "(Activo, Orden, Codigo)"}) {
    for (const std::string& text : dialect::translateSchema(
             std::string("CREATE INDEX IX_") + index[1] + " ON Tarifas " + index,
             dialect::sqliteWriter())) {
      session->execute(text);
    }
    EXPECT_THAT(rows("SELECT Codigo FROM Tarifas"), ElementsAre("a", "b", "0")) << index;
    EXPECT_THAT(rows("SELECT Codigo FROM Tarifas WHERE Orden = 2"), ElementsAre("b", "0")) << index;
    EXPECT_THAT(rows("SELECT Codigo FROM Tarifas WHERE Orden Between 0 And 9"),
                ElementsAre("a", "b", "0"))
        << index;
    EXPECT_THAT(rows("SELECT TOP 1 Codigo FROM Tarifas WHERE Orden Between 2 And 9"),
                ElementsAre("b"))
        << index;
    EXPECT_THAT(rows("SELECT Codigo FROM Tarifas ORDER BY Codigo"), ElementsAre("0", "a", "b"))
        << index;
  }
}

TEST_F(DialectBehaviour, RowsAreCopiedInTheOrderThatTheyWereStored) {
  run("INSERT INTO Tarifas (Codigo, Orden) VALUES ('0', 2)");
  run("INSERT INTO Lineas (Codigo) SELECT Codigo FROM Tarifas");
  EXPECT_THAT(all("SELECT Codigo FROM Lineas ORDER BY Id"), ElementsAre("a", "b", "0"));
}

TEST_F(DialectBehaviour, QuotedNumbersAreReadByTheLocale) {
  EXPECT_EQ(value("Precio"), "1.5");
  run("UPDATE Tarifas SET Precio = Precio + '1.000,25' WHERE Codigo = 'a'");
  EXPECT_EQ(value("Precio"), "1001.75");
  EXPECT_EQ(value("Precio / '2,5'"), "400.7");
  EXPECT_EQ(error("UPDATE Tarifas SET Precio = 'uno'"), errors::kTypeMismatch);
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Precio = '10,0'"), "b");
}

TEST_F(DialectBehaviour, AnEmptyTextEqualsNoNumberAndIsNoneToStore) {
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Orden = ''"), "none");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Fecha > ''"), "none");
  EXPECT_EQ(error("UPDATE Tarifas SET Orden = ''"), errors::kTypeMismatch);
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Orden IN ('', 2)"), "b");
  EXPECT_EQ(first("SELECT Count(*) FROM Tarifas GROUP BY Orden = ''"), "2") << "no placeholder";
}

TEST_F(DialectBehaviour, OnlyACounterNumbersItselfAndAnotherKeyMustBeGiven) {
  run("INSERT INTO Lineas (Codigo) VALUES ('a')");
  EXPECT_EQ(first("SELECT Id FROM Lineas"), "1");
  EXPECT_EQ(error("INSERT INTO Numeradas (Nombre) VALUES ('x')"), errors::kIntegrityViolation);
  EXPECT_EQ(error("INSERT INTO Numeradas (Id, Nombre) VALUES (Null, 'x')"),
            errors::kIntegrityViolation);
  run("INSERT INTO Numeradas (Id, Nombre) VALUES (7, 'x')");
  EXPECT_EQ(error("UPDATE Numeradas SET Id = Null"), errors::kIntegrityViolation);
  EXPECT_EQ(first("SELECT Id FROM Numeradas"), "7");
}

TEST_F(DialectBehaviour, TheSecondEqualsSignCompares) {
  run("UPDATE Tarifas SET Cantidad = Cantidad = Cantidad + 3 WHERE Codigo = 'a'");
  EXPECT_EQ(value("Cantidad"), "0");
  run("UPDATE Tarifas SET Cantidad = Cantidad = Cantidad + 0 WHERE Codigo = 'a'");
  EXPECT_EQ(value("Cantidad"), "-1");
}

TEST_F(DialectBehaviour, DivisionIsRealAndByZeroAnError) {
  EXPECT_EQ(value("Orden / 2"), "0.5");
  EXPECT_EQ(error("UPDATE Tarifas SET Precio = Precio / Cantidad"), errors::kDivisionByZero);
  EXPECT_EQ(value("Precio"), "1.5") << "nothing of the failed statement is left";
}

TEST_F(DialectBehaviour, MoneyKeepsFourDecimalsAndWholeColumnsRoundToEven) {
  run("UPDATE Tarifas SET Precio = 1 / 3, Orden = 5 / 2, Corto = '3,5'");
  EXPECT_EQ(value("Precio"), "0.3333");
  EXPECT_EQ(value("Orden"), "2");
  EXPECT_EQ(value("Corto"), "4");
  EXPECT_EQ(error("UPDATE Tarifas SET Corto = 40000"), errors::kMultipleStep);
  EXPECT_EQ(error("UPDATE Tarifas SET Corto = Orden * 40000"), errors::kOverflow);
}

TEST_F(DialectBehaviour, MoneyStaysExactInSumsProductsAndComparisons) {
  for (const char* amount : {"0.1", "0.2"}) {
    run("INSERT INTO Lineas (Codigo, Importe) VALUES ('s', " + std::string(amount) + ")");
  }
  EXPECT_EQ(first("SELECT Count(*) FROM Lineas HAVING Sum(Importe) > 0.3"), "none");
  EXPECT_EQ(first("SELECT Count(*) FROM Lineas HAVING Sum(Importe) = 0.3"), "2");
  EXPECT_EQ(first("SELECT Importe FROM Lineas WHERE Importe * 3 = 0.3"), "0.1");
  EXPECT_EQ(first("SELECT Importe FROM Lineas WHERE Importe + 0.1 = 0.3"), "0.2");
  EXPECT_EQ(first("SELECT Importe FROM Lineas WHERE 0.3 - Importe = 0.1"), "0.2");
  EXPECT_EQ(first("SELECT Importe FROM Lineas WHERE Importe / 0.1 = 2"), "0.2");
  EXPECT_EQ(first("SELECT Importe FROM Lineas WHERE Importe * Importe = 0.01"), "0.1");
  EXPECT_EQ(first("SELECT Avg(Importe) FROM Lineas HAVING Avg(Importe) = 0.15"), "0.15");
  run("UPDATE Lineas SET Importe = 4.35");
  EXPECT_EQ(first("SELECT Int(Importe * 100) FROM Lineas"), "435");
  EXPECT_EQ(first("SELECT Fix(-Importe * 100) FROM Lineas"), "-435");
  EXPECT_EQ(first("SELECT Round(Importe * 1.5, 2) FROM Lineas"), "6.52");
  EXPECT_EQ(first("SELECT Format(Importe * 100, '0') FROM Lineas"), "435");
}

TEST_F(DialectBehaviour, ASumOfManyAmountsIsExactToTheCent) {
  session->execute(
      "INSERT INTO Lineas (Codigo, Importe) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + "
      "1 "
      "FROM n WHERE i < 30000) SELECT 'm', 0.1 FROM n");
  EXPECT_EQ(first("SELECT Codigo FROM Lineas GROUP BY Codigo HAVING Sum(Importe) > 3000"), "none");
  EXPECT_EQ(first("SELECT Codigo FROM Lineas GROUP BY Codigo HAVING Sum(Importe) = 3000"), "m");
}

TEST_F(DialectBehaviour, AmountsInDoubleColumnsAreCalculatedWithAsTheyAreSeen) {
  run("UPDATE Tarifas SET Cantidad = 0.1 WHERE Codigo = 'a'");
  run("UPDATE Tarifas SET Cantidad = Cantidad + 0.2 WHERE Codigo = 'a'");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Cantidad = 0.3"), "a");
  run("UPDATE Tarifas SET Cantidad = 100.3 WHERE Codigo = 'b'");
  EXPECT_EQ(first("SELECT Count(*) FROM Tarifas HAVING Sum(Cantidad) - 100.6 = 0"), "2");
  session->execute("UPDATE Tarifas SET Cantidad = 0.1 + 0.2 WHERE Codigo = 'a'");
  EXPECT_EQ(first("SELECT Count(*) FROM Tarifas HAVING Sum(Cantidad) = 100.6"), "2")
      << "what another program left behind the fifteenth digit does not count";
}

TEST_F(DialectBehaviour, AWholeNumberBeyondALongIsADouble) {
  EXPECT_EQ(first("SELECT 5 FROM Lineas"), "none");
  EXPECT_EQ(value("3000000000"), "3000000000");
  EXPECT_EQ(value("7"), "7");
  EXPECT_EQ(value("-2147483648"), "-2147483648");
  EXPECT_EQ(value("2147483648 + 1"), "2147483649");
  EXPECT_EQ(errorNumber([&] { value("2147483647 + 1"); }), errors::kOverflow);
  EXPECT_EQ(errorNumber([&] { value("65536 * 65536"); }), errors::kOverflow);
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Orden + 2147483647 > 3000000000"), "none");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Orden + 2147483647 = 2147483649"), "b");
}

TEST_F(DialectBehaviour, WhatNoDoubleHoldsIsNotStored) {
  EXPECT_EQ(error("UPDATE Tarifas SET Cantidad = 1e308 * 10"), errors::kOverflow);
  EXPECT_EQ(error("UPDATE Tarifas SET Cantidad = Val('1e999')"), errors::kOverflow);
  EXPECT_EQ(error("UPDATE Tarifas SET Cantidad = 1e400"), errors::kMultipleStep);
  EXPECT_EQ(errorNumber([&] { value("1e308 * 10"); }), errors::kOverflow);
  run("UPDATE Tarifas SET Cantidad = 1e308");
  EXPECT_EQ(errorNumber([&] { first("SELECT Sum(Cantidad) FROM Tarifas"); }), errors::kOverflow);
  EXPECT_EQ(error("UPDATE Tarifas SET Cantidad = Cantidad + Cantidad"), errors::kOverflow);
}

TEST_F(DialectBehaviour, LongAndDeepCalculationsRunOrAreRefusedByName) {
  const auto chain = [](std::string_view sign, int count) {
    std::string text = "Cantidad";
    for (int i = 0; i < count; ++i) text.append(sign).append("1.0");
    return text;
  };
  EXPECT_EQ(value(chain(" + ", 300)), "303");
  EXPECT_EQ(value(chain(" - ", 300)), "-297");
  EXPECT_EQ(value(chain(" * ", 300)), "3");
  for (const std::string_view open :
       {"(1.5 * ", "1.0 + 1.5 * (", "Round(1.5 + ", "(1.0 - Cantidad * ("}) {
    for (int depth = 1; depth <= 16; ++depth) {
      std::string text;
      for (int i = 0; i < depth; ++i) text += open;
      text += "Cantidad";
      const auto opened = std::count(text.begin(), text.end(), '(');
      text.append(static_cast<std::size_t>(opened), ')');
      const auto failed = errorOf([&] { value(text); });
      if (failed) {
        EXPECT_EQ(failed->number(), errors::kNotSupported) << text;
      }
      if (depth <= 7) {
        EXPECT_FALSE(failed) << text;
      }
    }
  }
  EXPECT_EQ(errorNumber([&] { value(chain(" / ", 60)); }), errors::kNotSupported);
}

TEST_F(DialectBehaviour, RoundGoesToEven) {
  EXPECT_EQ(value("Round(2.5)"), "2");
  EXPECT_EQ(value("Round(0.12345, 4)"), "0.1234");
}

TEST_F(DialectBehaviour, BranchesBecomeWhatBothShareByTheLocale) {
  EXPECT_EQ(value("IIf(Orden = 1, 1.5, 'nada')"), "1,5");
  EXPECT_EQ(value("IIf(Orden = 2, 1.5, 'nada')"), "nada");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE IIf(Orden = 1, Precio, 'nada') = '1,5'"), "a");
  EXPECT_EQ(value("IIf(True, Activo, 'x')"), "Verdadero");
  EXPECT_EQ(value("IIf(True, Fecha, 'x')"), "05/03/2026");
  EXPECT_EQ(value("IIf(True, Fecha, 0)"), "46086");
  EXPECT_EQ(value("IIf(True, 7, 0.5)"), "7");
  EXPECT_EQ(value("Nz(Nombre, 0)", "b"), "0");
  EXPECT_EQ(value("Nz(Orden, 'nada')"), "1");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Nz(Precio, '') = '10'"), "b");
  EXPECT_EQ(value("Nz(Nombre, 1.5) & '!'", "b"), "1,5!");
}

TEST_F(DialectBehaviour, InStrFindsWithoutRegardToCaseAndFromAPlace) {
  EXPECT_EQ(value("InStr('La CAÑA', 'ñ')"), "6");
  EXPECT_EQ(value("InStr('abcabc', 'C')"), "3");
  EXPECT_EQ(value("InStr(4, 'abcabc', 'c')"), "6");
  EXPECT_EQ(value("InStr(4.5, 'abcabc', 'a')"), "4") << "halves to even";
  EXPECT_EQ(value("InStr(1, 'abcabc', 'C', 0)"), "0");
  EXPECT_EQ(value("InStr(1, 'abcabC', 'C', 0)"), "6");
  EXPECT_EQ(value("InStr(1, 'abcabc', 'C', 1)"), "3");
  EXPECT_EQ(value("InStr(3, 'abc', '')"), "3");
  EXPECT_EQ(value("InStr(4, 'abc', '')"), "0");
  EXPECT_EQ(value("InStr('', 'a')"), "0");
  EXPECT_EQ(value("InStr('canción', 'cion')"), "0") << "accents count";
  EXPECT_EQ(value("InStr(Nota, 'a')"), "Null");
  EXPECT_EQ(errorNumber([&] { value("InStr(0, 'abc', 'a')"); }), errors::kInvalidCall);
  EXPECT_EQ(errorNumber([&] { value("InStr(1, 'abc', 'a', 3)"); }), errors::kInvalidCall);
  EXPECT_EQ(errorNumber([&] { value("InStr(1, 'abc', 'a', 1, 1)"); }), errors::kSyntax);
}

TEST_F(DialectBehaviour, WeekdayCountsFromItsFirstDay) {
  // 5 March 2026 is a Thursday.
  EXPECT_EQ(value("Weekday(Fecha)"), "5");
  EXPECT_EQ(value("Weekday(Fecha, 1)"), "5");
  EXPECT_EQ(value("Weekday(Fecha, 2)"), "4");
  EXPECT_EQ(value("Weekday(Fecha, 5)"), "1");
  EXPECT_EQ(value("Weekday(Fecha, 6)"), "7");
  EXPECT_EQ(value("Weekday(Fecha, 0)"), "4") << "the country's own: Monday";
  EXPECT_EQ(errorNumber([&] { value("Weekday(Fecha, 8)"); }), errors::kInvalidCall);
}

TEST_F(DialectBehaviour, AndOrAndNotOfNumbersGoBitByBit) {
  EXPECT_EQ(value("10 And 12"), "8");
  EXPECT_EQ(value("10 Or 12"), "14");
  EXPECT_EQ(value("Not 5"), "-6");
  EXPECT_EQ(value("Not 0"), "-1");
  EXPECT_EQ(value("2.5 And 3"), "2") << "halves to even";
  EXPECT_EQ(value("6 And (Orden = 1)"), "6") << "true has all bits";
  EXPECT_EQ(value("(10 And 8) = 8"), "-1");
  EXPECT_EQ(value("Null And 0"), "0");
  EXPECT_EQ(value("(Null + 1) And 0"), "0");
  EXPECT_EQ(value("(Null + 1) Or -1"), "-1");
  EXPECT_EQ(value("(Null + 1) And 1"), "Null");
  EXPECT_EQ(errorNumber([&] { value("3000000000 And 1"); }), errors::kOverflow);
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Orden And 2"), "b") << "1 And 2 is 0";
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Not Orden ORDER BY Codigo"), "a");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Orden = 2 And 4"), "b");
  EXPECT_EQ(first("SELECT Count(*) FROM Tarifas WHERE Activo Or Orden"), "2");
  EXPECT_EQ(error("DELETE FROM Tarifas WHERE Codigo And 1"), errors::kCriteriaTypeMismatch);
}

TEST_F(DialectBehaviour, NumbersMayBeHexadecimalAndOctal) {
  EXPECT_EQ(value("&H1A"), "26");
  EXPECT_EQ(value("&o17 + &hff"), "270");
  EXPECT_EQ(value("&HFFFF"), "-1");
  EXPECT_EQ(value("&HFFFF&"), "65535");
  EXPECT_EQ(value("Val('&HFFFF')"), "-1");
  EXPECT_EQ(value("'x' &Orden"), "x1") << "a name behind & is joined";
  EXPECT_EQ(errorNumber([&] { value("'x' &H1A"); }), errors::kMissingParameter) << "a name: H1A";
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas ORDER BY &H1"), "a");
  EXPECT_EQ(error("DELETE FROM Tarifas WHERE Orden = &H1G"), errors::kSyntax);
}

TEST_F(DialectBehaviour, ADayThatAStatementComputesIsOneOfTheYearsThatThereAre) {
  EXPECT_EQ(error("UPDATE Tarifas SET Fecha = Fecha + 3000000"), errors::kOverflow);
  EXPECT_EQ(error("UPDATE Tarifas SET Fecha = Orden - 700000"), errors::kOverflow);
  EXPECT_EQ(error("INSERT INTO Tarifas (Codigo, Fecha) SELECT 'x', Fecha * 99 FROM Tarifas"),
            errors::kOverflow);
  run("UPDATE Tarifas SET Fecha = Fecha + 1 WHERE Codigo = 'a'");
  EXPECT_EQ(value("Fecha"), "46087");
  run("UPDATE Tarifas SET Fecha = Date() WHERE Codigo = 'b'");
}

TEST_F(DialectBehaviour, AListOfManyValuesAndANameOfAMegabyteAreRead) {
  std::string list = "SELECT Codigo FROM Tarifas WHERE Orden IN (9";
  for (int i = 0; i < 100'000; ++i) list += ", 9";
  EXPECT_EQ(first(list + ", 2)"), "b");
  const std::string name(1 << 20, 'x');
  const auto failed = errorOf([&] { first("SELECT " + name + " FROM Tarifas"); });
  ASSERT_TRUE(failed);
  EXPECT_EQ(failed->number(), errors::kMissingParameter);
  EXPECT_LT(failed->description().size(), 5'000U);
  EXPECT_EQ(error("UPDATE Tarifas SET Nota = " + name + "('x')"), errors::kNotSupported);
}

TEST_F(DialectBehaviour, TextsTooLongForTheirColumnAreRefused) {
  EXPECT_EQ(error("UPDATE Tarifas SET Nombre = '12345678901'"), errors::kMultipleStep);
  EXPECT_EQ(error("UPDATE Tarifas SET Nombre = '123456789' & 'ñÑ'"), errors::kMultipleStep);
  run("UPDATE Tarifas SET Nombre = '12345678' & 'ñÑ'");
  EXPECT_EQ(value("Nombre"), "12345678ñÑ");
}

TEST_F(DialectBehaviour, FlagsAreMinusOneOrZero) {
  EXPECT_EQ(value("Activo"), "-1");
  EXPECT_EQ(value("Activo", "b"), "0");
  run("UPDATE Tarifas SET Activo = '7' WHERE Codigo = 'b'");
  EXPECT_EQ(value("Activo", "b"), "-1");
  run("UPDATE Tarifas SET Activo = Orden - 2");
  EXPECT_EQ(value("Activo", "b"), "0");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Activo = True"), "a");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Not Activo"), "b");
  EXPECT_EQ(value("Sum(Activo)"), "-1");
}

TEST_F(DialectBehaviour, ExistsComparesWithTrueAndFalse) {
  run("INSERT INTO Lineas (Codigo, Importe) VALUES ('a', 5)");
  const std::string exists =
      "SELECT Codigo FROM Tarifas WHERE (Exists (SELECT Id FROM Lineas WHERE Lineas.Codigo = "
      "Tarifas.Codigo)) = ";
  EXPECT_EQ(first(exists + "True"), "a");
  EXPECT_EQ(first(exists + "false"), "b");
}

TEST_F(DialectBehaviour, BetweenTakesItsBoundsInAnyOrder) {
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Orden BETWEEN 3 AND 2"), "b");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Fecha BETWEEN 46087 AND #1/1/2026#"), "a");
}

TEST_F(DialectBehaviour, DatesCompareWithDayNumbersAndLocalTexts) {
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Fecha = 46086"), "a");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Fecha = '05/03/2026'"), "a");
  EXPECT_EQ(value("Year(Fecha) * 100 + Month(Fecha)"), "202603");
  EXPECT_EQ(value("Format(Fecha, 'dd/mm/yyyy')"), "05/03/2026");
}

TEST_F(DialectBehaviour, TextsCompareByExactCharactersAndLikeDoesNot) {
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Codigo = 'A'"), "none");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Nombre LIKE 'u*'"), "a");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Nombre LIKE '_N%'"), "a");
}

TEST_F(DialectBehaviour, AmpersandTakesNullAsEmptyAndPlusDoesNot) {
  EXPECT_EQ(value("Codigo & '-' & Nombre", "b"), "b-");
  EXPECT_EQ(value("Codigo + '-' + Nombre", "b"), "Null");
  EXPECT_EQ(value("Nombre & Nota", "b"), "Null");
  EXPECT_EQ(value("Codigo & Precio"), "a1,5");
}

TEST_F(DialectBehaviour, NullSortsFirstAndEqualsNothing) {
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas ORDER BY Nombre"), "b");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas ORDER BY Nombre DESC"), "a");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Nombre = Null"), "none");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Nombre IS NULL"), "b");
}

TEST_F(DialectBehaviour, AColumnGoesBeforeAnAliasOfItsNameInOrderBy) {
  EXPECT_EQ(first("SELECT -Orden AS Orden FROM Tarifas ORDER BY Orden"), "-1");
}

TEST_F(DialectBehaviour, AnInnerJoinUpdatesMatchedRowsOnly) {
  run("INSERT INTO Lineas (Codigo, Importe) VALUES ('a', 5)");
  EXPECT_EQ(run("UPDATE Tarifas INNER JOIN Lineas ON Tarifas.Codigo = Lineas.Codigo "
                "SET Tarifas.Precio = Tarifas.Precio + Lineas.Importe"),
            1);
  EXPECT_EQ(value("Precio"), "6.5");
  EXPECT_EQ(value("Precio", "b"), "10");
}

TEST_F(DialectBehaviour, ALeftJoinUpdatesRowsWithoutPartnerWithNull) {
  run("INSERT INTO Lineas (Codigo, Importe) VALUES ('a', 5)");
  run("UPDATE Tarifas LEFT JOIN Lineas ON Tarifas.Codigo = Lineas.Codigo "
      "SET Tarifas.Precio = Lineas.Importe WHERE Orden Between 0 And 9");
  EXPECT_EQ(value("Precio"), "5");
  EXPECT_EQ(value("Precio", "b"), "Null");
}

TEST_F(DialectBehaviour, AJoinedDeleteTakesRowsFromTheNamedTable) {
  run("INSERT INTO Lineas (Codigo, Importe) VALUES ('a', 5)");
  run("INSERT INTO Lineas (Codigo, Importe) VALUES ('b', 6)");
  run("DELETE Lineas.* FROM (Lineas INNER JOIN Tarifas ON Lineas.Codigo = Tarifas.Codigo) "
      "WHERE Activo <> 0");
  EXPECT_EQ(first("SELECT Sum(Importe) FROM Lineas"), "6");
  EXPECT_EQ(first("SELECT Count(*) FROM Tarifas"), "2");
}

TEST_F(DialectBehaviour, CountersFillThemselvesAndTakeAGivenNumberToo) {
  run("INSERT INTO Lineas (Codigo) VALUES ('a')");
  run("INSERT INTO Lineas (Id, Codigo) SELECT 41 AS Expr1, 'b' AS Expr2");
  run("INSERT INTO Lineas (Codigo) VALUES ('c')");
  EXPECT_EQ(first("SELECT Max(Id) FROM Lineas"), "42");
}

TEST_F(DialectBehaviour, GroupsFirstAndUnion) {
  run("INSERT INTO Lineas (Codigo, Importe) VALUES ('b', 6)");
  run("INSERT INTO Lineas (Codigo, Importe) VALUES ('b', 7)");
  EXPECT_EQ(first("SELECT First(Importe) FROM Lineas GROUP BY Codigo HAVING Count(*) > 1"), "6");
  EXPECT_EQ(first("SELECT Last(Importe) FROM Lineas"), "7");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas UNION SELECT Codigo FROM Lineas ORDER BY 1 DESC"),
            "b");
  EXPECT_EQ(first("SELECT Sum(Importe) FROM Lineas WHERE Codigo = 'x'"), "Null");
}

TEST_F(DialectBehaviour, AFailedStatementLeavesNothing) {
  EXPECT_EQ(error("INSERT INTO Tarifas (Codigo, Nombre) SELECT Codigo, Nombre FROM Tarifas"),
            errors::kIntegrityViolation);
  EXPECT_EQ(error("UPDATE Tarifas SET Codigo = 'a'"), errors::kIntegrityViolation);
  EXPECT_EQ(first("SELECT Count(*) FROM Tarifas"), "2");
}

}  // namespace
}  // namespace tavelor::engine::test
