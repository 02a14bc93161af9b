// SPDX-License-Identifier: MIT
// ClsTicketsLineas: modes, the batch, single lines.
#include "tests/classes/sales/lineas.hpp"

#include "tavelor/frame/component.hpp"
#include "tavelor/services/prompt_global.hpp"
#include "tavelor/services/registry_tree.hpp"
#include "tests/classes/report_path.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kLista =
    "SELECT CODIGO AS Código, Descripcion as Descripción , Cantidad, Precio, DTO, IVA, Importe, "
    "Lote, Numero AS Ticket, ID, Familia From Tickets_Lineas";

class ClsTicketsLineasTest : public testing::Test, protected test::LineShop {
 protected:
  ClsTicketsLineasTest() = default;
  explicit ClsTicketsLineasTest(const Settings& settings) : LineShop(settings) {}

  std::string statementOf(std::string word, const Variant& id = {}) {
    shop.statements();
    lines.IniciaRs({}, word, id);
    word_ = word;
    const std::vector<std::string> ran = shop.statements();
    return ran.size() == 1 ? ran.front() : "not one statement";
  }
  /// Adds a row to the batch.
  void addNew(const std::string& code) {
    lines.AddNew(true);
    rows().Field("Código").Value(code);
  }
  std::string word_;
};

TEST(ClsTicketsLineas, TheSlotsStandInOrder) {
  std::vector<std::string> names;
  for (const Member& slot : ClsTicketsLineas::component().members()) names.push_back(slot.name);
  EXPECT_THAT(
      names,
      ElementsAre("ActualizarEuros", "SetFamilia", "Mover_Impuestos_A_Historicos",
                  "Mover_Impuestos_De_Historicos", "Mover_De_Historicos", "Mover_A_Historicos",
                  "CerrarTicket", "ConvertirSerie", "SeguridadPermiso", "GetCollectionRegs",
                  "SumCollectionLinHFamilias", "SumCollectionLinHImpuestos",
                  "GetCollectionLinImpuestos", "GetCollectionLin", "GetConnection", "ObtenerCol",
                  "Obtener", "Insertar", "IniciaRs", "CnnBeginTrans", "CnnCommitTrans",
                  "CnnRollbackTrans", "NuevoCodigo", "AddNew", "UpdateadAffectCurrent", "UpdateId",
                  "DeleteAll", "EditAddRecord", "EditingRecord", "AbsolutePosition", "Delete",
                  "Requery", "Update", "Cancel", "CancelBatch", "MoveFirst", "MoveLast",
                  "MoveToBookmark", "MoveNext", "MovePrevious", "ExistenRegistros", "FindRecord",
                  "SumaCol"));
}

template <typename Class>
concept HasOrders = requires(Class& of) {
  of.SetOrder(std::int16_t{0}, "", "");
};

TEST(ClsTicketsLineas, MembersOfTheFrameThatItLacksDoNotCompile) {
  EXPECT_FALSE(HasOrders<ClsTicketsLineas>);
  EXPECT_FALSE(test::HasReportPath<ClsTicketsLineas>);
}

// ---- Modes

TEST_F(ClsTicketsLineasTest, EachModeHasItsStatement) {
  EXPECT_EQ(statementOf("seleccion", std::int32_t{1234}),
            std::string(kLista) + " Where (Numero = 1234)");
  EXPECT_EQ(statementOf("ninguno"), std::string(kLista) + " Where (Numero = 0)");
  EXPECT_EQ(statementOf("deeliminar", "A1"), std::string(kLista) + " Where (CODIGO = 'A1')");
}

TEST_F(ClsTicketsLineasTest, TheLinesOfNoTicketAreRefused) {
  EXPECT_EQ(errorOf([&] { lines.IniciaRs({}, "seleccion"); }), errors::kSyntax);
}

TEST_F(ClsTicketsLineasTest, AnyOtherWordBecomesTodos) {
  EXPECT_EQ(statementOf("Seleccion"), kLista);
  EXPECT_EQ(word_, "todos");
  EXPECT_EQ(statementOf(""), kLista);
  EXPECT_EQ(word_, "todos");
}

// The quote in the format call is never closed. Closing it would give callers a record set where
// they handle an error.
TEST_F(ClsTicketsLineasTest, TheModeTotalimpuestosIsRefusedByTheDatabase) {
  shop.statements();
  EXPECT_EQ(errorOf([&] { lines.IniciaRs({}, "totalimpuestos", std::int32_t{5}); }),
            errors::kSyntax);
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT IVA, Sum(Base) AS [Base Imponible], format(Sum(Importe),'#) AS "
                          "[Importe IVA] From HTickets_Lineas_Impuestos GROUP BY IVA, Cierre "
                          "HAVING (((Cierre=5)));"));
}

