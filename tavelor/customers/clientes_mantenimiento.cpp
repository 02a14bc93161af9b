// SPDX-License-Identifier: MIT
// ClsClientes: changes of all customers, marks for reports, and the move to a padded code.
#include <array>
#include <optional>

#include <fmt/format.h>

#include "tavelor/customers/clientes.hpp"
#include "tavelor/customers/consultas.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// ---------------------------------------------------------------------------------------------
// Of every customer, on purpose without a condition

void ClsClientes::ActualizarCabeceraFra(std::string_view sId, ObjCn cnnActive) const {
  Statement statement("UPDATE Clientes SET Documento_F = '");
  statement << spliced(sId) << "'";
  write(statement, *cnnActive);
}

void ClsClientes::ActualizaClientesExentosIVA(ObjCn cnnActive) const {
  write(Statement("UPDATE Clientes SET Impuesto = 0, Impuesto_Incluido = False"), *cnnActive);
}

void ClsClientes::Cancelar_report_Facturas(ObjCn cnnActive) const {
  write(Statement("UPDATE Clientes SET Clientes.Rpt_Fac = 'No' ;"), *cnnActive);
}

void ClsClientes::Actualizar_Rs_La_3(std::string_view sRS, std::string_view sLA,
                                     ObjCn cnnActive) const {
  Statement first("UPDATE Clientes SET Rs = '");
  first << spliced(sRS) << "'";
  write(first, *cnnActive);
  Statement second("UPDATE Clientes SET La = '");
  second << spliced(sLA) << "'";
  write(second, *cnnActive);
}

// ---------------------------------------------------------------------------------------------
// Marks for reports

namespace {

constexpr std::string_view kPlanningReport = "informes_iso_11";

struct Days {
  std::string first;
  std::string last;
};

Statement between(Statement::Constant column, const Days& days) {
  Statement condition(column);
  condition << " Between " << spliced(days.first) << " AND " << spliced(days.last) << ")";
  return condition;
}

// What iIndx asks for, from 1 on.
enum Plan : std::int16_t {
  kUsable = 1,
  kRegistered,
  kReturned,
  kRegisteredAndReturned,
  kNotDelivered,
  kNothingPaid,
  kUsableAndNotDelivered,
};

// Usable customers: all, or those who came or came back between the days.
Statement usableMark(std::int16_t plan, const Days& days) {
  Statement statement("UPDATE Clientes SET Clientes.planificar = 1 WHERE ( (Clientes.Activo)<>0)");
  if (plan == kRegistered || plan == kRegisteredAndReturned) {
    statement << between(" AND ((Clientes.Fecha)", days);
  }
  if (plan == kReturned || plan == kRegisteredAndReturned) {
    statement << between(" AND ((Clientes.fecha_re)", days);
  }
  return statement;
}

// Customers without a delivery note between the days.
Statement notDeliveredMark(const Days& days) {
  Statement statement(
      "UPDATE Clientes SET Clientes.Planificar = -1 WHERE (((Exists"
      " (SELECT Albaranes.Numero From Albaranes WHERE ( ((Albaranes.Fecha) Between ");
  statement << spliced(days.first) << " AND " << spliced(days.last)
            << " ) AND ((Albaranes.Codigo)=Clientes.Codigo))))=False));";
  return statement;
}

// Customers without one of a positive total.
Statement nothingPaidMark(const Days& days) {
  Statement statement(
      "UPDATE Clientes SET Clientes.Planificar = -1 WHERE (((Exists"
      " (SELECT DISTINCTROW Albaranes.Numero From Albaranes"
      " WHERE (((Albaranes.Fecha) Between ");
  statement << spliced(days.first) << " AND " << spliced(days.last)
            << " )) GROUP BY Albaranes.Codigo, Albaranes.Numero"
               " HAVING (((Albaranes.Codigo)=[Clientes].[Codigo])"
               " AND ((Sum(Albaranes.Total))>0))))=false));";
  return statement;
}

std::vector<Statement> planningMarks(std::int16_t plan, const Days& days) {
  switch (plan) {
    case kUsable:
    case kRegistered:
    case kReturned:
    case kRegisteredAndReturned:
      return {usableMark(plan, days)};
    case kNotDelivered:
      return {notDeliveredMark(days)};
    case kNothingPaid:
      return {nothingPaidMark(days)};
    case kUsableAndNotDelivered:
      return {usableMark(kUsable, days), notDeliveredMark(days)};
    default:
      raise(errors::kInvalidCall, "ClsClientes",
            fmt::format("iIndx goes from 1 to 7 and was {}", plan));
  }
}

// Unlike the list of the same word, the marks of a series leave its rectifying invoices out.
Statement declarationMark() {
  const consultas::LastYear year = consultas::lastYear();
  Statement statement(
      "UPDATE Clientes SET Clientes.Dto_Art = -1"
      " WHERE (((Clientes.Codigo)IN(SELECT Clientes.Codigo AS Código"
      " FROM Facturas INNER JOIN Clientes ON Facturas.Codigo = Clientes.Codigo"
      " WHERE (((Facturas.Fecha) Between ");
  statement << spliced(year.first) << " And " << spliced(year.last) << ")";
  if (const char series = consultas::declaredSeries()) {
    statement << " AND ((Facturas.Serie) = '" << spliced(std::string_view(&series, 1)) << "'))";
  } else {
    statement << ")";
  }
  statement << " GROUP BY Clientes.Codigo, Facturas.Codigo"
               " HAVING (((Sum(Facturas.Total))>3000));)));";
  return statement;
}

// A word that is none of these has no condition: all customers are marked.
Statement discountMark(std::string_view word) {
  constexpr std::array<std::string_view, 6> kByDeliveryNotes = {
      "factur_trim", "factur_periodo",    "factur_periodo_ant",
      "bajas",       "factur_no_periodo", "factur_no_año"};
  if (word == "347") return declarationMark();
  Statement statement("UPDATE Clientes SET Clientes.Dto_Art = 1");
  if (word == "activos") statement << " WHERE ((Clientes.Activo)<>0);";
  if (word == "no_activos") statement << " WHERE ((Clientes.Activo)=0);";
  for (const std::string_view known : kByDeliveryNotes) {
    if (word == known) statement << consultas::byDeliveryNotes(word);
  }
  return statement;
}

}  // namespace

