// SPDX-License-Identifier: MIT
// ClsCierres: modes, writing, the chain of balances, the slip.
#include "tavelor/closing/cierres.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/frame/component.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/paths_service.hpp"
#include "tests/support/shop.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kLista =
    "SELECT Codigo AS Código, Fecha, Descripcion AS Descripción, Caja, Empleado, Entrega as "
    "Entradas, Efectivo, Credito, Base, Importe_Impuestos as Impuestos, Importe_Recargo as "
    "Recargos, Total, Saldo_Inicio as Remanente, Saldo_Final as Saldo, Facturado, Doc_F as "
    "Documento FROM Cierres";

/// 5 March 2026, whose day number is 46086.
class ClsCierresTest : public testing::Test {
 protected:
  explicit ClsCierresTest(const Settings& settings = test::fastSettings()) : shop(settings) {
    shop.apartment().clock().fix(Date::of({2026, 3, 5, 14, 5, 9}));
  }

  static Settings neutral() {
    Settings settings = test::fastSettings();
    settings.locale = "neutral";
    return settings;
  }

  void close(int number, const std::string& till, const std::string& balance,
             const std::string& day = "#03/05/2026#") {
    shop.run("INSERT INTO Cierres (Codigo, Fecha, Caja, Saldo_Final) VALUES (" +
             std::to_string(number) + ", " + day + ", '" + till + "', " + balance + ")");
  }
  double previous(const std::string& till, double asPassed = -1) {
    closings.SaldoAnterior(Date::of(2026, 3, 4), till, "999", "Z", asPassed);
    return asPassed;
  }
  std::string statementOf(std::string word, const Variant& id = {}) {
    shop.statements();
    closings.IniciaRs(word, id);
    word_ = word;
    const std::vector<std::string> ran = shop.statements();
    return ran.size() == 1 ? ran.front() : "not one statement";
  }
  std::string column(const std::string& name, int number = 7) {
    return shop.text("SELECT " + name + " FROM Cierres WHERE Codigo = " + std::to_string(number));
  }
  std::string shown(const Variant& value) {
    if (value.isNull()) return "Null";
    return value.isEmpty() ? "Empty" : value.toText(shop.apartment().locale());
  }
  std::vector<std::string> shown(const std::vector<Variant>& values) {
    std::vector<std::string> texts;
    for (const Variant& value : values) texts.push_back(shown(value));
    return texts;
  }
  static ClsCierres::Cierre closing() {
    return {.vId = std::int32_t{7},
            .sSerie = "A",
            .dtFecha = Date::of(2026, 3, 5),
            .sDescripcion = "Cierre de tarde",
            .sCaja = "01",
            .sEmpleado = "001",
            .dEntrega = 350.5,
            .dCambio = 12.25,
            .dEfectivo = 310.75,
            .dCredito = 45,
            .dBase = 294.01,
            .dImpImp = 61.74,
            .dImpRec = 0,
            .dTotal = 355.75,
            .SaldoIni = 100,
            .SaldoFin = 438.25};
  }

  test::Shop shop;
  ClsCierres closings;
  std::string word_;
};

TEST(ClsCierres, TheSlotsOfItsOwnMembersStandInOrder) {
  std::vector<std::string> names;
  for (const Member& slot : ClsCierres::component().members()) names.push_back(slot.name);
  EXPECT_THAT(
      std::vector(names.begin(), std::find(names.begin(), names.end(), "EditingRecord")),
      ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                  "GetConnectionStr", "bEstaFacturado", "iQNumero", "DeleteAll",
                  "GetCollectionLinFamilias", "GetCollectionLinFormasPago",
                  "GetCollectionLinImpuestos", "FacturarDocumento", "CancelarFacturacion",
                  "Obtener", "GetTxtFile", "GetCierreToCol", "SaldoAnterior",
                  "InsertarCierreFamilias", "InsertarCierreImpuestos", "InsertarCierreFormasPago",
                  "Insertar", "IniciaRs", "NuevoCodigo", "SeguridadPermiso", "CodigoLibre"));
}

