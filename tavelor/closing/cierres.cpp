// SPDX-License-Identifier: MIT
// ClsCierres, the closing of a till.
#include "tavelor/closing/cierres.hpp"

#include <algorithm>
#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/sales/ticket_parameters.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/format_global.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Cierres: the closing Codigo of the till Caja. Its sums lie in Cierres_Familias,
// Cierres_Formas_Pago and Cierres_Lineas_Impuestos, which hang from it by Cierre.

namespace {

constexpr std::string_view kTodos =
    "SELECT Codigo AS Código, Fecha, Descripcion AS Descripción, Caja, Empleado, Entrega as "
    "Entradas, Efectivo"
    ", Credito, Base, Importe_Impuestos as Impuestos, Importe_Recargo as Recargos, Total, "
    "Saldo_Inicio as Remanente"
    ", Saldo_Final as Saldo, Facturado, Doc_F as Documento"
    " FROM Cierres";

constexpr std::array kModes = {
    Mode{"seleccion", "SELECT Codigo AS Código, Descripcion AS Descripción FROM Cierres"},
    Mode{"familias", "SELECT Familia, Importe FROM Cierres_Familias WHERE (((Cierre)={id}));"},
    Mode{"formas_pago",
         "SELECT Forma_Pago as Pago, Importe FROM Cierres_Formas_Pago WHERE (((Cierre)={id}));"},
    Mode{"impuestos",
         "SELECT IVA, Base, Importe FROM Cierres_Lineas_Impuestos WHERE (((Cierre)={id}));"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Cierres",
    .table = "Cierres",
    .modes = kModes,
    .freeCode = "SELECT Codigo FROM Cierres where codigo ={id}",
    .addNew = AddNewForm::kShort,
    .clearsDataMembers = true,
    .givesConnectionString = true,
};

// Columns of the slip.
constexpr std::size_t kFamilyWidth = 20;
constexpr std::size_t kFamilyAmountWidth = 10;
constexpr std::size_t kPaymentLineWidth = 20;
constexpr std::size_t kRateWidth = 4;
constexpr std::size_t kTaxAmountWidth = 9;

struct Label {
  std::string_view text;
  std::string_view column;
};
constexpr std::array kSlip = {
    Label{"Cierre de Caja - Fecha ", "Fecha"},
    Label{"Caja : ", "Caja"},
    Label{"Tickets : ", "Efectivo"},
    Label{"Alb./Fact. : ", "Credito"},
    Label{"Total Cierre : ", "Entradas"},
    Label{"S. Inicio : ", "Remanente"},
    Label{"S. Fin : ", "Saldo"},
};

const Locale& locale() {
  return Apartment::current().locale();
}

/// A number as the mask writes it.
std::string masked(const Variant& value, const std::string& mask) {
  return format(asNumber(value), mask, locale());
}

}  // namespace

ClsCierres::ClsCierres() : OpensByWord(kInfo) {}

bool ClsCierres::bEstaFacturado() const {
  return asNumber(primary().Field("facturado").Value()) != 0;
}

double ClsCierres::iQNumero() const {
  return asNumber(primary().Field("Código").Value());
}

void ClsCierres::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  for (const Statement::Constant statement : std::initializer_list<Statement::Constant>{
           "DELETE  FROM Cierres_Familias  WHERE (((Cierre)={id}));",
           "DELETE  FROM Cierres_Formas_Pago  WHERE (((Cierre)={id}));",
           "DELETE  FROM Cierres_Lineas_Impuestos  WHERE (((Cierre)={id}));"}) {
    write(withId(statement, vId), *cnnActive);
  }
}

// ---------------------------------------------------------------------------------------------
// The slip

std::vector<Variant> ClsCierres::GetCollectionLinFamilias(const Variant& /*vId*/,
                                                          ObjCn /*objCn*/) const {
  const RecordsetPtr rows = primary().Clone();
  std::vector<Variant> lines;
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string family = joined(rows->Field("Familia").Value());
    lines.emplace_back(
        text::padRight(text::left(family, kFamilyWidth - 1), kFamilyWidth) +
        text::alignRight(joined(asNumber(rows->Field("Importe").Value())), kFamilyAmountWidth));
  }
  return lines;
}

