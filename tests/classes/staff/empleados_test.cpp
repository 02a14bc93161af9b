// SPDX-License-Identifier: MIT
// The staff.
#include "tavelor/staff/empleados.hpp"

#include <filesystem>
#include <fstream>

#include "tavelor/staff/pass_text.hpp"
#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using test::hostileTexts;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

const std::string kTodos =
    "SELECT Codigo as Código, Nombre, Razon_Social as Empresa, NIF, Direccion as Dirección, "
    "Codigo_Postal, Poblacion as Población, Provincia, Telefono as Teléfono, Telefono_2 as "
    "Teléfono_2, Movil as Móvil, Fax,  E_Mail, Http, Activo, IRPF, Comision as Comisión, Impuesto, "
    "Categoria, Documento, Notas, Codigo_Fase, NSS, Fecha_Nacimiento, Fecha_Alta, Fecha_Baja, "
    "IBAN, Colegiado FROM Empleados";
const std::string kSeleccion = "SELECT Codigo AS Código, Nombre AS Descripción FROM Empleados";
const std::string kActive = " WHERE ( activo <> 0 )";

class ClsEmpleadosTest : public test::CatalogueTest<ClsEmpleados> {
 protected:
  void add(const std::string& code, const std::string& assignments = "Activo = True") {
    shop.run("INSERT INTO Empleados (Codigo) VALUES ('" + code + "')");
    shop.run("UPDATE Empleados SET " + assignments + " WHERE Codigo = '" + code + "'");
  }
  static constexpr const char* kAll =
      "Activo = True, Nombre = 'Marta', Razon_Social = 'Gil', Direccion = 'Calle 1', "
      "Codigo_Postal = '08001', Poblacion = 'Barcelona', Provincia = 'BCN', Telefono = '93', "
      "E_Mail = 'marta@gil.es', Comision = 7.5, Codigo_Fase = 'F2', Categoria = 'Taller'";

  ClsEmpleados& staff = catalogue;
};

TEST_F(ClsEmpleadosTest, TheSlotsStandInOrder) {
  EXPECT_THAT(
      firstSlots(),
      ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                  "GetConnectionStr", "ObtenerCol", "ObtenerRegistroActivo", "GetTxtFile",
                  "GetTxtFile_email", "sQMailDoc", "NombreEmpleado", "CategoriaEmpleado",
                  "SiguienteEmpleadoCatego", "SiguienteEmpleado", "Get_Comision",
                  "Get_fase_predeterminada", "Get_Auto_pas", "Get_Nombre", "GetDescripcion",
                  "GetDocPath", "IniciaRs", "NuevoCodigo", "SeguridadPermiso", "CodigoLibre"));
  EXPECT_EQ(lastSlot(), "ToHtmlGrid");
  EXPECT_EQ(signature("IniciaRs"),
            "IniciaRs([inout cnnActive As Connection], [inout sSelecSql As String], [id As "
            "Variant])");
  EXPECT_EQ(signature("SiguienteEmpleadoCatego"),
            "SiguienteEmpleadoCatego(sEmple As String, scatego As String, [inout objCn As "
            "Connection]) As String");
  EXPECT_EQ(signature("sQMailDoc"), "sQMailDoc As String");
}

// ---- Modes

TEST_F(ClsEmpleadosTest, ListsForChoosingShowActiveStaff) {
  add("001");
  add("002", "Activo = False");
  for (const auto& [word, select] : std::vector<std::pair<std::string, std::string>>{
           {"seleccion", kSeleccion},
           {"Selecc", kSeleccion},
           {"seleccionmixta",
            "SELECT Codigo AS Código,[Codigo] + ' ' + [Nombre] + ' ' + [Razon_Social] AS "
            "Descripción FROM Empleados"},
           {"categoria", "SELECT Categoria AS Código, Nombre AS Descripción FROM Empleados"}}) {
    const Opened list = open(word);
    EXPECT_EQ(list.statement, select + kActive);
    EXPECT_EQ(list.word, word);
    EXPECT_EQ(rows().RecordCount(), 1) << word;
    EXPECT_THAT(fieldNames(), ElementsAre("Código", "Descripción"));
  }
}

