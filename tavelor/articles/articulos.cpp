// SPDX-License-Identifier: MIT
// clsArticulos: modes, codes, flags and single values. Document lines and writes are in
// articulos_datos.cpp, exchange and reports in articulos_intercambio.cpp, stock in
// articulos_stock.cpp, tariffs in articulos_tarifas.cpp, the table of all members in
// articulos_componente.cpp.
#include "tavelor/articles/articulos.hpp"

#include <array>

#include <fmt/format.h>

#include "tavelor/frame/reading.hpp"
#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/reference/impuestos.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/list_config.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Articulos: one row an article. Its stock also lies, by warehouse, lot and movement, in
// three other tables that no member here touches.

namespace {

constexpr std::string_view kTodos =
    "SELECT"
    " Codigo as Código, Lista, Referencia, Descripcion as Descripción,"
    " Idioma_1, Idioma_2, Idioma_3,Idioma_4, Idioma_5, Idioma_6,"
    " Seccion as Sección, Familia, Tarifa_A, Tarifa_B, Tarifa_C,"
    " Impuesto, Precio_Coste as Coste, Precio_Medio as Promedio, Descuento, Descuento_D,"
    " Existencia, Unidad_Stock as Unidad, Minimo as Mínimo, Maximo as Máximo,"
    " Pendiente, Activo, Unidad_Compra as Unidades, Medida_Compra as Medida,"
    " Actualizar_Stock as Control, Lotes, Articulo_Compuesto as Paquete,"
    " Interno, Valor_Interno as Valor, Empleado, Merma, Margen, Margen_b, Margen_c,"
    " No_sumar, Repetir, Fecha, Fabricante, Planificar, Restar_Stock, Precio_Venta"
    " FROM "
    "Articulos";
constexpr std::string_view kBreve =
    "SELECT Codigo AS Código, Descripcion AS Descripción , Referencia, Idioma_1, Idioma_2, "
    "Idioma_3,Seccion as Sección, Familia, Tarifa_A, Tarifa_B, Tarifa_C"
    " FROM "
    "Articulos";
constexpr std::string_view kBreveSinTarifas =
    "SELECT Codigo AS Código, Descripcion AS Descripción , Referencia, Idioma_1, Idioma_2, "
    "Idioma_3,Seccion as Sección, Familia"
    " FROM "
    "Articulos";
constexpr std::string_view kBreveConExistencia =
    "SELECT Codigo AS Código, Descripcion AS Descripción , Existencia, Precio_Medio as Promedio, "
    "Referencia, Idioma_1, Idioma_2, Idioma_3,Seccion as Sección, Familia, Tarifa_A, Tarifa_B, "
    "Tarifa_C"
    " FROM "
    "Articulos";

constexpr std::string_view kFormMode = "frmArticulos";

// What "seleccionmixta" joins with & in its middle, "seleccionmixta_cobro" joins with +: there one
// Null empties the whole text. "tarifas" appends a second SELECT, which no engine takes; forms that
// ask for it show the refusal.
constexpr std::array kModes = {
    Mode{"deeliminar",
         "SELECT"
         " Seccion, Familia, Impuesto "
         " FROM "
         "Articulos",
         " WHERE ( Seccion = '{id}' or Familia = '{id}' or Impuesto = '{id}')"},
    Mode{"seleccion", kBreve, " WHERE ( activo <> 0 )"},
    Mode{"seleccionmixta",
         "SELECT Codigo AS Código, [codigo] + ' ' & [Descripcion] + ' ' + [Referencia] AS "
         "Descripción, Descripcion AS Artículo ,  Referencia"
         " FROM "
         "Articulos",
         " WHERE ( activo <> 0 and Lista =  '{id}') or (Actualizar_Stock <> 0 AND activo <> 0 AND "
         "Lista =  'TDS')"},
    Mode{"seleccionmixta_cobro",
         "SELECT Codigo AS Código, [codigo] + ' ' + [Descripcion] + ' ' + [Referencia] AS "
         "Descripción, Descripcion AS Artículo ,  Referencia"
         " FROM "
         "Articulos",
         " WHERE ( activo <> 0 and Interno = 0 and Lista =  '{id}' ) or (Actualizar_Stock <> 0 AND "
         "activo <> 0 AND Lista =  'TDS')"},
    Mode{"selec_plan",
         "SELECT Codigo AS Código, Descripcion AS Descripción , Planificar"
         " FROM "
         "Articulos",
         " WHERE ( activo <> 0 )"},
    Mode{"seleccion_lista", kBreve,
         " WHERE ( activo <> 0 and Lista =  '{id}') or (Actualizar_Stock <> 0 AND activo <> 0 AND "
         "Lista =  'TDS')"},
    Mode{"seleccion_lista_cobro", kBreve,
         " WHERE ( activo <> 0 and Interno = 0 and Lista =  '{id}' ) or (Actualizar_Stock <> 0 AND "
         "activo <> 0)"},
    Mode{"seleccion_lista_almacen", kBreve,
         " WHERE (Articulo_Compuesto = 0 and Actualizar_Stock <> 0 and activo <> 0)"},
    Mode{"seleccion_lista_venta", kBreve,
         " WHERE ( activo <> 0 and Interno = 0 and Lista =  '{id}' ) or (Actualizar_Stock <> 0 AND "
         "activo <> 0 AND Lista =  'TDS')"},
    Mode{"seleccion_tl", kBreveSinTarifas, " WHERE ( activo <> 0 )"},
    Mode{"seleccionnointerno", kBreve, " WHERE ( activo <> 0  and Interno = 0 )"},
    Mode{"seleccionnointernocombo", kBreve,
         " WHERE ( activo <> 0  and Interno = 0 )"
         " Order by Descripcion"},
    Mode{"seleccionnointernocombo_lista_materiales", kBreve,
         " WHERE ( activo <> 0 and Interno = 0 and Lista =  '{id}' ) or (Actualizar_Stock <> 0 AND "
         "activo <> 0 AND Lista =  'TDS')"
         " Order by Descripcion"},
    Mode{"seleccionnointernocombo_lista", kBreve,
         " WHERE ( activo <> 0  and Interno = 0 and Lista =  '{id}' )"
         " Order by Descripcion"},
    Mode{"seleccionnocompuesto", kBreveConExistencia,
         " WHERE (Articulo_Compuesto = 0 and Actualizar_Stock <> 0 and activo <> 0)"},
    Mode{"seleccionstock", kBreveConExistencia,
         " WHERE (Articulo_Compuesto = 0 and Actualizar_Stock <> 0 and activo <> 0 )"},
    Mode{"seleccionstockcombo", kBreve,
         " WHERE (Articulo_Compuesto = 0 and Actualizar_Stock <> 0 and activo <> 0 )"
         " Order by Descripcion"},
    Mode{"tarifas", kTodos, "  SELECT DISTINCT Articulos_Tarifas.Tarifa FROM Articulos_Tarifas;"},
    Mode{"vistarapidastock", kTodos,
         " WHERE (Articulo_Compuesto = 0 and Actualizar_Stock <> 0 and activo <> 0 and Interno = "
         "0)"},
    Mode{"vistarapidanostock", kTodos,
         " WHERE (Articulo_Compuesto = 0 and Actualizar_Stock = 0 and activo <> 0 and Interno = "
         "0)"},
    Mode{"vistarapidainternos", kTodos, " WHERE ( activo <> 0  and Interno <> 0 )"},
    Mode{"vistarapidapack", kTodos, " WHERE ( activo <> 0  and Articulo_Compuesto <> 0)"},
    Mode{"vista rapida", kTodos},
    Mode{kAnyOtherWord, kTodos},
};

constexpr std::array kMadeModes = {kFormMode};

constexpr ClassInfo kInfo = {.word = "Articulos",
                             .table = "Articulos",
                             .modes = kModes,
                             .madeModes = kMadeModes,
                             .find = FindForm::kPrefix,
                             .clearsDataMembers = true};

// A family code is taken to have this many characters, and its articles are numbered with this many
// digits until they run out, whatever the length of the codes.
constexpr std::size_t kFamilyWidth = 3;
// Length of the codes of a new family where none is set.
constexpr std::int32_t kUsualDigits = 6;

const Locale& locale() {
  return Apartment::current().locale();
}

std::string firstOfFamily(std::string_view family, std::int32_t digits) {
  const std::int32_t width = digits == 0 ? kUsualDigits : digits;
  const auto zeros = width - static_cast<std::int32_t>(text::length(family)) - 1;
  return fmt::format("{}{}1", family,
                     std::string(zeros > 0 ? static_cast<unsigned>(zeros) : 0, '0'));
}

// The views' settings lie beside the frame's, under the product alone and not under the company.
ListConfig viewSettings(std::string_view sLlave) {
  const VersionRecord& version = Apartment::current().version();
  ListConfig settings;
  settings.Key(fmt::format("SOFTWARE\\{}\\{}.{}\\Configuracion\\registros\\{}\\", version.product,
                           version.major, version.minor, sLlave));
  return settings;
}

}  // namespace

