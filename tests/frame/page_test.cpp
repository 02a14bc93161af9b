// SPDX-License-Identifier: MIT
// Encoding of pages and their safe replacement.
#include "tavelor/frame/page.hpp"

#include <csignal>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

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
