// SPDX-License-Identifier: MIT
// Rows of closed sales put into a shop by hand.
#pragma once

#include <string>

#include <fmt/format.h>

#include "tests/support/shop.hpp"

namespace tavelor::test {

/// Texts must hold no quote: they go into the statements as they are. Days are "11/20/2026".
class ClosedSales : public Shop {
 public:
  void ticket(int number, const std::string& day, const std::string& concept_, double total,
              const std::string& table = "HTickets") {
    run(fmt::format("INSERT INTO {} (Numero, Fecha, Concepto, Total) VALUES ({}, #{}#, '{}', {})",
                    table, number, day, concept_, total),
        3);
  }
  void line(int ticket, const std::string& code, const std::string& description, double quantity,
            double amount) {
    run(fmt::format("INSERT INTO HTickets_Lineas (Numero, Codigo, Descripcion, Cantidad, Importe) "
                    "VALUES ({}, '{}', \"{}\", {}, {})",
                    ticket, code, description, quantity, amount),
        3);
  }
  void closing(int number, const std::string& day, const std::string& till, double start,
               double sales, double end) {
    run(
        fmt::format("INSERT INTO Cierres (Codigo, Fecha, Caja, Saldo_Inicio, Total, Saldo_Final) "
                    "VALUES ({}, #{}#, '{}', {}, {}, {})",
                    number, day, till, start, sales, end));
  }
  void family(int closing, const std::string& family, double amount) {
    run(fmt::format("INSERT INTO Cierres_Familias (Cierre, Familia, Importe) VALUES ({}, '{}', {})",
                    closing, family, amount));
  }
  void payment(int closing, const std::string& method, double amount) {
    run(
        fmt::format("INSERT INTO Cierres_Formas_Pago (Cierre, Forma_Pago, Importe) VALUES ({}, "
                    "'{}', {})",
                    closing, method, amount));
  }
  void tax(int closing, double rate, double base, double amount) {
    run(
        fmt::format("INSERT INTO Cierres_Lineas_Impuestos (Cierre, Iva, Base, Importe) VALUES ({}, "
                    "{}, {}, {})",
                    closing, rate, base, amount));
  }
};

}  // namespace tavelor::test
