// SPDX-License-Identifier: MIT
// Taking articles from rows of text, beside prepared inserts of the same rows.
#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "bench/driver.hpp"
#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/services/data_session.hpp"
#include "tools/article_import.hpp"

namespace tavelor::bench {

namespace {

constexpr std::size_t kRows = 92'331;
/// 0.6 of the speed of the floor.
constexpr double kTarget = 1 / 0.6;

using tools::ArticleField;
using tools::ArticleImport;
using Rows = std::vector<tools::CsvFile::Row>;

/// Code, description, family and a price: what a supplier's list has.
Rows supplierList(std::size_t count) {
  Dice dice(7);
  Rows rows(count);
  for (std::size_t i = 0; i < count; ++i) {
    rows[i].line = i + 2;
    rows[i].fields = {fmt::format("{:07}", dice.below(10) + 10 * i), dice.text(),
                      fmt::format("F{:02}", dice.below(40)),
                      fmt::format("{}.{:02}", dice.below(500), dice.below(100))};
  }
  return rows;
}

std::vector<tools::FieldSource> sources() {
  std::vector<tools::FieldSource> from(ArticleImport::kTable.fields.size());
  std::size_t column = 0;
  for (const ArticleField field : {ArticleField::kCode, ArticleField::kDescription,
                                   ArticleField::kFamily, ArticleField::kPriceA}) {
    from[static_cast<std::size_t>(field)] = {.column = column++, .constant = {}, .given = true};
  }
  return from;
}

double articlesIn(driver::Database& database) {
  return database.prepare("SELECT count(*) + sum(Tarifa_A) FROM Articulos").firstNumber();
}

double insertByHand(driver::Database& database, const Rows& rows) {
  driver::Query insert = database.prepare(
      "INSERT INTO Articulos (Codigo, Lista, Referencia, Descripcion, Idioma_1, Idioma_2, "
      "Idioma_3, Idioma_4, Idioma_5, Idioma_6, Seccion, Familia, Tarifa_A, Tarifa_B, Tarifa_C, "
      "Impuesto, Precio_Coste, Precio_Medio, Descuento, Descuento_D, Existencia, Unidad_Stock, "
      "Minimo, Maximo, Pendiente, Activo, Unidad_Compra, Medida_Compra, Actualizar_Stock, Lotes, "
      "Articulo_Compuesto, Interno, Valor_Interno, Empleado, Merma, Fecha) VALUES (?1, 'PRC', ?1, "
      "?2, ?2, ?2, ?2, ?2, ?2, ?2, '', ?3, ?4, 0, 0, '', 0, 0, -1, 0, 0, 'Und', 1, 100, 0, -1, "
      "'Und', 1, 0, 0, 0, 0, 0, '0', 0, 46086)");
  for (std::size_t i = 0; i < rows.size(); i += ArticleImport::kBatch) {
    database.execute("BEGIN IMMEDIATE");
    const std::size_t end = std::min(i + ArticleImport::kBatch, rows.size());
    for (std::size_t row = i; row < end; ++row) {
      const auto& fields = rows[row].fields;
      insert.bind(1, fields[0]).bind(2, fields[1]).bind(3, fields[2]);
      insert.bind(4, std::stod(fields[3])).run();
    }
    database.execute("COMMIT");
  }
  return articlesIn(database);
}

std::vector<Rows> inBatches(const Rows& rows) {
  std::vector<Rows> batches;
  for (std::size_t i = 0; i < rows.size(); i += ArticleImport::kBatch) {
    const std::size_t end = std::min(i + ArticleImport::kBatch, rows.size());
    batches.emplace_back(rows.begin() + static_cast<std::ptrdiff_t>(i),
                         rows.begin() + static_cast<std::ptrdiff_t>(end));
  }
  return batches;
}

void importRows(const std::vector<Rows>& batches) {
  ArticleImport import({sources(), 4, Locale::neutral().get(), false});
  for (const Rows& batch : batches) import.take(batch, batch.size());
  import.finish();
}

}  // namespace

void measureImport(Report& report, const Scale& scale) {
  BenchShop shop;
  shop.share();
  driver::Database ours(shop.installation().databaseFile(1));
  const Rows rows = supplierList(scale.of(kRows));
  const std::vector<Rows> batches = inBatches(rows);
  const auto empty = [](driver::Database& database) { database.execute("DELETE FROM Articulos"); };
  report.add(compare(
      {.work = "import of new articles, 1,000 a transaction",
       .rows = rows.size(),
       .target = kTarget,
       .floor = {[&] { return insertByHand(shop.floor(), rows); }, [&] { empty(shop.floor()); }},
       .ours = {[&] {
                  importRows(batches);
                  return articlesIn(ours);
                },
                [&] {
                  empty(ours);
                  DataSession().OpenConnection(1)->absorbTexts();
                }}},
      scale));
}

}  // namespace tavelor::bench
