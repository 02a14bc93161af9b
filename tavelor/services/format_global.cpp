// SPDX-License-Identifier: MIT
// The number formats of an installation.
#include "tavelor/services/format_global.hpp"

#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/installation.hpp"

namespace tavelor {

std::string FormatGlobal::AmountFormat() const {
  return installation_->settings().amountFormat;
}

std::string FormatGlobal::QuantityFormat() const {
  return installation_->settings().quantityFormat;
}

int FormatGlobal::CurrencyDecimals() const {
  return installation_->settings().currencyDecimals;
}

std::string FormatGlobal::SqlNumber(const Variant& number, int decimals) const {
  return sqlNumber(number.toDouble(*installation_->locale()), decimals);
}

}  // namespace tavelor
