// SPDX-License-Identifier: MIT
// What must not compile: read by forgotten_wrappers.sh, built by nobody. Each line that is marked
// has an error, and no other line has one.
#include <string>
#include <string_view>

#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/variant.hpp"

using tavelor::sqlLiteral;
using tavelor::sqlText;
using tavelor::Statement;

constexpr std::string_view kKnown = "SELECT Codigo FROM Bancos WHERE Codigo = ";

void right(const std::string& code, double amount, tavelor::Date day) {
  Statement statement(kKnown);
  statement << sqlText(code) << " OR Saldo > " << sqlLiteral(amount)
            << " OR Fecha = " << sqlLiteral(day)
            << (amount > 0 ? Statement::Constant(" OR Activo") : "") << Statement::trusted(code);
  Statement other = Statement::trusted(code);
}

void wrong(const std::string& code, std::string_view view, const char* pointer, double amount,
           tavelor::Date day, tavelor::Currency money, const tavelor::Variant& variant) {
  Statement statement("SELECT Codigo FROM Bancos WHERE Codigo = ");
  char written[] = "001";
  static char kept[] = "001";
  statement << code;                      // refused
  statement << view;                      // refused
  statement << pointer;                   // refused
  statement << written;                   // refused
  statement << kept;                      // refused
  statement << code.c_str();              // refused
  statement << std::string("001");        // refused
  statement << std::string_view(kept);    // refused
  statement << amount;                    // refused
  statement << 7;                         // refused
  statement << 'x';                       // refused
  statement << day;                       // refused
  statement << money;                     // refused
  statement << variant;                   // refused
  statement << (amount > 0 ? view : "");  // refused
  Statement ofText(code);                 // refused
  Statement ofView(view);                 // refused
  Statement ofPointer(pointer);           // refused
  Statement ofArray(kept);                // refused
  Statement ofSum("SELECT " + code);      // refused
  Statement::Constant constant(view);     // refused
  statement << tavelor::spliced(amount);  // refused
  statement << tavelor::spliced(0);       // refused
  statement << tavelor::spliced(day);     // refused
  statement << sqlText(amount);           // refused
}
