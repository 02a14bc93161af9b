// SPDX-License-Identifier: MIT
// ClsArticulosPrecios, purchase prices by supplier.
#include "tavelor/articles/articulos_precios.hpp"

#include <array>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/euros.hpp"
#include "tavelor/articles/stock.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"

namespace tavelor {

// Table Articulos_Precios_Compras: Precio that the supplier Proveedor charges for the article
// Codigo, which he calls Codigo_Proveedor.

namespace {

constexpr std::string_view kTodos =
    "SELECT Id, Codigo_Proveedor as Referencia, Codigo AS Código, Proveedor, Precio"
    " FROM Articulos_Precios_Compras";
// Id and Proveedor stand without their table: no other one of the join may have such a column.
constexpr std::string_view kConNombres =
    "SELECT Id, Articulos_Precios_Compras.Codigo_Proveedor as Referencia,"
    " Articulos_Precios_Compras.Codigo AS Código, Articulos.Descripcion,"
    " Articulos_Precios_Compras.Proveedor, Proveedores.Razon_Social as Empresa,"
    " Articulos_Precios_Compras.Precio"
    " FROM (Articulos_Precios_Compras"
    " INNER JOIN Articulos ON Articulos_Precios_Compras.Codigo = Articulos.Codigo)"
    " INNER JOIN Proveedores ON Articulos_Precios_Compras.Proveedor = Proveedores.Codigo";

constexpr std::array kModes = {
    Mode{"seleccion", kTodos, " WHERE ( Codigo =  '{id}' or Proveedor =  '{id}')"},
    Mode{"seleccionproveedor", kConNombres, " WHERE ( Proveedor =  '{id}')"},
    Mode{"seleccionarticulo", kConNombres, " WHERE ( Articulos_Precios_Compras.Codigo =  '{id}')"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Articulos_Precios_Compras",
    .table = "Articulos_Precios_Compras",
    .codeColumn = "Id",
    .modes = kModes,
    .addNew = AddNewForm::kShort,
};

Statement ofPair(Statement::Constant before, const std::string& first, Statement::Constant between,
                 const std::string& second, Statement::Constant after) {
  Statement statement(before);
  statement << spliced(first) << between << spliced(second) << after;
  return statement;
}

}  // namespace

ClsArticulosPrecios::ClsArticulosPrecios() : OpensByWord(kInfo) {}

void ClsArticulosPrecios::ActualizarEuros(ObjCn cnnActive) const {
  write(euros::nullToZero(kInfo.table), *cnnActive);
  write(euros::pricesInEuros(kInfo.table), *cnnActive);
}

// The blank before the last quote is part of the code that is looked for, and texts compare to the
// last blank.
Variant ClsArticulosPrecios::GetArticulo(const Variant& vId, const Variant& vIdPro,
                                         ObjCn objCn) const {
  return lookUp(ofPair("SELECT Codigo FROM Articulos_Precios_Compras WHERE (Codigo_Proveedor  =  '",
                       joined(vId), "' and Proveedor = '", joined(vIdPro), " ')"),
                "Codigo", *objCn);
}

void ClsArticulosPrecios::ActualizarPrecio(const Variant& vId, const Variant& vIdPro,
                                           double dPrecio, ObjCn cnnActive) const {
  if (clsArticulos::isFreeText(vId)) return;
  const std::string price = stock::plain(dPrecio);
  Statement statement;
  if (ExistePrecio(vId, vIdPro, *cnnActive)) {
    statement << "UPDATE  Articulos_Precios_Compras SET Precio =  '" << spliced(price)
              << ofPair("' WHERE(Codigo ='", joined(vId), "' and Proveedor ='", joined(vIdPro),
                        "' )");
  } else {
    statement << "INSERT INTO Articulos_Precios_Compras ( Id, Codigo, Proveedor, Precio ) SELECT "
              << spliced(joined(NuevoCodigo(*cnnActive)))
              << ofPair(" AS Expr1, '", joined(vId), "' AS Expr2, '", joined(vIdPro),
                        "' AS Expr3, '")
              << spliced(price) << "' AS Expr4";
  }
  write(statement, *cnnActive);
}

bool ClsArticulosPrecios::ExistePrecio(const Variant& vId, const Variant& vIdPro,
                                       ObjCn objCn) const {
  return anyRow(ofPair("SELECT Id, Codigo AS Código, Proveedor, Precio"
                       " FROM Articulos_Precios_Compras WHERE ( Codigo =  '",
                       joined(vId), "' and  Proveedor =  '", joined(vIdPro), "')"),
                *objCn);
}

void ClsArticulosPrecios::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Articulos_Precios_Compras"
               " WHERE ( Codigo =  '{id}' or Proveedor =  '{id}')",
               vId),
        *cnnActive);
}

void ClsArticulosPrecios::DeleteId(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Articulos_Precios_Compras WHERE ( Id =  {id} )", vId), *cnnActive);
}

double ClsArticulosPrecios::GetPrecioCompra(const Variant& vId, const Variant& vIdProv,
                                            double dPrecio, ObjCn objCn) const {
  const Variant price =
      lookUp(ofPair("SELECT Precio FROM Articulos_Precios_Compras WHERE ( Codigo =  '", joined(vId),
                    "' and Proveedor =  '", joined(vIdProv), "')"),
             "Precio", *objCn);
  return price.isEmpty() ? dPrecio : asNumber(price);
}

bool ClsArticulosPrecios::CodigoLibreTotal(const Variant& vIdSec, ObjCn objCn) const {
  return !anyRow(withId("SELECT proveedor, Codigo FROM Articulos_Precios_Compras"
                        " where ( Codigo='{id}')",
                        vIdSec),
                 *objCn);
}

bool ClsArticulosPrecios::CodigoLibre(const Variant& vId, const Variant& vIdSec,
                                      ObjCn objCn) const {
  return !anyRow(ofPair("SELECT proveedor, Codigo FROM Articulos_Precios_Compras"
                        " where ( proveedor ='",
                        joined(vId), "' and Codigo='", joined(vIdSec), "')"),
                 *objCn);
}

const Component& ClsArticulosPrecios::component() {
  using C = ClsArticulosPrecios;
  static const Component table(
      "ClsArticulosPrecios", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B606}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("ActualizarEuros", &C::ActualizarEuros, "[cnnActive]"),
          member("GetArticulo", &C::GetArticulo, "vId, vIdPro, [objCn]"),
          member("ActualizarPrecio", &C::ActualizarPrecio, "vId, vIdPro, dPrecio, [cnnActive]"),
          member("ExistePrecio", &C::ExistePrecio, "vId, vIdPro, [objCn]"),
          member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
          member("DeleteId", &C::DeleteId, "vId, [cnnActive]"),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
          member("GetPrecioCompra", &C::GetPrecioCompra, "vId, vIdProv, dPrecio, [objCn]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          member("CodigoLibreTotal", &C::CodigoLibreTotal, "vIdSec, [objCn]"),
          member("CodigoLibre", &C::CodigoLibre, "vId, vIdSec, [objCn]"),
      }));
  return table;
}

}  // namespace tavelor
