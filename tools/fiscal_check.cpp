// SPDX-License-Identifier: MIT
// tavelor fiscal check, sign, export and log: looks at the records, and gives them away.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>
#include <stdexcept>

#include <fmt/format.h>

#include "tavelor/fiscal/check.hpp"
#include "tavelor/fiscal/export.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/signing/record_signatures.hpp"
#include "tools/command.hpp"
#include "tools/day_option.hpp"
#include "tools/fiscal.hpp"
#include "tools/fiscal_book.hpp"
#include "tools/interrupt.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

namespace {

constexpr std::size_t kMostTold = 20;

constexpr const char* kCheckFooter =
    R"(Every hash, link, date and sum of all records is computed again, and tickets are
compared with their records. The first record that was changed, removed, inserted
or reordered is told first. Days are those on which invoices were issued. In a shop
that does not send the check stands in the log of events, each signature is looked
at as well, and what has none yet is counted.

Exit code 1 where something is wrong.)";

constexpr const char* kExportFooter =
    R"(Writes into FOLDER, which must hold no export, the records from the first to the
last one that was issued in the span: XML as the tax office's schema has it, a
thousand records a file, the log of events where there is one, and sums.txt with
counts, sums and the SHA-256 of each file (sha256sum -c sums.txt).

A shop that does not send signs first what has no signature yet, where it has a
certificate, and gives away what was signed; what is not is told.)";

constexpr const char* kSignFooter =
    R"(Signs what a shop that does not send has recorded and not signed yet, with the
certificate of `tavelor fiscal setup --certificate`, in the chain's order. Sales go
on meanwhile and wait for nothing; run it each day, or as often as is wanted. It may
be interrupted, and the next one goes on. `tavelor fiscal export` runs it first.

Exit code 1 where something cannot be signed, as somebody has changed it.)";

constexpr const char* kLogFooter =
    R"(The log of a shop that does not send begins and ends by itself, and its
summaries, checks and exports stand in it. What only a person knows is told here:
that a copy of the shop's files was put back, or anything else that matters.)";

/// An open installation and its records.
struct Opened : KeptBook {
  using KeptBook::KeptBook;

  /// What is written into the log, whole or not at all.
  template <typename Work>
  void log(Work&& work) const {
    if (book->settings().mode == fiscal::Mode::kSending) return;
    documents->BeginTrans();
    try {
      work(*book);
      documents->CommitTrans();
    } catch (...) {
      documents->RollbackTrans();
      throw;
    }
  }
};

struct SpanOptions {
  std::string from;
  std::string to;
  std::string folder;
  std::string text;
  bool isRestored = false;

  fiscal::DaySpan span() const {
    const DayRange days = dayRange(from, to);
    return {days.from, days.to};
  }
};

