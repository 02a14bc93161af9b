// SPDX-License-Identifier: MIT
// What employees earn by work phase.
#include "tavelor/staff/empleados_puntos.hpp"

#include <limits>

#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using test::hostileTexts;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kTodos =
    "SELECT ID, Fase, Seccion as Sección, Valor, Max AS Máximo, Empleado as Código  FROM "
    "Empleados_Puntos";
constexpr const char* kNuevoCodigo = "SELECT MAX(Id) AS Nuevo_Codigo FROM Empleados_Puntos";

class ClsEmpleadosPuntosTest : public test::CatalogueTest<ClsEmpleadosPuntos> {
 protected:
  ClsEmpleadosPuntosTest() {
    shop.run("INSERT INTO Fases (Codigo, Descripcion, Seccion) VALUES ('F1', 'Cera', 'S1')");
    shop.run("INSERT INTO Fases (Codigo, Descripcion) VALUES ('F2', 'Pulido')");
  }

  /// `phase` and `section` stand as they are: 'F1' in quotes, or Null.
  void add(int id, const std::string& employee, const std::string& phase = "'F1'",
           const std::string& section = "'S1'", const std::string& value = "1") {
    shop.run("INSERT INTO Empleados_Puntos (Id, Empleado, Fase, Seccion, Valor, [Max]) VALUES (" +
             std::to_string(id) + ", '" + employee + "', " + phase + ", " + section + ", " + value +
             ", 1)");
  }
  /// "employee/phase/section/value/max" of a row.
  std::string row(int id) {
    std::string all;
    for (const char* column : {"Empleado", "Fase", "Seccion", "Valor", "[Max]"}) {
      all += (all.empty() ? "" : "/") +
             shop.text(std::string("SELECT ") + column +
                       " FROM Empleados_Puntos WHERE Id = " + std::to_string(id));
    }
    return all;
  }
  std::string count() { return shop.text("SELECT Count(*) FROM Empleados_Puntos"); }

  ClsEmpleadosPuntos& points = catalogue;
};

TEST_F(ClsEmpleadosPuntosTest, TheSlotsStandInOrder) {
  EXPECT_THAT(firstSlots(),
              ElementsAre("GetConnectionStrToRpt", "sClassName", "GetConnection",
                          "GetConnectionStr", "Insertar", "ActualizarValor", "ObtenerFasesEmpleado",
                          "ObtenerFase", "ComprobarSeccion", "GetValorInterno", "GetValorCantFases",
                          "DeleteAll", "IniciaRs", "NuevoCodigo", "SeguridadPermiso"));
  std::vector<std::string> last;
  const std::vector<Member>& slots = ClsEmpleadosPuntos::component().members();
  for (std::size_t i = slots.size() - 4; i < slots.size(); ++i) last.push_back(slots[i].name);
  EXPECT_THAT(last, ElementsAre("ToHtmlGrid", "UpdateId", "UpdateadAffectCurrent", "CancelBatch"));
  EXPECT_EQ(signature("ObtenerFase"),
            "ObtenerFase(vId As Variant, out sSec As String, out sFase As String, out dVal As "
            "Double, out dMax As Double, [inout objCn As Connection])");
}

TEST_F(ClsEmpleadosPuntosTest, ThereIsNoReportAndNoFreeCode) {
  for (const char* member : {"GetRptPath", "CodigoLibre"}) {
    EXPECT_EQ(errorOf([&] { ClsEmpleadosPuntos::component().member(member); }),
              errors::kMemberNotFound);
  }
}

// ---- Modes

TEST_F(ClsEmpleadosPuntosTest, TheModes) {
  add(1, "001");
  add(2, "002", "'F2'");
  EXPECT_EQ(open("seleccion", "001").statement, kTodos + " WHERE (Empleado =  '001')");
  EXPECT_THAT(codes(), ElementsAre("1"));
  EXPECT_THAT(fieldNames(), ElementsAre("Id", "Fase", "Sección", "Valor", "Máximo", "Código"));
  EXPECT_EQ(open("seleccionar", "002").statement,
            "SELECT Empleados_Puntos.Fase AS Código, Fases.Descripcion AS Descripcion FROM "
            "Empleados_Puntos INNER JOIN Fases ON Empleados_Puntos.Fase = Fases.Codigo WHERE "
            "(Empleado =  '002')");
  EXPECT_EQ(field("Descripcion"), "Pulido");
  const Opened none = open("ninguno", "001");
  EXPECT_EQ(none.statement, kTodos + " Where (Empleado = '0')");
  EXPECT_EQ(none.word, "ninguno");
  EXPECT_EQ(rows().RecordCount(), 0);
  const Opened all = open("loquesea", "001");
  EXPECT_EQ(all.statement, kTodos);
  EXPECT_EQ(all.word, "todos");
  EXPECT_THAT(codes(), ElementsAre("1", "2"));
}