TEST_F(ClsTicketsLineasTest, AnEmptyConnectionIsFilledAndBecomesTheClasss) {
  ConnectionPtr connection;
  lines.IniciaRs(connection, "ninguno");
  ASSERT_NE(connection, nullptr);
  EXPECT_EQ(lines.GetConnection(), connection);
}

TEST_F(ClsTicketsLineasTest, TheBatchRidesOnTheCallersTransaction) {
  ConnectionPtr connection = DataSession().OpenConnection(kDocuments);
  lines.IniciaRs(connection, "ninguno");
  lines.CnnBeginTrans();
  addNew("A1");
  lines.UpdateId(std::int32_t{7});
  lines.Update();
  lines.CnnRollbackTrans();
  EXPECT_EQ(count(), "0");
}

// A receipt prints lines as they were sold: no order of a grid is restored over them, nor kept.
TEST_F(ClsTicketsLineasTest, LinesStayInTheOrderOfTheDatabase) {
  store({.id = 1, .code = "'Z9'"});
  store({.id = 2, .code = "'A1'"});
  open();
  EXPECT_EQ(field("Código"), "Z9");
  lines.Requery();
  EXPECT_EQ(field("Código"), "Z9");
  EXPECT_EQ(rows().Sort(), "");
}

TEST_F(ClsTicketsLineasTest, RequeryLeavesTodosInTheCallersString) {
  open();
  std::string word;
  lines.Requery(word);
  EXPECT_EQ(word, "Todos");
}

// ---- The batch

TEST_F(ClsTicketsLineasTest, AddNewWithDefaultsGivesFourZerosAndNoKey) {
  open();
  shop.statements();
  lines.AddNew(true);
  for (const char* name : {"Cantidad", "Precio", "DTO", "IVA"}) EXPECT_EQ(field(name), "0") << name;
  for (const char* name : {"Ticket", "ID", "Importe"}) EXPECT_EQ(field(name), "Empty") << name;
  EXPECT_THAT(shop.statements(), IsEmpty()) << "no key is looked for";
}

TEST_F(ClsTicketsLineasTest, AddNewWithoutDefaultsGivesNothing) {
  open();
  lines.AddNew();
  EXPECT_EQ(field("Cantidad"), "Empty");
  lines.AddNew(false, true);
  EXPECT_EQ(field("Cantidad"), "Empty");
}

TEST_F(ClsTicketsLineasTest, EditAddRecordIsTrueWhileAdding) {
  EXPECT_FALSE(lines.EditAddRecord()) << "before IniciaRs";
  store({});
  open();
  EXPECT_FALSE(lines.EditAddRecord());
  rows().Field("Cantidad").Value(2.0);
  EXPECT_FALSE(lines.EditAddRecord()) << "a row that is edited is not added";
  EXPECT_TRUE(lines.EditingRecord());
  lines.Cancel();
  lines.AddNew();
  EXPECT_TRUE(lines.EditAddRecord());
  lines.Cancel();
  EXPECT_FALSE(lines.EditAddRecord());
}

TEST_F(ClsTicketsLineasTest, UpdateIdCountsFromTheTablesGreatestKey) {
  store({.id = 40, .ticket = "9"});
  lines.IniciaRs({}, "ninguno");
  for (const char* code : {"A1", "A2", "A3"}) addNew(code);
  shop.statements();
  lines.UpdateId(std::int32_t{1234});
  EXPECT_THAT(shop.statements(), ElementsAre("SELECT MAX(ID) AS Nuevo_Codigo FROM Tickets_Lineas"));
  lines.Update();
  for (const int id : {41, 42, 43}) EXPECT_EQ(column("Numero", id), "1234") << id;
  EXPECT_EQ(column("Codigo", 41), "A1");
  EXPECT_EQ(column("Codigo", 43), "A3");
}

