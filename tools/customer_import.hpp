// SPDX-License-Identifier: MIT
// Customers from rows of text, their fiscal numbers cleaned and classed.
#pragma once

#include <unordered_map>

#include "tools/row_import.hpp"

namespace tavelor::tools {

/// Numbers are cleaned and get their class word; one that a person has to look at, and one that
/// another customer has, is told in a remark and taken. A tariff, series, type or payment method
/// that the shop does not have is the row's fault.
///
/// Of a customer that is there only the columns that differ are written, so that the mark of one
/// who is not available stays where the file does not speak of it.
class CustomerImport final : public RowImport {
 public:
  static const ImportTable kTable;

  /// Reads the catalogues, and the number of every customer: some fifty bytes each are kept.
  explicit CustomerImport(ImportSetup setup);

 private:
  /// Words that a field takes, each with the code that is stored for it.
  using Words = std::unordered_map<std::string, std::string>;

  std::string check(Record& record) override;
  void insert(const Record& record) override;
  void rewrite(const Record& record, Recordset& stored,
               std::span<const std::size_t> differing) override;
  void taken(const Record& record, Recordset* before) override;

  void readTariffs();
  void readCatalogue(std::string_view table, Words& words);
  void readNumbers();
  std::string replaceWord(Record& record, std::size_t field, const Words& words,
                          std::string_view what) const;
  static std::string literalOf(const Record& record, std::size_t field);
  void update(const Record& record, std::span<const std::size_t> fields);

  Words tariffs_, series_, types_, payments_;
  std::unordered_map<std::string, std::string> ownerOf_;  // customers by number
};

}  // namespace tavelor::tools
