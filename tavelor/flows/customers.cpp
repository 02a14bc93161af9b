// SPDX-License-Identifier: MIT
// Customers as the flows of a shop make them.
#include "tavelor/flows/customers.hpp"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "tavelor/flows/shop_inner.hpp"
#include "tavelor/platform/fiscal_number.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::flows {

void makeCustomer(const ClsClientes::Alta& alta, std::string_view fiscalWord) {
  const ClsClientes customers;
  customers.Insertar(alta);
  Statement statement("UPDATE Clientes SET ID_Fiscal = '");
  statement << spliced(fiscalWord)
            << "', Facturar = 'Mensual', Cta_Tesoreria = '430000', Cta_Contable = '430000', "
               "Cta_Contrapartida = '700000', Riesgo = 9000 WHERE Codigo = '"
            << spliced(text(alta.vId)) << "'";
  DataSession().Execute(selector::kMain, statement, *alta.objCn);
}

namespace {

constexpr std::string_view kToVerify = "VERIFICAR";

bool isMark(char c) {
  return std::string_view(" .-/").find(c) != std::string_view::npos;
}
bool isCode(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z');
}

/// In capitals, without marks, and without the label before it.
std::string withoutMarks(std::string_view typed) {
  // Blanks as sheets and pages have them: tabs, line ends, and the one that does not break.
  std::string text = tavelor::text::upper(typed);
  constexpr std::string_view kHardBlank = "\u00A0";
  for (std::size_t at = text.find(kHardBlank); at != std::string::npos;
       at = text.find(kHardBlank, at)) {
    text.replace(at, kHardBlank.size(), " ");
  }
  std::erase_if(text, [](char c) { return isMark(c) || (c >= '\t' && c <= '\r'); });
  constexpr std::array<std::string_view, 3> kLabels = {"NIF", "CIF", "NIE"};
  const auto isFirst = [&](std::string_view label) { return text.starts_with(label); };
  while (std::any_of(kLabels.begin(), kLabels.end(), isFirst)) {
    text.erase(0, kLabels.front().size());
    if (text.starts_with(':')) text.erase(0, 1);
  }
  return text;
}

}  // namespace

FiscalEntry fiscalEntry(std::string_view typed) {
  FiscalEntry entry;
  entry.text = withoutMarks(typed);
  if (entry.text.empty()) return entry;
  const FiscalNumber number = readFiscalNumber(entry.text);
  if (number.isValid()) {
    entry.text = number.text;
    entry.word = kindWord(number.kind);
    return entry;
  }
  // Of the shop's own words only those that the law has nothing to say of.
  if (std::all_of(entry.text.begin(), entry.text.end(), isCode)) {
    entry.word = ClsClientes().Tipo_Id_Fiscal(entry.text);
    if (entry.word == "AND" || entry.word == "INT") return entry;
  }
  entry.word = kToVerify;
  entry.doubt = faultText(number.fault);
  return entry;
}

}  // namespace tavelor::flows
