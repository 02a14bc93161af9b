// SPDX-License-Identifier: MIT
// Customers from rows of text, their fiscal numbers cleaned and classed.
#pragma once

#include "tools/partner_import.hpp"

namespace tavelor::tools {

/// Numbers get their class word; one that a person has to look at is taken as VERIFICAR. A tariff,
/// series, type or payment method that the shop does not have is the row's fault. What the file
/// does not speak of stays, the mark of one who is not available too.
class CustomerImport final : public PartnerImport {
 public:
  static const ImportTable kTable;

  explicit CustomerImport(ImportSetup setup);

 private:
  static const Kind kKind;

  void classify(Record& record, const std::string& word) override;
  void insert(const Record& record) override;
  void rewrite(const Record& record, Recordset& stored,
               std::span<const std::size_t> differing) override;
};

}  // namespace tavelor::tools
