// SPDX-License-Identifier: MIT
// What statements become: names, types, conversions, result columns.
#include <gmock/gmock.h>

#include "tests/dialect/support.hpp"

namespace tavelor::dialect::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;

/// The condition of a SELECT as the engine gets it.
std::string condition(std::string_view text) {
  const std::string sql = sqlOf("SELECT Count(*) FROM Bancos WHERE " + std::string(text));
  return sql.substr(sql.find("WHERE ") + 6);
}
/// A value in a SELECT's list.
std::string item(std::string_view text) {
  const std::string sql = sqlOf("SELECT Codigo, " + std::string(text) + " FROM Bancos");
  return sql.substr(15, sql.rfind(" FROM") - 15);
}
std::vector<Parameter> parameters(std::string_view text) {
  return planOf(text).steps.at(0).parameters;
}
std::vector<std::string> names(const Plan& plan) {
  std::vector<std::string> result;
  for (const OutputColumn& column : plan.columns) result.push_back(column.name);
  return result;
}
ColumnType typeOfItem(std::string_view text) {
  return planOf("SELECT Codigo, " + std::string(text) + " FROM Bancos").columns.at(1).type;
}

TEST(Names, DoNotCareAboutCaseAndComeOutAsTheTableHasThem) {
  EXPECT_EQ(sqlOf("select BANCO, bancos.codigo from bancos"),
            "SELECT Banco, Codigo FROM Bancos ORDER BY rowid");
}

TEST(Names, InBracketsMayHoldBlanksAndBangsSeparateToo) {
  EXPECT_EQ(item("[Bancos]![Base Imponible]"), "\"Base Imponible\"");
  EXPECT_EQ(item("`Banco`"), "Banco");
}

TEST(Names, StandWithTheirTableWhereSeveralTablesAre) {
  EXPECT_EQ(
      sqlOf("SELECT Orden, Importe FROM Bancos AS b INNER JOIN Apuntes a ON b.Codigo=a.Banco"),
      "SELECT b.Orden, a.Importe, a.Id FROM Bancos AS b INNER JOIN Apuntes AS a "
      "ON b.Codigo = a.Banco");
  EXPECT_EQ(condition("Exists (SELECT Id FROM Apuntes WHERE Apuntes.Banco = Codigo)"),
            "EXISTS (SELECT Apuntes.Id FROM Apuntes WHERE Apuntes.Banco = Bancos.Codigo)");
}

TEST(Names, OfAnEarlierItemServeALaterOneUnlessAColumnHasThem) {
  EXPECT_EQ(sqlOf("SELECT Codigo, Orden + 1 AS X, X * 2 AS Y FROM Bancos"),
            "SELECT Codigo, Orden + ?1, (Orden + ?1) * ?2 FROM Bancos ORDER BY rowid");
  EXPECT_EQ(sqlOf("SELECT Codigo, Orden AS Banco, Banco AS Y FROM Bancos"),
            "SELECT Codigo, Orden, Banco FROM Bancos ORDER BY rowid");
  EXPECT_EQ(errorOf("SELECT Codigo, Orden AS X FROM Bancos WHERE X = 1").number(),
            errors::kMissingParameter);
}

TEST(Order, OfRowsOfOneTableThatNamesNoneIsThatOfTheTable) {
  const std::string stored = " ORDER BY rowid";
  const auto isStored = [&](std::string_view text) { return sqlOf(text).ends_with(stored); };
  EXPECT_TRUE(isStored("SELECT Codigo FROM Bancos"));
  EXPECT_TRUE(isStored("SELECT b.Codigo FROM Bancos AS b WHERE b.Orden = 3 Or Not b.Activo"));
  EXPECT_TRUE(isStored("SELECT Codigo FROM Bancos WHERE Orden Between 3 And 5"));
  EXPECT_TRUE(isStored("SELECT Codigo FROM Bancos WHERE 3 <= Orden And Activo And Orden < 5"));
  EXPECT_FALSE(isStored("SELECT Codigo FROM Bancos ORDER BY Banco"));
  EXPECT_FALSE(isStored("SELECT DISTINCT Banco FROM Bancos")) << "no row stands behind it";
  EXPECT_FALSE(isStored("SELECT Banco FROM Bancos GROUP BY Banco"));
  EXPECT_FALSE(isStored("SELECT Max(Banco) FROM Bancos"));
  EXPECT_FALSE(isStored("SELECT Codigo FROM Bancos UNION SELECT Banco FROM Apuntes"));
  EXPECT_FALSE(isStored("SELECT Codigo, Importe FROM Bancos, Apuntes")) << "two tables have two";
  EXPECT_FALSE(isStored("SELECT 1")) << "nothing is stored";
}

