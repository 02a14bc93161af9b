// SPDX-License-Identifier: MIT
// /customers/{code}/details and /suppliers: partners with what belongs to them.
#include <fmt/format.h>

#include "tavelor/customers/clientes.hpp"
#include "tavelor/platform/literal.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/suppliers/proveedores.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/class_shape.hpp"
#include "tavelor/web/context.hpp"
#include "tavelor/web/endpoints.hpp"
#include "tavelor/web/master_rows.hpp"

namespace tavelor::web {

namespace {

constexpr std::int64_t kMostFound = 500;
constexpr std::int64_t kUsuallyFound = 20;
constexpr std::size_t kLongestQuestion = 100;

constexpr std::string_view kAccountSchema = R"json({
  "type": "object", "required": ["entries", "balance"],
  "properties": {
    "entries": {"type": "array", "items": {"type": "object", "properties": {
      "id": {"type": "integer"}, "day": {"type": ["string", "null"]}, "text": {"type": "string"},
      "document": {"type": "number"}, "debit": {"type": "number"}, "credit": {"type": "number"},
      "balance": {"type": "number"}}}},
    "opening": {"type": "number"}, "debit": {"type": "number"}, "credit": {"type": "number"},
    "balance": {"type": "number"}}})json";
constexpr std::string_view kCustomerSchema = R"json({
  "type": "object", "required": ["customer", "addresses", "contacts"],
  "properties": {
    "customer": {"$ref": "#/components/schemas/Values"},
    "addresses": {"type": "array", "items": {"$ref": "#/components/schemas/Values"}},
    "contacts": {"type": "array", "items": {"$ref": "#/components/schemas/Values"}},
    "centres": {"type": "array", "items": {"$ref": "#/components/schemas/Values"}},
    "prices": {"type": "array", "items": {"$ref": "#/components/schemas/Values"}},
    "comments": {"type": "array", "items": {"$ref": "#/components/schemas/Values"}}}})json";
constexpr std::string_view kSupplierSchema = R"json({
  "type": "object", "required": ["supplier", "account"],
  "properties": {
    "supplier": {"$ref": "#/components/schemas/Values"},
    "account": {"type": "object"},
    "prices": {"type": "array", "items": {"$ref": "#/components/schemas/Values"}},
    "onOrder": {"type": "array", "items": {"$ref": "#/components/schemas/Values"}},
    "comments": {"type": "array", "items": {"$ref": "#/components/schemas/Values"}}}})json";
constexpr std::string_view kFoundSchema = R"json({
  "type": "object", "required": ["suppliers"],
  "properties": {"suppliers": {"type": "array", "items": {"type": "object", "properties": {
    "code": {"type": "string"}, "name": {"type": ["string", "null"]},
    "place": {"type": ["string", "null"]}, "fiscalNumber": {"type": ["string", "null"]},
    "phone": {"type": ["string", "null"]}}}}}})json";

Json rowByCode(Statement::Constant table, const std::string& code, std::string_view what) {
  Statement select("SELECT * FROM ");
  select << table << " WHERE Codigo = " << sqlText(code);
  std::optional<Json> row = rowOf(select);
  if (!row) throw Failure::missing(fmt::format("There is no {} {}.", what, code));
  return *std::move(row);
}

bool isSet(const Json& row, std::string_view column) {
  const auto found = row.find(std::string(column));
  if (found == row.end()) return false;
  return found->is_boolean() ? found->get<bool>() : found->is_number() && found->get<double>() != 0;
}

/// 2 is there, and not to be had.
bool isActive(const Json& row) {
  return isSet(row, "Activo") && row.at("Activo") != 2;
}

Answer customerPage(Context& context) {
  mustWithClass(context, ClsClientes::component(), "read");
  const std::string& code = context.path("code");
  Json customer = rowByCode("Clientes", code, "customer");
  Json page = {{"addresses", rowsOfOwner("Clientes_Direcciones", code, "Codigo", "ID")},
               {"contacts", rowsOfOwner("Clientes_Colaboradores", code, "Codigo", "Id")},
               {"centres", rowsOfOwner("Clientes_Centros", code, "Codigo", "ID")},
               {"prices", rowsOfOwner("Articulos_Precios_Ventas", code, "Cliente", "Id")},
               {"comments", rowsOfOwner("Clientes_Comentarios", code, "Codigo", "Id")}};
  page["customer"] = std::move(customer);
  return answer(page);
}

/// Articles of a supplier of which something is on order.
Json onOrderFrom(const std::string& supplier) {
  Statement select(
      "SELECT Articulos.Codigo, Articulos.Descripcion, Articulos.Pendiente,"
      " Articulos_Precios_Compras.Codigo_Proveedor, Articulos_Precios_Compras.Precio"
      " FROM Articulos INNER JOIN Articulos_Precios_Compras"
      " ON Articulos.Codigo = Articulos_Precios_Compras.Codigo"
      " WHERE Articulos.Pendiente > 0 AND Articulos_Precios_Compras.Proveedor = ");
  select << sqlText(supplier) << " ORDER BY Articulos.Codigo";
  return rowsOf(select);
}

