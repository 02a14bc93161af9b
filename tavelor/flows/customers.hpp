// SPDX-License-Identifier: MIT
// Customers as the flows of a shop make them.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/customers/clientes.hpp"

namespace tavelor::flows {

/// The customer who is anybody: who says no name at the till buys as this one does. Zeros are no
/// code that a count from 1 on gives.
inline constexpr std::string_view kWalkIn = "00000";

/// Writes a customer through the class, and what the class does not write as a new customer in a
/// form begins with it: invoiced monthly, the usual accounts and limit of credit. Two statements;
/// whoever wants both or none passes a connection with a transaction. Texts have their quotes
/// doubled. `fiscalWord` is the class word of the fiscal number, "" for none. Raises what
/// ClsClientes::Insertar does.
void makeCustomer(const ClsClientes::Alta& alta, std::string_view fiscalWord);

/// A fiscal number as it goes into a customer's row.
struct FiscalEntry {
  std::string text;
  /// Of Tipo_Id_Fiscal: NIF, NIE, CIF, AND, INT or VERIFICAR; "" for no number.
  std::string word;
  std::string doubt;  ///< why a person has to look at it, "" for nothing
};

/// Cleans and classes what somebody typed, in capitals and without a label (NIF, CIF, NIE), blanks,
/// dots, hyphens and slashes. What is right by law, read leniently, gets the word of its kind;
/// numbers of Andorra and with the prefix of a country that the shop knows theirs. Anything else is
/// VERIFICAR, and stays as it was typed but for capitals and those marks: no character that might
/// be one of the number is dropped. Never raises.
FiscalEntry fiscalEntry(std::string_view typed);

}  // namespace tavelor::flows