clsArticulos::clsArticulos() : OpensByWordOnConnection(kInfo) {}

// ---------------------------------------------------------------------------------------------
// Views

// The form of the articles opens as its user left it: stocked ones only, usable ones only.
Statement clsArticulos::modeStatement(std::string& word, const Variant& id) const {
  if (word != kFormMode) return RecordClass::modeStatement(word, id);
  const double stock = asNumber(GetValorClsReg(info().word, "stock", "0"));
  const double activos = asNumber(GetValorClsReg(info().word, "activos", "0"));
  Statement statement(kTodos);
  if (stock == 1 && activos == 0) {
    statement << " WHERE Actualizar_Stock <> 0";
  } else if (stock == 0 && activos == 1) {
    statement << " WHERE Activo <> 0";
  } else if (stock == 1 && activos == 1) {
    statement << " WHERE Actualizar_Stock <> 0 AND Activo <> 0";
  }
  return statement;
}

std::string clsArticulos::GetValorClsReg(std::string_view sLlave, std::string_view sValue,
                                         std::string_view sDef) const {
  return viewSettings(sLlave).GetValue(sValue, sDef);
}

void clsArticulos::SetValorClsReg(std::string_view sLlave, std::string_view sKey,
                                  std::string_view sValue) const {
  viewSettings(sLlave).SetValue(sKey, sValue);
}

