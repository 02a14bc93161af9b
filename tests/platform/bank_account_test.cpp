// SPDX-License-Identifier: MIT
// Bank account numbers by the public rules.
#include "tavelor/platform/bank_account.hpp"

#include <gtest/gtest.h>

namespace tavelor {
namespace {

AccountFault iban(std::string_view typed) {
  return readIban(typed).fault;
}
AccountFault ccc(std::string_view typed) {
  return readCcc(typed).fault;
}

TEST(BankAccount, AnOldSpanishNumberHasTwoControlDigits) {
  EXPECT_EQ(cccControl("12341234", "1234567890"), "16");
  EXPECT_EQ(ccc("1234-1234-16 1234567890"), AccountFault::kNone);
  EXPECT_EQ(readCcc("1234-1234-16 1234567890").text, "12341234161234567890");
  EXPECT_EQ(ccc("12341234171234567890"), AccountFault::kNational);
  EXPECT_EQ(ccc("1234123416123456789"), AccountFault::kLength);
  EXPECT_EQ(ccc("1234123416123456789A"), AccountFault::kForm);
  EXPECT_EQ(ccc("  "), AccountFault::kEmpty);
}

TEST(BankAccount, ASpanishIbanHoldsAnOldNumber) {
  EXPECT_EQ(ibanOfCcc("12341234161234567890"), "ES7712341234161234567890");
  EXPECT_EQ(iban("es77 1234-1234.16 1234567890"), AccountFault::kNone);
  EXPECT_EQ(iban("ES7812341234161234567890"), AccountFault::kControl);
  const std::string wrong = "12341234171234567890";
  EXPECT_EQ(iban("ES" + ibanControl("ES", wrong) + wrong), AccountFault::kNational);
}

TEST(BankAccount, OtherCountriesHaveTheirOwnForm) {
  EXPECT_EQ(iban("GB29 NWBK 6016 1331 9268 19"), AccountFault::kNone);
  EXPECT_EQ(iban("FR14 2004 1010 0505 0001 3M02 606"), AccountFault::kNone);
  EXPECT_EQ(iban("GB29 NWBK 6016 1331 9268 1"), AccountFault::kLength);
  EXPECT_EQ(iban("GB29 1WBK 6016 1331 9268 19"), AccountFault::kForm);
  EXPECT_EQ(iban("ZZ29 NWBK 6016 1331 9268 19"), AccountFault::kCountry);
  EXPECT_EQ(iban(""), AccountFault::kEmpty);
}

TEST(BankAccount, ControlDigitsThatAreNeverIssuedAreRefused) {
  // The number whose control is 97 reads the same modulo 97 with 00.
  std::string national = "0000000000000000";
  for (int i = 0; ibanControl("AT", national) != "97"; ++i) {
    const std::string end = std::to_string(i);
    national = std::string(16 - end.size(), '0') + end;
  }
  EXPECT_EQ(iban("AT97" + national), AccountFault::kNone);
  EXPECT_EQ(iban("AT00" + national), AccountFault::kControl);
}

TEST(BankAccount, AnyBytesAreRefusedQuietly) {
  EXPECT_EQ(iban("ES77 1234 1234 16 123456789é"), AccountFault::kForm);
  EXPECT_EQ(iban(std::string("ES77\0", 5)), AccountFault::kLength);
  EXPECT_EQ(iban("\xff\xfe\xfd"), AccountFault::kCountry);
  EXPECT_EQ(iban("E"), AccountFault::kCountry);
  EXPECT_EQ(iban(std::string(300, '9')), AccountFault::kCountry);
  EXPECT_EQ(ccc("１２３４1234161234567890"), AccountFault::kForm);
}

}  // namespace
}  // namespace tavelor
