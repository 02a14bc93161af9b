// SPDX-License-Identifier: MIT
// tavelor day: sells what a file tells, closes the tills, and proves that nothing is missing.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <set>

#include <fmt/format.h>

#include "tavelor/flows/counted.hpp"
#include "tavelor/flows/day_page.hpp"
#include "tavelor/flows/outage.hpp"
#include "tavelor/flows/papers.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/reconciliation.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/installation.hpp"
#include "tools/built_in_day.hpp"
#include "tools/command.hpp"
#include "tools/day_option.hpp"
#include "tools/interrupt.hpp"
#include "tools/output.hpp"
#include "tools/progress.hpp"
#include "tools/refusals.hpp"
#include "tools/sales_file.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

using flows::counted;

constexpr const char* kFooter =
    R"(Each sale becomes a ticket with its lines, takes its articles off the stock and
writes their movements; articles and customers that the shop does not know are made,
and what is sold on credit is owed in the customer's account. When a day
is over its tills are closed: the closing is stored, the tickets move to history,
slip and page are written. At the end all of it is compared with the file.

FILE is comma-separated values in UTF-8, plain or compressed by xz, with the columns
InvoiceNo, StockCode, Quantity, InvoiceDate and, where they are there, UnitPrice (tax
included), Description, CustomerID, Country, Family, Tax (percent, else 21), Payment,
Delivered, Till. A negative quantity is a return. A line without a price is sold at
the customer's own price, offer, tariff and discount. Payment is a method of the shop
by code or name, or the word credit. Credit that a customer does not have, by his
limit or because he is blocked, is refused unless --grant-credit says otherwise.
Without a file a small day is sold that comes with the program.

A sale that is there already, by its InvoiceNo, is not sold twice: after an
interruption, of whatever kind, give the same command again. Several programs may
sell at once, each at tills of its own (--only).

  tavelor day shop
  tavelor day shop --sales online-retail.csv.xz --tills 01,02,03 --to 2010-12-03
  tavelor day shop --sales online-retail.csv.xz --tills 01,02,03 --only 02)";

struct DayOptions {
  std::string sales;
  std::vector<std::string> tills = {"01", "02", "03"};
  std::vector<std::string> only;
  std::string from;
  std::string to;
  std::string report;
  bool grantCredit = false;
};

// ---------------------------------------------------------------------------------------------
// Where sales come from

/// Sales one after the other, and how far in the source they are.
class Source {
 public:
  virtual ~Source() = default;
  virtual bool next(flows::Sale& sale) = 0;
  virtual std::uint64_t done() const = 0;
  virtual std::uint64_t total() const = 0;
  virtual std::vector<Refusal> refused() { return {}; }
};

class FileSource final : public Source {
 public:
  FileSource(const std::string& path, const SalesSelection& selection)
      : total_(countRows(path)), file_(path, selection) {}

  bool next(flows::Sale& sale) override { return file_.next(sale); }
  std::uint64_t done() const override { return file_.linesRead(); }
  std::uint64_t total() const override { return total_; }
  std::vector<Refusal> refused() override { return file_.takeRefused(); }

 private:
  /// For the bar only: a fault of the file shows where it stands, when the sales before it are
  /// sold.
  static std::uint64_t countRows(const std::string& path) {
    std::uint64_t rows = 0;
    try {
      CsvFile file(path);
      CsvFile::Row row;
      while (file.next(row)) ++rows;
    } catch (const FileError&) {
    }
    return rows;
  }

  std::uint64_t total_;
  SalesFile file_;
};

class BuiltInSource final : public Source {
 public:
  explicit BuiltInSource(const std::vector<std::string>& tills) : sales_(builtInDay(tills)) {
    for (const flows::Sale& sale : sales_) total_ += sale.lines.size();
    // Where the computer has not come to that day yet, the day is sold as if it had.
    Clock& clock = Apartment::current().clock();
    const Date day = sales_.front().day;
    if (clock.today() < day) clock.fix(day);
  }

  bool next(flows::Sale& sale) override {
    if (at_ == sales_.size()) return false;
    sale = sales_[at_++];
    done_ += sale.lines.size();
    return true;
  }
  std::uint64_t done() const override { return done_; }
  std::uint64_t total() const override { return total_; }