// All statements are there before the first one runs: a date that is none changes nothing.
void ClsClientes::Actualizar_Param_Rpt(std::string_view ssql, ObjCn cnnActive,
                                       const Variant& vFchIni, const Variant& vFchFin,
                                       std::int16_t iIndx) const {
  Statement::Constant clearing = "UPDATE Clientes SET Clientes.Dto_Art = 0 ";
  std::vector<Statement> marks;
  if (ssql == kPlanningReport) {
    clearing = "UPDATE Clientes SET Clientes.planificar = 0 ";
    const auto literal = [&](const Variant& day) {
      return iIndx == kUsable ? std::string() : DataSession().DateLiteral(info().selector, day);
    };
    marks = planningMarks(iIndx, {literal(vFchIni), literal(vFchFin)});
  } else {
    marks.push_back(discountMark(ssql));
  }
  write(Statement(clearing), *cnnActive);
  for (const Statement& mark : marks) write(mark, *cnnActive);
}

// ---------------------------------------------------------------------------------------------
// The move to a padded code

namespace {

// A column of the new row behind its code, and what stands for Null.
struct Copied {
  Statement::Constant column;
  Statement::Constant missing = "Null";
};

constexpr std::array kCopied = {
    Copied{"Nombre", "'?'"},
    Copied{"Razon_Social"},
    Copied{"NIF"},
    Copied{"Direccion"},
    Copied{"Codigo_Postal"},
    Copied{"Poblacion"},
    Copied{"Provincia"},
    Copied{"Telefono", "'000000000'"},
    Copied{"Telefono_2"},
    Copied{"Movil"},
    Copied{"Fax"},
    Copied{"E_Mail", "' '"},
    Copied{"Http"},
    Copied{"Contacto"},
    Copied{"CTA_Contable", "'430000'"},
    Copied{"CTA_Contrapartida", "'700000'"},
    Copied{"CTA_Tesoreria", "'570000'"},
    Copied{"IRPF"},
    Copied{"IRPF_B"},
    Copied{"IRPF_C"},
    Copied{"Impuesto"},
    Copied{"Impuesto_Incluido"},
    Copied{"Recargo"},
    Copied{"Divisa", "'Eur'"},
    Copied{"Forma_Pago", "'Ctd'"},
    Copied{"Transportista", "'001'"},
    Copied{"Banco", "'001'"},
    Copied{"Activo"},
    Copied{"Dia_Pago_1"},
    Copied{"Dia_Pago_2"},
    Copied{"Gastos"},
    Copied{"Codigo_portes"},
    Copied{"Descuento"},
    Copied{"Descuento_PP"},
    Copied{"Descuento_PP_B"},
    Copied{"Descuento_PP_C"},
    Copied{"Bonificacion_1"},
    Copied{"Condicion_1"},
    Copied{"Bonificacion_2"},
    Copied{"Condicion_2"},
    Copied{"Bonificacion_3"},
    Copied{"Condicion_3"},
    Copied{"Tarifa", "'A'"},
    Copied{"Serie", "'A'"},
    Copied{"Concepto", "'Descripción'"},
    Copied{"Tipo_Factura_A"},
    Copied{"Tipo_Factura_B"},
    Copied{"Tipo_Factura_C"},
    Copied{"Documento_E", "'Est'"},
    Copied{"Documento_P"},
    Copied{"Documento_A"},
    Copied{"Documento_F"},
    Copied{"Documento_T", "'Est'"},
    Copied{"Documento_R", "'Est'"},
    Copied{"Colegiado", "'NC'"},
    Copied{"Descuento_R"},
    Copied{"Facturar"},
    Copied{"Fecha"},
    Copied{"Tipo_Cliente"},
    Copied{"Aviso"},
    Copied{"Incorporar"},
    Copied{"Texto_Aviso"},
    Copied{"E_Mail_admin"},
    Copied{"E_Mail_doc"},
    Copied{"Horario", "'NC'"},
    Copied{"Riesgo", "900000000"},
    Copied{"Codigo_fac"},
    Copied{"Lista"},
    Copied{"Rpt_Alb"},
    Copied{"Rpt_Fac"},
    Copied{"Portes_alb"},
    Copied{"Portes_Imp"},
    Copied{"Fact_Papel"},
    Copied{"Dto_Art"},
    Copied{"Zona"},
    Copied{"Rpt_Dec"},
    Copied{"Report"},
    Copied{"Centro"},
};

// The columns above as the statement writes them.
constexpr std::string_view kIntoCopy =
    "INSERT INTO Clientes ( Codigo, Nombre,Razon_Social,NIF, Direccion, Codigo_Postal, Poblacion,"
    " Provincia, Telefono, Telefono_2, Movil, Fax, E_Mail, Http, Contacto, CTA_Contable,"
    " CTA_Contrapartida, CTA_Tesoreria, IRPF, IRPF_B, IRPF_C, Impuesto, Impuesto_Incluido,"
    " Recargo, Divisa, Forma_Pago, Transportista, Banco, Activo, Dia_Pago_1, Dia_Pago_2, Gastos,"
    " Codigo_portes, Descuento, Descuento_PP, Descuento_PP_B, Descuento_PP_C, Bonificacion_1,"
    " Condicion_1, Bonificacion_2, Condicion_2, Bonificacion_3, Condicion_3, Tarifa, Serie,"
    " Concepto, Tipo_Factura_A, Tipo_Factura_B, Tipo_Factura_C, Documento_E, Documento_P,"
    " Documento_A, Documento_F, Documento_T, Documento_R, Colegiado, Descuento_R, Facturar, Fecha,"
    " Tipo_Cliente, Aviso, Incorporar, Texto_Aviso, E_Mail_admin, E_Mail_doc, Horario, Riesgo,"
    " Codigo_fac, Lista, Rpt_Alb, Rpt_Fac, Portes_alb, Portes_Imp, Fact_Papel, Dto_Art, Zona,"
    " Rpt_Dec, Report , Centro ) Values( ";

}  // namespace