// The list is meant to be empty; nothing forbids the code.
TEST_F(ClsEmpleadosPuntosTest, NingunoShowsTheRowsOfAnEmployeeWithTheCodeZero) {
  add(1, "0");
  open("ninguno");
  EXPECT_EQ(rows().RecordCount(), 1);
}

TEST_F(ClsEmpleadosPuntosTest, TheRecordSetRidesOnTheCallersConnection) {
  ConnectionPtr connection;
  points.IniciaRs(connection, "ninguno");
  ASSERT_NE(connection, nullptr);
  EXPECT_EQ(points.GetConnection(), connection);
}

TEST_F(ClsEmpleadosPuntosTest, EachOpeningOffersPrimaryOnce) {
  points.IniciaRs();
  points.IniciaRs();
  EXPECT_THAT(points.DataMembers(), ElementsAre("Primary"));
}

// ---- Insertar

TEST_F(ClsEmpleadosPuntosTest, InsertarClearsThePairTakesTheSectionOfThePhaseAndInserts) {
  add(4, "002");
  shop.statements();
  points.Insertar("001", "F1", 1.5);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("DELETE Empleados_Puntos.* From Empleados_Puntos WHERE "
                  "(((Empleados_Puntos.Empleado)='001') AND ((Empleados_Puntos.Fase)='F1'));",
                  "SELECT Seccion FROM Fases WHERE Codigo = 'F1'", kNuevoCodigo,
                  "INSERT INTO Empleados_Puntos ( Id, Empleado, Seccion, Fase, Valor, [Max] ) "
                  "Values ( 5, '001', 'S1', 'F1', '1,5', 1 )"));
  EXPECT_EQ(row(5), "001/F1/S1/1,5/1");
  EXPECT_EQ(count(), "2");
}

TEST_F(ClsEmpleadosPuntosTest, InsertarTwiceForOnePairLeavesOneRowWithTheSecondValue) {
  points.Insertar("001", "F1", 3);
  points.Insertar("001", "F1", 4);
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(shop.text("SELECT Valor FROM Empleados_Puntos"), "4");
}

// The numbering comes behind the clearing, and looks at what that has left.
TEST_F(ClsEmpleadosPuntosTest, ANewRowGetsTheKeyOfTheClearedOneWhereThatWasTheGreatest) {
  add(3, "001", "'F2'");
  add(7, "001", "'F1'");
  points.Insertar("001", "F1", 2);
  EXPECT_EQ(row(4), "001/F1/S1/2/1");
}

TEST_F(ClsEmpleadosPuntosTest, InsertarLeavesOtherEmployeesPhasesAndRowsWithoutAPhase) {
  add(1, "002", "'F1'");
  add(2, "001", "'F2'");
  add(3, "001", "Null");
  points.Insertar("001", "F1", 2);
  EXPECT_EQ(count(), "4");
}

TEST_F(ClsEmpleadosPuntosTest, APhaseWithoutASectionGivesAnEmptyOne) {
  points.Insertar("001", "F2", 2);
  EXPECT_EQ(row(1), "001/F2//2/1");
  points.Insertar("001", "unknown", 2);
  EXPECT_EQ(row(2), "001/unknown//2/1");
}

TEST(EmployeePointsElsewhere, TheValueIsPrintedAndReadByTheLocale) {
  Settings neutral = test::fastSettings();
  neutral.locale = "neutral";
  test::Shop shop(neutral);
  const ClsEmpleadosPuntos points;
  points.Insertar("001", "F1", 1234.5);
  EXPECT_EQ(shop.statements().back(),
            "INSERT INTO Empleados_Puntos ( Id, Empleado, Seccion, Fase, Valor, [Max] ) Values ( "
            "1, '001', '', 'F1', '1234.5', 1 )");
  EXPECT_EQ(shop.value("SELECT Valor FROM Empleados_Puntos"), Variant(1234.5));
}

