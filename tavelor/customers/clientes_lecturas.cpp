// SPDX-License-Identifier: MIT
// ClsClientes: single values of one customer, as data.
#include "tavelor/customers/clientes.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

// ---------------------------------------------------------------------------------------------
// Whose value it is

constexpr std::string_view kOf = " FROM Clientes WHERE ( Codigo =  '{id}')";
constexpr std::string_view kOfUsable = " FROM Clientes WHERE ( Codigo =  '{id}' and activo <> 0 )";
constexpr std::string_view kByCode = " FROM Clientes WHERE codigo = '{id}'";

// ---------------------------------------------------------------------------------------------
// What the first row answers

const Locale& locale() {
  return Apartment::current().locale();
}

// The column itself; raises 94 for Null.
std::string plain(const Variant& column) {
  return column.toText(locale());
}
std::string orElse(const Variant& column, std::string_view missing) {
  return column.isNull() ? std::string(missing) : plain(column);
}
// A mail address that is Null is one that is empty.
std::string mail(const Variant& column) {
  const std::string address = orElse(column, "");
  return address.empty() ? "no" : address;
}
Variant first(Recordset& rows) {
  return rows.Field(0).Value();
}

std::string itself(Recordset& rows) {
  return plain(first(rows));
}
std::string orNo(Recordset& rows) {
  return orElse(first(rows), "no");
}
std::string orNothing(Recordset& rows) {
  return orElse(first(rows), "");
}
std::string bank(Recordset& rows) {
  const std::string code = orNothing(rows);
  return code.empty() ? "0" : code;
}
std::string hours(Recordset& rows) {
  const Variant open = first(rows);
  return open.isNull() ? "no" : "[ " + plain(open);
}
std::string warning(Recordset& rows) {
  return asFlag(rows.Field("Incorporar").Value()) ? "{ " + orNothing(rows) : "no";
}
std::string documentMail(Recordset& rows) {
  return mail(first(rows));
}
std::string wantedMail(Recordset& rows) {
  const bool ofAdministration = asFlag(rows.Field("UemlAdm").Value());
  return mail(rows.Field(ofAdministration ? "E_Mail_admin" : "E_Mail_doc").Value());
}
// "No" and other short words say that there is no report of its own.
std::string report(Recordset& rows) {
  const std::string name = orNothing(rows);
  return text::length(name) > 4 ? name : "no";
}

bool isThere(Recordset& /*rows*/) {
  return true;
}
bool isSet(Recordset& rows) {
  return asFlag(first(rows));
}
bool billedItself(Recordset& rows) {
  const Variant billed = rows.Field("codigo_fac").Value();
  return billed.isNull() || plain(billed).empty() || plain(billed) == plain(first(rows));
}
bool distributor(Recordset& rows) {
  return text::lower(orElse(rows.Field("codigo_fac").Value(), "")) == "d";
}
bool associate(Recordset& rows) {
  return orElse(rows.Field("codigo_fac").Value(), "") == "+1";
}
bool naturalPerson(Recordset& rows) {
  const std::string word = text::upper(text::trim(itself(rows)));
  return word == "NIF" || word == "NIE" || word == "N";
}

double orZero(Recordset& rows) {
  return asNumber(first(rows));
}

constexpr bool kQuiet = true;

}  // namespace

// ---------------------------------------------------------------------------------------------
// Statement, answer for nobody, answer for a customer

