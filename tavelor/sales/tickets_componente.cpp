// SPDX-License-Identifier: MIT
// The component table of ClsTickets.
#include "tavelor/frame/component.hpp"
#include "tavelor/sales/registros_tickets.hpp"
#include "tavelor/sales/ticket_parameters.hpp"
#include "tavelor/sales/ticket_rows.hpp"
#include "tavelor/sales/tickets.hpp"

namespace tavelor {

namespace {

using C = ClsTickets;
using Documento = C::Documento;
using Lectura = C::Lectura;

constexpr std::string_view kOfTicket = "vId, [objCn]";
constexpr std::string_view kOfSpan =
    "dtFechaIni, dtFechaFin, sCaja, sEmpleado, sSerie, bCerrados, [objCn]";

/// The amount delivered, which is written when a value is given.
Member deliveredSlot() {
  Member slot = property("dQEntrega", static_cast<double (C::*)() const>(&C::dQEntrega));
  const Member let =
      member("dQEntrega", static_cast<void (C::*)(double)>(&C::dQEntrega), "[value]");
  slot.parameters = let.parameters;
  slot.body = [get = slot.body, set = let.body](Object& object, std::span<Variant> arguments) {
    if (!arguments.empty() && !arguments[0].isEmpty()) set(object, arguments);
    return get(object, {});
  };
  return slot;
}

std::vector<Member> rowSlots() {
  return {
      property("bEsPedido", &C::bEsPedido),
      property("sQAlmacen", &C::sQAlmacen),
      property("bEstaFacturado", &C::bEstaFacturado),
      property("iQNumero", &C::iQNumero),
      property("iQDocumento", &C::iQDocumento),
      property("iQDocumentoF", &C::iQDocumentoF),
      property("dQTotal", &C::dQTotal),
      property("dQCambio", &C::dQCambio),
      deliveredSlot(),
      property("sQFpago", &C::sQFpago),
      property("sQReferencia", &C::sQReferencia),
  };
}

std::vector<Member> salesSlots() {
  using Dia = C::VentasDia;
  using Tramo = C::VentasTramo;
  using Entregas = C::Entregas;
  return {
      member("GetMinFecha", &C::GetMinFecha, "[sCaja], [objCn]"),
      member("SumColLinTotalFpagoTickets", &C::SumColLinTotalFpagoTickets, kOfTicket),
      member("ObtenerCol", &C::ObtenerCol, kOfSpan),
      member("ObtenerColCredito", &C::ObtenerColCredito, kOfSpan),
      member("TicketsPendientes", &C::TicketsPendientes, kOfTicket),
      member("ObtenerColVentaContado", &C::ObtenerColVentaContado,
             "dtFechaIni, dtFechaFin, sCaja, sEmpleado, sSerie, bCerrados, bContado, [objCn]"),
      member(
          "VentasTotal", &C::VentasTotal,
          {parameter("dtFecha", &Dia::dtFecha), parameter("sCaja", &Dia::sCaja),
           parameter("sEmpleado", &Dia::sEmpleado), parameter("sSerie", &Dia::sSerie),
           parameter("inout dVentasBase", &Dia::dVentasBase),
           parameter("inout dVentasImpuestos", &Dia::dVentasImpuestos),
           parameter("inout dVentasRecargos", &Dia::dVentasRecargos),
           parameter("inout dVentasTotal", &Dia::dVentasTotal), parameter("[objCn]", &Dia::objCn)}),
      member(
          "VentasTotalContado", &C::VentasTotalContado,
          {parameter("dtFechaIni", &Tramo::dtFechaIni), parameter("dtFechaFin", &Tramo::dtFechaFin),
           parameter("sCaja", &Tramo::sCaja), parameter("sEmpleado", &Tramo::sEmpleado),
           parameter("sSerie", &Tramo::sSerie), parameter("inout dVentasBase", &Tramo::dVentasBase),
           parameter("inout dVentasImpuestos", &Tramo::dVentasImpuestos),
           parameter("inout dVentasRecargos", &Tramo::dVentasRecargos),
           parameter("inout dVentasTotal", &Tramo::dVentasTotal),
           parameter("bCerrados", &Tramo::bCerrados), parameter("[objCn]", &Tramo::objCn)}),
      member("VentasCredito", &C::VentasCredito,
             "dtFechaIni, dtFechaFin, sCaja, sEmpleado, sSerie, inout dVentasCredito, bCerrados, "
             "[objCn]"),
      member("VentasContado", &C::VentasContado,
             "dtFechaIni, dtFechaFin, sCaja, sEmpleado, sSerie, inout dVentasContado, bCerrados, "
             "[objCn]"),
      member(
          "VentasEntregas", &C::VentasEntregas,
          {parameter("dtFechaIni", &Entregas::dtFechaIni),
           parameter("dtFechaFin", &Entregas::dtFechaFin), parameter("sCaja", &Entregas::sCaja),
           parameter("sEmpleado", &Entregas::sEmpleado), parameter("sSerie", &Entregas::sSerie),
           parameter("inout dVentasEntregasContado", &Entregas::dVentasEntregasContado),
           parameter("inout dVentasEntregasCambio", &Entregas::dVentasEntregasCambio),
           parameter("bCerrados", &Entregas::bCerrados), parameter("[objCn]", &Entregas::objCn)}),
  };
}

std::vector<AggregateParameter<Documento>> documentParameters() {
  return {parameter("vId", &Documento::vId),
          parameter("dtFecha", &Documento::dtFecha),
          parameter("sSerie", &Documento::sSerie),
          parameter("sCod", &Documento::sCod),
          parameter("sEmpresa", &Documento::sEmpresa),
          parameter("sTarifa", &Documento::sTarifa),
          parameter("sAlmacen", &Documento::sAlmacen),
          parameter("sRef", &Documento::sRef),
          parameter("sTransportista", &Documento::sTransportista),
          parameter("sDivisa", &Documento::sDivisa),
          parameter("dCambio", &Documento::dCambio),
          parameter("dTotaldivisa", &Documento::dTotaldivisa),
          parameter("sFPago", &Documento::sFPago),
          parameter("dDto", &Documento::dDto),
          parameter("dDtoPp", &Documento::dDtoPp),
          parameter("dBase", &Documento::dBase),
          parameter("dPortes", &Documento::dPortes),
          parameter("iImpuesto", &Documento::iImpuesto),
          parameter("dTotal", &Documento::dTotal),
          parameter("iEstado", &Documento::iEstado),
          parameter("vDocE", &Documento::vDocE),
          parameter("dImpImp", &Documento::dImpImp),
          parameter("bRecargo", &Documento::bRecargo),
          parameter("dImpRec", &Documento::dImpRec),
          parameter("dIrpf", &Documento::dIrpf),
          parameter("dImpIrpf", &Documento::dImpIrpf),
          parameter("sCtaContable", &Documento::sCtaContable),
          parameter("sCtaContrapartida", &Documento::sCtaContrapartida),
          parameter("sConcepto", &Documento::sConcepto),
          parameter("sTipoFactura", &Documento::sTipoFactura),
          parameter("sCaja", &Documento::sCaja),
          parameter("sEmpleado", &Documento::sEmpleado),
          parameter("bIncTax", &Documento::bIncTax),
          parameter("[objCn]", &Documento::objCn)};
}

std::vector<Member> documentSlots() {
  return {
      member("Mover_De_Historicos", &C::Mover_De_Historicos, kOnClosing),
      member("Mover_A_Historicos", &C::Mover_A_Historicos, kOnClosing),
      member("CerrarTicket", &C::CerrarTicket, kClosesTicket),
      member("ConvertirSerie", &C::ConvertirSerie, kRenumbersTicket),
      member("FacturarDocumento", &C::FacturarDocumento, "vId, iFacturado, vIdFac, [cnnActive]"),
      member("CancelarFacturacion", &C::CancelarFacturacion, "vId, iFacturado, [cnnActive]"),
      member("CodigoLibre", &C::CodigoLibre, kOfTicket),
      member("GetAlmacen", &C::GetAlmacen, kOfTicket),
      member("GetState", &C::GetState, kOfTicket),
      member("GetIncTax", &C::GetIncTax, kOfTicket),
      member("IniciaConnection", &C::IniciaConnection),
      member("SetConnection", &C::SetConnection),
      member("CnnClose", &C::CnnClose),
      member("Insertar", &C::Insertar, documentParameters()),
      member("Obtener", &C::Obtener, ticketReadParameters()),
      member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
      member("NuevoCodigo", &C::NuevoCodigo, "[serie], [objCn]"),
      member("GetNumerador", &C::GetNumerador,
             "inout dSerieA, inout dSerieB, inout dSerieC, [objCn]"),
      member("SetNumerador", &C::SetNumerador,
             "inout dSerieA, inout dSerieB, inout dSerieC, [objCn]"),
      member("UpdateNumerador", &C::UpdateNumerador, "[objCn]"),
      frameMember("SeguridadPermiso"),
  };
}

std::vector<Member> firstSlots() {
  std::vector<Member> slots = {
      frameMember("GetRptPath"),
      member("GetConnectionStrToRpt", &C::GetConnectionStrToRpt,
             "out sDbtype, out sDataSource, out sCatalog, out sUser, out sPasw, [bHistorico]"),
      frameMember("sClassName"),
      frameMember("GetConnection"),
      frameMember("GetConnectionStr"),
  };
  const auto append = [&](std::vector<Member> more) {
    slots.insert(slots.end(), more.begin(), more.end());
  };
  append(rowSlots());
  append({member("ActualizarEuros", &C::ActualizarEuros, "[cnnActive]")});
  append(salesSlots());
  append(documentSlots());
  return slots;
}

}  // namespace

std::vector<AggregateParameter<Lectura>> ticketReadParameters() {
  return {parameter("inout vId", &Lectura::vId),
          parameter("inout dtFecha", &Lectura::dtFecha),
          parameter("inout sSerie", &Lectura::sSerie),
          parameter("inout sCod", &Lectura::sCod),
          parameter("inout sEmpresa", &Lectura::sEmpresa),
          parameter("inout sTarifa", &Lectura::sTarifa),
          parameter("inout sAlmacen", &Lectura::sAlmacen),
          parameter("inout sRef", &Lectura::sRef),
          parameter("inout sTransportista", &Lectura::sTransportista),
          parameter("inout sDivisa", &Lectura::sDivisa),
          parameter("inout dCambio", &Lectura::dCambio),
          parameter("inout dTotaldivisa", &Lectura::dTotaldivisa),
          parameter("inout sFPago", &Lectura::sFPago),
          parameter("inout dDto", &Lectura::dDto),
          parameter("inout dDtoPp", &Lectura::dDtoPp),
          parameter("inout dBase", &Lectura::dBase),
          parameter("inout dPortes", &Lectura::dPortes),
          parameter("inout iImpuesto", &Lectura::iImpuesto),
          parameter("inout dTotal", &Lectura::dTotal),
          parameter("inout iEstado", &Lectura::iEstado),
          parameter("inout iFacturado", &Lectura::iFacturado),
          parameter("inout dFactura", &Lectura::dFactura),
          parameter("inout dImpImp", &Lectura::dImpImp),
          parameter("inout bRecargo", &Lectura::bRecargo),
          parameter("inout dImpRec", &Lectura::dImpRec),
          parameter("inout dIrpf", &Lectura::dIrpf),
          parameter("inout dImpIrpf", &Lectura::dImpIrpf),
          parameter("inout sCtaContable", &Lectura::sCtaContable),
          parameter("inout sCtaContrapartida", &Lectura::sCtaContrapartida),
          parameter("inout sConcepto", &Lectura::sConcepto),
          parameter("sTipoFactura", &Lectura::sTipoFactura),
          parameter("[objCn]", &Lectura::objCn)};
}

const Component& ClsTickets::component() {
  static const Component table(
      "ClsTickets", "{3E7C51D4-8A20-4B96-A1F7-5C0D92E6B401}", "Tickets",
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail(firstSlots(), {
                                      member("AddNew", &C::AddNew, "[bDefVal], [bIsInvoiced]"),
                                      property("bEsIvaIncluido", &C::bEsIvaIncluido),
                                      member("UpdateIncTax", &C::UpdateIncTax, "vIdIncTax"),
                                      member("UpdateState", &C::UpdateState, "dEntrega, dTotal"),
                                      member("OpenLog", &C::OpenLog, "sAction"),
                                      member("CloseLog", &C::CloseLog, "iNum"),
                                      member("SaveLog", &C::SaveLog, "iNum, sText"),
                                      member("GetTxtFile", &C::GetTxtFile),
                                      member("GetTxtFileDisp", &C::GetTxtFileDisp),
                                      member("GetTxtFileDraw", &C::GetTxtFileDraw),
                                  }));
  return table;
}

}  // namespace tavelor
