// SPDX-License-Identifier: MIT
// clsArticulos: what fills a document line, and the writes of whole articles.
#include <array>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/format_global.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

using Datos = clsArticulos::Datos;

constexpr std::string_view kUsualList = "PRC";

std::string_view listOrUsual(const std::string& list) {
  return list.empty() ? kUsualList : std::string_view(list);
}

Statement::Constant descriptionColumn(std::string_view sQIdioma) {
  struct Language {
    std::string_view word;
    Statement::Constant column;
  };
  constexpr std::array<Language, 6> kLanguages = {{{"Idioma 1", " Idioma_1 as Descripción,"},
                                                   {"Idioma 2", " Idioma_2 as Descripción,"},
                                                   {"Idioma 3", " Idioma_3 as Descripción,"},
                                                   {"Idioma 4", " Idioma_4 as Descripción,"},
                                                   {"Idioma 5", " Idioma_5 as Descripción,"},
                                                   {"Idioma 6", " Idioma_6 as Descripción,"}}};
  for (const Language& language : kLanguages) {
    if (language.word == sQIdioma) return language.column;
  }
  return " Descripcion as Descripción,";
}

Statement::Constant priceColumn(std::string_view sTarifa) {
  if (sTarifa == "B") return " Tarifa_B as Precio,";
  if (sTarifa == "C") return " Tarifa_C as Precio,";
  return " Tarifa_A as Precio,";
}

// The columns of a line, and the row that was typed: by `codeColumn`, or by its description.
Statement lineOf(const Datos& datos, Statement::Constant codeColumn, std::string_view code) {
  Statement statement("SELECT");
  statement << " Codigo as Código, Referencia," << descriptionColumn(datos.sQIdioma)
            << " Seccion as Sección, Familia," << priceColumn(datos.sTarifa)
            << " Impuesto, Precio_Coste as Coste, Precio_Medio as Promedio, Descuento,"
               " Existencia, Unidad_Stock as Unidad, Minimo as Mínimo, Maximo as Máximo,"
               " Pendiente, Activo, Unidad_Compra as Unidades, Medida_Compra as Medida,"
               " Actualizar_Stock as Control, Lotes, Articulo_Compuesto as Paquete,"
               " Interno, Valor_Interno as Valor, Empleado, Merma"
               " FROM Articulos";
  if (datos.index == 0) {
    statement << " Where (" << codeColumn << " = '" << spliced(code) << "'";
  } else {
    statement << " Where (Descripcion = '" << spliced(datos.sDescripcion) << "'";
  }
  return statement;
}

// All outputs of a line but its code.
void takeLine(Recordset& rows, Datos& datos) {
  takeColumn(rows, "Descripción", datos.sDescripcion);
  takeColumn(rows, "Sección", datos.sSeccion);
  takeColumn(rows, "Familia", datos.sFamilia);
  takeColumn(rows, "Precio", datos.dPrecio);
  takeColumn(rows, "Impuesto", datos.sImpuesto);
  takeColumn(rows, "Existencia", datos.dExistencia);
  datos.bDto = asFlag(rows.Field("Descuento").Value());
  datos.bLotes = asFlag(rows.Field("Lotes").Value());
  datos.bInterno = asFlag(rows.Field("Interno").Value());
  if (datos.mbIsProvider) takeColumn(rows, "Promedio", datos.dPrecio);
  datos.dPuntos = 1;
  takeColumn(rows, "Valor", datos.dPuntos);
  takeColumn(rows, "Empleado", datos.sEmpleado);
  takeColumn(rows, "Merma", datos.dMerma);
}

void takeCode(Recordset& rows, Variant& vId) {
  const Variant code = rows.Field("Código").Value();
  if (!code.isNull()) vId = code;
}

// Points, employee and waste are not handed on when an article is looked for by its reference.
void findByReference(const clsArticulos& articles, Datos& datos) {
  const std::string sEmpleado = datos.sEmpleado;
  const double dPuntos = datos.dPuntos;
  const double dMerma = datos.dMerma;
  articles.GetDatosReferencia(datos);
  datos.sEmpleado = sEmpleado;
  datos.dPuntos = dPuntos;
  datos.dMerma = dMerma;
}

void clearLine(Datos& datos) {
  datos.vId = "";
  datos.sDescripcion.clear();
  datos.sSeccion.clear();
  datos.sFamilia.clear();
  datos.sImpuesto.clear();
  datos.sEmpleado.clear();
  datos.dPrecio = 0;
  datos.dExistencia = 0;
  datos.dMerma = 0;
  datos.bLotes = false;
  datos.bInterno = false;
  // Free text admits a discount, and that is what a line without an article becomes.
  datos.bDto = true;
}

std::string sqlNumber(double number) {
  return Apartment::current().formatGlobal().SqlNumber(number, 6);
}

// A flag in a statement is -1 or 0, whatever the words of the locale.
std::string_view flagNumber(bool flag) {
  return flag ? "-1" : "0";
}