TEST(ClsCierres, ObtenerHasTheParametersOfATicket) {
  EXPECT_EQ(ClsCierres::component().member("Obtener").signature(),
            ClsTickets::component().member("Obtener").signature());
}

// ---- Modes and the frame

TEST_F(ClsCierresTest, EachModeHasItsStatement) {
  const Variant id = std::int32_t{7};
  EXPECT_EQ(statementOf("seleccion"),
            "SELECT Codigo AS Código, Descripcion AS Descripción FROM Cierres");
  EXPECT_EQ(statementOf("familias", id),
            "SELECT Familia, Importe FROM Cierres_Familias WHERE (((Cierre)=7));");
  EXPECT_EQ(statementOf("formas_pago", id),
            "SELECT Forma_Pago as Pago, Importe FROM Cierres_Formas_Pago WHERE (((Cierre)=7));");
  EXPECT_EQ(statementOf("impuestos", id),
            "SELECT IVA, Base, Importe FROM Cierres_Lineas_Impuestos WHERE (((Cierre)=7));");
}

TEST_F(ClsCierresTest, AnyOtherWordBecomesTodos) {
  EXPECT_EQ(statementOf("registro"), kLista);
  EXPECT_EQ(word_, "todos");
}

TEST_F(ClsCierresTest, ADetailWithoutANumberIsRefused) {
  EXPECT_EQ(errorOf([&] { closings.IniciaRs("familias"); }), errors::kSyntax);
}

TEST_F(ClsCierresTest, NuevoCodigoIsOneAboveTheGreatestOfAllTills) {
  shop.statements();
  EXPECT_EQ(shown(closings.NuevoCodigo()), "1");
  EXPECT_THAT(shop.statements(), ElementsAre("SELECT MAX(Codigo) AS Nuevo_Codigo FROM Cierres"));
  close(7, "01", "0");
  close(3, "02", "0");
  EXPECT_EQ(shown(closings.NuevoCodigo()), "8");
}

TEST_F(ClsCierresTest, TheNumbersGoOnBehind9999) {
  for (const std::int32_t last : {9999, 99999, 999999}) {
    close(last, "01", "1");
    EXPECT_EQ(closings.NuevoCodigo(), Variant(last + 1));
  }
}

TEST_F(ClsCierresTest, AddNewWithDefaultsGivesTheNumberAndNothingElse) {
  close(7, "01", "0");
  closings.IniciaRs("todos");
  closings.AddNew(true);
  const RecordsetPtr rows = closings.DataMember("Primary");
  EXPECT_EQ(shown(rows->Field(0).Value()), "8");
  EXPECT_EQ(shown(rows->Field("Facturado").Value()), "Empty");
  rows->Field("Caja").Value("01");
  closings.Update();
  EXPECT_EQ(column("Caja", 8), "01");
}

TEST_F(ClsCierresTest, UpdateWritesTheCurrentRowOnly) {
  close(1, "01", "0");
  close(2, "02", "0");
  closings.IniciaRs("todos");
  const RecordsetPtr rows = closings.DataMember("Primary");
  rows->Field("Caja").Value("11");
  rows->MoveNext();
  rows->Field("Caja").Value("12");
  closings.Update();
  EXPECT_EQ(column("Caja", 1), "01");
  EXPECT_EQ(column("Caja", 2), "12");
}

TEST_F(ClsCierresTest, CodigoLibreAsksForANumberWithoutQuotes) {
  close(7, "01", "0");
  shop.statements();
  EXPECT_FALSE(closings.CodigoLibre(std::int32_t{7}));
  EXPECT_THAT(shop.statements(), ElementsAre("SELECT Codigo FROM Cierres where codigo =7"));
  EXPECT_TRUE(closings.CodigoLibre(std::int32_t{8}));
}

// The one class whose answer is not dropped on the way.
TEST_F(ClsCierresTest, GetConnectionStrGivesTheString) {
  EXPECT_EQ(closings.GetConnectionStr(), DataSession().ConnectionString(1));
  EXPECT_NE(closings.GetConnectionStr(), "");
}

