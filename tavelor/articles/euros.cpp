// SPDX-License-Identifier: MIT
// Statements of the change of currency.
#include "tavelor/articles/euros.hpp"

namespace tavelor::euros {

Statement nullToZero(Statement::Constant table, Statement::Constant column) {
  Statement statement("UPDATE ");
  statement << table << " SET " << column << " = 0 Where (((" << column << ") Is Null))";
  return statement;
}

Statement pricesInEuros(Statement::Constant table) {
  Statement statement("UPDATE ");
  statement << table << " SET Precio = Format([Precio]/'166,386','Currency');";
  return statement;
}

}  // namespace tavelor::euros
