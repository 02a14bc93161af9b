// SPDX-License-Identifier: MIT
// tavelor recover: mends what a program that died in the middle has left.
#include <CLI/CLI.hpp>
#include <memory>
#include <stdexcept>

#include <fmt/format.h>

#include "tavelor/flows/papers.hpp"
#include "tavelor/flows/shop.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(A ticket and its stock lie in two databases, and so do a closing and its tickets; a
program that dies between the two leaves one without the other, and so does a
database that has lost its latest changes. Here

  a ticket whose stock has not moved    has it moved now
  a closing whose tickets are open      is taken back; the next closing takes them
  closed tickets without their closing  have it written again
  a closing without its slip            has it written
  a day without its page                has it written, as has one whose page does
                                        not know the last closing
  the half of a file                    is removed

The next sale or closing does the first three by itself. All tickets and closings
there are are looked at. What is stored cannot mend the rest: movements of stock
whose tickets are lost, lines that are not what was moved, closings whose tickets
are nowhere. Behind the last ticket or closing that is whole, nothing is sold or
closed until one of these is done:

  put the file back that has them, and run this again
  --follow-tickets   stock and closings become what the tickets tell: movements
                     without a ticket are taken back, lines without movements are
                     moved, closings without tickets are deleted, unless they were
                     invoiced. Sell again what was lost; it gets new numbers
  --keep             all stays as it is, and is not told again

Exit code 1 while something is undecided. Otherwise a second run finds nothing.)";

struct RecoverOptions {
  bool followTickets = false;
  bool keep = false;

  flows::Decision decision() const {
    if (followTickets) return flows::Decision::kFollowTickets;
    return keep ? flows::Decision::kKeep : flows::Decision::kNone;
  }
};

void tellFindings(const std::vector<flows::Finding>& findings, std::string_view end) {
  for (const std::string& sentence : flows::told(findings)) {
    fmt::print("{}{}\n", printable(sentence), end);
  }
}

void recover(const RecoverOptions& options, const Common& common) {
  const Session session(common);
  flows::Shop shop;
  const flows::Recovered recovered = shop.recoverAll(options.decision());
  for (const double ticket : recovered.takenBack) {
    fmt::print("ticket {:.0f}: lost, its movements taken back\n", ticket);
  }
  for (const double ticket : recovered.sales) {
    fmt::print("ticket {:.0f}: stock moved\n", ticket);
  }
  for (const double closing : recovered.closings) {
    fmt::print("closing {:.0f}: taken back\n", closing);
  }
  for (const double closing : recovered.rewritten) {
    fmt::print("closing {:.0f}: written again from its tickets\n", closing);
  }
  tellFindings(recovered.kept, "; kept");
  if (recovered.unused) {
    fmt::print("numbers {:.0f} to {:.0f}: no ticket has them, and none will\n",
               recovered.unused->first, recovered.unused->second);
  }
  // What is undecided may still change what slips and pages tell.
  flows::Papers papers;
  if (recovered.undecided.empty()) papers = flows::writeMissingPapers(flows::PapersOf::kAll);
  for (const std::string& file : papers.removed) fmt::print("{}: removed\n", printable(file));
  for (const std::string& file : papers.written) fmt::print("{}: written\n", printable(file));
  if (!recovered.undecided.empty()) {
    tellFindings(recovered.undecided, "");
    throw std::runtime_error(
        "this cannot be mended from what is stored; `tavelor recover --help` tells what to do");
  }
  if (!recovered.hasMended() && papers.written.empty() && papers.removed.empty())
    fmt::print("Nothing to mend.\n");
}

}  // namespace

void addRecover(CLI::App& app, Common& common) {
  CLI::App* command =
      app.add_subcommand("recover", "Mend what a program that died or a lost file has left");
  auto options = std::make_shared<RecoverOptions>();
  command->add_option("folder", common.folder, "Folder of the installation")->type_name("FOLDER");
  CLI::Option* const follow = command->add_flag("--follow-tickets", options->followTickets,
                                                "Believe the tickets where nothing else helps");
  command->add_flag("--keep", options->keep, "Leave as it is what cannot be mended")
      ->excludes(follow);
  addInstallationOptions(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { recover(*options, common); });
}

}  // namespace tavelor::tools
