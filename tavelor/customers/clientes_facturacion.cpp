// SPDX-License-Identifier: MIT
// ClsClientes: what a customer brings to a document.
#include "tavelor/customers/clientes.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/prompt_global.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

// A warning that documents take up is not shown: it stands on them.
void showWarning(Recordset& rows) {
  if (!asFlag(rows.Field("Aviso").Value()) || asFlag(rows.Field("Incorporar").Value())) return;
  std::string warning;
  takeColumn(rows, "Texto_Aviso", warning);
  Apartment::current().promptGlobal().Message(Variant(warning), "", "");
}

// The column of a series, by the place of its letter.
constexpr std::string_view kSeries = "abc";

}  // namespace

bool ClsClientes::GetDatosFacturacion(Facturacion& datos) const {
  const RecordsetPtr rows = profile(
      "SELECT Codigo, Razon_Social, Nombre  , Activo, Transportista , Forma_Pago as Pago, Divisa,"
      " Impuesto, IRPF, Serie, Tarifa , Descuento as Dto, Descuento_pp as Dto_PP , Cta_Contable,"
      " Cta_Contrapartida, Banco, Recargo , Concepto, Bonificacion_1 as Bonificación,"
      " Condicion_1 as ImpBonif , Tipo_Factura_A as Factura_A, Tipo_Factura_B as Factura_B,"
      " Tipo_Factura_C as Factura_C , Documento_P, Documento_A, Documento_F, Aviso, Incorporar,"
      " Texto_Aviso FROM Clientes WHERE",
      datos);
  if (!rows) return false;
  takeColumn(*rows, "Nombre", datos.sNom);
  showWarning(*rows);
  return true;
}

void ClsClientes::GetAviso(const Variant& id, ObjCn objCn) const {
  const RecordsetPtr rows = read(withId("SELECT Codigo , Aviso, Incorporar, Texto_Aviso"
                                        " FROM Clientes WHERE ( Codigo =  '{id}')",
                                        id),
                                 *objCn);
  if (rows->RecordCount() > 0) showWarning(*rows);
}

// The discount handed out is that of prompt payment, not that of lines.
void ClsClientes::GetDatosFacturar(Facturar& datos) const {
  const RecordsetPtr rows =
      read(withId("SELECT Codigo, Razon_Social  , Activo, Transportista , Forma_Pago as Pago,"
                  " Divisa, Impuesto, IRPF, Serie, Tarifa , Descuento as Dto,"
                  " Descuento_pp as Dto_PP, Descuento_R as Dto_R , Cta_Contable,"
                  " Cta_Contrapartida, Banco, Recargo , Concepto ,"
                  " Bonificacion_1 as Bonificación, Condicion_1 as ImpBonif ,"
                  " Bonificacion_2 as Bonificación2, Condicion_2 as ImpBonif2 ,"
                  " Bonificacion_3 as Bonificación3, Condicion_3 as ImpBonif3 ,"
                  " Tipo_Factura_A as Factura_A, Tipo_Factura_B as Factura_B,"
                  " Tipo_Factura_C as Factura_C, Gastos, Codigo_Portes"
                  " FROM Clientes WHERE ( Codigo =  '{id}' and activo <> 0 )",
                  datos.id),
           *datos.objCn);
  if (rows->RecordCount() == 0) return;
  takeColumn(*rows, "Codigo", datos.id);
  takeColumn(*rows, "Dto_PP", datos.dDto);
  takeColumn(*rows, "Banco", datos.sBanco);
  takeColumn(*rows, "Bonificación", datos.dBonificacion);
  takeColumn(*rows, "ImpBonif", datos.dImpBonif);
  takeColumn(*rows, "Bonificación2", datos.dBonificacion2);
  takeColumn(*rows, "ImpBonif2", datos.dImpBonif2);
  takeColumn(*rows, "Bonificación3", datos.dBonificacion3);
  takeColumn(*rows, "ImpBonif3", datos.dImpBonif3);
  takeColumn(*rows, "Factura_A", datos.sFactura_A);
  takeColumn(*rows, "Factura_B", datos.sFactura_B);
  takeColumn(*rows, "Factura_C", datos.sFactura_C);
  takeColumn(*rows, "IRPF", datos.dIrpfCli);
  takeColumn(*rows, "Gastos", datos.dGastos);
  takeColumn(*rows, "Dto_R", datos.dDtoRpt);
  takeColumn(*rows, "Codigo_Portes", datos.sRefArt);
}

