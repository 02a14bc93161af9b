// SPDX-License-Identifier: MIT
// Layouts of invoices.
#include "tavelor/reference/tipos_factura.hpp"

#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

constexpr std::string_view kTodos =
    "SELECT Codigo AS Código, Descripcion AS Descripción, Predeterminada , "
    "Totalizada,Texto_Totalizada, Desglosada, Texto, Renumerada , Referencia, Texto_Referencia, "
    "Pedido, Texto_pedido, Albaran as Albarán, Texto_Albaran, Fecha, Texto_Fecha , Total_Albaran, "
    "Texto_Total_Albaran FROM Tipos_Factura";

class ClsTiposFacturaTest : public test::CatalogueTest<ClsTiposFactura> {};

TEST_F(ClsTiposFacturaTest, TheSlotsStandInOrder) {
  EXPECT_THAT(firstSlots(), ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName",
                                        "GetConnection", "GetConnectionStr", "GetPredeterminada",
                                        "ExistePredeterminada", "GetDatos", "IniciaRs",
                                        "NuevoCodigo", "SeguridadPermiso", "CodigoLibre"));
  EXPECT_EQ(lastSlot(), "ReadBLOB");
  EXPECT_EQ(signature("GetDatos"),
            "GetDatos(vId As String, out bTotalizada As Boolean, out sTxtTotal As String, out "
            "bDesglose As Boolean, out stexto As String, out bRenumerada As Boolean, out "
            "bReferencia As Boolean, out sTxtRef As String, out bPedido As Boolean, out sTxtPed As "
            "String, out bAlbaran As Boolean, out sTxtAlb As String, out bFecha As Boolean, out "
            "sTxtfch As String, out bTotal As Boolean, out sTextoTotal As String, [inout objCn As "
            "Connection])");
}

TEST_F(ClsTiposFacturaTest, Modes) {
  EXPECT_EQ(open("seleccion").statement,
            "SELECT Codigo AS Código, Descripcion AS Descripción FROM Tipos_Factura");
  const Opened opened = open("seleccioncombo");
  EXPECT_EQ(opened.statement, kTodos);
  EXPECT_EQ(opened.word, "todos");
}

TEST_F(ClsTiposFacturaTest, TheDefaultRowByDescription) {
  EXPECT_TRUE(catalogue.GetPredeterminada().isEmpty());
  EXPECT_EQ(statement(), "SELECT Descripcion as ds FROM Tipos_Factura where predeterminada <> 0");
  EXPECT_FALSE(catalogue.ExistePredeterminada());
  EXPECT_EQ(statement(), "SELECT Codigo FROM Tipos_Factura where predeterminada <> 0");
  shop.run(
      "INSERT INTO Tipos_Factura (Codigo, Descripcion, Predeterminada) VALUES ('1', 'Normal', "
      "True)");
  EXPECT_EQ(catalogue.GetPredeterminada(), Variant("Normal"));
  EXPECT_TRUE(catalogue.ExistePredeterminada());
}

TEST_F(ClsTiposFacturaTest, GetDatosTakesEachOutputFromItsColumn) {
  shop.run(
      "INSERT INTO Tipos_Factura (Codigo, Totalizada, Texto_Totalizada, Texto, Referencia, "
      "Texto_Referencia, Texto_pedido, Albaran, Texto_Albaran, Texto_Fecha, Total_Albaran, "
      "Texto_Total_Albaran) VALUES ('1', True, 't1', 't2', True, 't3', 't4', True, 't5', 't6', "
      "True, 't7')");
  ClsTiposFactura::Datos datos;
  datos.vId = "1";
  datos.bDesglose = datos.bRenumerada = datos.bPedido = datos.bFecha = true;
  shop.statements();
  catalogue.GetDatos(datos);
  EXPECT_EQ(statement(), std::string(kTodos) + " WHERE Codigo = '1'");
  EXPECT_TRUE(datos.bTotalizada && datos.bReferencia && datos.bAlbaran && datos.bTotal);
  EXPECT_FALSE(datos.bDesglose || datos.bRenumerada || datos.bPedido || datos.bFecha);
  EXPECT_EQ(datos.sTxtTotal, "t1");
  EXPECT_EQ(datos.stexto, "t2");
  EXPECT_EQ(datos.sTxtRef, "t3");
  EXPECT_EQ(datos.sTxtPed, "t4");
  EXPECT_EQ(datos.sTxtAlb, "t5");
  EXPECT_EQ(datos.sTxtfch, "t6");
  EXPECT_EQ(datos.sTextoTotal, "t7");
}

TEST_F(ClsTiposFacturaTest, GetDatosLeavesWhatIsNull) {
  shop.run("INSERT INTO Tipos_Factura (Codigo) VALUES ('1')");
  ClsTiposFactura::Datos datos;
  datos.vId = "1";
  datos.sTxtTotal = datos.sTextoTotal = "kept";
  catalogue.GetDatos(datos);
  EXPECT_EQ(datos.sTxtTotal, "kept");
  EXPECT_EQ(datos.sTextoTotal, "kept");
}

TEST_F(ClsTiposFacturaTest, GetDatosOfATypeThatIsNotThereRaisesNoCurrentRecord) {
  ClsTiposFactura::Datos datos;
  datos.vId = "9";
  EXPECT_EQ(errorOf([&] { catalogue.GetDatos(datos); }), errors::kNoCurrentRecord);
}

TEST_F(ClsTiposFacturaTest, ANewTypeWithDefaultsShowsTheBreakdownOnly) {
  open("todos");
  catalogue.AddNew(true);
  EXPECT_EQ(field("Código"), "1");
  for (const char* off :
       {"Predeterminada", "Totalizada", "Renumerada", "Referencia", "Pedido", "Albarán", "Fecha"}) {
    EXPECT_EQ(field(off), "Falso") << off;
  }
  EXPECT_EQ(field("Desglosada"), "Verdadero");
  EXPECT_EQ(field("Texto"), "-.-");
  EXPECT_EQ(field("Total_Albaran"), "Empty") << "left to the table";
  catalogue.Update();
  EXPECT_EQ(shop.text("SELECT Texto FROM Tipos_Factura WHERE Codigo = '1'"), "-.-");
}

TEST_F(ClsTiposFacturaTest, ANewTypeWithoutDefaultsIsEmpty) {
  open("todos");
  catalogue.AddNew(false);
  for (const char* name : {"Código", "Desglosada", "Texto", "Fecha"}) {
    EXPECT_EQ(field(name), "Empty") << name;
  }
}

TEST_F(ClsTiposFacturaTest, CodesComeFromTheTable) {
  catalogue.NuevoCodigo();
  EXPECT_EQ(statement(), "SELECT MAX(Codigo) AS Nuevo_Codigo FROM Tipos_Factura");
  catalogue.CodigoLibre("1");
  EXPECT_EQ(statement(), "SELECT Codigo FROM Tipos_Factura where codigo ='1'");
}

TEST_F(ClsTiposFacturaTest, HostileTextChangesNothing) {
  shop.run("INSERT INTO Tipos_Factura (Codigo) VALUES ('1')");
  for (const std::string& attack : test::hostileTexts()) {
    ClsTiposFactura::Datos datos;
    datos.vId = attack;
    EXPECT_EQ(errorOf([&] { catalogue.GetDatos(datos); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.CodigoLibre(attack); }), errors::kSyntax);
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Tipos_Factura"), "1");
}

}  // namespace
}  // namespace tavelor
