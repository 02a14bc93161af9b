// SPDX-License-Identifier: MIT
// A program that dies between the two commits of a flow, played with the databases themselves: one
// as the flow left it, the other as it was before.
#include <filesystem>
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/shop.hpp"
#include "tools/shop/reconciliation.hpp"
#include "tools/shop/seed.hpp"
#include "tools/shop/shop.hpp"

namespace tavelor::shop {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace fs = std::filesystem;

const Date kDay = Date::of(2026, 11, 20);

Sale saleOf(std::string reference, std::string till = "01") {
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

class DeathTest : public ::testing::Test {
 protected:
  DeathTest() {
    Installation::create(path(), test::fastSettings());
    live([] { seedCatalogues(); });
  }

  /// A program's life, from opening the databases to closing them.
  void live(const std::function<void()>& work) {
    Apartment apartment(Installation::open(path()));
    work();
  }

  /// A life that ends before the second of its commits.
  void dieBeforeCommitOf(const std::string& database, const std::function<void(Shop&)>& flow) {
    const fs::path file = fs::path(path()) / database;
    const fs::path before = folder_.path() / "before.db";
    fs::copy_file(file, before, fs::copy_options::overwrite_existing);
    live([&] {
      Shop shop;
      flow(shop);
    });
    ASSERT_FALSE(fs::exists(file.string() + "-wal")) << "the last program folds it in";
    fs::copy_file(before, file, fs::copy_options::overwrite_existing);
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
  test::TemporaryFolder folder_;
};

TEST_F(DeathTest, OfASaleIsMendedByTheSameSaleGivenAgain) {
  live([] { Shop().sell(saleOf("V1")); });
  dieBeforeCommitOf("main.db", [](Shop& shop) { shop.sell(saleOf("V2")); });
  live([&] {
    Shop shop;
    EXPECT_EQ(shop.sell(saleOf("V2")), std::nullopt) << "the ticket is there";
    EXPECT_EQ(shop.sell(saleOf("V3")), 3);
    shop.close("01", kDay);
    EXPECT_THAT(differences({saleOf("V1"), saleOf("V2"), saleOf("V3")}), IsEmpty());
  });
}

// Of a period without numbers nobody could tell that a ticket is ahead of the counter. A sale
// stores the counters before it writes; so does one that is refused, which leaves nothing else.
TEST_F(DeathTest, OfTheFirstSaleOfAPeriodIsMended) {
  live([] {
    Sale sale = saleOf("V0");
    sale.lines.back().code = std::string(60, 'X');
    EXPECT_NE(test::errorOf([&] { Shop().sell(sale); }), 0);
  });
  dieBeforeCommitOf("main.db", [](Shop& shop) { shop.sell(saleOf("V1")); });
  live([&] {
    Shop shop;
    EXPECT_THAT(shop.recover().sales, ElementsAre(1));
    shop.close("01", kDay);
    EXPECT_THAT(differences({saleOf("V1")}), IsEmpty());
  });
}

TEST_F(DeathTest, OfAClosingIsMendedByTheNextOfAnotherTill) {
  live([] {
    Shop shop;
    shop.sell(saleOf("V1", "01"));
    shop.sell(saleOf("V2", "02"));
  });
  dieBeforeCommitOf("documents.db", [](Shop& shop) { shop.close("01", kDay); });
  live([&] {
    Shop shop;
    EXPECT_EQ(shop.close("02", kDay)->number, 1);
    EXPECT_EQ(shop.close("01", kDay)->number, 2);
    EXPECT_THAT(differences({saleOf("V1", "01"), saleOf("V2", "02")}), IsEmpty());
  });
}

TEST_F(DeathTest, OfAClosingThatFinishedASaleLeavesTheSaleFinishedOnce) {
  live([] { Shop().recover(); });  // starts the counters
  dieBeforeCommitOf("main.db", [](Shop& shop) { shop.sell(saleOf("V1")); });
  dieBeforeCommitOf("documents.db", [](Shop& shop) { shop.close("01", kDay); });
  live([&] {
    Shop shop;
    const Recovered recovered = shop.recover();
    EXPECT_THAT(recovered.sales, IsEmpty());
    EXPECT_THAT(recovered.closings, ElementsAre(1));
    EXPECT_EQ(shop.close("01", kDay)->number, 1);
    EXPECT_THAT(differences({saleOf("V1")}), IsEmpty());
  });
}

}  // namespace
}  // namespace tavelor::shop