std::string wholeNumber(double number) {
  const Locale& locale = Apartment::current().locale();
  return Variant(Variant(number).toInt16(locale)).toText(locale);
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Filling a document line

void clsArticulos::GetDatos(Datos& datos) const {
  Statement statement = lineOf(datos, "Codigo", joined(datos.vId));
  if (datos.mbIsProvider) {
    // No blank before the second "and": the dialect ends a number at the letter.
    statement << " and Articulo_Compuesto = 0 And Actualizar_Stock <> 0and Activo <> 0 )";
  } else {
    statement << " and Activo <> 0 and (Lista = '" << spliced(listOrUsual(datos.sLista))
              << "' or Actualizar_Stock <> 0))";
  }
  const RecordsetPtr rows = read(statement, *datos.objCn);
  if (rows->RecordCount() == 0) return findByReference(*this, datos);
  takeCode(*rows, datos.vId);
  takeLine(*rows, datos);
  if (datos.mbIsAlbAlmacen) takeColumn(*rows, "Coste", datos.dPrecio);
}

void clsArticulos::GetDatoslote(Datos& datos) const {
  Statement statement = lineOf(datos, "Codigo", joined(datos.vId));
  if (datos.mbIsProvider) statement << " and Articulo_Compuesto = 0 And Actualizar_Stock <> 0";
  statement << " and Activo <> 0 )";
  const RecordsetPtr rows = read(statement, *datos.objCn);
  if (rows->RecordCount() == 0) return findByReference(*this, datos);
  takeLine(*rows, datos);
}

void clsArticulos::GetDatosReferencia(Datos& datos) const {
  Statement statement = lineOf(datos, "Referencia", joined(datos.vId));
  if (datos.mbIsProvider) {
    statement << " and Articulo_Compuesto = 0 And Actualizar_Stock <> 0";
  } else {
    statement << " and Lista = '" << spliced(listOrUsual(datos.sLista)) << "' ";
  }
  statement << " and Activo <> 0 )";
  const RecordsetPtr rows = read(statement, *datos.objCn);
  if (rows->RecordCount() == 0) return clearLine(datos);
  takeCode(*rows, datos.vId);
  takeLine(*rows, datos);
}

void clsArticulos::GetDatosImport(DatosImport& datos) const {
  const RecordsetPtr rows =
      readOn(selector::kImport,
             withId("SELECT"
                    " Codigo as Código, Referencia,"
                    " Descripcion,"
                    " Seccion as Sección, Familia,"
                    " Tarifa_A as Precio_A,"
                    " Tarifa_B as Precio_B,"
                    " Tarifa_c as Precio_C,"
                    " Impuesto, Precio_Coste as Coste, Precio_Medio as Promedio, Descuento,"
                    " Existencia, Unidad_Stock as Unidad, Minimo as Mínimo, Maximo as Máximo,"
                    " Pendiente, Activo, Unidad_Compra as Unidades, Medida_Compra as Medida,"
                    " Actualizar_Stock as Control, Lotes, Articulo_Compuesto as Paquete,"
                    " Interno, Valor_Interno as Valor, Empleado, Merma, Lista, Descuento_D"
                    " FROM Articulos"
                    " Where ("
                    " Codigo = '{id}'"
                    " )",
                    datos.vId),
             *datos.objCn);
  if (rows->RecordCount() == 0) return;
  takeCode(*rows, datos.vId);
  takeColumn(*rows, "Descripcion", datos.sDescripcion);
  takeColumn(*rows, "Sección", datos.sSeccion);
  takeColumn(*rows, "Familia", datos.sFamilia);
  takeColumn(*rows, "Precio_A", datos.dPrecio_A);
  takeColumn(*rows, "Precio_B", datos.dPrecio_B);
  takeColumn(*rows, "Precio_C", datos.dPrecio_C);
  takeColumn(*rows, "Descuento", datos.bDto);
  takeColumn(*rows, "Impuesto", datos.sImpuesto);
  takeColumn(*rows, "Existencia", datos.dExistencia);
  takeColumn(*rows, "Lotes", datos.bLotes);
  takeColumn(*rows, "Interno", datos.bInterno);
  takeColumn(*rows, "Control", datos.bStock);
  takeColumn(*rows, "Activo", datos.bActivo);
  takeColumn(*rows, "Lista", datos.sLista);
  takeColumn(*rows, "Descuento_D", datos.dDto_D);
}

void clsArticulos::ObtenerRegistroActivo(InOut<Variant> vId, InOut<std::string> sDescripcion,
                                         InOut<double> dPrecio,
                                         InOut<std::string> sImpuesto) const {
  Recordset& rows = primary();
  takeCode(rows, *vId);
  sDescripcion = joined(rows.Field("Descripción").Value());
  takeColumn(rows, "Tarifa_A", *dPrecio);
  takeColumn(rows, "Impuesto", *sImpuesto);
}

// ---------------------------------------------------------------------------------------------
// Writing articles

// Numbers without quotes have a decimal point; the discount stands between quotes and is printed
// and read by the locale.
void clsArticulos::Insertar(const Alta& alta) const {
  const std::string code = joined(alta.vId);
  const Statement::Value description = spliced(alta.sDescripcion);
  Statement statement(
      "INSERT INTO Articulos ( "
      "Codigo, Lista, Referencia, Descripcion,"
      " Idioma_1, Idioma_2, Idioma_3, Idioma_4, Idioma_5, Idioma_6,"
      " Seccion, Familia, Tarifa_A, Tarifa_B, Tarifa_C, Impuesto, Precio_Coste, Precio_Medio,"
      " Descuento, Descuento_D, Existencia, Unidad_Stock, Minimo, Maximo, Pendiente, Activo,"
      " Unidad_Compra, Medida_Compra, Actualizar_Stock, Lotes, Articulo_Compuesto, Interno,"
      " Valor_Interno, Empleado, Merma, Fecha"
      " )"
      " values ( '");
  statement << spliced(code) << "', '" << spliced(listOrUsual(alta.sLista)) << "', '"
            << spliced(code) << "', '" << description;
  for (int language = 1; language <= 6; ++language) statement << "', '" << description;
  statement << "', '" << spliced(alta.sSeccion) << "', '" << spliced(alta.sFamilia) << "', "
            << spliced(sqlNumber(alta.dPrecio)) << ", " << spliced(sqlNumber(alta.dPrecio_B))
            << ", " << spliced(sqlNumber(alta.dPrecio_C)) << ", '" << spliced(alta.sImpuesto)
            << "', '0', '0', '-1', '" << spliced(joined(alta.dDto_D)) << "', "
            << spliced(sqlNumber(alta.dExistencia)) << ", 'Und', '1', '100', '0', '"
            << spliced(flagNumber(alta.bActivo)) << "', 'Und', '1', '"
            << spliced(wholeNumber(alta.bStock)) << "', '" << spliced(wholeNumber(alta.bLotes))
            << "', '0', '0', '0', '0', '0', "
            << spliced(
                   DataSession().DateLiteral(info().selector, Apartment::current().clock().today()))
            << " )";
  write(statement, *alta.objCn);
}

// The fixed discount is printed by the locale and stands without quotes: under a decimal comma a
// percentage with decimals breaks the statement, and is refused rather than cut.
void clsArticulos::Actualizar(const Cambio& cambio) const {
  const std::string code = joined(cambio.vId);
  Statement statement(
      "UPDATE  Articulos SET "
      " Referencia = '");
  statement << spliced(code)
            << "',"
               " Descripcion = '"
            << spliced(cambio.sDescripcion)
            << "',"
               " Seccion = '"
            << spliced(cambio.sSeccion)
            << "',"
               " Familia = '"
            << spliced(cambio.sFamilia)
            << "',"
               " Tarifa_A = "
            << spliced(sqlNumber(cambio.dPrecio))
            << ","
               " Tarifa_B = "
            << spliced(sqlNumber(cambio.dPrecio_B))
            << ","
               " Tarifa_C = "
            << spliced(sqlNumber(cambio.dPrecio_C))
            << ","
               " Lista = '"
            << spliced(listOrUsual(cambio.sLista))
            << "',"
               " Descuento =  "
            << spliced(flagNumber(cambio.bDto))
            << ","
               " Descuento_D = "
            << spliced(joined(cambio.bDto_D))
            << ","
               " Activo = '"
            << spliced(flagNumber(cambio.bActivo))
            << "' "
               " WHERE(Codigo ='"
            << spliced(code) << "')";
  write(statement, *cambio.objCn);
}

void clsArticulos::CambiarListarticulo(const Variant& vId, std::string_view sLista,
                                       ObjCn cnnActive) const {
  Statement statement(
      "UPDATE "
      "Articulos"
      " SET Lista = '");
  statement << spliced(sLista)
            << "' "
               " WHERE (Codigo = '"
            << spliced(joined(vId)) << "')";
  write(statement, *cnnActive);
}

void clsArticulos::CambiarEstadoarticulo(const Variant& vId, double bModo, ObjCn cnnActive) const {
  Statement statement(
      "UPDATE "
      "Articulos"
      " SET Activo = ");
  statement << spliced(sqlNumber(bModo))
            << " "
               " WHERE (Codigo = '"
            << spliced(joined(vId)) << "')";
  write(statement, *cnnActive);
}

void clsArticulos::CambiarDescripcionarticulo(const Variant& vId, std::string_view sDescrip,
                                              std::string_view sFamilia, std::string_view sSeccion,
                                              ObjCn cnnActive) const {
  Statement statement(
      "UPDATE "
      "Articulos"
      " SET Descripcion = '");
  statement << spliced(sDescrip) << "', Familia = '" << spliced(sFamilia) << "', Seccion = '"
            << spliced(sSeccion)
            << "'  "
               " WHERE (Codigo = '"
            << spliced(joined(vId)) << "')";
  write(statement, *cnnActive);
}

}  // namespace tavelor
