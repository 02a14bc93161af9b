// SPDX-License-Identifier: MIT
// Statements remember which bytes came from values.
#include "tavelor/platform/statement.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace tavelor {
namespace {

using Ranges = std::vector<Statement::Range>;

TEST(Statement, IsTheJoinedText) {
  Statement statement("SELECT Http as web FROM Bancos WHERE codigo = '");
  const std::string id = "001";
  statement << value(id) << "'";
  EXPECT_EQ(statement.text(), "SELECT Http as web FROM Bancos WHERE codigo = '001'");
  EXPECT_EQ(statement.ranges(), (Ranges{{47, 50}}));
}

TEST(Statement, TrustedTextLeavesNoRange) {
  Statement statement;
  statement << "SELECT "
            << "1";
  EXPECT_EQ(statement.text(), "SELECT 1");
  EXPECT_TRUE(statement.ranges().empty());
}

TEST(Statement, AnEmptyValueHasAnEmptyRange) {
  Statement statement("a");
  statement << value("") << "b";
  EXPECT_EQ(statement.text(), "ab");
  EXPECT_EQ(statement.ranges(), (Ranges{{1, 1}}));
}

TEST(Statement, AnotherStatementBringsItsRanges) {
  Statement where(" WHERE a = ");
  where << value("1");
  Statement statement("DELETE FROM t");
  statement << value("x") << where << ";";
  EXPECT_EQ(statement.text(), "DELETE FROM tx WHERE a = 1;");
  EXPECT_EQ(statement.ranges(), (Ranges{{13, 14}, {25, 26}}));
}

TEST(Statement, CanBeAppendedToItself) {
  Statement statement("a");
  statement << value("1");
  statement << statement;
  EXPECT_EQ(statement.text(), "a1a1");
  EXPECT_EQ(statement.ranges(), (Ranges{{1, 2}, {3, 4}}));
}

}  // namespace
}  // namespace tavelor