TEST_F(ClsCierresTest, TheCurrentRowTellsItsNumberAndWhetherItIsInvoiced) {
  close(7, "01", "0");
  closings.IniciaRs("todos");
  EXPECT_EQ(closings.iQNumero(), 7);
  EXPECT_FALSE(closings.bEstaFacturado());
  shop.run("UPDATE Cierres SET Facturado = 3");
  closings.Requery();
  EXPECT_TRUE(closings.bEstaFacturado());
}

TEST_F(ClsCierresTest, WithoutARowTheNumberRaises) {
  closings.IniciaRs("todos");
  EXPECT_EQ(errorOf([&] { closings.iQNumero(); }), errors::kNoCurrentRecord);
}

// ---- Writing

TEST_F(ClsCierresTest, InsertarIsOneStatementThatStoresTheAmountsAsGiven) {
  shop.statements();
  closings.Insertar(closing());
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(
          "INSERT INTO Cierres ( Codigo, Serie, Fecha, Descripcion, Caja, Empleado, Entrega, "
          "Cambio, Efectivo, Credito, Base, Importe_Impuestos, Importe_recargo, Total, "
          "Saldo_Inicio, Saldo_Final ) SELECT 7 AS Expr1, 'A' AS Expr2, '05/03/2026' AS Expr3, "
          "'Cierre de tarde' AS Expr4, '01' AS Expr5, '001' AS Expr6, '350,5' AS Expr70, '12,25' "
          "AS Expr71, '310,75' AS Expr7, '45' AS Expr8, '294,01' AS Expr9, '61,74' AS Expr10, '0' "
          "AS Expr11, '355,75' AS Expr12, '100' AS Expr13, '438,25' AS Expr14;"));
  EXPECT_EQ(column("Serie"), "A");
  EXPECT_EQ(column("Fecha"), "05/03/2026");
  EXPECT_EQ(column("Entrega"), "350,5");
  EXPECT_EQ(column("Cambio"), "12,25");
  EXPECT_EQ(column("Saldo_Final"), "438,25");
  EXPECT_EQ(column("Facturado"), "0");
}

TEST_F(ClsCierresTest, TheFinalBalanceIsNotDerived) {
  ClsCierres::Cierre one = closing();
  one.SaldoIni = 100;
  one.SaldoFin = 1;
  closings.Insertar(one);
  EXPECT_EQ(column("Saldo_Final"), "1");
}

TEST_F(ClsCierresTest, AQuoteInTheDescriptionBreaksTheStatement) {
  ClsCierres::Cierre one = closing();
  one.sDescripcion = "Cierre d'avui";
  EXPECT_EQ(errorOf([&] { closings.Insertar(one); }), errors::kSyntax);
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Cierres"), "0");
}

TEST_F(ClsCierresTest, ANumberThatAnotherTillTookIsRefused) {
  closings.Insertar(closing());
  EXPECT_EQ(errorOf([&] { closings.Insertar(closing()); }), errors::kIntegrityViolation);
}

TEST_F(ClsCierresTest, DetailsGoIntoTheirTables) {
  const Variant number = std::int32_t{7};
  shop.statements();
  closings.InsertarCierreFamilias(number, "BEB", 121.5);
  closings.InsertarCierreImpuestos(number, "21", 294.01, 61.74);
  closings.InsertarCierreFormasPago(number, "CON", 310.75);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(
          "INSERT INTO Cierres_Familias ( Cierre, Familia ,Importe ) VALUES ( 7 , 'BEB', '121,5')",
          "INSERT INTO Cierres_Lineas_Impuestos ( Cierre, Iva, Base, Importe ) VALUES ( 7 , '21', "
          "'294,01', '61,74')",
          "INSERT INTO Cierres_Formas_pago ( Cierre, Forma_Pago, Importe ) VALUES ( 7 , 'CON', "
          "'310,75')"));
  EXPECT_EQ(shop.text("SELECT Importe FROM Cierres_Familias"), "121,5");
  EXPECT_EQ(shop.text("SELECT Base FROM Cierres_Lineas_Impuestos"), "294,01");
  EXPECT_EQ(shop.text("SELECT Importe FROM Cierres_Formas_Pago"), "310,75");
}

