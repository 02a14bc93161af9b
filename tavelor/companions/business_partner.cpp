// SPDX-License-Identifier: MIT
// What the masters of customers and suppliers share.
#include "tavelor/companions/business_partner.hpp"

#include "tavelor/companions/active_row.hpp"
#include "tavelor/companions/profile_slots.hpp"
#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// ---------------------------------------------------------------------------------------------
// Codes

std::int32_t BusinessPartner::codeDigits(ObjCn objCn) const {
  mustBeHome();
  return clsNumeradores().GetLong(info().word, *objCn).toInt32(Apartment::current().locale());
}

Variant BusinessPartner::newCode(ConnectionPtr& objCn) const {
  const std::int32_t digits = codeDigits(objCn);
  return nextCode(info().codeColumn, digits, objCn);
}

std::string BusinessPartner::ObtenerCodigo(InOut<std::string> sMidato) const {
  try {
    const std::int32_t digits = codeDigits({});
    if (digits > 0 && text::length(*sMidato) < static_cast<std::size_t>(digits)) {
      sMidato = text::padLeft(*sMidato, static_cast<std::size_t>(digits), '0');
    }
  } catch (const Error&) {
    // A form that pads what was typed goes on with what was typed.
  }
  return *sMidato;
}

bool BusinessPartner::CtaLibre(const Variant& vId, const Variant& vIdCodigo, ObjCn objCn) const {
  Statement statement("SELECT Cta_Contable FROM ");
  statement << info().table << " where (Cta_Contable ='" << spliced(joined(vId))
            << "' and Codigo <>'" << spliced(joined(vIdCodigo)) << "')";
  return !anyRow(statement, *objCn);
}

// ---------------------------------------------------------------------------------------------
// The current row, documents

void BusinessPartner::GetDocPath(InOut<std::string> sDocPath) const {
  mustBeHome();
  sDocPath = DataSession().DocPath(*sDocPath);
}

void BusinessPartner::ObtenerRegistroActivo(InOut<Variant> vId, InOut<std::string> sNombre,
                                            InOut<std::string> sEmpresa,
                                            InOut<std::string> sDireccion, InOut<std::string> sCp,
                                            InOut<std::string> sPoblacion,
                                            InOut<std::string> sProvincia,
                                            InOut<std::string> sTelefono) const {
  takeActiveRowIfThere(DataMember("Primary"), {*vId, *sNombre, *sEmpresa, *sDireccion, *sCp,
                                               *sPoblacion, *sProvincia, *sTelefono});
}

// ---------------------------------------------------------------------------------------------
// What a usable one brings to a document

bool BusinessPartner::GetCtaTesoreria(const Variant& id, InOut<std::string> sCtaTes,
                                      ObjCn objCn) const {
  Statement statement("SELECT Cta_Tesoreria FROM ");
  statement << info().table << " WHERE ( Codigo =  '" << spliced(joined(id))
            << "' and activo <> 0 )";
  const RecordsetPtr rows = read(statement, *objCn);
  if (rows->RecordCount() > 0) takeColumnOr(*rows, "Cta_Tesoreria", "no", *sCtaTes);
  return true;
}

// An index without a condition leaves a statement that ends in WHERE, which no engine takes.
RecordsetPtr BusinessPartner::profile(Statement::Constant select, Facturacion& datos) const {
  Statement statement(select);
  if (datos.index == 0) {
    statement << " ( Codigo =  '" << spliced(joined(datos.id)) << "' and activo <> 0 )";
  } else if (datos.index == 1) {
    statement << " ( Razon_Social = '" << spliced(datos.sEmpresa) << "' and activo <> 0 )";
  }
  RecordsetPtr rows = read(statement, *datos.objCn);
  if (rows->RecordCount() == 0) {
    datos.id = "";
    datos.sEmpresa.clear();
    return nullptr;
  }
  takeColumn(*rows, "Codigo", datos.id);
  takeColumn(*rows, "Razon_Social", datos.sEmpresa);
  takeColumn(*rows, "Transportista", datos.sTransportista);
  takeColumn(*rows, "Pago", datos.sPago);
  takeColumn(*rows, "Divisa", datos.sDivisa);
  datos.bImpuesto = asFlag(rows->Field("Impuesto").Value());
  takeColumn(*rows, "IRPF", datos.dIrpf);
  takeColumnOr(*rows, "Serie", "A", datos.sSerie);
  takeColumnOr(*rows, "Tarifa", "A", datos.sTarifa);
  datos.dDtoLinea = asNumber(rows->Field("Dto").Value());
  datos.dDto = asNumber(rows->Field("Dto_PP").Value());
  takeColumn(*rows, "Cta_Contable", datos.sCta);
  takeColumn(*rows, "Cta_Contrapartida", datos.sCtaC);
  datos.bRecargo = asFlag(rows->Field("Recargo").Value());
  takeColumn(*rows, "Concepto", datos.sConcepto);
  takeOfDocuments(*rows, datos);
  return rows;
}

// ---------------------------------------------------------------------------------------------
// Slots

std::vector<AggregateParameter<BusinessPartner::Facturacion>> profileParameters() {
  using P = BusinessPartner::Facturacion;
  return {
      parameter("inout id", &P::id),
      parameter("inout sEmpresa", &P::sEmpresa),
      parameter("out sTransportista", &P::sTransportista),
      parameter("out sPago", &P::sPago),
      parameter("out sDivisa", &P::sDivisa),
      parameter("out bImpuesto", &P::bImpuesto),
      parameter("out dIrpf", &P::dIrpf),
      parameter("out sSerie", &P::sSerie),
      parameter("out sTarifa", &P::sTarifa),
      parameter("out dDtoLinea", &P::dDtoLinea),
      parameter("out dDto", &P::dDto),
      parameter("out sCta", &P::sCta),
      parameter("out sCtaC", &P::sCtaC),
      parameter("out sBanco", &P::sBanco),
      parameter("out bRecargo", &P::bRecargo),
      parameter("out sConcepto", &P::sConcepto),
      parameter("out dBonificacion", &P::dBonificacion),
      parameter("out dImpBonif", &P::dImpBonif),
      parameter("out sFactura_A", &P::sFactura_A),
      parameter("out sFactura_B", &P::sFactura_B),
      parameter("out sFactura_C", &P::sFactura_C),
      parameter("out sDocumento_P", &P::sDocumento_P),
      parameter("out sDocumento_A", &P::sDocumento_A),
      parameter("out sDocumento_F", &P::sDocumento_F),
      parameter("[index]", &P::index),
      parameter("[objCn]", &P::objCn),
  };
}

}  // namespace tavelor
