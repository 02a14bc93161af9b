// SPDX-License-Identifier: MIT
// Stored balances after random sequences of entries, deletions and corrections, beside sums that
// are made without the class.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <random>

#include "tests/classes/customers/apuntes_conta.hpp"

namespace tavelor {
namespace {

constexpr int kNumbers = 12;

/// One customer's ledger as it should be, in whole cents.
class Book {
 public:
  struct Entry {
    int id;
    int day;
    int document;
    std::int64_t movement;
    std::int64_t error = 0;  ///< what its stored balance is off by
  };

  void insert(int id, int day, int document, std::int64_t movement) {
    entries_.push_back({id, day, document, movement});
    sort();
  }
  void erase(int document) {
    std::erase_if(entries_, [&](const Entry& e) { return e.document == document; });
  }
  bool has(int document) const { return find(document) != entries_.end(); }
  int dayOf(int document) const { return find(document)->day; }

  /// What a correction leaves wrong, and nothing else does:
  /// - the corrected entry counts its old movement, and those of its date with a higher Id;
  /// - entries behind it with a higher Id have moved by the new movement: the old one is too much;
  /// - entries behind it with a lower Id have not moved: the difference of both is missing.
  void correct(int document, std::int64_t movement) {
    const auto corrected = std::find_if(entries_.begin(), entries_.end(),
                                        [&](const Entry& e) { return e.document == document; });
    const std::int64_t old = corrected->movement;
    corrected->movement = movement;
    corrected->error = old;
    for (auto later = corrected + 1; later != entries_.end(); ++later) {
      if (later->day == corrected->day) corrected->error += later->movement;
      later->error += later->id > corrected->id ? old : old - movement;
    }
  }
  /// Balances were computed anew.
  void mend() {
    for (Entry& entry : entries_) entry.error = 0;
  }

  bool isRight() const {
    return std::all_of(entries_.begin(), entries_.end(),
                       [](const Entry& e) { return e.error == 0; });
  }
  /// Summed from the first entry for each one, and off by what is foretold; in cents.
  std::vector<std::int64_t> balances() const {
    std::vector<std::int64_t> found;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      std::int64_t sum = entries_[i].error;
      for (std::size_t j = 0; j <= i; ++j) sum += entries_[j].movement;
      found.push_back(sum);
    }
    return found;
  }

 private:
  std::vector<Entry>::const_iterator find(int document) const {
    return std::find_if(entries_.begin(), entries_.end(),
                        [&](const Entry& e) { return e.document == document; });
  }
  void sort() {
    std::sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) {
      return a.day != b.day ? a.day < b.day : a.id < b.id;
    });
  }

  std::vector<Entry> entries_;
};

class LedgerBalancesTest : public test::LedgerTest {
 protected:
  int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(dice_); }
  /// From -999.99 to 999.99; small ones often, so that sums happen to be 0.
  std::int64_t movement() { return below(3) == 0 ? below(5) - 2 : below(200'000) - 99'999; }
  static double euros(std::int64_t cents) { return static_cast<double>(cents) / 100; }

  std::vector<std::int64_t> stored() {
    std::vector<std::int64_t> cents;
    for (const double balance : balances()) cents.push_back(std::llround(balance * 100));
    return cents;
  }
  int nextId() {
    const std::string greatest = shop.text("SELECT Max(Id) FROM Clientes_Apuntes_Contables");
    return greatest == "Null" ? 1 : std::stoi(greatest) + 1;
  }
  void insertOne(Book& book) {
    const std::int64_t amount = movement();
    const int date = 1 + below(6);  // of few days, so that many entries have the same
    int document = below(kNumbers);
    if (book.has(document)) return;
    book.insert(nextId(), date, document, amount);
    if (amount < 0) {
      insert(day(date), euros(-amount), 0, document);
    } else {
      insert(day(date), 0, euros(amount), document);
    }
  }
  void deleteOne(Book& book) {
    const int document = below(kNumbers);
    book.erase(document);
    ledger.Eliminar(1, document);
  }
  void correctOne(Book& book) {
    const int document = below(kNumbers);
    if (!book.has(document)) return;
    const std::int64_t amount = movement();
    correct(day(book.dayOf(document)), 0, euros(amount), document);
    book.correct(document, amount);
  }
  void mend(Book& book) {
    ledger.IniciaRs({}, "seleccion", "00012");
    ledger.SetOrder(0, below(2) == 0 ? "" : " DESC", "seleccion");
    ledger.UpdateTotal();
    ledger.MoveFirst();
    ledger.Update();
    book.mend();
  }

 private:
  std::mt19937 dice_{20261121};
};

TEST_F(LedgerBalancesTest, EntriesAndDeletionsInAnyOrderLeaveEveryBalanceRight) {
  shop.apartment().trace().turn(false);
  for (int sequence = 0; sequence < 40; ++sequence) {
    ledger.DeleteAll("00012");
    Book book;
    for (int step = 0; step < 30; ++step) {
      below(4) == 0 ? deleteOne(book) : insertOne(book);
      ASSERT_EQ(stored(), book.balances()) << "sequence " << sequence << ", step " << step;
    }
  }
}

// A sequence goes wrong with a correction and only then, by what the book foretells to the cent;
// and UpdateTotal mends it, in either order of the view.
TEST_F(LedgerBalancesTest, ACorrectionLeavesWrongExactlyWhatIsForetoldAndUpdateTotalMendsIt) {
  shop.apartment().trace().turn(false);
  std::map<bool, int> sequences;
  for (int sequence = 0; sequence < 60; ++sequence) {
    ledger.DeleteAll("00012");
    Book book;
    for (int step = 0; step < 25; ++step) {
      switch (below(8)) {
        case 0:
          deleteOne(book);
          break;
        case 1:
          correctOne(book);
          break;
        case 2:
          if (below(3) == 0) mend(book);
          break;
        default:
          insertOne(book);
      }
      ASSERT_EQ(stored(), book.balances()) << "sequence " << sequence << ", step " << step;
    }
    ++sequences[book.isRight()];
    mend(book);
    ASSERT_EQ(stored(), book.balances()) << "sequence " << sequence;
  }
  EXPECT_GT(sequences[true], 0);
  EXPECT_GT(sequences[false], 0);
}

// The shortest sequences, by name.
TEST_F(LedgerBalancesTest, ACorrectedEntryIsRightOnlyWhereItWasZeroAndTheLastOfItsDate) {
  insert(day(5), 0, 0, 1);
  correct(day(5), 0, 12, 1);
  EXPECT_EQ(stored(), std::vector<std::int64_t>({1200})) << "was 0";
  correct(day(5), 0, 12, 1);
  EXPECT_EQ(stored(), std::vector<std::int64_t>({2400})) << "the same amount again";
}

TEST_F(LedgerBalancesTest, ACorrectionOfAnEntryOfZeroIsRightWhereNoLaterOneHasALowerId) {
  insert(day(5), 0, 0, 1);
  insert(day(6), 0, 1, 2);
  correct(day(5), 0, 12, 1);
  EXPECT_EQ(stored(), std::vector<std::int64_t>({1200, 1300}));
}

}  // namespace
}  // namespace tavelor