TEST_F(ClsEmpleadosPuntosTest, AValueThatIsNotFiniteIsRefusedBeforeAnythingIsWritten) {
  add(1, "001");
  shop.statements();
  for (const double value :
       {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(errorOf([&] { points.Insertar("001", "F1", value); }), errors::kOverflow);
  }
  EXPECT_THAT(shop.statements(), IsEmpty());
}

TEST_F(ClsEmpleadosPuntosTest,
       AfterAnErrorBehindTheClearingTheCallersTransactionBringsThePairBack) {
  add(1, "001", "'F1'", "'S1'", "9");
  shop.run("INSERT INTO Empleados_Puntos (Id, Empleado) VALUES (2147483647, '002')");
  ConnectionPtr connection = DataSession().OpenConnection(1);
  connection->BeginTrans();
  EXPECT_NE(errorOf([&] { points.Insertar("001", "F1", 2, connection); }), 0)
      << "there is no key behind the greatest one";
  connection->RollbackTrans();
  EXPECT_EQ(row(1), "001/F1/S1/9/1");
}

TEST_F(ClsEmpleadosPuntosTest, AWriteFillsTheCallersConnection) {
  ConnectionPtr connection;
  points.Insertar("001", "F1", 2, connection);
  EXPECT_NE(connection, nullptr);
  ConnectionPtr other;
  points.DeleteAll("001", other);
  EXPECT_NE(other, nullptr);
}

// ---- The other writes

TEST_F(ClsEmpleadosPuntosTest, ActualizarValorGivesAllPhasesOfTheEmployeeOneValue) {
  add(1, "001", "'F1'");
  add(2, "001", "'F2'");
  add(3, "002", "'F1'");
  shop.statements();
  points.ActualizarValor("001", 2.5);
  EXPECT_EQ(statement(),
            "UPDATE Empleados_Puntos SET Empleados_Puntos.Valor = '2,5 ' WHERE "
            "(((Empleados_Puntos.Empleado)='001') AND (Not (Empleados_Puntos.Fase) Is Null))");
  EXPECT_EQ(row(1), "001/F1/S1/2,5/1");
  EXPECT_EQ(row(2), "001/F2/S1/2,5/1");
  EXPECT_EQ(row(3), "002/F1/S1/1/1");
}

TEST_F(ClsEmpleadosPuntosTest, ActualizarValorLeavesRowsWithoutAPhase) {
  add(1, "001", "Null");
  points.ActualizarValor("001", 2.5);
  EXPECT_EQ(row(1), "001/Null/S1/1/1");
}

TEST_F(ClsEmpleadosPuntosTest, DeleteAllTakesTheRowsOfOneEmployee) {
  add(1, "001");
  add(2, "001", "Null");
  add(3, "002");
  shop.statements();
  points.DeleteAll("001");
  EXPECT_EQ(statement(), "DELETE  FROM Empleados_Puntos WHERE (Empleado = '001')");
  EXPECT_EQ(shop.text("SELECT Id FROM Empleados_Puntos"), "3");
}

// ---- Reads

TEST_F(ClsEmpleadosPuntosTest, ObtenerFasesEmpleadoGivesTheKeysOfRowsWithAPhaseInOrder) {
  add(3, "001", "'F1'");
  add(1, "001", "'F2'");
  add(2, "001", "Null");
  add(4, "002", "'F1'");
  shop.statements();
  EXPECT_THAT(points.ObtenerFasesEmpleado("001"), ElementsAre(Variant(1), Variant(3)));
  EXPECT_EQ(statement(),
            "SELECT id as Codigo  FROM Empleados_Puntos WHERE (((Empleados_Puntos.Empleado)='001') "
            "AND (Not (Empleados_Puntos.Fase) Is Null)) Order by id");
  EXPECT_THAT(points.ObtenerFasesEmpleado("nobody"), IsEmpty());
}

class PhaseOutputsTest : public ClsEmpleadosPuntosTest {
 protected:
  std::string ask(const Variant& id) {
    std::string section = "s", phase = "f";
    double value = -1, most = -2;
    points.ObtenerFase(id, section, phase, value, most);
    return section + "/" + phase + "/" + shown(value) + "/" + shown(most);
  }
};

TEST_F(PhaseOutputsTest, ObtenerFaseGivesTheRowOfAKey) {
  add(5, "001", "'F1'", "'S1'", "2.5");
  shop.statements();
  EXPECT_EQ(ask(5), "S1/F1/2,5/1");
  EXPECT_EQ(statement(),
            "SELECT Seccion, Fase, Valor, Max FROM Empleados_Puntos WHERE "
            "(((Empleados_Puntos.Id)= 5));");
}

TEST_F(PhaseOutputsTest, ANullTextIsZeroAndANullNumberLeavesItsOutput) {
  shop.run("INSERT INTO Empleados_Puntos (Id) VALUES (5)");
  EXPECT_EQ(ask(5), "0/0/-1/-2");
}

TEST_F(PhaseOutputsTest, AnUnknownKeyLeavesAllOutputs) {
  EXPECT_EQ(ask(5), "s/f/-1/-2");
}

TEST_F(ClsEmpleadosPuntosTest, GetValorInternoAsksForTheSection) {
  add(1, "001", "'F1'", "'S1'", "2.5");
  add(2, "001", "'F2'", "'S2'", "Null");
  shop.statements();
  EXPECT_EQ(points.GetValorInterno("001", "S1"), 2.5);
  EXPECT_EQ(statement(),
            "SELECT Valor FROM Empleados_Puntos WHERE ((Empleado = '001') AND (Seccion = 'S1'))");
  EXPECT_EQ(points.GetValorInterno("001", "S2"), 0) << "Null";
  EXPECT_EQ(points.GetValorInterno("001", "S3"), 0);
  EXPECT_EQ(points.GetValorInterno("002", "S1"), 0);
}

// Its argument is named a phase; callers hand it sections.
TEST_F(ClsEmpleadosPuntosTest, GetValorCantFasesAsksForTheSectionToo) {
  add(1, "001", "'F1'", "'S1'", "2.5");
  shop.statements();
  EXPECT_EQ(points.GetValorCantFases("001", "S1"), 2.5);
  EXPECT_EQ(statement(),
            "SELECT Valor FROM Empleados_Puntos WHERE ((Empleado = '001') AND (Seccion = 'S1'))");
  EXPECT_EQ(points.GetValorCantFases("001", "F1"), 0);
}

TEST_F(ClsEmpleadosPuntosTest, NuevoCodigoIsTheGreatestKeyPlusOne) {
  EXPECT_EQ(shown(points.NuevoCodigo()), "1");
  EXPECT_EQ(statement(), kNuevoCodigo);
  add(9, "001");
  add(10, "001");
  EXPECT_EQ(shown(points.NuevoCodigo()), "11");
}

// ---- The grid

class PointsGridTest : public ClsEmpleadosPuntosTest {
 protected:
  void addInGrid(const char* phase) {
    points.AddNew(true);
    rows().Field("Fase").Value(phase);
  }
};

// The other way round than ComprobarAlmcen of the warehouses, which is true for what is not there.
TEST_F(PointsGridTest, ComprobarSeccionIsTrueForASectionThatIsThere) {
  add(1, "001", "'F1'", "'S1'");
  add(2, "001", "'F2'", "'S2'");
  open("seleccion", "001");
  points.MoveLast();
  EXPECT_TRUE(points.ComprobarSeccion("S1"));
  EXPECT_TRUE(points.ComprobarSeccion("S2"));
  EXPECT_FALSE(points.ComprobarSeccion("S3"));
  EXPECT_EQ(points.AbsolutePosition(), 2) << "the form stays where it is";
}

TEST_F(PointsGridTest, ComprobarSeccionCountsRowsThatAreNotStoredYet) {
  open("ninguno");
  EXPECT_FALSE(points.ComprobarSeccion("S1"));
  addInGrid("F1");
  rows().Field("Sección").Value("S1");
  rows().Update();
  EXPECT_TRUE(points.ComprobarSeccion("S1"));
}

TEST_F(PointsGridTest, ABlankSectionDoesNotCount) {
  add(1, "001", "'F1'", "''");
  add(2, "001", "'F2'", "'  '");
  add(3, "001", "'F3'", "Null");
  open("seleccion", "001");
  for (const Variant& blank : {Variant(), Variant(Null()), Variant(""), Variant("  ")}) {
    EXPECT_FALSE(points.ComprobarSeccion(blank));
  }
}

TEST_F(PointsGridTest, AddNewProposesTheNextKey) {
  add(6, "001");
  open("ninguno");
  points.AddNew(true);
  EXPECT_EQ(field("ID"), "7");
  points.AddNew();
  EXPECT_EQ(field("ID"), "Empty");
}

TEST_F(PointsGridTest, UpdateIdGivesNewRowsTheEmployeeAndConsecutiveKeysFromOneRead) {
  add(6, "002");
  open("ninguno");
  addInGrid("F1");
  addInGrid("F2");
  shop.statements();
  points.UpdateId("001");
  EXPECT_THAT(shop.statements(), ElementsAre(kNuevoCodigo));
  EXPECT_EQ(points.AbsolutePosition(), 1);
  EXPECT_EQ(count(), "1") << "Update writes, not UpdateId";
  points.Update();
  EXPECT_EQ(row(7), "001/F1/Null/Null/Null");
  EXPECT_EQ(row(8), "001/F2/Null/Null/Null");
}

// All rows of the grid, not only the added ones: forms open one employee's rows and save them
// whole.
TEST_F(PointsGridTest, UpdateIdGivesStoredRowsNewKeysToo) {
  add(1, "001", "'F1'");
  add(2, "001", "'F2'");
  open("seleccion", "001");
  points.UpdateId("003");
  points.Update();
  EXPECT_EQ(count(), "2");
  EXPECT_EQ(row(3), "003/F1/S1/1/1");
  EXPECT_EQ(row(4), "003/F2/S1/1/1");
}

TEST_F(PointsGridTest, UpdateIdOnAnEmptyGridDoesNothing) {
  open("ninguno");
  points.UpdateId("001");
  points.Update();
  EXPECT_THAT(shop.statements(), IsEmpty());
}

TEST_F(PointsGridTest, UpdateIdInAListWithoutKeysChangesNothing) {
  add(1, "001");
  open("seleccionar", "001");
  EXPECT_EQ(errorOf([&] { points.UpdateId("003"); }), errors::kItemNotFound);
  EXPECT_EQ(field("Código"), "F1");
  points.Update();
  EXPECT_EQ(row(1), "001/F1/S1/1/1");
}

TEST_F(PointsGridTest, UpdateadAffectCurrentGivesTheRowItsEmployee) {
  add(1, "001");
  add(2, "001", "'F2'");
  open("seleccion", "001");
  points.UpdateadAffectCurrent("003");
  EXPECT_FALSE(points.EditingRecord());
  EXPECT_EQ(row(1), "001/F1/S1/1/1");
  points.Update();
  EXPECT_EQ(row(1), "003/F1/S1/1/1");
  EXPECT_EQ(row(2), "001/F2/S1/1/1");
}

TEST_F(PointsGridTest, DeleteOnlyMarksAndUpdateWritesAllRows) {
  add(1, "001");
  add(2, "001", "'F2'");
  open("seleccion", "001");
  rows().Field("Valor").Value(5);
  rows().MoveNext();
  points.Delete();
  EXPECT_EQ(count(), "2");
  rows().MoveFirst();
  points.Update();
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(row(1), "001/F1/S1/5/1");
}

TEST_F(PointsGridTest, CancelBatchDropsAllThatIsPending) {
  add(1, "001");
  open("seleccion", "001");
  rows().Field("Valor").Value(5);
  addInGrid("F2");
  points.CancelBatch();
  points.MoveFirst();
  points.Update();
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(row(1), "001/F1/S1/1/1");
}

// ---- Hostile values

TEST_F(ClsEmpleadosPuntosTest, NoValueLeavesItsPlace) {
  add(1, "001");
  for (const std::string& text : hostileTexts()) {
    errorOf([&] { points.Insertar("nobody", text, 1); });
    errorOf([&] { points.Insertar(text, "nothing", 1); });
    errorOf([&] { points.ActualizarValor(text, 9); });
    errorOf([&] { points.ObtenerFasesEmpleado(text); });
    errorOf([&] { points.GetValorInterno("001", text); });
    errorOf([&] { points.DeleteAll(text); });
  }
  EXPECT_EQ(row(1), "001/F1/S1/1/1");
  std::string section;
  double number = 0;
  EXPECT_EQ(errorOf([&] { points.ObtenerFase("1 or 1 = 1", section, section, number, number); }),
            errors::kSyntax);
  EXPECT_EQ(errorOf([&] { points.DeleteAll("' or '1'='1"); }), errors::kSyntax);
}

}  // namespace
}  // namespace tavelor