TEST_F(ClsEmpleadosTest, AnyOtherWordShowsAllStaffAndReadsTodos) {
  add("001");
  add("002", "Activo = False");
  for (const char* word : {"", "todos", "SELECCION", "selecc", "loquesea"}) {
    const Opened list = open(word);
    EXPECT_EQ(list.statement, kTodos);
    EXPECT_EQ(list.word, "todos");
    EXPECT_THAT(codes(), ElementsAre("001", "002"));
  }
  EXPECT_THAT(
      fieldNames(),
      ElementsAre("Código", "Nombre", "Empresa", "NIF", "Dirección", "Codigo_Postal", "Población",
                  "Provincia", "Teléfono", "Teléfono_2", "Móvil", "Fax", "E_Mail", "Http", "Activo",
                  "IRPF", "Comisión", "Impuesto", "Categoria", "Documento", "Notas", "Codigo_Fase",
                  "NSS", "Fecha_Nacimiento", "Fecha_Alta", "Fecha_Baja", "IBAN", "Colegiado"));
}

// The sum of texts is Null with its first Null: an employee without a company has a code only.
TEST_F(ClsEmpleadosTest, TheMixedDescriptionIsNullWithoutAllOfItsParts) {
  add("001", "Activo = True, Nombre = 'Marta', Razon_Social = 'Gil'");
  add("002", "Activo = True, Nombre = 'Pere'");
  open("seleccionmixta");
  EXPECT_EQ(field("Descripción"), "001 Marta Gil");
  staff.MoveNext();
  EXPECT_EQ(field("Descripción"), "Null");
}

TEST_F(ClsEmpleadosTest, TheRecordSetRidesOnTheCallersConnection) {
  ConnectionPtr connection;
  staff.IniciaRs(connection, "todos");
  ASSERT_NE(connection, nullptr);
  EXPECT_EQ(staff.GetConnection(), connection);
}

TEST_F(ClsEmpleadosTest, EachOpeningOffersPrimaryOnceMore) {
  staff.IniciaRs();
  staff.IniciaRs();
  EXPECT_THAT(staff.DataMembers(), ElementsAre("Primary", "Primary"));
}

// ---- Frame

TEST_F(ClsEmpleadosTest, FindRecordLooksForTheBeginningOfACode) {
  add("A10");
  add("B20");
  staff.IniciaRs();
  staff.FindRecord("B");
  EXPECT_EQ(field("Código"), "B20");
  staff.FindRecord("Z");
  EXPECT_TRUE(rows().Eof());
}

TEST_F(ClsEmpleadosTest, NuevoCodigoAndCodigoLibreAskForTheCode) {
  add("00012");
  EXPECT_EQ(shown(staff.NuevoCodigo()), "13") << "leading zeros are lost";
  EXPECT_EQ(statement(), "SELECT MAX(Codigo) AS Nuevo_Codigo FROM Empleados");
  EXPECT_FALSE(staff.CodigoLibre("00012"));
  EXPECT_EQ(statement(), "SELECT Codigo FROM Empleados where codigo ='00012'");
  EXPECT_TRUE(staff.CodigoLibre("13"));
}

TEST_F(ClsEmpleadosTest, ANextCodeThatIsTooLongIsDroppedForTheGreatest) {
  add("9999999999");
  EXPECT_EQ(shown(staff.NuevoCodigo()), "9999999999");
}

TEST_F(ClsEmpleadosTest, AddNewFillsTheCodeAndTheDefaultPhase) {
  add("1");
  staff.IniciaRs();
  staff.AddNew(true);
  EXPECT_EQ(field("Código"), "2");
  EXPECT_EQ(field("Codigo_Fase"), "0");
  staff.Update();
  EXPECT_EQ(staff.Get_fase_predeterminada("2"), "0");
  EXPECT_EQ(shop.text("SELECT Activo FROM Empleados WHERE Codigo = '2'"), "Falso");
}

