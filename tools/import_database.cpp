// SPDX-License-Identifier: MIT
// tavelor import database: takes the tables of an old database file.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <optional>

#include <fmt/format.h>

#include "tavelor/services/installation.hpp"
#include "tools/command.hpp"
#include "tools/database_import.hpp"
#include "tools/input_file.hpp"
#include "tools/interrupt.hpp"
#include "tools/output.hpp"
#include "tools/progress.hpp"
#include "tools/refusals.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(FILE is a database of the Jet engine (.mdb, of 97 to 2003). Its tables go into those
of the shop that bear their names, its columns likewise, capitals, accents and
blanks apart; --map says what is called otherwise, and leaves out what has nothing
behind the =. What has no place is told and left out. Main tables go into the main
database and tickets into that of the documents, all of them into --into where it is
given.

Values come as they are: money to its last decimal, days with their times, texts by
the file's code page, flags, memos, pictures. A row is refused for a value that its
column does not hold, for a key that another row of the file has, and for a row of
another table that it refers to and that neither the shop nor the file has: as the
file's own relations say, and for what hangs from an article, a customer, a
supplier, an employee, a ticket or a closing. Refused rows are reported with their
keys, and the exit code is 1.

A row that is there already is not written. Where it is otherwise it is told, and
rewritten with --rewrite. So the same command brings nothing twice.

All tables of a database are one transaction, and on a server all of them: who is
interrupted has brought nothing. Others wait to write meanwhile. With --dry-run all
is tried and nothing stays written. The records of invoices that the law wants are
never taken, nor who may sign in: the shop alone writes them.

  tavelor import database old.mdb --dry-run --report left-out.csv
  tavelor import database old.mdb --map Products=Articulos Products.Name=Descripcion Log=
  tavelor import database years.mdb --into historic)";

struct DatabaseOptions {
  std::string file;
  std::vector<std::string> maps;
  std::string into;
  std::string report;
  bool isRewriting = false;
  bool isDryRun = false;
};

struct Told {
  std::string table;
  TableCounts counts;
};

void print(const std::vector<Told>& told, bool isDryRun) {
  std::size_t width = 5;
  for (const Told& each : told) width = std::max(width, each.table.size());
  fmt::print("\n{:<{}}      rows       new   changed as stored otherwise   refused\n", "table",
             width);
  for (const Told& each : told) {
    const TableCounts& counts = each.counts;
    fmt::print("{:<{}} {:>9} {:>9} {:>9} {:>9} {:>9} {:>9}\n", each.table, width, counts.total(),
               counts.added, counts.changed, counts.same, counts.kept, counts.refused);
  }
  if (isDryRun) fmt::print("nothing was written\n");
  std::fflush(stdout);
}

std::optional<int> selectorOf(const std::string& word, const Session& session) {
  return word.empty() ? std::nullopt : std::optional(session.selector(word));
}

void importDatabase(const DatabaseOptions& options, const Common& common) {
  OldDatabase file(options.file);  // before any database of the shop is open
  Session session(common);
  const TablePlans plans =
      planTables(file, session.installation(), options.maps, selectorOf(options.into, session));
  Refusals refusals(options.report, options.file, session.installation(), "row");
  fmt::print("{}", described(plans, file));
  std::fflush(stdout);

  std::uint64_t total = 0;
  for (const TablePlan& plan : plans.tables) {
    if (plan.fault.empty()) total += file.tables()[plan.from].rows;
  }
  if (file.tables().empty()) throw FileError(fmt::format("{}: there is no table", options.file));
  std::vector<Told> told;
  {
    const Interruptible guard;
    Progress progress(stderr, total);
    DatabaseImport import(file, plans, {options.isRewriting});
    std::uint64_t before = 0;
    for (const TablePlan* plan : import.order()) {
      const TableCounts counts =
          import.take(*plan, refusals, [&](std::uint64_t rows) { progress.at(before + rows); });
      before += counts.total();
      told.push_back({plan->to->name, counts});
    }
    if (!options.isDryRun) import.commit();
  }
  refusals.print();
  if (told.empty()) throw FileError(fmt::format("{}: no table of it has a place", options.file));
  print(told, options.isDryRun);
  if (refusals.count() > 0) throw FileError(fmt::format("{} rows were refused", refusals.count()));
}

}  // namespace

void addImportDatabase(CLI::App& import, Common& common) {
  CLI::App* command =
      import.add_subcommand("database", "Take the tables of an old database (.mdb)");
  auto options = std::make_shared<DatabaseOptions>();
  command->add_option("file", options->file, "The file")->required()->type_name("FILE");
  command->add_option("--map", options->maps, "Which table or column is which; none behind the =")
      ->type_name("OLD=NEW...");
  command->add_option("--into", options->into, "Put all tables into this database of the shop")
      ->type_name("DATABASE");
  command->add_flag("--rewrite", options->isRewriting, "Rewrite rows that are there otherwise");
  command->add_option("--report", options->report, "Write all refused rows to this file")
      ->type_name("FILE");
  command->add_flag("--dry-run", options->isDryRun, "Try all of it and leave nothing written");
  addInstallationOptions(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { importDatabase(*options, common); });
}

}  // namespace tavelor::tools
