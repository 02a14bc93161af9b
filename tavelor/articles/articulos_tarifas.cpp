// SPDX-License-Identifier: MIT
// clsArticulos: the sale tariffs, and the edits of single prices and costs.
//
// Tariffs A, B and C are columns of Articulos; D to T, with Ñ, are rows of Articulos_Tarifas: one
// an article and tariff, with the name that users see.
#include <array>
#include <string>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/articulos_almacenes.hpp"
#include "tavelor/articles/euros.hpp"
#include "tavelor/articles/stock.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/format_global.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kEveryFamily = "Todas";
constexpr std::string_view kBothLists = "PRC + TDS";

/// How screens name the tariffs that are rows.
struct RowTariff {
  std::string_view key;
  Statement::Constant letter;
};
constexpr std::array<RowTariff, 18> kRowTariffs = {{{"tf3", "D"},
                                                    {"tf4", "E"},
                                                    {"tf5", "F"},
                                                    {"tf6", "G"},
                                                    {"tf7", "H"},
                                                    {"tf8", "I"},
                                                    {"tf9", "J"},
                                                    {"tf10", "K"},
                                                    {"tf11", "L"},
                                                    {"tf12", "M"},
                                                    {"tf13", "N"},
                                                    {"tf14", "Ñ"},
                                                    {"tf15", "O"},
                                                    {"tf16", "P"},
                                                    {"tf17", "Q"},
                                                    {"tf18", "R"},
                                                    {"tf19", "S"},
                                                    {"tf20", "T"}}};

/// The column of a tariff by its letter; "" for the others.
Statement::Constant columnOfTariff(std::string_view sTarifa) {
  if (sTarifa == "A") return "TARIFA_a";
  if (sTarifa == "B") return "TARIFA_b";
  if (sTarifa == "C") return "TARIFA_c";
  return {};
}

std::string decimals() {
  return std::to_string(Apartment::current().formatGlobal().CurrencyDecimals());
}

/// " WHERE(Codigo ='A100')"
Statement ofArticle(const std::string& code) {
  Statement condition(" WHERE(Codigo ='");
  condition << spliced(code) << "')";
  return condition;
}

/// The price `price` raised by `percent`, rounded.
Statement risen(Statement::Constant price, const std::string& percent) {
  Statement formula("ROUND(((");
  formula << price << " * " << spliced(percent) << ")/100)+" << price << "," << spliced(decimals())
          << ")";
  return formula;
}

Statement riseOfColumn(Statement::Constant column, Statement::Constant price,
                       const std::string& percent) {
  Statement statement("UPDATE  Articulos SET ");
  statement << column << " =  " << risen(price, percent) << " WHERE (";
  return statement;
}

Statement riseOfRows(Statement::Constant letter, const std::string& percent) {
  Statement statement(
      "UPDATE  Articulos INNER JOIN Articulos_Tarifas"
      " ON Articulos.Codigo = Articulos_Tarifas.Codigo SET Articulos_Tarifas.Precio = ");
  statement << risen("Articulos_Tarifas.Precio", percent) << " WHERE (((Articulos_Tarifas.Tarifa)='"
            << letter << "') AND ";
  return statement;
}

/// Nothing for a key that is none: what follows is then no statement, and is refused.
Statement riseOf(const std::string& key, const std::string& percent) {
  if (key == "a") return riseOfColumn("TARIFA_a", "tarifa_a", percent);
  if (key == "b") return riseOfColumn("TARIFA_b", "tarifa_b", percent);
  if (key == "c") return riseOfColumn("TARIFA_c", "tarifa_c", percent);
  for (const RowTariff& tariff : kRowTariffs) {
    if (tariff.key == key) return riseOfRows(tariff.letter, percent);
  }
  return {};
}