std::string clsArticulos::GetTxtFile() const {
  return reportFile("Articulos.txt");
}

bool clsArticulos::isFreeText(const Variant& vId) {
  return joined(vId) == "$$$";
}

// ---------------------------------------------------------------------------------------------
// Codes

// The word has no accent here: the counters take it for none of theirs and answer by their rule for
// other words, not with the length of article codes. Codes of installed shops grew under it.
std::int32_t clsArticulos::codeDigits(ConnectionPtr& objCn) {
  return clsNumeradores().GetLong("Articulos", objCn).toInt16(locale());
}

Variant clsArticulos::newCode(ConnectionPtr& objCn) const {
  const std::int32_t digits = codeDigits(objCn);
  return nextCode(info().codeColumn, digits, objCn);
}

Variant clsArticulos::NuevaRef(ObjCn objCn) const {
  const std::int32_t digits = codeDigits(*objCn);
  return nextCode("Referencia", digits, *objCn);
}

std::string clsArticulos::NuevoCodigo_Fam(std::string_view sFam, ObjCn objCn) const {
  const std::int32_t digits = codeDigits(*objCn);
  Statement statement(
      "SELECT MAX(Codigo) AS Nuevo_Codigo"
      " FROM "
      "Articulos"
      " WHERE (((Familia)='");
  statement << spliced(sFam) << "'));";
  const Variant greatest = read(statement, *objCn)->Field("Nuevo_Codigo").Value();
  if (greatest.isNull()) return firstOfFamily(sFam, digits);

  std::string code = joined(greatest);
  if (isNumeric(greatest, locale())) {
    const bool full = digits > 0 && text::length(code) > static_cast<std::size_t>(digits);
    return full ? code : joined(Variant(asNumber(greatest) + 1));
  }
  const Variant counter(text::mid(code, kFamilyWidth));
  if (!isNumeric(counter, locale())) return code;
  std::string next = joined(Variant(asNumber(counter) + 1));
  if (text::length(next) < kFamilyWidth) next = text::padLeft(next, kFamilyWidth, '0');
  return std::string(sFam) + next;
}

