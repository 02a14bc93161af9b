// SPDX-License-Identifier: MIT
// The Like operator.
#include "tavelor/platform/like.hpp"

#include <string>

#include <gtest/gtest.h>

#include "tests/platform/expect_error.hpp"

namespace tavelor {
namespace {

bool like(std::string_view text, std::string_view pattern) {
  return LikePattern(pattern).matches(text);
}

TEST(Like, WithoutWildcardsComparesTheWholeText) {
  EXPECT_TRUE(like("abc", "abc"));
  EXPECT_FALSE(like("abcd", "abc"));
  EXPECT_FALSE(like("ab", "abc"));
  EXPECT_TRUE(like("", ""));
  EXPECT_FALSE(like("a", ""));
}

TEST(Like, StarAndPercentStandForAnyRun) {
  for (const char* run : {"*", "%"}) {
    const std::string any = run;
    EXPECT_TRUE(like("abc", "a" + any));
    EXPECT_TRUE(like("abc", any + "c"));
    EXPECT_TRUE(like("abc", any + "b" + any));
    EXPECT_TRUE(like("abc", "abc" + any)) << "the empty run";
    EXPECT_TRUE(like("", any));
    EXPECT_TRUE(like("abc", any + any));
    EXPECT_FALSE(like("abc", "b" + any));
    EXPECT_FALSE(like("abc", any + "b"));
    EXPECT_TRUE(like("abcd", "a" + any + "d"));
    EXPECT_FALSE(like("abcd", "a" + any + "c"));
  }
}

TEST(Like, QuestionMarkAndUnderscoreStandForOneCharacter) {
  EXPECT_TRUE(like("año", "a?o"));
  EXPECT_TRUE(like("año", "a_o"));
  EXPECT_TRUE(like("€", "?"));
  EXPECT_FALSE(like("", "?"));
  EXPECT_FALSE(like("ab", "?"));
}

TEST(Like, NumberSignStandsForADigit) {
  EXPECT_TRUE(like("a7", "a#"));
  EXPECT_FALSE(like("ab", "a#"));
  EXPECT_FALSE(like("a", "a#"));
  EXPECT_TRUE(like("2026-01", "####-##"));
}

TEST(Like, ClassesHoldCharactersAndRanges) {
  EXPECT_TRUE(like("b", "[a-c]"));
  EXPECT_FALSE(like("d", "[a-c]"));
  EXPECT_TRUE(like("x", "[ax]"));
  EXPECT_TRUE(like("d", "[!a-c]"));
  EXPECT_FALSE(like("b", "[!a-c]"));
  EXPECT_FALSE(like("", "[!a]"));
  EXPECT_TRUE(like("5z", "[0-9][a-z]"));
  EXPECT_TRUE(like("ñ", "[ñ-ó]"));
  EXPECT_FALSE(like("n", "[ñ-ó]"));
}

TEST(Like, ClassesIgnoreCase) {
  EXPECT_TRUE(like("M", "[a-z]"));
  EXPECT_TRUE(like("m", "[A-Z]"));
  EXPECT_TRUE(like("Ñ", "[ñ]"));
  EXPECT_FALSE(like("Ñ", "[!ñ]"));
  EXPECT_TRUE(like("k", "[a-Z]"));
}

TEST(Like, BracketsKeepWildcardsAsTheyAre) {
  EXPECT_TRUE(like("a*b", "a[*]b"));
  EXPECT_FALSE(like("axb", "a[*]b"));
  EXPECT_TRUE(like("?", "[?]"));
  EXPECT_TRUE(like("#", "[#]"));
  EXPECT_TRUE(like("%_", "[%][_]"));
  EXPECT_TRUE(like("[", "[[]"));
  EXPECT_TRUE(like("]", "]"));
  EXPECT_TRUE(like("!", "[!]"));
  EXPECT_TRUE(like("-", "[a-]"));
  EXPECT_TRUE(like("-", "[-a]"));
  EXPECT_TRUE(like("ab", "a[]b")) << "empty brackets are nothing";
}

TEST(Like, AnOpenBracketOrAFallingRangeRaisesInvalidPattern) {
  for (const char* pattern : {"[", "a[bc", "[!", "[a-", "[z-a]", "[9-0]x", "[ñ-n]"}) {
    EXPECT_EQ(raisedBy([&] { LikePattern{pattern}; }), 93) << pattern;
  }
}

TEST(Like, IgnoresTheCaseOfAllLettersButNotAccents) {
  EXPECT_TRUE(like("CAÑÓN", "cañón"));
  EXPECT_TRUE(like("cañón", "CAÑ*"));
  EXPECT_TRUE(like("Élite", "éL*"));
  EXPECT_FALSE(like("canon", "cañón"));
  EXPECT_FALSE(like("e", "é"));
  EXPECT_TRUE(like("ABCDEFGHIJKLMNOP", "abcdefghijklm*"));
  EXPECT_FALSE(like("straße", "STRASSE"));
}

TEST(Like, LettersWhoseCasesDifferInBytesMatch) {
  EXPECT_TRUE(
      like("\xE2\x84\xAA"
           "abcdefgh",
           "kabcdefgh"))
      << "the Kelvin sign";
  EXPECT_TRUE(like("kabcdefgh",
                   "\xE2\x84\xAA"
                   "abcdefgh"));
  EXPECT_TRUE(like("xx\xE2\x84\xAA", "*k"));
}

TEST(Like, SeveralRunsAreTriedFromTheLeft) {
  EXPECT_TRUE(like("abcabcabd", "*abc*abd"));
  EXPECT_TRUE(like("aXbXc", "a*b*c"));
  EXPECT_FALSE(like("aXbXcX", "a*b*c"));
  EXPECT_TRUE(like("mississippi", "m*iss*ppi"));
  EXPECT_TRUE(like("mississippi", "*s?p*"));
  EXPECT_FALSE(like("aba", "ab*ba")) << "the ends may not overlap";
  EXPECT_TRUE(like("abba", "ab*ba"));
  EXPECT_FALSE(like("ab", "*ab*ab*"));
}

TEST(Like, TheEndIsFoundByCharacters) {
  EXPECT_TRUE(like("x€ñ", "*??"));
  EXPECT_TRUE(like("x€ñ", "x*?ñ"));
  EXPECT_FALSE(like("€", "*??"));
  EXPECT_TRUE(like("añ9", "*[ñ]#"));
}

TEST(Like, DamagedBytesAreCharactersLikeOthers) {
  EXPECT_TRUE(
      like("a\xFF"
           "b",
           "a?b"));
  EXPECT_TRUE(like("a\xC3", "a\xC3"));
  EXPECT_TRUE(like("a\xC3", "*?"));
  EXPECT_FALSE(like("a\xC3", "a\xC4"));
}

TEST(Like, PatternsOfManyRunsDoNotExplode) {
  std::string pattern;
  for (int i = 0; i < 40; ++i) pattern += "a*";
  pattern += "b";
  EXPECT_FALSE(like(std::string(20000, 'a'), pattern));
}

TEST(Like, APatternCanBeMoved) {
  LikePattern pattern("a*");
  LikePattern moved = std::move(pattern);
  EXPECT_TRUE(moved.matches("abc"));
  moved = LikePattern("b*");
  EXPECT_FALSE(moved.matches("abc"));
}

}  // namespace
}  // namespace tavelor
