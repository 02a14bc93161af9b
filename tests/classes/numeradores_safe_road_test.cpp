// SPDX-License-Identifier: MIT
// Numbers taken by many processes at once, some of which are killed: each number serves exactly
// once.
#include <array>
#include <cstdlib>
#include <optional>
#include <set>

#include <unistd.h>

#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/services/clock.hpp"
#include "tests/classes/numeradores.hpp"
#include "tests/services/faults.hpp"

namespace tavelor {
namespace {

constexpr int kTills = 8;

/// Numbers that each till takes: a hundred, or as many as TAVELOR_NUMBERS_EACH says.
int numbersEach() {
  const char* const wanted = std::getenv("TAVELOR_NUMBERS_EACH");
  return wanted != nullptr ? std::atoi(wanted) : 100;
}

/// What a process tells of a number, after the commit. Small enough to arrive whole.
struct Receipt {
  pid_t process = 0;
  std::int64_t number = 0;
};

/// Where a process kills itself while it takes a number.
enum class Death { kBeforeWriting, kBeforeCommit, kAfterCommit, kNowhere };
constexpr std::array kDeaths = {Death::kBeforeWriting, Death::kBeforeCommit, Death::kAfterCommit};

[[noreturn]] void die() {
  ::kill(::getpid(), SIGKILL);
  std::abort();
}

/// Several processes over one installation. The parent does not hold it open while it forks them.
class SafeRoadTest : public testing::Test {
 protected:
  SafeRoadTest() {
    Settings settings = test::fastSettings();
    settings.busyTimeoutMs = 120'000;  // eight processes share what processors there are
    const auto shop = Installation::create(folder_.path() / "shop", settings);
    shop->addToSchema(1, "CREATE TABLE Ventas (Numero DOUBLE, Caja LONG)");
    Apartment apartment(shop);
    apartment.clock().fix(Date::of(2026, 11, 21));
    clsNumeradores().CrearPeriodoActual();
    if (::pipe(pipe_.data()) != 0) raise(errors::kUnspecified, "test", "no pipe");
  }
  ~SafeRoadTest() override { ::close(pipe_[0]); }

  /// Eight tills, each of which makes its documents. A till that is to die does so in three places,
  /// and is begun again until it is done, whoever kills it.
  void startTills(bool dying) {
    for (int till = 0; till < kTills; ++till) {
      tills_.push_back(std::make_unique<test::Child>([=, this] {
        for (std::size_t life = 0;; ++life) {
          const Death death = dying && life < kDeaths.size() ? kDeaths[life] : Death::kNowhere;
          if (test::Child([=, this] { sell(till, death); }).wait()) return;
        }
      }));
    }
    ::close(pipe_[1]);  // so that the pipe ends with the last till
  }

  /// Nothing when all tills are done.
  std::optional<Receipt> nextReceipt() const {
    Receipt receipt;
    if (::read(pipe_[0], &receipt, sizeof receipt) != sizeof receipt) return {};
    return receipt;
  }

  /// The documents bear the numbers from the first to the counter's, each one once, and every
  /// receipt has its document.
  void expectEachNumberOnce(const std::set<std::int64_t>& receipts) {
    for (const auto& till : tills_) EXPECT_TRUE(till->wait());
    Apartment apartment(Installation::open(folder_.path() / "shop"));
    const RecordsetPtr sold = query("SELECT Numero FROM Ventas ORDER BY Numero");
    ASSERT_EQ(sold->RecordCount(), kTills * numbersEach());
    std::int64_t expected = kSeed;
    for (; !sold->Eof(); sold->MoveNext()) ASSERT_EQ(wholeOf(*sold), ++expected);
    EXPECT_EQ(wholeOf(*query("SELECT Factura_a FROM Numeradores")), expected);
    EXPECT_EQ(wholeOf(*query("SELECT Factura_b FROM Numeradores")), kSeed * 10) << "never used";
    for (const std::int64_t number : receipts) {
      EXPECT_GT(number, kSeed);
      EXPECT_LE(number, expected);
    }
  }

 private:
  static constexpr std::int64_t kSeed = 260000;

  /// Makes what is missing of the till's documents.
  void sell(int till, Death death) const {
    Apartment apartment(Installation::open(folder_.path() / "shop"));
    auto made = wholeOf(*query("SELECT Count(*) FROM Ventas WHERE Caja = " + std::to_string(till)));
    const std::int64_t fatal = made + (numbersEach() - made) / 4;
    for (; made < numbersEach(); ++made) {
      sellOne(till, made == fatal ? death : Death::kNowhere);
    }
  }

  void sellOne(int till, Death death) const {
    const clsNumeradores counters;
    const ConnectionPtr connection = DataSession().OpenConnection(1);
    connection->BeginTrans();
    test::Triple number;
    counters.GetNewNum("Facturas", number.a, number.b, number.c, connection);
    if (death == Death::kBeforeWriting) die();
    const auto taken = static_cast<std::int64_t>(number.a);
    Statement document("INSERT INTO Ventas (Numero, Caja) VALUES (");
    document << spliced(std::to_string(taken)) << ", " << spliced(std::to_string(till)) << ")";
    connection->Execute(document);
    counters.SetNewNum("Facturas", number.a, number.b - 1, number.c - 1, connection);
    if (death == Death::kBeforeCommit) die();
    connection->CommitTrans();
    if (death == Death::kAfterCommit) die();
    const Receipt receipt{::getpid(), taken};
    if (::write(pipe_[1], &receipt, sizeof receipt) != sizeof receipt) ::_exit(1);
  }

  static RecordsetPtr query(const std::string& statement) {
    RecordsetPtr rows;
    ConnectionPtr connection;
    DataSession().OpenRecordset(1, Statement::trusted(statement), rows, connection);
    return rows;
  }
  static std::int64_t wholeOf(Recordset& rows) {
    return static_cast<std::int64_t>(rows.Field(0).Value().toDouble(Apartment::current().locale()));
  }

  test::TemporaryFolder folder_;
  std::array<int, 2> pipe_{};
  std::vector<std::unique_ptr<test::Child>> tills_;
};

TEST_F(SafeRoadTest, EightTillsGetEachNumberOnce) {
  startTills(false);
  std::set<std::int64_t> receipts;
  while (const auto receipt = nextReceipt()) {
    EXPECT_TRUE(receipts.insert(receipt->number).second) << receipt->number << " twice";
  }
  EXPECT_EQ(receipts.size(), static_cast<std::size_t>(kTills * numbersEach()));
  expectEachNumberOnce(receipts);
}

TEST_F(SafeRoadTest, TillsThatAreKilledLoseNoNumberAndGiveNoneTwice) {
  constexpr int kReceiptsAKill = 25;
  startTills(true);
  std::set<std::int64_t> receipts;
  int kills = 0;
  while (const auto receipt = nextReceipt()) {
    EXPECT_TRUE(receipts.insert(receipt->number).second) << receipt->number << " twice";
    if (receipts.size() % kReceiptsAKill == 0 && ::kill(receipt->process, SIGKILL) == 0) ++kills;
  }
  EXPECT_GT(kills, 0);
  // Beside those that killed themselves.
  RecordProperty("TillsKilled", kills);
  RecordProperty("Receipts", static_cast<int>(receipts.size()));
  expectEachNumberOnce(receipts);
}

}  // namespace
}  // namespace tavelor
