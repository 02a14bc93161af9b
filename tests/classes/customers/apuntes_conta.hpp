// SPDX-License-Identifier: MIT
// A customer's ledger, for the tests of its class.
#pragma once

#include <string>
#include <vector>

#include "tavelor/customers/clientes_apuntes_conta.hpp"
#include "tests/classes/catalogue.hpp"

namespace tavelor::test {

/// Days are those of March 2026.
class LedgerTest : public CatalogueTest<ClsClientesApuntesConta> {
 protected:
  static Date day(int day) { return Date::of(2026, 3, day); }

  /// What stands in an entry that says nothing else.
  ClsClientesApuntesConta::Apunte entry(const Variant& date, double debit, double credit,
                                        int document = 0, const std::string& customer = "00012") {
    return {.sSerie = "A",
            .sCodigo = customer,
            .dtFecha = date,
            .sConcepto = "Factura",
            .sD_H = credit > 0 ? "H" : "D",
            .dDebe = debit,
            .dHaber = credit,
            .iEstado = 1,
            .vDoc_E = document};
  }
  void insert(const Variant& date, double debit, double credit, int document = 0,
              const std::string& customer = "00012") {
    ledger.Insertar(entry(date, debit, credit, document, customer));
  }
  void correct(const Variant& date, double debit, double credit, int document,
               const std::string& customer = "00012") {
    ledger.Modificarnovale({.sCodigo = customer,
                            .dtFecha = date,
                            .dDebe = debit,
                            .dHaber = credit,
                            .iEstado = std::int16_t{1},
                            .vDoc_E = document});
  }
  /// Stored balances of a customer by Fecha, then Id.
  std::vector<double> balances(const std::string& customer = "00012") {
    std::vector<double> found;
    RecordsetPtr entries;
    ConnectionPtr connection;
    shop.apartment().trace().turn(false);
    DataSession().OpenRecordset(
        1,
        Statement("SELECT Saldo FROM Clientes_Apuntes_Contables WHERE Codigo = '" + customer +
                  "' ORDER BY Fecha, Id"),
        entries, connection);
    shop.apartment().trace().turn(true);
    for (; !entries->Eof(); entries->MoveNext()) {
      found.push_back(entries->Field(0).Value().toDouble(shop.apartment().locale()));
    }
    return found;
  }
  std::string count() { return shop.text("SELECT Count(*) FROM Clientes_Apuntes_Contables"); }

  ClsClientesApuntesConta& ledger = catalogue;
};

}  // namespace tavelor::test