TEST_F(ClsEmpleadosTest, AddNewWithoutDefaultsFillsNothing) {
  staff.IniciaRs();
  staff.AddNew();
  EXPECT_EQ(field("Código"), "Empty");
  EXPECT_EQ(field("Codigo_Fase"), "Empty");
}

TEST_F(ClsEmpleadosTest, AddNewInAListForChoosingFillsTheCodeAlone) {
  open("seleccion");
  staff.AddNew(true);
  staff.Update();
  EXPECT_EQ(shop.text("SELECT Codigo FROM Empleados"), "1");
  EXPECT_EQ(shop.text("SELECT Codigo_Fase FROM Empleados"), "Null");
}

// ---- The current row, lists and paths

TEST_F(ClsEmpleadosTest, ObtenerColGivesTheCodesOfAll) {
  add("001");
  add("002", "Activo = False");
  const std::vector<Variant> all = staff.ObtenerCol();
  EXPECT_EQ(statement(), "SELECT Codigo FROM Empleados");
  EXPECT_THAT(all, ElementsAre(Variant("001"), Variant("002")));
}

TEST_F(ClsEmpleadosTest, ObtenerRegistroActivoGivesTheCurrentRow) {
  add("001", kAll);
  staff.IniciaRs();
  Variant code;
  std::string name, company, street, postcode, town, province, telephone;
  staff.ObtenerRegistroActivo(code, name, company, street, postcode, town, province, telephone);
  EXPECT_EQ(code, Variant("001"));
  EXPECT_THAT((std::vector{name, company, street, postcode, town, province, telephone}),
              ElementsAre("Marta", "Gil", "Calle 1", "08001", "Barcelona", "BCN", "93"));
}

TEST_F(ClsEmpleadosTest, ObtenerRegistroActivoLeavesNullsAndRaisesWhatItCannotRead) {
  add("001", "Activo = True, Nombre = 'Marta'");
  Variant code = "as it came";
  std::string name = "n", company = "c", street = "s", postcode = "p", town = "t", province = "v",
              telephone = "f";
  const auto take = [&] {
    staff.ObtenerRegistroActivo(code, name, company, street, postcode, town, province, telephone);
  };
  EXPECT_EQ(errorOf(take), errors::kObjectNotSet) << "before IniciaRs";
  EXPECT_EQ(code, Variant("as it came"));
  open("seleccion");
  EXPECT_EQ(errorOf(take), errors::kItemNotFound) << "the list does not show the name";
  EXPECT_EQ(name, "n");
  open("todos");
  take();
  EXPECT_EQ(name, "Marta");
  EXPECT_EQ(company, "c") << "Null";
}

TEST_F(ClsEmpleadosTest, TextFilesAndDocumentsLieInTheFoldersOfTheInstallation) {
  EXPECT_THAT(staff.GetTxtFile(), EndsWith("/shop/txt/Empleados.txt"));
  EXPECT_THAT(staff.GetTxtFile_email(), EndsWith("/shop/email/Empleados_e.txt"));
  std::string path = "contrato.pdf";
  staff.GetDocPath(path);
  EXPECT_THAT(path, EndsWith("/shop/doc/contrato.pdf"));
  path = "../fuera.pdf";
  EXPECT_EQ(errorOf([&] { staff.GetDocPath(path); }), errors::kInvalidCall);
  EXPECT_EQ(path, "../fuera.pdf");
}

TEST_F(ClsEmpleadosTest, AFolderThatCannotBeMadeIsTold) {
  for (const char* folder : {"txt", "email", "doc"}) {
    const std::filesystem::path place =
        std::filesystem::path(shop.installation().folder()) / folder;
    std::filesystem::remove_all(place);
    std::ofstream(place) << "a file where the folder should be";
  }
  std::string path = "contrato.pdf";
  EXPECT_EQ(errorOf([&] { staff.GetTxtFile(); }), errors::kPathAccess);
  EXPECT_EQ(errorOf([&] { staff.GetTxtFile_email(); }), errors::kPathAccess);
  EXPECT_EQ(errorOf([&] { staff.GetDocPath(path); }), errors::kPathAccess);
}