TEST_F(ClsCierresTest, AClosingAndItsDetailsShareTheCallersTransaction) {
  ConnectionPtr connection = DataSession().OpenConnection(1);
  connection->BeginTrans();
  ClsCierres::Cierre one = closing();
  closings.Insertar({.vId = one.vId, .dtFecha = one.dtFecha, .objCn = connection});
  closings.InsertarCierreFamilias(one.vId, "BEB", 1, connection);
  connection->RollbackTrans();
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Cierres"), "0");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Cierres_Familias"), "0");
}

TEST_F(ClsCierresTest, DeleteAllTakesTheThreeDetailsAndLeavesTheClosing) {
  closings.Insertar(closing());
  for (const int number : {7, 8}) {
    closings.InsertarCierreFamilias(std::int32_t{number}, "BEB", 1);
    closings.InsertarCierreImpuestos(std::int32_t{number}, "21", 1, 1);
    closings.InsertarCierreFormasPago(std::int32_t{number}, "CON", 1);
  }
  shop.statements();
  ConnectionPtr connection;
  closings.DeleteAll(std::int32_t{7}, connection);
  EXPECT_THAT(shop.statements(),
              ElementsAre("DELETE  FROM Cierres_Familias  WHERE (((Cierre)=7));",
                          "DELETE  FROM Cierres_Formas_Pago  WHERE (((Cierre)=7));",
                          "DELETE  FROM Cierres_Lineas_Impuestos  WHERE (((Cierre)=7));"));
  EXPECT_NE(connection, nullptr);
  for (const char* table :
       {"Cierres_Familias", "Cierres_Formas_Pago", "Cierres_Lineas_Impuestos"}) {
    EXPECT_EQ(shop.text(std::string("SELECT Cierre FROM ") + table), "8") << table;
  }
  EXPECT_EQ(column("Caja"), "01");
}

// ---- Invoicing

TEST_F(ClsCierresTest, FacturarDocumentoMarksAClosing) {
  close(7, "01", "0");
  shop.statements();
  closings.FacturarDocumento(std::int32_t{7}, 3, std::int32_t{20015});
  EXPECT_THAT(shop.statements(),
              ElementsAre("UPDATE  Cierres  SET Facturado = 3 , Doc_F = 20015 WHERE(Codigo = 7)"));
  EXPECT_EQ(column("Facturado"), "3");
  EXPECT_EQ(column("Doc_F"), "20015");
}

TEST_F(ClsCierresTest, CancelarFacturacionOfAnotherKindChangesNothing) {
  close(7, "01", "0");
  closings.FacturarDocumento(std::int32_t{7}, 3, std::int32_t{20015});
  shop.statements();
  closings.CancelarFacturacion(std::int32_t{7}, 2);
  EXPECT_THAT(shop.statements(),
              ElementsAre("UPDATE  Cierres SET Facturado = 0 , Doc_F = 0 WHERE(Codigo = 7 and "
                          "Facturado = 2)"));
  EXPECT_EQ(column("Facturado"), "3");
  closings.CancelarFacturacion(std::int32_t{7}, 3);
  EXPECT_EQ(column("Facturado"), "0");
  EXPECT_EQ(column("Doc_F"), "0");
}

// ---- The chain of balances

TEST_F(ClsCierresTest, SaldoAnteriorOfATillWithoutClosingsLeavesTheValue) {
  close(5, "02", "50");
  EXPECT_EQ(previous("01", 33), 33);
}

TEST_F(ClsCierresTest, SaldoAnteriorLooksAtEverythingUpToTodayWhateverTheDateAskedFor) {
  close(5, "01", "50.25");
  shop.statements();
  EXPECT_EQ(previous("01"), 50.25) << "the date passed is yesterday";
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Max(Codigo) AS MáxDeCodigo FROM Cierres Where ((Fecha<=46086) "
                          "AND (Caja='01'));",
                          "SELECT Saldo_Final AS SumaDeSaldo_Final FROM Cierres Where "
                          "((Codigo=5));"));
}

TEST_F(ClsCierresTest, SaldoAnteriorIsThatOfTheTill) {
  close(5, "01", "50");
  close(6, "02", "60");
  EXPECT_EQ(previous("01"), 50);
}

