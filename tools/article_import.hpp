// SPDX-License-Identifier: MIT
// Articles from rows of text, written through their class.
#pragma once

#include "tavelor/articles/articulos.hpp"
#include "tools/row_import.hpp"

namespace tavelor::tools {

/// Places in ArticleImport::kTable.
enum class ArticleField : std::uint8_t {
  kCode,
  kDescription,
  kSection,
  kFamily,
  kPriceA,
  kPriceB,
  kPriceC,
  kTax,
  kAdmitsDiscount,
  kDiscount,
  kStock,
  kByLot,
  kKeepsStock,
  kSoldFromStock,
  kActive,
  kList,
};

/// The tax of an article that is there, its stock and the three flags of it are never rewritten,
/// and one that is rewritten gets its code as its reference.
class ArticleImport final : public RowImport {
 public:
  static const ImportTable kTable;

  explicit ArticleImport(ImportSetup setup) : RowImport(kTable, std::move(setup)) {}

 private:
  std::string check(Record& /*record*/) override { return {}; }
  void insert(const Record& record) override;
  bool insertsByOneStatement(const Record& record) const override;
  void rewrite(const Record& record, Recordset& stored,
               std::span<const std::size_t> differing) override;
  void update(const clsArticulos::Cambio& change);
  /// Of a new article.
  static bool admitsDiscount(const Record& record);
  static bool isSoldFromStock(const Record& record);

  clsArticulos articles_;
};

}  // namespace tavelor::tools