void ClsClientes::GetOtrosDatosFacturar(InOut<Variant> id, InOut<std::string> sPago,
                                        ObjCn objCn) const {
  const RecordsetPtr rows =
      read(withId("SELECT Codigo, Razon_Social  , Activo, Transportista , Forma_Pago as Pago,"
                  " Divisa, Impuesto, IRPF, Serie, Tarifa , Descuento as Dto,"
                  " Descuento_pp as Dto_PP, Descuento_R as Dto_R , Cta_Contable,"
                  " Cta_Contrapartida, Banco, Recargo , Concepto,"
                  " Bonificacion_1 as Bonificación, Condicion_1 as ImpBonif,"
                  " Bonificacion_2 as Bonificación2, Condicion_2 as ImpBonif2 ,"
                  " Tipo_Factura_A as Factura_A, Tipo_Factura_B as Factura_B,"
                  " Tipo_Factura_C as Factura_C, Gastos, Codigo_Portes"
                  " FROM Clientes WHERE ( Codigo =  '{id}' and activo <> 0 )",
                  *id),
           *objCn);
  if (rows->RecordCount() == 0) return;
  takeColumn(*rows, "Codigo", *id);
  takeColumn(*rows, "Pago", *sPago);
}

void ClsClientes::GetDatosBonificar(Bonificar& datos) const {
  const RecordsetPtr rows =
      read(withId("SELECT Codigo  , Bonificacion_1 as Bonificación, Condicion_1 as ImpBonif ,"
                  " Bonificacion_2 as Bonificación2, Condicion_2 as ImpBonif2 ,"
                  " Bonificacion_3 as Bonificación3, Condicion_3 as ImpBonif3 , Condicion_1_SI"
                  " FROM Clientes WHERE ( Codigo =  '{id}' and activo <> 0 )",
                  datos.id),
           *datos.objCn);
  if (rows->RecordCount() == 0) return;
  takeColumn(*rows, "Bonificación", datos.dBonificacion);
  takeColumn(*rows, "ImpBonif", datos.dImpBonif);
  takeColumn(*rows, "Bonificación2", datos.dBonificacion2);
  takeColumn(*rows, "ImpBonif2", datos.dImpBonif2);
  takeColumn(*rows, "Bonificación3", datos.dBonificacion3);
  takeColumn(*rows, "ImpBonif3", datos.dImpBonif3);
  takeColumn(*rows, "Condicion_1_SI", datos.bCondicion_1_SI);
}

// ---------------------------------------------------------------------------------------------
// Party data

RecordsetPtr ClsClientes::party(Statement::Constant more, Cabecera& datos) const {
  Statement statement(
      "SELECT Nombre, Razon_Social as Empresa, NIF,  Direccion, Codigo_Postal, Poblacion,"
      " Provincia, Telefono");
  statement << more << " FROM Clientes WHERE ( Codigo =  '" << spliced(joined(datos.id))
            << "' and activo <> 0 )";
  RecordsetPtr rows = read(statement, *datos.objCn);
  if (rows->RecordCount() == 0) return nullptr;
  takeColumn(*rows, "Telefono", datos.idTel);
  takeColumn(*rows, "NIF", datos.sNif);
  takeColumn(*rows, "Nombre", datos.sNombre);
  takeColumn(*rows, "Empresa", datos.sEmpresa);
  takeColumn(*rows, "Direccion", datos.sDireccion);
  takeColumn(*rows, "Codigo_Postal", datos.sCp);
  takeColumn(*rows, "Poblacion", datos.sPoblacion);
  takeColumn(*rows, "Provincia", datos.sProvincia);
  return rows;
}

void ClsClientes::GetDatosCabecera(Cabecera& datos) const {
  party({}, datos);
}

void ClsClientes::GetDatosEmpresa(Cabecera& datos) const {
  if (const RecordsetPtr rows = party(", E_Mail", datos)) takeColumn(*rows, "E_Mail", datos.sMail);
}

