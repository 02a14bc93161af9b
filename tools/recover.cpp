// SPDX-License-Identifier: MIT
// tavelor recover: mends what a program that died in the middle has left.
#include <CLI/CLI.hpp>

#include <fmt/format.h>

#include "tools/command.hpp"
#include "tools/session.hpp"
#include "tools/shop/shop.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(A ticket and its stock lie in two databases, and so do a closing and its tickets; a
program that dies between the two leaves one without the other. Here

  a ticket whose stock has not moved   has it moved now
  a closing without its tickets        is taken back; the next closing takes them
  a closing without its slip           has it written

The next sale or closing does the first two by itself. A second run finds nothing.)";

void recover(const Common& common) {
  const Session session(common);
  shop::Shop shop;
  const shop::Recovered recovered = shop.recover();
  for (const double ticket : recovered.sales) {
    fmt::print("ticket {:.0f}: stock moved\n", ticket);
  }
  for (const double closing : recovered.closings) {
    fmt::print("closing {:.0f}: taken back, its tickets are open\n", closing);
  }
  const std::vector<std::string> slips = shop.writeMissingSlips();
  for (const std::string& slip : slips) fmt::print("{}: written\n", slip);
  if (recovered.sales.empty() && recovered.closings.empty() && slips.empty()) {
    fmt::print("Nothing to mend.\n");
  }
}

}  // namespace

void addRecover(CLI::App& app, Common& common) {
  CLI::App* command =
      app.add_subcommand("recover", "Mend what a program that died in the middle has left");
  command->add_option("folder", common.folder, "Folder of the installation")->type_name("FOLDER");
  addInstallationOptions(*command, common);
  command->footer(kFooter);
  command->callback([&common] { recover(common); });
}

}  // namespace tavelor::tools
