// SPDX-License-Identifier: MIT
// Encoding of pages and their safe replacement.
#include "tavelor/frame/page.hpp"

#include <csignal>
#include <limits>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tests/frame/approved.hpp"
#include "tests/support/shop.hpp"

namespace tavelor {
namespace {

using test::bytesOf;
using test::errorOf;

/// Stands for a full disk: no file of this process grows beyond it.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int);
};

class PageTest : public testing::Test {
 protected:
  std::string written(std::string_view text) {
    Page page(file);
    page << text;
    page.finish();
    return bytesOf(file);
  }
  std::size_t files() const {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path())) {
      ++count;
    }
    return count;
  }

  test::TemporaryFolder folder;
  std::filesystem::path file = folder.path() / "page.htm";
};

TEST_F(PageTest, LinesEndWithCarriageReturnAndLineFeed) {
  Page page(file);
  page << "a";
  page.line("b").line().line("c");
  page.finish();
  EXPECT_EQ(bytesOf(file), "ab\r\n\r\nc\r\n");
}

TEST_F(PageTest, SpanishLettersAreOneByteEach) {
  EXPECT_EQ(written("Año: áéíóú ÜÑ ¿¡ º ª ·"),
            "A\xF1o: \xE1\xE9\xED\xF3\xFA \xDC\xD1 \xBF\xA1 \xBA \xAA \xB7");
}

TEST_F(PageTest, TheEuroAndItsLikeTakeThePlacesThatBrowsersReadThemFrom) {
  EXPECT_EQ(written("€ “x” – … Œ"), "\x80 \x93x\x94 \x96 \x85 \x8C");
}

TEST_F(PageTest, EveryCharacterOfTheEncodingIsOneByteAndItsNeighboursAreReferences) {
  EXPECT_EQ(
      written("€‚ƒ„…†‡ˆ‰Š‹ŒŽ‘’“”•–—˜™š›œžŸ"),
      "\x80\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x8E\x91\x92\x93\x94\x95\x96\x97\x98\x99"
      "\x9A\x9B\x9C\x9E\x9F");
  EXPECT_EQ(written("\u00A0 \u00FF \u0100"), "\xA0 \xFF &#256;");
  EXPECT_EQ(written("\u0177 \u0178 \u0179"), "&#375; \x9F &#377;");
}

TEST_F(PageTest, CharactersOutsideOfTheEncodingBecomeNumericReferences) {
  EXPECT_EQ(written("Łódź 日 😀"),
            "&#321;\xF3"
            "d&#378; &#26085; &#128512;");
  EXPECT_EQ(written("\xC2\x81"), "&#129;") << "a place without a character";
}

TEST_F(PageTest, BytesThatAreNoUtf8GoOutAsTheyAre) {
  EXPECT_EQ(written("a\xF1o \x80 \xC3"), "a\xF1o \x80 \xC3");
}

TEST_F(PageTest, NothingElseIsEscaped) {
  const std::string_view text("<b>&amp;\"'\0\x7F", 12);
  EXPECT_EQ(written(text), text);
}

TEST_F(PageTest, ATextLongerThanTheBufferArrivesWhole) {
  std::string text;
  std::string expected;
  for (int i = 0; i < 300'000; ++i) {
    text += i % 7 == 0 ? "ñ" : "abc";
    expected += i % 7 == 0 ? "\xF1" : "abc";
  }
  EXPECT_EQ(written(text), expected);
}

// Text is copied in steps of several bytes: what is odd may stand anywhere in one.
TEST_F(PageTest, AnOddCharacterIsFoundWhereverItStandsInATextOfAnyLength) {
  std::string text;
  std::string expected;
  for (std::size_t length = 0; length < 40; ++length) {
    const std::string plain(length, 'x');
    text += plain + "|";
    expected += plain + "|";
    for (std::size_t at = 0; at < length; ++at) {
      text += plain.substr(0, at) + "ñ" + plain.substr(at) + "|";
      expected += plain.substr(0, at) + "\xF1" + plain.substr(at) + "|";
    }
  }
  EXPECT_EQ(written(text), expected);
  {
    Page page(file);
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = text.find('|', at) + 1;
      page << std::string_view(text).substr(at, end - at);
      at = end;
    }
    page.finish();
  }
  EXPECT_EQ(bytesOf(file), expected) << "piece by piece";
}

TEST_F(PageTest, NumbersArePrintedAsTheyAreEverywhere) {
  std::vector<double> numbers = {0,
                                 -0.0,
                                 0.1,
                                 -0.1,
                                 0.01,
                                 -0.01,
                                 0.05,
                                 0.005,
                                 1.005,
                                 0.1 + 0.2,
                                 1e-7,
                                 -1e-300,
                                 5e-324,
                                 999'999'999.99,
                                 -999'999'999.99,
                                 999'999'999.995,
                                 1e9,
                                 1e9 + 0.01,
                                 1e14 + 0.5,
                                 1e15,
                                 1e300,
                                 1.0 / 3,
                                 std::numeric_limits<double>::infinity(),
                                 -std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<double>::quiet_NaN()};
  for (int i = -30'000; i < 30'000; ++i) {
    const double hundredths = i * 1'237.0 / 100;
    for (const double number : {i / 100.0, hundredths, hundredths + 1e-9, i / 1000.0, i * 0.01}) {
      numbers.push_back(number);
    }
  }
  for (const auto& locale : {Locale::spanish(), Locale::neutral()}) {
    std::string expected;
    {
      Page page(file);
      for (const double number : numbers) {
        expected += plainNumber(number, *locale) + "\r\n";
        page.number(number, *locale);
        page.line();
      }
      page.finish();
    }
    EXPECT_EQ(bytesOf(file), expected);
  }
}

