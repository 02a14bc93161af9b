// SPDX-License-Identifier: MIT
// Reads the values of a row, compares them with what is stored, and writes through the class.
#include "tools/article_import.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <unordered_map>

#include <fmt/format.h>

#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tools/output.hpp"
#include "tools/typed_number.hpp"

namespace tavelor::tools {

namespace {

/// Errors that tell of a row's own values; all others are the shop's trouble.
bool isOfTheRow(std::int32_t number) {
  switch (number) {
    case errors::kOverflow:
    case errors::kTypeMismatch:
    case errors::kSyntax:
    case errors::kIntegrityViolation:
    case errors::kMultipleStep:
    case errors::kCriteriaTypeMismatch:
      return true;
    default:
      return false;
  }
}

std::optional<bool> flagIn(std::string_view text, const Locale& numbers) {
  for (const std::string_view word : {"true", "yes", "sí", "si", "verdadero"}) {
    if (text::equalsIgnoreCase(text, word)) return true;
  }
  for (const std::string_view word : {"false", "no", "falso"}) {
    if (text::equalsIgnoreCase(text, word)) return false;
  }
  const std::optional<double> number = parseNumber(text, numbers);
  return number ? std::optional(*number != 0) : std::nullopt;
}

/// A row's fields as values. The first that does not read is the fault; an empty number or flag
/// says nothing.
class RowValues {
 public:
  RowValues(const CsvFile::Row& row, const ArticleSources& sources, const Locale& numbers)
      : row_(row), sources_(sources), numbers_(numbers) {}

  const std::string& fault() const { return fault_; }

  std::optional<std::string_view> text(ArticleField field) const {
    const ArticleSources::Source& source = sources_[field];
    if (!source.given) return std::nullopt;
    return source.column ? row_.fields[*source.column] : source.constant;
  }
  /// To the digits that are printed, so that the same row compares equal the next time.
  std::optional<double> number(ArticleField field) {
    return parsed<double>(field, "no number", [&](std::string_view text) {
      const std::optional<double> read = numberIn(text);
      return read ? parseNumber(plainNumber(*read, numbers_), numbers_) : read;
    });
  }
  std::optional<bool> flag(ArticleField field) {
    return parsed<bool>(field, "no flag",
                        [&](std::string_view text) { return flagIn(text, numbers_); });
  }
  /// To the four decimals that are kept, so that the same row compares equal the next time.
  std::optional<double> money(ArticleField field) {
    constexpr double kMost = 9e14;
    return parsed<double>(field, "no amount", [&](std::string_view text) {
      const std::optional<double> amount = numberIn(text);
      if (!amount || std::abs(*amount) > kMost) return std::optional<double>();
      return std::optional(Currency::fromDouble(*amount).toDouble());
    });
  }

 private:
  std::optional<double> numberIn(std::string_view text) const {
    return groupsFit(text, numbers_) ? parseNumber(text, numbers_) : std::nullopt;
  }
  template <typename T, typename Parse>
  std::optional<T> parsed(ArticleField field, std::string_view what, Parse&& parse) {
    const std::optional<std::string_view> given = this->text(field);
    if (!given || given->empty()) return std::nullopt;
    const std::optional<T> value = parse(*given);
    if (!value && fault_.empty()) {
      const std::string_view decimal = groupsFit(*given, numbers_) ? ""
                                       : numbers_.decimal == ","   ? " with a decimal comma"
                                                                   : " with a decimal point";
      fault_ = fmt::format("{} is {}{}: {}", kArticleFields[static_cast<std::size_t>(field)], what,
                           decimal, printable(tavelor::text::left(*given, 40)));
    }
    return value;
  }

  const CsvFile::Row& row_;
  const ArticleSources& sources_;
  const Locale& numbers_;
  std::string fault_;
};

}  // namespace

/// The codes of the file with their lines, 12 bytes in at most half of the slots. Codes count as
/// equal when their hashes are, which for distinct codes is not to be expected in 64 bits.
class ArticleImport::SeenCodes {
 public:
  /// The line that had the code before, or 0.
  std::uint64_t add(std::string_view code, std::uint64_t line) {
    if (2 * (used_ + 1) > hashes_.size()) grow();
    const std::uint64_t hash = std::max<std::uint64_t>(std::hash<std::string_view>()(code), 1);
    const std::size_t slot = slotOf(hash);
    if (hashes_[slot] == hash) return lines_[slot];
    hashes_[slot] = hash;
    lines_[slot] = static_cast<std::uint32_t>(line);
    ++used_;
    return 0;
  }

 private:
  std::size_t slotOf(std::uint64_t hash) const {
    std::size_t slot = hash & (hashes_.size() - 1);
    while (hashes_[slot] != 0 && hashes_[slot] != hash) slot = (slot + 1) & (hashes_.size() - 1);
    return slot;
  }
  void grow() {
    std::vector<std::uint64_t> hashes(hashes_.empty() ? 1024 : 2 * hashes_.size());
    std::vector<std::uint32_t> lines(hashes.size());
    hashes.swap(hashes_);
    lines.swap(lines_);
    for (std::size_t i = 0; i < hashes.size(); ++i) {
      if (hashes[i] == 0) continue;
      const std::size_t slot = slotOf(hashes[i]);
      hashes_[slot] = hashes[i];
      lines_[slot] = lines[i];
    }
  }

