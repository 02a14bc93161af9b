// SPDX-License-Identifier: MIT
// Articles from rows of text, written through their class.
#include "tools/article_import.hpp"

#include <array>
#include <cmath>

#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::tools {

namespace {

using enum FieldKind;
using enum FieldUse;

constexpr std::array<ImportField, 16> kFields = {{{"Codigo"},
                                                  {"Descripcion"},
                                                  {"Seccion"},
                                                  {"Familia"},
                                                  {"Tarifa_A", kMoney},
                                                  {"Tarifa_B", kMoney},
                                                  {"Tarifa_C", kMoney},
                                                  {"Impuesto", kText, kForNew},
                                                  {"Descuento", kFlag},
                                                  {"Descuento_D", kNumber},
                                                  {"Existencia", kNumber, kForNew},
                                                  {"Lotes", kFlag, kForNew},
                                                  {"Actualizar_Stock", kFlag, kForNew},
                                                  {"Restar_Stock", kFlag, kForNew},
                                                  {"Activo", kFlag},
                                                  {"Lista", kWord}}};

constexpr std::size_t at(ArticleField field) {
  return static_cast<std::size_t>(field);
}

double flagNumber(bool flag) {
  return flag ? -1 : 0;
}

}  // namespace

const ImportTable ArticleImport::kTable = {"Articulos", "articles", kFields};

bool ArticleImport::admitsDiscount(const Record& record) {
  return record.flag(at(ArticleField::kAdmitsDiscount), true);
}

// Where stock is kept sales take it off, unless the file says otherwise.
bool ArticleImport::isSoldFromStock(const Record& record) {
  return record.flag(at(ArticleField::kSoldFromStock), record.flag(at(ArticleField::kKeepsStock)));
}

bool ArticleImport::insertsByOneStatement(const Record& record) const {
  return admitsDiscount(record) && !isSoldFromStock(record);
}

void ArticleImport::insert(const Record& record) {
  const auto text = [&](ArticleField field) { return doubledQuotes(record.text(at(field))); };
  const auto number = [&](ArticleField field) { return record.number(at(field)); };
  const auto flag = [&](ArticleField field, bool otherwise = false) {
    return record.flag(at(field), otherwise);
  };
  const clsArticulos::Alta alta{.vId = text(ArticleField::kCode),
                                .sDescripcion = text(ArticleField::kDescription),
                                .sSeccion = text(ArticleField::kSection),
                                .sFamilia = text(ArticleField::kFamily),
                                .dPrecio = number(ArticleField::kPriceA),
                                .dPrecio_B = number(ArticleField::kPriceB),
                                .dPrecio_C = number(ArticleField::kPriceC),
                                .bDto = admitsDiscount(record),
                                .sImpuesto = text(ArticleField::kTax),
                                .dExistencia = number(ArticleField::kStock),
                                .bLotes = flagNumber(flag(ArticleField::kByLot)),
                                .bStock = flagNumber(flag(ArticleField::kKeepsStock)),
                                .bActivo = flag(ArticleField::kActive, true),
                                .sLista = text(ArticleField::kList),
                                .dDto_D = number(ArticleField::kDiscount),
                                .objCn = connection()};
  articles_.Insertar(alta);
  if (isSoldFromStock(record)) {  // no member writes it
    Statement statement("UPDATE Articulos SET Restar_Stock = True WHERE Codigo = ");
    statement << sqlText(record.key);
    DataSession().Execute(selector::kMain, statement, connection());
  }
  if (alta.bDto) return;
  // A new article admits a discount whatever it is told; only rewriting it takes that away.
  update({.vId = alta.vId,
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
          .objCn = connection()});
}

void ArticleImport::rewrite(const Record& record, Recordset& stored,
                            std::span<const std::size_t> /*differing*/) {
  const auto text = [&](ArticleField field) {
    std::string old;
    tavelor::takeColumn(stored, kFields[at(field)].name, old);
    return doubledQuotes(record.text(at(field), old));
  };
  const auto number = [&](ArticleField field) {
    double old = 0;
    tavelor::takeColumn(stored, kFields[at(field)].name, old);
    return record.number(at(field), old);
  };
  const auto flag = [&](ArticleField field) {
    bool old = false;
    tavelor::takeColumn(stored, kFields[at(field)].name, old);
    return record.flag(at(field), old);
  };
  update({.vId = doubledQuotes(record.key),
          .sDescripcion = text(ArticleField::kDescription),
          .sSeccion = text(ArticleField::kSection),
          .sFamilia = text(ArticleField::kFamily),
          .dPrecio = number(ArticleField::kPriceA),
          .dPrecio_B = number(ArticleField::kPriceB),
          .dPrecio_C = number(ArticleField::kPriceC),
          .bDto = flag(ArticleField::kAdmitsDiscount),
          .bDto_D = number(ArticleField::kDiscount),
          .bActivo = flag(ArticleField::kActive),
          .sLista = text(ArticleField::kList),
          .objCn = connection()});
}

// Under a decimal comma the class rewrites an article with whole discounts only; one with decimals
// is written by its own member.
void ArticleImport::update(const clsArticulos::Cambio& change) {
  const double whole = std::trunc(change.bDto_D);
  if (whole == change.bDto_D) return articles_.Actualizar(change);
  clsArticulos::Cambio inWholes = change;
  inWholes.bDto_D = whole;
  articles_.Actualizar(inWholes);
  articles_.ActualizarDto_D(change.vId, change.bDto_D, connection());
}

}  // namespace tavelor::tools