// Most shops number their payment methods, so "001" prints as "1,00": slips have always shown it.
std::vector<Variant> ClsCierres::GetCollectionLinFormasPago() const {
  const std::string mask = Apartment::current().formatGlobal().AmountFormat();
  const RoundingMask rounded(mask, locale());
  const RecordsetPtr rows = primary().Clone();
  std::vector<Variant> lines;
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string method = format(rows->Field("Pago").Value(), mask, locale());
    const std::string amount = joined(rounded(asNumber(rows->Field("Importe").Value())));
    const std::size_t left = kPaymentLineWidth - std::min(kPaymentLineWidth, text::length(amount));
    lines.emplace_back(text::alignLeft(method, left) + amount);
  }
  return lines;
}

std::vector<Variant> ClsCierres::GetCollectionLinImpuestos(const Variant& /*vId*/,
                                                           ObjCn /*objCn*/) const {
  const FormatGlobal& formats = Apartment::current().formatGlobal();
  const RecordsetPtr rows = primary().Clone();
  std::vector<Variant> lines;
  for (; !rows->Eof(); rows->MoveNext()) {
    const float rate = asSingle(rows->Field("Iva").Value());
    const std::string base = masked(rows->Field("Base").Value(), formats.QuantityFormat());
    const std::string tax = masked(rows->Field("Importe").Value(), formats.AmountFormat());
    lines.emplace_back(text::alignRight(joined(rate), kRateWidth) + "% IVA de  " +
                       text::alignRight(base, kTaxAmountWidth) +
                       text::alignRight(tax, kTaxAmountWidth));
  }
  return lines;
}

std::vector<Variant> ClsCierres::GetCierreToCol(const Variant& id, ObjCn objCn) const {
  Statement statement(kTodos);
  statement << withId(" WHERE Codigo = {id}", id);
  const RecordsetPtr rows = read(statement, *objCn);
  std::vector<Variant> lines;
  if (rows->RecordCount() == 0) return lines;
  for (const Label& label : kSlip) {
    const Variant found = rows->Field(label.column).Value();
    if (!found.isNull()) lines.emplace_back(std::string(label.text) + joined(found));
  }
  return lines;
}

std::string ClsCierres::GetTxtFile() const {
  return reportFile("Cierres.txt");
}

// ---------------------------------------------------------------------------------------------
// Reading

void ClsCierres::Obtener(ClsTickets::Lectura& lectura) const {
  const RecordsetPtr found =
      read(withId("SELECT Codigo AS Código, Fecha, Descripcion AS Descripción, Caja, Empleado, "
                  "Entrega as Entradas, Efectivo"
                  ", Credito, Base, Importe_Impuestos , Importe_Recargo , Total, Saldo_Inicio as "
                  "Remanente"
                  ", Saldo_Final as Saldo, Facturado, Doc_F as Documento"
                  " FROM Cierres"
                  " WHERE Codigo = {id}",
                  lectura.vId),
           *lectura.objCn);
  if (found->RecordCount() == 0) return;
  Recordset& rows = *found;
  const Variant date = rows.Field("Fecha").Value();
  if (!date.isNull()) lectura.dtFecha = date.toDate(locale());
  takeColumn(rows, "Descripción", lectura.sEmpresa);
  takeColumn(rows, "Base", lectura.dBase);
  takeColumn(rows, "Importe_Impuestos", lectura.dImpImp);
  takeColumn(rows, "Importe_recargo", lectura.dImpRec);
  takeColumn(rows, "Total", lectura.dTotal);
  lectura.iFacturado = rows.Field("Facturado").Value().toInt16(locale());
}