 private:
  std::vector<flows::Sale> sales_;
  std::size_t at_ = 0;
  std::uint64_t done_ = 0;
  std::uint64_t total_ = 0;
};

// ---------------------------------------------------------------------------------------------
// The work

/// Sells at some tills, day after day.
class Replay {
 public:
  Replay(Source& source, Refusals& refusals, std::vector<std::string> tills, bool grantsCredit)
      : source_(source),
        refusals_(refusals),
        tills_(std::move(tills)),
        grantsCredit_(grantsCredit) {
    mended_ = shop_.recover();
    if (!mended_.undecided.empty()) throw flows::Disagreement(mended_.undecided);
    shop_.openTills(tills_);
    flows::writeMissingPapers(flows::PapersOf::kLatest);
  }

  /// To the end of the source, or until somebody interrupts it. What is not over then stays open.
  void run() {
    const Interruptible guard;
    Progress progress(stderr, source_.total());
    flows::Sale sale;
    while (!Interruptible::interrupted()) {
      const bool isMore = source_.next(sale);
      refusals_.add(source_.refused());
      if (!isMore) break;
      if (std::find(tills_.begin(), tills_.end(), sale.till) != tills_.end()) take(sale);
      progress.at(source_.done());
    }
    if (Interruptible::interrupted()) return;
    closeDays(std::nullopt);
    // A run that died may have closed days without their page.
    for (const double day : days_) flows::writeMissingPage(Date(day));
  }

  const flows::Recovered& mended() const { return mended_; }
  std::size_t sold() const { return sold_; }
  std::size_t known() const { return known_; }
  std::uint64_t soldLines() const { return soldLines_; }
  const std::vector<flows::Closing>& closings() const { return closings_; }
  flows::Reconciliation& reconciliation() { return reconciliation_; }
  /// Writes the page of all days with a sale, that of a single one unless it was just closed; ""
  /// without a sale.
  std::string page() const {
    if (!first_) return {};
    const bool isThere = first_ == last_ && !lastPage_.empty();
    return isThere ? lastPage_ : flows::writeDayPage(*first_, *last_);
  }

 private:
  void take(flows::Sale& sale) {
    closeDays(sale.day);
    for (const flows::Unpriced& each : shop_.price(sale)) {
      refusals_.add({{each.line.origin, sale.reference, each.reason}});
    }
    if (!sell(sale)) return;
    reconciliation_.expect(sale);
    open_.emplace(sale.day.days(), sale.till);
    days_.insert(sale.day.days());
    first_ = std::min(first_.value_or(sale.day), sale.day);
    last_ = std::max(last_.value_or(sale.day), sale.day);
  }

  /// What can be sold of it; false where nothing can. Lines with a fault leave the sale.
  bool sell(flows::Sale& sale) {
    sale.isCreditGranted = grantsCredit_;
    while (!sale.lines.empty()) {
      try {
        if (shop_.sell(sale)) {
          ++sold_;
          soldLines_ += sale.lines.size();
        } else {
          ++known_;
        }
        return true;
      } catch (const flows::RefusedSale& refused) {
        dropRefused(sale, refused.faults());
      }
    }
    return false;
  }

  /// A fault of the sale as such refuses each of its lines.
  void dropRefused(flows::Sale& sale, const std::vector<flows::SaleFault>& faults) {
    std::set<std::size_t> places;
    for (const flows::SaleFault& fault : faults) {
      if (fault.line > 0) {
        refusals_.add({{fault.origin, sale.reference, fault.reason}});
        places.insert(fault.line);
        continue;
      }
      for (const flows::SaleLine& line : sale.lines) {
        refusals_.add({{line.origin, sale.reference, fault.reason}});
      }
      sale.lines.clear();
      return;
    }
    for (auto place = places.rbegin(); place != places.rend(); ++place) {
      sale.lines.erase(sale.lines.begin() + static_cast<std::ptrdiff_t>(*place) - 1);
    }
  }

  /// Closes all days with sales but one, and writes the page of each.
  void closeDays(std::optional<Date> butOne) {
    std::set<double> closed;
    for (auto entry = open_.begin(); entry != open_.end();) {
      const auto& [day, till] = *entry;
      if (butOne && butOne->days() == day) {
        ++entry;
        continue;
      }
      if (const std::optional<flows::Closing> closing = shop_.close(till, Date(day))) {
        closings_.push_back(*closing);
        closed.insert(day);
      }
      entry = open_.erase(entry);
    }
    for (const double day : closed) lastPage_ = flows::writeDayPage(Date(day), Date(day));
  }

