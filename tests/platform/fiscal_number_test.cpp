// SPDX-License-Identifier: MIT
// Spanish fiscal numbers by the public rules.
#include "tavelor/platform/fiscal_number.hpp"

#include <gtest/gtest.h>

namespace tavelor {
namespace {

FiscalFault lenient(std::string_view typed) {
  return readFiscalNumber(typed).fault;
}
FiscalFault strict(std::string_view typed) {
  return readFiscalNumber(typed, FiscalReading::kStrict).fault;
}
FiscalKind kind(std::string_view typed) {
  return readFiscalNumber(typed).kind;
}

TEST(FiscalNumber, KindsAreToldByTheirForm) {
  EXPECT_EQ(kind("12345678Z"), FiscalKind::kNif);
  EXPECT_EQ(kind("X1234567L"), FiscalKind::kNie);
  EXPECT_EQ(kind("K0101234A"), FiscalKind::kSpecialNif);
  EXPECT_EQ(kind("B12345674"), FiscalKind::kCif);
  EXPECT_EQ(kind("B12345670"), FiscalKind::kCif);
  EXPECT_EQ(kind("I12345674"), FiscalKind::kNone);
  EXPECT_EQ(kind("FR1234567"), FiscalKind::kNone);
}

TEST(FiscalNumber, PersonsEndInTheLetterOfTheirRemainder) {
  EXPECT_EQ(personalControl(12345678), 'Z');
  EXPECT_EQ(lenient("12345678Z"), FiscalFault::kNone);
  EXPECT_EQ(lenient("12345678A"), FiscalFault::kControl);
  EXPECT_EQ(lenient("Y1234567X"), FiscalFault::kNone);
  EXPECT_EQ(lenient("Z1234567R"), FiscalFault::kNone);
  EXPECT_EQ(lenient("XABCDEFGT"), FiscalFault::kForm);
}

TEST(FiscalNumber, CompaniesEndInTheDigitOrTheLetterOfTheirSum) {
  EXPECT_EQ(companyControl("1234567").digit, '4');
  EXPECT_EQ(companyControl("1234567").letter, 'D');
  EXPECT_EQ(companyControl("0000000").digit, '0');
  EXPECT_EQ(companyControl("0000000").letter, 'J');
  EXPECT_EQ(lenient("B12345674"), FiscalFault::kNone);
  EXPECT_EQ(lenient("B1234567D"), FiscalFault::kNone);
  EXPECT_EQ(lenient("B12345679"), FiscalFault::kControl);
}

TEST(FiscalNumber, TheTaxOfficeWantsTheEndingOfTheKind) {
  for (const char letter : std::string("PQRSNW")) {
    EXPECT_EQ(strict(letter + std::string("1234567D")), FiscalFault::kNone) << letter;
    EXPECT_EQ(strict(letter + std::string("12345674")), FiscalFault::kEnding) << letter;
  }
  for (const char letter : std::string("ABEHJUV")) {
    EXPECT_EQ(strict(letter + std::string("12345674")), FiscalFault::kNone) << letter;
    EXPECT_EQ(strict(letter + std::string("1234567D")), FiscalFault::kEnding) << letter;
  }
  for (const char letter : std::string("CDFG")) {
    EXPECT_EQ(strict(letter + std::string("12345674")), FiscalFault::kNone) << letter;
    EXPECT_EQ(strict(letter + std::string("1234567D")), FiscalFault::kNone) << letter;
  }
}

TEST(FiscalNumber, TheTaxOfficeWantsAProvinceInNumbersOfKLAndM) {
  const auto numbered = [](const std::string& digits) {
    return "K" + digits + personalControl(static_cast<std::uint32_t>(std::stoul(digits)));
  };
  for (const char* province : {"01", "56"}) {
    EXPECT_EQ(strict(numbered(province + std::string("12345"))), FiscalFault::kNone);
  }
  for (const char* province : {"00", "57", "99"}) {
    EXPECT_EQ(lenient(numbered(province + std::string("12345"))), FiscalFault::kNone);
    EXPECT_EQ(strict(numbered(province + std::string("12345"))), FiscalFault::kProvince);
  }
}

TEST(FiscalNumber, TheTaxOfficeReservesFourNumbers) {
  for (const char* reserved : {"X0000000T", "00000001R", "00000000T", "99999999R"}) {
    EXPECT_EQ(lenient(reserved), FiscalFault::kNone) << reserved;
    EXPECT_EQ(strict(reserved), FiscalFault::kReserved) << reserved;
  }
}

TEST(FiscalNumber, BlanksHyphensAndASpanishPrefixAreTakenOff) {
  for (const char* typed : {"b12345674", " B-1234567-4 ", "ES B12345674", "es-b12345674",
                            "E S B12345674", "\tB12345674\r\n"}) {
    EXPECT_EQ(readFiscalNumber(typed).text, "B12345674") << typed;
    EXPECT_EQ(lenient(typed), FiscalFault::kNone) << typed;
  }
}

TEST(FiscalNumber, OtherPrefixesAndCharactersStayAndAreRefused) {
  EXPECT_EQ(readFiscalNumber("FR 12-345").text, "FR12345");
  EXPECT_EQ(lenient("12.345.678-Z"), FiscalFault::kLength);
  EXPECT_EQ(lenient("NIF 12345678Z"), FiscalFault::kLength);
  EXPECT_EQ(lenient("１２３４５６７８Z"), FiscalFault::kForm);
  EXPECT_EQ(lenient("1234567á8"), FiscalFault::kForm);
  EXPECT_EQ(lenient("ESES12345678Z"), FiscalFault::kLength);
  EXPECT_EQ(lenient(std::string(300, '1')), FiscalFault::kLength);
  EXPECT_EQ(lenient(std::string("1234\000678Z", 9)), FiscalFault::kForm);
  EXPECT_EQ(lenient("\xff\xfe"), FiscalFault::kLength);
  for (const char* empty : {"", "  ", "-", "ES", " es- "}) {
    EXPECT_EQ(lenient(empty), FiscalFault::kEmpty) << empty;
  }
}

TEST(FiscalNumber, EachFaultHasItsOwnWords) {
  std::vector<std::string_view> words;
  for (const FiscalFault fault :
       {FiscalFault::kEmpty, FiscalFault::kLength, FiscalFault::kForm, FiscalFault::kControl,
        FiscalFault::kEnding, FiscalFault::kProvince, FiscalFault::kReserved}) {
    for (const std::string_view other : words) EXPECT_NE(faultText(fault), other);
    words.push_back(faultText(fault));
  }
  EXPECT_EQ(faultText(FiscalFault::kNone), "");
  EXPECT_EQ(kindWord(FiscalKind::kSpecialNif), "NIF");
}

}  // namespace
}  // namespace tavelor
