// SPDX-License-Identifier: MIT
// Text masks.
#include <string>

#include <gtest/gtest.h>

#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/variant.hpp"
#include "tests/platform/locales.hpp"

namespace tavelor {
namespace {

using test::es;

TEST(FormatText, ChangesTheCase) {
  EXPECT_EQ(es("Peña", ">"), "PEÑA");
  EXPECT_EQ(es("PEÑA", "<"), "peña");
}

TEST(FormatText, AtSignsAreBlankAndAmpersandsNothingWithoutACharacter) {
  EXPECT_EQ(es("ab", "@@@@"), "  ab");
  EXPECT_EQ(es("ab", "&&&&"), "ab");
  EXPECT_EQ(es("ab", "!@@@@"), "ab  ");
  EXPECT_EQ(es("ab", "!&&&&"), "ab");
}

TEST(FormatText, WhatIsTooLongGoesToTheLastPlace) {
  EXPECT_EQ(es("abcdef", "@-@@"), "a-bcdef");
  EXPECT_EQ(es("abcdef", "!@-@@"), "a-bcdef");
  EXPECT_EQ(es("15551212", "(@@@) @@@."), "(155) 51212.");
  EXPECT_EQ(es("abc", "!&x"), "abcx");
  EXPECT_EQ(es("abc", "<"), "abc");
}

TEST(FormatText, KeepsLiterals) {
  EXPECT_EQ(es("123456789", "@@@ @@@ @@@"), "123 456 789");
  EXPECT_EQ(es("ñÑ", "@\\@@"), "ñ@Ñ");
  EXPECT_EQ(es("x", "\"@\"@"), "@x");
  EXPECT_EQ(es("x", "@\"open"), "xopen");
  EXPECT_EQ(es("x", "@\\"), "x");
}

TEST(FormatText, PlacesCountCharactersNotBytes) {
  EXPECT_EQ(es("ñ", "@@"), " ñ");
}

TEST(FormatText, TheSecondSectionIsForNothing) {
  EXPECT_EQ(es("", "@@;\"vacío\""), "vacío");
  EXPECT_EQ(es("a", "@@;\"vacío\""), " a");
}

TEST(FormatText, OtherValuesPrintPlainlyFirst) {
  EXPECT_EQ(es(1.5, "@@@@@"), "  1,5");
  EXPECT_EQ(es(true, ">"), "VERDADERO");
  EXPECT_EQ(es(Null(), "@@"), "");
}

}  // namespace
}  // namespace tavelor