TEST_F(ClsEmpleadosTest, SQMailDocIsTheMailOfTheCurrentRow) {
  add("001", kAll);
  add("002");
  staff.IniciaRs();
  EXPECT_EQ(staff.sQMailDoc(), "marta@gil.es");
  staff.MoveNext();
  EXPECT_EQ(staff.sQMailDoc(), "") << "Null";
}

// Unlike that of customers, which passes errors over.
TEST_F(ClsEmpleadosTest, SQMailDocRaisesWhereThereIsNoMailToRead) {
  EXPECT_EQ(errorOf([&] { staff.sQMailDoc(); }), errors::kObjectNotSet);
  staff.IniciaRs();
  EXPECT_EQ(errorOf([&] { staff.sQMailDoc(); }), errors::kNoCurrentRecord);
  open("seleccion");
  EXPECT_EQ(errorOf([&] { staff.sQMailDoc(); }), errors::kItemNotFound);
}

// ---- The walk

TEST_F(ClsEmpleadosTest, SiguienteEmpleadoIsTheNextActiveCode) {
  add("001");
  add("002", "Activo = False");
  add("003");
  shop.statements();
  EXPECT_EQ(staff.SiguienteEmpleado("001"), "003");
  EXPECT_EQ(statement(),
            "SELECT Codigo FROM Empleados WHERE ((Codigo > '001') and ( activo <> 0 )) Order by "
            "Codigo");
  EXPECT_EQ(staff.SiguienteEmpleado("0015"), "003") << "nobody need bear the code";
}

TEST_F(ClsEmpleadosTest, SiguienteEmpleadoStartsOverBehindTheLastActiveCode) {
  add("001");
  add("003");
  add("009", "Activo = False");
  shop.statements();
  EXPECT_EQ(staff.SiguienteEmpleado("003"), "001");
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Codigo FROM Empleados WHERE ((Codigo > '003') and ( activo <> 0 "
                          ")) Order by Codigo",
                          "SELECT Codigo FROM Empleados WHERE (( activo <> 0 )) Order by Codigo"));
}

TEST_F(ClsEmpleadosTest, TheOnlyActiveEmployeeFollowsItself) {
  add("001");
  EXPECT_EQ(staff.SiguienteEmpleado("001"), "001");
}

TEST_F(ClsEmpleadosTest, WithoutActiveStaffSiguienteEmpleadoGivesTheCodeBack) {
  add("001", "Activo = False");
  EXPECT_EQ(staff.SiguienteEmpleado("A7"), "A7");
  EXPECT_EQ(staff.SiguienteEmpleado(""), "");
}

TEST_F(ClsEmpleadosTest, TheWalkGoesByCharacterCodes) {
  add("10");
  add("9");
  add("b");
  add("B");
  EXPECT_EQ(staff.SiguienteEmpleado("10"), "9");
  EXPECT_EQ(staff.SiguienteEmpleado("9"), "B");
  EXPECT_EQ(staff.SiguienteEmpleado("B"), "b");
  EXPECT_EQ(staff.SiguienteEmpleado("b"), "10");
}

TEST_F(ClsEmpleadosTest, SiguienteEmpleadoCategoGoesRoundTheCategory) {
  add("001", "Activo = True, Categoria = 'Taller'");
  add("002", "Activo = True, Categoria = 'Oficina'");
  add("003", "Activo = False, Categoria = 'Taller'");
  add("004", "Activo = True, Categoria = 'Venta'");
  shop.statements();
  EXPECT_EQ(staff.SiguienteEmpleadoCatego("001", "Oficina"), "004");
  EXPECT_EQ(statement(),
            "SELECT Codigo FROM Empleados WHERE ((Codigo > '001') and (Categoria <> 'Oficina') and "
            "( activo <> 0 )) Order by Codigo");
}

