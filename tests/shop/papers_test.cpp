// SPDX-License-Identifier: MIT
// Slips and pages that a program did not come to write are written by whoever looks next.
#include "tools/shop/papers.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/shop/lives.hpp"
#include "tools/shop/day_page.hpp"
#include "tools/shop/receipt.hpp"

namespace tavelor::shop {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace fs = std::filesystem;

std::string contentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class PapersTest : public LivesTest {
 protected:
  void run(const std::string& statement, int selector) {
    ConnectionPtr connection;
    DataSession().Execute(selector, Statement::trusted(statement), connection);
  }
  void sellAndClose(const std::string& reference, const std::string& till = "01") {
    Shop shop;
    shop.sell(saleOf(reference, till));
    shop.close(till, kDay);
  }
  static std::vector<std::string> written() {
    return writeMissingPapers(PapersOf::kLatest).written;
  }
};

TEST_F(PapersTest, ThePageOfADayThatWasClosedIsWritten) {
  live([&] {
    sellAndClose("V1");
    EXPECT_THAT(written(), ElementsAre(dayPagePath(kDay)));
    EXPECT_THAT(written(), IsEmpty());
  });
}

TEST_F(PapersTest, APageThatDoesNotKnowTheLastClosingIsWrittenAgain) {
  live([&] {
    sellAndClose("V1");
    writeDayPage(kDay, kDay);
    sellAndClose("V2", "02");
    EXPECT_THAT(written(), ElementsAre(dayPagePath(kDay)));
    EXPECT_EQ(contentOf(dayPagePath(kDay)).find(closingsMark({2, 1})) != std::string::npos, true);
    EXPECT_THAT(written(), IsEmpty());
  });
}

TEST_F(PapersTest, APageThatDoesNotTellWhatItKnowsStays) {
  live([&] {
    sellAndClose("V1");
    std::ofstream(dayPagePath(kDay)) << "made by hand";
    EXPECT_THAT(writeMissingPapers(PapersOf::kAll).written, IsEmpty());
    EXPECT_EQ(contentOf(dayPagePath(kDay)), "made by hand");
  });
}

TEST_F(PapersTest, ADayWhoseHistoryWasPutAwayGetsNoEmptyPage) {
  live([&] {
    sellAndClose("V1");
    run("DELETE FROM HTickets", 3);
    EXPECT_THAT(writeMissingPapers(PapersOf::kAll).written, IsEmpty());
    EXPECT_FALSE(fs::exists(dayPagePath(kDay)));
  });
}

TEST_F(PapersTest, OnlyTheLatestClosingsAreLookedAtUnlessAllAreAskedFor) {
  live([&] {
    sellAndClose("V1");
    for (int closing = 2; closing <= 60; ++closing) {
      run("INSERT INTO Cierres (Codigo, Caja) VALUES (" + std::to_string(closing) + ", '01')", 1);
      std::ofstream(slipPath(closing)) << "x";
    }
    fs::remove(slipPath(1));
    EXPECT_THAT(written(), IsEmpty());
    EXPECT_THAT(writeMissingPapers(PapersOf::kAll).written,
                ElementsAre(slipPath(1), dayPagePath(kDay)));
  });
}

TEST_F(PapersTest, HalvesOfFilesGoOnceTheirProgramIsGone) {
  const pid_t child = fork();
  if (child == 0) _exit(0);
  ASSERT_EQ(waitpid(child, nullptr, 0), child);
  live([&] {
    const std::string gone = slipPath(1) + ".new-" + std::to_string(child);
    const std::string alive = slipPath(1) + ".new-" + std::to_string(getpid());
    const std::vector<std::string> others = {slipPath(1) + ".new-", slipPath(1) + ".new-1x",
                                             slipPath(1) + ".new", slipPath(2)};
    std::ofstream(gone) << "half";
    std::ofstream(alive) << "half";
    for (const std::string& other : others) std::ofstream(other) << "mine";

    EXPECT_THAT(writeMissingPapers(PapersOf::kLatest).removed, ElementsAre(gone));

    EXPECT_TRUE(fs::exists(alive));
    for (const std::string& other : others) EXPECT_TRUE(fs::exists(other)) << other;
  });
}

TEST_F(PapersTest, APageOfSeveralDaysKnowsNoClosings) {
  live([&] {
    sellAndClose("V1");
    EXPECT_THAT(contentOf(writeDayPage(kDay, kDay)), HasSubstr(std::string(kClosingsMark)));
    EXPECT_THAT(contentOf(writeDayPage(kDay, Date(kDay.days() + 1))),
                Not(HasSubstr(std::string(kClosingsMark))));
  });
}

}  // namespace
}  // namespace tavelor::shop
