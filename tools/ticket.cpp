// SPDX-License-Identifier: MIT
// tavelor ticket: a ticket or an invoice as its receipt, on the screen, as a page, or for a
// printer.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <stdexcept>

#include <fmt/format.h>

#include "tavelor/flows/receipt.hpp"
#include "tools/command.hpp"
#include "tools/input_file.hpp"
#include "tools/output.hpp"
#include "tools/output_file.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(In a shop that keeps records of invoices the receipt bears the code that the law wants.
An invoice is told by the number that it bears, F/1 or T/12.

--page writes a page that a browser prints, --escpos what a ticket printer of 203 dpi
takes, to a file or to the printer itself.

  tavelor ticket 12
  tavelor ticket F/1 --page factura.html --paper A4
  tavelor ticket 12 --escpos /dev/usb/lp0 --paper 58)";

// By which an earlier file of ours is known; anything else that is the shop's own stays.
constexpr std::string_view kPageHead = "<!DOCTYPE html>\n<html lang=\"es\" class=\"receipt\">\n";
constexpr std::string_view kPrinterHead = "\x1b@\x1bt\x13";

struct TicketOptions {
  std::string number;
  std::string page;
  std::string escpos;
  std::string paper;
};

/// A ticket by its number, or else an invoice by its own.
bool isTicketNumber(const std::string& number) {
  constexpr std::size_t kMostDigits = 9;
  return !number.empty() && number.size() <= kMostDigits &&
         std::all_of(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; });
}

flows::Paper paperOf(const std::string& word) {
  if (word == "58") return flows::Paper::k58;
  return word == "A4" ? flows::Paper::kA4 : flows::Paper::k80;
}

template <typename Receipt>
Receipt found(Receipt receipt, const std::string& number) {
  if (!receipt.empty()) return receipt;
  throw std::runtime_error(fmt::format(
      "there is no {} {}", isTicketNumber(number) ? "ticket" : "invoice", printable(number)));
}

void write(const char* option, const std::string& file, const std::string& content,
           std::string_view head, const Session& session) {
  const OutputFile out = beginOutput(option, file, head, {}, session.installation());
  const std::string_view rest = std::string_view(content).substr(head.size());
  const bool isWritten = std::fwrite(rest.data(), 1, rest.size(), out.get()) == rest.size() &&
                         std::fflush(out.get()) == 0;
  if (!isWritten) {
    throw FileError(fmt::format("{}: {} cannot be written", option, printable(file)));
  }
  // Standard output may be what was written.
  if (file.rfind("/dev/", 0) != 0) fmt::print("{}: written\n", printable(file));
}

void showTicket(const TicketOptions& options, const Common& common) {
  const Session session(common);
  const std::string& name = options.number;
  const bool isTicket = isTicketNumber(name);
  const double number = isTicket ? std::stod(name) : 0;
  const flows::Paper paper = paperOf(options.paper);
  if (options.page.empty() && options.escpos.empty()) {
    if (!options.paper.empty()) throw UsageError("--paper goes with --page or --escpos");
    for (const std::string& line :
         found(isTicket ? flows::ticketText(number) : flows::invoiceText(name), name)) {
      fmt::print("{}\n", printable(line));
    }
    return;
  }
  if (!options.escpos.empty() && paper == flows::Paper::kA4) {
    throw UsageError("--escpos: a ticket printer has paper of 58 or 80 mm");
  }
  if (!options.page.empty()) {
    const std::string page =
        isTicket ? flows::ticketPage(number, paper) : flows::invoicePage(name, paper);
    write("--page", options.page, found(page, name), kPageHead, session);
  }
  if (!options.escpos.empty()) {
    const std::string bytes =
        isTicket ? flows::ticketBytes(number, paper) : flows::invoiceBytes(name, paper);
    write("--escpos", options.escpos, found(bytes, name), kPrinterHead, session);
  }
}

}  // namespace

void addTicket(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("ticket", "Show a ticket, live or in history");
  auto options = std::make_shared<TicketOptions>();
  command->add_option("number", options->number, "Number of the ticket, or of an invoice")
      ->required()
      ->type_name("NUMBER");
  command->add_option("--page", options->page, "Write it as a page to be printed")
      ->type_name("FILE.html");
  command->add_option("--escpos", options->escpos, "Write it for a ticket printer")
      ->type_name("FILE");
  command->add_option("--paper", options->paper, "What it is printed on [80]")
      ->check(CLI::IsMember({"58", "80", "A4"}).description(""))
      ->type_name("58|80|A4");
  addInstallationOptions(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { showTicket(*options, common); });
}

}  // namespace tavelor::tools