TEST_F(ClsCierresTest, TheChainRunsByNumberNotByDate) {
  close(5, "01", "50", "#03/05/2026#");
  close(6, "01", "60", "#03/01/2026#");
  EXPECT_EQ(previous("01"), 60);
}

TEST_F(ClsCierresTest, AClosingOfTomorrowDoesNotCountYet) {
  close(5, "01", "50");
  close(6, "01", "60", "#03/06/2026#");
  EXPECT_EQ(previous("01"), 50);
}

TEST_F(ClsCierresTest, AClosingOfThisAfternoonCountsToday) {
  ClsCierres::Cierre one = closing();
  one.dtFecha = Date::of({2026, 3, 5, 20, 15, 0});
  shop.statements();
  closings.Insertar(one);
  EXPECT_THAT(shop.statements().at(0), testing::HasSubstr("'05/03/2026' AS Expr3"));
  EXPECT_EQ(column("Fecha"), "05/03/2026");
  EXPECT_EQ(previous("01"), 438.25);
}

TEST_F(ClsCierresTest, ANullBalanceLeavesTheValue) {
  close(5, "01", "Null");
  EXPECT_EQ(previous("01", 33), 33);
}

// ---- The slip

TEST_F(ClsCierresTest, TheSlipHasALabelForEachValue) {
  closings.Insertar(closing());
  shop.statements();
  const auto lines = shown(closings.GetCierreToCol(std::int32_t{7}));
  EXPECT_THAT(shop.statements(), ElementsAre(std::string(kLista) + " WHERE Codigo = 7"));
  EXPECT_THAT(lines, ElementsAre("Cierre de Caja - Fecha 05/03/2026", "Caja : 01",
                                 "Tickets : 310,75", "Alb./Fact. : 45", "Total Cierre : 350,5",
                                 "S. Inicio : 100", "S. Fin : 438,25"));
}

TEST_F(ClsCierresTest, TheSlipSkipsALabelWhoseValueIsNull) {
  close(7, "01", "0");
  EXPECT_THAT(shown(closings.GetCierreToCol(std::int32_t{7})),
              ElementsAre("Cierre de Caja - Fecha 05/03/2026", "Caja : 01", "S. Fin : 0"));
}

TEST_F(ClsCierresTest, TheSlipOfAnAbsentClosingIsEmpty) {
  EXPECT_THAT(closings.GetCierreToCol(std::int32_t{7}), IsEmpty());
}

TEST_F(ClsCierresTest, AFamilyOf25CharactersPrintsItsFirst19) {
  closings.InsertarCierreFamilias(std::int32_t{7}, "ABCDEFGHIJKLMNOPQRSTUVWXY", 12.5);
  closings.InsertarCierreFamilias(std::int32_t{7}, "Ñoños y piñón añejo x", 1234567);
  closings.IniciaRs("familias", std::int32_t{7});
  EXPECT_THAT(shown(closings.GetCollectionLinFamilias()),
              testing::UnorderedElementsAre("ABCDEFGHIJKLMNOPQRS       12,5",
                                            "Ñoños y piñón añejo    1234567"));
}

TEST_F(ClsCierresTest, APaymentMethodAndItsAmountShareTwentyColumns) {
  closings.InsertarCierreFormasPago(std::int32_t{7}, "Contado", 310.755);
  closings.InsertarCierreFormasPago(std::int32_t{7}, "002", 45);
  closings.InsertarCierreFormasPago(std::int32_t{7}, "Transferencia a la vista", 1.5);
  closings.IniciaRs("formas_pago", std::int32_t{7});
  EXPECT_THAT(shown(closings.GetCollectionLinFormasPago()),
              testing::UnorderedElementsAre("Contado       310,76", "2,00              45",
                                            "Transferencia a la vista1,5"));
}

TEST_F(ClsCierresTest, ARateItsBaseAndItsTaxAreALine) {
  closings.InsertarCierreImpuestos(std::int32_t{7}, "21", 1294.01, 61.745);
  closings.InsertarCierreImpuestos(std::int32_t{7}, "5,2", 10, 0.52);
  closings.IniciaRs("impuestos", std::int32_t{7});
  EXPECT_THAT(shown(closings.GetCollectionLinImpuestos()),
              testing::UnorderedElementsAre("  21% IVA de   1.294,01    61,75",
                                            " 5,2% IVA de      10,00     0,52"));
}