/// Of both lists there is an Or without brackets of its own. Behind the letter of a row tariff it
/// stands outside of the And, so that all row tariffs of the articles of list PRC rise, whatever
/// their letter. Shops have priced by that for years: it stays.
Statement articlesThatRise(std::string_view sFamilia, std::string_view sLista) {
  Statement filter;
  if (sFamilia != kEveryFamily) {
    filter << " Familia Like '" << spliced(sFamilia) << "' and Lista Like '" << spliced(sLista)
           << "');";
  } else if (sLista == kBothLists) {
    filter << " (Lista) Like 'TDS' OR (Lista) Like 'PRC');";
  } else {
    filter << " (Lista) Like '" << spliced(sLista) << "');";
  }
  return filter;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// One price

double clsArticulos::GetPrecioTarifa(const Variant& vId, std::string_view sTarifa,
                                     ObjCn objCn) const {
  Statement statement("SELECT Precio FROM Articulos_Tarifas WHERE Codigo = '");
  statement << spliced(joined(vId)) << "' and Tarifa = '" << spliced(sTarifa) << "'";
  const RecordsetPtr rows = read(statement, *objCn);
  if (rows->RecordCount() == 0) return 0;
  return rows->Field("Precio").Value().toDouble(Apartment::current().locale());
}

void clsArticulos::ActualizaPrecioTarifa(const Variant& vId, std::string_view sTarifa,
                                         double dPrecio, ObjCn cnnActive) const {
  // Not used. It is what fills an empty connection and what fails first, so it is still asked.
  ClsArticulosAlmacenes().GetStockActual(vId, *cnnActive);
  Statement statement("UPDATE Articulos_Tarifas SET Articulos_Tarifas.Precio  = ");
  statement << spliced(stock::bare(dPrecio)) << " WHERE (Codigo ='" << spliced(joined(vId))
            << "' AND Articulos_Tarifas.Tarifa ='" << spliced(sTarifa) << "' );";
  write(statement, *cnnActive);
}

// The price of a new row is 0: callers make the row first and write its price after.
void clsArticulos::InsertarPrecioTarifa(const Variant& vId, std::string_view sTarifa,
                                        double /*dPrecio*/, ObjCn cnnActive) const {
  Statement statement("INSERT INTO Articulos_Tarifas ( Codigo, Nombre, Tarifa, Precio ) values ( ");
  statement << "'" << spliced(joined(vId)) << "','Tarifa " << spliced(sTarifa) << "','"
            << spliced(sTarifa) << "', '0' )";
  write(statement, *cnnActive);
}

void clsArticulos::ActualizarTarifa(const Variant& vId, double dPrecio, std::string_view sTarifa,
                                    ObjCn cnnActive) const {
  if (isFreeText(vId)) return;
  Statement statement("UPDATE  Articulos SET ");
  if (sTarifa == "A") statement << " Tarifa_A = '";
  if (sTarifa == "B") statement << " Tarifa_B = '";
  if (sTarifa == "C") statement << " Tarifa_C = '";
  statement << spliced(stock::plain(dPrecio)) << "'" << ofArticle(joined(vId));
  write(statement, *cnnActive);
}

void clsArticulos::ActualizarPrecio(const Variant& vId, double dPrecio, double dDto,
                                    ObjCn cnnActive) const {
  if (isFreeText(vId)) return;
  if (dDto != 0) dPrecio -= dPrecio * dDto / 100;
  Statement statement("UPDATE  Articulos SET Precio_Coste = '");
  statement << spliced(stock::plain(dPrecio)) << "'" << ofArticle(joined(vId));
  write(statement, *cnnActive);
}

void clsArticulos::ActualizarDto_D(const Variant& vId, double dDto_D, ObjCn cnnActive) const {
  if (isFreeText(vId)) return;
  Statement statement("UPDATE  Articulos SET  Descuento_D = '");
  statement << spliced(stock::plain(dDto_D)) << "'" << ofArticle(joined(vId));
  write(statement, *cnnActive);
}

double clsArticulos::ObtenerDto_D(const Variant& vId, std::string_view /*sLista*/,
                                  ObjCn objCn) const {
  const RecordsetPtr rows =
      read(withId("SELECT Descuento_D FROM Articulos WHERE ( Codigo = '{id}')", vId), *objCn);
  if (rows->RecordCount() == 0) return 0;
  return rows->Field("Descuento_D").Value().toDouble(Apartment::current().locale());
}

// ---------------------------------------------------------------------------------------------
// Lists

std::vector<Variant> clsArticulos::ObtenerCol_Tarifas(ObjCn objCn) const {
  return columnValues(
      *read(Statement("  SELECT DISTINCT Articulos_Tarifas.Tarifa FROM Articulos_Tarifas;"),
            *objCn),
      "Tarifa");
}

std::vector<Variant> clsArticulos::ObtenerCol_TarifasArticulo(std::string_view sId,
                                                              ObjCn objCn) const {
  const RecordsetPtr rows =
      read(withId("SELECT Articulos_Tarifas.Tarifa, Articulos_Tarifas.Precio"
                  " From Articulos_Tarifas"
                  " WHERE (((Articulos_Tarifas.Codigo)='{id}')) Order by Tarifa ;",
                  sId),
           *objCn);
  std::vector<Variant> prices;
  for (; !rows->Eof(); rows->MoveNext()) {
    prices.emplace_back(joined(rows->Field("Tarifa").Value()) + ": " +
                        joined(rows->Field("Precio").Value()));
  }
  return prices;
}

// ---------------------------------------------------------------------------------------------
// Whole tariffs

void clsArticulos::ActualizarTarifas(std::string_view sTarifa, double dPorcent,
                                     std::string_view sFamilia, std::string_view sLista,
                                     ObjCn cnnActive) const {
  Statement statement = riseOf(text::lower(sTarifa), stock::bare(stock::rounded(dPorcent)));
  statement << articlesThatRise(sFamilia, sLista);
  write(statement, *cnnActive);
}

void clsArticulos::EliminarTarifaPrecios(std::string_view sTarifa, ObjCn cnnActive) const {
  write(withId("DELETE Articulos_Tarifas.* From Articulos_Tarifas"
               " WHERE (((Articulos_Tarifas.Tarifa)='{id}'));",
               sTarifa),
        *cnnActive);
}

void clsArticulos::DeleteAllTarifas(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Articulos_Tarifas WHERE ( Codigo =  '{id}')", vId), *cnnActive);
}

void clsArticulos::CopiatTarifaPrecios(std::string_view sTarifa, std::string_view SNewTarifa,
                                       ObjCn cnnActive) const {
  Statement statement("UPDATE Articulos SET");
  if (const Statement::Constant to = columnOfTariff(SNewTarifa); !to.empty()) {
    statement << " Articulos." << to << " = ";
  }
  if (const Statement::Constant from = columnOfTariff(sTarifa); !from.empty()) {
    statement << "Articulos." << from << "; ";
  }
  write(statement, *cnnActive);
}

void clsArticulos::CrearTarifaPrecios(std::string_view sTarifa, std::string_view SNewTarifa,
                                      std::string_view sNombre, ObjCn cnnActive) const {
  const Statement::Constant column = columnOfTariff(sTarifa);
  const bool ofColumn = !column.empty();
  Statement statement("INSERT INTO Articulos_Tarifas ( Codigo, Nombre, Tarifa, Precio ) SELECT ");
  statement << (ofColumn ? Statement::Constant("Articulos.Codigo, '")
                         : "Articulos_Tarifas.Codigo, '")
            << spliced(sNombre) << "' AS Expr1, '" << spliced(SNewTarifa)
            << (sTarifa == "C" ? Statement::Constant("'AS") : "' AS") << " Expr2, ";
  if (ofColumn) {
    statement << "Articulos." << column << " FROM Articulos;";
  } else {
    statement << "Articulos_Tarifas.Precio From Articulos_Tarifas"
                 " WHERE (((Articulos_Tarifas.Tarifa)='"
              << spliced(sTarifa) << "'));";
  }
  write(statement, *cnnActive);
}

// Three statements and no transaction of their own. The divisor has a decimal comma: under another
// locale it is another number.
void clsArticulos::ActualizarEuros(ObjCn cnnActive) const {
  write(euros::nullToZero(info().table, "Precio_Coste"), *cnnActive);
  write(euros::nullToZero(info().table, "Precio_Medio"), *cnnActive);
  write(Statement("UPDATE Articulos SET"
                  " Articulos.TARIFA_a = Format([TARIFA_a]/'166,386','Currency'),"
                  " Articulos.TARIFA_b = Format([TARIFA_b]/'166,386','Currency'),"
                  " Articulos.TARIFA_c = Format([TARIFA_c]/'166,386','Currency'),"
                  " Articulos.Precio_Coste = Format([Precio_Coste]/'166,386','Currency'),"
                  " Articulos.Precio_Medio = Format([Precio_Medio]/'166,386','Currency');"),
        *cnnActive);
}

}  // namespace tavelor
