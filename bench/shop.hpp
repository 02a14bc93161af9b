// SPDX-License-Identifier: MIT
// The installation that is measured, and the copy of its main database that the floor works on.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "bench/driver.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::bench {

/// Numbers that are the same in each run.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : state_(seed) {}
  std::uint64_t next();
  /// Below `limit`.
  std::uint64_t below(std::uint64_t limit) { return next() % limit; }
  /// 5 to 30 letters, digits and blanks; one text in twenty has letters beyond ASCII.
  std::string text();

 private:
  std::uint64_t state_;
};

/// A folder with an installation and `floor.db` beside it. Tables are made and filled first, then
/// share() copies them to the floor.
class BenchShop {
 public:
  explicit BenchShop(bool synchronous = false);

  Installation& installation() { return *installation_; }
  std::filesystem::path folder() const { return folder_.path(); }

  /// DDL of the dialect.
  void addTables(std::string_view ddl) { installation_->addToSchema(1, ddl); }
  /// The engine's own road into the main database, to fill it quickly.
  driver::Database& filler() { return *filler_; }
  /// After this the floor has all that the main database has, and both lie whole in their files.
  void share();
  driver::Database& floor() { return *floor_; }

  /// Opens a statement in the main database.
  RecordsetPtr open(const std::string& statement);
  /// Raises where a sum, the column s of a statement, is not the same on both sides: each work must
  /// leave what the other does.
  void mustAgree(std::span<const char* const> sums);

 private:
  test::TemporaryFolder folder_;
  bool synchronous_;
  std::shared_ptr<Installation> installation_;
  Apartment apartment_;
  std::unique_ptr<driver::Database> filler_;
  std::unique_ptr<driver::Database> floor_;
};

/// `Anchas`: 45 columns, 20 of them texts, 10 doubles, 8 whole numbers, 3 dates, 4 flags; Id is the
/// key. One cell in ten of every second column is null.
void addWideTable(BenchShop& shop, std::size_t rows);
/// `Largas`: 12 columns for the measurements up to a million rows.
void addLongTable(BenchShop& shop, std::size_t rows);

}  // namespace tavelor::bench
