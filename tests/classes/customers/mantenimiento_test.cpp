// SPDX-License-Identifier: MIT
// ClsClientes: changes of all customers, marks for reports, the move to a padded code.
#include <fmt/format.h>

#include "tavelor/services/installation.hpp"
#include "tavelor/services/session_global.hpp"
#include "tests/classes/customers/clientes.hpp"

namespace tavelor {
namespace {

using test::corpus;
using test::errorOf;
using testing::ElementsAre;

class ClsClientesMantenimientoTest : public testing::Test, protected test::CustomerShop {
 protected:
  /// Of a word and a mark, the marking statements behind the clearing one.
  std::vector<std::string> marks(std::string_view word, std::int16_t index = 0) {
    std::vector<std::string> trace = traceOf([&] {
      customers.Actualizar_Param_Rpt(word, {}, "01/01/2026", Date::of(2026, 12, 31), index);
    });
    const char* clearing = word == "informes_iso_11"
                               ? "Actualizar_Param_Rpt / informes_iso_11, clear"
                               : "Actualizar_Param_Rpt / clear";
    EXPECT_EQ(trace.front(), corpus(clearing));
    trace.erase(trace.begin());
    return trace;
  }
  /// Codes whose `column` has a value.
  std::string marked(const std::string& column, const std::string& value) {
    std::string codes;
    for (const Variant& code : customers.ObtenerColActivos()) {
      if (this->column(column, text(code)) == value) codes += text(code);
    }
    return codes;
  }
  void deliver(const std::string& customer, const std::string& total, int number) {
    shop.run("INSERT INTO Albaranes (Numero, Codigo, Fecha, Total) VALUES (" +
             std::to_string(number) + ", '" + customer + "', #03/01/2026#, " + total + ")");
  }
};

// ---- Of every customer

TEST_F(ClsClientesMantenimientoTest, SomeStatementsHaveNoConditionOnPurpose) {
  add("1", "Impuesto = True, Impuesto_Incluido = True, Rpt_Fac = 'propia.rpt'");
  add("2", "Activo = 0, Impuesto = True");
  EXPECT_THAT(traceOf([&] { customers.ActualizarCabeceraFra("Est"); }),
              ElementsAre(corpus("ActualizarCabeceraFra")));
  EXPECT_THAT(traceOf([&] { customers.ActualizaClientesExentosIVA(); }),
              ElementsAre(corpus("ActualizaClientesExentosIVA")));
  EXPECT_THAT(traceOf([&] { customers.Cancelar_report_Facturas(); }),
              ElementsAre(corpus("Cancelar_report_Facturas")));
  EXPECT_THAT(traceOf([&] { customers.Actualizar_Rs_La_3("Sol", "Luna"); }),
              ElementsAre(corpus("Actualizar_Rs_La_3 / Rs"), corpus("Actualizar_Rs_La_3 / La")));
  for (const char* code : {"1", "2"}) {
    EXPECT_EQ(column("Documento_F", code), "Est");
    EXPECT_EQ(column("Impuesto", code), "Falso");
    EXPECT_EQ(column("Impuesto_Incluido", code), "Falso");
    EXPECT_EQ(column("Rpt_Fac", code), "No");
    EXPECT_EQ(column("Rs", code), "Sol");
    EXPECT_EQ(column("La", code), "Luna");
  }
}

// ---- Marks

TEST_F(ClsClientesMantenimientoTest, TheDiscountMarkTakesTheModesConditions) {
  for (const char* word : {"activos", "no_activos", "factur_trim", "factur_periodo",
                           "factur_periodo_ant", "bajas", "factur_no_periodo", "factur_no_año"}) {
    EXPECT_THAT(marks(word), ElementsAre(corpus(std::string("Actualizar_Param_Rpt / ") + word)))
        << word;
  }
}

TEST_F(ClsClientesMantenimientoTest, AnyOtherWordMarksEveryCustomer) {
  for (const char* word : {"todos", "bajas60", "low", "", "ACTIVOS"}) {
    EXPECT_THAT(marks(word), ElementsAre(corpus("Actualizar_Param_Rpt / any other word"))) << word;
  }
  add("1", "Activo = 0");
  marks("todos");
  EXPECT_EQ(column("Dto_Art", "1"), "1");
}

TEST_F(ClsClientesMantenimientoTest,
       TheDeclarationMarksWithMinusOneAndLeavesRectifyingInvoicesOut) {
  for (const char* code : {"1", "2"}) add(code, "Dto_Art = 1");
  const auto invoice = [&](int number, const std::string& customer, const std::string& series) {
    shop.run("INSERT INTO Facturas (Numero, Serie, Codigo, Fecha, Total) VALUES (" +
             std::to_string(number) + ", '" + series + "', '" + customer +
             "', #06/01/2025#, 3000.01)");
  };
  invoice(1, "1", "A");
  invoice(2, "2", "R");
  EXPECT_THAT(marks("347"), ElementsAre(corpus("Actualizar_Param_Rpt / 347, series A")));
  EXPECT_EQ(column("Dto_Art", "1"), "-1");
  EXPECT_EQ(column("Dto_Art", "2"), "0");
  // The list of the same word does show the second one.
  EXPECT_EQ(customers.ExistenRegistros_consulta("347"), "2");
}

TEST_F(ClsClientesMantenimientoTest, TheDeclarationsMarkTakesTheSeriesOfTheSession) {
  const auto declare = [&](const std::string& series) {
    shop.apartment().sessionGlobal().SetNamedValue(
        shop.apartment().version().sessionRoot() + "Clientes", "Serie", series);
  };
  declare("b");
  EXPECT_THAT(marks("347"), ElementsAre(corpus("Actualizar_Param_Rpt / 347, series B")));
  declare("C");
  EXPECT_THAT(marks("347"), ElementsAre(corpus("Actualizar_Param_Rpt / 347, series C")));
  declare("R");
  EXPECT_THAT(marks("347"), ElementsAre(corpus("Actualizar_Param_Rpt / 347, any other series")));
}

TEST_F(ClsClientesMantenimientoTest, ThePlanningMarkGoesByItsIndex) {
  const auto named = [](const char* name) {
    return corpus(std::string("Actualizar_Param_Rpt / informes_iso_11, ") + name);
  };
  constexpr const char* kWord = "informes_iso_11";
  EXPECT_THAT(marks(kWord, 1), ElementsAre(named("active")));
  EXPECT_THAT(marks(kWord, 2), ElementsAre(named("active and registered between two dates")));
  EXPECT_THAT(marks(kWord, 3), ElementsAre(named("active and reactivated between two dates")));
  EXPECT_THAT(marks(kWord, 4),
              ElementsAre(named("active, registered and reactivated between two dates")));
  EXPECT_THAT(marks(kWord, 5), ElementsAre(named("no delivery note between two dates")));
  EXPECT_THAT(marks(kWord, 6),
              ElementsAre(named("no delivery note of a positive total between two dates")));
  EXPECT_THAT(marks(kWord, 7),
              ElementsAre(named("active"), named("no delivery note between two dates")));
}

TEST_F(ClsClientesMantenimientoTest, ThePlanningMarksTellWhoWasDeliveredToAndWhoPaid) {
  for (const char* code : {"1", "2", "3"}) add(code);
  deliver("1", "10", 1);
  deliver("2", "0", 2);
  marks("informes_iso_11", 5);
  EXPECT_EQ(marked("Planificar", "-1"), "3");
  marks("informes_iso_11", 6);
  EXPECT_EQ(marked("Planificar", "-1"), "23");
  marks("informes_iso_11", 7);
  EXPECT_EQ(marked("Planificar", "1"), "12");
  EXPECT_EQ(marked("Planificar", "-1"), "3");
}

TEST_F(ClsClientesMantenimientoTest, AWrongIndexOrDateChangesNothing) {
  add("1", "Planificar = 1");
  for (const std::int16_t index : std::vector<std::int16_t>{0, 8, -1}) {
    EXPECT_EQ(errorOf([&] {
                customers.Actualizar_Param_Rpt("informes_iso_11", {}, "01/01/2026", "31/12/2026",
                                               index);
              }),
              errors::kInvalidCall);
  }
  EXPECT_EQ(errorOf([&] {
              customers.Actualizar_Param_Rpt("informes_iso_11", {}, "ayer", "31/12/2026", 2);
            }),
            errors::kTypeMismatch);
  EXPECT_EQ(column("Planificar", "1"), "1");
}

// ---- The padded code

class ClsClientesCopyTest : public ClsClientesMantenimientoTest {
 protected:
  std::string codes() {
    std::vector<std::string> all;
    for (const Variant& code : customers.ObtenerColActivos()) all.push_back(text(code));
    std::sort(all.begin(), all.end());
    return fmt::format("{}", fmt::join(all, " "));
  }
};

TEST_F(ClsClientesCopyTest, ACopyThatRemovesLeavesThePaddedRowOnly) {
  add("45", "Nombre = 'Sol'");
  customers.Actualizar_A_Nuevo_Registro("45", true, 5);
  EXPECT_EQ(codes(), "00045");
  EXPECT_EQ(column("Nombre", "00045"), "Sol");
}

TEST_F(ClsClientesCopyTest, WithoutTheFlagBothRowsStay) {
  add("45");
  customers.Actualizar_A_Nuevo_Registro("45", false, 5);
  EXPECT_EQ(codes(), "00045 45");
}

TEST_F(ClsClientesCopyTest, ACodeThatIsLongEnoughStaysAndItsCopyFailsOnTheKey) {
  add("45", "Nombre = 'Sol'");
  EXPECT_EQ(errorOf([&] { customers.Actualizar_A_Nuevo_Registro("45", false, 2); }),
            errors::kIntegrityViolation);
  EXPECT_EQ(codes(), "45");
  customers.Actualizar_A_Nuevo_Registro("45", true, 1);
  EXPECT_EQ(codes(), "45");
  EXPECT_EQ(column("Nombre", "45"), "Sol");
}

TEST_F(ClsClientesCopyTest, EachColumnIsCopiedIntoItself) {
  shop.run(
      "INSERT INTO Clientes (Codigo, Nombre, Razon_Social, NIF, Direccion, Codigo_Postal, "
      "Poblacion, Provincia, Telefono, Telefono_2, Movil, Fax, E_Mail, Http, Contacto, "
      "CTA_Contable, CTA_Contrapartida, CTA_Tesoreria, IRPF, IRPF_B, IRPF_C, Impuesto, "
      "Impuesto_Incluido, Recargo, Divisa, Forma_Pago, Transportista, Banco, Activo, Dia_Pago_1, "
      "Dia_Pago_2, Gastos, Codigo_portes, Descuento, Descuento_PP, Descuento_PP_B, "
      "Descuento_PP_C, Bonificacion_1, Condicion_1, Bonificacion_2, Condicion_2, Bonificacion_3, "
      "Condicion_3, Tarifa, Serie, Concepto, Tipo_Factura_A, Tipo_Factura_B, Tipo_Factura_C, "
      "Documento_E, Documento_P, Documento_A, Documento_F, Documento_T, Documento_R, Colegiado, "
      "Descuento_R, Facturar, Fecha, Tipo_Cliente, Aviso, Incorporar, Texto_Aviso, E_Mail_admin, "
      "E_Mail_doc, Horario, Riesgo, Codigo_fac, Lista, Rpt_Alb, Rpt_Fac, Portes_alb, Portes_Imp, "
      "Fact_Papel, Dto_Art, Zona, Rpt_Dec, Report , Centro ) VALUES ('45', 'c1', 'c2', 'c3', "
      "'c4', 'c5', 'c6', 'c7', 'c8', 'c9', 'c10', 'c11', 'c12', 'c13', 'c14', 'c15', 'c16', "
      "'c17', 1.123456789, 2, 3, -1, 0, -1, 'c18', 'c19', 'c20', 'c21', 1, 10, 20, 4.5, 'c22', 5, "
      "6, 7, 8, 9, 10, 11, 12, 13, 14, 'T', 'S', 'c23', 'c24', 'c25', 'c26', 'c27', 'c28', 'c29', "
      "'c30', 'c31', 'c32', 'c33', 15, 'c34', #12/31/2020 10:20:30#, 'c35', -1, 0, 'c36', 'c37', "
      "'c38', 'c39', 16, 'c40', 'c41', 'c42', 'c43', -1, 0, -1, 17, 'c44', 'c45', 'c46', 'c47')");
  const auto rowOf = [&](const std::string& code) {
    RecordsetPtr rows;
    ConnectionPtr connection;
    DataSession().OpenRecordset(
        1, Statement("SELECT * FROM Clientes WHERE Codigo = ") << sqlText(code), rows, connection);
    std::vector<std::string> values;
    for (std::int32_t i = 1; i < rows->Fields().Count(); ++i) {
      const Variant held = rows->Field(i).Value();
      values.push_back(rows->Field(i).Name() + "=" + (held.isNull() ? "Null" : text(held)));
    }
    return values;
  };
  customers.Actualizar_A_Nuevo_Registro("45", false, 5);
  EXPECT_EQ(rowOf("00045"), rowOf("45"));
}

TEST_F(ClsClientesCopyTest, TheStatementIsTheCorpussToTheLetterWithEveryColumnFilled) {
  shop.run(
      "INSERT INTO Clientes ( Codigo, Nombre,Razon_Social,NIF, Direccion, Codigo_Postal, "
      "Poblacion, Provincia, Telefono, Telefono_2, Movil, Fax, E_Mail, Http, Contacto, "
      "CTA_Contable, CTA_Contrapartida, CTA_Tesoreria, IRPF, IRPF_B, IRPF_C, Impuesto, Divisa, "
      "Forma_Pago, Transportista, Banco, Activo, Dia_Pago_1, Dia_Pago_2, Gastos, Codigo_portes, "
      "Descuento, Descuento_PP, Descuento_PP_B, Descuento_PP_C, Bonificacion_1, Condicion_1, "
      "Bonificacion_2, Condicion_2, Bonificacion_3, Condicion_3, Tarifa, Serie, Concepto, "
      "Tipo_Factura_A, Tipo_Factura_B, Tipo_Factura_C, Documento_E, Documento_P, Documento_A, "
      "Documento_F, Documento_T, Documento_R, Colegiado, Descuento_R, Facturar, Fecha, "
      "Tipo_Cliente, Aviso, Texto_Aviso, E_Mail_admin, E_Mail_doc, Horario, Riesgo, Codigo_fac, "
      "Lista, Rpt_Alb, Rpt_Fac, Dto_Art, Zona, Rpt_Dec, Report , Centro ) VALUES ( '45', "
      "'Clínica Sol', 'Clínica Sol, S.L.', 'B12345679', 'Calle Mayor, 1', '28001', 'Madrid', "
      "'Madrid', '910000000', '910000001', '600000000', '910000002', 'sol@example.org', "
      "'http://example.org', 'Recepción', '430045', '700000', '570000', 12.5, 12.5, 12.5, -1, "
      "'Eur', 'Ctd', '001', '00001 ', -1, 10, 10, 12.5, 'PORTES', 12.5, 12.5, 12.5, 12.5, 12.5, "
      "12.5, 12.5, 12.5, 12.5, 12.5, 'A', 'A', 'Descripción', '01', '01', '01', 'Est', 'Est', "
      "'Est', 'Est', 'Est', 'Est', 'NC', 12.5, 'Mensual', #03/05/2026#, 'Nuevo', -1, 'Llamar "
      "antes', 'adm@example.org', 'doc@example.org', '9 a 14', 12.5, '45', 'PRC', 'No', 'No', 0, "
      "'Centro', 'No', 'No', 'Norte')");
  EXPECT_THAT(traceOf([&] { customers.Actualizar_A_Nuevo_Registro("45", true, 5); }),
              ElementsAre(corpus("Actualizar_A_Nuevo_Registro / read"),
                          corpus("Actualizar_A_Nuevo_Registro / remove the old row"),
                          corpus("Actualizar_A_Nuevo_Registro / insert, every column filled")));
}

TEST_F(ClsClientesCopyTest, NullsTakeTheirFixedDefaults) {
  shop.run("INSERT INTO Clientes (Codigo, Activo, Dto_Art) VALUES ('45', Null, Null)");
  EXPECT_THAT(traceOf([&] { customers.Actualizar_A_Nuevo_Registro("45", false, 5); }).back(),
              corpus("Actualizar_A_Nuevo_Registro / insert, every column Null"));
  EXPECT_EQ(column("Telefono", "00045"), "000000000");
  EXPECT_EQ(column("Riesgo", "00045"), "900000000");
  EXPECT_EQ(column("Nombre", "00045"), "?");
  EXPECT_EQ(column("Razon_Social", "00045"), "Null");
}

TEST_F(ClsClientesCopyTest, WhoWasBilledToNobodyIsBilledToTheOldCode) {
  add("45", "codigo_fac = Null");
  add("46", "codigo_fac = '46'");
  customers.Actualizar_A_Nuevo_Registro("45", true, 5);
  customers.Actualizar_A_Nuevo_Registro("46", true, 5);
  EXPECT_EQ(column("codigo_fac", "00045"), "45");
  EXPECT_EQ(column("codigo_fac", "00046"), "46");
}

TEST_F(ClsClientesCopyTest, AFailedInsertBringsTheOldRowBack) {
  add("45", "Nombre = 'Sol'");
  add("00045", "Nombre = 'Luna'");
  EXPECT_EQ(errorOf([&] { customers.Actualizar_A_Nuevo_Registro("45", true, 5); }),
            errors::kIntegrityViolation);
  EXPECT_EQ(column("Nombre", "45"), "Sol");
  EXPECT_EQ(column("Nombre", "00045"), "Luna");
}

TEST_F(ClsClientesCopyTest, AnApostropheInARowBreaksItsCopyAndNothingIsLost) {
  add("45", "Razon_Social = 'L''Hospital'");
  EXPECT_EQ(errorOf([&] { customers.Actualizar_A_Nuevo_Registro("45", true, 5); }),
            errors::kSyntax);
  EXPECT_EQ(column("Razon_Social", "45"), "L'Hospital");
}

TEST_F(ClsClientesCopyTest, ACallersTransactionStaysOpen) {
  add("45");
  ConnectionPtr connection = DataSession().OpenConnection(1);
  connection->BeginTrans();
  customers.Actualizar_A_Nuevo_Registro("45", true, 5, connection);
  EXPECT_EQ(connection->transactionLevel(), 1);
  connection->RollbackTrans();
  EXPECT_EQ(codes(), "45");
}

TEST_F(ClsClientesCopyTest, ACustomerThatIsNotThereIsToldBeforeAnythingIsDone) {
  ConnectionPtr connection;
  EXPECT_EQ(errorOf([&] { customers.Actualizar_A_Nuevo_Registro("45", true, 5, connection); }),
            errors::kNoCurrentRecord);
  ASSERT_NE(connection, nullptr);
  EXPECT_EQ(connection->transactionLevel(), 0);
}

}  // namespace
}  // namespace tavelor