// An engine would read the whole table to have a day's rows in order.
TEST(Order, OfAnOpenRangeIsTheEngines) {
  for (const char* where :
       {"Orden > 3", "3 > Orden", "Activo And Alta >= #01/01/2026#", "Orden > 3 And Orden >= 5",
        "Orden > 3 And Corto < 5", "Codigo = 'a' Or Orden <= 3"}) {
    EXPECT_FALSE(sqlOf(std::string("SELECT Codigo FROM Bancos WHERE ") + where).ends_with("rowid"))
        << where;
  }
}

TEST(Operators, BindAsInTheDialect) {
  EXPECT_EQ(item("2 + 3 * 4"), "?1 + ?2 * ?3");
  EXPECT_EQ(item("(2 + 3) * 4"), "(?1 + ?2) * ?3");
  EXPECT_EQ(item("2 - (3 - 4)"), "?1 - (?2 - ?3)");
  EXPECT_EQ(item("2 ^ 3 ^ 2"), "tv_power(tv_power(?1, ?2), ?3)");
  EXPECT_EQ(item("-Orden ^ 2"), "-tv_power(Orden, ?1)");
  EXPECT_EQ(item("10 \\ 3 Mod 2"), "tv_mod(tv_intdiv(?1, ?2), ?3)");
  EXPECT_EQ(item("1 / 2 / 3"), "tv_div(tv_div(?1, ?2), ?3)");
  EXPECT_EQ(item("1 & 2 + 3"),
            "CASE WHEN coalesce(tv_text(?1, 3), tv_text(?2 + ?3, 3)) IS NOT "
            "NULL THEN coalesce(tv_text(?1, 3), '') || "
            "coalesce(tv_text(?2 + ?3, 3), '') END");
  EXPECT_EQ(condition("Not Orden = 1 Or Orden = 2 And Orden = 3"),
            "NOT Orden = ?1 OR Orden = ?2 AND Orden = ?3");
  EXPECT_EQ(condition("Not (Codigo) Is Null"), "NOT Codigo IS NULL");
}

TEST(Comparison, ChainsFromTheLeftAndIsMinusOneAsAValue) {
  EXPECT_EQ(sqlOf("UPDATE Bancos SET Tipo = Tipo = Tipo + 3"),
            "UPDATE Bancos SET Tipo = -(Tipo = tv_add(Tipo, ?1))");
  EXPECT_EQ(condition("Orden = 1 = 2"), "-(Orden = ?1) = ?2");
  EXPECT_EQ(item("Orden > 3"), "-(Orden > ?1)");
  EXPECT_EQ(typeOfItem("Orden > 3"), ColumnType::kBoolean);
}

TEST(Comparison, OfAConditionWithTrueOrFalseIsTheConditionOrItsContrary) {
  const std::string exists = "EXISTS (SELECT Apuntes.Id FROM Apuntes)";
  EXPECT_EQ(condition("Exists (SELECT Id FROM Apuntes) = True"), exists);
  EXPECT_EQ(condition("(Exists (SELECT Id FROM Apuntes))=false"), "NOT " + exists);
  EXPECT_EQ(condition("Exists (SELECT Id FROM Apuntes) <> True"), "NOT " + exists);
  EXPECT_EQ(condition("False = (Orden = 1)"), "NOT Orden = ?1");
}

TEST(Comparison, ABareFlagOrNumberIsTrueUnlessZero) {
  EXPECT_EQ(condition("Activo"), "Activo <> 0");
  EXPECT_EQ(condition("Not Activo And Orden"), "NOT Activo <> 0 AND Orden <> 0");
  EXPECT_EQ(condition("Activo = True"), "Activo = -1");
}

TEST(Comparison, BoundsOfBetweenStandInAnyOrder) {
  EXPECT_EQ(condition("Orden Between 9 And 3"), "Orden BETWEEN min(?1, ?2) AND max(?1, ?2)");
  EXPECT_EQ(condition("Orden Not Between 9 And 3"),
            "Orden NOT BETWEEN min(?1, ?2) AND max(?1, ?2)");
}