// Through several buffers, so that marks and values meet their ends.
TEST_F(PageTest, ACellIsItsMarkAndItsValueBehindIt) {
  const auto& locale = *Locale::spanish();
  const PageMark shortMark("<td>");
  const PageMark longMark("</td>\r\n    <td align='right' title='" + std::string(60, 'x') + "'>");
  const std::vector<std::string> texts = {"",
                                          "a",
                                          "siete..",
                                          "ocho ...",
                                          "quince caracter",
                                          "dieciséis",
                                          "Łódź",
                                          std::string(63, 'y') + "ñ",
                                          std::string(64, 'z'),
                                          std::string(65, 'z'),
                                          std::string(1000, 'w') + "€"};
  const std::vector<std::int64_t> wholes = {0,
                                            1,
                                            9,
                                            10,
                                            99,
                                            100,
                                            123'456'789,
                                            4'294'967'295,
                                            -1,
                                            -1'000'000,
                                            4'294'967'296,
                                            -9'223'372'036'854'775'807};
  const std::vector<double> numbers = {0, 0.01, -0.5, 12.3, 1'234.56, -99.99, 1.0 / 3, 1e15};
  std::string expected;
  {
    Page page(file);
    for (int round = 0; round < 200; ++round) {
      for (const PageMark* mark : {&shortMark, &longMark}) {
        for (const std::string& text : texts) page << *mark << text;
        for (const std::int64_t whole : wholes) (page << *mark).number(whole);
        for (const double number : numbers) (page << *mark).number(number, locale);
      }
    }
    page.finish();
    expected = bytesOf(file);
  }
  Page page(file);
  for (int round = 0; round < 200; ++round) {
    for (const PageMark* mark : {&shortMark, &longMark}) {
      for (const std::string& text : texts) page.cell(*mark, text);
      for (const std::int64_t whole : wholes) page.cell(*mark, whole);
      for (const double number : numbers) page.cell(*mark, number, locale);
    }
  }
  page.finish();
  EXPECT_EQ(bytesOf(file), expected);
}

TEST_F(PageTest, WholeNumbersOfEveryLengthArePrinted) {
  std::string expected;
  Page page(file);
  for (std::int64_t power = 1; power <= 1'000'000'000'000'000'000 / 10; power *= 10) {
    for (const std::int64_t value : {power - 1, power, 5 * power + 3, -power}) {
      page.number(value);
      page.line();
      expected += std::to_string(value) + "\r\n";
    }
  }
  page.finish();
  EXPECT_EQ(bytesOf(file), expected);
}

TEST_F(PageTest, AnEarlierPageStaysWholeUntilTheNewOneIsFinished) {
  written("earlier");
  {
    Page page(file);
    page << std::string(1'000'000, 'x');
    EXPECT_EQ(bytesOf(file), "earlier");
  }
  EXPECT_EQ(bytesOf(file), "earlier") << "and when it never is";
  EXPECT_EQ(files(), 1U) << "no draft is left";
  EXPECT_EQ(written("later"), "later");
  EXPECT_EQ(files(), 1U);
}

TEST_F(PageTest, AFolderThatIsNotThereIsNamed) {
  try {
    Page page(folder.path() / "no" / "page.htm");
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errors::kPathAccess);
    EXPECT_THAT(error.description(), testing::HasSubstr("no/page.htm"));
    EXPECT_THAT(error.description(), testing::HasSubstr("No such file"));
  }
}

TEST_F(PageTest, APathWithAZeroByteIsRefusedAndNoOtherFileWritten) {
  const std::string path = file.string() + std::string("\0.htm", 5);
  EXPECT_EQ(errorOf([&] { Page page{std::filesystem::path(path)}; }), errors::kPathAccess);
  EXPECT_EQ(files(), 0U);
}

TEST_F(PageTest, APageThatCannotTakeItsPlaceLeavesNothing) {
  std::filesystem::create_directories(file / "occupied");
  EXPECT_EQ(errorOf([&] { written("x"); }), errors::kPathAccess);
  EXPECT_EQ(files(), 1U);
}

TEST_F(PageTest, APageThatFindsNoRoomIsAnErrorAndTheEarlierOneStays) {
  written("earlier");
  const FileSizeLimit limit(1 << 19);
  EXPECT_EQ(errorOf([&] { written(std::string(1 << 20, 'x')); }), errors::kPathAccess);
  EXPECT_EQ(bytesOf(file), "earlier");
  EXPECT_EQ(files(), 1U);
}

TEST_F(PageTest, ThreadsWritingTheSamePageLeaveOneOfThemWhole) {
  const auto work = [&](char letter) {
    for (int i = 0; i < 20; ++i) {
      Page page(file);
      page << std::string(400'000, letter);
      page.finish();
    }
  };
  std::thread other(work, 'a');
  work('b');
  other.join();
  const std::string left = bytesOf(file);
  EXPECT_TRUE(left == std::string(400'000, 'a') || left == std::string(400'000, 'b'));
  EXPECT_EQ(files(), 1U);
}

}  // namespace
}  // namespace tavelor
