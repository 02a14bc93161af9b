// SPDX-License-Identifier: MIT
// The component table of ClsClientes.
#include <array>

#include "tavelor/companions/active_row.hpp"
#include "tavelor/companions/profile_slots.hpp"
#include "tavelor/customers/clientes.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/controls.hpp"

namespace tavelor {

namespace {

using C = ClsClientes;

constexpr std::string_view kOf = "id, [objCn]";
constexpr std::string_view kOfId = "vId, [objCn]";
constexpr std::string_view kOnAll = "[cnnActive]";

std::vector<Member> fiscalSlots() {
  return {
      member("EsNIF", &C::EsNIF, "s"),
      member("EsNIE", &C::EsNIE, "s"),
      member("EsCIF", &C::EsCIF, "inout s"),
      member("LimpiarNIFCIF", &C::LimpiarNIFCIF, "[objCn]"),
      member("Tipo_Id_Fiscal", &C::Tipo_Id_Fiscal, "s"),
      member("LimpiarNIFCIF_v1", &C::LimpiarNIFCIF_v1, "[objCn]"),
      member("ValidarNIFCIF", &C::ValidarNIFCIF, "valorOriginal"),
      member("ObtenerBloqueo", &C::ObtenerBloqueo),
      member("ExisteCli", &C::ExisteCli, kOfId),
      member("ExisteNif", &C::ExisteNif, kOfId),
      member("ExisteExternalID", &C::ExisteExternalID, kOfId),
      member("ExistenCentros", &C::ExistenCentros, "[objCn]"),
      member("EstaDisponible", &C::EstaDisponible, kOfId),
      member("ExistenRegistros_consulta", &C::ExistenRegistros_consulta, "ssql, [objCn]"),
      member("ExistenClientesSinCodigoPostal", &C::ExistenClientesSinCodigoPostal, "[objCn]"),
      member("ExistenClientesSinIdFiscal", &C::ExistenClientesSinIdFiscal, "[objCn]"),
  };
}

std::vector<Member> pathSlots() {
  return {
      frameMember("GetRptPath"),
      member("GetExportPath", &C::GetExportPath, "inout sExportPath"),
      frameMember("sClassName"),
      member("ObtenerRegistroActivo", &C::ObtenerRegistroActivo, kActiveRowParameters),
      member("GetTxtFile", &C::GetTxtFile),
      member("GetTxtFile_email", &C::GetTxtFile_email),
      frameMember("GetConnection"),
      member("GetConnectionStrToRpt", &C::GetConnectionStrToRpt,
             "out sDbtype, out sDataSource, out sCatalog, out sUser, out sPasw, [bHistorico]"),
      frameMember("GetConnectionStr"),
  };
}

std::vector<Member> changeSlots() {
  return {
      member("CambiarTarifa", &C::CambiarTarifa, "vId, sTarifa, [cnnActive]"),
      member("CambiarEstadoCliente", &C::CambiarEstadoCliente, "vId, bModo, [cnnActive]"),
      member("Actualizar_Rs_La_3", &C::Actualizar_Rs_La_3, "sRS, sLA, [cnnActive]"),
      member("Actualizar_Nif_Cif", &C::Actualizar_Nif_Cif, kOnAll),
      member("ActualizarCabeceraFra", &C::ActualizarCabeceraFra, "sId, [cnnActive]"),
      member("ActualizarExternalId", &C::ActualizarExternalId, "sId, sExtId, [cnnActive]"),
      member("ActualizaClientesExentosIVA", &C::ActualizaClientesExentosIVA, kOnAll),
      member("Cancelar_report_Facturas", &C::Cancelar_report_Facturas, kOnAll),
      member("Actualizar_Param_Rpt", &C::Actualizar_Param_Rpt,
             "ssql, [cnnActive], [vFchIni], [vFchFin], [iIndx]"),
  };
}

std::vector<Member> readingSlots() {
  return {
      member("GetSerie", &C::GetSerie),
      member("GetLista", &C::GetLista),
      member("GetRefPortes", &C::GetRefPortes),
      member("GetFacturacion", &C::GetFacturacion),
      member("IncludeTax", &C::IncludeTax),
      member("PortesAlConvertir", &C::PortesAlConvertir),
      member("NoesFacturable", &C::NoesFacturable, kOf),
      member("esFacturable", &C::esFacturable),
      member("EsIvaDeducible", &C::EsIvaDeducible),
      member("GetCodigo_fac", &C::GetCodigo_fac),
      member("GetCodigo_Banco", &C::GetCodigo_Banco),
      member("GetTipoCli", &C::GetTipoCli),
      member("GetLenMaxDigit", &C::GetLenMaxDigit, "[objCn]"),
      member("esDistribuidor", &C::esDistribuidor),
      member("esAsociado", &C::esAsociado),
      member("esDbFile", &C::esDbFile),
      member("esActivo", &C::esActivo),
      member("esSerie_as", &C::esSerie_as),
      member("esPortesNoIncl", &C::esPortesNoIncl),
  };
}

std::vector<AggregateParameter<C::Cabecera>> partyParameters(bool withMail) {
  using P = C::Cabecera;
  std::vector<AggregateParameter<P>> parameters = {
      parameter("id", &P::id),
      parameter("out idTel", &P::idTel),
      parameter("out sNif", &P::sNif),
      parameter("out sNombre", &P::sNombre),
      parameter("out sEmpresa", &P::sEmpresa),
      parameter("out sDireccion", &P::sDireccion),
      parameter("out sCp", &P::sCp),
      parameter("out sPoblacion", &P::sPoblacion),
      parameter("out sProvincia", &P::sProvincia),
  };
  if (withMail) parameters.push_back(parameter("out sMail", &P::sMail));
  parameters.push_back(parameter("[objCn]", &P::objCn));
  return parameters;
}

std::vector<AggregateParameter<C::Facturacion>> customerProfileParameters() {
  std::vector<AggregateParameter<C::Facturacion>> parameters = profileParameters();
  parameters.push_back(parameter("[out sNom]", &C::Facturacion::sNom));
  return parameters;
}

std::vector<AggregateParameter<C::Facturar>> invoicingParameters() {
  using P = C::Facturar;
  return {
      parameter("inout id", &P::id),
      parameter("out dDto", &P::dDto),
      parameter("out sBanco", &P::sBanco),
      parameter("out dBonificacion", &P::dBonificacion),
      parameter("out dImpBonif", &P::dImpBonif),
      parameter("out dBonificacion2", &P::dBonificacion2),
      parameter("out dImpBonif2", &P::dImpBonif2),
      parameter("out dBonificacion3", &P::dBonificacion3),
      parameter("out dImpBonif3", &P::dImpBonif3),
      parameter("out sFactura_A", &P::sFactura_A),
      parameter("out sFactura_B", &P::sFactura_B),
      parameter("out sFactura_C", &P::sFactura_C),
      parameter("out dIrpfCli", &P::dIrpfCli),
      parameter("out dGastos", &P::dGastos),
      parameter("out dDtoRpt", &P::dDtoRpt),
      parameter("out sRefArt", &P::sRefArt),
      parameter("[objCn]", &P::objCn),
  };
}

std::vector<AggregateParameter<C::Bonificar>> bonusParameters() {
  using P = C::Bonificar;
  return {
      parameter("id", &P::id),
      parameter("out dBonificacion", &P::dBonificacion),
      parameter("out dImpBonif", &P::dImpBonif),
      parameter("out dBonificacion2", &P::dBonificacion2),
      parameter("out dImpBonif2", &P::dImpBonif2),
      parameter("out dBonificacion3", &P::dBonificacion3),
      parameter("out dImpBonif3", &P::dImpBonif3),
      parameter("out bCondicion_1_SI", &P::bCondicion_1_SI),
      parameter("[objCn]", &P::objCn),
  };
}

std::vector<AggregateParameter<C::Centros>> centreParameters() {
  using P = C::Centros;
  return {
      parameter("id", &P::id),
      parameter("out sOf_c_cod", &P::sOf_c_cod),
      parameter("out sOf_c_nom", &P::sOf_c_nom),
      parameter("out sOg_c_cod", &P::sOg_c_cod),
      parameter("out sOg_c_nom", &P::sOg_c_nom),
      parameter("out sUt_c_cod", &P::sUt_c_cod),
      parameter("out sUt_c_nom", &P::sUt_c_nom),
      parameter("out sOp_c_cod", &P::sOp_c_cod),
      parameter("out sOp_c_nom", &P::sOp_c_nom),
      parameter("[objCn]", &P::objCn),
  };
}

std::vector<Member> profileSlots() {
  return {
      member("GetDatosCabecera", &C::GetDatosCabecera, partyParameters(false)),
      member("esPersonaFisica", &C::esPersonaFisica),
      member("GetDatosEmpresa", &C::GetDatosEmpresa, partyParameters(true)),
      member("GetAdministrativeCentres", &C::GetAdministrativeCentres, centreParameters()),
      member("GetDatosFacturar", &C::GetDatosFacturar, invoicingParameters()),
      member("GetDatosBonificar", &C::GetDatosBonificar, bonusParameters()),
      member("GetDto", &C::GetDto, "id, out dDtoRpt, [objCn]"),
      member("GetOtrosDatosFacturar", &C::GetOtrosDatosFacturar, "inout id, out sPago, [objCn]"),
      member("GetAviso", &C::GetAviso, kOf),
      member("GetDatosFacturacion", &C::GetDatosFacturacion, customerProfileParameters()),
      member("GetDtoRpt", &C::GetDtoRpt, "id, out dDtoRpt, [objCn]"),
      member("GetIrpfSerie", &C::GetIrpfSerie, "id, sSerie, [objCn]"),
      member("GetDtoSerie", &C::GetDtoSerie, "id, sSerie, [objCn]"),
      member("GetCtaTesoreria", &C::GetCtaTesoreria, "id, out sCtaTes, [objCn]"),
      member("GetDocPath", &C::GetDocPath, "inout sDocPath"),
      member("GetDocumentos", &C::GetDocumentos,
             "inout id, out sDocumento_P, out sDocumento_A, out sDocumento_F, [objCn]"),
      member("ObtenerClientesFacturar", &C::ObtenerClientesFacturar,
             "inout cCollection, sTipo, [objCn]"),
      member("Create_xml_Clientes", &C::Create_xml_Clientes, "sPath, [objCn]"),
      member("ObtenerCodigo", &C::ObtenerCodigo, "inout sMidato"),
      member("ObtenerColCentrosProd", &C::ObtenerColCentrosProd, "[objCn]"),
      member("ObtenerColActivos", &C::ObtenerColActivos, "[objCn]"),
      member("ObtenerColAsociados", &C::ObtenerColAsociados, kOfId),
      member("ObtenerMailDoc", &C::ObtenerMailDoc, kOfId),
      member("ObtenerMailDoc_Admin", &C::ObtenerMailDoc_Admin, kOfId),
      member("ObtenerRiesgo", &C::ObtenerRiesgo, kOfId),
      member("ObtenerRazonSocial", &C::ObtenerRazonSocial),
      member("ObtenerCP", &C::ObtenerCP),
      member("ObtenerPrintPaper", &C::ObtenerPrintPaper, kOfId),
      member("ObtenerRpt_Fac", &C::ObtenerRpt_Fac, kOfId),
      member("ObtenerRpt_Alb", &C::ObtenerRpt_Alb, kOfId),
      member("ObtenerRpt_dec", &C::ObtenerRpt_dec, kOfId),
      member("ObtenerHorario", &C::ObtenerHorario),
      member("ObtenerTexto", &C::ObtenerTexto),
      member("IniciaXML", &C::IniciaXML, "sPath"),
  };
}

// Insertar takes the last five between the series and the connection, and one behind it.
std::vector<AggregateParameter<C::Alta>> writeParameters(bool whole) {
  using P = C::Alta;
  std::vector<AggregateParameter<P>> parameters = {
      parameter("vId", &P::vId),
      parameter("sNombre", &P::sNombre),
      parameter("sRazonSocial", &P::sRazonSocial),
      parameter("sNif", &P::sNif),
      parameter("sdir", &P::sdir),
      parameter("sCp", &P::sCp),
      parameter("sPob", &P::sPob),
      parameter("sProv", &P::sProv),
      parameter("stel", &P::stel),
      parameter("sMov", &P::sMov),
      parameter("sEmail", &P::sEmail),
      parameter("seMailDoc", &P::seMailDoc),
      parameter("bActivo", &P::bActivo),
      parameter("dDescuento", &P::dDescuento),
      parameter("sTarifa", &P::sTarifa),
      parameter("sSerie", &P::sSerie),
  };
  const auto add = [&](AggregateParameter<P> more) { parameters.push_back(std::move(more)); };
  if (whole) {
    add(parameter("sConcepto", &P::sConcepto));
    add(parameter("stpcli", &P::stpcli));
    add(parameter("inout sLista", &P::sLista));
    add(parameter("dFecha", &P::dFecha));
  }
  add(parameter("[objCn]", &P::objCn));
  if (whole) add(parameter("[sExternalId]", &P::sExternalId));
  return parameters;
}

std::vector<Member> writingSlots() {
  return {
      member("Actualizar", &C::Actualizar, writeParameters(false)),
      member("Insertar", &C::Insertar, writeParameters(true)),
      member("Actualizar_A_Nuevo_Registro", &C::Actualizar_A_Nuevo_Registro,
             "IdCliente, bCopy, mdigitos, [cnnActive]"),
      member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
      frameMember("NuevoCodigo"),
      frameMember("SeguridadPermiso"),
      frameMember("CodigoLibre"),
      member("CtaLibre", &C::CtaLibre, "vId, vIdCodigo, [objCn]"),
  };
}

std::vector<Member> ownSlots() {
  std::vector<Member> slots = fiscalSlots();
  for (std::vector<Member>& more :
       std::array{pathSlots(), changeSlots(), readingSlots(), profileSlots(), writingSlots()}) {
    slots.insert(slots.end(), more.begin(), more.end());
  }
  return slots;
}

std::vector<Member> allSlots() {
  std::vector<Member> slots = withFrameTail(
      ownSlots(), {
                      member("AddNew", &C::AddNew, "[bDefVal]"),
                      member("Update", &C::Update),
                      member("ToHtmlGrid", &C::ToHtmlGrid,
                             "sPersonalFolder, clColfields, [bDoclone], [sSelecSql], [bFilter]"),
                      member("ToHtmlGrid_V0", &C::ToHtmlGrid_V0,
                             "clColfields, [bDoclone], [sSelecSql], [bFilter]"),
                  });
  return withSlotsBehind("AbsolutePosition",
                         {
                             property("sQBanco", &C::sQBanco),
                             property("sQFormaPago", &C::sQFormaPago),
                             property("sQMailDoc", &C::sQMailDoc),
                         },
                         std::move(slots));
}

}  // namespace

const Component& C::component() {
  static const Component table(
      "ClsClientes", "{A93D2C17-5B84-4F6E-8D10-7C2E5F90B301}", "Clientes",
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); }, allSlots());
  return table;
}

}  // namespace tavelor
