// SPDX-License-Identifier: MIT
// The first rows of the catalogues.
#include "tavelor/flows/seed.hpp"

#include <string>
#include <type_traits>

#include "tavelor/customers/clientes.hpp"
#include "tavelor/flows/customers.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/reference/almacenes.hpp"
#include "tavelor/reference/cajas.hpp"
#include "tavelor/reference/divisas.hpp"
#include "tavelor/reference/emisores.hpp"
#include "tavelor/reference/familias.hpp"
#include "tavelor/reference/formas_pago.hpp"
#include "tavelor/reference/impuestos.hpp"
#include "tavelor/reference/secciones.hpp"
#include "tavelor/reference/tipos_cliente.hpp"
#include "tavelor/reference/tipos_documento.hpp"
#include "tavelor/reference/tipos_factura.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor::flows {

namespace {

/// Column of the full mode and its value. The others keep what AddNew or the table gives them.
struct Cell {
  std::string_view column;
  Variant value;
};
using Row = std::vector<Cell>;

template <typename Class>
void openAll(Class& catalogue) {
  if constexpr (std::is_base_of_v<OpensOnConnection, Class>) {
    catalogue.IniciaRs({}, "todos");
  } else {
    catalogue.IniciaRs("todos");
  }
}

void addRows(RecordClass& catalogue, const std::vector<Row>& rows) {
  const RecordsetPtr primary = catalogue.DataMember("Primary");
  for (const Row& row : rows) {
    catalogue.AddNew(true);
    for (const Cell& cell : row) primary->Field(cell.column).Value(cell.value);
    catalogue.Update();
  }
}

template <typename Class>
Seeded fill(const std::vector<Row>& rows) {
  Class catalogue;
  openAll(catalogue);
  Seeded seeded{.what = catalogue.sClassName()};
  if (catalogue.ExistenRegistros()) {
    seeded.kept = static_cast<std::size_t>(catalogue.DataMember("Primary")->RecordCount());
    return seeded;
  }
  catalogue.CnnBeginTrans();
  try {
    addRows(catalogue, rows);
    catalogue.CnnCommitTrans();
  } catch (...) {
    catalogue.CnnRollbackTrans();
    throw;
  }
  seeded.added = rows.size();
  return seeded;
}

// The general rates of the value added tax, each with the surcharge of retailers that do not
// declare it themselves.
std::vector<Row> taxes() {
  const auto rate = [](const char* code, const char* name, double tax, double surcharge) {
    return Row{{"Código", code}, {"Descripción", name}, {"Impuesto", tax}, {"Recargo", surcharge}};
  };
  std::vector<Row> rows = {rate("1", "IVA general 21%", 21, 5.2),
                           rate("2", "IVA reducido 10%", 10, 1.4),
                           rate("3", "IVA superreducido 4%", 4, 0.5), rate("4", "Exento", 0, 0)};
  rows.front().push_back({"Predeterminada", true});
  return rows;
}

// One euro is 166,386 pesetas for ever.
std::vector<Row> currencies() {
  constexpr double kPesetas = 166.386;
  return {{{"Código", "1"},
           {"Descripción", "Euro"},
           {"Fecha", Apartment::current().clock().today()},
           {"Valor", kPesetas},
           {"Euros", 1.0},
           {"Predeterminada", true}}};
}

// Types are those of the electronic invoice: 01 cash, 04 transfer, 19 card. A method whose
// receipt is due after days is paid later: see PaymentMethods.
std::vector<Row> paymentMethods() {
  const auto method = [](const char* code, const char* name, bool cash, const char* type,
                         std::int32_t days = 0) {
    return Row{{"Código", code},      {"Descripción", name}, {"Recibo", days > 0},
               {"Vencimiento", days}, {"Contado", cash},     {"Predeterminada", cash},
               {"Tipo", type}};
  };
  return {method("1", "Contado", true, "01"), method("2", "Tarjeta", false, "19"),
          method("3", "Transferencia", false, "04"), method("4", "Crédito", false, "04", 30)};
}

Row named(const char* code, const char* name) {
  return {{"Código", code}, {"Descripción", name}};
}

Row preferred(const char* code, const char* name) {
  Row row = named(code, name);
  row.push_back({"Predeterminada", true});
  return row;
}

// Nobody in particular: no number, no credit. A person, so that his class word is told.
std::vector<Row> walkIn() {
  return {{{"Código", std::string(kWalkIn)},
           {"Nombre", "Contado"},
           {"Empresa", "Clientes varios"},
           {"ID_Fiscal", "NIF"},
           {"NIF", ""},
           {"Riesgo", std::int32_t{0}}}};
}

Seeded period() {
  clsNumeradores counters;
  Seeded seeded{.what = counters.sClassName()};
  if (counters.ExistenPeriodoActual()) {
    seeded.kept = 1;
    // A run that died after it wrote the row has not made the year current.
    if (clsNumeradores::currentPeriod().empty()) {
      const CivilTime today = Apartment::current().clock().today().civil();
      clsNumeradores::setCurrentPeriod(std::to_string(today.year));
    }
  } else {
    counters.CrearPeriodoActual();
    seeded.added = 1;
  }
  return seeded;
}

}  // namespace

std::vector<Seeded> seedCatalogues() {
  return {
      fill<ClsImpuestos>(taxes()),
      fill<ClsDivisas>(currencies()),
      fill<ClsFormasPago>(paymentMethods()),
      fill<ClsTiposDocumento>({preferred("1", "General")}),
      fill<ClsTiposFactura>({preferred("1", "Factura")}),
      fill<Emisores>({{{"Id", std::int32_t{1}}, {"Descripción", "Principal"}}}),
      fill<ClsAlmacenes>({named("001", "Almacén principal")}),
      fill<ClsCajas>({named("001", "Caja 1")}),
      fill<ClsSecciones>({named("001", "General")}),
      fill<clsFamilias>({named("001", "General")}),
      fill<ClsTiposCliente>({named("1", "General")}),
      period(),
      fill<ClsClientes>(walkIn()),
  };
}

}  // namespace tavelor::flows
