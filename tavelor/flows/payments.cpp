// SPDX-License-Identifier: MIT
// How a sale is paid: the shop's payment methods, as a till and a file name them.
#include "tavelor/flows/payments.hpp"

#include <algorithm>

#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

namespace {

constexpr std::string_view kSelect =
    "SELECT codigo, Descripcion, Contado, Recibo, Dias_Plazos FROM Formas_Pago";

PaymentMethod methodOf(const Rows& row) {
  const bool isCash = row.flag("Contado");
  return {.code = row.text("codigo"),
          .name = row.text("Descripcion"),
          .isCash = isCash,
          .isOnCredit = !isCash && row.flag("Recibo") && row.number("Dias_Plazos") > 0};
}

bool meansCredit(std::string_view word) {
  for (const std::string_view each : {"credit", "crédito", "credito"}) {
    if (text::equalsIgnoreCase(word, each)) return true;
  }
  return false;
}

}  // namespace

PaymentMethods::PaymentMethods(ConnectionPtr connection) {
  Statement statement(kSelect);
  statement << " ORDER BY codigo";
  for (Rows rows(selector::kMain, statement, std::move(connection)); rows.hasRow(); rows.next()) {
    methods_.push_back(methodOf(rows));
  }
}

const PaymentMethod* PaymentMethods::find(std::string_view word) const {
  const auto first = [&](auto&& is) {
    const auto found = std::find_if(methods_.begin(), methods_.end(), is);
    return found == methods_.end() ? nullptr : &*found;
  };
  if (const PaymentMethod* method = byCode(word)) return method;
  if (const PaymentMethod* method =
          first([&](const auto& each) { return text::equalsIgnoreCase(each.name, word); })) {
    return method;
  }
  return meansCredit(word) ? first([](const auto& each) { return each.isOnCredit; }) : nullptr;
}

const PaymentMethod* PaymentMethods::byCode(std::string_view code) const {
  const auto found = std::find_if(methods_.begin(), methods_.end(),
                                  [&](const PaymentMethod& each) { return each.code == code; });
  return found == methods_.end() ? nullptr : &*found;
}

}  // namespace tavelor::flows
