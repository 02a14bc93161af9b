// SPDX-License-Identifier: MIT
// Suppliers from rows of text, their fiscal numbers cleaned.
#pragma once

#include "tools/partner_import.hpp"

namespace tavelor::tools {

/// Suppliers have no place for the class of a number: one that a person has to look at is told in a
/// remark, and taken. A tariff, series or payment method that the shop does not have is the row's
/// fault.
class SupplierImport final : public PartnerImport {
 public:
  static const ImportTable kTable;

  explicit SupplierImport(ImportSetup setup);

 private:
  static const Kind kKind;

  void insert(const Record& record) override;
};

}  // namespace tavelor::tools
