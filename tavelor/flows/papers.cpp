// SPDX-License-Identifier: MIT
// Slips and pages: what a program that died before it wrote them has left out is made again.
#include "tavelor/flows/papers.hpp"

#include <filesystem>
#include <fstream>
#include <set>

#include "tavelor/flows/day_page.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/shop_inner.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/settings_file.hpp"

namespace tavelor::flows {

namespace {

// More than one evening of the largest shop closes.
constexpr double kLatestClosings = 50;

/// " WHERE Fecha >= .. AND Fecha < ..": a closing may have a time behind its day.
Statement ofDay(Statement::Constant select, Date day) {
  Statement statement(select);
  statement << " WHERE Fecha >= " << spliced(numberText(day.days())) << " AND Fecha < "
            << spliced(numberText(day.days() + 1));
  return statement;
}

bool hasHistory(Date day) {
  return Rows(selector::kDocuments, ofDay("SELECT TOP 1 Numero FROM HTickets", day)).hasRow();
}

/// Whether the page of a day is there and knows all of its closings. One that does not tell which
/// it knows was made by somebody else.
bool isPageWhole(Date day) {
  std::ifstream page(dayPagePath(day), std::ios::binary);
  if (!page) return false;
  std::string head(4096, '\0');
  page.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(page.gcount()));
  if (head.find(kClosingsMark) == std::string::npos) return true;
  Statement statement = ofDay("SELECT Codigo FROM Cierres", day);
  statement << " ORDER BY Codigo";
  return head.find(closingsMark(numbersOf(selector::kMain, statement, "Codigo", {}))) !=
         std::string::npos;
}

void removeHalves(Papers& papers) {
  const Installation& shop = Apartment::current().installation();
  for (const std::string& folder : {shop.folder(), shop.reportFolder(), shop.exportFolder()}) {
    for (std::string& file : removeUnfinished(folder)) papers.removed.push_back(std::move(file));
  }
}

/// And finds the days that had closings.
void writeMissingSlips(PapersOf which, Papers& papers, std::set<double>& days) {
  double first = 0;
  if (which == PapersOf::kLatest) {
    const Rows last(selector::kMain, Statement("SELECT Max(Codigo) AS Ultimo FROM Cierres"));
    first = last.number("Ultimo") - kLatestClosings;
  }
  Statement statement("SELECT Codigo, Fecha FROM Cierres WHERE Codigo > ");
  statement << spliced(numberText(first)) << " ORDER BY Codigo";
  for (Rows rows(selector::kMain, statement); rows.hasRow(); rows.next()) {
    const double closing = rows.number("Codigo");
    if (!rows.isNull("Fecha")) days.insert(rows.day("Fecha").days());
    if (!std::filesystem::exists(slipPath(closing))) papers.written.push_back(writeSlip(closing));
  }
}

}  // namespace

std::string writeMissingPage(Date day) {
  const bool isDone = throughOutages([&] { return isPageWhole(day) || !hasHistory(day); });
  return isDone ? std::string() : writeDayPage(day, day);
}

Papers writeMissingPapers(PapersOf which) {
  Papers papers;
  removeHalves(papers);
  // What an outage leaves written is passed over by the next look.
  std::set<double> days;
  throughOutages([&] { writeMissingSlips(which, papers, days); });
  for (const double day : days) {
    if (std::string page = writeMissingPage(Date(day)); !page.empty()) {
      papers.written.push_back(std::move(page));
    }
  }
  return papers;
}

}  // namespace tavelor::flows
