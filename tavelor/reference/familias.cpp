// SPDX-License-Identifier: MIT
// clsFamilias, article families.
#include "tavelor/reference/familias.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Familias.

namespace {

constexpr std::string_view kActivas =
    "SELECT Codigo AS Código, Descripcion AS Descripción"
    " FROM "
    "Familias"
    " WHERE ( activo <> 0 )";

constexpr std::array kModes = {
    Mode{"seleccombo", kActivas, " Order by Descripcion"},
    Mode{"selec", kActivas},
    Mode{kAnyOtherWord,
         "SELECT Codigo AS Código, Descripcion AS Descripción, Activo  FROM "
         "Familias"},
};

constexpr ClassInfo kInfo = {.word = "Familias", .table = "Familias", .modes = kModes};

}  // namespace

clsFamilias::clsFamilias() : OpensByWord(kInfo) {}

void clsFamilias::GetConnectionStrToRpt(InOut<std::string> sDbtype, InOut<std::string> sDataSource,
                                        InOut<std::string> sCatalog, InOut<std::string> sUser,
                                        InOut<std::string> sPasw, bool bHistorico) const {
  reportConnection(bHistorico ? selector::kHistoric : info().selector, *sDbtype, *sDataSource,
                   *sCatalog, *sUser, *sPasw);
}

std::string clsFamilias::GetDescripcion(const Variant& vId, ObjCn objCn) const {
  return describe(withId("SELECT"
                         " Descripcion"
                         " FROM "
                         "Familias"
                         " WHERE Codigo = '{id}'",
                         vId),
                  vId, "Familia", objCn);
}

Variant clsFamilias::GetFirst(ObjCn objCn) const {
  return lookUp(Statement("SELECT Codigo as v  FROM "
                          "Familias"),
                "v", objCn);
}

Variant clsFamilias::GetValor(const Variant& vId, ObjCn objCn) const {
  return lookUp(withId("SELECT Descripcion as v  FROM "
                       "Familias"
                       "  where codigo = '{id}'",
                       vId),
                "v", objCn);
}

bool clsFamilias::ExisteFam(const Variant& vId, ObjCn objCn) const {
  return anyRow(withId("SELECT Codigo FROM "
                       "Familias"
                       " Where codigo ='{id}'",
                       vId),
                objCn);
}

void clsFamilias::CambiarDescripcionaFamilia(const Variant& vId, std::string_view sDescrip,
                                             ObjCn cnnActive) const {
  Statement statement(
      "UPDATE "
      "Familias"
      " SET Descripcion = '");
  statement << spliced(sDescrip)
            << "' "
               " WHERE (Codigo = '"
            << spliced(joined(vId)) << "')";
  write(statement, cnnActive);
}

void clsFamilias::Insertar(const Variant& vId, std::string_view sDescripcion, ObjCn objCn) const {
  Statement statement(
      "INSERT INTO Familias ( "
      " Codigo,"
      " Descripcion"
      " )"
      " values ( '");
  statement << spliced(joined(vId))
            << "',"
               "'"
            << spliced(sDescripcion) << "' )";
  write(statement, objCn);
}

std::vector<Variant> clsFamilias::ObtenerFamiliasImport(ObjCn objCn) const {
  const RecordsetPtr rows = readOn(selector::kImport,
                                   Statement("SELECT"
                                             " Codigo "
                                             " FROM "
                                             "Familias"),
                                   objCn);
  std::vector<Variant> codes;
  for (; !rows->Eof(); rows->MoveNext()) codes.push_back(rows->Field("Codigo").Value());
  return codes;
}

void clsFamilias::GetDatosImport(const Variant& vId, InOut<std::string> sDescripcion,
                                 ObjCn objCn) const {
  const RecordsetPtr rows = readOn(selector::kImport,
                                   withId("SELECT"
                                          " Codigo as Código,"
                                          " Descripcion"
                                          " FROM "
                                          "Familias"
                                          " Where ("
                                          " Codigo = '{id}'"
                                          " )",
                                          vId),
                                   objCn);
  if (rows->RecordCount() > 0) takeColumn(*rows, "Descripcion", *sDescripcion);
}

// A new family can be used at once; in the short lists the table sees to it.
void clsFamilias::setDefaults(bool bDefVal) {
  Recordset& rows = primary();
  if (bDefVal && rows.Fields().Count() > 2) rows.Field(2).Value(true);
}

const Component& clsFamilias::component() {
  using C = clsFamilias;
  static const Component table(
      "clsFamilias", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B014}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          member("GetConnectionStrToRpt", &C::GetConnectionStrToRpt,
                 "out sDbtype, out sDataSource, out sCatalog, out sUser, out sPasw, [bHistorico]"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("GetDescripcion", &C::GetDescripcion, "vId, [objCn]"),
          member("GetFirst", &C::GetFirst, "[objCn]"),
          member("GetValor", &C::GetValor, "vId, [objCn]"),
          member("ExisteFam", &C::ExisteFam, "vId, [objCn]"),
          member("CambiarDescripcionaFamilia", &C::CambiarDescripcionaFamilia,
                 "vId, sDescrip, [cnnActive]"),
          member("Insertar", &C::Insertar, "vId, sDescripcion, [objCn]"),
          member("ObtenerFamiliasImport", &C::ObtenerFamiliasImport, "[objCn]"),
          member("GetDatosImport", &C::GetDatosImport, "vId, out sDescripcion, [objCn]"),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