  std::vector<std::uint64_t> hashes_;  // 0 is free
  std::vector<std::uint32_t> lines_;
  std::size_t used_ = 0;
};

/// A row's values; what it does not tell is nothing. The texts are those of the row.
struct ArticleImport::Article {
  std::uint64_t line = 0;
  std::string_view code;
  std::optional<std::string_view> description, section, family, tax, list;
  std::optional<double> priceA, priceB, priceC, discount, stock;
  std::optional<bool> admitsDiscount, byLot, keepsStock, active;
};

/// What is stored of the articles of a batch.
struct ArticleImport::Stored {
  RecordsetPtr rows;
  std::unordered_map<std::string, std::int32_t> positions;
};

ArticleImport::ArticleImport(ArticleSources sources, std::size_t columns, const Locale& numbers)
    : sources_(std::move(sources)),
      columns_(columns),
      numbers_(numbers),
      connection_(DataSession().OpenConnection(selector::kMain)),
      seen_(std::make_unique<SeenCodes>()) {}

ArticleImport::~ArticleImport() = default;

// ---------------------------------------------------------------------------------------------
// Reading a row

std::string ArticleImport::read(const CsvFile::Row& row, Article& article) const {
  const std::size_t codeColumn = *sources_[ArticleField::kCode].column;
  if (codeColumn < row.fields.size()) article.code = row.fields[codeColumn];
  if (row.fields.size() != columns_) {
    return fmt::format("{} fields where the first row has {}", row.fields.size(), columns_);
  }
  if (article.code.empty()) return "there is no code";

  RowValues values(row, sources_, numbers_);
  article.description = values.text(ArticleField::kDescription);
  article.section = values.text(ArticleField::kSection);
  article.family = values.text(ArticleField::kFamily);
  article.tax = values.text(ArticleField::kTax);
  article.list = values.text(ArticleField::kList);
  if (article.list && article.list->empty()) article.list.reset();
  article.priceA = values.money(ArticleField::kPriceA);
  article.priceB = values.money(ArticleField::kPriceB);
  article.priceC = values.money(ArticleField::kPriceC);
  article.discount = values.number(ArticleField::kDiscount);
  article.stock = values.number(ArticleField::kStock);
  article.admitsDiscount = values.flag(ArticleField::kAdmitsDiscount);
  article.byLot = values.flag(ArticleField::kByLot);
  article.keepsStock = values.flag(ArticleField::kKeepsStock);
  article.active = values.flag(ArticleField::kActive);
  return values.fault();
}

std::vector<ArticleImport::Article> ArticleImport::readBatch(const std::vector<CsvFile::Row>& rows,
                                                             std::size_t count) {
  std::vector<Article> batch;
  batch.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    Article article;
    article.line = rows[i].line;
    std::string fault = read(rows[i], article);
    if (fault.empty()) {
      const std::uint64_t before = seen_->add(article.code, rows[i].line);
      if (before != 0) fault = fmt::format("line {} has that code already", before);
    }
    if (fault.empty()) {
      batch.push_back(std::move(article));
    } else {
      refuse(rows[i].line, std::string(article.code), std::move(fault));
    }
  }
  return batch;
}

void ArticleImport::refuse(std::uint64_t line, std::string code, std::string reason) {
  ++counts_.refused;
  refusals_.push_back({line, std::move(code), std::move(reason)});
}

// ---------------------------------------------------------------------------------------------
// Writing a batch

void ArticleImport::take(const std::vector<CsvFile::Row>& rows, std::size_t count) {
  refusals_.clear();
  const ImportCounts before = counts_;
  connection_->BeginTrans();
  try {
    const std::vector<Article> batch = readBatch(rows, count);
    if (!batch.empty()) {
      const Stored present = stored(batch);
      for (const Article& article : batch) write(article, present);
    }
    connection_->CommitTrans();
  } catch (...) {
    counts_ = before;
    connection_->RollbackTrans();
    throw;
  }
}

// One read a batch, by all its codes: a read an article would take longer than its write.
ArticleImport::Stored ArticleImport::stored(const std::vector<Article>& batch) {
  Statement statement(
      "SELECT Codigo, Descripcion, Seccion, Familia, Tarifa_A, Tarifa_B, Tarifa_C, Descuento, "
      "Descuento_D, Activo, Lista FROM Articulos WHERE Codigo In (");
  for (const Article& article : batch) {
    statement << (&article == &batch.front() ? "'" : ", '") << value(doubledQuotes(article.code))
              << "'";
  }
  statement << ")";
  Stored found;
  DataSession().OpenRecordset(selector::kMain, statement, found.rows, connection_);
  const Field code = found.rows->Field("Codigo");
  for (std::int32_t position = 1; !found.rows->Eof(); ++position) {
    found.positions.emplace(*code.Value().getIf<std::string>(), position);
    found.rows->MoveNext();
  }
  return found;
}

