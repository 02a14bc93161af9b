// SPDX-License-Identifier: MIT
// Suppliers from rows of text, their fiscal numbers cleaned.
#include "tools/supplier_import.hpp"

#include <array>

#include "tavelor/flows/suppliers.hpp"

namespace tavelor::tools {

namespace {

using enum FieldKind;

/// Places in kFields.
enum Place : std::size_t {
  kCode,
  kName,
  kCompany,
  kFiscalNumber,
  kPayment,
  kTariff,
  kSeries,
};

constexpr std::array<ImportField, 27> kFields = {{{"Codigo"},
                                                  {"Nombre"},
                                                  {"Razon_Social"},
                                                  {"NIF"},
                                                  {"Forma_Pago", kWord},
                                                  {"Tarifa", kWord},
                                                  {"Serie", kWord},
                                                  {"Contacto"},
                                                  {"Direccion"},
                                                  {"Codigo_Postal"},
                                                  {"Poblacion"},
                                                  {"Provincia"},
                                                  {"Telefono"},
                                                  {"Telefono_2"},
                                                  {"Movil"},
                                                  {"Fax"},
                                                  {"E_Mail"},
                                                  {"Http"},
                                                  {"Activo", kFlag},
                                                  {"Sub", kFlag},
                                                  {"Recargo", kFlag},
                                                  {"Descuento", kPercent},
                                                  {"Descuento_pp", kPercent},
                                                  {"Concepto"},
                                                  {"Cta_Tesoreria", kWord},
                                                  {"Cta_Contable", kWord},
                                                  {"Cta_Contrapartida", kWord}}};

}  // namespace

const ImportTable SupplierImport::kTable = {"Proveedores", "suppliers", kFields};
const PartnerImport::Kind SupplierImport::kKind = {kTable, "supplier", kFiscalNumber,
                                                   "taken as it stands"};

SupplierImport::SupplierImport(ImportSetup setup) : PartnerImport(kKind, std::move(setup)) {
  allow(kTariff, tariffs(), "no tariff of the shop");
  allow(kSeries, series(), "no series");
  allow(kPayment, catalogue("Formas_Pago"), "no payment method");
}

// Who has no legal name goes by the usual one, or by the code.
void SupplierImport::insert(const Record& record) {
  const std::string_view name = record.text(kName, record.key);
  flows::makeSupplier(record.key, record.text(kCompany, name), connection());
  update(record, toldFrom(record, kName));
}

}  // namespace tavelor::tools
