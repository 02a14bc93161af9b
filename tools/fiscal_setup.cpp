// SPDX-License-Identifier: MIT
// tavelor fiscal setup: asks for what records need, and checks it.
#include <CLI/CLI.hpp>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include <fmt/format.h>

#include "tavelor/fiscal/settings.hpp"
#include "tavelor/flows/issuer.hpp"
#include "tavelor/flows/sale.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/fiscal_number.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/sending/transport.hpp"
#include "tavelor/services/installation.hpp"
#include "tools/command.hpp"
#include "tools/day_option.hpp"
#include "tools/fiscal.hpp"
#include "tools/output.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(Writes the file fiscal.xml of the installation. What no option tells is asked for,
with what is there already, or is usual, as the answer of an empty line.

The taxpayer is who sells. The producer is who answers for the program, and gives
it its id of two characters; the installation's number is the producer's too, and
of each taxpayer another. With --mode verifactu records are sent to the tax office;
with no-verifactu they stay, signed, with a log of events beside them.

Series are the first part of an invoice's number, T/1. What is sold at 0 percent is
exempt (E1 to E6), not subject (N1, N2), or taxed at 0 (S1).

  tavelor fiscal setup --nif 12345678Z --name "Colmado Rius" --start 2027-01-01)";

struct SetupOptions {
  std::string nif;
  std::string name;
  std::string producerNif;
  std::string producer;
  std::string system;
  std::string id;
  std::string installation;
  std::string mode;
  std::string host;
  std::string endpoint;
  std::string certificate;
  std::string passwordName;
  std::string start;
  std::string tickets;
  std::string invoices;
  std::string rectifying;
  std::string description;
  std::string zeroRate;
};

/// What is told, else what somebody answers, else what is usual.
std::string asked(const std::string& told, const char* option, std::string_view question,
                  const std::string& usual) {
  if (!told.empty()) return told;
  const std::string suggestion = usual.empty() ? "" : fmt::format(" [{}]", printable(usual));
  complain(fmt::format("{}{}: ", question, suggestion));
  std::string answer;
  if (!std::getline(std::cin, answer)) complain("\n");
  if (answer.empty()) answer = usual;
  if (answer.empty()) throw UsageError(fmt::format("give {}: nothing is usual there", option));
  return answer;
}

/// What is told, else as it is.
void take(const std::string& told, std::string& to) {
  if (!told.empty()) to = told;
}

fiscal::Mode modeOf(const std::string& word) {
  if (word == "verifactu") return fiscal::Mode::kSending;
  if (word == "no-verifactu") return fiscal::Mode::kNotSending;
  throw UsageError(
      fmt::format("--mode must be verifactu or no-verifactu, not {}", printable(word)));
}

fiscal::Settings usual(const Session& session) {
  if (auto settings = fiscal::readSettings(session.installation())) return *settings;
  fiscal::Settings settings;
  const flows::Issuer shop = flows::issuer();
  settings.taxpayer.name = shop.company.empty() ? shop.name : shop.company;
  settings.taxpayer.number = shop.fiscalNumber;
  settings.system.name = "Tavelor";
  settings.system.id = "TV";
  settings.system.installation = "1";
  settings.start = Date::of(2027, 1, 1);
  return settings;
}

/// The first day with a record; nothing where there is none.
std::optional<Date> firstRecorded() {
  const Rows row(selector::kDocuments,
                 Statement("SELECT Min(Fecha_Expedicion) AS Primera FROM Fiscal_Registros"));
  return row.isNull("Primera") ? std::nullopt : std::optional(row.day("Primera"));
}

/// Tickets of the days from a first one on that have no record.
double unrecordedFrom(Date start) {
  double count = 0;
  constexpr std::array<Statement::Constant, 2> kTables = {"Tickets", "HTickets"};
  for (const Statement::Constant table : kTables) {
    Statement statement("SELECT Count(*) AS Cuantos FROM ");
    statement
        << table << " WHERE Fecha >= " << sqlLiteral(start)
        << " AND Numero NOT IN (SELECT Ticket FROM Fiscal_Registros WHERE Ticket Is Not Null)";
    count += Rows(selector::kDocuments, statement).number("Cuantos");
  }
  return count;
}

/// What does not hinder, and should be known.
void tellOpen(const fiscal::Settings& settings, const Session& session) {
  const bool isSending = settings.mode == fiscal::Mode::kSending;
  if (!isSending) fmt::print("sign the records each day: `tavelor fiscal sign`\n");
  if (settings.certificate.empty()) {
    fmt::print("no certificate yet: nothing can be {} without one\n",
               isSending ? "sent" : "signed");
    return;
  }
  const auto file = std::filesystem::path(session.installation().folder()) / settings.certificate;
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(file, ignored)) {
    fmt::print("the certificate {} is not there yet\n", printable(file.string()));
  }
  if (!settings.passwordName.empty() && std::getenv(settings.passwordName.c_str()) == nullptr) {
    fmt::print("the variable {} with its password is not set here\n",
               printable(settings.passwordName));
  }
}