// Numbers stand between quotes in the printing of the locale, with all their decimals. A customer
// that was billed to nobody is billed to its old code afterwards.
Statement ClsClientes::copyUnder(std::string_view code, Recordset& old) const {
  Statement statement(kIntoCopy);
  statement << "'" << spliced(code) << "'";
  for (const Copied& copied : kCopied) {
    Variant held = old.Field(copied.column).Value();
    if (held.isNull() && copied.column == "Codigo_fac") held = old.Field("Codigo").Value();
    statement << ",";
    if (held.isNull()) {
      statement << copied.missing;
    } else if (const bool* flag = held.getIf<bool>()) {
      statement << (*flag ? Statement::Constant("'-1'") : "'0'");
    } else if (held.getIf<Date>() != nullptr) {
      statement << spliced(DataSession().DateLiteral(info().selector, held));
    } else {
      statement << "'" << spliced(joined(held)) << "'";
    }
  }
  statement << ")";
  return statement;
}

void ClsClientes::Actualizar_A_Nuevo_Registro(std::string_view IdCliente, bool bCopy,
                                              std::int16_t mdigitos, ObjCn cnnActive) const {
  Statement reading("SELECT Codigo");
  for (const Copied& copied : kCopied) reading << ", Clientes." << copied.column;
  reading << " FROM Clientes WHERE codigo = '" << spliced(IdCliente) << "'";
  const RecordsetPtr old = read(reading, *cnnActive);

  std::string code(IdCliente);
  if (mdigitos > 0 && text::length(code) < static_cast<std::size_t>(mdigitos)) {
    code = text::padLeft(code, static_cast<std::size_t>(mdigitos), '0');
  }
  const Statement insert = copyUnder(code, *old);
  Statement removal("DELETE Clientes.*, Clientes.Codigo FROM Clientes WHERE (((Clientes.Codigo)='");
  removal << spliced(IdCliente) << "'));";

  const ConnectionPtr connection = *cnnActive;
  connection->BeginTrans();
  try {
    if (bCopy) write(removal, *cnnActive);
    write(insert, *cnnActive);
    connection->CommitTrans();
  } catch (...) {
    try {
      connection->RollbackTrans();
    } catch (const Error&) {
      // The first failure is the one to tell.
    }
    throw;
  }
}

}  // namespace tavelor
