// SPDX-License-Identifier: MIT
// The records that the law wants of invoices: what one adds to a sale, what their checking costs
// beside the hashing of their bytes, and a message of them beside its bytes.
#include "bench/records.hpp"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include <fmt/format.h>

#include "bench/driver.hpp"
#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/fiscal/book.hpp"
#include "tavelor/fiscal/breakdown.hpp"
#include "tavelor/fiscal/check.hpp"
#include "tavelor/fiscal/export.hpp"
#include "tavelor/fiscal/hash.hpp"
#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/recordset/row.hpp"
#include "tests/support/records.hpp"
#include "tests/support/sales.hpp"

namespace tavelor::bench {

flows::Sale shopSale(int turn, int lines, Date day) {
  return test::saleOfArticles(fmt::format("V{}-{}", lines, turn), lines, day);
}

namespace {

// ---------------------------------------------------------------------------------------------
// A sale

constexpr int kLines = 5;
constexpr std::size_t kSales = 200;

/// The only till of a shop.
class OnlyTill {
 public:
  OnlyTill(std::shared_ptr<Installation> installation, bool keepsRecords)
      : apartment_(std::move(installation)) {
    if (keepsRecords) {
      fiscal::writeSettings(apartment_.installation(), test::recordSettings());
    }
    flows::seedCatalogues();
    shop_.emplace();
    shop_->openTills({"01"});
  }

  double sell(std::size_t sales) {
    const Apartment::Scope here(apartment_);
    const Date day = apartment_.clock().today();
    for (std::size_t i = 0; i < sales; ++i) shop_->sell(shopSale(++turn_, kLines, day)).value();
    return static_cast<double>(sales);
  }

