// SPDX-License-Identifier: MIT
// Words that no class knows: the whole table by the letter, an error where that is wanted.
#include "tavelor/frame/strict_modes.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/frame/sample.hpp"

namespace tavelor {
namespace {

using ::testing::HasSubstr;

/// What IniciaRs says of a word, "" for nothing.
std::string refusal(std::string word) {
  test::Sample sample;
  try {
    sample.IniciaRs(word);
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errors::kInvalidArgument);
    return error.description();
  }
  return {};
}

TEST(StrictModes, ByTheLetterAWordThatNobodyKnowsOpensTheWholeTable) {
  test::SampleShop shop;
  EXPECT_EQ(refusal("registro"), "");
}

TEST(StrictModes, WhileOneLivesSuchAWordIsRefusedWithTheNearestOnes) {
  test::SampleShop shop;
  {
    const StrictModes strict;
    EXPECT_THAT(
        refusal("cortos"),
        HasSubstr("There is no mode \"cortos\", \"corto\" is near; the modes are todos, corto."));
    EXPECT_THAT(refusal("registro"), HasSubstr("There is no mode \"registro\"; the modes are"));
    EXPECT_EQ(refusal("corto"), "");
    EXPECT_EQ(refusal("todos"), "");
    EXPECT_EQ(refusal("Todos"), "");
    EXPECT_EQ(refusal(""), "");
    { const StrictModes twice; }
    EXPECT_NE(refusal("registro"), "");
  }
  EXPECT_EQ(refusal("registro"), "");
}

TEST(StrictModes, ARefusedWordLeavesTheRowsThatWereOpen) {
  test::SampleShop shop;
  shop.run("INSERT INTO Muestras (Codigo) VALUES ('A1')");
  test::Sample sample;
  sample.IniciaRs("corto");
  const StrictModes strict;
  EXPECT_NE(test::errorOf([&] { sample.IniciaRs("registro", "C1"); }), 0);
  EXPECT_EQ(sample.DataMember("Primary")->Fields().Count(), 2);
}

TEST(StrictModes, AnInstallationMayBeStrict) {
  Settings settings = test::fastSettings();
  settings.strictModes = true;
  test::SampleShop shop(settings);
  EXPECT_THAT(refusal("registro"), HasSubstr("There is no mode"));
  EXPECT_EQ(refusal("corto"), "");
  EXPECT_TRUE(Installation::open(shop.installation().folder())->settings().strictModes)
      << "it stands in the settings file";
}

}  // namespace
}  // namespace tavelor
