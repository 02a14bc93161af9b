// SPDX-License-Identifier: MIT
// How this installation writes amounts and quantities, and numbers inside statements.
#pragma once

#include <memory>
#include <string>

#include "tavelor/platform/export.hpp"

namespace tavelor {

class Installation;
class Variant;

/// One object per apartment.
class TAVELOR_API FormatGlobal {
 public:
  /// By the settings of that installation.
  explicit FormatGlobal(std::shared_ptr<const Installation> installation)
      : installation_(std::move(installation)) {}

  /// Mask of money amounts, for tavelor::format: "#,##0.00".
  std::string AmountFormat() const;
  /// Mask of quantities and prices.
  std::string QuantityFormat() const;
  /// Decimals of a price in the shop's currency: 2.
  int CurrencyDecimals() const;

  /// A number for a statement without quotes: a decimal point whatever the locale, at most
  /// `decimals` decimals (halves away from zero). Empty is 0; a text is read by the locale.
  /// Raises 94 for Null, 13 for what is no number, 6 for what is not finite.
  std::string SqlNumber(const Variant& number, int decimals = 6) const;

 private:
  std::shared_ptr<const Installation> installation_;
};

}  // namespace tavelor
