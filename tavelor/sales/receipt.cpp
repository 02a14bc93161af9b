// SPDX-License-Identifier: MIT
// Lines of a receipt, in columns of fixed width that count characters.
#include "tavelor/sales/receipt.hpp"

#include <algorithm>
#include <string>

#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/format_global.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor::receipt {

namespace {

constexpr std::size_t kQuantityWidth = 4;
constexpr std::size_t kDescriptionWidth = 15;
constexpr std::size_t kDiscountWidth = 3;
constexpr std::size_t kAmountWidth = 9;  // of discount and amount together
constexpr std::size_t kRateWidth = 4;

const Locale& locale() {
  return Apartment::current().locale();
}

/// A value at the right end of a column; null is nothing.
std::string inColumn(const Variant& value, std::size_t width) {
  return text::alignRight(value.isNull() ? std::string() : value.toText(locale()), width);
}

}  // namespace

std::vector<Variant> lines(Recordset& rows) {
  const Field quantities = rows.Field("Cantidad");
  const Field descriptions = rows.Field("Descripción");
  const Field discounts = rows.Field("Dto");
  const Field amounts = rows.Field("Importe");
  std::vector<Variant> lines;
  for (; !rows.Eof(); rows.MoveNext()) {
    const float quantity = asSingle(quantities.Value());
    const double discount = asNumber(discounts.Value());
    const std::string discountPart = discount == 0 ? "" : inColumn(discount, kDiscountWidth) + "%";
    const std::size_t amountWidth =
        kAmountWidth - std::min(kAmountWidth, text::length(discountPart));
    lines.emplace_back(inColumn(quantity, kQuantityWidth) + ' ' +
                       text::padRight(inColumn(descriptions.Value(), 0), kDescriptionWidth) + ' ' +
                       discountPart + inColumn(asNumber(amounts.Value()), amountWidth));
  }
  return lines;
}

std::vector<Variant> taxes(Recordset& groups, bool bIncTax) {
  const FormatGlobal& formats = Apartment::current().formatGlobal();
  const std::string amounts = formats.AmountFormat();
  const std::string quantities = formats.QuantityFormat();
  const RoundingMask asAmount(amounts, locale());
  const RoundingMask asQuantity(quantities, locale());
  std::vector<Variant> lines;
  for (; !groups.Eof(); groups.MoveNext()) {
    const float rate = asSingle(groups.Field("IVA").Value());
    const double percent = rate;
    const double sum = asNumber(groups.Field("SumaDeImporte").Value());
    const double base = bIncTax ? asQuantity(sum * 100 / (percent + 100)) : sum;
    const double tax = asAmount(percent * base / 100);
    lines.emplace_back(inColumn(rate, kRateWidth) + "% IVA de " +
                       inColumn(asAmount(base), kAmountWidth) + inColumn(tax, kAmountWidth));
  }
  return lines;
}

}  // namespace tavelor::receipt