  flows::Shop shop_;
  Source& source_;
  Refusals& refusals_;
  std::vector<std::string> tills_;
  bool grantsCredit_;
  flows::Recovered mended_;
  flows::Reconciliation reconciliation_;
  std::set<std::pair<double, std::string>> open_;  // days and tills with sales, not closed
  std::set<double> days_;                          // with sales
  std::vector<flows::Closing> closings_;
  std::string lastPage_;  // of the day closed last
  std::size_t sold_ = 0;
  std::size_t known_ = 0;
  std::uint64_t soldLines_ = 0;
  std::optional<Date> first_;
  std::optional<Date> last_;
};

// ---------------------------------------------------------------------------------------------
// The account

/// Grams only where there are any.
std::string unitsText(double units, const Locale& locale) {
  const double grams = roundHalfAway(units, 3);
  return format(grams, grams == std::trunc(grams) ? "#,##0" : "#,##0.000", locale);
}

/// On standard error, as it is while it lasts that somebody wants to know.
void tellOutage(const flows::Outage& outage) {
  if (outage.isOver) {
    complain(fmt::format("going on after {:.1f} s\n",
                         std::chrono::duration<double>(outage.lasted).count()));
  } else {
    complain(fmt::format("{} Trying again for up to a minute.\n", printable(outage.reason)));
  }
}

void tellMended(const flows::Recovered& mended) {
  if (!mended.sales.empty()) {
    fmt::print("mended: stock moved for {} of an earlier run\n",
               counted(mended.sales.size(), "ticket", "tickets"));
  }
  if (!mended.closings.empty()) {
    fmt::print("mended: {} of an earlier run taken back\n",
               counted(mended.closings.size(), "closing", "closings"));
  }
  if (!mended.rewritten.empty()) {
    fmt::print("mended: {} written again from the tickets in history\n",
               counted(mended.rewritten.size(), "closing", "closings"));
  }
}

void tellReconciliation(flows::Reconciliation& reconciliation, const Locale& locale) {
  using flows::Reconciliation;
  const auto whole = [&](std::int64_t count) { return format(count, "#,##0", locale); };
  reconciliation.compare();
  fmt::print("\n{:<12} {:>9} {:>9} {:>12} {:>15}\n", "", "tickets", "lines", "units", "euros");
  for (std::size_t at = 0; at < Reconciliation::kPlaces; ++at) {
    const auto place = static_cast<Reconciliation::Place>(at);
    const flows::Tally& figures = reconciliation.total(place);
    const bool isAccounts = place == Reconciliation::kAccounts;
    // A shop that sells nothing on credit has nothing to compare.
    if (isAccounts && figures.owed == 0 && reconciliation.total(Reconciliation::kMeant).owed == 0) {
      continue;
    }
    const bool countsTickets = place < Reconciliation::kClosings;
    const bool countsLines = place != Reconciliation::kClosings && !isAccounts;
    fmt::print("{:<12} {:>9} {:>9} {:>12} {:>15}\n", Reconciliation::kNames[at],
               countsTickets ? whole(figures.tickets) : "", countsLines ? whole(figures.lines) : "",
               countsLines ? unitsText(figures.units, locale) : "",
               format(static_cast<double>(isAccounts ? figures.owed : figures.cents) / 100,
                      "#,##0.00", locale));
  }
  constexpr std::size_t kShown = 20;
  const auto& differences = reconciliation.differences();
  if (reconciliation.tillDays() == 0) {
    fmt::print("nothing to reconcile: there was no sale\n");
    return;
  }
  if (differences.empty()) {
    fmt::print("reconciled: {}, to the unit and to the cent\n",
               counted(reconciliation.tillDays(), "till's day", "tills' days"));
    return;
  }
  std::fflush(stdout);
  for (std::size_t i = 0; i < std::min(kShown, differences.size()); ++i) {
    const Reconciliation::Difference& difference = differences[i];
    const std::string where = difference.till.empty()
                                  ? ""
                                  : fmt::format("till {}, {}, ", printable(difference.till),
                                                flows::isoDay(difference.day));
    complain(fmt::format("{}{}: {}\n", where, Reconciliation::kNames[difference.place],
                         difference.what));
  }
  throw FileError(fmt::format("{} between the sales and the shop",
                              counted(differences.size(), "difference", "differences")));
}