TEST_F(ClsCierresTest, ARateOfTheSlipHasSinglePrecision) {
  closings.InsertarCierreImpuestos(std::int32_t{7}, "5,123456789", 10, 0.51);
  closings.IniciaRs("impuestos", std::int32_t{7});
  EXPECT_THAT(shown(closings.GetCollectionLinImpuestos()),
              ElementsAre("5,123457% IVA de      10,00     0,51"));
}

TEST_F(ClsCierresTest, WithoutRowsThereAreNoLines) {
  closings.IniciaRs("familias", std::int32_t{7});
  EXPECT_THAT(closings.GetCollectionLinFamilias(), IsEmpty());
  closings.IniciaRs("formas_pago", std::int32_t{7});
  EXPECT_THAT(closings.GetCollectionLinFormasPago(), IsEmpty());
  closings.IniciaRs("impuestos", std::int32_t{7});
  EXPECT_THAT(closings.GetCollectionLinImpuestos(), IsEmpty());
}

TEST_F(ClsCierresTest, TheLinesLeaveTheCallersPosition) {
  closings.InsertarCierreFamilias(std::int32_t{7}, "A", 1);
  closings.InsertarCierreFamilias(std::int32_t{7}, "B", 1);
  closings.IniciaRs("familias", std::int32_t{7});
  closings.MoveNext();
  closings.GetCollectionLinFamilias();
  EXPECT_EQ(closings.AbsolutePosition(), 2);
}

TEST_F(ClsCierresTest, TheDetailsOfAnotherModeAreNotThere) {
  closings.IniciaRs("todos");
  closings.AddNew();
  closings.DataMember("Primary")->Update();
  EXPECT_EQ(errorOf([&] { closings.GetCollectionLinFamilias(); }), errors::kItemNotFound);
}

TEST_F(ClsCierresTest, TheTextFileLiesInTheReportFolder) {
  EXPECT_THAT(closings.GetTxtFile(), testing::EndsWith("rpt/Cierres.txt"));
}

// ---- Obtener

TEST_F(ClsCierresTest, ObtenerFillsTheFormOfATicket) {
  closings.Insertar(closing());
  closings.FacturarDocumento(std::int32_t{7}, 3, std::int32_t{20015});
  ClsTickets::Lectura form{.vId = std::int32_t{7}, .sSerie = "as passed", .dFactura = 1};
  shop.statements();
  closings.Obtener(form);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT Codigo AS Código, Fecha, Descripcion AS Descripción, Caja, Empleado, "
                  "Entrega as Entradas, Efectivo, Credito, Base, Importe_Impuestos , "
                  "Importe_Recargo , Total, Saldo_Inicio as Remanente, Saldo_Final as Saldo, "
                  "Facturado, Doc_F as Documento FROM Cierres WHERE Codigo = 7"));
  EXPECT_EQ(form.dtFecha, Date::of(2026, 3, 5));
  EXPECT_EQ(form.sEmpresa, "Cierre de tarde");
  EXPECT_EQ(form.dBase, 294.01);
  EXPECT_EQ(form.dImpImp, 61.74);
  EXPECT_EQ(form.dImpRec, 0);
  EXPECT_EQ(form.dTotal, 355.75);
  EXPECT_EQ(form.iFacturado, 3);
  EXPECT_EQ(form.sSerie, "as passed");
  EXPECT_EQ(form.dFactura, 1) << "the number of the invoice is read and not given";
}

TEST_F(ClsCierresTest, ObtenerLeavesWhatIsNullButRaisesForANullMark) {
  close(7, "01", "0");
  ClsTickets::Lectura form{.vId = std::int32_t{7}, .sEmpresa = "as passed", .dTotal = 5};
  closings.Obtener(form);
  EXPECT_EQ(form.sEmpresa, "as passed");
  EXPECT_EQ(form.dTotal, 5);
  shop.run("UPDATE Cierres SET Facturado = Null");
  EXPECT_EQ(errorOf([&] { closings.Obtener(form); }), errors::kInvalidUseOfNull);
}

