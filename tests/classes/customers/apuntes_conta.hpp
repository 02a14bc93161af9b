// SPDX-License-Identifier: MIT
// A customer's ledger, for the tests of its class.
#pragma once

#include <string>

#include "tavelor/customers/clientes_apuntes_conta.hpp"
#include "tests/classes/running_account.hpp"

namespace tavelor::test {

class LedgerTest : public RunningAccountTest<ClsClientesApuntesConta> {
 protected:
  void correct(const Variant& date, double debit, double credit, int document,
               const std::string& customer = "00012") {
    ledger.Modificarnovale({.sCodigo = customer,
                            .dtFecha = date,
                            .dDebe = debit,
                            .dHaber = credit,
                            .iEstado = std::int16_t{1},
                            .vDoc_E = document});
  }
};

}  // namespace tavelor::test