TEST(Comparison, WithNullStaysAsItIs) {
  EXPECT_EQ(condition("Codigo = Null"), "Codigo = NULL");
  EXPECT_EQ(condition("IsNull(Codigo)"), "Codigo IS NULL");
}

TEST(Conversion, OfAQuotedNumberComesFromWhatItMeets) {
  const auto first = [](std::string_view text) { return parameters(text).at(0).conversion; };
  EXPECT_EQ(first("SELECT Codigo FROM Bancos WHERE Orden = '7'"), Conversion::kNumberByLocale);
  EXPECT_EQ(first("SELECT Codigo FROM Bancos WHERE '7' < Saldo"), Conversion::kNumberByLocale);
  EXPECT_EQ(first("SELECT Codigo FROM Bancos WHERE Orden IN ('7')"), Conversion::kNumberByLocale);
  EXPECT_EQ(first("SELECT Codigo FROM Bancos WHERE Orden BETWEEN '7' AND 8"),
            Conversion::kNumberByLocale);
  EXPECT_EQ(first("SELECT Saldo/'166,386' FROM Bancos"), Conversion::kNumberByLocale);
  EXPECT_EQ(first("UPDATE Bancos SET Saldo = Saldo + '1,5'"), Conversion::kNumberByLocale);
  EXPECT_EQ(first("UPDATE Bancos SET Saldo = '1,5'"), Conversion::kNumberByLocale);
  EXPECT_EQ(first("UPDATE Bancos SET Saldo = 1.5"), Conversion::kCurrency);
  EXPECT_EQ(first("UPDATE Bancos SET Activo = '1'"), Conversion::kBoolean);
  EXPECT_EQ(first("UPDATE Bancos SET Activo = 1"), Conversion::kBoolean);
  EXPECT_EQ(first("UPDATE Bancos SET Alta = '05/03/2026'"), Conversion::kDateByLocale);
  EXPECT_EQ(first("SELECT Codigo FROM Bancos WHERE Alta = '05/03/2026'"),
            Conversion::kDateByLocale);
  EXPECT_EQ(first("SELECT Codigo FROM Bancos WHERE Alta = 46086"), Conversion::kNumber);
  EXPECT_EQ(first("SELECT Codigo FROM Bancos WHERE Alta = #3/5/2026#"), Conversion::kDate);
  EXPECT_EQ(first("SELECT Codigo FROM Bancos WHERE Codigo = '7'"), Conversion::kText);
}

TEST(Conversion, OfAnAssignedLiteralBringsTheColumnsLimits) {
  const Parameter text = parameters("UPDATE Bancos SET Codigo = 'a'").at(0);
  EXPECT_EQ(text.maxLength, 6);
  EXPECT_EQ(text.column, "Codigo");
  const Parameter whole = parameters("INSERT INTO Bancos (Codigo, Corto) VALUES ('a', 7)").at(1);
  EXPECT_EQ(whole.columnType, ColumnType::kInt16);
  EXPECT_EQ(whole.column, "Corto");
  EXPECT_EQ(parameters("UPDATE Bancos SET Notas = 'a'").at(0).maxLength, 0);
  const Parameter compared = parameters("SELECT Codigo FROM Bancos WHERE Orden = '7'").at(0);
  EXPECT_EQ(compared.column, "");
  EXPECT_TRUE(compared.compared);
}

