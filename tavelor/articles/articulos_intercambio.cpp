// SPDX-License-Identifier: MIT
// clsArticulos: lists, files, reports, and the copy of the record before.
#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/frame/controls.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

// ---------------------------------------------------------------------------------------------
// Report filters

// By its sign, or by the numbers that the filters of forms use.
std::string_view reportOperator(std::string_view iType) {
  if (iType == ">=" || iType == "1") return ">=";
  if (iType == "<=" || iType == "2") return "<=";
  return iType == "Like" ? "Like" : "=";
}

// One condition; `op` and `text` as the field's type writes them.
std::string reportCondition(std::string_view field, DataType type, std::string_view op,
                            std::string_view text) {
  switch (type) {
    case DataType::kVarChar:
    case DataType::kVarWChar:
    case DataType::kLongVarWChar:
      return fmt::format("{{Articulos.{}}} {} '{}{}' ", field, op, text, op == "Like" ? "*" : "");
    case DataType::kDate:
      return fmt::format("{{Articulos.{}}} {} #{}# ", field, op == "Like" ? "=" : op, text);
    default:
      return fmt::format("{{Articulos.{}}} {} {} ", field, op == "Like" ? "=" : op, text);
  }
}

std::string entryOf(const Control& ctl) {
  return ctl.kind() == ControlKind::kBoundCombo ? ctl.BoundText() : ctl.Text();
}

}  // namespace

std::string clsArticulos::CreateRptFilter(Control& ctl, std::string_view iType) const {
  const std::string field = ctl.DataField();
  if (ctl.kind() == ControlKind::kCheckBox) {
    return fmt::format("{{Articulos.{}}} {} 0 ", field, ctl.Value() == 1 ? "<>" : "=");
  }
  const auto type = static_cast<DataType>(primary().Field(field).Type());
  const std::string_view op = reportOperator(iType);
  if (ctl.kind() != ControlKind::kListBox) {
    return ctl.defaultText().empty() ? "" : reportCondition(field, type, op, entryOf(ctl));
  }
  std::string conditions;
  const std::int32_t entries = ctl.ListCount();
  for (std::int32_t entry = 0; entry < entries; ++entry) {
    ctl.ListIndex(entry);
    if (!conditions.empty()) conditions += "Or ";
    conditions += reportCondition(field, type, op, ctl.Text());
  }
  return conditions;
}

void clsArticulos::UpdateTablesGeneralesToRpt() const {
  DataSession session;
  if (session.IsDbFile(info().selector)) session.UpdateReportTables(info().word);
}

// ---------------------------------------------------------------------------------------------
// Files

RecordsetPtr clsArticulos::IniciaXML(std::string_view sPath) {
  return openPrimaryFromFile(sPath);
}

void clsArticulos::Create_xml_Articulos(std::string_view sPath, ObjCn objCn) const {
  const RecordsetPtr rows = read(Statement("SELECT"
                                           " *"
                                           " FROM "
                                           "Articulos"),
                                 *objCn);
  if (!rows->Bof() && !rows->Eof()) saveRows(*rows, sPath);
}

void clsArticulos::GetExportPath(InOut<std::string> sExportPath) const {
  sExportPath = DataSession().ExportPath(*sExportPath);
}

// ---------------------------------------------------------------------------------------------
// The planning flag, of the whole table

void clsArticulos::Aceptar_todos(ObjCn cnnActive) const {
  write(Statement("UPDATE "
                  "Articulos"
                  " SET Planificar = '1'"),
        *cnnActive);
}

void clsArticulos::Denegar_todos(ObjCn cnnActive) const {
  write(Statement("UPDATE "
                  "Articulos"
                  " SET Planificar = '0'"),
        *cnnActive);
}

// ---------------------------------------------------------------------------------------------
// Lists

std::vector<Variant> clsArticulos::ObtenerArticulosVentaActivos(std::string_view sLista,
                                                                ObjCn objCn) const {
  Statement statement(
      "SELECT"
      " Codigo "
      " FROM "
      "Articulos"
      " WHERE ( activo <> 0 and Interno = 0 and Lista ='");
  statement << spliced(sLista)
            << "' )"
               " Order by Codigo";
  return columnValues(*read(statement, *objCn), "Codigo");
}

std::vector<Variant> clsArticulos::ObtenerArticulosImport(ObjCn objCn) const {
  const RecordsetPtr rows = readOn(selector::kImport,
                                   Statement("SELECT"
                                             " Codigo "
                                             " FROM "
                                             "Articulos"
                                             " Order by Codigo"),
                                   *objCn);
  return columnValues(*rows, "Codigo");
}

std::vector<Variant> clsArticulos::ObtenerCol_Materiales(ObjCn objCn) const {
  const RecordsetPtr rows =
      read(Statement("SELECT Codigo, Restar_Stock"
                     " FROM "
                     "Articulos"
                     " WHERE (Articulo_Compuesto = 0 and Actualizar_Stock <> 0 and activo <> 0)"),
           *objCn);
  return columnValues(*rows, "codigo");
}

double clsArticulos::ObtenerTarifaArticuloImport(const Variant& vId, std::string_view sTarifa,
                                                 ObjCn objCn) const {
  Statement statement("SELECT");
  if (sTarifa == "B") {
    statement << " Tarifa_B as precio";
  } else if (sTarifa == "C") {
    statement << " Tarifa_C as precio";
  } else {
    statement << " Tarifa_A as precio";
  }
  statement << " FROM "
               "Articulos"
               " WHERE ( Codigo = '"
            << spliced(joined(vId)) << "')";
  const RecordsetPtr rows = readOn(selector::kImport, statement, *objCn);
  double price = 0;
  if (rows->RecordCount() > 0) takeColumn(*rows, "precio", price);
  return price;
}

// ---------------------------------------------------------------------------------------------
// The copy

// The row before is read from a clone: a move of the primary record set would post the new row, and
// a copy that fails or is taken back would leave a half-filled article to be written later.
void clsArticulos::CopyPrevious() {
  constexpr std::array<std::string_view, 5> kOwn = {"Código", "Referencia", "Existencia",
                                                    "Pendiente", "Fecha"};
  Recordset& rows = primary();
  if (rows.EditMode() != EditMode::kAdd) {
    raise(errors::kNotAllowedInContext, info().word,
          "CopyPrevious fills a row that is being added, and replaces no stored one.");
  }
  const RecordsetPtr stored = rows.Clone();
  stored->Filter(rows.Filter());
  stored->Sort(rows.Sort());
  stored->MoveLast();

  const std::int32_t count = rows.Fields().Count();
  for (std::int32_t i = 0; i < count; ++i) {
    const Field field = stored->Field(i);
    if (std::find(kOwn.begin(), kOwn.end(), field.Name()) == kOwn.end()) {
      rows.Field(i).Value(field.Value());
    }
  }
}

}  // namespace tavelor
