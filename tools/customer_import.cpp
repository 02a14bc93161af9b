// SPDX-License-Identifier: MIT
// Customers from rows of text, their fiscal numbers cleaned and classed.
#include "tools/customer_import.hpp"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tools/output.hpp"
#include "tools/shop/customers.hpp"
#include "tools/shop/rows.hpp"

namespace tavelor::tools {

namespace {

using enum FieldKind;
using enum FieldUse;

/// Places in kFields.
enum Place : std::size_t {
  kCode,
  kName,
  kCompany,
  kFiscalNumber,
  kFiscalWord,
  kStreet,
  kPostalCode,
  kTown,
  kProvince,
  kTelephone,
  kMobile,
  kMail,
  kDocumentMail,
  kActive,
  kDiscount,
  kTariff,
  kSeries,
  kConcept,
  kType,
  kList,
  kExternal,
  kPayment,
  kLimit,
  kPeriod,
  kContact,
  kTelephone2,
  kPromptDiscount,
  kSurcharge,
};

// As far as ExternalID a new customer gets them from the class; ID_Fiscal follows from the number.
constexpr std::array<ImportField, 28> kFields = {{{"Codigo"},
                                                  {"Nombre"},
                                                  {"Razon_Social"},
                                                  {"NIF"},
                                                  {"ID_Fiscal", kWord, kDerived},
                                                  {"Direccion"},
                                                  {"Codigo_Postal"},
                                                  {"Poblacion"},
                                                  {"Provincia"},
                                                  {"Telefono"},
                                                  {"Movil"},
                                                  {"E_Mail"},
                                                  {"E_Mail_doc"},
                                                  {"Activo", kFlag},
                                                  {"Descuento", kPercent},
                                                  {"Tarifa", kWord},
                                                  {"Serie", kWord},
                                                  {"Concepto"},
                                                  {"Tipo_Cliente", kWord},
                                                  {"Lista", kWord},
                                                  {"ExternalID"},
                                                  {"Forma_Pago", kWord},
                                                  {"Riesgo", kMoney},
                                                  {"Facturar", kWord},
                                                  {"Contacto"},
                                                  {"Telefono_2"},
                                                  {"Descuento_pp", kPercent},
                                                  {"Recargo", kFlag}}};

}  // namespace

const ImportTable CustomerImport::kTable = {"Clientes", "customers", kFields};

CustomerImport::CustomerImport(ImportSetup setup) : RowImport(kTable, std::move(setup)) {
  readTariffs();
  for (const char* series : {"A", "B", "C"}) series_.emplace(text::foldCase(series), series);
  readCatalogue("Tipos_Cliente", types_);
  types_.emplace(text::foldCase("Nuevo"), "Nuevo");  // what customers begin as
  readCatalogue("Formas_Pago", payments_);
  readNumbers();
}

// ---------------------------------------------------------------------------------------------
// What the shop has

void CustomerImport::readTariffs() {
  for (const char* column : {"A", "B", "C"}) tariffs_.emplace(text::foldCase(column), column);
  for (const Variant& letter : clsArticulos().ObtenerCol_Tarifas(connection())) {
    const std::string* text = letter.getIf<std::string>();
    if (text != nullptr) tariffs_.emplace(text::foldCase(*text), *text);
  }
}

/// Codes, and descriptions where they are nobody's code.
void CustomerImport::readCatalogue(std::string_view table, Words& words) {
  Statement statement("SELECT codigo, Descripcion FROM ");
  statement << table;
  Words descriptions;
  for (shop::Rows rows(selector::kMain, statement, connection()); rows.hasRow(); rows.next()) {
    const std::string code = rows.text("codigo");
    words.emplace(text::foldCase(code), code);
    descriptions.emplace(text::foldCase(rows.text("Descripcion")), code);
  }
  words.merge(descriptions);
}

void CustomerImport::readNumbers() {
  const Statement statement("SELECT Codigo, NIF FROM Clientes WHERE NIF <> ''");
  for (shop::Rows rows(selector::kMain, statement, connection()); rows.hasRow(); rows.next()) {
    ownerOf_.emplace(shop::fiscalEntry(rows.text("NIF")).text, rows.text("Codigo"));
  }
}

// ---------------------------------------------------------------------------------------------
// Reading a row

std::string CustomerImport::replaceWord(Record& record, std::size_t field, const Words& words,
                                        std::string_view what) const {
  if (!record.has(field)) return {};
  const auto found = words.find(text::foldCase(record.text(field)));
  if (found == words.end()) return faultOf(field, what, record.text(field));
  record.values[field] = std::string_view(found->second);
  return {};
}

std::string CustomerImport::check(Record& record) {
  std::string fault = replaceWord(record, kTariff, tariffs_, "no tariff of the shop");
  if (fault.empty()) fault = replaceWord(record, kSeries, series_, "no series");
  if (fault.empty()) fault = replaceWord(record, kType, types_, "no type of customer");
  if (fault.empty()) fault = replaceWord(record, kPayment, payments_, "no payment method");
  if (!fault.empty() || !record.has(kFiscalNumber)) return fault;

  shop::FiscalEntry entry = shop::fiscalEntry(record.text(kFiscalNumber));
  // Who has no number keeps the word that a person has given him: see rewrite().
  if (!entry.text.empty()) record.values[kFiscalWord] = std::move(entry.word);
  record.values[kFiscalNumber] = std::move(entry.text);
  return {};
}

// ---------------------------------------------------------------------------------------------
// Writing a row

void CustomerImport::insert(const Record& record) {
  const auto text = [&](std::size_t field, std::string_view otherwise = {}) {
    return doubledQuotes(record.text(field, otherwise));
  };
  shop::makeCustomer({.vId = text(kCode),
                      .sNombre = text(kName),
                      .sRazonSocial = text(kCompany, record.text(kName, record.key)),
                      .sNif = text(kFiscalNumber),
                      .sdir = text(kStreet),
                      .sCp = text(kPostalCode),
                      .sPob = text(kTown),
                      .sProv = text(kProvince),
                      .stel = text(kTelephone),
                      .sMov = text(kMobile),
                      .sEmail = text(kMail),
                      .seMailDoc = text(kDocumentMail),
                      .bActivo = record.flag(kActive, true),
                      .dDescuento = record.number(kDiscount),
                      .sTarifa = text(kTariff, "A"),
                      .sSerie = text(kSeries, "A"),
                      .sConcepto = text(kConcept),
                      .stpcli = text(kType, "Nuevo"),
                      .sLista = text(kList),
                      .objCn = connection(),
                      .sExternalId = text(kExternal)},
                     record.text(kFiscalWord));
  std::vector<std::size_t> more;
  for (std::size_t field = kPayment; field < kFields.size(); ++field) {
    if (record.has(field)) more.push_back(field);
  }
  if (!more.empty()) update(record, more);
}

void CustomerImport::rewrite(const Record& record, Recordset& /*stored*/,
                             std::span<const std::size_t> differing) {
  const bool losesNumber =
      record.text(kFiscalNumber).empty() &&
      std::find(differing.begin(), differing.end(), kFiscalNumber) != differing.end();
  if (!losesNumber) return update(record, differing);
  Record changed = record;
  changed.values[kFiscalWord] = std::string();
  std::vector<std::size_t> fields(differing.begin(), differing.end());
  fields.push_back(kFiscalWord);
  update(changed, fields);
}

// As the class writes it: numbers too stand between quotes, with all digits.
std::string CustomerImport::literalOf(const Record& record, std::size_t field) {
  switch (kFields[field].kind) {
    case kText:
    case kWord:
      return doubledQuotes(record.text(field));
    case kFlag:
      return record.flag(field) ? "-1" : "0";
    default:
      return plainNumber(record.number(field), Apartment::current().locale());
  }
}

void CustomerImport::update(const Record& record, std::span<const std::size_t> fields) {
  Statement statement("UPDATE Clientes SET ");
  for (const std::size_t field : fields) {
    statement << (field == fields.front() ? "" : ", ") << kFields[field].name << " = ";
    const std::string text = literalOf(record, field);
    if (kFields[field].kind == kFlag) {
      statement << value(text);
    } else {
      statement << "'" << value(text) << "'";
    }
  }
  statement << " WHERE Codigo = '" << value(doubledQuotes(record.key)) << "'";
  DataSession().Execute(selector::kMain, statement, connection());
}

void CustomerImport::taken(const Record& record, Recordset* before) {
  if (!record.has(kFiscalNumber)) return;
  const std::string number(record.text(kFiscalNumber));
  if (before != nullptr) {
    std::string old;
    tavelor::take(*before, "NIF", old);
    const auto owner = ownerOf_.find(shop::fiscalEntry(old).text);
    const bool wasIts = owner != ownerOf_.end() && owner->second == record.key;
    if (wasIts && owner->first != number) ownerOf_.erase(owner);
  }
  if (number.empty()) return;
  if (record.text(kFiscalWord) == "VERIFICAR") {
    remark(record, fmt::format("NIF {} {}: taken as VERIFICAR", printable(number),
                               shop::fiscalEntry(number).doubt));
  }
  const auto [owner, isFirst] = ownerOf_.emplace(number, std::string(record.key));
  if (!isFirst && owner->second != record.key) {
    remark(record, fmt::format("customer {} has the NIF {} too", printable(owner->second),
                               printable(number)));
  }
}

}  // namespace tavelor::tools