// The batch is the whole record set: what a filter hides is sold too, and a line whose new key the
// filter does not let through must not stop the numbering.
TEST_F(ClsTicketsLineasTest, UpdateIdNumbersTheWholeBatchUnderAFilter) {
  lines.IniciaRs({}, "ninguno");
  for (const char* code : {"A1", "B2", "A3"}) addNew(code);
  rows().Field("ID").Value(-1);
  rows().Filter("Código Like 'A*'");
  lines.UpdateId(std::int32_t{7});
  EXPECT_TRUE(rows().Eof());
  EXPECT_EQ(rows().Filter(), "Código Like 'A*'");

  rows().Filter("ID = 2");
  EXPECT_EQ(field("Código"), "B2");
  lines.UpdateId(std::int32_t{8});
  EXPECT_TRUE(rows().Eof());
  rows().Filter("");
  lines.Update();
  for (const int id : {1, 2, 3}) EXPECT_EQ(column("Numero", id), "8") << id;
  EXPECT_EQ(column("Codigo", 2), "B2");
}

TEST_F(ClsTicketsLineasTest, UpdateIdOfTheFirstLinesStartsAtOne) {
  lines.IniciaRs({}, "ninguno");
  addNew("A1");
  lines.UpdateId(std::int32_t{1});
  EXPECT_TRUE(rows().Eof());
  lines.Update();
  EXPECT_EQ(column("Codigo", 1), "A1");
}

TEST_F(ClsTicketsLineasTest, UpdateIdNumbersStoredRowsAnewToo) {
  store({.id = 5, .code = "'A1'"});
  store({.id = 6, .code = "'A2'"});
  open();
  lines.UpdateId(std::int32_t{77});
  lines.Update();
  EXPECT_EQ(text("SELECT Count(*) FROM Tickets_Lineas WHERE Numero = 77 AND ID > 6"), "2");
}

TEST_F(ClsTicketsLineasTest, UpdateIdPassesOverALineThatTheBatchDeletes) {
  for (const int id : {40, 41, 42}) store({.id = id});
  open();
  lines.MoveNext();
  lines.Delete();
  lines.UpdateId(std::int32_t{77});
  lines.Update();
  EXPECT_EQ(count(), "2");
  EXPECT_EQ(text("SELECT Min(ID) FROM Tickets_Lineas WHERE Numero = 77"), "43");
  EXPECT_EQ(text("SELECT Max(ID) FROM Tickets_Lineas WHERE Numero = 77"), "44");
}

TEST_F(ClsTicketsLineasTest, UpdateIdWithoutRowsAsksForNothing) {
  lines.IniciaRs({}, "ninguno");
  shop.statements();
  lines.UpdateId(std::int32_t{1234});
  EXPECT_THAT(shop.statements(), IsEmpty());
}

TEST_F(ClsTicketsLineasTest, UpdateadAffectCurrentGivesTheTicketOnly) {
  lines.IniciaRs({}, "ninguno");
  addNew("A1");
  lines.UpdateadAffectCurrent(std::int32_t{88});
  EXPECT_EQ(field("Ticket"), "88");
  EXPECT_EQ(field("ID"), "Empty");
  EXPECT_FALSE(lines.EditingRecord()) << "the row is posted";
  EXPECT_EQ(count(), "0") << "and not written";
}

TEST_F(ClsTicketsLineasTest, SetFamiliaWritesTheFamilyOfTheCurrentRow) {
  store({});
  open();
  lines.SetFamilia("PAN");
  lines.Update();
  EXPECT_EQ(column("Familia", 1), "PAN");
}

TEST_F(ClsTicketsLineasTest, UpdateSendsAllPendingRows) {
  store({.id = 1});
  store({.id = 2});
  open();
  rows().Field("Cantidad").Value(5.0);
  lines.MoveNext();
  rows().Field("Cantidad").Value(6.0);
  lines.Update();
  EXPECT_EQ(column("Cantidad", 1), "5");
  EXPECT_EQ(column("Cantidad", 2), "6");
}

TEST_F(ClsTicketsLineasTest, DeleteWaitsForUpdate) {
  store({.id = 1});
  open();
  lines.Delete();
  EXPECT_EQ(count(), "1");
  lines.Update();
  EXPECT_EQ(count(), "0");
}

TEST_F(ClsTicketsLineasTest, CancelTakesTheEditOfTheCurrentRowBack) {
  store({});
  open();
  rows().Field("Cantidad").Value(9.0);
  lines.Cancel();
  EXPECT_EQ(field("Cantidad"), "1");
}

TEST_F(ClsTicketsLineasTest, CancelBatchDropsAllPendingChanges) {
  store({.id = 1});
  store({.id = 2});
  open();
  rows().Field("Cantidad").Value(5.0);
  lines.MoveNext();
  lines.Delete();
  addNew("A9");
  lines.CancelBatch();
  lines.Update();
  EXPECT_EQ(count(), "2");
  EXPECT_EQ(column("Cantidad", 1), "1");
}