TEST(Conversion, OfAnAssignedExpressionIsWrittenOut) {
  const auto assigned = [](std::string_view text) {
    const std::string sql = sqlOf("UPDATE Bancos SET " + std::string(text));
    return sql.substr(sql.find(" = ") + 3);
  };
  EXPECT_EQ(assigned("Saldo = Saldo * 2"), "tv_currency(tv_money_mul(Saldo, ?1))");
  EXPECT_EQ(assigned("Saldo = Saldo"), "Saldo");
  EXPECT_EQ(assigned("Saldo = Banco"), "tv_currency(tv_number(Banco))");
  EXPECT_EQ(assigned("Orden = Orden + 1"), "tv_whole(Orden + ?1, 3)");
  EXPECT_EQ(assigned("Tipo = Orden"), "Orden");
  EXPECT_EQ(assigned("Activo = Orden"), "-(Orden <> 0)");
  EXPECT_EQ(assigned("Activo = Orden > 1"), "-(Orden > ?1)");
  EXPECT_EQ(assigned("Activo = True"), "-1");
  EXPECT_EQ(assigned("Alta = Banco"), "tv_date(Banco)");
  EXPECT_EQ(assigned("Banco = Codigo"), "Codigo");
  EXPECT_EQ(assigned("Codigo = Banco"), "tv_fit(Banco, 6)");
  EXPECT_EQ(assigned("Notas = Banco & 'x'"), "coalesce(Banco, '') || ?1");
  EXPECT_EQ(assigned("Banco = 7"), "tv_fit(tv_text(?1, 3), 50)");
  EXPECT_EQ(assigned("Saldo = Null"), "NULL");
  EXPECT_EQ(assigned("Saldo = Format(Saldo/'166,386','Currency')"),
            "tv_currency(tv_number(tv_format(tv_div(Saldo, ?1), ?2, 5)))");
}

TEST(Plus, JoinsTwoTextsAndAddsEverythingElse) {
  EXPECT_EQ(item("Banco + ' ' + Codigo"), "Banco || ?1 || Codigo");
  EXPECT_EQ(item("Orden + '1'"), "tv_add(Orden, ?1)");
  EXPECT_EQ(item("Banco + 1"), "tv_add(tv_number(Banco), ?1)");
  EXPECT_EQ(typeOfItem("Alta + 1"), ColumnType::kDate);
  EXPECT_EQ(typeOfItem("Alta - Alta"), ColumnType::kDouble);
  EXPECT_EQ(typeOfItem("Orden + Corto"), ColumnType::kInt32);
  EXPECT_EQ(typeOfItem("Saldo + Orden"), ColumnType::kCurrency);
  EXPECT_EQ(typeOfItem("Saldo * 1.5"), ColumnType::kDouble);
}

TEST(Ampersand, TakesNullForAnEmptyText) {
  EXPECT_EQ(item("Codigo & Banco"),
            "CASE WHEN coalesce(Codigo, Banco) IS NOT NULL THEN "
            "coalesce(Codigo, '') || coalesce(Banco, '') END");
  EXPECT_EQ(item("Codigo & '-' & Saldo"),
            "coalesce(Codigo, '') || ?1 || coalesce(tv_text(Saldo, 6), '')");
}

TEST(Functions, BecomeThoseOfTheEngine) {
  EXPECT_EQ(item("Round(Saldo, 2)"), "tv_money_round(Saldo, ?1)");
  EXPECT_EQ(item("Round(Saldo)"), "tv_money_round(Saldo, 0)");
  EXPECT_EQ(typeOfItem("Round(Saldo, 2)"), ColumnType::kCurrency);
  EXPECT_EQ(item("Format(Alta, 'yy')"), "tv_format(Alta, ?1, 7)");
  EXPECT_EQ(item("UCase(Left(Trim(Banco), 1))"), "tv_ucase(tv_left(trim(Banco), ?1))");
  EXPECT_EQ(item("Len(Orden)"), "length(tv_text(Orden, 3))");
  EXPECT_EQ(item("IIf(Activo, 'a', 'b')"), "CASE WHEN Activo <> 0 THEN ?1 ELSE ?2 END");
  EXPECT_EQ(item("Year(Alta)"), "tv_part('yyyy', Alta)");
  EXPECT_EQ(item("Nz(Saldo, 0)"), "coalesce(Saldo, ?1)");
  EXPECT_EQ(item("CLng(Banco)"), "tv_whole(tv_number(Banco), 3)");
  EXPECT_EQ(item("Date()"), "tv_today()");
}

TEST(Like, GoesToTheLibrarysOwn) {
  EXPECT_EQ(condition("Banco Like 'a*'"), "tv_like(Banco, ?1)");
  EXPECT_EQ(condition("Banco Not Like 'a*' And Orden = 1"),
            "NOT tv_like(Banco, ?1) AND Orden = ?2");
}

