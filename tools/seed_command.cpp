// SPDX-License-Identifier: MIT
// tavelor seed: fills the catalogues of a new installation.
#include <CLI/CLI.hpp>
#include <memory>

#include <fmt/format.h>

#include "tavelor/flows/issuer.hpp"
#include "tavelor/flows/seed.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(Tax rates, the euro, payment methods, document and invoice types, an issuer, a
warehouse, a till, a section, a family, a customer type, the counters of this year,
and the walk-in customer, whom nobody at the till knows by name. What has rows
already is left alone, so a second run adds nothing.

  tavelor new shop
  tavelor seed shop --name "Colmado Rius" --nif 12345678Z)";

std::string rowsText(std::size_t rows) {
  return rows == 1 ? "1 row" : fmt::format("{} rows", rows);
}

/// What is not told stays as it is.
void name(const flows::Issuer& told) {
  flows::Issuer issuer = flows::issuer();
  if (!told.name.empty()) issuer.name = told.name;
  if (!told.fiscalNumber.empty()) issuer.fiscalNumber = told.fiscalNumber;
  if (!told.address.empty()) issuer.address = told.address;
  if (!told.place.empty()) issuer.place = told.place;
  if (!told.postcode.empty()) issuer.postcode = told.postcode;
  if (!told.province.empty()) issuer.province = told.province;
  flows::setIssuer(issuer);
  fmt::print("receipts begin with {}{}\n", printable(issuer.name),
             issuer.fiscalNumber.empty() ? "" : ", NIF " + printable(issuer.fiscalNumber));
}

void seed(const flows::Issuer& issuer, const Common& common) {
  const Session session(common);
  std::size_t added = 0;
  for (const flows::Seeded& seeded : flows::seedCatalogues()) {
    added += seeded.added;
    fmt::print("{:<16}  {}\n", seeded.what,
               seeded.added > 0 ? rowsText(seeded.added) + " added"
                                : rowsText(seeded.kept) + " there, left alone");
  }
  const bool isNamed = !issuer.name.empty() || !issuer.fiscalNumber.empty() ||
                       !issuer.address.empty() || !issuer.place.empty() ||
                       !issuer.postcode.empty() || !issuer.province.empty();
  if (isNamed) name(issuer);
  if (added == 0 && !isNamed) fmt::print("Nothing to add.\n");
}

}  // namespace

void addSeed(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("seed", "Fill the catalogues of a new installation");
  command->add_option("folder", common.folder, "Folder of the installation")->type_name("FOLDER");
  auto issuer = std::make_shared<flows::Issuer>();
  command->add_option("--name", issuer->name, "Of the shop, on top of its receipts")
      ->type_name("TEXT");
  command->add_option("--nif", issuer->fiscalNumber, "Its fiscal number")->type_name("NUMBER");
  command->add_option("--address", issuer->address, "Street and number")->type_name("TEXT");
  command->add_option("--place", issuer->place, "Town")->type_name("TEXT");
  command->add_option("--postcode", issuer->postcode, "Its postcode")->type_name("DIGITS");
  command->add_option("--province", issuer->province, "Its province")->type_name("TEXT");
  addInstallationOptions(*command, common);
  command->footer(kFooter);
  command->callback([issuer, &common] { seed(*issuer, common); });
}

}  // namespace tavelor::tools
