// SPDX-License-Identifier: MIT
// /articles/{code}: an article with what belongs to it.
#include <fmt/format.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/class_shape.hpp"
#include "tavelor/web/context.hpp"
#include "tavelor/web/endpoints.hpp"
#include "tavelor/web/master_rows.hpp"

namespace tavelor::web {

namespace {

constexpr std::string_view kSchema = R"json({
  "type": "object", "required": ["article", "tariffs", "stock", "lots", "barcodes", "movements"],
  "properties": {
    "article": {"$ref": "#/components/schemas/Values"},
    "tariffs": {"type": "array", "items": {"type": "object", "properties": {
      "tariff": {"type": "string"}, "name": {"type": ["string", "null"]},
      "price": {"type": ["number", "null"]}}}},
    "stock": {"type": "array", "items": {"type": "object", "properties": {
      "warehouse": {"type": ["string", "null"]}, "name": {"type": ["string", "null"]},
      "stock": {"type": ["number", "null"]}, "pending": {"type": ["number", "null"]}}}},
    "lots": {"type": "array", "items": {"$ref": "#/components/schemas/Values"}},
    "barcodes": {"type": "array", "items": {"type": "string"}},
    "purchases": {"type": "array", "items": {"$ref": "#/components/schemas/Values"}},
    "components": {"type": "array", "items": {"$ref": "#/components/schemas/Values"}},
    "movements": {"type": "array", "items": {"$ref": "#/components/schemas/Values"}}}})json";

/// The three of the article's own row, then the others; in the order of their letters.
Json tariffsOf(const Json& article, const std::string& code) {
  Json tariffs = Json::array();
  for (const std::string_view letter : {"A", "B", "C"}) {
    const auto price = article.find(fmt::format("Tarifa_{}", letter));
    tariffs.push_back({{"tariff", letter},
                       {"name", fmt::format("Tarifa {}", letter)},
                       {"price", price == article.end() ? Json(nullptr) : *price}});
  }
  for (const Json& row : rowsOfOwner("Articulos_Tarifas", code, "Codigo", "Tarifa")) {
    tariffs.push_back(
        {{"tariff", row.at("Tarifa")}, {"name", row.at("Nombre")}, {"price", row.at("Precio")}});
  }
  return tariffs;
}

Json stockOf(const std::string& code) {
  Statement select(
      "SELECT Articulos_Almacenes.Almacen, Almacenes.Descripcion, Articulos_Almacenes.Cantidad,"
      " Articulos_Almacenes.Pendiente FROM Articulos_Almacenes LEFT JOIN Almacenes"
      " ON Articulos_Almacenes.Almacen = Almacenes.Codigo WHERE Articulos_Almacenes.Codigo = ");
  select << sqlText(code) << " ORDER BY Articulos_Almacenes.Almacen";
  Json stock = Json::array();
  for (const Json& row : rowsOf(select)) {
    stock.push_back({{"warehouse", row.at("Almacen")},
                     {"name", row.at("Descripcion")},
                     {"stock", row.at("Cantidad")},
                     {"pending", row.at("Pendiente")}});
  }
  return stock;
}

Json barcodesOf(const std::string& code) {
  Json barcodes = Json::array();
  for (const Json& row : rowsOfOwner("Articulos_Codigos_barras", code, "Codigo", "Id")) {
    if (row.at("Codigo_barras").is_string()) barcodes.push_back(row.at("Codigo_barras"));
  }
  return barcodes;
}

Json lastMovements(const std::string& code) {
  constexpr std::int64_t kLast = 50;
  Statement select("SELECT * FROM Articulos_Movimientos_Almacen WHERE Codigo = ");
  select << sqlText(code) << " ORDER BY Fecha DESC, Id DESC";
  return rowsOf(select, kLast);
}

Answer articlePage(Context& context) {
  mustWithClass(context, clsArticulos::component(), "read");
  const std::string& code = context.path("code");
  Statement select("SELECT * FROM Articulos WHERE Codigo = ");
  select << sqlText(code);
  std::optional<Json> article = rowOf(select);
  if (!article) throw Failure::missing(fmt::format("There is no article {}.", code));
  Json page = {{"tariffs", tariffsOf(*article, code)},
               {"stock", stockOf(code)},
               {"lots", rowsOfOwner("Articulos_Lotes", code, "Codigo", "Lote")},
               {"barcodes", barcodesOf(code)},
               {"purchases", rowsOfOwner("Articulos_Precios_Compras", code, "Codigo", "Id")},
               {"components", rowsOfOwner("Articulos_Componentes", code, "Codigo", "Id")},
               {"movements", lastMovements(code)}};
  page["article"] = *std::move(article);
  return answer(page);
}

}  // namespace

void addArticles(Routes& routes) {
  routes.add(Method::kGet, "/api/v1/articles/{code}", Right::kOfficeRead, articlePage,
             {.summary = "An article with its prices, stock in its places, lots, barcodes and last "
                         "movements, by the names of the tables' columns",
              .answer = kSchema});
}

}  // namespace tavelor::web
