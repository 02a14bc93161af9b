// SPDX-License-Identifier: MIT
// Text by characters: counting, cutting, padding, case.
#include "tavelor/platform/text.hpp"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavelor::text {
namespace {

constexpr const char* kDamaged =
    "a\xC3"
    "b\xFF\x80";  // a, half an ñ, b, two stray bytes

TEST(Text, LengthCountsCharacters) {
  EXPECT_EQ(length(""), 0U);
  EXPECT_EQ(length("España"), 6U);
  EXPECT_EQ(length("€"), 1U);
  EXPECT_EQ(length("😀"), 1U);
  EXPECT_EQ(length("0123456789abcdefñ0123456789abcdef"), 33U);
}

TEST(Text, CombiningMarksAreCharactersOfTheirOwn) {
  EXPECT_EQ(length("n\xCC\x83"), 2U);
}

TEST(Text, DamagedBytesCountOneEach) {
  EXPECT_EQ(length(kDamaged), 5U);
  EXPECT_EQ(left(kDamaged, 2), "a\xC3");
  EXPECT_EQ(right(kDamaged, 3), "b\xFF\x80");
  EXPECT_EQ(length("\xC0\x80"), 2U) << "overlong";
  EXPECT_EQ(length("\xE0\x80\x80"), 3U) << "overlong";
  EXPECT_EQ(length("\xED\xA0\x80"), 3U) << "surrogate";
  EXPECT_EQ(length("\xF4\x90\x80\x80"), 4U) << "above the last character";
  EXPECT_EQ(length("\xE2\x82"), 2U) << "cut short";
  EXPECT_EQ(length("\xF0\x9F\x98"), 3U) << "cut short";
}

TEST(Text, LeftAndRightCutByCharacters) {
  EXPECT_EQ(left("ñandú", 2), "ña");
  EXPECT_EQ(right("ñandú", 2), "dú");
  EXPECT_EQ(left("ab", 5), "ab");
  EXPECT_EQ(right("ab", 5), "ab");
  EXPECT_EQ(left("ab", 0), "");
  EXPECT_EQ(right("ab", 0), "");
  EXPECT_EQ(right("€uro", 4), "€uro");
  EXPECT_EQ(left("0123456789ñ0123456789", 12), "0123456789ñ0");
}

TEST(Text, LeftAndRightMeetAtEveryCharacter) {
  for (const std::string text :
       {"ñandú €😀x", "plain ascii text", kDamaged, "\x80\x80\xC3\xB1\xB1"}) {
    const std::size_t all = length(text);
    for (std::size_t i = 0; i <= all; ++i) {
      EXPECT_EQ(std::string(left(text, i)) + std::string(right(text, all - i)), text) << i;
    }
  }
}

TEST(Text, MidStartsAtZero) {
  EXPECT_EQ(mid("ñandú", 1, 3), "and");
  EXPECT_EQ(mid("ñandú", 1), "andú");
  EXPECT_EQ(mid("ñandú", 5), "");
  EXPECT_EQ(mid("ñandú", 99, 2), "");
  EXPECT_EQ(mid("ñandú", 4, 99), "ú");
}

TEST(Text, PadsAndCutsToAWidth) {
  EXPECT_EQ(padRight("ñu", 4), "ñu  ");
  EXPECT_EQ(padLeft("ñu", 4), "  ñu");
  EXPECT_EQ(padRight("ñandú", 2), "ña");
  EXPECT_EQ(padLeft("ñandú", 2), "ña");
  EXPECT_EQ(padLeft("7", 3, '0'), "007");
  EXPECT_EQ(padRight("", 2, '.'), "..");
  EXPECT_EQ(padRight("abc", 0), "");
}

TEST(Text, AlignsToAWidthAndCutsNothing) {
  EXPECT_EQ(alignRight("ñu", 4), "  ñu");
  EXPECT_EQ(alignLeft("ñu", 4), "ñu  ");
  EXPECT_EQ(alignRight("ñandú", 2), "ñandú");
  EXPECT_EQ(alignLeft("ñandú", 5), "ñandú");
}

TEST(Text, TrimRemovesBlanksOnly) {
  EXPECT_EQ(trim("  a b  "), "a b");
  EXPECT_EQ(trim("\t a \n"), "\t a \n");
  EXPECT_EQ(trimLeft("  a "), "a ");
  EXPECT_EQ(trimRight("  a "), "  a");
  EXPECT_EQ(trim("   "), "");
  EXPECT_EQ(trim(""), "");
}

TEST(Text, ChangesTheCaseOfAllLetters) {
  EXPECT_EQ(upper("añÑéü€1"), "AÑÑÉÜ€1");
  EXPECT_EQ(lower("AÑÉÜß€1"), "añéüß€1");
  EXPECT_EQ(upper("straße"), "STRAßE") << "one character for one";
  EXPECT_EQ(upper("привет"), "ПРИВЕТ");
}

TEST(Text, DamagedBytesSurviveEveryChangeOfCase) {
  EXPECT_EQ(upper(kDamaged),
            "A\xC3"
            "B\xFF\x80");
  EXPECT_EQ(lower(kDamaged), kDamaged);
  EXPECT_EQ(foldCase(kDamaged), kDamaged);
}

TEST(Text, FoldedTextsAreEqualWhenOnlyTheCaseDiffers) {
  EXPECT_EQ(foldCase("CAÑÓN"), foldCase("cañón"));
  EXPECT_EQ(foldCase("ΣΊΣΥΦΟΣ"), foldCase("σίσυφος"));
  EXPECT_NE(foldCase("cañon"), foldCase("cañón"));
  EXPECT_NE(foldCase("ß"), foldCase("ss"));
}

TEST(Text, WithoutAccentsComposedAndDecomposedLettersAreEqual) {
  EXPECT_EQ(foldAccents("ALMACÉN"), "almacen");
  EXPECT_EQ(foldAccents("Almace\u0301n"), "almacen");
  EXPECT_EQ(foldAccents("Razón_Social"), foldAccents("RAZON_SOCIAL"));
  EXPECT_EQ(foldAccents(""), "");
  EXPECT_NE(foldAccents("Lote"), foldAccents("Lotes"));
  EXPECT_EQ(foldAccents(kDamaged), kDamaged);
}

TEST(Text, EqualsIgnoreCaseKeepsAccentsApart) {
  EXPECT_TRUE(equalsIgnoreCase("Ñandú", "ÑANDÚ"));
  EXPECT_TRUE(equalsIgnoreCase("abcdefghijkl", "ABCDEFGHIJKL"));
  EXPECT_TRUE(equalsIgnoreCase("", ""));
  EXPECT_FALSE(equalsIgnoreCase("n", "ñ"));
  EXPECT_FALSE(equalsIgnoreCase("a", "á"));
  EXPECT_FALSE(equalsIgnoreCase("abcdefgh", "abcdefghi"));
}

TEST(Text, AsciiWordsFoldLettersOnly) {
  // Every pair of ASCII characters, in a run of eight so that whole words are compared at once.
  for (int a = 0; a < 128; ++a) {
    for (int b = 0; b < 128; ++b) {
      const auto fold = [](int c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; };
      const std::string left(8, static_cast<char>(a));
      const std::string right(8, static_cast<char>(b));
      ASSERT_EQ(equalsIgnoreCase(left, right), fold(a) == fold(b)) << a << " " << b;
    }
  }
}

TEST(Text, CompareIgnoreCaseOrdersByFoldedCodePoints) {
  EXPECT_EQ(compareIgnoreCase("ABC", "abc"), 0);
  EXPECT_LT(compareIgnoreCase("a", "B"), 0);
  EXPECT_GT(compareIgnoreCase("ñ", "z"), 0);
  EXPECT_LT(compareIgnoreCase("ab", "abc"), 0);
  EXPECT_GT(compareIgnoreCase("abcdefghi", "abcdefgh"), 0);
  EXPECT_LT(compareIgnoreCase("abcdefgha", "ABCDEFGHB"), 0);
  EXPECT_LT(compareIgnoreCase("_", "a"), 0);
}

TEST(Text, KnowsValidUtf8) {
  EXPECT_TRUE(isValidUtf8(""));
  EXPECT_TRUE(isValidUtf8("ñ€😀"));
  EXPECT_FALSE(isValidUtf8(kDamaged));
  EXPECT_FALSE(isValidUtf8("\xC0\x80"));
  EXPECT_FALSE(isValidUtf8("\xED\xA0\x80"));
}

TEST(Text, EditDistanceCountsCharacters) {
  EXPECT_EQ(editDistance("", ""), 0U);
  EXPECT_EQ(editDistance("", "abc"), 3U);
  EXPECT_EQ(editDistance("Bancos", "Banco"), 1U);
  EXPECT_EQ(editDistance("año", "ano"), 1U);
  EXPECT_EQ(editDistance("kitten", "sitting"), 3U);
}

TEST(Text, NearestFindsTheClosestNameOrNothing) {
  const std::vector<std::string> names{"Codigo", "Descripcion", "Fecha"};
  EXPECT_EQ(nearest("Códgo", names), "Codigo");
  EXPECT_EQ(nearest("FECHAS", names), "Fecha");
  EXPECT_EQ(nearest("zzzzzz", names), "");
}

TEST(Nearest, OfANameOfAMegabyteIsNoneAndCostsNothing) {
  const std::string name(1 << 20, 'x');
  const std::vector<std::string> candidates(1'000, "Codigo");
  EXPECT_EQ(text::nearest(name, candidates), "");
  EXPECT_EQ(text::nearest("Codgo", candidates), "Codigo");
}

TEST(Text, LinesStandBetweenLineFeeds) {
  EXPECT_THAT(text::lines("a\n\nb"), testing::ElementsAre("a", "", "b"));
  EXPECT_THAT(text::lines("a\n"), testing::ElementsAre("a"));
  EXPECT_THAT(text::lines("\n"), testing::ElementsAre(""));
  EXPECT_THAT(text::lines(""), testing::IsEmpty());
}

TEST(Text, ComposedLettersAreOneCharacterWithTheirAccents) {
  EXPECT_EQ(text::composed("Almace\u0301n"), "Almac\u00E9n");
  EXPECT_EQ(text::composed("\xff"), "\xff");
}

}  // namespace
}  // namespace tavelor::text