void ArticleImport::write(const Article& article, const Stored& before) {
  try {
    const auto position = before.positions.find(std::string(article.code));
    if (position == before.positions.end()) {
      insert(article);
      ++counts_.added;
      return;
    }
    Recordset& rows = *before.rows;
    rows.AbsolutePosition(position->second);
    clsArticulos::Cambio change{.vId = doubledQuotes(article.code), .objCn = connection_};
    bool differs = false;
    const auto text = [&](std::string_view column, const std::optional<std::string_view>& given,
                          std::string& to) {
      std::string old;
      tavelor::take(rows, column, old);
      differs = differs || (given && *given != old);
      to = doubledQuotes(given.value_or(old));
    };
    const auto number = [&](std::string_view column, const std::optional<double>& given,
                            double& to) {
      double old = 0;
      tavelor::take(rows, column, old);
      differs = differs || (given && *given != old);
      to = given.value_or(old);
    };
    const auto flag = [&](std::string_view column, const std::optional<bool>& given, bool& to) {
      tavelor::take(rows, column, to);
      differs = differs || (given && *given != to);
      to = given.value_or(to);
    };
    text("Descripcion", article.description, change.sDescripcion);
    text("Seccion", article.section, change.sSeccion);
    text("Familia", article.family, change.sFamilia);
    number("Tarifa_A", article.priceA, change.dPrecio);
    number("Tarifa_B", article.priceB, change.dPrecio_B);
    number("Tarifa_C", article.priceC, change.dPrecio_C);
    flag("Descuento", article.admitsDiscount, change.bDto);
    number("Descuento_D", article.discount, change.bDto_D);
    flag("Activo", article.active, change.bActivo);
    text("Lista", article.list, change.sLista);
    if (differs) rewrite(change);
    ++(differs ? counts_.changed : counts_.same);
  } catch (const Error& error) {
    if (!isOfTheRow(error.number())) throw;
    refuse(article.line, std::string(article.code), error.description());
  }
}

void ArticleImport::insert(const Article& article) {
  const auto flagNumber = [](std::optional<bool> flag) {
    return flag.value_or(false) ? -1.0 : 0.0;
  };
  const clsArticulos::Alta alta{.vId = doubledQuotes(article.code),
                                .sDescripcion = doubledQuotes(article.description.value_or("")),
                                .sSeccion = doubledQuotes(article.section.value_or("")),
                                .sFamilia = doubledQuotes(article.family.value_or("")),
                                .dPrecio = article.priceA.value_or(0),
                                .dPrecio_B = article.priceB.value_or(0),
                                .dPrecio_C = article.priceC.value_or(0),
                                .bDto = article.admitsDiscount.value_or(true),
                                .sImpuesto = doubledQuotes(article.tax.value_or("")),
                                .dExistencia = article.stock.value_or(0),
                                .bLotes = flagNumber(article.byLot),
                                .bStock = flagNumber(article.keepsStock),
                                .bActivo = article.active.value_or(true),
                                .sLista = doubledQuotes(article.list.value_or("")),
                                .dDto_D = article.discount.value_or(0),
                                .objCn = connection_};
  articles_.Insertar(alta);
  if (alta.bDto) return;
  // A new article admits a discount whatever it is told; only rewriting it takes that away.
  rewrite({.vId = alta.vId,
           .sDescripcion = alta.sDescripcion,
           .sSeccion = alta.sSeccion,
           .sFamilia = alta.sFamilia,
           .dPrecio = alta.dPrecio,
           .dPrecio_B = alta.dPrecio_B,
           .dPrecio_C = alta.dPrecio_C,
           .bDto = false,
           .bDto_D = alta.dDto_D,
           .bActivo = alta.bActivo,
           .sLista = alta.sLista,
           .objCn = connection_});
}

// Under a decimal comma the class rewrites an article with whole discounts only; one with decimals
// is written by its own member.
void ArticleImport::rewrite(const clsArticulos::Cambio& change) {
  const double whole = std::trunc(change.bDto_D);
  if (whole == change.bDto_D) return articles_.Actualizar(change);
  articles_.Actualizar({.vId = change.vId,
                        .sDescripcion = change.sDescripcion,
                        .sSeccion = change.sSeccion,
                        .sFamilia = change.sFamilia,
                        .dPrecio = change.dPrecio,
                        .dPrecio_B = change.dPrecio_B,
                        .dPrecio_C = change.dPrecio_C,
                        .bDto = change.bDto,
                        .bDto_D = whole,
                        .bActivo = change.bActivo,
                        .sLista = change.sLista,
                        .objCn = connection_});
  articles_.ActualizarDto_D(change.vId, change.bDto_D, connection_);
}

}  // namespace tavelor::tools
