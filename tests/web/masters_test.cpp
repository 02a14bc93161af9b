// SPDX-License-Identifier: MIT
// Articles, customers and suppliers with what belongs to them.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/hostile_values.hpp"
#include "tests/web/office.hpp"

namespace tavelor {
namespace {

using test::Office;
using web::Json;

class Masters : public testing::Test {
 protected:
  Office office;
};

TEST_F(Masters, AnArticleWithAllThatBelongsToIt) {
  office.run(
      "INSERT INTO Articulos (Codigo, Descripcion, Tarifa_A, Existencia, Activo) VALUES ('PAN', "
      "'Barra <b>', 1.1, 7, -1)");
  office.run(
      "INSERT INTO Articulos_Tarifas (Codigo, Nombre, Tarifa, Precio) VALUES ('PAN', 'Bares', 'D', "
      "0.95)");
  office.run("INSERT INTO Almacenes (Codigo, Descripcion) VALUES ('Z1', 'Trastienda')");
  office.run(
      "INSERT INTO Articulos_Almacenes (Id, Codigo, Almacen, Cantidad) VALUES (1, 'PAN', 'Z1', 7)");
  office.run(
      "INSERT INTO Articulos_Lotes (Id, Codigo, Lote, Existencia) VALUES (1, 'PAN', 'L1', 7)");
  office.run(
      "INSERT INTO Articulos_Codigos_barras (Id, Codigo, Codigo_Barras) VALUES (1, 'PAN', "
      "'8400000000017')");
  for (int i = 1; i <= 60; ++i) {
    office.run(
        fmt::format("INSERT INTO Articulos_Movimientos_Almacen (Id, Codigo, Fecha, Cantidad) "
                    "VALUES ({}, 'PAN', #11/{}/2026#, {})",
                    i, i % 28 + 1, i));
  }
  const auto page = office.get("/api/v1/articles/PAN");
  ASSERT_EQ(page.status, 200) << page.body;
  EXPECT_EQ(office.faultOf("get", "/api/v1/articles/{code}", page), "");
  EXPECT_EQ(page.json["article"]["Descripcion"], "Barra <b>");
  EXPECT_EQ(page.json["tariffs"][0]["price"], 1.1);
  EXPECT_EQ(page.json["tariffs"][3], (Json{{"tariff", "D"}, {"name", "Bares"}, {"price", 0.95}}));
  EXPECT_EQ(
      page.json["stock"],
      (Json::array({{{"warehouse", "Z1"}, {"name", "Trastienda"}, {"stock", 7}, {"pending", 0}}})));
  EXPECT_EQ(page.json["lots"][0]["Lote"], "L1");
  EXPECT_EQ(page.json["barcodes"], Json::array({"8400000000017"}));
  ASSERT_EQ(page.json["movements"].size(), 50U);
  EXPECT_EQ(page.json["movements"][0]["Fecha"], "2026-11-28");
}

TEST_F(Masters, ACustomerWithAddressesAndContacts) {
  office.run("INSERT INTO Clientes (Codigo, Razon_Social, Activo) VALUES ('C1', 'Bar Sol', -1)");
  office.run("INSERT INTO Clientes_Direcciones (ID, Codigo, Poblacion) VALUES (1, 'C1', 'Vic')");
  office.run("INSERT INTO Clientes_Colaboradores (Id, Codigo, Nombre) VALUES (1, 'C1', 'Eva')");
  office.run("INSERT INTO Clientes_Colaboradores (Id, Codigo, Nombre) VALUES (2, 'C2', 'Ana')");
  const auto page = office.get("/api/v1/customers/C1/details");
  ASSERT_EQ(page.status, 200) << page.body;
  EXPECT_EQ(office.faultOf("get", "/api/v1/customers/{code}/details", page), "");
  EXPECT_EQ(page.json["customer"]["Razon_Social"], "Bar Sol");
  EXPECT_EQ(page.json["addresses"][0]["Poblacion"], "Vic");
  ASSERT_EQ(page.json["contacts"].size(), 1U);
  EXPECT_EQ(page.json["contacts"][0]["Nombre"], "Eva");
}

TEST_F(Masters, ASupplierWithAccountAndWhatIsOnOrder) {
  office.run(
      "INSERT INTO Proveedores (Codigo, Razon_Social, Poblacion, NIF, Activo) VALUES ('401', "
      "'Conserves del Nord SA', 'Girona', 'A17', -1)");
  office.run(
      "INSERT INTO Proveedores_Apuntes_Contables (Id, Codigo, Fecha, Concepto, Debe, Haber) VALUES "
      "(1, '401', #11/19/2026#, 'Albarán 88/25', 0, 138)");
  office.run("INSERT INTO Articulos (Codigo, Descripcion, Pendiente) VALUES ('ATUN', 'Atún', 24)");
  office.run(
      "INSERT INTO Articulos_Precios_Compras (Id, Codigo, Proveedor, Precio) VALUES (1, 'ATUN', "
      "'401', 1.15)");
  const auto page = office.get("/api/v1/suppliers/401");
  ASSERT_EQ(page.status, 200) << page.body;
  EXPECT_EQ(office.faultOf("get", "/api/v1/suppliers/{code}", page), "");
  EXPECT_EQ(page.json["account"]["balance"], 138);
  EXPECT_EQ(page.json["account"]["active"], true);
  EXPECT_EQ(page.json["onOrder"][0]["Pendiente"], 24);
  const auto account = office.get("/api/v1/suppliers/401/account?from=2026-11-20");
  EXPECT_EQ(office.faultOf("get", "/api/v1/suppliers/{code}/account", account), "");
  EXPECT_EQ(account.json["opening"], 138);
  EXPECT_TRUE(account.json["entries"].empty());

  const auto found = office.get("/api/v1/suppliers/search?q=nord%20giro");
  EXPECT_EQ(office.faultOf("get", "/api/v1/suppliers/search", found), "");
  ASSERT_EQ(found.json["suppliers"].size(), 1U) << found.body;
  EXPECT_EQ(found.json["suppliers"][0]["code"], "401");
  EXPECT_TRUE(office.get("/api/v1/suppliers/search?q=nord%20sur").json["suppliers"].empty());
}

TEST_F(Masters, WhoIsNotThereIsMissingWhateverTheCode) {
  for (const std::string& value : test::hostileValues()) {
    if (value.size() > 1000) continue;
    for (const char* what : {"articles/{}", "customers/{}/details", "suppliers/{}"}) {
      const std::string path = fmt::format(fmt::runtime(what), test::encoded(value));
      EXPECT_THAT(office.get(Office::at(path)).status, testing::AnyOf(400, 404)) << what << value;
    }
    const int status = office.get(Office::at("suppliers/search", {{"q", value}})).status;
    EXPECT_THAT(status, testing::AnyOf(200, 400)) << value;
  }
}

TEST_F(Masters, NeedTheRight) {
  office.as.rights = web::Rights::of("till.close");
  for (const char* path :
       {"articles/PAN", "customers/C1/details", "suppliers/401", "suppliers/search"}) {
    EXPECT_EQ(office.get(Office::at(path)).status, 403) << path;
  }
}

}  // namespace
}  // namespace tavelor