 private:
  Apartment apartment_;
  std::optional<flows::Shop> shop_;
  int turn_ = 0;
};

// ---------------------------------------------------------------------------------------------
// Many records

constexpr std::size_t kRecords = 100'000;
constexpr std::size_t kInTransaction = 1'000;

/// Of tickets of two rates; no ticket goes with them.
void addRecords(fiscal::Book& book, std::size_t records, Date day) {
  Dice dice(3);
  for (std::size_t i = 0; i < records;) {
    book.documents()->BeginTrans();
    do {
      const auto amount = [&] { return static_cast<double>(1 + dice.below(10'000)) / 100; };
      const std::vector<fiscal::TaxedAmount> sold{{amount(), 21, 0}, {amount(), 4, 0}};
      fiscal::Breakdown split = fiscal::breakdownOf(sold, fiscal::Operation::kTaxed);
      fiscal::Registration record;
      record.invoice.day = day;
      record.description = "Venta";
      record.details = std::move(split.details);
      record.quota = split.quota;
      record.total = split.total;
      book.add(std::move(record), {});
    } while (++i % kInTransaction != 0 && i < records);
    book.documents()->CommitTrans();
  }
}

/// As they are stored, of the first ones.
std::vector<std::string> recordTexts(const fiscal::Book& book, std::size_t most) {
  RecordsetPtr rows;
  ConnectionPtr connection = book.documents();
  DataSession().OpenRecordset(
      3, Statement("SELECT Registro FROM Fiscal_Registros ORDER BY Posicion"), rows, connection);
  std::vector<std::string> texts;
  for (const Row row : *rows) {
    if (texts.size() == most) break;
    texts.push_back(row.text("Registro"));
  }
  return texts;
}

/// The rows of the records, a page at a time as a check takes them, and each record hashed. No
/// check can do with less.
double readAndHash(driver::Database& documents, std::size_t records) {
  constexpr std::int64_t kPage = 1'000;
  constexpr std::size_t kText = 0;
  driver::Query page = documents.prepare(
      "SELECT Registro, Tipo, Serie, Numero, Serie_Numero, Fecha_Expedicion, Cuota, Total, "
      "Momento, "
      "Huella, Sello, Ticket, Posicion FROM Fiscal_Registros WHERE Cadena = ? AND Posicion > ? AND "
      "Posicion <= ? ORDER BY Posicion");
  fiscal::Hasher hash;
  std::size_t seen = 0;
  for (std::int64_t behind = 0; behind < static_cast<std::int64_t>(records); behind += kPage) {
    page.bind(1, std::int64_t{1}).bind(2, behind).bind(3, behind + kPage);
    for (const auto& row : page.fetch()) {
      hash(std::get<std::string>(row.at(kText)));
      ++seen;
    }
  }
  return static_cast<double>(seen);
}

void measureCheck(const fiscal::Book& book, const std::filesystem::path& file, std::size_t records,
                  Report& report, const Scale& scale) {
  const std::vector<std::string> texts = recordTexts(book, records);
  driver::Database beside(file);
  const Side ours = {[&] {
    const fiscal::CheckReport checked = fiscal::check(book);
    if (!checked.isWhole()) throw std::runtime_error(checked.flaws.front().sentence);
    return static_cast<double>(checked.records);
  }};
  const Scale few{scale.quick, std::min<std::size_t>(scale.rounds, 5)};
  report.add(compare({.work = "checking the chain (by hand: SHA-256 of the records, OpenSSL)",
                      .rows = records,
                      .target = 1.5,
                      .floor = {[&] {
                        fiscal::Hasher hash;
                        for (const std::string& text : texts) hash(text);
                        return static_cast<double>(texts.size());
                      }},
                      .ours = ours},
                     few));
  report.add(compare({.work = "the same (by hand: rows read by the engine's own calls, and hashed)",
                      .rows = records,
                      .floor = {[&] { return readAndHash(beside, records); }},
                      .ours = ours},
                     few));
}

void measureMessage(const fiscal::Book& book, const std::filesystem::path& folder, Report& report,
                    const Scale& scale) {
  const std::vector<std::string> texts =
      recordTexts(book, static_cast<std::size_t>(fiscal::kMostInMessage));
  const std::string whole = fiscal::messageOf(book.settings().taxpayer, texts);
  const auto write = [&](const std::string& bytes) {
    std::ofstream file(folder / "message.xml", std::ios::binary);
    file << bytes;
    return static_cast<double>(bytes.size());
  };
  report.add(
      compare({.work = "a message of records into a file (by hand: the same bytes from memory)",
               .rows = texts.size(),
               .target = 2,
               .floor = {[&] { return write(whole); }},
               .ours = {[&] { return write(fiscal::messageOf(book.settings().taxpayer, texts)); }}},
              scale));
}

}  // namespace

void compareRecordedSale(const std::string& where, std::shared_ptr<Installation> plain,
                         std::shared_ptr<Installation> recording, Report& report,
                         const Scale& scale) {
  OnlyTill without(std::move(plain), false);
  OnlyTill with(std::move(recording), true);
  const std::size_t sales = scale.of(kSales);
  report.add(compare({.work = where + "the shop's sale with its record (by hand: without)",
                      .rows = sales,
                      .target = 1.25,
                      .floor = {[&] { return without.sell(sales); }},
                      .ours = {[&] { return with.sell(sales); }},
                      .waits = true},
                     scale));
}

void measureRecords(Report& report, const Scale& scale) {
  const test::TemporaryFolder folder;
  compareRecordedSale("", Installation::create(folder.path() / "plain", {}),
                      Installation::create(folder.path() / "recording", {}), report, scale);
  Apartment apartment(Installation::create(folder.path() / "many", {}));
  fiscal::Book book(test::recordSettings(), DataSession().OpenConnection(3));
  const std::size_t records = scale.of(kRecords);
  addRecords(book, records, apartment.clock().today());
  measureCheck(book, apartment.installation().databaseFile(3), records, report, scale);
  measureMessage(book, folder.path(), report, scale);
}

}  // namespace tavelor::bench
