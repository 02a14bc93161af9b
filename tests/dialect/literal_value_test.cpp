// SPDX-License-Identifier: MIT
// The usual numbers, read eight digits at a time.
#include "tavelor/services/dialect/literal_value.hpp"

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace tavelor::dialect {
namespace {

/// "" where it is not read, else how it was.
std::string readAs(std::string_view text, char decimal = '.') {
  const std::vector<char> exact(text.begin(), text.end());
  LiteralValue number{.text = "as it was", .real = -1};
  if (!readPlain({exact.data(), exact.size()}, decimal, number)) {
    EXPECT_EQ(number.kind, LiteralKind::kText);
    EXPECT_EQ(number.real, -1);
    return "";
  }
  EXPECT_EQ(number.text, "as it was");
  if (number.kind == LiteralKind::kWhole) return std::to_string(number.whole);
  return std::to_string(number.whole) + "/" + std::to_string(number.decimals);
}

TEST(PlainNumber, OfEveryLengthIsReadToTheDigit) {
  const std::string digits = "987654321098765";
  for (std::size_t count = 1; count <= digits.size(); ++count) {
    const std::string whole = digits.substr(0, count);
    const std::string kind = count > 9 ? "/0" : "";
    EXPECT_EQ(readAs(whole), whole + kind);
    EXPECT_EQ(readAs("-" + whole), "-" + whole + kind);
    EXPECT_EQ(readAs("+" + whole), whole + kind);
    for (std::size_t point = 0; point <= count; ++point) {
      const std::string text = whole.substr(0, point) + "." + whole.substr(point);
      EXPECT_EQ(readAs(text), whole + "/" + std::to_string(count - point)) << text;
      LiteralValue number;
      ASSERT_TRUE(readPlain("-" + text, '.', number));
      EXPECT_EQ(number.real, std::strtod(("-" + text).c_str(), nullptr)) << text;
    }
  }
  EXPECT_EQ(readAs("00000000"), "0");
  EXPECT_EQ(readAs("0000012"), "12");
  EXPECT_EQ(readAs("-0"), "0");
}

TEST(PlainNumber, BeyondALongIsADecimal) {
  EXPECT_EQ(readAs("2147483647"), "2147483647");
  EXPECT_EQ(readAs("2147483648"), "2147483648/0");
  EXPECT_EQ(readAs("-2147483648"), "-2147483648");
  EXPECT_EQ(readAs("-2147483649"), "-2147483649/0");
  EXPECT_EQ(readAs("000000000000007"), "7");
}

TEST(PlainNumber, HasTheDecimalSignThatIsAskedFor) {
  EXPECT_EQ(readAs("1,5", ','), "15/1");
  EXPECT_EQ(readAs("123456789,5", ','), "1234567895/1");
  EXPECT_EQ(readAs("1.5", ','), "");
  EXPECT_EQ(readAs("123456789.5", ','), "");
}

TEST(PlainNumber, IsNoOtherText) {
  for (const char* text : {"",
                           "-",
                           "+",
                           ".",
                           "-.",
                           "..",
                           "1..2",
                           "1.2.3",
                           "--1",
                           "+-1",
                           "1-",
                           "1e3",
                           "0x1",
                           " 1",
                           "1 ",
                           "1,5",
                           "/1",
                           "1:",
                           "12345678:",
                           "1234567/",
                           "\xB1",
                           "1\xFF",
                           "9876543210987654",
                           "1234567.123456789",
                           "1.5.",
                           "123456789..",
                           "a",
                           "12345678a",
                           "123456789012345.6"}) {
    EXPECT_EQ(readAs(text), "") << text;
  }
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    if ((c >= '0' && c <= '9') || c == '.') continue;
    for (const std::size_t length : {2U, 7U, 8U, 9U, 12U}) {
      for (std::size_t place = 1; place < length; ++place) {
        std::string text(length, '7');
        text[place] = c;
        ASSERT_EQ(readAs(text), "") << byte << " at " << place << " of " << length;
      }
    }
  }
}

}  // namespace
}  // namespace tavelor::dialect
