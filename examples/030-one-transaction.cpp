// SPDX-License-Identifier: MIT
// Several members in one transaction: they share the caller's connection.
#include <iostream>

#include "tavelor/platform/error.hpp"
#include "tavelor/reference/bancos.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/connection.hpp"

int main() {
  try {
    tavelor::Apartment apartment(tavelor::Installation::create("shop"));
    const tavelor::ClsBancos banks;
    tavelor::DataSession session;
    const auto next = [&] { return banks.NuevoCodigo().toText(apartment.locale()); };

    // [transaction]
    tavelor::ConnectionPtr connection = session.OpenConnection(tavelor::selector::kMain);
    connection->BeginTrans();
    banks.CrearBanco("", "Banco de Ahorro", connection);
    banks.CrearBanco("", "Caja Rural", connection);
    connection->CommitTrans();
    // [transaction]
    std::cout << "After the commit the next code is " << next() << '\n';

    connection->BeginTrans();
    banks.CrearBanco("", "Banco del Mar", connection);
    try {
      // The quote breaks the statement. What ran before it is still there: nothing rolls back by
      // itself.
      banks.CrearBanco("", "Banco d'Or", connection);
    } catch (const tavelor::Error& error) {
      std::cout << "Refused with error " << error.number() << '\n';
      connection->RollbackTrans();
    }
    std::cout << "After the rollback it is " << next() << '\n';

    // [own-connection]
    tavelor::ConnectionPtr mine;  // empty: the first member that needs one fills it
    banks.CrearBanco("", "Banco del Mar", mine);
    std::cout << "Filled: " << (mine != nullptr) << '\n';
    // [own-connection]
    return 0;
  } catch (const tavelor::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
