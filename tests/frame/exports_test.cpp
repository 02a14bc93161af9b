// SPDX-License-Identifier: MIT
// Rows as pages: what they show and where they lie.
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/platform/date.hpp"
#include "tavelor/services/clock.hpp"
#include "tests/frame/approved.hpp"
#include "tests/frame/sample.hpp"
#include "tests/support/form.hpp"

namespace tavelor {
namespace {

namespace fs = std::filesystem;

using test::bytesOf;
using test::errorOf;
using test::expectApproved;
using test::Grid;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr std::int32_t kCentred = 0;
constexpr std::int32_t kRight = 1;
constexpr std::int32_t kLeft = 3;

// The columns of the full mode, the picture hidden.
Grid fullGrid() {
  return Grid({{true, "Código", kLeft},
               {true, "Nombre", 2},
               {true, "Notas año", kLeft},
               {true, "Número", kRight},
               {true, "Corto", kCentred},
               {true, "Precio", kRight},
               {true, "Dinero", kRight},
               {true, "Activo", kCentred},
               {true, "Fecha", kCentred},
               {false, "Foto", kCentred}});
}

struct Moves final : RecordClassEvents {
  void MoveComplete() override { ++count; }
  int count = 0;
};

class ExportsTest : public testing::Test {
 protected:
  ExportsTest() {
    shop.apartment().clock().fix(Date::of({2026, 11, 21, 8, 5, 9}));
    page = sample.GetHtmlFile();
  }

  void fill() {
    shop.run(
        "INSERT INTO Muestras (Codigo, Nombre, Notas, Numero, Corto, Precio, Dinero, Activo, "
        "Fecha) "
        "VALUES ('b', 'Peña & <b>Hijos</b>', 'Pagan en € – siempre', -3, 7, 1234.5, 2.25, True, "
        "#12/31/2026#)");
    shop.run("INSERT INTO Muestras (Codigo) VALUES ('a')");
    shop.run(
        "INSERT INTO Muestras (Codigo, Nombre, Numero, Precio, Fecha) VALUES "
        "('c', 'Łódź', 1000000, 0.1, #01/02/2026 10:30:00#)");
  }
  void leaveEarlierPage() { std::ofstream(page) << "earlier"; }
  std::size_t filesOfReports() {
    const fs::directory_iterator entries(page.parent_path());
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
  }
  Recordset& rows() { return *sample.DataMember("Primary"); }
  /// Codes of a page made with only the first column shown.
  std::vector<std::string> codesShown() {
    std::vector<std::string> codes;
    const std::string text = bytesOf(page);
    const std::string open = "        <TD align=left><FONT Size=1>";
    for (std::size_t at = text.find(open); at != std::string::npos; at = text.find(open, at)) {
      at += open.size();
      codes.push_back(text.substr(at, text.find('<', at) - at));
    }
    return codes;
  }
  const Grid codeOnly{std::vector<GridColumn>{{true, "Código", kLeft}}};

