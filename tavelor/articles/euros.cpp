// SPDX-License-Identifier: MIT
// Statements of the change of currency.
#include "tavelor/articles/euros.hpp"

namespace tavelor::euros {

Statement nullToZero(std::string_view table, std::string_view column) {
  Statement statement("UPDATE ");
  statement << table << " SET " << column << " = 0 Where (((" << column << ") Is Null))";
  return statement;
}

Statement pricesInEuros(std::string_view table) {
  Statement statement("UPDATE ");
  statement << table << " SET Precio = Format([Precio]/'166,386','Currency');";
  return statement;
}

}  // namespace tavelor::euros
