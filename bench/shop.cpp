// SPDX-License-Identifier: MIT
// Makes and fills the tables that are measured.
#include "bench/shop.hpp"

#include <array>
#include <cmath>
#include <stdexcept>

#include <fmt/format.h>

#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::bench {

namespace {

constexpr double kFirstDay = 43831;  // 2020-01-01
constexpr std::size_t kFamilies = 100;

Settings settingsOf(bool synchronous) {
  Settings settings;
  settings.synchronous = synchronous;
  return settings;
}

struct ColumnRange {
  const char* prefix;
  const char* type;
  int count;
};
constexpr std::array kWideColumns{
    ColumnRange{"Texto", "TEXT(60)", 20}, ColumnRange{"Doble", "DOUBLE", 10},
    ColumnRange{"Entero", "LONG", 7}, ColumnRange{"Fecha", "DATETIME", 3},
    ColumnRange{"Marca", "BIT", 4}};
constexpr std::array kLongColumns{
    ColumnRange{"Texto", "TEXT(60)", 4}, ColumnRange{"Doble", "DOUBLE", 3},
    ColumnRange{"Entero", "LONG", 2}, ColumnRange{"Fecha", "DATETIME", 1},
    ColumnRange{"Marca", "BIT", 1}};

/// Texto1 is a code whose beginning all rows share, Texto2 one of a hundred families; the other
/// texts are anything. Texto1 to 3 and Doble1 and 2 are never null, as the works need them.
void bindCell(driver::Query& insert, int index, const ColumnRange& range, int number, Dice& dice,
              std::string& room) {
  const bool mayBeNull = number > 3 && number % 2 == 0;
  if (mayBeNull && dice.below(10) == 0) {
    insert.bindNull(index);
    return;
  }
  switch (range.prefix[0]) {
    case 'T':
      if (number == 1) {
        room = fmt::format("ARTICULO-{:08}", dice.below(100'000'000));
      } else if (number == 2) {
        room = fmt::format("FAMILIA {:02}", dice.below(kFamilies));
      } else {
        room = dice.text();
      }
      insert.bind(index, std::string_view(room));
      break;
    case 'D':
      insert.bind(index, static_cast<double>(dice.below(100'000'000)) / 100.0);
      break;
    case 'E':
      insert.bind(index, static_cast<std::int64_t>(dice.below(1'000'000)));
      break;
    case 'F':
      insert.bind(index, kFirstDay + static_cast<double>(dice.below(2000)));
      break;
    default:
      insert.bind(index, -static_cast<std::int64_t>(dice.below(2)));
  }
}

template <std::size_t Ranges>
void addTable(BenchShop& shop, const std::string& name, std::size_t rows,
              const std::array<ColumnRange, Ranges>& ranges) {
  std::string columns = "Id LONG NOT NULL";
  std::string insertText = "INSERT INTO " + name + " VALUES (?";
  for (const ColumnRange& range : ranges) {
    for (int i = 1; i <= range.count; ++i) {
      columns += fmt::format(", {}{} {}", range.prefix, i, range.type);
      insertText += ",?";
    }
  }
  shop.addTables(
      fmt::format("CREATE TABLE {0} ({1}, CONSTRAINT PK_{0} PRIMARY KEY (Id));", name, columns));
  Dice dice(20'260'101);
  std::vector<std::string> texts(64);
  shop.filler().execute("BEGIN IMMEDIATE");
  driver::Query insert = shop.filler().prepare(insertText + ")");
  for (std::size_t row = 1; row <= rows; ++row) {
    int index = 1;
    insert.bind(index++, static_cast<std::int64_t>(row));
    for (const ColumnRange& range : ranges) {
      for (int i = 1; i <= range.count; ++i, ++index) {
        bindCell(insert, index, range, i, dice, texts[static_cast<std::size_t>(index)]);
      }
    }
    insert.run();
  }
  shop.filler().execute("COMMIT");
}

}  // namespace

std::uint64_t Dice::next() {
  std::uint64_t z = (state_ += 0x9E3779B97F4A7C15U);
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
  return z ^ (z >> 31);
}

std::string Dice::text() {
  static constexpr std::string_view kLetters =
      "abcdefghijklmnopqrstuvwxyz ABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789";
  static constexpr std::array<std::string_view, 4> kBeyond{"ñ", "á", "Ó", "ü"};
  std::string made(5 + below(26), ' ');
  for (char& c : made) c = kLetters[below(kLetters.size())];
  if (below(20) == 0) made.replace(2, 1, kBeyond[below(kBeyond.size())]);
  return made;
}

BenchShop::BenchShop(bool synchronous)
    : synchronous_(synchronous),
      installation_(Installation::create(folder_.path() / "shop", settingsOf(synchronous))),
      apartment_(installation_),
      filler_(std::make_unique<driver::Database>(installation_->databaseFile(1))) {}

void BenchShop::share() {
  filler_->execute("PRAGMA wal_checkpoint(TRUNCATE)");
  filler_.reset();
  const auto copy = folder() / "floor.db";
  std::filesystem::copy_file(installation_->databaseFile(1), copy);
  floor_ = std::make_unique<driver::Database>(copy, synchronous_);
}

RecordsetPtr BenchShop::open(const std::string& statement) {
  RecordsetPtr rows;
  ConnectionPtr connection;
  DataSession().OpenRecordset(1, Statement::trusted(statement), rows, connection);
  return rows;
}

void BenchShop::mustAgree(std::span<const char* const> sums) {
  for (const char* statement : sums) {
    const double byHand = floor().prepare(statement).firstNumber();
    const double ours = open(statement)->Field("s").Value().toDouble(*installation().locale());
    if (std::abs(byHand - ours) > 1e-6 * std::abs(byHand)) {
      throw std::runtime_error(fmt::format("{}: {} by hand, {} here", statement, byHand, ours));
    }
  }
}

void addWideTable(BenchShop& shop, std::size_t rows) {
  addTable(shop, "Anchas", rows, kWideColumns);
}

void addLongTable(BenchShop& shop, std::size_t rows) {
  addTable(shop, "Largas", rows, kLongColumns);
}

}  // namespace tavelor::bench