  test::SampleShop shop;
  test::Sample sample;
  fs::path page;
};

// ---- Where pages lie

TEST_F(ExportsTest, GetHtmlFileIsTheClassWordInTheReportFolderOfTheInstallation) {
  EXPECT_EQ(sample.GetHtmlFile(),
            (fs::path(shop.installation().folder()) / "rpt" / "Muestras.htm").string());
}

TEST_F(ExportsTest, TheReportFolderIsMadeWhenItIsNotThere) {
  fs::remove_all(page.parent_path());
  sample.IniciaRs();
  sample.ToHtmlGrid(codeOnly);
  EXPECT_TRUE(fs::exists(page));
}

// ---- ToHtmlGrid

TEST_F(ExportsTest, AGridBecomesThePageThatWasApproved) {
  fill();
  sample.IniciaRs();
  sample.ToHtmlGrid(fullGrid());
  expectApproved(page, "grid.htm");
}

TEST_F(ExportsTest, TheRecordSetItselfIsWalkedAndLeftAtEof) {
  fill();
  sample.IniciaRs();
  Moves moves;
  sample.addListener(moves);
  sample.ToHtmlGrid(codeOnly, false);
  EXPECT_TRUE(rows().Eof());
  EXPECT_EQ(moves.count, 4) << "to the first row and past each";
  EXPECT_THAT(codesShown(), ElementsAre("a", "b", "c"));
  sample.removeListener(moves);
}

TEST_F(ExportsTest, ACloneLeavesTheRecordSetWhereItStandsAndTellsNobody) {
  fill();
  sample.IniciaRs();
  sample.MoveNext();
  Moves moves;
  sample.addListener(moves);
  sample.ToHtmlGrid(codeOnly, true, "todos");
  EXPECT_EQ(rows().Field(0).Value(), Variant("b"));
  EXPECT_EQ(moves.count, 0);
  sample.removeListener(moves);
}

TEST_F(ExportsTest, ACloneIsSortedByTheOrderOfItsWord) {
  fill();
  sample.IniciaRs();
  sample.SetOrder(0, " DESC", "lista");
  sample.SetOrder(3, "", "todos");
  sample.ToHtmlGrid(codeOnly, true, "lista");
  EXPECT_THAT(codesShown(), ElementsAre("c", "b", "a"));
  sample.ToHtmlGrid(codeOnly, true, "nunca");
  EXPECT_THAT(codesShown(), ElementsAre("a", "b", "c")) << "by the first column";
  sample.ToHtmlGrid(codeOnly, false, "lista");
  EXPECT_THAT(codesShown(), ElementsAre("a", "b", "c")) << "the record set keeps its own order";
}

TEST_F(ExportsTest, ACloneShowsAllRowsThoughTheRecordSetIsFiltered) {
  fill();
  sample.IniciaRs();
  sample.AplyFilter("Código = 'b'");
  sample.ToHtmlGrid(codeOnly, true, "todos");
  EXPECT_THAT(codesShown(), ElementsAre("a", "b", "c"));
  sample.ToHtmlGrid(codeOnly, false);
  EXPECT_THAT(codesShown(), ElementsAre("b"));
}

TEST_F(ExportsTest, TheStoredFilterIsAppliedAndTheSourceFetchedAgain) {
  fill();
  sample.IniciaRs();
  sample.SetFilter("Numero > 0", "Filter");
  shop.statements();
  shop.run("INSERT INTO Muestras (Codigo, Numero) VALUES ('d', 5)");
  sample.ToHtmlGrid(codeOnly, true, "todos", true);
  EXPECT_THAT(codesShown(), ElementsAre("c", "d"));
  EXPECT_THAT(shop.statements(), ElementsAre(std::string(test::kSampleRows)));
  EXPECT_EQ(rows().RecordCount(), 3) << "a clone is filtered, not the record set";

  sample.ToHtmlGrid(codeOnly, false, "todos", true);
  EXPECT_EQ(rows().Filter(), "Numero > 0") << "the record set itself keeps the filter";
  EXPECT_EQ(rows().RecordCount(), 2);
}

// Fetching again drops what is not written, so the page is refused before anything happens.
TEST_F(ExportsTest, AFilteredPageOfTheRecordSetItselfIsRefusedWhileChangesAreUnsaved) {
  fill();
  sample.IniciaRs();
  sample.SetFilter("Numero > 0", "Filter");
  const auto refused = [&] {
    return errorOf([&] { sample.ToHtmlGrid(codeOnly, false, "todos", true); }) ==
           errors::kNotAllowedInContext;
  };
  rows().Field("Nombre").Value("en edición");
  EXPECT_TRUE(refused());
  EXPECT_EQ(rows().EditMode(), EditMode::kInProgress);
  rows().Update();
  EXPECT_TRUE(refused());
  EXPECT_EQ(rows().Filter(), "");
  EXPECT_EQ(rows().Field("Nombre").Value(), Variant("en edición"));
  EXPECT_FALSE(fs::exists(page));

  sample.ToHtmlGrid(codeOnly, true, "todos", true);
  EXPECT_EQ(rows().Field("Nombre").Value(), Variant("en edición")) << "a clone drops nothing";
  sample.Update();
  sample.ToHtmlGrid(codeOnly, false, "todos", true);
  EXPECT_THAT(codesShown(), ElementsAre("c"));
}

TEST_F(ExportsTest, AFilterThatLeavesNoRowOfACloneStillWritesAPage) {
  fill();
  sample.IniciaRs();
  sample.SetFilter("Numero > 9999999", "Filter");
  sample.ToHtmlGrid(codeOnly, true, "todos", true);
  EXPECT_THAT(bytesOf(page), HasSubstr("<P><FONT Size=2>0 registros. - "));
}

TEST_F(ExportsTest, ACloneOfAnEmptyRecordSetWritesNoPageAndLeavesAnEarlierOneAlone) {
  sample.IniciaRs();
  sample.ToHtmlGrid(codeOnly, true, "todos");
  EXPECT_FALSE(fs::exists(page));
  leaveEarlierPage();
  sample.ToHtmlGrid(codeOnly, true, "todos");
  EXPECT_EQ(bytesOf(page), "earlier");
}

TEST_F(ExportsTest, AnEmptyRecordSetWritesAPageWithAHeaderNoRowsAndZeroRecords) {
  sample.IniciaRs();
  sample.ToHtmlGrid(fullGrid(), false);
  expectApproved(page, "grid-empty.htm");
}

TEST_F(ExportsTest, AGridWithNoVisibleColumnsGivesRowsWithNoCells) {
  fill();
  sample.IniciaRs();
  sample.ToHtmlGrid(Grid({{false, "Código", kLeft}, {false, "Nombre", kLeft}}));
  expectApproved(page, "grid-no-columns.htm");
  sample.ToHtmlGrid(Grid({}));
  expectApproved(page, "grid-no-columns.htm");
}

TEST_F(ExportsTest, AHiddenColumnIsLeftOutAndTheOthersKeepTheirFields) {
  fill();
  sample.IniciaRs("corto");
  sample.ToHtmlGrid(Grid({{false, "Código", kLeft}, {true, "Nombre", kLeft}}));
  EXPECT_THAT(bytesOf(page), HasSubstr("<TR>        <TD align=left><FONT Size=1>Pe\xF1"
                                       "a & <b>Hijos</b></TD></FONT>\r\n</TR>"));
  EXPECT_THAT(bytesOf(page), HasSubstr("<FONT Size=1>NOMBRE</TH></FONT>"));
  EXPECT_THAT(bytesOf(page), Not(HasSubstr("C\xD3"
                                           "DIGO")));
}

TEST_F(ExportsTest, APictureShowsNothing) {
  fill();
  shop.run("UPDATE Muestras SET Notas = 'x'");
  sample.IniciaRs();
  rows().Field("Foto").AppendChunk(Bytes(10, std::byte{7}));
  sample.Update();
  Grid grid({{false, "", 0},
             {false, "", 0},
             {false, "", 0},
             {false, "", 0},
             {false, "", 0},
             {false, "", 0},
             {false, "", 0},
             {false, "", 0},
             {false, "", 0},
             {true, "Foto", kLeft}});
  sample.ToHtmlGrid(grid, true, "todos");
  EXPECT_THAT(codesShown(), ElementsAre("", "", ""));
}

// Texts of days are kept for the rows behind; those of moments are not.
TEST_F(ExportsTest, EveryDayHasItsOwnTextHoweverManyThereAre) {
  constexpr double kDay = 46'347;
  const std::vector<double> moments = {kDay, kDay + 1, kDay, kDay + 0.5, 0,        0.25,
                                       -1,   -1.25,    1,    2'958'465,  -657'434, kDay};
  std::vector<std::string> expected;
  int code = 0;
  for (const double days : moments) {
    shop.run("INSERT INTO Muestras (Codigo) VALUES ('" + std::to_string(10 + code++) + "')");
    expected.push_back(Variant(Date(days)).toText(shop.apartment().locale()));
  }
  sample.IniciaRs();
  for (const double days : moments) {
    rows().Field("Fecha").Value(Date(days));
    sample.Update();
    rows().MoveNext();
  }
  std::vector<GridColumn> dates(10, GridColumn{.visible = false, .caption = ""});
  dates[8] = {.visible = true, .caption = "Fecha", .alignment = kLeft};
  sample.ToHtmlGrid(Grid(dates));
  EXPECT_EQ(codesShown(), expected);
}

TEST_F(ExportsTest, PendingChangesAreShown) {
  fill();
  sample.IniciaRs();
  rows().Field(0).Value("a2");
  sample.ToHtmlGrid(codeOnly, false);
  EXPECT_THAT(codesShown(), ElementsAre("a2", "b", "c"));
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Muestras WHERE Codigo = 'a2'"), "0") << "not written";
}

// ---- Failures leave no page, or the earlier one

TEST_F(ExportsTest, BeforeIniciaRsThereIsNothingToWrite) {
  EXPECT_EQ(errorOf([&] { sample.ToHtmlGrid(codeOnly); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { sample.ToHtmlGrid(codeOnly, true); }), errors::kObjectNotSet);
  EXPECT_FALSE(fs::exists(page));
}

TEST_F(ExportsTest, AGridWithMoreColumnsThanFieldsFailsAndTheEarlierPageStays) {
  fill();
  sample.IniciaRs("corto");
  leaveEarlierPage();
  const Grid wide({{true, "a", 0}, {true, "b", 0}, {true, "c", 0}});
  EXPECT_EQ(errorOf([&] { sample.ToHtmlGrid(wide); }), errors::kItemNotFound);
  EXPECT_EQ(bytesOf(page), "earlier");
  EXPECT_EQ(filesOfReports(), 1U) << "no draft is left";
}

TEST_F(ExportsTest, AnErrorInTheMiddleOfTheRowsLeavesTheEarlierPage) {
  fill();
  sample.IniciaRs("corto");
  leaveEarlierPage();
  struct Closing final : RecordClassEvents {
    explicit Closing(Recordset& rows) : rows_(rows) {}
    void MoveComplete() override {
      if (++moves_ == 2) rows_.Close();
    }
    Recordset& rows_;
    int moves_ = 0;
  } closing(rows());
  sample.addListener(closing);
  EXPECT_EQ(errorOf([&] { sample.ToHtmlGrid(codeOnly); }), errors::kObjectClosed);
  sample.removeListener(closing);
  EXPECT_EQ(bytesOf(page), "earlier");
  EXPECT_EQ(filesOfReports(), 1U);
}

TEST_F(ExportsTest, AFolderThatCannotBeWrittenIsAnErrorWithItsPath) {
  fill();
  sample.IniciaRs();
  // Modes bind no superuser; a file where the folder should be stops everybody.
  fs::remove_all(page.parent_path());
  std::ofstream(page.parent_path()) << "in the way";
  try {
    sample.ToHtmlGrid(codeOnly, true, "todos");
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errors::kPathAccess);
    EXPECT_THAT(error.description(), HasSubstr(page.parent_path().string()));
  }
  EXPECT_EQ(bytesOf(page.parent_path()), "in the way");
}

TEST_F(ExportsTest, AStoredFilterThatDoesNotReadFailsBeforeAnythingIsWritten) {
  fill();
  sample.IniciaRs();
  leaveEarlierPage();
  sample.SetFilter("Nombre Like 'O'Hara*' ", "Filter");
  EXPECT_EQ(errorOf([&] { sample.ToHtmlGrid(codeOnly, true, "todos", true); }),
            errors::kInvalidArgument);
  EXPECT_EQ(bytesOf(page), "earlier");
}

TEST_F(ExportsTest, AnOrderThatIsOutOfRangeForTheCloneFailsBeforeAnythingIsWritten) {
  fill();
  sample.IniciaRs();
  sample.SetOrder(8, "", "lista");
  sample.IniciaRs("corto");
  leaveEarlierPage();
  EXPECT_EQ(errorOf([&] { sample.ToHtmlGrid(codeOnly, true, "lista"); }), errors::kItemNotFound);
  EXPECT_EQ(bytesOf(page), "earlier");
}

// ---- The record by record form

TEST_F(ExportsTest, RecordsBecomeThePageThatWasApproved) {
  fill();
  sample.IniciaRs();
  sample.writeRecordPage(true, "todos", false);
  expectApproved(page, "records.htm");
}

TEST_F(ExportsTest, ARecordPageOfAnEmptyCloneIsNotWritten) {
  sample.IniciaRs();
  sample.writeRecordPage(true, "todos", false);
  EXPECT_FALSE(fs::exists(page));
  sample.writeRecordPage(false, "todos", false);
  EXPECT_THAT(bytesOf(page), HasSubstr("0 registros. - s\xE1"
                                       "bado, 21 de noviembre de 2026\r\n"));
}

// ---- The modern page

TEST_F(ExportsTest, AModernPageIsTheOneThatWasApproved) {
  fill();
  sample.IniciaRs();
  sample.writeModernPage("", fullGrid(), true, "todos", false);
  expectApproved(page, "modern.htm");
}

TEST_F(ExportsTest, AModernPageLiesInTheUsersFolder) {
  fill();
  sample.IniciaRs();
  const fs::path absolute = fs::path(shop.installation().folder()) / "ana";
  fs::create_directories(absolute / "sub");
  sample.writeModernPage(absolute.string(), codeOnly, true, "todos", false);
  EXPECT_TRUE(fs::exists(absolute / "Muestras.htm"));
  sample.writeModernPage("ana\\sub\\", codeOnly, true, "todos", false);
  EXPECT_TRUE(fs::exists(absolute / "sub" / "Muestras.htm"));
  EXPECT_FALSE(fs::exists(page));
}

TEST_F(ExportsTest, AModernPageIsNotMadeInAFolderThatIsNotThere) {
  fill();
  sample.IniciaRs();
  EXPECT_EQ(errorOf([&] { sample.writeModernPage("nadie", codeOnly, true, "todos", false); }),
            errors::kPathAccess);
}

TEST_F(ExportsTest, AModernPageOfAnEmptyRecordSetHasItsFootAndOfAnEmptyCloneIsNotWritten) {
  sample.IniciaRs();
  sample.writeModernPage("", codeOnly, true, "todos", false);
  EXPECT_FALSE(fs::exists(page));
  sample.writeModernPage("", codeOnly, false, "todos", false);
  EXPECT_THAT(bytesOf(page), HasSubstr("<p class='footer'>0 registros \xB7 Generado el 21/11/2026 "
                                       "08:05:09</p>\r\n"));
}

// ---- The locale of the installation

TEST(ExportsLocaleTest, NumbersAndDatesOfAPageFollowTheInstallation) {
  Settings settings = test::fastSettings();
  settings.locale = "neutral";
  test::SampleShop shop(settings);
  shop.apartment().clock().fix(Date::of({2026, 11, 21, 8, 5, 9}));
  shop.run("INSERT INTO Muestras (Codigo, Precio, Fecha) VALUES ('a', 1234.5, #12/31/2026#)");
  test::Sample sample;
  sample.IniciaRs();
  sample.ToHtmlGrid(fullGrid());
  expectApproved(sample.GetHtmlFile(), "grid-neutral.htm");
}

}  // namespace
}  // namespace tavelor