void ClsClientes::GetAdministrativeCentres(Centros& datos) const {
  const RecordsetPtr rows =
      read(withId("SELECT Cod_Of_Contable as Of_c_cod, Nom_Of_Contable as Of_c_nom,"
                  " Cod_Or_Gestor as Og_c_cod, Nom_Or_Gestor as Og_c_nom,"
                  " Cod_Un_Tramit as Ut_c_cod, Nom_Un_Tramit as Ut_c_nom,"
                  " Cod_Or_Propon as Op_c_cod, Nom_Or_Propon as Op_c_nom"
                  " FROM Clientes WHERE ( Codigo =  '{id}' and activo <> 0 )",
                  datos.id),
           *datos.objCn);
  if (rows->RecordCount() == 0) return;
  takeColumn(*rows, "Of_c_cod", datos.sOf_c_cod);
  takeColumn(*rows, "Of_c_nom", datos.sOf_c_nom);
  takeColumn(*rows, "Og_c_cod", datos.sOg_c_cod);
  takeColumn(*rows, "Og_c_nom", datos.sOg_c_nom);
  takeColumn(*rows, "Ut_c_cod", datos.sUt_c_cod);
  takeColumn(*rows, "Ut_c_nom", datos.sUt_c_nom);
  takeColumn(*rows, "Op_c_cod", datos.sOp_c_cod);
  takeColumn(*rows, "Op_c_nom", datos.sOp_c_nom);
}

// ---------------------------------------------------------------------------------------------
// Discounts, withholding, account, documents

bool ClsClientes::GetDto(const Variant& id, InOut<double> dDtoRpt, ObjCn objCn) const {
  const RecordsetPtr rows =
      read(withId("SELECT Descuento FROM Clientes WHERE ( Codigo =  '{id}')", id), *objCn);
  if (rows->RecordCount() == 0) return false;
  const double discount = asNumber(rows->Field("Descuento").Value());
  dDtoRpt = discount > 0 ? discount : 0;
  return discount > 0;
}

bool ClsClientes::GetDtoRpt(const Variant& id, InOut<double> dDtoRpt, ObjCn objCn) const {
  const RecordsetPtr rows = read(
      withId("SELECT Descuento_R FROM Clientes WHERE ( Codigo =  '{id}' and activo <> 0 )", id),
      *objCn);
  if (rows->RecordCount() > 0) dDtoRpt = asNumber(rows->Field("Descuento_R").Value());
  return true;
}

double ClsClientes::ofSeries(const Statement& statement, std::string_view sSerie,
                             ObjCn objCn) const {
  const RecordsetPtr rows = read(statement, *objCn);
  const std::string letter = text::lower(sSerie);
  const std::size_t place = letter.size() == 1 ? kSeries.find(letter) : std::string_view::npos;
  if (rows->RecordCount() == 0 || place == std::string_view::npos) return 0;
  return asNumber(rows->Field(static_cast<std::int32_t>(place)).Value());
}

double ClsClientes::GetIrpfSerie(const Variant& id, std::string_view sSerie, ObjCn objCn) const {
  return ofSeries(withId("SELECT Irpf, Irpf_B, Irpf_C FROM Clientes WHERE ( Codigo =  '{id}')", id),
                  sSerie, *objCn);
}

double ClsClientes::GetDtoSerie(const Variant& id, std::string_view sSerie, ObjCn objCn) const {
  return ofSeries(withId("SELECT Descuento_PP, Descuento_PP_B, Descuento_PP_C FROM Clientes"
                         " WHERE ( Codigo =  '{id}')",
                         id),
                  sSerie, *objCn);
}

void ClsClientes::GetDocumentos(InOut<Variant> id, InOut<std::string> sDocumento_P,
                                InOut<std::string> sDocumento_A, InOut<std::string> sDocumento_F,
                                ObjCn objCn) const {
  const RecordsetPtr rows =
      read(withId("SELECT Codigo , Documento_P, Documento_A, Documento_F FROM Clientes"
                  " WHERE ( Codigo =  '{id}' and activo <> 0 )",
                  *id),
           *objCn);
  if (rows->RecordCount() == 0) return;
  takeColumn(*rows, "Codigo", *id);
  takeColumn(*rows, "Documento_P", *sDocumento_P);
  takeColumn(*rows, "Documento_A", *sDocumento_A);
  takeColumn(*rows, "Documento_F", *sDocumento_F);
}

}  // namespace tavelor