TEST_F(ClsCierresTest, ObtenerOfAnAbsentClosingLeavesEverything) {
  ClsTickets::Lectura form{.vId = std::int32_t{7}, .dTotal = 5};
  closings.Obtener(form);
  EXPECT_EQ(form.dTotal, 5);
}

// ---- The other locale

class ClsCierresNeutralTest : public ClsCierresTest {
 protected:
  ClsCierresNeutralTest() : ClsCierresTest(neutral()) {}
};

TEST_F(ClsCierresNeutralTest, NumbersAndDatesArePrintedByTheLocale) {
  shop.statements();
  closings.Insertar(closing());
  const std::string statement = shop.statements().front();
  EXPECT_THAT(statement, testing::HasSubstr("'2026-03-05' AS Expr3"));
  EXPECT_THAT(statement, testing::HasSubstr("'438.25' AS Expr14;"));
  EXPECT_EQ(column("Saldo_Final"), "438.25");
  EXPECT_EQ(column("Fecha"), "2026-03-05");
  EXPECT_EQ(previous("01"), 438.25);
  closings.InsertarCierreImpuestos(std::int32_t{7}, "5.2", 1294.01, 67.29);
  closings.IniciaRs("impuestos", std::int32_t{7});
  EXPECT_THAT(shown(closings.GetCollectionLinImpuestos()),
              ElementsAre(" 5.2% IVA de   1,294.01    67.29"));
}

TEST_F(ClsCierresNeutralTest, TheSlipIsPrintedByTheLocale) {
  closings.Insertar(closing());
  EXPECT_THAT(
      shown(closings.GetCierreToCol(std::int32_t{7})),
      ElementsAre("Cierre de Caja - Fecha 2026-03-05", "Caja : 01", "Tickets : 310.75",
                  "Alb./Fact. : 45", "Total Cierre : 350.5", "S. Inicio : 100", "S. Fin : 438.25"));
  closings.InsertarCierreFormasPago(std::int32_t{7}, "Contado", 1310.755);
  closings.InsertarCierreFormasPago(std::int32_t{7}, "002", 45);
  closings.IniciaRs("formas_pago", std::int32_t{7});
  EXPECT_THAT(shown(closings.GetCollectionLinFormasPago()),
              testing::UnorderedElementsAre("Contado      1310.76", "2.00              45"));
  closings.InsertarCierreFamilias(std::int32_t{7}, "Bebidas", 1234.5);
  closings.IniciaRs("familias", std::int32_t{7});
  EXPECT_THAT(shown(closings.GetCollectionLinFamilias()),
              ElementsAre("Bebidas                 1234.5"));
}

TEST_F(ClsCierresNeutralTest, TheChainLooksForTodayInPlainDigits) {
  shop.statements();
  previous("01");
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT Max(Codigo) AS MáxDeCodigo FROM Cierres Where ((Fecha<=46086) AND "
                  "(Caja='01'));"));
}

// ---- Masks that differ

class ClsCierresMasksTest : public ClsCierresTest {
 protected:
  ClsCierresMasksTest() : ClsCierresTest(settings()) {}
  static Settings settings() {
    Settings of = test::fastSettings();
    of.quantityFormat = "#,##0.0000";
    return of;
  }
};

TEST_F(ClsCierresMasksTest, OnlyTheBaseOfATaxHasTheMaskOfQuantities) {
  closings.InsertarCierreImpuestos(std::int32_t{7}, "21", 94.01, 61.745);
  closings.IniciaRs("impuestos", std::int32_t{7});
  EXPECT_THAT(shown(closings.GetCollectionLinImpuestos()),
              ElementsAre("  21% IVA de    94,0100    61,75"));
  closings.InsertarCierreFormasPago(std::int32_t{7}, "002", 310.755);
  closings.IniciaRs("formas_pago", std::int32_t{7});
  EXPECT_THAT(shown(closings.GetCollectionLinFormasPago()), ElementsAre("2,00          310,76"));
}

}  // namespace
}  // namespace tavelor
