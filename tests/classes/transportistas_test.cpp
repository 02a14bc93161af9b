// SPDX-License-Identifier: MIT
// Carriers.
#include "tavelor/reference/transportistas.hpp"

#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

constexpr std::string_view kTodos =
    "SELECT Codigo AS Código, Nombre, Razon_Social as Empresa, Contacto, NIF, Direccion as "
    "Dirección, Codigo_Postal, Poblacion as Población, Provincia, Telefono as Teléfono, Telefono_2 "
    "as Teléfono_2, Movil as Móvil, Fax, E_Mail, Http, Activo, Forma_Pago as Pago, Divisa, "
    "Impuesto, IRPF, Descuento as Dto, Descuento_pp as Dto_PP, Predeterminada FROM Transportistas";

class ClsTransportistasTest : public test::CatalogueTest<ClsTransportistas> {
 protected:
  void fill() {
    shop.run(
        "INSERT INTO Transportistas (Codigo, Razon_Social, Activo, Divisa, Forma_Pago, "
        "Predeterminada) VALUES ('1', 'Portes S.A.', True, 'EUR', '1', True)");
    shop.run("INSERT INTO Transportistas (Codigo, Divisa, Forma_Pago) VALUES ('2', 'USD', '2')");
    shop.statements();
  }
};

TEST_F(ClsTransportistasTest, SeleccionShowsActiveCarriersByName) {
  fill();
  EXPECT_EQ(open("seleccion").statement,
            "SELECT Codigo AS Código, Razon_social AS Descripción FROM Transportistas WHERE ( "
            "activo <> 0 )");
  EXPECT_THAT(codes(), ElementsAre("1"));
}

TEST_F(ClsTransportistasTest, CarriersThatKeepACurrencyOrAPaymentMethodFromBeingRemoved) {
  fill();
  EXPECT_EQ(open("deeliminardivisa", "USD").statement,
            std::string(kTodos) + "  Where ( Divisa =  'USD')");
  EXPECT_THAT(codes(), ElementsAre("2"));
  EXPECT_EQ(open("deeliminarformapago", "1").statement,
            std::string(kTodos) + "  Where ( Forma_Pago =  '1')");
  EXPECT_THAT(codes(), ElementsAre("1"));
}

TEST_F(ClsTransportistasTest, AnyOtherWordIsTheFullSelect) {
  const Opened opened = open("seleccioncombo");
  EXPECT_EQ(opened.statement, kTodos);
  EXPECT_EQ(opened.word, "todos");
  EXPECT_THAT(fieldNames(),
              ElementsAre("Código", "Nombre", "Empresa", "Contacto", "NIF", "Dirección",
                          "Codigo_Postal", "Población", "Provincia", "Teléfono", "Teléfono_2",
                          "Móvil", "Fax", "E_Mail", "Http", "Activo", "Pago", "Divisa", "Impuesto",
                          "IRPF", "Dto", "Dto_PP", "Predeterminada"));
}

TEST_F(ClsTransportistasTest, TheDefaultCarrierIsGivenByItsName) {
  EXPECT_TRUE(catalogue.GetPredeterminada().isEmpty());
  EXPECT_EQ(statement(), "SELECT Razon_social as ds FROM Transportistas where predeterminada <> 0");
  EXPECT_FALSE(catalogue.ExistePredeterminada());
  EXPECT_EQ(statement(), "SELECT Codigo FROM Transportistas where predeterminada <> 0");
  fill();
  EXPECT_EQ(catalogue.GetPredeterminada(), Variant("Portes S.A."));
  EXPECT_TRUE(catalogue.ExistePredeterminada());
}

TEST_F(ClsTransportistasTest, GetDescripcionOfACodeThatIsNotThereIsNd) {
  fill();
  EXPECT_EQ(catalogue.GetDescripcion("1"), "Portes S.A.");
  EXPECT_EQ(statement(),
            "SELECT Razon_social as Descripcion FROM Transportistas WHERE Codigo = '1'");
  EXPECT_EQ(catalogue.GetDescripcion("9"), "ND");
  EXPECT_EQ(catalogue.GetDescripcion("2"), "ND");
  EXPECT_EQ(catalogue.GetDescripcion(Null{}), "No");
}

TEST_F(ClsTransportistasTest, CodesComeFromTheTable) {
  catalogue.NuevoCodigo();
  EXPECT_EQ(statement(), "SELECT MAX(Codigo) AS Nuevo_Codigo FROM Transportistas");
  catalogue.CodigoLibre("1");
  EXPECT_EQ(statement(), "SELECT Codigo FROM Transportistas where codigo ='1'");
}

TEST_F(ClsTransportistasTest, ANewCarrierWithDefaultsIsActiveAndHasNoDiscounts) {
  open("todos");
  catalogue.AddNew(true);
  EXPECT_EQ(field("Código"), "1");
  EXPECT_EQ(field("Activo"), "Verdadero");
  for (const char* off : {"Impuesto", "Predeterminada"}) EXPECT_EQ(field(off), "Falso") << off;
  for (const char* zero : {"IRPF", "Dto", "Dto_PP"}) EXPECT_EQ(field(zero), "0") << zero;
  catalogue.Update();
  open("seleccion");
  EXPECT_THAT(codes(), ElementsAre("1"));
}

TEST_F(ClsTransportistasTest, ANewCarrierInTheShortListLeavesItsColumnsToTheTable) {
  open("seleccion");
  catalogue.AddNew(true);
  catalogue.Update();
  EXPECT_EQ(shop.text("SELECT Activo FROM Transportistas WHERE Codigo = '1'"), "Falso");
}

TEST_F(ClsTransportistasTest, ANewCarrierWithoutDefaultsIsEmpty) {
  open("todos");
  catalogue.AddNew(false);
  for (const char* name : {"Código", "Activo", "IRPF"}) EXPECT_EQ(field(name), "Empty") << name;
}

TEST_F(ClsTransportistasTest, HostileTextChangesNothing) {
  fill();
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_EQ(errorOf([&] { catalogue.GetDescripcion(attack); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.IniciaRs({}, "deeliminardivisa", attack); }),
              errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.IniciaRs({}, "deeliminarformapago", attack); }),
              errors::kSyntax);
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Transportistas"), "2");
}

}  // namespace
}  // namespace tavelor
