// SPDX-License-Identifier: MIT
// A ledger with running balances, for the tests of its classes.
#pragma once

#include <string>
#include <vector>

#include "tests/classes/catalogue.hpp"

namespace tavelor::test {

/// Days are those of March 2026.
template <typename Ledger>
class RunningAccountTest : public CatalogueTest<Ledger> {
 protected:
  using Apunte = typename Ledger::Apunte;

  static Date day(int day) { return Date::of(2026, 3, day); }
  std::string table() const { return std::string(this->catalogue.info().table); }

  /// What stands in an entry that says nothing else.
  Apunte entry(const Variant& date, double debit, double credit, int document = 0,
               const std::string& owner = "00012") {
    return {.sSerie = "A",
            .sCodigo = owner,
            .dtFecha = date,
            .sConcepto = "Factura",
            .sD_H = credit > 0 ? "H" : "D",
            .dDebe = debit,
            .dHaber = credit,
            .iEstado = 1,
            .vDoc_E = document};
  }
  void insert(const Variant& date, double debit, double credit, int document = 0,
              const std::string& owner = "00012") {
    ledger.Insertar(entry(date, debit, credit, document, owner));
  }
  /// Stored balances of an owner by Fecha, then Id.
  std::vector<double> balances(const std::string& owner = "00012") {
    std::vector<double> found;
    RecordsetPtr entries;
    ConnectionPtr connection;
    StatementTrace& trace = this->shop.apartment().trace();
    const bool wasOn = trace.isOn();
    trace.turn(false);
    DataSession().OpenRecordset(1,
                                Statement("SELECT Saldo FROM ")
                                    << Statement::trusted(table()) << " WHERE Codigo = "
                                    << sqlText(owner) << " ORDER BY Fecha, Id",
                                entries, connection);
    trace.turn(wasOn);
    for (; !entries->Eof(); entries->MoveNext()) {
      found.push_back(entries->Field(0).Value().toDouble(this->shop.apartment().locale()));
    }
    return found;
  }
  std::string count() { return this->shop.text("SELECT Count(*) FROM " + table()); }

  Ledger& ledger = this->catalogue;
};

}  // namespace tavelor::test