std::string clsArticulos::ObtenerCodigo(InOut<std::string> sMidato) const {
  const std::int32_t digits = clsNumeradores().GetLong("Artículos").toInt32(locale());
  if (digits > 0 && text::length(*sMidato) < static_cast<std::size_t>(digits)) {
    sMidato = text::padLeft(*sMidato, static_cast<std::size_t>(digits), '0');
  }
  return *sMidato;
}

bool clsArticulos::ExisteArt(const Variant& vId, ObjCn objCn) const {
  return anyRow(withId("SELECT Codigo FROM "
                       "Articulos"
                       " Where codigo ='{id}'",
                       vId),
                *objCn);
}

// Without brackets And binds tighter than Or, so one article of list TDS answers for all codes.
// Imports rely on that answer.
bool clsArticulos::ExisteArtEnLista(const Variant& vId, std::string_view sLista,
                                    ObjCn objCn) const {
  Statement statement(
      "SELECT Codigo FROM "
      "Articulos"
      " Where codigo ='");
  statement << spliced(joined(vId)) << "' and Lista ='" << spliced(sLista) << "' or Lista ='TDS'";
  return anyRow(statement, *objCn);
}

bool clsArticulos::CodigoRefLibre(const Variant& vId, const Variant& vIdCodigo, ObjCn objCn) const {
  Statement statement("SELECT Referencia FROM Articulos where (Referencia ='");
  statement << spliced(joined(vId)) << "' and Codigo <>'" << spliced(joined(vIdCodigo)) << "')";
  return !anyRow(statement, *objCn);
}

void clsArticulos::AddNew(bool bDefVal) {
  RecordClass::AddNew(bDefVal);
}

void clsArticulos::setDefaults(bool bDefVal) {
  if (!bDefVal) return;
  Recordset& rows = primary();
  const auto set = [&](std::int32_t position, const Variant& to) {
    rows.Field(position).Value(to);
  };
  const std::int32_t zero = 0;
  const std::int32_t one = 1;
  set(1, "PRC");
  set(2, NuevaRef());
  set(3, "Descripción");
  for (std::int32_t language = 1; language <= 6; ++language) {
    set(3 + language, fmt::format("Idioma_{}", language));
  }
  for (const std::int32_t price : {12, 13, 14, 16, 17}) set(price, zero);
  set(19, zero);  // fixed discount
  set(20, zero);  // stock
  set(21, "Und");
  set(22, one);  // least and greatest stock
  set(23, one);
  set(24, zero);  // on order
  set(25, true);
  set(26, one);  // one stock unit is the purchase unit, by name and by measure
  set(27, one);
  for (std::int32_t flagged = 28; flagged <= 31; ++flagged) set(flagged, false);
  set(32, one);   // points
  set(34, zero);  // waste
  for (const std::int32_t margin : {35, 36, 37}) set(margin, zero);
  set(38, false);
  set(39, false);
  set(40, Apartment::current().clock().today());
  set(41, "Fabricante");
}

// ---------------------------------------------------------------------------------------------
// Flags

bool clsArticulos::flagOf(Statement::Constant select, std::string_view field, const Variant& vId,
                          ObjCn objCn) const {
  Statement statement(select);
  statement << spliced(joined(vId)) << "'";
  const RecordsetPtr rows = read(statement, *objCn);
  return rows->RecordCount() > 0 && asFlag(rows->Field(field).Value());
}

bool clsArticulos::EsPaquete(const Variant& vId, ObjCn objCn) const {
  return flagOf("SELECT Codigo,Articulo_Compuesto as Paquete FROM Articulos where codigo ='",
                "paquete", vId, *objCn);
}

bool clsArticulos::EsInterno(const Variant& vId, ObjCn objCn) const {
  return flagOf("SELECT Codigo, Interno FROM Articulos where codigo ='", "Interno", vId, *objCn);
}

// The flag is not among the columns, so an article that is there raises an error; callers have
// learned to read GetDatos instead.
bool clsArticulos::EsDescontable(const Variant& vId, ObjCn objCn) const {
  return flagOf("SELECT Codigo, Interno FROM Articulos where codigo ='", "Descuento", vId, *objCn);
}

bool clsArticulos::EsNoSumable(const Variant& vId, ObjCn objCn) const {
  return flagOf("SELECT Codigo, No_sumar FROM Articulos where codigo ='", "No_sumar", vId, *objCn);
}

