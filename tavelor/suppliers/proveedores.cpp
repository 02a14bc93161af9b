// SPDX-License-Identifier: MIT
// ClsProveedores, the supplier master.
#include "tavelor/suppliers/proveedores.hpp"

#include <array>

#include "tavelor/companions/active_row.hpp"
#include "tavelor/companions/profile_slots.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Proveedores: one row a supplier.

namespace {

constexpr std::string_view kTodos =
    "SELECT Codigo as Código, Activo, Nombre, Razon_Social as Empresa, Contacto, NIF,"
    " Direccion as Dirección, Codigo_Postal, Poblacion as Población, Provincia,"
    " Telefono as Teléfono, Telefono_2 as Teléfono_2, Movil as Móvil, Fax, E_Mail, Http,"
    " Cta_Tesoreria, Cta_Contable, Cta_Contrapartida, IRPF, Impuesto,Recargo, Divisa,"
    " Forma_Pago as Pago, Transportista, Banco,  Descuento as Dto, Descuento_pp as Dto_PP, Tarifa,"
    " Serie, Bonificacion_1 as Bonificación, Condicion_1 as Importe, Concepto,"
    " Tipo_Factura_A as Factura_A, Tipo_Factura_B as Factura_B, Tipo_Factura_C as Factura_C,"
    " Documento_P, Documento_A, Documento_F, Sub as Subcontratado FROM Proveedores";

constexpr std::string_view kSeleccion =
    "SELECT Codigo AS Código, Razon_social AS Descripción FROM Proveedores";

constexpr std::string_view kUsable = " WHERE ( activo <> 0 )";

// Only the combo box and the usual list leave subcontractors out; the other choices show them among
// the rest. "deeliminartipofactura" does not look at the invoice type of series C, as that of the
// customers does not.
constexpr std::array kModes = {
    Mode{"seleccioncombo", kSeleccion, " WHERE ( activo <> 0 and Sub = 0 ) Order by Razon_Social"},
    Mode{"seleccionunico", kSeleccion, " WHERE ( codigo ='{id}')"},
    Mode{"seleccion", kSeleccion, kUsable},
    Mode{"seleccionmixta", kSeleccion, kUsable},
    Mode{"seleccionsub", kSeleccion, " WHERE ( activo <> 0 and Sub <> 0 )"},
    Mode{"selecciontodos", kSeleccion, kUsable},
    Mode{"deeliminardivisa", kTodos, "  Where ( Divisa =  '{id}')"},
    Mode{"deeliminarformapago", kTodos, "  Where ( Forma_Pago =  '{id}')"},
    Mode{"deeliminarbanco", kTodos, "  Where ( Banco =  '{id}')"},
    Mode{"deeliminartransportista", kTodos, "  Where ( Transportista =  '{id}')"},
    Mode{"deeliminardocumento", kTodos,
         "  Where ( Documento_P =  '{id}' or Documento_A =  '{id}' or Documento_F =  '{id}')"},
    Mode{"deeliminartipofactura", kTodos,
         "  Where ( Tipo_Factura_A =  '{id}' or Tipo_Factura_B =  '{id}')"},
    Mode{"sub", kTodos, "  Where ( Sub <> 0)"},
    Mode{kAnyOtherWord, kTodos, "  Where ( Sub = 0)"},
};

constexpr ClassInfo kInfo = {
    .word = "Proveedores", .table = "Proveedores", .modes = kModes, .find = FindForm::kPrefix};

constexpr std::string_view kProfile =
    "SELECT Codigo, Razon_Social  , Activo, Transportista , Forma_Pago as Pago, Divisa, Impuesto,"
    " IRPF, Serie, Tarifa , Descuento as Dto, Descuento_pp as Dto_PP , Cta_Contable,"
    " Cta_Contrapartida, Banco, Recargo , Concepto, Bonificacion_1 as Bonificación,"
    " Condicion_1 as ImpBonif , Tipo_Factura_A as Factura_A, Tipo_Factura_B as Factura_B,"
    " Tipo_Factura_C as Factura_C , Documento_P, Documento_A, Documento_F FROM Proveedores WHERE";

constexpr std::string_view kNamed = "SELECT Razon_Social FROM Proveedores";
constexpr std::string_view kOfUsable = " WHERE ( Codigo =  '{id}' and activo <> 0 )";

std::string legalName(Recordset& rows) {
  std::string name;
  takeColumnOr(rows, "Razon_Social", "No válido", name);
  return name;
}

bool isSub(Recordset& rows) {
  return asFlag(rows.Field("sub").Value());
}

}  // namespace

