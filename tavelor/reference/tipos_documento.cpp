// SPDX-License-Identifier: MIT
// ClsTiposDocumento, the company data behind document types.
#include "tavelor/reference/tipos_documento.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/reference/logotipo.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Tipos_Documento. Which row is the default one is the caller's matter; nothing enforces one.

namespace {

constexpr std::array kModes = {
    Mode{"seleccion", "SELECT Codigo AS Código, Descripcion AS Descripción FROM Tipos_Documento"},
    Mode{kAnyOtherWord,
         "SELECT Codigo AS Código, Descripcion AS Descripción, Predeterminada"
         " , Nombre, Razon_Social as Empresa"
         " , NIF, Direccion as Dirección"
         " , Codigo_Postal, Poblacion as Población, Provincia"
         " , Telefono as Teléfono, Telefono_2 as Teléfono_2"
         " , Movil as Móvil, Fax, E_Mail, Http, Pie_Documento as Pie, Comentarios, Logotipo, "
         "Licencia, Col_Asoc as Colegiado, Fabricado, ID_Fiscal"
         " FROM Tipos_Documento"},
};

constexpr ClassInfo kInfo = {
    .word = "Tipos_Documento", .table = "Tipos_Documento", .modes = kModes};

constexpr std::string_view kDatos =
    "SELECT Nombre,  Razon_Social,  NIF,  Direccion, Codigo_Postal, Poblacion, Telefono, "
    "Pie_Documento as Pie, Comentarios  FROM Tipos_Documento";
constexpr std::string_view kDatosEmpresa =
    "SELECT Nombre,  Razon_Social,  NIF,  Direccion, Codigo_Postal, Poblacion, Provincia, "
    "Telefono,e_Mail, Pie_Documento as Pie, Comentarios  FROM Tipos_Documento";

// The columns that all three reads of issuer data share.
void takeIssuer(Recordset& rows, ClsTiposDocumento::Datos& datos) {
  takeColumn(rows, "Nombre", datos.sNom);
  takeColumn(rows, "Razon_Social", datos.sEmpr);
  takeColumn(rows, "NIF", datos.sNif);
  takeColumn(rows, "Direccion", datos.sdir);
  takeColumn(rows, "Codigo_Postal", datos.sCp);
  takeColumn(rows, "Poblacion", datos.sPob);
  takeColumn(rows, "Telefono", datos.stel);
}

}  // namespace

ClsTiposDocumento::ClsTiposDocumento() : OpensOnConnection(kInfo) {}

bool ClsTiposDocumento::bEsPredeterminada() const {
  try {
    return asFlag(primary().Field("Predeterminada").Value());
  } catch (const Error&) {
    return false;
  }
}

bool ClsTiposDocumento::VerificaeEsPersonaFisica(std::string_view sId) const {
  return text::equalsIgnoreCase(text::left(text::trimLeft(sId), 1), "n");
}

Variant ClsTiposDocumento::GetPredeterminada(ObjCn objCn) const {
  return lookUp(
      Statement("SELECT Descripcion as ds FROM Tipos_Documento where predeterminada <> 0"), "ds",
      objCn);
}

Variant ClsTiposDocumento::GetCodPredeterminada(ObjCn objCn) const {
  return lookUp(Statement("SELECT Codigo as ds FROM Tipos_Documento where predeterminada <> 0"),
                "ds", objCn);
}

void ClsTiposDocumento::GetDatosPredeterminada(Datos& datos) const {
  Statement statement(kDatos);
  statement << " where predeterminada <> 0";
  const RecordsetPtr rows = read(statement, *datos.objCn);
  if (rows->RecordCount() == 0) return;
  takeIssuer(*rows, datos);
  takeColumn(*rows, "Pie", datos.sPie);
  takeColumn(*rows, "Comentarios", datos.sCom);
}

void ClsTiposDocumento::GetLicencia_predeterminada(InOut<std::string> sLicencia,
                                                   ObjCn objCn) const {
  const RecordsetPtr rows =
      read(Statement("SELECT Licencia  FROM Tipos_Documento where predeterminada <> 0"), objCn);
  if (rows->RecordCount() == 0) return;
  sLicencia = "Pendiente";
  takeColumn(*rows, "Licencia", *sLicencia);
}

void ClsTiposDocumento::GetDatosCabecera(Datos& datos) const {
  Statement statement(kDatos);
  statement << " WHERE ( Codigo = '" << spliced(datos.sCod) << "' )";
  const RecordsetPtr rows = read(statement, *datos.objCn);
  if (rows->RecordCount() > 0) takeIssuer(*rows, datos);
}