TEST(Result, BearsAliasColumnNameOrANumberedName) {
  EXPECT_THAT(names(planOf("SELECT Codigo AS Código, banco, 1, 'x' AS [A b], Orden+1 FROM Bancos")),
              ElementsAre("Código", "Banco", "Expr1000", "A b", "Expr1001"));
  EXPECT_THAT(names(planOf("SELECT Bancos.Banco, Apuntes.Banco, Importe FROM Bancos, Apuntes")),
              ElementsAre("Bancos.Banco", "Apuntes.Banco", "Importe"));
}

TEST(Result, OfAStarHasAllColumnsInTheirOrder) {
  EXPECT_THAT(names(planOf("SELECT * FROM Sueltos")), ElementsAre("Texto", "Numero", "rowid"));
  EXPECT_EQ(sqlOf("SELECT 1, Sueltos.*, 2 FROM Sueltos"),
            "SELECT ?1, Texto, Numero, ?2, rowid FROM Sueltos ORDER BY rowid");
}

TEST(Result, TellsTypeSizeAndBase) {
  const Plan plan = planOf("SELECT Codigo, Saldo, Notas, Trim(Banco) FROM Bancos");
  EXPECT_EQ(plan.columns[0].definedSize, 6);
  EXPECT_TRUE(plan.columns[0].key);
  EXPECT_FALSE(plan.columns[0].nullable);
  EXPECT_EQ(plan.columns[1].type, ColumnType::kCurrency);
  EXPECT_EQ(plan.columns[1].definedSize, 8);
  EXPECT_EQ(plan.columns[1].baseTable, "Bancos");
  EXPECT_EQ(plan.columns[2].type, ColumnType::kMemo);
  EXPECT_EQ(plan.columns[3].baseTable, "");
}

TEST(Result, OfOneTableCarriesItsKeyHiddenForWriting) {
  const Plan plan = planOf("SELECT Importe FROM Apuntes");
  EXPECT_EQ(plan.updateTable, "Apuntes");
  ASSERT_EQ(plan.columns.size(), 2U);
  EXPECT_TRUE(plan.columns[1].hidden);
  EXPECT_TRUE(plan.columns[1].autoNumber);
  EXPECT_EQ(plan.steps[0].sql, "SELECT Importe, Id FROM Apuntes ORDER BY rowid");
}

TEST(Result, OfATableWithoutKeyCarriesThePlaceOfTheRow) {
  const Plan plan = planOf("SELECT Texto FROM Sueltos");
  EXPECT_EQ(plan.updateTable, "Sueltos");
  EXPECT_EQ(plan.columns.back().name, "rowid");
  EXPECT_TRUE(plan.columns.back().hidden);
}

TEST(Result, OfAJoinIsWrittenToTheTableFromWhichTheOthersAreLookedUp) {
  for (const std::string_view join :
       {"Apuntes INNER JOIN Bancos ON Apuntes.Banco = Bancos.Codigo",
        "Bancos INNER JOIN Apuntes ON (Apuntes.Banco = Bancos.Codigo AND Importe > 0)",
        "Apuntes LEFT JOIN Bancos ON Apuntes.Banco = Bancos.Codigo",
        "Bancos INNER JOIN Apuntes ON Apuntes.Banco = Bancos.Codigo WHERE Apuntes.Id = 7"}) {
    const Plan plan = planOf("SELECT Importe, Bancos.Saldo FROM " + std::string(join));
    EXPECT_EQ(plan.updateTable, "Apuntes") << join;
    ASSERT_EQ(plan.columns.size(), 3U) << join;
    EXPECT_TRUE(plan.columns[0].updatable) << join;
    EXPECT_FALSE(plan.columns[1].updatable) << "the key of Bancos is not there";
    EXPECT_TRUE(plan.columns[2].hidden && plan.columns[2].updatable) << join;
  }
  EXPECT_EQ(planOf("SELECT Importe, Saldo FROM Apuntes, Bancos WHERE Apuntes.Banco = Bancos.Codigo")
                .updateTable,
            "Apuntes");
  EXPECT_TRUE(planOf("SELECT Importe, Bancos.Codigo, Saldo FROM Apuntes INNER JOIN Bancos ON "
                     "Apuntes.Banco = Bancos.Codigo")
                  .columns[2]
                  .updatable);
}

