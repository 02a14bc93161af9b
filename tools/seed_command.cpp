// SPDX-License-Identifier: MIT
// tavelor seed: fills the catalogues of a new installation.
#include <CLI/CLI.hpp>

#include <fmt/format.h>

#include "tavelor/flows/seed.hpp"
#include "tools/command.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(Tax rates, the euro, payment methods, document and invoice types, an issuer, a
warehouse, a till, a section, a family, a customer type, the counters of this year,
and the walk-in customer, whom nobody at the till knows by name. What has rows
already is left alone, so a second run adds nothing.

  tavelor new shop
  tavelor seed shop)";

std::string rowsText(std::size_t rows) {
  return rows == 1 ? "1 row" : fmt::format("{} rows", rows);
}

void seed(const Common& common) {
  const Session session(common);
  std::size_t added = 0;
  for (const flows::Seeded& seeded : flows::seedCatalogues()) {
    added += seeded.added;
    fmt::print("{:<16}  {}\n", seeded.what,
               seeded.added > 0 ? rowsText(seeded.added) + " added"
                                : rowsText(seeded.kept) + " there, left alone");
  }
  if (added == 0) fmt::print("Nothing to add.\n");
}

}  // namespace

void addSeed(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("seed", "Fill the catalogues of a new installation");
  command->add_option("folder", common.folder, "Folder of the installation")->type_name("FOLDER");
  addInstallationOptions(*command, common);
  command->footer(kFooter);
  command->callback([&common] { seed(common); });
}

}  // namespace tavelor::tools