TEST_F(ClsEmpleadosTest, SiguienteEmpleadoCategoStartsOverOutsideTheCategoryToo) {
  add("001", "Activo = True, Categoria = 'Oficina'");
  add("002", "Activo = True, Categoria = 'Taller'");
  add("003", "Activo = True, Categoria = 'Oficina'");
  shop.statements();
  EXPECT_EQ(staff.SiguienteEmpleadoCatego("002", "Oficina"), "002");
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Codigo FROM Empleados WHERE ((Codigo > '002') and (Categoria <> "
                          "'Oficina') and ( activo <> 0 )) Order by Codigo",
                          "SELECT Codigo FROM Empleados WHERE ((Categoria <> 'Oficina') and ( "
                          "activo <> 0 )) Order by Codigo"));
  EXPECT_EQ(staff.SiguienteEmpleadoCatego("003", "Taller"), "001");
}

// Null is not unequal to any category: who has none is met by the other walk alone.
TEST_F(ClsEmpleadosTest, TheWalkRoundACategoryNeverMeetsEmployeesWithoutOne) {
  add("001");
  add("002", "Activo = True, Categoria = 'Taller'");
  EXPECT_EQ(staff.SiguienteEmpleadoCatego("002", "Oficina"), "002");
  EXPECT_EQ(staff.SiguienteEmpleadoCatego("000", "Oficina"), "002");
  EXPECT_EQ(staff.SiguienteEmpleadoCatego("002", ""), "002") << "an empty one is a category";
  EXPECT_EQ(staff.SiguienteEmpleado("002"), "001");
}

TEST_F(ClsEmpleadosTest, WithNobodyOutsideTheCategoryTheCodeComesBack) {
  add("001", "Activo = True, Categoria = 'Oficina'");
  EXPECT_EQ(staff.SiguienteEmpleadoCatego("001", "Oficina"), "001");
  EXPECT_EQ(staff.SiguienteEmpleadoCatego("X", "Oficina"), "X");
}

// ---- Single reads

TEST_F(ClsEmpleadosTest, NombreAndCategoriaEmpleadoGiveAColumn) {
  add("001", kAll);
  add("002");
  shop.statements();
  EXPECT_EQ(staff.NombreEmpleado("001"), "Marta");
  EXPECT_EQ(statement(), "SELECT Nombre FROM Empleados WHERE ((Codigo = '001'))");
  EXPECT_EQ(staff.CategoriaEmpleado("001"), "Taller");
  EXPECT_EQ(statement(), "SELECT Categoria FROM Empleados WHERE ((Codigo = '001'))");
  for (const char* code : {"002", "nobody"}) {
    EXPECT_EQ(staff.NombreEmpleado(code), "");
    EXPECT_EQ(staff.CategoriaEmpleado(code), "");
  }
}

TEST_F(ClsEmpleadosTest, GetComisionIsANumberAndZeroForNone) {
  add("001", kAll);
  add("002");
  shop.statements();
  EXPECT_EQ(staff.Get_Comision("001"), 7.5);
  EXPECT_EQ(statement(), "SELECT Comision as v FROM Empleados  where codigo = '001'");
  EXPECT_EQ(staff.Get_Comision("002"), 0) << "Null";
  EXPECT_EQ(staff.Get_Comision("nobody"), 0);
}

TEST_F(ClsEmpleadosTest, GetFasePredeterminadaFallsBackToZero) {
  add("001", kAll);
  add("002");
  shop.statements();
  EXPECT_EQ(staff.Get_fase_predeterminada("001"), "F2");
  EXPECT_EQ(statement(), "SELECT codigo_fase as v FROM Empleados  where codigo = '001'");
  EXPECT_EQ(staff.Get_fase_predeterminada("002"), "0") << "Null";
  EXPECT_EQ(staff.Get_fase_predeterminada("nobody"), "0");
}

TEST_F(ClsEmpleadosTest, GetNombreJoinsNameAndCompanyAndFallsBackToNo) {
  add("001", kAll);
  add("002", "Nombre = 'Pere'");
  add("003", "Razon_Social = 'Taller Ros SL'");
  add("004");
  shop.statements();
  EXPECT_EQ(staff.Get_Nombre("001"), "Marta Gil");
  EXPECT_EQ(statement(), "SELECT Nombre, Razon_Social FROM Empleados  where codigo = '001'");
  EXPECT_EQ(staff.Get_Nombre("002"), "Pere");
  EXPECT_EQ(staff.Get_Nombre("003"), "Taller Ros SL");
  EXPECT_EQ(staff.Get_Nombre("004"), "no");
  EXPECT_EQ(staff.Get_Nombre("nobody"), "no");
}