TEST_F(ClsTicketsLineasTest, AFailedUpdateTellsTheUserAndRisesUnchanged) {
  store({});
  open();
  rows().Field("Cantidad").Value(5.0);
  rows().Update();
  run("UPDATE Tickets_Lineas SET Cantidad = 3");
  std::string description;
  std::int32_t number = 0;
  try {
    lines.Update();
  } catch (const Error& error) {
    number = error.number();
    description = error.description();
  }
  EXPECT_EQ(number, errors::kRowNotLocated);
  const auto& messages = shop.apartment().promptGlobal().messages();
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages[0].text, "Ln · " + description);
}

TEST_F(ClsTicketsLineasTest, ASuccessfulUpdateTellsNothing) {
  store({});
  open();
  rows().Field("Cantidad").Value(5.0);
  lines.Update();
  EXPECT_THAT(shop.apartment().promptGlobal().messages(), IsEmpty());
}

TEST_F(ClsTicketsLineasTest, NoMoveIsTold) {
  struct Listener : RecordClassEvents {
    void MoveComplete() override { ++moves; }
    int moves = 0;
  } listener;
  store({.id = 1});
  store({.id = 2});
  open();
  lines.addListener(listener);
  lines.MoveNext();
  lines.removeListener(listener);
  EXPECT_EQ(listener.moves, 0);
  EXPECT_EQ(lines.AbsolutePosition(), 2);
}

// ---- Single lines

TEST_F(ClsTicketsLineasTest, InsertarIsOneStatementWithNumbersInTheLocalesPrinting) {
  shop.statements();
  lines.Insertar({.vDoc = std::int32_t{1234},
                  .vIdNewReg = std::int32_t{41},
                  .sCodigo = "A0001",
                  .sDescripcion = "Café molido",
                  .dCantidad = 0.125,
                  .dPrecio = 12.3456,
                  .dDtoLin = 2.5,
                  .dIva = 21,
                  .dImporte = 1.5,
                  .sLote = "0",
                  .sFam = "BEB"});
  EXPECT_THAT(shop.statements(),
              ElementsAre("INSERT INTO Tickets_Lineas ( Codigo, Descripcion, Cantidad, Precio, "
                          "DTO, IVA,  Importe , Lote, ID, Numero, Familia ) SELECT DISTINCTROW "
                          "'A0001' AS codigo, 'Café molido' AS Descripcion, '0,125' AS Cantidad , "
                          "'12,3456' AS Precio, '2,5' AS dto, '21' AS Iva, '1,5' AS Base, '0' AS "
                          "Lote, 41 AS Registro , 1234 AS Factura, 'BEB' AS Familia "));
  EXPECT_EQ(column("Precio", 41), "12,3456");
  EXPECT_EQ(column("Importe", 41), "1,5");
  EXPECT_EQ(column("Numero", 41), "1234");
  EXPECT_EQ(column("Familia", 41), "BEB");
}

TEST_F(ClsTicketsLineasTest, AQuoteInADescriptionIsDoubledAndTheCallerGetsWhatWasWritten) {
  std::string description = "Aceite L'Olivera";
  lines.Insertar(
      {.vDoc = std::int32_t{1}, .vIdNewReg = std::int32_t{1}, .sDescripcion = description});
  EXPECT_EQ(description, "Aceite L''Olivera");
  EXPECT_EQ(column("Descripcion", 1), "Aceite L'Olivera");
}

TEST_F(ClsTicketsLineasTest, AQuoteInAnotherTextBreaksTheStatement) {
  EXPECT_EQ(
      errorOf([&] {
        lines.Insertar({.vDoc = std::int32_t{1}, .vIdNewReg = std::int32_t{1}, .sCodigo = "A'1"});
      }),
      errors::kSyntax);
  EXPECT_EQ(count(), "0");
}

TEST_F(ClsTicketsLineasTest, InsertarFillsAnEmptyConnection) {
  ConnectionPtr connection;
  lines.Insertar({.vDoc = std::int32_t{1}, .vIdNewReg = std::int32_t{1}, .cnnActive = connection});
  EXPECT_NE(connection, nullptr);
}

