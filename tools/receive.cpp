// SPDX-License-Identifier: MIT
// tavelor receive: posts the deliveries of suppliers from a file.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include <fmt/format.h>

#include "tavelor/flows/counted.hpp"
#include "tavelor/flows/receiving.hpp"
#include "tavelor/services/installation.hpp"
#include "tools/command.hpp"
#include "tools/delivery_file.hpp"
#include "tools/file_options.hpp"
#include "tools/interrupt.hpp"
#include "tools/output.hpp"
#include "tools/progress.hpp"
#include "tools/refusals.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

using flows::counted;

constexpr const char* kFooter =
    R"(FILE is comma-separated values in UTF-8, plain or compressed by xz; its first row
names the columns. Columns that bear the name of a field need no --map. Fields:

  Proveedor Albaran Fecha Codigo Cantidad Precio    what every line says
  Descuento Almacen Lote Caduca                     what it may say

A delivery is what has the same Proveedor and Albaran; its lines follow each other.
Cantidad and Precio are those of the note: in purchase units, without tax, before
Descuento (percent). Days are 2026-12-31 or as the shop writes them, with a year of
four digits. Without Almacen the goods come into 001. An article that is kept by lots needs a Lote.

Each delivery is one transaction: the stock of article, warehouse and lot, the
movements, the last and average cost, the supplier's price, and the supplier's
account. One with a fault in any line is not received, and its faults are told.

A delivery that was received before, by its supplier and number, is passed over when
it is the same and refused when it is not: after an interruption, of whatever kind,
give the same command again. With --dry-run each delivery is tried and nothing stays
written. Exit code 1 when something was refused.

  tavelor receive deliveries.csv --dry-run
  tavelor receive note.csv --map Ref=Codigo Uds=Cantidad --set Proveedor=400 Fecha=2026-11-20)";

struct Counts {
  std::uint64_t received = 0;
  std::uint64_t lines = 0;  // of those
  std::uint64_t known = 0;
  std::uint64_t refused = 0;

  std::uint64_t total() const { return received + known + refused; }
};

/// A line cannot be read without them.
std::vector<FieldSource> sourcesOf(const FileOptions& from,
                                   const std::vector<std::string>& columns) {
  std::vector<FieldSource> sources = fieldSources(from, columns, DeliveryFile::kTable);
  for (const std::size_t needed : DeliveryFile::kNeeded) {
    if (sources[needed].given) continue;
    const std::string_view name = DeliveryFile::kTable.fields[needed].name;
    throw UsageError(fmt::format("say which column is {}: --map COLUMN={}; the file has {}", name,
                                 name, joinedNames(columns)));
  }
  return sources;
}

class Taking {
 public:
  Taking(DeliveryFile& file, Refusals& refusals, bool isDryRun)
      : file_(file), refusals_(refusals), isDryRun_(isDryRun) {}

  /// To the end of the file, or until somebody interrupts it.
  void run() {
    const Interruptible guard;
    Progress progress(stderr, file_.lines());
    std::uint64_t lines = 0;
    DeliveryFile::Entry entry;
    while (!Interruptible::interrupted() && file_.next(entry)) {
      take(entry);
      progress.at(lines += entry.lines);
    }
  }

  const Counts& counts() const { return counts_; }

 private:
  void take(DeliveryFile::Entry& entry) {
    using Outcome = flows::Receipt::Outcome;
    const flows::Delivery& delivery = entry.delivery;
    const std::string name = fmt::format("{} {}", delivery.supplier, delivery.note);
    if (entry.faults.empty() && entry.earlier != 0) {
      ++counts_.known;
      refusals_.add({{entry.line, name,
                      fmt::format("line {} has this delivery already", entry.earlier), true}});
      return;
    }
    // A delivery of which not all lines can be read is nothing that the shop could look at.
    flows::Receipt receipt;
    if (entry.faults.empty()) {
      receipt = isDryRun_ ? receiving_.rehearse(delivery) : receiving_.receive(delivery);
    }
    for (const flows::Receipt::Fault& fault : receipt.faults) {
      entry.faults.push_back({fault.origin, name, fault.reason});
    }
    refusals_.add(entry.faults);
    switch (receipt.outcome) {
      case Outcome::kReceived:
        ++counts_.received;
        counts_.lines += delivery.lines.size();
        break;
      case Outcome::kKnown:
        ++counts_.known;
        break;
      case Outcome::kRefused:
        ++counts_.refused;
        break;
    }
  }

  DeliveryFile& file_;
  Refusals& refusals_;
  bool isDryRun_;
  flows::Receiving receiving_;
  Counts counts_;
};

void receive(const FileOptions& from, const Common& common) {
  const std::vector<std::string> columns = CsvFile(from.file, separatorOf(from)).columns();
  std::vector<FieldSource> sources = sourcesOf(from, columns);
  const Session session(common);
  tellUnused(columns, sources);
  const std::shared_ptr<const Locale> numbers = numbersOf(from, session.installation());
  DeliveryFile file({from.file, separatorOf(from), std::move(sources), numbers.get()});
  Refusals refusals(from.report, from.file, session.installation());
  if (!file.homeless().empty()) {
    refusals.add(file.homeless());
    refusals.print();
    throw FileError("nothing was received");
  }
  Taking taking(file, refusals, from.isDryRun);
  const Counts& counts = taking.counts();
  const auto tell = [&] {  // what was received before an error stays
    refusals.print();
    fmt::print("{} of {}: {} received with {}, {} were there, {} refused{}\n", counts.total(),
               counted(file.deliveries(), "delivery", "deliveries"), counts.received,
               counted(counts.lines, "line", "lines"), counts.known, counts.refused,
               from.isDryRun ? "; nothing was written" : "");
    std::fflush(stdout);
  };
  workAndTell([&] { taking.run(); }, tell);
  if (counts.total() < file.deliveries()) {
    throw FileError("interrupted; the same command goes on with the rest");
  }
  if (file.deliveries() == 0) throw FileError("the file has no lines");
  if (counts.refused > 0) {
    throw FileError(counted(counts.refused, "delivery was refused", "deliveries were refused"));
  }
}

}  // namespace

void addReceive(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("receive", "Receive deliveries of suppliers from a file");
  auto options = std::make_shared<FileOptions>();
  addFileOptions(*command, *options);
  addInstallationOptions(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { receive(*options, common); });
}

}  // namespace tavelor::tools
