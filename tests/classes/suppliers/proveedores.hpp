// SPDX-License-Identifier: MIT
// A shop with suppliers, for the tests of their master.
#pragma once

#include <string>
#include <vector>

#include "tavelor/suppliers/proveedores.hpp"
#include "tests/classes/catalogue.hpp"
#include "tests/classes/corpus.hpp"

namespace tavelor::test {

/// No period has a row of counters, so the length of codes is not fixed.
class SupplierTest : public CatalogueTest<ClsProveedores> {
 protected:
  static std::string corpus(const std::string& name) {
    return corpusStatement({"suppliers-proveedores"}, "ClsProveedores." + name);
  }
  /// A supplier in use, then what `assignments` say.
  void add(const std::string& code, const std::string& assignments = {}) {
    shop.run("INSERT INTO Proveedores (Codigo, Activo, Razon_Social) VALUES ('" + code +
             "', -1, 'Proveedor " + code + "')");
    if (!assignments.empty()) set(code, assignments);
  }
  void set(const std::string& code, const std::string& assignments) {
    shop.run("UPDATE Proveedores SET " + assignments + " WHERE Codigo = '" + code + "'");
  }
  /// A column of a supplier, as text; "Null" for null.
  std::string column(const std::string& name, const std::string& code) {
    return shop.text("SELECT " + name + " FROM Proveedores WHERE Codigo = '" + code + "'");
  }
  /// The length of supplier codes in the session's period; "Null" for none.
  void setDigits(const std::string& ofSuppliers) {
    shop.run("DELETE FROM Numeradores");
    shop.run(
        "INSERT INTO Numeradores (Codigo, Periodo, Digitos_Articulos, Digitos_Clientes, "
        "Digitos_Proveedores) VALUES ('001', '', 4, 4, " +
        ofSuppliers + ")");
  }
  /// Calls a member by name; `left` are the arguments as they come back.
  Variant call(const char* member, std::vector<Variant> arguments = {}) {
    Variant result = ClsProveedores::component().call(suppliers, member, arguments);
    left = std::move(arguments);
    return result;
  }
  std::vector<Variant> left;

  ClsProveedores& suppliers = catalogue;
};

}  // namespace tavelor::test