void ClsTiposDocumento::GetDatosEmpresa(Datos& datos) const {
  Statement statement(kDatosEmpresa);
  if (datos.bPredeterminada) {
    statement << " WHERE ( predeterminada <> 0 )";
  } else {
    statement << " WHERE ( Codigo = '" << spliced(datos.sCod) << "' )";
  }
  const RecordsetPtr rows = read(statement, *datos.objCn);
  if (rows->RecordCount() == 0) return;
  takeIssuer(*rows, datos);
  takeColumn(*rows, "Provincia", datos.sProv);
  takeColumn(*rows, "e_Mail", datos.sMail);
}

bool ClsTiposDocumento::ExistePredeterminada(ObjCn objCn) const {
  return anyRow(Statement("SELECT Codigo FROM Tipos_Documento where predeterminada <> 0"), objCn);
}

bool ClsTiposDocumento::esPersonaFisica(ObjCn objCn) const {
  return VerificaeEsPersonaFisica(
      joined(lookUp(Statement("SELECT ID_fiscal FROM Tipos_Documento WHERE predeterminada <> 0"),
                    "ID_fiscal", objCn)));
}

void ClsTiposDocumento::ReadBLOB(InOut<std::string> Source) {
  readLogotipo(primary(), *Source);
}

const Component& ClsTiposDocumento::component() {
  using C = ClsTiposDocumento;
  static const Component table(
      "ClsTiposDocumento", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B005}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail(
          {
              frameMember("GetRptPath"),
              frameMember("GetConnectionStrToRpt"),
              frameMember("sClassName"),
              frameMember("GetConnection"),
              frameMember("GetConnectionStr"),
              property("bEsPredeterminada", &C::bEsPredeterminada),
              property("VerificaeEsPersonaFisica", &C::VerificaeEsPersonaFisica, "sId"),
              member("GetPredeterminada", &C::GetPredeterminada, "[objCn]"),
              member("GetCodPredeterminada", &C::GetCodPredeterminada, "[objCn]"),
              member("GetDatosPredeterminada", &C::GetDatosPredeterminada,
                     {parameter("out sNom", &Datos::sNom), parameter("out sEmpr", &Datos::sEmpr),
                      parameter("out sNif", &Datos::sNif), parameter("out sdir", &Datos::sdir),
                      parameter("out sCp", &Datos::sCp), parameter("out sPob", &Datos::sPob),
                      parameter("[out stel]", &Datos::stel), parameter("[out sPie]", &Datos::sPie),
                      parameter("[out sCom]", &Datos::sCom), parameter("[objCn]", &Datos::objCn)}),
              member("GetLicencia_predeterminada", &C::GetLicencia_predeterminada,
                     "inout sLicencia, [objCn]"),
              member("GetDatosCabecera", &C::GetDatosCabecera,
                     {parameter("sCod", &Datos::sCod), parameter("out sNom", &Datos::sNom),
                      parameter("out sEmpr", &Datos::sEmpr), parameter("out sNif", &Datos::sNif),
                      parameter("out sdir", &Datos::sdir), parameter("out sCp", &Datos::sCp),
                      parameter("out sPob", &Datos::sPob), parameter("out stel", &Datos::stel),
                      parameter("[objCn]", &Datos::objCn)}),
              member("GetDatosEmpresa", &C::GetDatosEmpresa,
                     {parameter("sCod", &Datos::sCod), parameter("out sNom", &Datos::sNom),
                      parameter("out sEmpr", &Datos::sEmpr), parameter("out sNif", &Datos::sNif),
                      parameter("out sdir", &Datos::sdir), parameter("out sCp", &Datos::sCp),
                      parameter("out sPob", &Datos::sPob), parameter("out sProv", &Datos::sProv),
                      parameter("out stel", &Datos::stel), parameter("out sMail", &Datos::sMail),
                      parameter("[objCn]", &Datos::objCn),
                      parameter("[bPredeterminada]", &Datos::bPredeterminada)}),
              member("ExistePredeterminada", &C::ExistePredeterminada, "[objCn]"),
              member("esPersonaFisica", &C::esPersonaFisica, "[objCn]"),
              member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
              frameMember("NuevoCodigo"),
              frameMember("SeguridadPermiso"),
              frameMember("CodigoLibre"),
          },
          {member("ReadBLOB", &C::ReadBLOB, "inout Source")}));
  return table;
}

}  // namespace tavelor
