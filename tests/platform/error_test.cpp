// SPDX-License-Identifier: MIT
// Errors: numbers, texts and the place in the statement.
#include "tavelor/platform/error.hpp"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/platform/text.hpp"

namespace tavelor {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(Error, WhatIsSourceDescriptionAndNumber) {
  const Error error(13, "Variant", "Type mismatch.");
  EXPECT_STREQ(error.what(), "Variant: Type mismatch. (error 13)");
  EXPECT_EQ(error.number(), 13);
  EXPECT_EQ(error.source(), "Variant");
  EXPECT_EQ(error.description(), "Type mismatch.");
  EXPECT_EQ(error.statement(), "");
  EXPECT_EQ(error.offset(), -1);
  EXPECT_EQ(error.nativeCode(), 0);
}

TEST(Error, WithoutASourceWhatBeginsWithTheDescription) {
  EXPECT_STREQ(Error(5, "", "No.").what(), "No. (error 5)");
}

TEST(Error, WhatShowsTheStatementAndItsPlace) {
  Error error(errors::kSyntax, "Dialect", "Unexpected word.");
  error.inStatement("SELECT *\nFRM Bancos", 9);
  EXPECT_STREQ(error.what(),
               "Dialect: Unexpected word. (error -2147217900)\n"
               "  in: SELECT *\nFRM Bancos\n"
               "  at line 2, column 1");
}

TEST(Error, AStatementWithoutAPlaceShowsNoLine) {
  Error error(errors::kBusy, "Engine", "Locked.");
  error.inStatement("DELETE FROM Bancos");
  EXPECT_THAT(error.what(), EndsWith("\n  in: DELETE FROM Bancos"));
}

TEST(Error, NotesFollowTheDescriptionAndDoNotChangeIt) {
  Error error(errors::kNoCurrentRecord, "Recordset", "No row.");
  error.noting("rows of Bancos").noting("class ClsBancos").inStatement("SELECT 1");
  EXPECT_EQ(error.description(), "No row.");
  EXPECT_EQ(error.notes(), "rows of Bancos\nclass ClsBancos");
  EXPECT_STREQ(error.what(),
               "Recordset: No row. (error 3021)\n"
               "  rows of Bancos\n"
               "  class ClsBancos\n"
               "  in: SELECT 1");
}

TEST(Error, EachNumberIsOfOneKind) {
  EXPECT_EQ(Error(errors::kInvalidCall, "", "").kind(), ErrorKind::kArgument);
  EXPECT_EQ(Error(errors::kTypeMismatch, "", "").kind(), ErrorKind::kValue);
  EXPECT_EQ(Error(errors::kNoCurrentRecord, "", "").kind(), ErrorKind::kNotFound);
  EXPECT_EQ(Error(errors::kRowNotLocated, "", "").kind(), ErrorKind::kConflict);
  EXPECT_EQ(Error(errors::kIntegrityViolation, "", "").kind(), ErrorKind::kIntegrity);
  EXPECT_EQ(Error(errors::kBusy, "", "").kind(), ErrorKind::kBusy);
  EXPECT_EQ(Error(errors::kObjectClosed, "", "").kind(), ErrorKind::kClosed);
  EXPECT_EQ(Error(errors::kNotAllowedInContext, "", "").kind(), ErrorKind::kNotAllowed);
  EXPECT_EQ(Error(errors::kCancelledByUser, "", "").kind(), ErrorKind::kCancelled);
  EXPECT_EQ(Error(errors::kSyntax, "", "").kind(), ErrorKind::kSyntax);
  EXPECT_EQ(Error(errors::kUnspecified, "", "").kind(), ErrorKind::kEngine);
  EXPECT_EQ(Error(12345, "", "").kind(), ErrorKind::kOther);
}

TEST(Error, TheInnermostStatementStays) {
  Error error(errors::kSyntax, "Dialect", "x");
  error.inStatement("inner", 2).inStatement("outer", 4);
  EXPECT_EQ(error.statement(), "inner");
  EXPECT_EQ(error.offset(), 2);
}

TEST(Error, ALongStatementIsShownAroundTheFaultOnly) {
  const std::string statement = std::string(5000, 'a') + "FAULT" + std::string(5000, 'b');
  Error error(errors::kSyntax, "Dialect", "x");
  error.inStatement(statement, 5000);
  const std::string what = error.what();
  EXPECT_THAT(what, HasSubstr("aFAULTb"));
  EXPECT_THAT(what, HasSubstr("in: ...a"));
  EXPECT_THAT(what, HasSubstr("b...\n"));
  EXPECT_LT(what.size(), 420U);
  EXPECT_EQ(error.statement(), statement);
}

TEST(Error, ALongStatementIsCutBetweenCharacters) {
  std::string statement;
  for (int i = 0; i < 1000; ++i) statement += "ñ";
  for (std::int64_t offset :
       {std::int64_t{0}, std::int64_t{999}, std::int64_t{1000}, std::int64_t{2000}}) {
    Error error(errors::kSyntax, "Dialect", "x");
    error.inStatement(statement, offset);
    EXPECT_TRUE(text::isValidUtf8(error.what())) << offset;
  }
}

TEST(Error, AnOffsetBehindTheStatementIsItsEnd) {
  Error error(errors::kSyntax, "Dialect", "x");
  error.inStatement("ab", 99);
  EXPECT_THAT(error.what(), EndsWith("at line 1, column 3"));
}

TEST(Error, KeepsTheNativeCode) {
  Error error(errors::kIntegrityViolation, "Engine", "x");
  EXPECT_EQ(error.withNativeCode(2067).nativeCode(), 2067);
}

TEST(Error, IsCopiedWithAllItKnows) {
  Error error(errors::kSyntax, "Dialect", "x");
  error.inStatement("SELECT", 3).withNativeCode(1);
  const Error copy = error;
  EXPECT_STREQ(copy.what(), error.what());
  EXPECT_EQ(copy.statement(), "SELECT");
  EXPECT_EQ(copy.nativeCode(), 1);
}

TEST(Error, RaiseUsesTheDescriptionOfTheNumber) {
  try {
    raise(errors::kItemNotFound, "Fields", "Name: \"Códgo\".");
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), 3265);
    EXPECT_EQ(error.description(),
              "Item cannot be found in the collection corresponding to the requested name or "
              "ordinal. Name: \"Códgo\".");
  }
}

