// SPDX-License-Identifier: MIT
// tavelor fiscal: the records that the law wants of invoices.
#include "tools/fiscal.hpp"

#include <CLI/CLI.hpp>

#include "tools/command.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(From 2027 on every company in Spain that sells with a program writes a record of
each invoice, chained to the one before, that nobody can change. A shop keeps them
from the first day on that `tavelor fiscal setup` is told; each ticket is stored
with its record, or not at all.

  tavelor fiscal setup --start 2027-01-01    asks for what is not told
  tavelor fiscal check                       is the chain whole?
  tavelor fiscal export records --from 2027-01-01 --to 2027-03-31
  tavelor fiscal send --service              to the tax office, as they come
  tavelor fiscal status                      what waits, and what was refused
  tavelor fiscal sign                        in a shop that does not send)";

}  // namespace

void addFiscal(CLI::App& app, Common& common) {
  CLI::App* command =
      app.add_subcommand("fiscal", "Records of invoices, as the law wants them from 2027 on");
  command->require_subcommand(1);
  command->footer(kFooter);
  addFiscalSetup(*command, common);
  addFiscalCheck(*command, common);
  addFiscalSign(*command, common);
  addFiscalExport(*command, common);
  addFiscalLog(*command, common);
  addFiscalInvoice(*command, common);
  addFiscalCancel(*command, common);
  addFiscalSend(*command, common);
  addFiscalStatus(*command, common);
  addFiscalCorrect(*command, common);
  addFiscalFacturae(*command, common);
  addFiscal347(*command, common);
}

}  // namespace tavelor::tools