ClsClientes::ClsClientes()
    : BusinessPartner(kClassInfo),
      ObtenerBloqueo(*this, {"SELECT Bloqueo", kOf, false, isSet}),
      ExisteCli(*this, {"SELECT Codigo", " FROM Clientes Where codigo ='{id}'", false, isThere}),
      ExisteNif(*this, {"SELECT NIF", " FROM Clientes Where NIF ='{id}'", false, isThere}),
      ExisteExternalID(
          *this, {"SELECT ExternalId", " FROM Clientes Where ExternalId ='{id}'", false, isThere}),
      EstaDisponible(*this, {"SELECT Codigo", " FROM Clientes Where codigo ='{id}' And Activo <> 2",
                             false, isThere}),
      esFacturable(*this, {"SELECT codigo, codigo_fac", kOf, false, billedItself}),
      esDistribuidor(*this, {"SELECT codigo, codigo_fac", kOf, false, distributor}),
      esAsociado(*this, {"SELECT codigo, codigo_fac", kOf, false, associate}),
      esActivo(*this, {"SELECT activo", kOf, false, isSet}),
      esSerie_as(*this, {"SELECT Serie_as", kOf, false, isSet}),
      esPortesNoIncl(*this, {"SELECT Portes_Alb", kOf, false, isSet}),
      esPersonaFisica(*this, {"SELECT ID_Fiscal", " FROM Clientes WHERE Codigo = '{id}'", false,
                              naturalPerson}),
      ObtenerPrintPaper(*this, {"SELECT Fact_Papel", kByCode, false, isSet}),
      IncludeTax(*this, {"SELECT Impuesto_Incluido as IncludeTax", kOfUsable, false, isSet}),
      EsIvaDeducible(*this, {"SELECT Impuesto as IncludeTax", kOfUsable, false, isSet}),
      PortesAlConvertir(*this, {"SELECT Portes_Alb as Portes", kOfUsable, false, isSet}),
      GetTipoCli(*this, {"SELECT Tipo_Cliente", kOf, "no", orNo}),
      GetCodigo_Banco(*this, {"SELECT Banco", kOf, "0", bank}),
      ObtenerRazonSocial(*this, {"SELECT Razon_social", kByCode, "", orNo}),
      ObtenerCP(*this, {"SELECT Centro", kByCode, "", orNothing}),
      ObtenerHorario(*this, {"SELECT Horario", kByCode, "", hours}),
      ObtenerTexto(*this, {"SELECT Texto_Aviso, Incorporar", kByCode, "", warning}),
      ObtenerMailDoc(*this, {"SELECT E_Mail_DOC", kByCode, "", documentMail}),
      ObtenerMailDoc_Admin(*this,
                           {"SELECT E_Mail_doc, E_Mail_admin, UemlAdm", kByCode, "", wantedMail}),
      ObtenerRpt_Fac(*this, {"SELECT Rpt_Fac", kByCode, "no", report}),
      ObtenerRpt_Alb(*this, {"SELECT Rpt_Alb", kByCode, "no", report}),
      ObtenerRpt_dec(*this, {"SELECT Rpt_Dec", kByCode, "no", report, kQuiet}),
      ObtenerRiesgo(*this, {"SELECT Riesgo", kByCode, 0, orZero}),
      GetSerie(*this, {"SELECT Serie", kOfUsable, "A", itself}),
      GetLista(*this, {"SELECT Lista", kOfUsable, "PRC", itself}),
      GetRefPortes(*this, {"SELECT Codigo_portes", kOfUsable, "0", itself, kQuiet}),
      GetFacturacion(*this, {"SELECT Facturar", kOfUsable, "Mensual", itself}),
      GetCodigo_fac(*this, {"SELECT codigo_fac", kOfUsable, "0", itself}) {}

// Null is asked once more, for the customer whose code is True, and the answer dropped: the trace
// of a shop has always shown both statements.
bool ClsClientes::NoesFacturable(const Variant& id, ObjCn objCn) const {
  const auto statementFor = [](const Variant& code) {
    return withId("SELECT codigo, codigo_fac FROM Clientes WHERE ( Codigo =  '{id}')", code);
  };
  const RecordsetPtr rows = read(statementFor(id), *objCn);
  if (rows->RecordCount() == 0) return false;
  const Variant billed = rows->Field("codigo_fac").Value();
  if (billed.isNull()) {
    read(statementFor(true), {});
    return false;
  }
  return plain(billed) != plain(first(*rows)) && plain(billed) != "+1";
}

}  // namespace tavelor
