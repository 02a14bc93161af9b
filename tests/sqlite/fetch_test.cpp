// SPDX-License-Identifier: MIT
// Rows out of the engine into packed rows.
#include <gmock/gmock.h>

#include "tavelor/platform/text.hpp"
#include "tests/sqlite/support.hpp"

namespace tavelor::engine::test {
namespace {

using testing::HasSubstr;

class SqliteFetch : public testing::Test {
 protected:
  RowStore fetch(std::string_view sql, std::vector<ColumnType> types) {
    return fetchAll(*session, sql, std::move(types));
  }
  std::unique_ptr<Session> session = openInMemory();
};

TEST_F(SqliteFetch, EveryTypeComesBackAsItWasStored) {
  const RowStore rows = fetch(
      "SELECT 200, -32768, 2147483647, 1.5, 2.25, 12.3456, 46347.5, -1, 'año', 'memo que es "
      "largo', "
      "x'0061ff'",
      {ColumnType::kByte, ColumnType::kInt16, ColumnType::kInt32, ColumnType::kSingle,
       ColumnType::kDouble, ColumnType::kCurrency, ColumnType::kDate, ColumnType::kBoolean,
       ColumnType::kText, ColumnType::kMemo, ColumnType::kBinary});
  ASSERT_EQ(rows.rows(), 1U);
  EXPECT_EQ(rows.integer(0, 0), 200);
  EXPECT_EQ(rows.integer(0, 1), -32768);
  EXPECT_EQ(rows.integer(0, 2), 2147483647);
  EXPECT_EQ(rows.real(0, 3), 1.5);
  EXPECT_EQ(rows.real(0, 4), 2.25);
  EXPECT_EQ(rows.integer(0, 5), 123'456);
  EXPECT_EQ(rows.real(0, 6), 46347.5);
  EXPECT_EQ(rows.integer(0, 7), -1);
  EXPECT_EQ(rows.text(0, 8), "año");
  EXPECT_EQ(rows.text(0, 9), "memo que es largo");
  EXPECT_EQ(rows.text(0, 10), std::string_view("\0a\xff", 3));
}

// 0.00015 is a little less than itself: times ten thousand it is below 1.5.
TEST_F(SqliteFetch, MoneyBetweenTwoAmountsIsRoundedByItsDigits) {
  const RowStore rows = fetch("SELECT 0.00015, 0.00025, -0.00015, 0.00014, 0.00016",
                              std::vector<ColumnType>(5, ColumnType::kCurrency));
  EXPECT_EQ(rows.integer(0, 0), 2);
  EXPECT_EQ(rows.integer(0, 1), 2);
  EXPECT_EQ(rows.integer(0, 2), -2);
  EXPECT_EQ(rows.integer(0, 3), 1);
  EXPECT_EQ(rows.integer(0, 4), 2);
}

TEST_F(SqliteFetch, NullsStayNullAndEmptyTextsDoNotBecomeNull) {
  const RowStore rows =
      fetch("SELECT NULL, '', NULL, x''",
            {ColumnType::kText, ColumnType::kText, ColumnType::kInt32, ColumnType::kBinary});
  EXPECT_TRUE(rows.isNull(0, 0));
  EXPECT_FALSE(rows.isNull(0, 1));
  EXPECT_EQ(rows.text(0, 1), "");
  EXPECT_TRUE(rows.isNull(0, 2));
  EXPECT_FALSE(rows.isNull(0, 3));
}

TEST_F(SqliteFetch, ManyRowsWithMoreThan64ColumnsKeepTheirPlaces) {
  std::string sql =
      "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 4999) SELECT ";
  std::vector<ColumnType> types;
  for (int column = 0; column < 70; ++column) {
    if (column > 0) sql += ", ";
    sql += column % 7 == 3   ? "NULL"
           : column % 2 == 0 ? "i * 100 + " + std::to_string(column)
                             : "'fila ' || i || ' columna " + std::to_string(column) + "'";
    types.push_back(column % 2 == 0 ? ColumnType::kInt32 : ColumnType::kMemo);
  }
  const RowStore rows = fetch(sql + " FROM n", types);
  ASSERT_EQ(rows.rows(), 5000U);
  for (const std::size_t row : {0U, 15U, 16U, 17U, 1039U, 1040U, 4999U}) {
    EXPECT_EQ(rows.integer(row, 68), static_cast<std::int64_t>(row) * 100 + 68);
    EXPECT_EQ(rows.text(row, 65), "fila " + std::to_string(row) + " columna 65");
    EXPECT_TRUE(rows.isNull(row, 66));
    EXPECT_FALSE(rows.isNull(row, 64));
  }
}

TEST_F(SqliteFetch, TextsInNumericColumnsReadByTheLocale) {
  const RowStore rows =
      fetch("SELECT '1.234,5', '7', '12,34565', '-1'",
            {ColumnType::kDouble, ColumnType::kInt32, ColumnType::kCurrency, ColumnType::kBoolean});
  EXPECT_EQ(rows.real(0, 0), 1234.5);
  EXPECT_EQ(rows.integer(0, 1), 7);
  EXPECT_EQ(rows.integer(0, 2), 123'456);
  EXPECT_EQ(rows.integer(0, 3), -1);
}

TEST_F(SqliteFetch, ATextThatIsNoNumberRaises13WithItsColumn) {
  const auto error = errorOf([&] {
    fetch("SELECT 1, 'doce' AS Precio", {ColumnType::kInt32, ColumnType::kDouble});
  });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kTypeMismatch);
  EXPECT_THAT(error->description(), HasSubstr("Precio"));
  EXPECT_THAT(error->description(), HasSubstr("'doce'"));
}

TEST_F(SqliteFetch, NumbersInTextColumnsPrintByTheLocale) {
  const RowStore rows = fetch("SELECT 12, 1.5", {ColumnType::kText, ColumnType::kText});
  EXPECT_EQ(rows.text(0, 0), "12");
  EXPECT_EQ(rows.text(0, 1), "1,5");
}

TEST_F(SqliteFetch, RealsInWholeColumnsRoundHalvesToEven) {
  const RowStore rows =
      fetch("SELECT 2.5, 3.5, -0.5, 2",
            {ColumnType::kInt32, ColumnType::kInt32, ColumnType::kInt16, ColumnType::kDouble});
  EXPECT_EQ(rows.integer(0, 0), 2);
  EXPECT_EQ(rows.integer(0, 1), 4);
  EXPECT_EQ(rows.integer(0, 2), 0);
  EXPECT_EQ(rows.real(0, 3), 2.0);
}

TEST_F(SqliteFetch, ANumberBeyondItsTypeRaises6) {
  EXPECT_EQ(errorNumber([&] { fetch("SELECT 1e300", {ColumnType::kInt32}); }), errors::kOverflow);
  EXPECT_EQ(errorNumber([&] { fetch("SELECT 1e300", {ColumnType::kCurrency}); }),
            errors::kOverflow);
}

TEST_F(SqliteFetch, AWholeNumberBeyondItsColumnRaises6AndDoesNotWrap) {
  const auto error = [&](const char* sql, ColumnType type) {
    return errorNumber([&] { fetch(sql, {type}); });
  };
  EXPECT_EQ(error("SELECT 3000000000", ColumnType::kInt32), errors::kOverflow);
  EXPECT_EQ(error("SELECT -2147483649", ColumnType::kInt32), errors::kOverflow);
  EXPECT_EQ(error("SELECT 100000", ColumnType::kInt16), errors::kOverflow);
  EXPECT_EQ(error("SELECT 256", ColumnType::kByte), errors::kOverflow);
  EXPECT_EQ(error("SELECT -1", ColumnType::kByte), errors::kOverflow);
  EXPECT_EQ(error("SELECT 32767.5", ColumnType::kInt16), errors::kOverflow);
  EXPECT_EQ(fetch("SELECT -2147483648", {ColumnType::kInt32}).integer(0, 0), -2147483648);
  EXPECT_EQ(fetch("SELECT 255", {ColumnType::kByte}).integer(0, 0), 255);
  const auto named = errorOf([&] { fetch("SELECT 100000 AS Corto", {ColumnType::kInt16}); });
  ASSERT_TRUE(named);
  EXPECT_THAT(named->description(), HasSubstr("Column Corto"));
  EXPECT_THAT(named->description(), HasSubstr("100000 is not between -32768 and 32767"));
}

TEST_F(SqliteFetch, MoneyRoundsToFourDecimalsHalvesToEven) {
  const RowStore rows = fetch(
      "SELECT 0.00005 UNION ALL SELECT 0.00015 UNION ALL SELECT 1.1 * 1.1 "
      "UNION ALL SELECT -7 UNION ALL SELECT 922337203685.4775",
      {ColumnType::kCurrency});
  EXPECT_EQ(rows.integer(0, 0), 0);
  EXPECT_EQ(rows.integer(1, 0), 2);
  EXPECT_EQ(rows.integer(2, 0), 12'100);
  EXPECT_EQ(rows.integer(3, 0), -70'000);
  EXPECT_EQ(rows.integer(4, 0), 9'223'372'036'854'775);
}

TEST_F(SqliteFetch, AnyOtherFlagThanZeroIsTrue) {
  const RowStore rows =
      fetch("SELECT 1 UNION ALL SELECT 0 UNION ALL SELECT 7", {ColumnType::kBoolean});
  EXPECT_EQ(rows.integer(0, 0), -1);
  EXPECT_EQ(rows.integer(1, 0), 0);
  EXPECT_EQ(rows.integer(2, 0), -1);
}

TEST_F(SqliteFetch, AnErrorKeepsTheRowsBeforeItAndTheStatementMayRunAgain) {
  session->execute("CREATE TABLE T (A)");
  session->execute("INSERT INTO T VALUES (1), (2), ('tres'), (4)");
  const auto statement = session->prepare("SELECT A FROM T");
  RowStore rows({ColumnType::kInt32});
  EXPECT_EQ(errorNumber([&] { statement->fetch(rows); }), errors::kTypeMismatch);
  EXPECT_EQ(rows.rows(), 2U);
  session->execute("UPDATE T SET A = 3 WHERE A = 'tres'");
  statement->fetch(rows);
  ASSERT_EQ(rows.rows(), 6U);
  EXPECT_EQ(rows.integer(1, 0), 2);
  EXPECT_EQ(rows.integer(5, 0), 4);
}

TEST_F(SqliteFetch, ReturningGivesTheRowsAsStored) {
  session->execute(
      "CREATE TABLE T (Id INTEGER PRIMARY KEY AUTOINCREMENT, A TEXT, B INTEGER DEFAULT 9)");
  const auto statement = session->prepare("INSERT INTO T (A) VALUES (?) RETURNING Id, A, B");
  RowStore rows({ColumnType::kInt32, ColumnType::kText, ColumnType::kInt32});
  for (const char* text : {"uno", "dos"}) {
    statement->bind(1, Value::ofText(text));
    statement->fetch(rows);
  }
  ASSERT_EQ(rows.rows(), 2U);
  EXPECT_EQ(rows.integer(1, 0), 2);
  EXPECT_EQ(rows.text(1, 1), "dos");
  EXPECT_EQ(rows.integer(1, 2), 9);
}

TEST_F(SqliteFetch, AStoreOfOtherColumnsIsRefused) {
  EXPECT_EQ(errorNumber([&] { fetch("SELECT 1, 2", {ColumnType::kInt32}); }), errors::kUnspecified);
}

}  // namespace
}  // namespace tavelor::engine::test