void setup(const SetupOptions& options, const Common& common) {
  const Session session(common);
  fiscal::Settings settings = usual(session);
  settings.taxpayer.number = compactFiscalNumber(
      asked(options.nif, "--nif", "fiscal number of who sells", settings.taxpayer.number));
  settings.taxpayer.name =
      asked(options.name, "--name", "legal name of who sells", settings.taxpayer.name);
  settings.system.producer.number = compactFiscalNumber(
      asked(options.producerNif, "--producer-nif", "fiscal number of the program's producer",
            settings.system.producer.number));
  settings.system.producer.name =
      asked(options.producer, "--producer", "name of the producer", settings.system.producer.name);
  settings.system.installation =
      asked(options.installation, "--installation", "number of this installation, by the producer",
            settings.system.installation);
  settings.mode =
      modeOf(asked(options.mode, "--mode", "verifactu or no-verifactu",
                   settings.mode == fiscal::Mode::kSending ? "verifactu" : "no-verifactu"));
  const std::string start = asked(options.start, "--start", "first day whose sales are recorded",
                                  flows::isoDay(settings.start));
  settings.start = dayOption("--start", start).value();
  take(options.system, settings.system.name);
  take(options.id, settings.system.id);
  if (!options.host.empty()) settings.isTest = options.host == "test";
  take(options.endpoint, settings.endpoint);
  if (!settings.endpoint.empty()) {
    const std::string fault = sending::faultOfAddress(settings.endpoint);
    if (!fault.empty()) throw UsageError(fmt::format("--endpoint: {}", printable(fault)));
  }
  take(options.certificate, settings.certificate);
  take(options.passwordName, settings.passwordName);
  take(options.tickets, settings.series.tickets);
  take(options.invoices, settings.series.invoices);
  take(options.rectifying, settings.series.rectifying);
  take(options.description, settings.description);
  if (!options.zeroRate.empty()) {
    const auto operation = fiscal::operationOf(options.zeroRate);
    if (!operation) {
      throw UsageError(fmt::format("--zero-rate must be one of S1, N1, N2 and E1 to E6, not {}",
                                   printable(options.zeroRate)));
    }
    settings.zeroRate = *operation;
  }
  // Of the library's own version nothing is written, so that it goes with the library.
  if (settings.system.version == TAVELOR_VERSION) settings.system.version.clear();
  if (const auto first = firstRecorded(); first && settings.start > *first) {
    throw std::runtime_error(fmt::format(
        "records have begun, with an invoice of {}: the first day cannot be later any more",
        flows::isoDay(*first)));
  }
  if (const double tickets = unrecordedFrom(settings.start); tickets > 0) {
    throw std::runtime_error(fmt::format(
        "{:.0f} ticket{} from {} on {} no record: begin on a later day", tickets,
        tickets == 1 ? "" : "s", flows::isoDay(settings.start), tickets == 1 ? "has" : "have"));
  }
  fiscal::writeSettings(session.installation(), settings);
  fmt::print("{}: written\n", printable(fiscal::settingsFile(session.installation())));
  fmt::print("sales from {} on are recorded for {}, {}\n", flows::isoDay(settings.start),
             printable(settings.taxpayer.name), printable(settings.taxpayer.number));
  tellOpen(settings, session);
}

}  // namespace

void addFiscalSetup(CLI::App& fiscal, Common& common) {
  CLI::App* command = fiscal.add_subcommand("setup", "Ask for what records need, and check it");
  auto options = std::make_shared<SetupOptions>();
  const auto add = [&](const char* name, std::string& to, const char* text, const char* type) {
    command->add_option(name, to, text)->type_name(type);
  };
  command->add_option("folder", common.folder, "Folder of the installation")->type_name("FOLDER");
  add("--nif", options->nif, "Fiscal number of who sells", "NUMBER");
  add("--name", options->name, "Legal name of who sells", "TEXT");
  add("--producer-nif", options->producerNif, "Fiscal number of the program's producer", "NUMBER");
  add("--producer", options->producer, "Name of the producer", "TEXT");
  add("--system", options->system, "Name of the program", "TEXT");
  add("--id", options->id, "Id of the program, by its producer", "XX");
  add("--installation", options->installation, "Number of this installation", "TEXT");
  add("--mode", options->mode, "Whether records are sent", "verifactu|no-verifactu");
  command->add_option("--host", options->host, "Host of the tax office")
      ->check(CLI::IsMember({"production", "test"}).description(""))
      ->type_name("production|test");
  add("--endpoint", options->endpoint, "Address that records are sent to", "URL");
  add("--certificate", options->certificate, "File of the certificate", "FILE");
  add("--password-variable", options->passwordName, "Variable that holds its password", "NAME");
  add("--start", options->start, "First day whose sales are recorded", "DAY");
  add("--series-tickets", options->tickets, "Series of tickets", "TEXT");
  add("--series-invoices", options->invoices, "Series of full invoices", "TEXT");
  add("--series-rectifying", options->rectifying, "Series of rectifying invoices", "TEXT");
  add("--description", options->description, "Of what is sold, in each record", "TEXT");
  add("--zero-rate", options->zeroRate, "What is sold at 0 percent", "WORD");
  addInstallationOptions(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { setup(*options, common); });
}

}  // namespace tavelor::tools