// The chain runs by number, whatever the day that is asked for: the money in the till is that of
// the closing that was made last.
void ClsCierres::SaldoAnterior(const Variant& /*dtFecha*/, std::string_view sCaja,
                               std::string_view /*sEmpleado*/, std::string_view /*sSerie*/,
                               InOut<double> dSumaDeSaldo_Final, ObjCn objCn) const {
  const Date today = Apartment::current().clock().today();
  Statement statement("SELECT Max(Codigo) AS MáxDeCodigo FROM Cierres Where ((Fecha<=");
  statement << spliced(format(today, "#", locale())) << ") AND (Caja='" << spliced(sCaja) << "'));";
  const Variant last = lookUp(statement, "MáxDeCodigo", *objCn);
  if (last.isEmpty()) return;
  const RecordsetPtr rows = read(
      withId("SELECT Saldo_Final AS SumaDeSaldo_Final FROM Cierres Where ((Codigo={id}));", last),
      *objCn);
  if (rows->RecordCount() > 0) takeColumn(*rows, "SumaDeSaldo_Final", *dSumaDeSaldo_Final);
}

// ---------------------------------------------------------------------------------------------
// Writing

void ClsCierres::FacturarDocumento(const Variant& vId, std::int16_t iFacturado,
                                   const Variant& vIdFac, ObjCn cnnActive) const {
  Statement statement("UPDATE  Cierres  SET Facturado = ");
  statement << spliced(joined(iFacturado)) << " , Doc_F = " << spliced(joined(vIdFac))
            << " WHERE(Codigo = " << spliced(joined(vId)) << ")";
  write(statement, *cnnActive);
}

void ClsCierres::CancelarFacturacion(const Variant& vId, std::int16_t iFacturado,
                                     ObjCn cnnActive) const {
  Statement statement("UPDATE  Cierres SET Facturado = 0 , Doc_F = 0 WHERE(Codigo = ");
  statement << spliced(joined(vId)) << " and Facturado = " << spliced(joined(iFacturado)) << ")";
  write(statement, *cnnActive);
}

void ClsCierres::InsertarCierreFamilias(const Variant& vCierre, std::string_view sFamilia,
                                        double dImporte, ObjCn objCn) const {
  Statement statement("INSERT INTO Cierres_Familias ( Cierre, Familia ,Importe ) VALUES ( ");
  statement << spliced(joined(vCierre)) << " , '" << spliced(sFamilia) << "', '"
            << spliced(joined(dImporte)) << "')";
  write(statement, *objCn);
}

void ClsCierres::InsertarCierreImpuestos(const Variant& vCierre, std::string_view sIva,
                                         double dBase, double dImporte, ObjCn objCn) const {
  Statement statement(
      "INSERT INTO Cierres_Lineas_Impuestos ( Cierre, Iva, Base, Importe ) VALUES ( ");
  statement << spliced(joined(vCierre)) << " , '" << spliced(sIva) << "', '"
            << spliced(joined(dBase)) << "', '" << spliced(joined(dImporte)) << "')";
  write(statement, *objCn);
}

void ClsCierres::InsertarCierreFormasPago(const Variant& vCierre, std::string_view sFormaPago,
                                          double dImporte, ObjCn objCn) const {
  Statement statement("INSERT INTO Cierres_Formas_pago ( Cierre, Forma_Pago, Importe ) VALUES ( ");
  statement << spliced(joined(vCierre)) << " , '" << spliced(sFormaPago) << "', '"
            << spliced(joined(dImporte)) << "')";
  write(statement, *objCn);
}