TEST_F(ClsEmpleadosTest, GetDescripcionJoinsNameAndCompany) {
  add("001", kAll);
  shop.statements();
  EXPECT_EQ(staff.GetDescripcion("001"), "Marta Gil");
  EXPECT_EQ(statement(),
            "SELECT [Nombre] + ' ' +  [Razon_Social] as Descripcion FROM Empleados WHERE Codigo = "
            "'001'");
}

TEST_F(ClsEmpleadosTest, GetDescripcionOfAnUnknownCodeIsEmpleado) {
  EXPECT_EQ(staff.GetDescripcion("nobody"), "Empleado");
  EXPECT_EQ(staff.GetDescripcion({}), "Empleado");
}

TEST_F(ClsEmpleadosTest, GetDescripcionOfANullIsNo) {
  add("001", "Nombre = 'Marta'");
  EXPECT_EQ(staff.GetDescripcion("001"), "No");
  EXPECT_EQ(staff.GetDescripcion(Null()), "No") << "the code";
}

TEST_F(ClsEmpleadosTest, GetAutoPasIsThePostcodeFollowedByTheCode) {
  add("001", kAll);
  shop.statements();
  EXPECT_EQ(staff.Get_Auto_pas("001"), "08001001");
  EXPECT_EQ(statement(), "SELECT codigo_postal as cp, codigo FROM Empleados  where codigo = '001'");
  EXPECT_EQ(staff.Get_Auto_pas("nobody"), "");
}

TEST_F(ClsEmpleadosTest, GetAutoPasPutsZerosForANullPostcode) {
  add("001");
  EXPECT_EQ(staff.Get_Auto_pas("001"), "00000001");
}

// The key is never Null in a table of ours, so the text is asked for itself. The slip stays.
TEST_F(ClsEmpleadosTest, ForANullCodeThePostcodeIsLostAndTheCodeStaysEmpty) {
  EXPECT_EQ(passText("08001", Null()), "00000");
  EXPECT_EQ(passText(Null(), Null()), "00000");
}

// ---- Connections and hostile values

TEST_F(ClsEmpleadosTest, AReadFillsTheCallersConnection) {
  add("001", kAll);
  ConnectionPtr connection;
  EXPECT_EQ(staff.SiguienteEmpleado("001", connection), "001");
  ASSERT_NE(connection, nullptr);
  connection->BeginTrans();
  DataSession().Execute(1, Statement("UPDATE Empleados SET Nombre = 'Ana'"), connection);
  EXPECT_EQ(staff.NombreEmpleado("001", connection), "Ana");
  connection->RollbackTrans();
  EXPECT_EQ(staff.NombreEmpleado("001", connection), "Marta");
}

TEST_F(ClsEmpleadosTest, NoValueLeavesItsPlace) {
  add("001", kAll);
  const auto harmless = [&](auto action) {
    EXPECT_THAT((std::vector{0, errors::kSyntax, errors::kInvalidArgument}),
                testing::Contains(errorOf(action)));
  };
  for (const std::string& text : hostileTexts()) {
    harmless([&] { staff.NombreEmpleado(text); });
    harmless([&] { staff.CategoriaEmpleado(text); });
    harmless([&] { staff.SiguienteEmpleado(text); });
    harmless([&] { staff.SiguienteEmpleadoCatego("000", text); });
    harmless([&] { staff.Get_Comision(text); });
    harmless([&] { staff.Get_fase_predeterminada(text); });
    harmless([&] { staff.Get_Auto_pas(text); });
    harmless([&] { staff.Get_Nombre(text); });
    harmless([&] { staff.GetDescripcion(text); });
    harmless([&] { staff.CodigoLibre(text); });
  }
  EXPECT_EQ(errorOf([&] { staff.Get_Nombre("' or '1'='1"); }), errors::kSyntax);
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Empleados"), "1");
}

}  // namespace
}  // namespace tavelor
