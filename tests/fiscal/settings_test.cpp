// SPDX-License-Identifier: MIT
// The file fiscal.xml.
#include "tavelor/fiscal/settings.hpp"

#include <fstream>

#include <gmock/gmock.h>

#include "tests/fiscal/shops.hpp"

namespace tavelor::fiscal {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class SettingsTest : public ::testing::Test {
 protected:
  /// What is wrong with the file when it holds that.
  std::string complaintOf(const std::string& text) {
    std::ofstream(settingsFile(shop_.installation()), std::ios::binary) << text;
    try {
      readSettings(shop_.installation());
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), errors::kInvalidCall);
      return error.description();
    }
    return {};
  }
  /// The file of good settings with one piece of it exchanged.
  std::string complaintOf(std::string_view from, std::string_view to) {
    writeSettings(shop_.installation(), settings());
    std::ifstream in(settingsFile(shop_.installation()));
    std::string text{std::istreambuf_iterator<char>(in), {}};
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return complaintOf(text.replace(at, from.size(), to));
  }

  test::Shop shop_;
};

TEST_F(SettingsTest, AreNoneWhereThereIsNoFile) {
  EXPECT_EQ(readSettings(shop_.installation()), std::nullopt);
}

TEST_F(SettingsTest, ReadAsTheyWereWritten) {
  Settings all = settings();
  all.system.onlySends = true;
  all.system.mayServeMany = true;
  all.system.servesMany = true;
  all.system.version = "9.9";
  all.mode = Mode::kNotSending;
  all.isTest = true;
  all.endpoint = "https://localhost:8443/";
  all.certificate = "shop.p12";
  all.passwordName = "SHOP_PASSWORD";
  all.series = {"T27", "F27", "R27"};
  all.description = "Pan & <dulces>";
  all.zeroRate = Operation::kNotSubject;
  writeSettings(shop_.installation(), all);
  EXPECT_EQ(readSettings(shop_.installation()), all);
}

TEST_F(SettingsTest, WithoutAVersionTakeThatOfTheLibrary) {
  writeSettings(shop_.installation(), settings());
  EXPECT_THAT(readSettings(shop_.installation())->system.version, HasSubstr("."));
}

TEST_F(SettingsTest, ThatDoNotReadTellFileLineAndColumn) {
  EXPECT_THAT(complaintOf("<fiscal"), HasSubstr("fiscal.xml, line 1, column"));
  EXPECT_THAT(complaintOf("<other/>"), HasSubstr("the outermost element must be <fiscal>"));
  EXPECT_THAT(complaintOf("<fiscal format='2'/>"), HasSubstr("the format of the file must be 1"));
  EXPECT_THAT(complaintOf("<fiscal format='1'/>"), HasSubstr("there is no <taxpayer>"));
}

TEST_F(SettingsTest, ThatWouldBeIgnoredAreRefused) {
  EXPECT_THAT(complaintOf(" name=\"Colmado", " nmae=\"Colmado"),
              HasSubstr("did you mean \"name\"?"));
  EXPECT_THAT(complaintOf("<series ", "<serie "), HasSubstr("did you mean \"series\"?"));
  EXPECT_THAT(complaintOf("<start ", "<start/><start "), HasSubstr("<start> is given twice"));
  EXPECT_THAT(complaintOf("<start ", "text<start "), HasSubstr("a text stands outside"));
  EXPECT_THAT(complaintOf("<start day=\"01-01-2027\" />", "<start day=\"01-01-2027\">x</start>"),
              HasSubstr("<start> takes attributes only"));
}

TEST_F(SettingsTest, WithWrongValuesSayWhatTheyShouldBe) {
  EXPECT_THAT(complaintOf("01-01-2027", "2027-01-01"),
              HasSubstr("day must be a day as 01-01-2027"));
  EXPECT_THAT(complaintOf("\"verifactu\"", "\"x\""),
              HasSubstr("word must be \"verifactu\" or \"no-verifactu\", not \"x\""));
  EXPECT_THAT(complaintOf("\"E1\"", "\"E9\""), HasSubstr("zero-rate must be one of"));
  EXPECT_THAT(complaintOf("89890001K", "89890001X"),
              HasSubstr("the taxpayer: the fiscal number 89890001X of Colmado Rius"));
}

TEST_F(SettingsTest, ThatNoRecordCanBeMadeWithAreRefusedAllAtOnce) {
  Settings wrong = settings();
  wrong.taxpayer.number = "";
  wrong.system.producer.number = "00000000T";
  wrong.system.name.clear();
  wrong.system.id = "TAV";
  wrong.start = Date::of(2024, 10, 27);
  wrong.series = {"T", "T", "R/1"};
  wrong.zeroRate = Operation::kReverseCharge;
  EXPECT_THAT(faultsOf(wrong),
              ElementsAre("the taxpayer: Colmado Rius has no fiscal number",
                          HasSubstr("the producer of the program: the fiscal number 00000000T"),
                          "the name of the program is missing",
                          "the id of the program is no text of up to 2 characters",
                          "the first day lies before 28-10-2024",
                          HasSubstr("the series \"R/1\" is no name"),
                          "tickets, invoices and rectifying ones need series of their own",
                          "who owes the tax is a matter of each sale, and not of all"));
  writeSettings(shop_.installation(), settings());
  EXPECT_EQ(test::errorOf([&] { writeSettings(shop_.installation(), wrong); }),
            errors::kInvalidCall);
  EXPECT_EQ(readSettings(shop_.installation())->taxpayer, settings().taxpayer) << "untouched";
  EXPECT_THAT(faultsOf(settings()), IsEmpty());
}

TEST_F(SettingsTest, ThatCannotBeReadAreNamed) {
  std::filesystem::create_directory(settingsFile(shop_.installation()));
  EXPECT_EQ(test::errorOf([&] { readSettings(shop_.installation()); }), errors::kPathAccess);
}

TEST(RecordSettings, TakeNoNameOfBlanks) {
  Settings wrong = test::recordSettings();
  wrong.taxpayer.name = "  ";
  EXPECT_THAT(faultsOf(wrong), ElementsAre("the taxpayer: the name is missing"));
}

TEST(RecordSettings, TakeNoSeriesThatEarlierTicketsHave) {
  Settings wrong = test::recordSettings();
  wrong.series.tickets = "A";
  EXPECT_THAT(faultsOf(wrong),
              ElementsAre("the series A is that of tickets from before the records"));
}

}  // namespace
}  // namespace tavelor::fiscal
