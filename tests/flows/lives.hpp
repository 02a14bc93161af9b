// SPDX-License-Identifier: MIT
// A shop whose programs come and go, and whose files can be put back to what they were.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tavelor/flows/reconciliation.hpp"
#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/services/clock.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::flows {

inline const Date kDay = Date::of(2026, 11, 20);

/// What a shop has that sells at these tills, on the day after kDay.
inline void openShop(const std::vector<std::string>& tills = {"01", "02"}) {
  Apartment::current().clock().fix(Date(kDay.days() + 1));
  seedCatalogues();
  Shop().openTills(tills);
}

struct OpenedShop {
  OpenedShop() { openShop(); }
};

inline Sale saleOf(std::string reference, std::string till = "01") {
  Sale sale;
  sale.reference = std::move(reference);
  sale.till = std::move(till);
  sale.day = kDay;
  sale.time = "10:32";
  sale.payment = "1";
  sale.lines = {
      {.code = "PAN", .description = "Barra", .family = "PAN", .quantity = 2, .price = 1.21},
      {.code = "LECHE", .description = "Leche", .family = "LAC", .quantity = -1, .price = 1.04}};
  return sale;
}

/// All that is left of a ticket.
inline Return returnOf(double ticket) {
  Return what;
  what.ticket = ticket;
  what.till = "01";
  what.day = kDay;
  return what;
}

class LivesTest : public ::testing::Test {
 protected:
  LivesTest() {
    Installation::create(path(), test::fastSettings());
    live([] { openShop(); });
  }

  /// A program's life, from opening the databases to closing them.
  void live(const std::function<void()>& work) {
    Apartment apartment(Installation::open(path()));
    apartment.clock().fix(Date(kDay.days() + 1));
    work();
  }

  /// A life after which one of the databases is what it was before: as after a death between two
  /// commits, a lost write-ahead file, or a backup put back.
  void loseIn(const std::string& database, const std::function<void(Shop&)>& flow) {
    keep(database);
    live([&] {
      Shop shop;
      flow(shop);
    });
    putBack(database);
  }

  void keep(const std::string& database) { copy(file(database), kept(database)); }
  void putBack(const std::string& database) {
    ASSERT_FALSE(std::filesystem::exists(file(database).string() + "-wal"))
        << "the last program folds it in";
    copy(kept(database), file(database));
  }
  /// Puts back what was kept, and keeps what was there.
  void swap(const std::string& database) {
    const std::filesystem::path now = folder_.path() / "now.db";
    copy(file(database), now);
    putBack(database);
    copy(now, kept(database));
  }

  /// What differs between the shop and these sales.
  std::vector<std::string> differences(const std::vector<Sale>& sales) {
    Reconciliation reconciliation;
    for (const Sale& sale : sales) reconciliation.expect(sale);
    reconciliation.compare();
    std::vector<std::string> found;
    for (const auto& difference : reconciliation.differences()) {
      found.push_back(std::string(Reconciliation::kNames[difference.place]) + ": " +
                      difference.what);
    }
    return found;
  }

  std::string path() const { return (folder_.path() / "shop").string(); }

 private:
  std::filesystem::path file(const std::string& database) const {
    return std::filesystem::path(path()) / database;
  }
  std::filesystem::path kept(const std::string& database) const {
    return folder_.path() / database;
  }
  static void copy(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing);
  }

  test::TemporaryFolder folder_;
};

}  // namespace tavelor::flows
