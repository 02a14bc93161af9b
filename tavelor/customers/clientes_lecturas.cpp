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

using C = ClsClientes;

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
  return flag(rows.Field("Incorporar").Value()) ? "{ " + orNothing(rows) : "no";
}
std::string documentMail(Recordset& rows) {
  return mail(first(rows));
}
std::string wantedMail(Recordset& rows) {
  const bool ofAdministration = flag(rows.Field("UemlAdm").Value());
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
  return flag(first(rows));
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
  return number(first(rows));
}

constexpr bool kQuiet = true;

}  // namespace

// ---------------------------------------------------------------------------------------------
// Statement, answer for nobody, answer for a customer

const C::Flag C::ObtenerBloqueo = {"SELECT Bloqueo", kOf, false, isSet};
const C::Flag C::ExisteCli = {"SELECT Codigo", " FROM Clientes Where codigo ='{id}'", false,
                              isThere};
const C::Flag C::ExisteNif = {"SELECT NIF", " FROM Clientes Where NIF ='{id}'", false, isThere};
const C::Flag C::ExisteExternalID = {"SELECT ExternalId", " FROM Clientes Where ExternalId ='{id}'",
                                     false, isThere};
const C::Flag C::EstaDisponible = {
    "SELECT Codigo", " FROM Clientes Where codigo ='{id}' And Activo <> 2", false, isThere};

const C::Flag C::esFacturable = {"SELECT codigo, codigo_fac", kOf, false, billedItself};
const C::Flag C::esDistribuidor = {"SELECT codigo, codigo_fac", kOf, false, distributor};
const C::Flag C::esAsociado = {"SELECT codigo, codigo_fac", kOf, false, associate};
const C::Flag C::esActivo = {"SELECT activo", kOf, false, isSet};
const C::Flag C::esSerie_as = {"SELECT Serie_as", kOf, false, isSet};
const C::Flag C::esPortesNoIncl = {"SELECT Portes_Alb", kOf, false, isSet};
const C::Flag C::esPersonaFisica = {"SELECT ID_Fiscal", " FROM Clientes WHERE Codigo = '{id}'",
                                    false, naturalPerson};
const C::Flag C::ObtenerPrintPaper = {"SELECT Fact_Papel", kByCode, false, isSet};
const C::Flag C::IncludeTax = {"SELECT Impuesto_Incluido as IncludeTax", kOfUsable, false, isSet};
const C::Flag C::EsIvaDeducible = {"SELECT Impuesto as IncludeTax", kOfUsable, false, isSet};
const C::Flag C::PortesAlConvertir = {"SELECT Portes_Alb as Portes", kOfUsable, false, isSet};

const C::Text C::GetTipoCli = {"SELECT Tipo_Cliente", kOf, "no", orNo};
const C::Text C::GetCodigo_Banco = {"SELECT Banco", kOf, "0", bank};
const C::Text C::ObtenerRazonSocial = {"SELECT Razon_social", kByCode, "", orNo};
const C::Text C::ObtenerCP = {"SELECT Centro", kByCode, "", orNothing};
const C::Text C::ObtenerHorario = {"SELECT Horario", kByCode, "", hours};
const C::Text C::ObtenerTexto = {"SELECT Texto_Aviso, Incorporar", kByCode, "", warning};
const C::Text C::ObtenerMailDoc = {"SELECT E_Mail_DOC", kByCode, "", documentMail};
const C::Text C::ObtenerMailDoc_Admin = {"SELECT E_Mail_doc, E_Mail_admin, UemlAdm", kByCode, "",
                                         wantedMail};
const C::Text C::ObtenerRpt_Fac = {"SELECT Rpt_Fac", kByCode, "no", report};
const C::Text C::ObtenerRpt_Alb = {"SELECT Rpt_Alb", kByCode, "no", report};
const C::Text C::ObtenerRpt_dec = {"SELECT Rpt_Dec", kByCode, "no", report, kQuiet};
const C::Number C::ObtenerRiesgo = {"SELECT Riesgo", kByCode, 0, orZero};

const C::Text C::GetSerie = {"SELECT Serie", kOfUsable, "A", itself};
const C::Text C::GetLista = {"SELECT Lista", kOfUsable, "PRC", itself};
const C::Text C::GetRefPortes = {"SELECT Codigo_portes", kOfUsable, "0", itself, kQuiet};
const C::Text C::GetFacturacion = {"SELECT Facturar", kOfUsable, "Mensual", itself};
const C::Text C::GetCodigo_fac = {"SELECT codigo_fac", kOfUsable, "0", itself};

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