std::string counted(std::uint64_t count, std::string_view what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

void tellUnsigned(std::uint64_t records, std::uint64_t events) {
  if (records + events == 0) return;
  fmt::print("NOT signed yet: {}, {}; `tavelor fiscal sign` signs them\n",
             counted(records, "record"), counted(events, "event"));
}

/// Signs what has no signature yet; what cannot be signed is told. Gives what was signed.
signing::SignedBatch signAll(const Opened& opened) {
  const Interruptible interruptible;
  signing::RecordSigner signer(
      *opened.book, signing::certificateOf(opened.book->settings(), opened.session.installation()));
  signing::SignedBatch all;
  while (!Interruptible::interrupted()) {
    const auto batch = signer.signNext();
    if (!batch) break;
    all.records += batch->records;
    all.events += batch->events;
    for (const std::string& each : batch->left) complain(fmt::format("{}\n", printable(each)));
    all.left.insert(all.left.end(), batch->left.begin(), batch->left.end());
  }
  return all;
}

void sign(const Common& common) {
  const Opened opened(common);
  const signing::SignedBatch all = signAll(opened);
  fmt::print("{}, {} signed\n", counted(all.records, "record"), counted(all.events, "event"));
  if (!all.left.empty()) {
    throw std::runtime_error(
        fmt::format("{} left without a signature; see `tavelor fiscal check`", all.left.size()));
  }
}

void check(const SpanOptions& options, const Common& common) {
  const fiscal::DaySpan span = options.span();
  const Opened opened(common);
  fiscal::CheckReport report = fiscal::check(*opened.book, span);
  signing::SignaturesReport signatures = signing::lookAtSignatures(*opened.book, span);
  std::move(signatures.flaws.begin(), signatures.flaws.end(), std::back_inserter(report.flaws));
  opened.log([&](fiscal::Book& book) { fiscal::logCheck(book, report); });
  fmt::print("{}, {}, {}; total {}\n", counted(report.records, "record"),
             counted(report.events, "event"), counted(report.tickets, "ticket"),
             report.total.text());
  for (const auto& [subject, count] : signatures.signers) {
    fmt::print("{} signed by {}\n", count, printable(subject));
  }
  tellUnsigned(signatures.unsignedRecords, signatures.unsignedEvents);
  if (report.isWhole()) {
    fmt::print("the chain is whole\n");
    return;
  }
  std::size_t told = 0;
  for (const fiscal::Flaw& flaw : report.flaws) {
    if (told++ == kMostTold) {
      fmt::print("and {} more\n", report.flaws.size() - kMostTold);
      break;
    }
    fmt::print("{}\n", printable(flaw.sentence));
  }
  throw std::runtime_error("the records are not as they were written");
}

void exportAll(const SpanOptions& options, const Common& common) {
  const fiscal::DaySpan span = options.span();
  const Opened opened(common);
  const fiscal::Settings& settings = opened.book->settings();
  if (settings.mode == fiscal::Mode::kNotSending && !settings.certificate.empty()) {
    // Who asks for the records gets them, whatever is wrong with the certificate.
    try {
      signAll(opened);
    } catch (const Error& error) {
      complain(fmt::format("{}\n", printable(error.description())));
    }
  }
  const fiscal::ExportReport report = fiscal::exportRecords(*opened.book, span, options.folder);
  opened.log([&](fiscal::Book& book) { fiscal::logExport(book, report, span); });
  for (const std::string& file : report.files) fmt::print("{}: written\n", printable(file));
  fmt::print("{}, {}, {}; quotas {}, totals {}\n", counted(report.registrations, "registration"),
             counted(report.cancellations, "cancellation"), counted(report.events, "event"),
             report.quota.text(), report.total.text());
  tellUnsigned(report.unsignedRecords, report.unsignedEvents);
}

void log(const SpanOptions& options, const Common& common) {
  constexpr std::size_t kLongest = 100;
  if (text::length(options.text) > kLongest) {
    throw UsageError(fmt::format("the text has more than {} characters", kLongest));
  }
  const Opened opened(common);
  if (opened.book->settings().mode == fiscal::Mode::kSending) {
    throw std::runtime_error("a shop that sends its records keeps no log");
  }
  opened.log([&](fiscal::Book& book) {
    book.log(options.isRestored ? fiscal::EventKind::kBackupRestored : fiscal::EventKind::kOther,
             {}, options.text);
  });
  fmt::print("event {} written\n", opened.book->end().events);
}

void addSpan(CLI::App& command, SpanOptions& options) {
  command.add_option("--from", options.from, "First day")->type_name("DAY");
  command.add_option("--to", options.to, "Last day")->type_name("DAY");
}

}  // namespace

void addFiscalCheck(CLI::App& fiscal, Common& common) {
  CLI::App* command = fiscal.add_subcommand("check", "Look whether the records are whole");
  auto options = std::make_shared<SpanOptions>();
  command->add_option("folder", common.folder, "Folder of the installation")->type_name("FOLDER");
  addSpan(*command, *options);
  addInstallationOptions(*command, common);
  command->footer(kCheckFooter);
  command->callback([options, &common] { check(*options, common); });
}

void addFiscalSign(CLI::App& fiscal, Common& common) {
  CLI::App* command =
      fiscal.add_subcommand("sign", "Sign the records of a shop that does not send");
  command->add_option("folder", common.folder, "Folder of the installation")->type_name("FOLDER");
  addInstallationOptions(*command, common);
  command->footer(kSignFooter);
  command->callback([&common] { sign(common); });
}

void addFiscalExport(CLI::App& fiscal, Common& common) {
  CLI::App* command = fiscal.add_subcommand("export", "Write the records as files");
  auto options = std::make_shared<SpanOptions>();
  command->add_option("folder", options->folder, "Folder to write to")
      ->required()
      ->type_name("FOLDER");
  addSpan(*command, *options);
  addInstallationOptions(*command, common);
  command->footer(kExportFooter);
  command->callback([options, &common] { exportAll(*options, common); });
}

void addFiscalLog(CLI::App& fiscal, Common& common) {
  CLI::App* command = fiscal.add_subcommand("log", "Write into the log of events");
  auto options = std::make_shared<SpanOptions>();
  command->add_option("text", options->text, "What is to be known")->type_name("TEXT");
  command->add_flag("--restored", options->isRestored, "A copy of the shop's files was put back");
  addInstallationOptions(*command, common);
  command->footer(kLogFooter);
  command->callback([options, &common] { log(*options, common); });
}

}  // namespace tavelor::tools
