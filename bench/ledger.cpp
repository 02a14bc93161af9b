// SPDX-License-Identifier: MIT
// An entry dated a year back in the ledger of a customer of many entries, and its balances computed
// anew, beside prepared statements.
#include <cmath>
#include <string>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/customers/clientes_apuntes_conta.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::bench {

namespace {

constexpr std::size_t kEntries = 100'000;
constexpr const char* kCustomer = "00012";
constexpr double kToday = 46'347;
constexpr double kYear = 365;
constexpr double kYearsKept = 2;
constexpr const char* kBalances = "SELECT Sum(Saldo) AS s FROM Clientes_Apuntes_Contables";

/// Entries of two years in the order in which they came, and as many of other customers.
void fill(BenchShop& shop, std::size_t entries) {
  driver::Database& filler = shop.filler();
  filler.execute("BEGIN");
  driver::Query insert = filler.prepare(
      "INSERT INTO Clientes_Apuntes_Contables (Id, Serie, Codigo, Fecha, Concepto, Debe_Haber, "
      "Debe, Haber, Saldo, Estado, Documento_E) VALUES (?, 'A', ?, ?, 'Factura', 'H', 0, ?, ?, 1, "
      "?1)");
  Dice dice{29};
  double balance = 0;
  for (std::size_t i = 0; i < entries; ++i) {
    const double amount = static_cast<double>(dice.below(100'000)) / 100;
    balance += amount;
    const double day =
        std::floor(kToday - kYearsKept * kYear +
                   static_cast<double>(i) * kYearsKept * kYear / static_cast<double>(entries));
    const std::string other = fmt::format("{:05}", 100 + i % 1000);
    for (const std::string_view customer : {std::string_view(kCustomer), std::string_view(other)}) {
      insert.bind(1, static_cast<std::int64_t>(customer == kCustomer ? 2 * i + 1 : 2 * i + 2));
      insert.bind(2, customer).bind(3, day).bind(4, amount).bind(5, balance).run();
    }
  }
  filler.execute("COMMIT");
}

class LedgerByHand {
 public:
  explicit LedgerByHand(driver::Database& d)
      : begin_(d.prepare("BEGIN IMMEDIATE")),
        commit_(d.prepare("COMMIT")),
        greatest_(d.prepare("SELECT MAX(Id) FROM Clientes_Apuntes_Contables")),
        sums_(d.prepare("SELECT Sum(Haber) - Sum(Debe) FROM Clientes_Apuntes_Contables WHERE Fecha "
                        "<= ? AND Codigo = ?")),
        entry_(
            d.prepare("INSERT INTO Clientes_Apuntes_Contables (Id, Serie, Codigo, Fecha, Concepto, "
                      "Debe_Haber, Debe, Haber, Saldo, Estado, Documento_E) VALUES "
                      "(?, 'A', ?, ?, 'Factura', 'H', 0, ?, ?, 1, 0)")),
        later_(d.prepare("UPDATE Clientes_Apuntes_Contables SET Saldo = Saldo + ? WHERE Fecha > ? "
                         "AND Codigo = ?")),
        all_(d.prepare(kBalances)) {}

  /// `reads`: the greatest key and the balance before it are asked for, as the class does; else the
  /// caller is taken to know them.
  double insert(double date, double amount, bool reads) {
    const std::string_view customer = kCustomer;
    begin_.run();
    if (reads) {
      id_ = greatest_.firstNumber() + 1;
      before_ = sums_.bind(1, date).bind(2, customer).firstNumber();
    }
    entry_.bind(1, id_).bind(2, customer).bind(3, date).bind(4, amount).bind(5, before_ + amount);
    entry_.run();
    later_.bind(1, amount).bind(2, date).bind(3, customer).run();
    commit_.run();
    return 0;
  }
  /// What insert() is taken to know.
  void know(double date) {
    id_ = greatest_.firstNumber() + 1;
    before_ = sums_.bind(1, date).bind(2, std::string_view(kCustomer)).firstNumber();
  }
  double balances() { return std::round(all_.firstNumber()); }

 private:
  driver::Query begin_, commit_, greatest_, sums_, entry_, later_, all_;
  double id_ = 0;
  double before_ = 0;
};

class LedgerByClass {
 public:
  double insert(double date, double amount) {
    if (!connection_) connection_ = DataSession().OpenConnection(1);
    connection_->BeginTrans();
    ledger_.Insertar({.sSerie = "A",
                      .sCodigo = kCustomer,
                      .dtFecha = Date(date),
                      .sConcepto = "Factura",
                      .sD_H = "H",
                      .dHaber = amount,
                      .iEstado = 1,
                      .vDoc_E = 0,
                      .objCn = connection_});
    connection_->CommitTrans();
    return 0;
  }

 private:
  ConnectionPtr connection_;
  ClsClientesApuntesConta ledger_;
};

}  // namespace

void measureLedger(Report& report, const Scale& scale) {
  const std::size_t entries = scale.of(kEntries);
  BenchShop shop;
  fill(shop, entries);
  shop.share();
  LedgerByHand byHand(shop.floor());
  LedgerByClass byClass;
  constexpr double kAmount = 12.5;
  const double yearBack = kToday - kYear;
  const Side ours = {[&] { return byClass.insert(yearBack, kAmount); }};

  report.add(compare(
      {"ledger entry a year back (by hand: its two writes)",
       entries,
       1.1,
       {[&] { return byHand.insert(yearBack, kAmount, false); }, [&] { byHand.know(yearBack); }},
       ours},
      scale));
  report.add(compare({"the same (by hand: its reads too)",
                      entries,
                      1.1,
                      {[&] { return byHand.insert(yearBack, kAmount, true); }},
                      ours},
                     scale));

  const double theirs = byHand.balances();
  const double mine =
      std::round(shop.open(kBalances)->Field("s").Value().toDouble(*shop.installation().locale()));
  if (theirs != mine) {
    throw std::runtime_error(fmt::format("balances of {} by hand, of {} here", theirs, mine));
  }
}

}  // namespace tavelor::bench
