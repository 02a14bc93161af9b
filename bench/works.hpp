// SPDX-License-Identifier: MIT
// The works that are measured, a function a subject.
#pragma once

#include "bench/runner.hpp"

namespace tavelor::bench {

/// Opening, sorting, filtering and writing back the rows of a wide table.
void measureCursor(Report& report, const Scale& scale);
/// Rows written as pages.
void measurePage(Report& report, const Scale& scale);
/// Statements that are spliced anew each time: inserts, one-row reads.
void measureStatements(Report& report, const Scale& scale);
/// A ticket with five lines, stock and counter in one transaction.
void measureSale(Report& report, const Scale& scale);
/// Totals of a ticket's lines, and the closing of a day of tickets.
void measureSales(Report& report, const Scale& scale);
/// Members of the article master.
void measureArticles(Report& report, const Scale& scale);
/// Customers as lists, and the cleaning of their fiscal numbers.
void measureCustomers(Report& report, const Scale& scale);
/// The stock of a ticket's lines, in all places that hold it.
void measureStock(Report& report, const Scale& scale);
/// Deliveries of suppliers, in all that they move.
void measureReceive(Report& report, const Scale& scale);
/// An entry of the past in the ledger of one customer.
void measureLedger(Report& report, const Scale& scale);
/// One day of an agenda of ten years.
void measureAgenda(Report& report, const Scale& scale);
/// Articles taken from rows of text, through their class.
void measureImport(Report& report, const Scale& scale);
/// A stroke of a key in a search of articles.
void measureSearch(Report& report, const Scale& scale);
/// Translation of every statement of the corpus beside the engine's own compiling.
void measureTranslation(Report& report, const Scale& scale);
/// Time a row from a thousand rows to a million.
void measureGrowth(Report& report, const Scale& scale);
/// A day at the tills after none, one and five million lines of history.
void measureYears(Report& report, const Scale& scale);
/// What dates, money and flags cost by the way they are stored. The engine alone.
void measureStorage(Report& report, const Scale& scale);
/// The records that the law wants of invoices.
void measureRecords(Report& report, const Scale& scale);
/// Sales, rows, articles and tills at once over a server.
void measureServer(Report& report, const Scale& scale);
#ifdef TAVELOR_BENCH_C
/// Calls and rows through the C interface.
void measureC(Report& report, const Scale& scale);
#endif
#ifdef TAVELOR_BENCH_QT
/// The models of the Qt adapter beside Qt's own.
void measureQt(Report& report, const Scale& scale);
#endif

}  // namespace tavelor::bench