Answer supplierPage(Context& context) {
  mustWithClass(context, ClsProveedores::component(), "read");
  const std::string& code = context.path("code");
  Json supplier = rowByCode("Proveedores", code, "supplier");
  Json account = accountOf(flows::LedgerOf::kSuppliers, code);
  account["active"] = isActive(supplier);
  Json page = {{"account", std::move(account)},
               {"prices", rowsOfOwner("Articulos_Precios_Compras", code, "Proveedor", "Codigo")},
               {"onOrder", onOrderFrom(code)},
               {"comments", rowsOfOwner("Proveedores_Comentarios", code, "Codigo", "Id")}};
  page["supplier"] = std::move(supplier);
  return answer(page);
}

Answer supplierAccount(Context& context) {
  mustWithClass(context, ClsProveedores::component(), "read");
  const std::string& code = context.path("code");
  const Json account = accountOf(flows::LedgerOf::kSuppliers, code, context.queryDay("from"),
                                 context.queryDay("to"));
  if (account.is_null()) throw Failure::missing(fmt::format("There is no supplier {}.", code));
  return answer(account);
}

/// Every word of the question, anywhere in the name, the code, the fiscal number or the place.
/// Suppliers are hundreds: they need no index of words.
Answer findSuppliers(Context& context) {
  mustWithClass(context, ClsProveedores::component(), "read");
  const std::int64_t most = context.queryWhole("most", 1, kMostFound, kUsuallyFound);
  const std::string question = context.query("q", "");
  std::string_view words = text::trim(text::left(question, kLongestQuestion));
  Statement select(
      "SELECT Codigo, Razon_Social, Nombre, Poblacion, NIF, Telefono FROM Proveedores");
  const char* joint = " WHERE ";
  while (!words.empty()) {
    const std::string_view word = words.substr(0, words.find(' '));
    words = text::trim(words.substr(word.size()));
    // The signs of a pattern are plain characters here.
    std::string pattern = "*";
    for (const char c : word) {
      const bool isSign = std::string_view("*?#[%_").find(c) != std::string_view::npos;
      pattern += isSign ? fmt::format("[{}]", c) : std::string(1, c);
    }
    pattern += "*";
    select << Statement::trusted(joint) << "(";
    const char* or_ = "";
    for (const std::string_view column :
         {"Codigo", "Razon_Social", "Nombre", "NIF", "Poblacion", "Telefono"}) {
      select << Statement::trusted(or_) << Statement::trusted(column) << " Like "
             << sqlText(pattern);
      or_ = " OR ";
    }
    select << ")";
    joint = " AND ";
  }
  select << " ORDER BY Razon_Social, Codigo";
  Json found = Json::array();
  for (const Json& row : rowsOf(select)) {
    if (static_cast<std::int64_t>(found.size()) == most) break;
    const Json& name = row.at("Razon_Social");
    const bool isUnnamed = name.is_null() || name.get_ref<const std::string&>().empty();
    found.push_back({{"code", row.at("Codigo")},
                     {"name", isUnnamed ? row.at("Nombre") : name},
                     {"place", row.at("Poblacion")},
                     {"fiscalNumber", row.at("NIF")},
                     {"phone", row.at("Telefono")}});
  }
  return answer({{"suppliers", std::move(found)}});
}

}  // namespace

void addPartners(Routes& routes) {
  routes.add(
      Method::kGet, "/api/v1/customers/{code}/details", Right::kOfficeRead, customerPage,
      {.summary = "A customer's whole row, with addresses, contacts, centres, own prices and "
                  "comments, by the names of the tables' columns",
       .answer = kCustomerSchema});
  routes.add(Method::kGet, "/api/v1/suppliers/search", Right::kOfficeRead, findSuppliers,
             {.summary = "Suppliers by words of their names, codes, fiscal numbers and places",
              .parameters = {{.name = "q", .text = "Words, all of which must be there"},
                             {.name = "most", .text = "1 to 500; 20", .type = "integer"}},
              .answer = kFoundSchema});
  routes.add(Method::kGet, "/api/v1/suppliers/{code}", Right::kOfficeRead, supplierPage,
             {.summary = "A supplier with account, prices, what is on order and comments",
              .answer = kSupplierSchema});
  routes.add(Method::kGet, "/api/v1/suppliers/{code}/account", Right::kOfficeRead, supplierAccount,
             {.summary = "The account of a supplier, from one day to another",
              .parameters = {{.name = "from", .text = "The first day", .type = "date"},
                             {.name = "to", .text = "The last day", .type = "date"}},
              .answer = kAccountSchema});
}

}  // namespace tavelor::web
