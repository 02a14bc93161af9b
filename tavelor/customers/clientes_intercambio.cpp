// SPDX-License-Identifier: MIT
// ClsClientes: paths, files, pages, the current row, and lists of codes.
#include "tavelor/customers/clientes.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/paths_service.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// ---------------------------------------------------------------------------------------------
// Paths and files

void ClsClientes::GetConnectionStrToRpt(InOut<std::string> sDbtype, InOut<std::string> sDataSource,
                                        InOut<std::string> sCatalog, InOut<std::string> sUser,
                                        InOut<std::string> sPasw, bool bHistorico) const {
  reportConnection(bHistorico ? selector::kHistoric : info().selector, *sDbtype, *sDataSource,
                   *sCatalog, *sUser, *sPasw);
}

void ClsClientes::GetExportPath(InOut<std::string> sExportPath) const {
  sExportPath = DataSession().ExportPath(*sExportPath);
}

std::string ClsClientes::GetTxtFile() const {
  return PathsService().TxtFolder() + "Clientes" + ".txt";
}

std::string ClsClientes::GetTxtFile_email() const {
  return PathsService().EmailTxtFolder() + "Clientes" + "_e.txt";
}

void ClsClientes::Create_xml_Clientes(std::string_view sPath, ObjCn objCn) const {
  const RecordsetPtr rows = read(Statement("SELECT * FROM Clientes"), *objCn);
  if (rows->RecordCount() > 0) saveRows(*rows, sPath);
}

RecordsetPtr ClsClientes::IniciaXML(std::string_view sPath) {
  return openPrimaryFromFile(sPath);
}

// ---------------------------------------------------------------------------------------------
// Pages

void ClsClientes::ToHtmlGrid(std::string_view sPersonalFolder, const GridColumns& clColfields,
                             bool bDoclone, std::string_view sSelecSql, bool bFilter) {
  writeModernPage(sPersonalFolder, clColfields, bDoclone, sSelecSql, bFilter);
}

void ClsClientes::ToHtmlGrid_V0(const GridColumns& clColfields, bool bDoclone,
                                std::string_view sSelecSql, bool bFilter) {
  OpensByWord::writeGridPage(clColfields, bDoclone, sSelecSql, bFilter);
}

// ---------------------------------------------------------------------------------------------
// The current row

std::string ClsClientes::currentText(std::string_view field) const {
  try {
    return primary().Field(field).Value().toText(Apartment::current().locale());
  } catch (const Error&) {
    return {};
  }
}

std::string ClsClientes::sQBanco() const {
  return currentText("Banco");
}
std::string ClsClientes::sQFormaPago() const {
  return currentText("Pago");
}
std::string ClsClientes::sQMailDoc() const {
  return currentText("E_Mail_DOC");
}

// ---------------------------------------------------------------------------------------------
// Lists

std::vector<Variant> ClsClientes::ObtenerColActivos(ObjCn objCn) const {
  return columnValues(*read(Statement("SELECT Codigo FROM Clientes WHERE ( activo <> 0 )"), *objCn),
                      "Codigo");
}

std::vector<Variant> ClsClientes::ObtenerColAsociados(const Variant& vId, ObjCn objCn) const {
  return columnValues(*read(withId("SELECT Codigo FROM Clientes"
                                   " WHERE ( activo <> 0  AND codigo_fac = '{id}' )",
                                   vId),
                            *objCn),
                      "Codigo");
}

std::vector<Variant> ClsClientes::ObtenerColCentrosProd(ObjCn objCn) const {
  std::vector<Variant> centres = columnValues(
      *read(Statement("SELECT DISTINCT Clientes.Centro FROM Clientes"), *objCn), "Centro");
  std::erase_if(centres, [](const Variant& centre) { return joined(centre).empty(); });
  if (!centres.empty()) centres.emplace_back("TODOS");
  return centres;
}

bool ClsClientes::ObtenerClientesFacturar(InOut<std::vector<Variant>> cCollection,
                                          std::string_view sTipo, ObjCn objCn) const {
  Statement statement("SELECT Codigo FROM Clientes WHERE ( Facturar = '");
  statement << spliced(sTipo) << "' )";
  const std::vector<Variant> codes = columnValues(*read(statement, *objCn), "Codigo");
  cCollection->insert(cCollection->end(), codes.begin(), codes.end());
  return !codes.empty();
}

}  // namespace tavelor
