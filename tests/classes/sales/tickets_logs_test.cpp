// SPDX-License-Identifier: MIT
// ClsTickets: its logs and text files.
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/classes/sales/tickets.hpp"
#include "tests/frame/approved.hpp"

namespace tavelor {
namespace {

using test::bytesOf;
using test::errorOf;

class TicketLogTest : public testing::Test, protected test::TicketShop {
 protected:
  std::string log(const std::string& action) {
    return bytesOf(shop.installation().reportFolder() + "/Log" + action + "Tickets.txt");
  }
};

TEST_F(TicketLogTest, ALineHasTheTimeAndTheText) {
  const std::int16_t number = tickets.OpenLog("Venta");
  tickets.SaveLog(number, "Número 7, 12,50 €");
  EXPECT_EQ(log("Venta"), "14:05:09 . Número 7, 12,50 €\r\n") << "in the file before it is closed";
  tickets.CloseLog(number);
}

TEST_F(TicketLogTest, OpenLogEmptiesTheFile) {
  tickets.SaveLog(tickets.OpenLog("Venta"), "uno");
  tickets.CloseLog(1);
  tickets.OpenLog("Venta");
  EXPECT_EQ(log("Venta"), "");
}

TEST_F(TicketLogTest, NumbersAreTheLowestThatAreFree) {
  EXPECT_EQ(tickets.OpenLog("A"), 1);
  EXPECT_EQ(tickets.OpenLog("B"), 2);
  tickets.CloseLog(1);
  EXPECT_EQ(tickets.OpenLog("C"), 1);
  EXPECT_EQ(tickets.OpenLog("D"), 3);
  tickets.SaveLog(2, "b");
  EXPECT_EQ(log("B"), "14:05:09 . b\r\n");
}

TEST_F(TicketLogTest, ANumberThatIsNotOpenIsRefusedByWritingAndIgnoredByClosing) {
  for (const int given : {-1, 0, 1, 7}) {
    const auto number = static_cast<std::int16_t>(given);
    EXPECT_EQ(errorOf([&] { tickets.SaveLog(number, "x"); }), 52);
    tickets.CloseLog(number);
  }
  tickets.CloseLog(tickets.OpenLog("A"));
  EXPECT_EQ(errorOf([&] { tickets.SaveLog(1, "x"); }), 52);
}

TEST_F(TicketLogTest, AFileThatCannotBeWrittenIsRefused) {
  std::filesystem::create_directory(shop.installation().reportFolder() + "/LogXTickets.txt");
  EXPECT_EQ(errorOf([&] { tickets.OpenLog("X"); }), errors::kPathAccess);
  EXPECT_EQ(errorOf([&] { tickets.OpenLog("/../../../x"); }), errors::kInvalidCall);
}

// The name would be that of another file of the folder, and opening empties it.
TEST_F(TicketLogTest, AnActionThatIsAPathIsRefusedAndNothingIsEmptied) {
  const std::string drawing = tickets.GetTxtFileDraw();
  std::ofstream(drawing) << "kept";
  for (const char* action : {"/../dw", "\\..\\dw", "a/b", "a\\b", "/"}) {
    EXPECT_EQ(errorOf([&] { tickets.OpenLog(action); }), errors::kInvalidCall) << action;
  }
  EXPECT_EQ(bytesOf(drawing), "kept");
  EXPECT_FALSE(std::filesystem::exists(shop.installation().reportFolder() + "/Loga"));
}

TEST_F(TicketLogTest, LogsLeftOpenAreClosedWithTheObject) {
  const auto openFiles = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  };
  const auto before = openFiles();
  {
    ClsTickets other;
    other.OpenLog("A");
    other.OpenLog("B");
    EXPECT_EQ(openFiles(), before + 2);
  }
  EXPECT_EQ(openFiles(), before);
}

TEST_F(TicketLogTest, TheTextFilesLieInTheReportFolder) {
  const std::string folder = shop.installation().folder() + "/rpt/";
  EXPECT_EQ(tickets.GetTxtFile(), folder + "Tickets.txt");
  EXPECT_EQ(tickets.GetTxtFileDisp(), folder + "dTickets.txt");
  EXPECT_EQ(tickets.GetTxtFileDraw(), folder + "dwTickets.txt");
}

}  // namespace
}  // namespace tavelor
