// SPDX-License-Identifier: MIT
// tavelor fiscal invoice and cancel: what is done to tickets that were sold.
#include <CLI/CLI.hpp>
#include <memory>

#include <fmt/format.h>

#include "tavelor/flows/shop.hpp"
#include "tavelor/services/clock.hpp"
#include "tools/command.hpp"
#include "tools/fiscal.hpp"
#include "tools/output.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kInvoiceFooter =
    R"(A customer who comes back with his tickets gets one invoice in their place. The
tickets stay as they are. Who buys is a customer of the shop, or told with --name
and --nif; numbers of other countries of the Union begin with their two letters.

  tavelor fiscal invoice 12 15 --customer 401
  tavelor fiscal invoice 12 --name "Ñandú SA" --nif A58818501)";

constexpr const char* kCancelFooter =
    R"(For a ticket that should not have been sold: all of it comes back, and its invoice
is cancelled. What a customer brings back is no such ticket.

  tavelor fiscal cancel 12 --till 01)";

struct InvoiceOptions {
  std::vector<double> tickets;
  std::string customer;
  std::string name;
  std::string nif;
  double ticket = 0;
  std::string till;
};

void invoice(const InvoiceOptions& options, const Common& common) {
  if (options.customer.empty() == options.name.empty()) {
    throw UsageError("name who buys with --customer, or with --name and --nif");
  }
  Session session(common);
  flows::Shop shop;
  flows::InvoiceWish wish;
  wish.tickets = options.tickets;
  wish.day = session.apartment().clock().today();
  wish.customer = options.customer;
  if (!options.name.empty()) wish.recipient = fiscal::partyOf(options.name, options.nif);
  fmt::print("invoice {}\n", printable(shop.invoiceTickets(wish)));
}

void cancel(const InvoiceOptions& options, const Common& common) {
  Session session(common);
  flows::Shop shop;
  flows::Return what;
  what.ticket = options.ticket;
  what.till = options.till;
  what.day = session.apartment().clock().today();
  what.comment = "Anulación";
  fmt::print("ticket {:.0f} is cancelled by ticket {:.0f}\n", options.ticket, shop.cancel(what));
}

}  // namespace

void addFiscalInvoice(CLI::App& fiscal, Common& common) {
  CLI::App* command = fiscal.add_subcommand("invoice", "Issue an invoice in the place of tickets");
  auto options = std::make_shared<InvoiceOptions>();
  command->add_option("tickets", options->tickets, "Numbers of the tickets")
      ->required()
      ->type_name("NUMBER...");
  command->add_option("--customer", options->customer, "Code of who buys")->type_name("CODE");
  command->add_option("--name", options->name, "Legal name of who buys")->type_name("TEXT");
  command->add_option("--nif", options->nif, "Fiscal number of who buys")->type_name("NUMBER");
  addInstallationOptions(*command, common);
  command->footer(kInvoiceFooter);
  command->callback([options, &common] { invoice(*options, common); });
}

void addFiscalCancel(CLI::App& fiscal, Common& common) {
  CLI::App* command = fiscal.add_subcommand("cancel", "Cancel a ticket that should not have been");
  auto options = std::make_shared<InvoiceOptions>();
  command->add_option("ticket", options->ticket, "Number of the ticket")
      ->required()
      ->type_name("NUMBER");
  command->add_option("--till", options->till, "Where the money is given back")
      ->required()
      ->type_name("CODE");
  addInstallationOptions(*command, common);
  command->footer(kCancelFooter);
  command->callback([options, &common] { cancel(*options, common); });
}

}  // namespace tavelor::tools