// The chain of balances compares the date with whole day numbers: with its time, a closing of today
// would not count before tomorrow.
void ClsCierres::Insertar(const Cierre& cierre) const {
  const Cierre& c = cierre;
  Statement statement(
      "INSERT INTO Cierres ("
      " Codigo, Serie, Fecha, Descripcion, Caja, Empleado,"
      " Entrega, Cambio, Efectivo, Credito, Base,"
      " Importe_Impuestos, Importe_recargo,"
      " Total, Saldo_Inicio,"
      " Saldo_Final )"
      " SELECT ");
  statement << spliced(joined(c.vId)) << " AS Expr1, '" << spliced(c.sSerie) << "' AS Expr2, '"
            << spliced(joined(c.dtFecha.dayOnly())) << "' AS Expr3, '" << spliced(c.sDescripcion)
            << "' AS Expr4, '" << spliced(c.sCaja) << "' AS Expr5, '" << spliced(c.sEmpleado)
            << "' AS Expr6, '" << spliced(joined(c.dEntrega)) << "' AS Expr70, '"
            << spliced(joined(c.dCambio)) << "' AS Expr71, '" << spliced(joined(c.dEfectivo))
            << "' AS Expr7, '" << spliced(joined(c.dCredito)) << "' AS Expr8, '"
            << spliced(joined(c.dBase)) << "' AS Expr9, '" << spliced(joined(c.dImpImp))
            << "' AS Expr10, '" << spliced(joined(c.dImpRec)) << "' AS Expr11, '"
            << spliced(joined(c.dTotal)) << "' AS Expr12, '" << spliced(joined(c.SaldoIni))
            << "' AS Expr13, '" << spliced(joined(c.SaldoFin)) << "' AS Expr14;";
  write(statement, *c.objCn);
}

// ---------------------------------------------------------------------------------------------
// The component table

namespace {

using C = ClsCierres;
using Cierre = C::Cierre;

std::vector<AggregateParameter<Cierre>> closingParameters() {
  return {parameter("vId", &Cierre::vId),
          parameter("sSerie", &Cierre::sSerie),
          parameter("dtFecha", &Cierre::dtFecha),
          parameter("sDescripcion", &Cierre::sDescripcion),
          parameter("sCaja", &Cierre::sCaja),
          parameter("sEmpleado", &Cierre::sEmpleado),
          parameter("dEntrega", &Cierre::dEntrega),
          parameter("dCambio", &Cierre::dCambio),
          parameter("dEfectivo", &Cierre::dEfectivo),
          parameter("dCredito", &Cierre::dCredito),
          parameter("dBase", &Cierre::dBase),
          parameter("dImpImp", &Cierre::dImpImp),
          parameter("dImpRec", &Cierre::dImpRec),
          parameter("dTotal", &Cierre::dTotal),
          parameter("SaldoIni", &Cierre::SaldoIni),
          parameter("SaldoFin", &Cierre::SaldoFin),
          parameter("[objCn]", &Cierre::objCn)};
}

}  // namespace

const Component& ClsCierres::component() {
  static const Component table(
      "ClsCierres", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B501}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          property("bEstaFacturado", &C::bEstaFacturado),
          property("iQNumero", &C::iQNumero),
          member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
          member("GetCollectionLinFamilias", &C::GetCollectionLinFamilias, "[vId], [objCn]"),
          member("GetCollectionLinFormasPago", &C::GetCollectionLinFormasPago),
          member("GetCollectionLinImpuestos", &C::GetCollectionLinImpuestos, "[vId], [objCn]"),
          member("FacturarDocumento", &C::FacturarDocumento,
                 "vId, iFacturado, vIdFac, [cnnActive]"),
          member("CancelarFacturacion", &C::CancelarFacturacion, "vId, iFacturado, [cnnActive]"),
          member("Obtener", &C::Obtener, ticketReadParameters()),
          member("GetTxtFile", &C::GetTxtFile),
          member("GetCierreToCol", &C::GetCierreToCol, "id, [objCn]"),
          member("SaldoAnterior", &C::SaldoAnterior,
                 "dtFecha, sCaja, sEmpleado, sSerie, inout dSumaDeSaldo_Final, [objCn]"),
          member("InsertarCierreFamilias", &C::InsertarCierreFamilias,
                 "vCierre, sFamilia, dImporte, [objCn]"),
          member("InsertarCierreImpuestos", &C::InsertarCierreImpuestos,
                 "vCierre, sIva, dBase, dImporte, [objCn]"),
          member("InsertarCierreFormasPago", &C::InsertarCierreFormasPago,
                 "vCierre, sFormaPago, dImporte, [objCn]"),
          member("Insertar", &C::Insertar, closingParameters()),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
