// SPDX-License-Identifier: MIT
// tavelor fiscal facturae and 347: documents that are made of records and ledgers.
#include <CLI/CLI.hpp>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "tavelor/fiscal/settings.hpp"
#include "tavelor/flows/form347.hpp"
#include "tavelor/flows/public_invoice.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/folders.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/settings_file.hpp"
#include "tavelor/signing/signature.hpp"
#include "tools/command.hpp"
#include "tools/fiscal.hpp"
#include "tools/output.hpp"
#include "tools/output_file.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFacturaeFooter =
    R"(A full invoice as a Facturae 3.2.2 document, which public bodies take. Its centres
are those of the customer (Clientes_Centros, roles 01 to 04, else the columns of
the master); the shop's address is that of the default document type
(`tavelor seed --address --postcode --place`). What is missing is named, and then
nothing is written.

It is signed with the certificate of `tavelor fiscal setup --certificate`; without
one it is not, and that is said.

  tavelor fiscal facturae F/12 F12.xsig)";

constexpr const char* k347Footer =
    R"(Writes the declaration of all with whom the shop has done more than 3,005.06 EUR of
business in a year: sales by the records of invoices that name who buys (before
there were records, by the tickets of known customers), purchases by the ledgers of
suppliers. Those who share a fiscal number are one. What is missing is listed with
the customer's or supplier's code, and then nothing is written.

  tavelor fiscal 347 2027 347-2027.txt --phone 938860000 --contact "Rius Puig, Joan")";

struct FacturaeOptions {
  std::string number;
  std::string file;
  std::string customer;
  bool isUnsigned = false;
};

std::string certificateFile(const fiscal::Settings& settings, const Session& session) {
  const std::filesystem::path folder = session.installation().folder();
  return (folder / settings.certificate).string();
}

/// Raises UsageError where the file to write is one of the shop's own, its certificate among them.
void requireOutside(const std::string& file, const Session& session) {
  requireForeign("FILE", file, session.installation());
  std::vector<std::string> own = {fiscal::settingsFile(session.installation())};
  const auto settings = fiscal::readSettings(session.installation());
  if (settings && !settings->certificate.empty()) {
    own.push_back(certificateFile(*settings, session));
  }
  for (const std::string& each : own) {
    if (isSameFile(file, each)) {
      throw UsageError(fmt::format("FILE: {} is the shop's own file", printable(file)));
    }
  }
}

void facturae(const FacturaeOptions& options, const Common& common) {
  Session session(common);
  requireOutside(options.file, session);
  const fiscal::Facturae found = flows::publicInvoice(options.number, options.customer);
  std::string xml = fiscal::xmlOf(found);
  const auto settings = fiscal::readSettings(session.installation());
  const bool isSigned = settings && !settings->certificate.empty() && !options.isUnsigned;
  std::string signer;
  if (isSigned) {
    const auto certificate =
        signing::Certificate::read(certificateFile(*settings, session), settings->passwordName);
    xml = signing::signedXml(xml, certificate,
                             {.policy = signing::kFacturaePolicy,
                              .moment = fiscal::momentOf(session.apartment().clock())});
    signer = certificate.subject();
  }
  replaceFile(options.file, xml);
  fmt::print("{}: invoice {} of {} to {}\n", printable(options.file),
             printable(found.invoice.invoice.number), found.invoice.total.text(),
             printable(found.buyer.party.name));
  if (isSigned) {
    fmt::print("signed by {}\n", printable(signer));
  } else {
    fmt::print("NOT signed{}: no public body takes it so\n",
               options.isUnsigned ? "" : ", as `tavelor fiscal setup` was told no certificate");
  }
}

struct Form347Options {
  int year = 0;
  std::string file;
  std::string phone;
  std::string contact;
  std::uint64_t number = 0;
  std::uint64_t complements = 0;
  std::uint64_t replaces = 0;
};

void form347(const Form347Options& options, const Common& common) {
  if (options.complements != 0 && options.replaces != 0) {
    throw UsageError("a declaration complements another one or replaces it, and not both");
  }
  const Session session(common);
  requireOutside(options.file, session);
  flows::YearOfTrade year = flows::yearOfTrade(options.year);
  fiscal::Form347& form = year.form;
  form.phone = options.phone;
  form.contact = options.contact;
  form.number = options.number;
  form.previous = options.complements + options.replaces;
  if (options.complements != 0) form.kind = fiscal::FormKind::kComplements;
  if (options.replaces != 0) form.kind = fiscal::FormKind::kReplaces;
  for (const std::string& remark : year.remarks) fmt::print("{}\n", printable(remark));
  if (const auto faults = fiscal::faultsOf(form); !faults.empty()) {
    for (const std::string& fault : faults) fmt::print("{}\n", printable(fault));
    throw std::runtime_error(
        fmt::format("form 347 of {} is not written: {} thing{} missing or wrong", options.year,
                    faults.size(), faults.size() == 1 ? " is" : "s are"));
  }
  replaceFile(options.file, fiscal::textOf(form));
  std::int64_t purchases = 0;
  std::int64_t sales = 0;
  std::size_t suppliers = 0;
  for (const fiscal::Declared& each : form.declared) {
    (each.isSupplier ? purchases : sales) += each.total();
    if (each.isSupplier) ++suppliers;
  }
  const auto counted = [](std::size_t count, std::string_view who) {
    return fmt::format("{} {}{}", count, who, count == 1 ? "" : "s");
  };
  fmt::print("{}: {}, {}; {}, {}; {} below the limit\n", printable(options.file),
             counted(suppliers, "supplier"), fiscal::Amount::ofCents(purchases).text(),
             counted(form.declared.size() - suppliers, "customer"),
             fiscal::Amount::ofCents(sales).text(), year.below);
}

}  // namespace

void addFiscalFacturae(CLI::App& fiscal, Common& common) {
  CLI::App* command = fiscal.add_subcommand("facturae", "Write an invoice for a public body");
  auto options = std::make_shared<FacturaeOptions>();
  command->add_option("number", options->number, "Number of the invoice, F/12")
      ->required()
      ->type_name("NUMBER");
  command->add_option("file", options->file, "File to write")->required()->type_name("FILE");
  command->add_option("--customer", options->customer, "Code of who buys")->type_name("CODE");
  command->add_flag("--unsigned", options->isUnsigned, "Do not sign it");
  addInstallationOptions(*command, common);
  command->footer(kFacturaeFooter);
  command->callback([options, &common] { facturae(*options, common); });
}

void addFiscal347(CLI::App& fiscal, Common& common) {
  constexpr int kFirstYear = 2000;
  constexpr int kLastYear = 2999;
  CLI::App* command = fiscal.add_subcommand("347", "Write the year's declaration of partners");
  auto options = std::make_shared<Form347Options>();
  command->add_option("year", options->year, "Year")
      ->required()
      ->check(CLI::Range(kFirstYear, kLastYear).description(""))
      ->type_name("YEAR");
  command->add_option("file", options->file, "File to write")->required()->type_name("FILE");
  command->add_option("--phone", options->phone, "Of who answers for it")->type_name("DIGITS");
  command->add_option("--contact", options->contact, "His name")->type_name("TEXT");
  command->add_option("--number", options->number, "Of the declaration")->type_name("DIGITS");
  command->add_option("--complements", options->complements, "Number of the one that it adds to")
      ->type_name("DIGITS");
  command->add_option("--replaces", options->replaces, "Number of the one that it replaces")
      ->type_name("DIGITS");
  addInstallationOptions(*command, common);
  command->footer(k347Footer);
  command->callback([options, &common] { form347(*options, common); });
}

}  // namespace tavelor::tools
