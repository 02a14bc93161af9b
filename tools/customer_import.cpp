// SPDX-License-Identifier: MIT
// Customers from rows of text, their fiscal numbers cleaned and classed.
#include "tools/customer_import.hpp"

#include <algorithm>
#include <array>

#include "tavelor/flows/customers.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/text.hpp"

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
                                                  {"Riesgo", kAllowance},
                                                  {"Facturar", kWord},
                                                  {"Contacto"},
                                                  {"Telefono_2"},
                                                  {"Descuento_pp", kPercent},
                                                  {"Recargo", kFlag}}};

}  // namespace

const ImportTable CustomerImport::kTable = {"Clientes", "customers", kFields};
const PartnerImport::Kind CustomerImport::kKind = {kTable, "customer", kFiscalNumber,
                                                   "taken as VERIFICAR"};

CustomerImport::CustomerImport(ImportSetup setup) : PartnerImport(kKind, std::move(setup)) {
  Words types = catalogue("Tipos_Cliente");
  types.emplace(text::foldCase("Nuevo"), "Nuevo");  // what customers begin as
  allow(kTariff, tariffs(), "no tariff of the shop");
  allow(kSeries, series(), "no series");
  allow(kType, std::move(types), "no type of customer");
  allow(kPayment, catalogue("Formas_Pago"), "no payment method");
}

void CustomerImport::classify(Record& record, const std::string& word) {
  record.values[kFiscalWord] = word;
}

void CustomerImport::insert(const Record& record) {
  const auto text = [&](std::size_t field, std::string_view otherwise = {}) {
    return doubledQuotes(record.text(field, otherwise));
  };
  flows::makeCustomer({.vId = text(kCode),
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
  update(record, toldFrom(record, kPayment));
}

// Who loses his number is of no class any more.
void CustomerImport::rewrite(const Record& record, Recordset& stored,
                             std::span<const std::size_t> differing) {
  const bool losesNumber =
      record.text(kFiscalNumber).empty() &&
      std::find(differing.begin(), differing.end(), kFiscalNumber) != differing.end();
  if (!losesNumber) return PartnerImport::rewrite(record, stored, differing);
  Record changed = record;
  changed.values[kFiscalWord] = std::string();
  std::vector<std::size_t> fields(differing.begin(), differing.end());
  fields.push_back(kFiscalWord);
  PartnerImport::rewrite(changed, stored, fields);
}

}  // namespace tavelor::tools
