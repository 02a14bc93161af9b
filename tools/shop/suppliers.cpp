// SPDX-License-Identifier: MIT
// Suppliers as the flows of a shop make them.
#include "tools/shop/suppliers.hpp"

#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/data_session.hpp"
#include "tools/shop/shop_inner.hpp"

namespace tavelor::shop {

// The class has no member that writes one outside of a grid.
void makeSupplier(std::string_view code, std::string_view legalName, ConnectionPtr& connection) {
  Statement statement(
      "INSERT INTO Proveedores (Codigo, Razon_Social, Activo, Sub, Serie, Tarifa, Cta_Tesoreria, "
      "Cta_Contable, Cta_Contrapartida) VALUES (");
  statement << sqlText(code) << ", " << sqlText(legalName)
            << ", -1, 0, 'A', 'A', '400', '400', '600000')";
  DataSession().Execute(selector::kMain, statement, connection);
}

}  // namespace tavelor::shop