ClsProveedores::ClsProveedores()
    : BusinessPartner(kInfo),
      esSubcontratado(*this, {"SELECT codigo, sub FROM Proveedores", " WHERE ( Codigo =  '{id}')",
                              false, isSub}),
      GetRazonSocial(*this, {kNamed, kOfUsable, "", legalName}) {}

std::string ClsProveedores::GetTxtFile() const {
  mustBeHome();
  return reportFile("Proveedores.txt");
}

// ---------------------------------------------------------------------------------------------
// Rows

void ClsProveedores::AddNew(bool bDefVal) {
  RecordClass::AddNew(bDefVal);
}

void ClsProveedores::setDefaults(bool bDefVal) {
  if (!bDefVal) return;
  const auto set = [this](std::string_view field, const Variant& to) {
    primary().Field(field).Value(to);
  };
  set("Activo", std::int32_t{-1});
  set("Serie", "A");
  set("Tarifa", "A");
  set("Cta_Tesoreria", "400");
  set("Cta_Contable", "400");
  set("Cta_Contrapartida", "600000");
  Update_Sub(false);
}

void ClsProveedores::Update_Sub(bool bsub) {
  primary().Field("Subcontratado").Value(bsub);
}

// ---------------------------------------------------------------------------------------------
// One supplier

bool ClsProveedores::GetRazon_Social(const Variant& id, InOut<std::string> sRazon,
                                     ObjCn objCn) const {
  Statement statement(kNamed);
  statement << withId(kOfUsable, id);
  const RecordsetPtr rows = read(statement, *objCn);
  if (rows->RecordCount() == 0) return false;
  sRazon = legalName(*rows);
  return true;
}

bool ClsProveedores::GetDatosFacturacion(Facturacion& datos) const {
  return profile(kProfile, datos) != nullptr;
}

void ClsProveedores::GetDatosFacturar(Facturar& datos) const {
  Statement statement(kProfile);
  statement << " ( Codigo =  '" << spliced(joined(datos.id)) << "' and activo <> 0 )";
  const RecordsetPtr rows = read(statement, *datos.objCn);
  if (rows->RecordCount() == 0) return;
  takeColumn(*rows, "Codigo", datos.id);
  takeOfDocuments(*rows, datos);
}

// ---------------------------------------------------------------------------------------------
// The component table

const Component& ClsProveedores::component() {
  using C = ClsProveedores;
  static const Component table(
      "ClsProveedores", "{3E8F1B64-97C2-4D0A-B5E3-0C6A29D481F1}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail(
          {
              frameMember("GetRptPath"),
              frameMember("GetConnectionStrToRpt"),
              frameMember("sClassName"),
              frameMember("GetConnection"),
              frameMember("GetConnectionStr"),
              member("GetDocPath", &C::GetDocPath, "inout sDocPath"),
              member("GetTxtFile", &C::GetTxtFile),
              member("ObtenerRegistroActivo", &C::ObtenerRegistroActivo, kActiveRowParameters),
              member("ObtenerCodigo", &C::ObtenerCodigo, "inout sMidato"),
              member("GetCtaTesoreria", &C::GetCtaTesoreria, "id, out sCtaTes, [objCn]"),
              member("GetRazon_Social", &C::GetRazon_Social, "id, out sRazon, [objCn]"),
              member("GetRazonSocial", &C::GetRazonSocial),
              member("GetDatosFacturacion", &C::GetDatosFacturacion, profileParameters()),
              member(
                  "GetDatosFacturar", &C::GetDatosFacturar,
                  {parameter("inout id", &Facturar::id), parameter("out sBanco", &Facturar::sBanco),
                   parameter("out dBonificacion", &Facturar::dBonificacion),
                   parameter("out dImpBonif", &Facturar::dImpBonif),
                   parameter("out sFactura_A", &Facturar::sFactura_A),
                   parameter("out sFactura_B", &Facturar::sFactura_B),
                   parameter("out sFactura_C", &Facturar::sFactura_C),
                   parameter("out sDocumento_P", &Facturar::sDocumento_P),
                   parameter("out sDocumento_A", &Facturar::sDocumento_A),
                   parameter("out sDocumento_F", &Facturar::sDocumento_F),
                   parameter("[objCn]", &Facturar::objCn)}),
              member("CtaLibre", &C::CtaLibre, "vId, vIdCodigo, [objCn]"),
              member("Update_Sub", &C::Update_Sub, "[bsub]"),
              member("esSubcontratado", &C::esSubcontratado),
              member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
              frameMember("NuevoCodigo"),
              frameMember("SeguridadPermiso"),
              frameMember("CodigoLibre"),
          },
          {member("AddNew", &C::AddNew, "[bDefVal]")}));
  return table;
}

}  // namespace tavelor