TEST_F(ClsTicketsLineasTest, InsertarByNameWritesTheDescriptionBack) {
  std::vector<Variant> arguments = {
      std::int32_t{1}, std::int32_t{1}, "A1", "L'Or", 1.0, 2.0, 0.0, 21.0, 2.0, "", "BEB"};
  ClsTicketsLineas::component().call(lines, "Insertar", arguments);
  EXPECT_EQ(arguments[3], Variant("L''Or"));
  EXPECT_EQ(column("Precio", 1), "2");
}

TEST_F(ClsTicketsLineasTest, ObtenerReadsALineByItsKey) {
  store({.id = 41,
         .quantity = "2",
         .price = "60.5",
         .discount = "5",
         .amount = "121",
         .lot = "'L7'"});
  ClsTicketsLineas::Lectura line{.vId = std::int32_t{41}};
  shop.statements();
  lines.Obtener(line);
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT CODIGO AS Código, Descripcion as Descripción , Cantidad, Precio, "
                          "DTO, IVA, Importe, Lote, ID, Numero AS Ticket From Tickets_Lineas Where "
                          "(ID = 41)"));
  EXPECT_EQ(line.sCodigo, Variant("A1"));
  EXPECT_EQ(line.sDescripcion, Variant("Café molido"));
  EXPECT_EQ(line.dCantidad, Variant(2.0));
  EXPECT_EQ(line.dPrecio, Variant(60.5));
  EXPECT_EQ(line.dDtoLin, Variant(5.0));
  EXPECT_EQ(line.dIva, Variant(21.0));
  EXPECT_EQ(line.dImporte, Variant(121.0));
  EXPECT_EQ(line.sLote, Variant("L7"));
}

TEST_F(ClsTicketsLineasTest, ObtenerGivesZeroForANullLotAndLeavesTheOtherNulls) {
  store({.id = 41, .price = "Null"});
  ClsTicketsLineas::Lectura line{.vId = std::int32_t{41}, .dPrecio = 7.0};
  lines.Obtener(line);
  EXPECT_EQ(line.sLote, Variant("0"));
  EXPECT_EQ(line.dPrecio, Variant(7.0));
}

TEST_F(ClsTicketsLineasTest, ObtenerOfAnAbsentLineLeavesEverything) {
  ClsTicketsLineas::Lectura line{.vId = std::int32_t{41}, .sCodigo = "X", .sLote = "Y"};
  lines.Obtener(line);
  EXPECT_EQ(line.sCodigo, Variant("X"));
  EXPECT_EQ(line.sLote, Variant("Y"));
}

TEST_F(ClsTicketsLineasTest, ObtenerColGivesTheKeysOfATicket) {
  store({.id = 3});
  store({.id = 5, .ticket = "9"});
  store({.id = 4});
  shop.statements();
  EXPECT_THAT(shown(lines.ObtenerCol(std::int32_t{1234})), ElementsAre("3", "4"));
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT  ID, Numero From Tickets_Lineas Where (Numero = 1234)"));
  EXPECT_THAT(lines.ObtenerCol(std::int32_t{1}), IsEmpty());
}

TEST_F(ClsTicketsLineasTest, NuevoCodigoIsOneOnAnEmptyTableAndCountsOverAllTickets) {
  EXPECT_EQ(shown(lines.NuevoCodigo()), "1");
  store({.id = 40, .ticket = "9"});
  EXPECT_EQ(shown(lines.NuevoCodigo()), "41");
}

TEST_F(ClsTicketsLineasTest, DeleteAllRemovesLinesWithoutTicketToo) {
  store({.id = 1});
  store({.id = 2, .ticket = "Null"});
  store({.id = 3, .ticket = "9"});
  shop.statements();
  lines.DeleteAll(std::int32_t{1234});
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("DELETE  FROM Tickets_Lineas  WHERE (Numero = 1234 or (Numero) is Null)"));
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(column("Numero", 3), "9");
}

// ---- The other locale

class ClsTicketsLineasNeutralTest : public ClsTicketsLineasTest {
 protected:
  ClsTicketsLineasNeutralTest() : ClsTicketsLineasTest(test::lineSettings("neutral")) {}
};

TEST_F(ClsTicketsLineasNeutralTest, InsertarPrintsWithADecimalPoint) {
  shop.statements();
  lines.Insertar({.vDoc = std::int32_t{1}, .vIdNewReg = std::int32_t{1}, .dPrecio = 1234.5});
  EXPECT_THAT(shop.statements().front(), testing::HasSubstr("'1234.5' AS Precio"));
  EXPECT_EQ(column("Precio", 1), "1234.5");
}

}  // namespace
}  // namespace tavelor