bool clsArticulos::EsRepetible(const Variant& vId, ObjCn objCn) const {
  return flagOf("SELECT Codigo, Repetir FROM Articulos where codigo ='", "Repetir", vId, *objCn);
}

bool clsArticulos::EsdeAlmacen(const Variant& vId, ObjCn objCn) const {
  return flagOf("SELECT Codigo, Actualizar_Stock FROM Articulos where codigo ='",
                "Actualizar_Stock", vId, *objCn);
}

bool clsArticulos::RestaStock_V(const Variant& vId, ObjCn objCn) const {
  return flagOf("SELECT Codigo, Restar_Stock FROM Articulos where codigo ='", "Restar_Stock", vId,
                *objCn);
}

bool clsArticulos::EsdeAlmacenVenta(const Variant& vId, ObjCn objCn) const {
  return RestaStock_V(vId, *objCn);
}

// ---------------------------------------------------------------------------------------------
// Single values

Variant clsArticulos::columnOf(Statement::Constant columnText, std::string_view field,
                               const Variant& vId, ObjCn objCn) const {
  Statement statement("SELECT");
  statement << columnText << " FROM Articulos"
            << " WHERE Codigo = '" << spliced(joined(vId)) << "'";
  const RecordsetPtr rows = read(statement, *objCn);
  return rows->RecordCount() == 0 ? Variant() : rows->Field(field).Value();
}

double clsArticulos::numberOf(Statement::Constant columnText, std::string_view field,
                              const Variant& vId, ObjCn objCn) const {
  return columnOf(columnText, field, vId, *objCn).toDouble(locale());
}

double clsArticulos::GetRecargo(const Variant& vId, ObjCn objCn) const {
  return ClsImpuestos().GetRecargo(GetImpuesto(vId, *objCn), *objCn);
}

double clsArticulos::GetPorcentIva(const Variant& vId, ObjCn objCn) const {
  return ClsImpuestos().GetImpuesto(vId, *objCn);
}

double clsArticulos::GetPrecioVenta(const Variant& vId, ObjCn objCn) const {
  return numberOf(" Precio_Venta", "Precio_Venta", vId, *objCn);
}

double clsArticulos::GetMediaUnitaria(const Variant& vId, ObjCn objCn) const {
  return numberOf("  [Precio_Medio]/[medida_compra] AS Precio", "Precio", vId, *objCn);
}

double clsArticulos::GetValorInterno(const Variant& vId, ObjCn objCn) const {
  return asNumber(columnOf(" Valor_interno", "Valor_interno", vId, *objCn));
}

Variant clsArticulos::GetImpuesto(const Variant& vId, ObjCn objCn) const {
  return columnOf(" Impuesto", "Impuesto", vId, *objCn);
}

Variant clsArticulos::GetDescripcion(const Variant& vId, ObjCn objCn) const {
  return columnOf(" Descripcion", "Descripcion", vId, *objCn);
}

Variant clsArticulos::GetFamilia(const Variant& vId, ObjCn objCn) const {
  return columnOf(" Familia", "Familia", vId, *objCn);
}

Variant clsArticulos::GetSeccion(const Variant& vId, ObjCn objCn) const {
  return lookUp(withId("SELECT"
                       " Seccion"
                       " FROM Articulos"
                       " WHERE Codigo = '{id}'",
                       vId),
                "Seccion", *objCn);
}

Variant clsArticulos::GetEmpleado(const Variant& vId, ObjCn objCn) const {
  return lookUp(withId("SELECT"
                       " Empleado"
                       " FROM Articulos"
                       " WHERE Codigo = '{id}'",
                       vId),
                "Empleado", *objCn);
}

Variant clsArticulos::GetMedidaCompra(const Variant& vId, ObjCn objCn) const {
  return columnOf(" Medida_compra as Medida", "Medida", vId, *objCn);
}

bool clsArticulos::ObtenerDescripcion(const Variant& vId, InOut<std::string> sDescrip,
                                      ObjCn objCn) const {
  const Variant found = columnOf(" Descripcion", "Descripcion", vId, *objCn);
  if (!found.isEmpty() && !found.isNull()) sDescrip = joined(found);
  return !found.isEmpty();
}

}  // namespace tavelor
