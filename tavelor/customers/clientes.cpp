// SPDX-License-Identifier: MIT
// ClsClientes: modes, codes and new rows. Single reads are in clientes_lecturas.cpp, fiscal
// identifiers in clientes_fiscal.cpp, the invoicing profile in clientes_facturacion.cpp, writes of
// one customer in clientes_escritura.cpp and of all in clientes_mantenimiento.cpp, files and lists
// in clientes_intercambio.cpp, the table of all members in clientes_componente.cpp.
#include "tavelor/customers/clientes.hpp"

#include <algorithm>
#include <array>

#include "tavelor/customers/consultas.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/session_global.hpp"

namespace tavelor {

// Table Clientes: one row a customer. Some columns are not in the list of the class: the mark of
// the day of return, the marks of reports, the administrative centres, and those that only a copy
// under another code reads.

namespace {

constexpr std::string_view kSelectCampos =
    "SELECT"
    " Clientes.Codigo as Código, Clientes.Activo, Clientes.Nombre,"
    " Clientes.Razon_Social as Empresa, Clientes.Contacto, Clientes.ID_Fiscal, Clientes.NIF,"
    " Clientes.Direccion as Dirección, Clientes.Codigo_Postal, Clientes.Poblacion as Población,"
    " Clientes.Provincia, Clientes.Telefono as Teléfono, Clientes.Telefono_2 as Teléfono_2,"
    " Clientes.Movil as Móvil, Clientes.Fax, Clientes.E_Mail, Clientes.Http, Clientes.Colegiado,"
    " Horario, Clientes.Tarifa, Clientes.Serie, Clientes.Lista, Clientes.Concepto,"
    " Clientes.Transportista, Clientes.Tipo_Factura_A as Factura_A,"
    " Clientes.Tipo_Factura_B as Factura_B, Clientes.Tipo_Factura_C as Factura_C,"
    " Clientes.Documento_P, Clientes.Documento_A, Clientes.Documento_F, Clientes.Cta_Tesoreria,"
    " Clientes.Cta_Contable, Clientes.Cta_Contrapartida, Clientes.IRPF, Clientes.IRPF_B,"
    " Clientes.IRPF_C, Clientes.Impuesto, Clientes.Impuesto_Incluido, Clientes.Recargo,"
    " Clientes.Divisa, Clientes.Forma_Pago as Pago, Banco, Clientes.Descuento as Dto,"
    " Clientes.Descuento_pp as Dto_PP, Clientes.Descuento_pp_B as Dto_PP_B,"
    " Clientes.Descuento_pp_C as Dto_PP_C, Clientes.Descuento_R as Dto_R,"
    " Clientes.Bonificacion_1 as Bnf1, Clientes.Condicion_1 as Imp1,"
    " Clientes.Bonificacion_2 as Bnf2, Clientes.Condicion_2 as Imp2,"
    " Clientes.Bonificacion_3 as Bnf3, Clientes.Condicion_3 as Imp3, Clientes.Riesgo,"
    " Clientes.Facturar, Clientes.codigo_fac as Factura, Clientes.Codigo_Portes as Cod_Portes,"
    " Clientes.Gastos as Imp_Portes, Clientes.Tipo_Cliente, Clientes.Fecha, Clientes.Aviso,"
    " Incorporar, Clientes.Texto_Aviso, Clientes.E_Mail_doc, Clientes.E_Mail_admin,"
    " Clientes.Password, Clientes.Rpt_Alb, Clientes.Rpt_Fac, Clientes.Portes_Alb,"
    " Clientes.Fact_Papel, Clientes.Rpt_Dec, Clientes.Centro, Clientes.Serie_As, Clientes.UemlAdm,"
    " Clientes.Bloqueo, Clientes.ExternalID, Clientes.Condicion_1_SI as C1SI";

// The same columns, without names of their own, for a GROUP BY.
constexpr std::string_view kListaCampos =
    " Clientes.Codigo, Clientes.Activo, Clientes.Nombre, Clientes.Razon_Social, Clientes.Contacto,"
    " Clientes.NIF, Clientes.Direccion, Clientes.Codigo_Postal, Clientes.Poblacion,"
    " Clientes.Provincia, Clientes.Telefono, Clientes.Telefono_2, Clientes.Movil, Clientes.Fax,"
    " Clientes.E_Mail, Clientes.Http, Clientes.Colegiado, Horario, Clientes.Tarifa,"
    " Clientes.Serie, Clientes.Lista, Clientes.Concepto, Clientes.Transportista,"
    " Clientes.Tipo_Factura_A, Clientes.Tipo_Factura_B, Clientes.Tipo_Factura_C,"
    " Clientes.Documento_P, Clientes.Documento_A, Clientes.Documento_F, Clientes.Cta_Tesoreria,"
    " Clientes.Cta_Contable, Clientes.Cta_Contrapartida, Clientes.IRPF, Clientes.IRPF_B,"
    " Clientes.IRPF_C, Clientes.Impuesto, Clientes.Impuesto_Incluido, Clientes.Recargo,"
    " Clientes.Divisa, Clientes.Forma_Pago, Banco, Clientes.Descuento, Clientes.Descuento_pp,"
    " Clientes.Descuento_pp_B, Clientes.Descuento_pp_C, Clientes.Descuento_R,"
    " Clientes.Bonificacion_1, Clientes.Condicion_1, Clientes.Bonificacion_2,"
    " Clientes.Condicion_2, Clientes.Bonificacion_3, Clientes.Condicion_3, Clientes.Riesgo,"
    " Clientes.Facturar, Clientes.codigo_fac, Clientes.Codigo_Portes, Clientes.Gastos,"
    " Clientes.Tipo_Cliente, Clientes.Fecha, Clientes.Aviso, Incorporar, Clientes.Texto_Aviso,"
    " Clientes.E_Mail_doc, Clientes.E_Mail_admin, Clientes.Password, Clientes.Rpt_Alb,"
    " Clientes.Rpt_Fac, Clientes.Portes_Alb, Clientes.Fact_Papel, Clientes.Rpt_Dec,"
    " Clientes.Centro, Clientes.Serie_As, Clientes.UemlAdm, Clientes.Bloqueo,"
    " Clientes.ExternalID, Clientes.Condicion_1_SI, Clientes.ID_Fiscal";

constexpr std::string_view kTodos = " FROM Clientes";

constexpr std::string_view kSeleccion =
    "SELECT Codigo as Código, Razon_Social as Descripción, Nombre, NIF, Direccion as Dirección,"
    " Codigo_Postal, Poblacion as Población, Provincia, Telefono as Teléfono, Movil as Móvil,"
    " Tipo_Cliente FROM Clientes";

// Or binds last: a customer without a word for who is billed comes too when it is no longer in use,
// and whatever its centre.
constexpr std::string_view kNoAsociados =
    " WHERE (((Clientes.activo)<>0) AND ((Clientes.codigo_fac)<>'+1' And"
    " (Clientes.codigo_fac)<>'D') or ((Clientes.codigo_fac) Is Null))";

constexpr std::string_view kMixta = "seleccionmixta";
constexpr std::string_view kMixtaCenter = "seleccionmixta_center";
constexpr std::string_view kDeclaration = "347";

// "deeliminartipofactura" does not look at the invoice type of series C, which users have learned
// to check by hand.
constexpr std::array kModes = {
    Mode{"activos", kSelectCampos, " FROM Clientes WHERE ( activo <> 0 )"},
    Mode{"vistarapidaactivos", kSelectCampos, " FROM Clientes WHERE ( activo <> 0 )"},
    Mode{"no_activos", kSelectCampos, " FROM Clientes WHERE ( activo = 0 )"},
    Mode{"vistarapidanoactivos", kSelectCampos, " FROM Clientes WHERE ( activo = 0)"},
    Mode{"seleccion", kSeleccion, " WHERE ( activo <> 0 )"},
    Mode{"selecciontodos", kSeleccion},
    Mode{"seleccion_no_aso", kSeleccion, kNoAsociados},
    Mode{"seleccioncombo",
         "SELECT Codigo as Código, Razon_Social as Descripción FROM Clientes"
         " WHERE ( activo <> 0 ) Order by Razon_Social"},
    Mode{"asociado",
         "SELECT Codigo as Código, Razon_Social as Descripción, Nombre FROM Clientes"
         " WHERE ( codigo_fac = '+1' or codigo_fac = 'D' )"},
    Mode{"deeliminarbanco", kSelectCampos, " FROM Clientes  Where ( Banco =  '{id}')"},
    Mode{"deeliminardivisa", kSelectCampos, " FROM Clientes  Where ( Divisa =  '{id}')"},
    Mode{"deeliminarformapago", kSelectCampos, " FROM Clientes  Where ( Forma_Pago =  '{id}')"},
    Mode{"deeliminartransportista", kSelectCampos,
         " FROM Clientes  Where ( Transportista =  '{id}')"},
    Mode{"deeliminardocumento", kSelectCampos,
         " FROM Clientes  Where ( Documento_P =  '{id}' or Documento_A =  '{id}' or"
         " Documento_F =  '{id}')"},
    Mode{"deeliminartipofactura", kSelectCampos,
         " FROM Clientes  Where ( Tipo_Factura_A =  '{id}' or Tipo_Factura_B =  '{id}')"},
    Mode{"clsclientesdirecciones",
         "SELECT Clientes.Codigo as Código, Clientes_Direcciones.Codigo as Descripción,"
         " Clientes.Razon_Social as Cliente, Clientes_Direcciones.Nombre,"
         " Clientes_Direcciones.Razon_Social as Empresa,"
         " Clientes_Direcciones.Direccion as Dirección, Clientes_Direcciones.Codigo_Postal,"
         " Clientes_Direcciones.Poblacion as Cp, Clientes_Direcciones.Provincia FROM Clientes"
         " INNER JOIN Clientes_Direcciones ON Clientes.Codigo = Clientes_Direcciones.Codigo;"},
    Mode{kAnyOtherWord, kSelectCampos, kTodos},
};

// ---------------------------------------------------------------------------------------------
// Modes by delivery notes

int yearOf(Date day) {
  return day.civil().year;
}
Date thisDay(Date today) {
  return today;
}
Date yearBegins(Date today) {
  return Date::of(yearOf(today), 1, 1);
}
Date yearEnds(Date today) {
  return Date::of(yearOf(today), 12, 31);
}
Date lastYearBegins(Date today) {
  return Date::of(yearOf(today) - 1, 1, 1);
}
Date lastYearEnds(Date today) {
  return Date::of(yearOf(today) - 1, 12, 31);
}
// Calendar months: the day, or the last one of a shorter month.
template <int kMonths>
Date monthsAgo(Date today) {
  const CivilTime now = today.civil();
  const CivilTime first = Date::serial(now.year, now.month - kMonths, 1).civil();
  return Date::of(first.year, first.month, std::min(now.day, daysInMonth(first.year, first.month)));
}

// A mode that shows the customers with, or without, a delivery note between two days.
struct DeliveryMode {
  std::string_view word;
  Statement::Constant before;  // the condition on delivery notes
  Date (*from)(Date today);
  Date (*to)(Date today);
  Statement::Constant after;
  bool wholeCustomer = true;  // else code and legal name
};

constexpr std::string_view kUsable = " WHERE ((Clientes.Activo)<>0 AND ((";
constexpr std::string_view kAny = " WHERE (((";
constexpr std::string_view kWith = "=true));";
constexpr std::string_view kWithout = "=false));";
constexpr std::string_view kWithoutButUsable = "=false) AND ((Clientes.Activo)<>0));";

// "factur_no_periodo" does not negate: it has always shown who was delivered to, and its readers
// know it.
constexpr std::array kDeliveryModes = {
    DeliveryMode{"bajas", kUsable, monthsAgo<6>, yearEnds, kWithout},
    DeliveryMode{"bajas60", kUsable, monthsAgo<2>, yearEnds, kWithout},
    DeliveryMode{"bajas30", kUsable, monthsAgo<1>, yearEnds, kWithout},
    DeliveryMode{"factur_trim", kUsable, monthsAgo<3>, yearEnds, kWith},
    DeliveryMode{"factur_periodo", kUsable, yearBegins, yearEnds, kWith},
    DeliveryMode{"factur_no_periodo", kUsable, yearBegins, yearEnds, kWith},
    DeliveryMode{"factur_periodo_ant", " WHERE  ((", lastYearBegins, lastYearEnds, "=true);"},
    DeliveryMode{"factur_no_año", kAny, monthsAgo<12>, thisDay, kWithout},
    DeliveryMode{"low", kAny, yearBegins, yearEnds, kWithoutButUsable, false},
    DeliveryMode{"lowmes", kAny, monthsAgo<1>, yearEnds, kWithoutButUsable, false},
    DeliveryMode{"lowtrim", kAny, monthsAgo<3>, yearEnds, kWithoutButUsable, false},
    DeliveryMode{"lowsem", kAny, monthsAgo<6>, yearEnds, kWithoutButUsable, false},
};

constexpr auto kMadeModes = [] {
  std::array<std::string_view, kDeliveryModes.size() + 3> words = {kDeclaration, kMixta,
                                                                   kMixtaCenter};
  for (std::size_t i = 0; i < kDeliveryModes.size(); ++i) words[i + 3] = kDeliveryModes[i].word;
  return words;
}();

const DeliveryMode* deliveryMode(std::string_view word) {
  const auto* const mode =
      std::find_if(kDeliveryModes.begin(), kDeliveryModes.end(),
                   [&](const DeliveryMode& candidate) { return candidate.word == word; });
  return mode == kDeliveryModes.end() ? nullptr : &*mode;
}

Date today() {
  return Apartment::current().clock().today();
}

std::string dateLiteral(Date day) {
  return DataSession().DateLiteral(selector::kMain, day);
}

Statement conditionOf(const DeliveryMode& mode) {
  const Date now = today();
  Statement condition(mode.before);
  condition << "Exists (SELECT Albaranes.Numero From Albaranes"
               " WHERE ( ((Albaranes.Fecha) Between "
            << spliced(dateLiteral(mode.from(now))) << " AND " << spliced(dateLiteral(mode.to(now)))
            << ") AND ((Albaranes.Codigo)=Clientes.Codigo))))" << mode.after;
  return condition;
}

}  // namespace

Statement consultas::byDeliveryNotes(std::string_view word) {
  const DeliveryMode* mode = deliveryMode(word);
  return mode == nullptr ? Statement() : conditionOf(*mode);
}

char consultas::declaredSeries() {
  Apartment& apartment = Apartment::current();
  const std::string word = apartment.sessionGlobal().GetNamedValue(
      apartment.version().sessionRoot() + "Clientes", "Serie");
  if (word.empty()) return 'A';
  const std::string letter = text::upper(word);
  return letter == "A" || letter == "B" || letter == "C" ? letter.front() : '\0';
}

consultas::LastYear consultas::lastYear() {
  const Date now = today();
  return {dateLiteral(lastYearBegins(now)), dateLiteral(lastYearEnds(now))};
}

constinit const ClassInfo ClsClientes::kClassInfo = {.word = "Clientes",
                                                     .table = "Clientes",
                                                     .modes = kModes,
                                                     .madeModes = kMadeModes,
                                                     .find = FindForm::kPrefix,
                                                     .clearsDataMembers = true};

// ---------------------------------------------------------------------------------------------
// Modes

Statement ClsClientes::modeStatement(std::string& word, const Variant& id) const {
  if (word == kDeclaration) return CondicionConsulta(word);
  if (word == kMixta || word == kMixtaCenter) return mixedSelection(word == kMixtaCenter, id);
  if (const DeliveryMode* mode = deliveryMode(word)) {
    Statement statement(mode->wholeCustomer ? Statement::Constant(kSelectCampos)
                                            : "SELECT Clientes.Codigo, Clientes.Razon_Social");
    statement << kTodos << conditionOf(*mode);
    return statement;
  }
  return RecordClass::modeStatement(word, id);
}

Statement ClsClientes::CondicionConsulta(std::string_view sModo) {
  if (sModo == "bajas" || sModo == "bajas60" || sModo == "bajas30") {
    return consultas::byDeliveryNotes(sModo);
  }
  if (sModo != kDeclaration) return {};

  const consultas::LastYear year = consultas::lastYear();
  Statement statement(kSelectCampos);
  statement << " FROM Facturas INNER JOIN Clientes ON Facturas.Codigo = Clientes.Codigo"
               " WHERE  (((Facturas.Fecha) Between "
            << spliced(year.first) << " AND " << spliced(year.last) << ")";
  if (const char series = consultas::declaredSeries()) {
    statement << " AND ((Facturas.Serie) = '" << spliced(std::string_view(&series, 1))
              << "' or (Facturas.Serie) = 'R'))";
  } else {
    statement << ")";
  }
  statement << " GROUP BY Facturas.Codigo," << kListaCampos
            << " HAVING (((Sum(Facturas.Total))>3000))";
  return statement;
}

Statement::Constant ClsClientes::OperadorConcatenar() {
  return "&";
}

// A description in which a user's typing finds the customer by code or name.
Statement ClsClientes::mixedSelection(bool ofCentre, const Variant& id) const {
  const Statement::Constant concat = OperadorConcatenar();
  Statement statement("SELECT");
  if (esDbFile()) {
    statement << " Codigo as Código, [codigo]" << concat << "[Razon_Social]" << concat
              << "[Nombre] AS Descripción, Nombre, Razon_Social,";
  } else {
    statement << " Codigo as Código, [codigo] " << concat
              << " [Razon_Social] AS Descripción, Nombre, Razon_Social,";
  }
  statement << " NIF, Direccion as Dirección, Codigo_Postal, Poblacion as Población, Provincia,"
               " Telefono as Teléfono, Movil as Móvil, Tipo_Cliente FROM Clientes";
  if (ofCentre) {
    statement << withId(
        " WHERE (((Clientes.activo)<>0)AND ((Clientes.Centro =  '{id}')) "
        " AND ((Clientes.codigo_fac)<>'+1' And (Clientes.codigo_fac)<>'D')"
        " or ((Clientes.codigo_fac) Is Null))",
        id);
  } else {
    statement << kNoAsociados;
  }
  statement << " Order by Razon_Social";
  return statement;
}

std::string ClsClientes::ExistenRegistros_consulta(std::string_view ssql, ObjCn objCn) const {
  Statement statement;
  if (ssql != kDeclaration) statement << "SELECT Codigo FROM Clientes";
  statement << CondicionConsulta(ssql);
  return std::to_string(read(statement, *objCn)->RecordCount());
}

bool ClsClientes::esDbFile() const {
  return DataSession().IsDbFile(info().selector);
}

bool ClsClientes::ExistenCentros(ObjCn objCn) const {
  const Variant centres = lookUp(Statement("SELECT Count(Clientes.Codigo) AS CuentaDeCodigo"
                                           " FROM Clientes WHERE ((Len(Clientes.Centro) > 1));"),
                                 "CuentaDeCodigo", *objCn);
  return asNumber(centres) != 0;
}

// ---------------------------------------------------------------------------------------------
// Codes

std::string ClsClientes::GetLenMaxDigit(ObjCn objCn) const {
  const Variant longest =
      lookUp(Statement("SELECT Max(Len([Codigo])) AS Digitos FROM Clientes"), "Digitos", *objCn);
  return longest.isEmpty() ? "0" : joined(longest);
}

// ---------------------------------------------------------------------------------------------
// New rows

void ClsClientes::AddNew(bool bDefVal) {
  RecordClass::AddNew(bDefVal);
}

// The class word of the fiscal identifier is written by its place in the list, before all that are
// written by name: a record set of another shape gets it in its sixth field.
void ClsClientes::setDefaults(bool bDefVal) {
  if (!bDefVal) return;
  constexpr std::int32_t kIdFiscal = 5;
  primary().Field(kIdFiscal).Value("CIF");

  const auto set = [this](std::string_view field, const Variant& to) {
    primary().Field(field).Value(to);
  };
  const std::int32_t zero = 0;
  set("Activo", std::int32_t{-1});
  set("Empresa", "Razón social");
  set("Transportista", zero);
  set("Documento_F", zero);
  set("Impuesto", false);
  set("Serie", "A");
  set("Tarifa", "A");
  set("Lista", "PRC");
  for (const char* percent :
       {"Bnf1", "Imp1", "Bnf2", "Imp2", "Dto", "Dto_PP", "Dto_PP_B", "Dto_PP_C"}) {
    set(percent, zero);
  }
  set("Impuesto_Incluido", false);
  set("Dto_R", zero);
  set("Aviso", false);
  set("Cta_Tesoreria", "430000");
  set("Cta_Contable", "430000");
  set("Cta_Contrapartida", "700000");
  set("Fecha", today());
  set("Facturar", "Mensual");
  set("Tipo_Cliente", "Nuevo");
  set("Riesgo", std::int32_t{9000});
}

// Two characters of the code make no identifier of anything; outside systems have them by now.
void ClsClientes::Update() {
  Recordset& rows = primary();
  Field external = rows.Field("ExternalID");
  const Variant held = external.Value();
  if (held.isNull() || held.isEmpty()) {
    external.Value(text::left(joined(rows.Field("Código").Value()), 2));
  }
  RecordClass::Update();
}

}  // namespace tavelor