void tellClosings(const std::vector<flows::Closing>& closings) {
  if (closings.empty()) return;
  fmt::print("\n");
  for (const std::string& line : flows::slipText(closings.back().number))
    fmt::print("  {}\n", line);
  fmt::print("slips: {} to {}\n", flows::slipPath(closings.front().number),
             flows::slipPath(closings.back().number));
}

void requireTills(const DayOptions& options) {
  constexpr std::size_t kTillWidth = 10;  // what the catalogue of tills holds
  for (const std::string& till : options.tills) {
    if (till.empty()) throw UsageError("--tills names one without a name");
    if (text::length(till) > kTillWidth) {
      throw UsageError(fmt::format("--tills names one with more than {} characters: {}", kTillWidth,
                                   printable(till)));
    }
  }
  for (const std::string& till : options.only) {
    if (std::find(options.tills.begin(), options.tills.end(), till) == options.tills.end()) {
      throw UsageError(fmt::format("--only names a till that --tills does not: {}", till));
    }
  }
}

std::unique_ptr<Source> sourceOf(const DayOptions& options) {
  const auto [from, to] = dayRange(options.from, options.to);
  if (options.sales.empty()) {
    if (from || to) throw UsageError("--from and --to choose days of a file: name it with --sales");
    return std::make_unique<BuiltInSource>(options.tills);
  }
  return std::make_unique<FileSource>(
      options.sales,
      SalesSelection{.tills = options.tills, .from = from, .to = to, .payments = {}});
}

void replay(const DayOptions& options, const Common& common) {
  const Session session(common);
  requireTills(options);
  const std::vector<std::string>& own = options.only.empty() ? options.tills : options.only;
  const std::unique_ptr<Source> source = sourceOf(options);
  Refusals refusals(options.report, options.sales, session.installation());

  const auto began = std::chrono::steady_clock::now();
  const flows::OutageListener listener(&tellOutage);
  Replay replay(*source, refusals, own, options.grantCredit);
  tellMended(replay.mended());
  std::fflush(stdout);
  std::string fault;
  try {
    replay.run();
  } catch (const FileError& error) {
    fault = error.what();  // told at the end: what was sold before it is a good account
  }
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();

  refusals.print();
  fmt::print("{} sold with {} in {:.1f} s, {:.0f} lines/s; {} were there; {} closed; {} refused\n",
             counted(replay.sold(), "sale", "sales"), counted(replay.soldLines(), "line", "lines"),
             seconds, static_cast<double>(replay.soldLines()) / std::max(seconds, 1e-6),
             replay.known(), counted(replay.closings().size(), "till", "tills"),
             counted(refusals.count(), "line", "lines"));
  if (Interruptible::interrupted()) {
    throw FileError("interrupted; the same command goes on with the rest");
  }
  if (!fault.empty()) throw FileError(fault + "; what was complete before that is sold");
  tellClosings(replay.closings());
  if (const std::string page = replay.page(); !page.empty()) fmt::print("page:  {}\n", page);
  tellReconciliation(replay.reconciliation(), session.locale());
}

}  // namespace

void addDay(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("day", "Sell a day, or a file of sales, and close it");
  auto options = std::make_shared<DayOptions>();
  command->add_option("folder", common.folder, "Folder of the installation")->type_name("FOLDER");
  command->add_option("--sales", options->sales, "The file; else the day of the program")
      ->type_name("FILE");
  command->add_option("--tills", options->tills, "The shop's tills; a sale's number picks its own")
      ->delimiter(',')
      ->type_name("TILL,...");
  command->add_option("--only", options->only, "Those that this program sells at; else all")
      ->delimiter(',')
      ->type_name("TILL,...");
  command->add_option("--from", options->from, "First day of the file")->type_name("DAY");
  command->add_option("--to", options->to, "Last day")->type_name("DAY");
  command->add_flag("--grant-credit", options->grantCredit,
                    "Sell on credit beyond the limit, to blocked customers too");
  command->add_option("--report", options->report, "Write all refused lines to this file")
      ->type_name("FILE");
  addInstallationOptions(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { replay(*options, common); });
}

}  // namespace tavelor::tools