TEST(Result, CannotBeWrittenOverCrossJoinsGroupsDistinctAndUnion) {
  for (const std::string_view text :
       {"SELECT Importe FROM Apuntes, Bancos",
        "SELECT Importe FROM Apuntes INNER JOIN Bancos ON Apuntes.Banco <> Bancos.Codigo",
        "SELECT Importe FROM Apuntes INNER JOIN Bancos ON (Apuntes.Banco = Bancos.Codigo OR "
        "Importe "
        "= 0)",
        "SELECT Importe FROM Bancos LEFT JOIN Apuntes ON Apuntes.Banco = Bancos.Codigo",
        "SELECT DISTINCT Banco FROM Apuntes", "SELECT Banco FROM Apuntes GROUP BY Banco",
        "SELECT Max(Id) FROM Apuntes", "SELECT Id FROM Apuntes UNION SELECT Id FROM HApuntes",
        "SELECT 1"}) {
    const Plan plan = planOf(text);
    EXPECT_EQ(plan.updateTable, "") << text;
    EXPECT_FALSE(plan.columns.back().hidden) << text;
  }
  EXPECT_EQ(planOf("SELECT DISTINCTROW Importe FROM Apuntes").updateTable, "Apuntes");
}

TEST(Order, GoesByColumnFirstThenAliasThenNumber) {
  const auto order = [](std::string_view text) {
    const std::string sql = sqlOf(text);
    return sql.substr(sql.find("ORDER BY "));
  };
  EXPECT_EQ(order("SELECT Codigo AS Banco FROM Bancos ORDER BY Banco DESC, 1 ASC"),
            "ORDER BY Banco DESC, 1");
  EXPECT_EQ(order("SELECT Codigo, Orden AS X FROM Bancos ORDER BY X"), "ORDER BY 2");
  EXPECT_EQ(order("SELECT Codigo FROM Bancos UNION ALL SELECT Banco FROM Apuntes ORDER BY Codigo"),
            "ORDER BY 1");
}

// An engine takes a bare whole number there for the place of a column.
TEST(Order, AndGroupByAConstantAreNoPlaces) {
  const auto tail = [](std::string_view text) {
    const std::string sql = sqlOf(text);
    return sql.substr(sql.find(" BY ") + 4);
  };
  EXPECT_EQ(tail("SELECT Max(Orden) FROM Bancos GROUP BY 1"), "CAST(1 AS NUMERIC)");
  EXPECT_EQ(tail("SELECT Max(Orden) FROM Bancos GROUP BY -444444, Codigo, True"),
            "CAST(-444444 AS NUMERIC), Codigo, CAST(-1 AS NUMERIC)");
  EXPECT_EQ(tail("SELECT Max(Orden) FROM Bancos GROUP BY #1/1/2001#, 'x', Null"),
            "CAST(36892 AS NUMERIC), 'x', NULL");
  EXPECT_EQ(tail("SELECT Orden FROM Apuntes, Bancos ORDER BY False, 1, #1/1/2001# DESC"),
            "CAST(0 AS NUMERIC), 1, CAST(36892 AS NUMERIC) DESC");
}

TEST(Expressions, OfTwoSignsAreNoComment) {
  EXPECT_EQ(sqlOf("SELECT -(-Orden), -True, - -1, -(-(1)) FROM Apuntes, Bancos ORDER BY -(-3)"),
            "SELECT -(-Bancos.Orden), -(-1), -(?1), -(-(?2)) FROM Apuntes, Bancos "
            "ORDER BY CAST(-(-3) AS NUMERIC)");
}

TEST(Insert, WithoutColumnsGoesByTheNamesOfTheSelect) {
  EXPECT_EQ(
      sqlOf("INSERT INTO HApuntes SELECT Apuntes.* FROM Apuntes WHERE Banco = 'a'"),
      "INSERT INTO HApuntes (Id, Banco, Importe, Fecha, Concepto) "
      "SELECT Id, Banco, Importe, Fecha, Concepto FROM Apuntes WHERE Banco = ?1 ORDER BY rowid");
  EXPECT_EQ(errorOf("INSERT INTO HApuntes SELECT Id AS Otro FROM Apuntes").number(),
            errors::kMissingParameter);
}