TEST(Error, RaiseOfAnUnknownNumberHasItsDetailOnly) {
  try {
    raise(12345, "X", "Detail.");
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.description(), "Detail.");
  }
  EXPECT_EQ(defaultDescription(12345), "");
}

TEST(Error, EveryNumberHasADescription) {
  for (const std::int32_t number : {5,
                                    6,
                                    9,
                                    11,
                                    13,
                                    53,
                                    75,
                                    91,
                                    93,
                                    94,
                                    424,
                                    438,
                                    450,
                                    457,
                                    3001,
                                    3021,
                                    3219,
                                    3246,
                                    3251,
                                    3265,
                                    3367,
                                    3420,
                                    3421,
                                    3704,
                                    3705,
                                    3709,
                                    3712,
                                    errors::kUnspecified,
                                    errors::kOperationCanceled,
                                    errors::kRowNotLocated,
                                    errors::kTableNotFound,
                                    errors::kIntegrityViolation,
                                    errors::kDeletedRow,
                                    errors::kMultipleStep,
                                    errors::kSyntax,
                                    errors::kMissingParameter,
                                    errors::kCriteriaTypeMismatch,
                                    errors::kBusy}) {
    EXPECT_THAT(std::string(defaultDescription(number)), EndsWith(".")) << number;
  }
}

TEST(Error, TheNumbersAreTheClassicOnes) {
  EXPECT_EQ(errors::kRowNotLocated, -2147217864);
  EXPECT_EQ(errors::kDeletedRow, -2147217885);
  EXPECT_EQ(errors::kSyntax, -2147217900);
  EXPECT_EQ(errors::kUnspecified, -2147467259);
}

TEST(PlaceOf, CountsLinesAndCharactersFromOne) {
  const std::string text = "añb\nñc";
  const auto place = [&](std::int64_t offset) {
    const TextPlace found = placeOf(text, offset);
    return std::to_string(found.line) + ":" + std::to_string(found.column);
  };
  EXPECT_EQ(place(0), "1:1");
  EXPECT_EQ(place(1), "1:2");
  EXPECT_EQ(place(2), "1:2") << "inside the ñ";
  EXPECT_EQ(place(3), "1:3");
  EXPECT_EQ(place(4), "1:4") << "the line end itself";
  EXPECT_EQ(place(5), "2:1");
  EXPECT_EQ(place(7), "2:2");
  EXPECT_EQ(place(-1), "1:1");
  EXPECT_EQ(place(1000), "2:3");
}

TEST(ErrorText, OfAMegabyteIsCutInTheMiddleBetweenCharacters) {
  std::string text = "begin";
  for (int i = 0; i < 500'000; ++i) text += "ñ";
  const Error error(13, "Source", text + "end");
  EXPECT_LT(error.description().size(), 4'200U);
  EXPECT_TRUE(error.description().starts_with("beginñ"));
  EXPECT_TRUE(error.description().ends_with("ñend"));
  EXPECT_TRUE(text::isValidUtf8(error.description()));
  EXPECT_LT(std::string_view(error.what()).size(), 4'300U);
}

TEST(ErrorText, IsCleanedOfNulAndWhatIsNoCharacter) {
  const Error error(13, "So\xFFurce", std::string("caf\xE9 'a\0b'", 10));
  EXPECT_EQ(error.description(), "caf\uFFFD 'a\uFFFDb'");
  EXPECT_EQ(error.source(), "So\uFFFDurce");
  Error inStatement(13, "", "x");
  inStatement.inStatement("SELECT '\xE9'");
  EXPECT_TRUE(text::isValidUtf8(inStatement.what()));
  EXPECT_EQ(inStatement.statement(), "SELECT '\xE9'") << "the statement itself stays as it is";
}

TEST(ErrorText, OfDamagedBytesAloneIsCutToo) {
  const Error error(13, "", std::string(1 << 20, '\x80'));
  EXPECT_LT(error.description().size(), 4'200U);
  EXPECT_TRUE(text::isValidUtf8(error.description()));
}

}  // namespace
}  // namespace tavelor
