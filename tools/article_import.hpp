// SPDX-License-Identifier: MIT
// Articles from rows of text: new ones are inserted, the others rewritten, through their class.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/articles/articulos.hpp"
#include "tools/csv_file.hpp"
#include "tools/refusals.hpp"

namespace tavelor {
struct Locale;
}

namespace tavelor::tools {

/// What a file can tell of an article. The names are those of the table's columns.
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
  kActive,
  kList,
};
inline constexpr std::array<std::string_view, 15> kArticleFields = {
    "Codigo",     "Descripcion", "Seccion",          "Familia",   "Tarifa_A",
    "Tarifa_B",   "Tarifa_C",    "Impuesto",         "Descuento", "Descuento_D",
    "Existencia", "Lotes",       "Actualizar_Stock", "Activo",    "Lista"};

/// Where each field's value comes from: a column of the file, one text for all rows, or nowhere.
struct ArticleSources {
  struct Source {
    std::optional<std::size_t> column;
    std::string constant;
    bool given = false;
  };
  std::array<Source, kArticleFields.size()> of;

  Source& operator[](ArticleField field) { return of[static_cast<std::size_t>(field)]; }
  const Source& operator[](ArticleField field) const { return of[static_cast<std::size_t>(field)]; }
};

struct ImportCounts {
  std::uint64_t added = 0;
  std::uint64_t changed = 0;
  std::uint64_t same = 0;
  std::uint64_t refused = 0;

  std::uint64_t total() const { return added + changed + same + refused; }
};

/// Takes rows in batches, each in a transaction of its own. A field that no source gives keeps its
/// value in an article that is there. Of those the tax, the stock and its two flags are never
/// rewritten, and one that is rewritten gets its code as its reference. An article whose row says
/// what is stored is not written, so the same rows can be taken again.
///
/// A row is refused for its own faults: no code, a code that the file had before, a text that does
/// not fit or is no number. Any other error undoes the batch and passes.
class ArticleImport {
 public:
  static constexpr std::size_t kBatch = 1000;

  /// `columns` are those of the file, one of them the code's; numbers are read by `numbers`.
  ArticleImport(ArticleSources sources, std::size_t columns, const Locale& numbers);
  ~ArticleImport();
  ArticleImport(const ArticleImport&) = delete;
  ArticleImport& operator=(const ArticleImport&) = delete;

  /// One transaction. What it refused is in refusals() until the next call.
  void take(const std::vector<CsvFile::Row>& rows, std::size_t count);

  const ImportCounts& counts() const { return counts_; }
  const std::vector<Refusal>& refusals() const { return refusals_; }

 private:
  class SeenCodes;
  struct Article;
  struct Stored;

  std::string read(const CsvFile::Row& row, Article& article) const;
  std::vector<Article> readBatch(const std::vector<CsvFile::Row>& rows, std::size_t count);
  Stored stored(const std::vector<Article>& batch);
  void write(const Article& article, const Stored& before);
  void insert(const Article& article);
  void rewrite(const clsArticulos::Cambio& change);
  void refuse(std::uint64_t line, std::string code, std::string reason);

  ArticleSources sources_;
  std::size_t columns_;
  const Locale& numbers_;
  clsArticulos articles_;
  std::shared_ptr<Connection> connection_;
  std::unique_ptr<SeenCodes> seen_;
  ImportCounts counts_;
  std::vector<Refusal> refusals_;
};

}  // namespace tavelor::tools