TEST(Insert, FromASelectWithoutTablesIsOneRow) {
  const Plan plan = planOf("INSERT INTO Apuntes (Banco, Importe) SELECT 'a' AS Expr1, '1,5' AS X;");
  EXPECT_EQ(plan.steps[0].sql, "INSERT INTO Apuntes (Banco, Importe) VALUES (?1, ?2)");
  EXPECT_EQ(plan.steps[0].parameters[1].conversion, Conversion::kNumberByLocale);
  EXPECT_EQ(plan.steps[0].parameters[1].columnType, ColumnType::kCurrency);
}

TEST(Update, OfAJoinTakesTheOtherTablesFromFrom) {
  EXPECT_EQ(sqlOf("UPDATE Bancos INNER JOIN Apuntes ON Bancos.Codigo = Apuntes.Banco "
                  "SET Apuntes.Concepto = Bancos.Codigo WHERE Orden = 1 OR Orden = 2"),
            "UPDATE Apuntes SET Concepto = Bancos.Codigo FROM Bancos "
            "WHERE Bancos.Codigo = Apuntes.Banco AND (Bancos.Orden = ?1 OR Bancos.Orden = ?2)");
}

TEST(Update, OfAnOuterJoinComputesTheRowsFirst) {
  EXPECT_EQ(sqlOf("UPDATE Bancos LEFT JOIN Apuntes ON Bancos.Codigo = Apuntes.Banco "
                  "SET Bancos.Saldo = Apuntes.Importe"),
            "UPDATE Bancos SET Saldo = tv_rows.tv_1 FROM (SELECT Bancos.rowid AS tv_row, "
            "Apuntes.Importe AS tv_1 FROM Bancos LEFT JOIN Apuntes "
            "ON Bancos.Codigo = Apuntes.Banco) AS tv_rows WHERE Bancos.rowid = tv_rows.tv_row");
}

TEST(Delete, TakesRowsFromTheNamedTableOnly) {
  const std::string wanted =
      "DELETE FROM Apuntes WHERE rowid IN (SELECT Apuntes.rowid FROM Apuntes INNER JOIN Bancos ON "
      "Apuntes.Banco = Bancos.Codigo WHERE Bancos.Activo <> ?1)";
  const std::string tail =
      " FROM Apuntes INNER JOIN Bancos ON Apuntes.Banco = Bancos.Codigo WHERE Activo <> 0";
  EXPECT_EQ(sqlOf("DELETE Apuntes.*" + tail), wanted);
  EXPECT_EQ(sqlOf("DELETE Apuntes" + tail), wanted);
  EXPECT_EQ(sqlOf("DELETE Apuntes.Id, Apuntes.*" + tail), wanted);
  EXPECT_EQ(sqlOf("DELETE * FROM Apuntes"), "DELETE FROM Apuntes");
  EXPECT_EQ(sqlOf("DELETE Banco FROM Apuntes"), "DELETE FROM Apuntes");
}

TEST(Joins, NestInParentheses) {
  EXPECT_THAT(sqlOf("SELECT Id FROM (Apuntes INNER JOIN Bancos ON Apuntes.Banco = Bancos.Codigo) "
                    "LEFT JOIN Sueltos ON Bancos.Banco = Sueltos.Texto"),
              EndsWith("FROM Apuntes INNER JOIN Bancos ON Apuntes.Banco = Bancos.Codigo "
                       "LEFT JOIN Sueltos ON Bancos.Banco = Sueltos.Texto"));
}

TEST(Lenience, OfTheDialect) {
  EXPECT_EQ(condition("Orden = 0and Activo <> 0"), "Orden = ?1 AND Activo <> ?2");
  EXPECT_EQ(condition("(((Codigo)IN(SELECT Banco FROM Apuntes;)))"),
            "Codigo IN (SELECT Apuntes.Banco FROM Apuntes)");
  EXPECT_EQ(sqlOf("SELECT Codigo FROM Bancos ; "), "SELECT Codigo FROM Bancos ORDER BY rowid");
  EXPECT_EQ(sqlOf("SELECT TOP 3 Codigo FROM Bancos"),
            "SELECT Codigo FROM Bancos ORDER BY rowid LIMIT 3");
  EXPECT_EQ(sqlOf("SELECT Codigo FROM Bancos GROUP BY Codigo, 'x' & Codigo"),
            "SELECT Codigo FROM Bancos GROUP BY Codigo, 'x' || coalesce(Codigo, '')");
}

}  // namespace
}  // namespace tavelor::dialect::test
