// SPDX-License-Identifier: MIT
// tavelor ticket: a ticket as its receipt, wherever it lies.
#include <CLI/CLI.hpp>
#include <memory>
#include <stdexcept>

#include <fmt/format.h>

#include "tavelor/flows/receipt.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

void showTicket(double number, const Common& common) {
  const Session session(common);
  const std::vector<std::string> receipt = flows::ticketText(number);
  if (receipt.empty()) throw std::runtime_error(fmt::format("there is no ticket {:.0f}", number));
  for (const std::string& line : receipt) fmt::print("{}\n", printable(line));
}

}  // namespace

void addTicket(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("ticket", "Show a ticket, live or in history");
  auto number = std::make_shared<std::uint32_t>(0);
  command->add_option("number", *number, "Number of the ticket")->required()->type_name("NUMBER");
  addInstallationOptions(*command, common);
  command->callback([number, &common] { showTicket(*number, common); });
}

}  // namespace tavelor::tools
