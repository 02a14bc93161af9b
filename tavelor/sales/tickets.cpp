// SPDX-License-Identifier: MIT
// ClsTickets: modes, the current row, single values, numbers and logs. Documents are in
// tickets_documento.cpp, sums in tickets_ventas.cpp, the table of all members in
// tickets_componente.cpp.
#include "tavelor/sales/tickets.hpp"

#include <array>

#include "tavelor/articles/euros.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/sales/log_files.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Tickets, and HTickets with the same columns for the tickets of past closings.

namespace {

constexpr std::string_view kTodos =
    "SELECT"
    " Numero AS Ticket, Serie, Fecha, Codigo AS Cliente, Razon_Social AS Empresa"
    " , Tarifa, Almacen AS Almacén, Referencia, Transportista, Divisa"
    " , Valor_Divisa AS Valor, Total_Divisa, Forma_Pago AS Pago"
    " , Descuento, Descuento_PP, Base, Gastos AS Portes, Impuesto"
    " , Importe_Impuestos, Recargo, Importe_recargo, IRPF"
    " , Importe_IRPF, Total, Estado, Doc_E, Facturado , Doc_F,Impreso"
    " , CTA_Contable, CTA_Contrapartida, Concepto"
    " , Documento_P, Entrega, Cambio, Pagado, Caja, Empleado, Impuesto_Incluido"
    " , Contabilizado, Cierre"
    " FROM "
    "Tickets";
// Cambio is the rate of the currency here, and the change given has a name of its own.
constexpr std::string_view kHistoriaDeCaja =
    "SELECT"
    " Numero AS Ticket, Serie, Fecha, Codigo AS Cliente, Razon_Social AS Empresa"
    " , Tarifa, Almacen AS Almacén, Referencia, Transportista, Divisa"
    " , Valor_Divisa AS Cambio, Total_Divisa, Forma_Pago AS Pago"
    " , Descuento, Descuento_PP, Base, Gastos AS Portes, Impuesto"
    " , Importe_Impuestos, Recargo, Importe_recargo, IRPF"
    " , Importe_IRPF, Total, Estado, Doc_E, Facturado , Doc_F,Impreso"
    " , CTA_Contable, CTA_Contrapartida, Concepto"
    " , Documento_P, Entrega, Cambio as Cambio_Efectivo, Pagado, Caja, Empleado, Impuesto_Incluido"
    " FROM H"
    "Tickets";

// Tickets of a closing stand in history, so the mode of a closing looks there.
constexpr std::array kModes = {
    Mode{"vista rapida", kTodos},
    Mode{"caja", kTodos, " WHERE Caja = '{id}'"},
    Mode{"cajapendientes", kTodos, " WHERE ( Estado < 2) AND (Caja = '{id}')"},
    Mode{"hcaja", kHistoriaDeCaja, " WHERE Caja = '{id}'"},
    Mode{"seleccion", kTodos, " WHERE Numero = {id}"},
    Mode{"pendientes",
         "SELECT"
         " Numero AS Ticket, Serie,Entrega as Entregado , Total as Importe , Fecha, Codigo AS "
         "Cliente, Razon_Social AS Empresa"
         " ,Forma_Pago AS Pago"
         " ,Caja, Empleado"
         " FROM "
         "Tickets",
         " WHERE(( Estado < 2) AND (Codigo='{id}'));"},
    Mode{"hpendientes",
         "SELECT"
         " Entrega as Entregado , Total as Importe , Numero AS Ticket, Serie, Fecha, Codigo AS "
         "Cliente, Razon_Social AS Empresa"
         " ,Forma_Pago AS Pago"
         " ,Caja, Empleado"
         " FROM H"
         "Tickets",
         " WHERE(( Estado < 2) AND (Codigo='{id}'));"},
    Mode{"deeliminardocumento", kTodos, "  Where ( Documento_P =  '{id}')"},
    Mode{"deeliminaralmacen", kTodos, "  Where ( Almacen =  '{id}')"},
    Mode{"ticketscierre",
         "SELECT"
         " Numero AS Ticket, Serie, Fecha, Codigo AS Cliente, Razon_Social AS Empresa"
         " , Forma_Pago AS Pago, Referencia"
         " , Entrega as Entregado , Total as Importe, Cambio, Facturado, Caja, Empleado"
         " FROM H"
         "Tickets",
         " WHERE ((Cierre={id}))"},
    Mode{"articulos",
         "SELECT HTickets.Fecha, HTickets_Lineas.Codigo, HTickets_Lineas.Descripcion, "
         "HTickets_Lineas.Cantidad"
         " FROM HTickets INNER JOIN HTickets_Lineas ON HTickets.Numero = HTickets_Lineas.Numero",
         " WHERE (((HTickets.Codigo)='{id}'));"},
    Mode{"vistarapidaopen", kTodos, " WHERE(( Estado < 2));"},
    Mode{"vistarapidaclose", kTodos, " WHERE(( Estado = 2));"},
    Mode{"vistarapidafact", kTodos, " WHERE(( Facturado > 2) AND( Estado = 2));"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr std::string_view kToday = "now";
constexpr std::array kMadeModes = {kToday};

constexpr ClassInfo kInfo = {.word = "Tickets",
                             .table = "Tickets",
                             .selector = selector::kDocuments,
                             .codeColumn = "Numero",
                             .modes = kModes,
                             .madeModes = kMadeModes,
                             .clearsDataMembers = true};

constexpr life_cycle::Table kTable = {
    .name = "Tickets", .key = "Numero", .copied = " SELECT Tickets.*"};

constexpr std::string_view kHistory = "HTickets";
constexpr std::string_view kUsualWarehouse = "001";

enum PaymentState : std::int16_t { kUnpaid = 0, kPartlyPaid = 1, kSettled = 2 };

const Locale& locale() {
  return Apartment::current().locale();
}

}  // namespace

ClsTickets::ClsTickets() : TicketTable(kInfo, kTable), logs_(std::make_unique<LogFiles>()) {}

ClsTickets::~ClsTickets() = default;

// "now" compares the date with today's day number in plain digits.
Statement ClsTickets::modeStatement(std::string& word, const Variant& id) const {
  if (word != kToday) return RecordClass::modeStatement(word, id);
  Statement statement(kTodos);
  statement << " WHERE ((Fecha="
            << spliced(format(Apartment::current().clock().today(), "#", locale()))
            << ") AND (Caja='" << spliced(joined(id)) << "'));";
  return statement;
}

void ClsTickets::GetConnectionStrToRpt(InOut<std::string> sDbtype, InOut<std::string> sDataSource,
                                       InOut<std::string> sCatalog, InOut<std::string> sUser,
                                       InOut<std::string> sPasw, bool bHistorico) const {
  reportConnection(bHistorico ? selector::kHistoric : info().selector, *sDbtype, *sDataSource,
                   *sCatalog, *sUser, *sPasw);
}

// ---------------------------------------------------------------------------------------------
// The current row

namespace {

void convert(const Variant& from, double& to) {
  to = from.toDouble(locale());
}
void convert(const Variant& from, std::string& to) {
  to = from.toText(locale());
}
void convert(const Variant& from, bool& to) {
  to = from.toDouble(locale()) != 0;
}

}  // namespace

template <typename Result>
Result ClsTickets::quietly(std::string_view column) const {
  Result result{};
  try {
    convert(primary().Field(column).Value(), result);
  } catch (const Error&) {
    // Forms ask for these while they have no row yet.
  }
  return result;
}

bool ClsTickets::bEsPedido() const {
  return quietly<bool>("Doc_E");
}
std::string ClsTickets::sQAlmacen() const {
  return quietly<std::string>("Almacén");
}
bool ClsTickets::bEstaFacturado() const {
  return quietly<bool>("facturado");
}
double ClsTickets::iQNumero() const {
  return quietly<double>("Ticket");
}
double ClsTickets::iQDocumento() const {
  return quietly<double>("Doc_E");
}
double ClsTickets::iQDocumentoF() const {
  return quietly<double>("Doc_F");
}
double ClsTickets::dQTotal() const {
  return quietly<double>("Total");
}
double ClsTickets::dQCambio() const {
  return quietly<double>("Cambio");
}
double ClsTickets::dQEntrega() const {
  return quietly<double>("Entrega");
}
std::string ClsTickets::sQFpago() const {
  return quietly<std::string>("Pago");
}
std::string ClsTickets::sQReferencia() const {
  return quietly<std::string>("Referencia");
}
bool ClsTickets::bEsIvaIncluido() const {
  return quietly<bool>("Impuesto_Incluido");
}

void ClsTickets::dQEntrega(double dEntrega) {
  primary().Field("Entrega").Value(dEntrega);
}

void ClsTickets::UpdateIncTax(bool vIdIncTax) {
  primary().Field("Impuesto_Incluido").Value(vIdIncTax);
}

// A ticket of nothing is settled before the amount delivered is looked at, a negative one too.
void ClsTickets::UpdateState(double dEntrega, double dTotal) {
  PaymentState state = kPartlyPaid;
  if (dEntrega - dTotal >= 0 || dTotal == 0) {
    state = kSettled;
  } else if (dEntrega <= 0) {
    state = kUnpaid;
  }
  Recordset& rows = primary();
  rows.Field("Estado").Value(static_cast<std::int16_t>(state));
  rows.Field("Pagado").Value(state == kSettled);
}

void ClsTickets::AddNew(bool bDefVal, bool /*bIsInvoiced*/) {
  Recordset& rows = primary();
  rows.AddNew();
  if (!bDefVal) return;
  rows.Field(0).Value(NuevoCodigo("A"));
  rows.Field("Fecha").Value(format(Apartment::current().clock().today(), "Short Date", locale()));
  const std::int32_t zero = 0;
  for (const std::string_view amount :
       {"Valor", "Total_divisa", "descuento", "descuento_pp", "Base", "Portes", "Impuesto",
        "Importe_Impuestos", "Recargo", "Importe_Recargo", "irpf", "importe_irpf", "Total"}) {
    rows.Field(amount).Value(zero);
  }
  rows.Field("Impreso").Value(false);
  for (const std::string_view mark :
       {"Estado", "Entrega", "Contabilizado", "Cierre", "Facturado", "Doc_F", "Doc_E"}) {
    rows.Field(mark).Value(zero);
  }
}

// ---------------------------------------------------------------------------------------------
// Numbers

RecordsetPtr ClsTickets::greatest(Statement::Constant table, std::string_view serie,
                                  ConnectionPtr& objCn) const {
  Statement statement("SELECT MAX(Numero) AS Nuevo_Codigo FROM ");
  statement << table << " WHERE Serie = '" << spliced(serie) << "'";
  return read(statement, objCn);
}

// A number that stands in history only must not be given again, so both tables count. The width is
// looked at in history alone.
Variant ClsTickets::NuevoCodigo(std::string_view serie, ObjCn objCn) const {
  const Variant live = successor(greatest(info().table, serie, *objCn)->Field(0).Value());

  const RecordsetPtr rows = greatest(kHistory, serie, *objCn);
  const Field column = rows->Field(0);
  const Variant old = column.Value();
  const Variant next = successor(old);
  const bool fits = text::length(joined(next)) <= static_cast<std::size_t>(column.DefinedSize());
  const Variant past = old.isNull() || fits ? next : old;

  return asNumber(past) > asNumber(live) ? past : live;
}

bool ClsTickets::CodigoLibre(const Variant& vId, ObjCn objCn) const {
  return !anyRow(withId("SELECT Numero"
                        " FROM "
                        "Tickets"
                        " WHERE Numero = {id}",
                        vId),
                 *objCn) &&
         !anyRow(withId("SELECT Numero"
                        " FROM H"
                        "Tickets"
                        " WHERE Numero = {id}",
                        vId),
                 *objCn);
}

void ClsTickets::GetNumerador(InOut<double> dSerieA, InOut<double> dSerieB, InOut<double> dSerieC,
                              ObjCn objCn) const {
  clsNumeradores().GetNewNum("Tickets", *dSerieA, *dSerieB, *dSerieC, *objCn);
}

void ClsTickets::SetNumerador(InOut<double> dSerieA, InOut<double> dSerieB, InOut<double> dSerieC,
                              ObjCn objCn) const {
  clsNumeradores().SetNewNum("Tickets", *dSerieA, *dSerieB, *dSerieC, *objCn, "");
}

// The counters lie in another database than the tickets: these are read on a connection of their
// own, and `objCn` is for the counters alone.
void ClsTickets::UpdateNumerador(ObjCn objCn) const {
  struct Series {
    std::string_view letter;
    double first;  // what a series without tickets counts as
  };
  constexpr std::array<Series, 3> kSeries = {{{"A", 0}, {"B", 10000}, {"C", 25000}}};
  std::array<double, 3> last{};
  ConnectionPtr documents;
  for (std::size_t i = 0; i < kSeries.size(); ++i) {
    const auto [letter, first] = kSeries[i];
    for (const Statement::Constant table : {info().table, Statement::Constant(kHistory)}) {
      const Variant found = greatest(table, letter, documents)->Field(0).Value();
      last[i] = std::max(last[i], found.isNull() ? first : asNumber(found));
    }
  }
  SetNumerador(last[0], last[1], last[2], *objCn);
}

// ---------------------------------------------------------------------------------------------
// Connections

ConnectionPtr ClsTickets::IniciaConnection() const {
  mustBeHome();
  return DataSession().OpenConnection(info().selector);
}

void ClsTickets::SetConnection() {
  setConnection(IniciaConnection());
}

void ClsTickets::CnnClose() {
  GetConnection()->Close();
}

// ---------------------------------------------------------------------------------------------
// Single values, and the marks that other documents leave

std::string ClsTickets::GetAlmacen(const Variant& vId, ObjCn objCn) const {
  const Variant found = lookUp(withId("SELECT"
                                      " Almacen"
                                      " FROM "
                                      "Tickets"
                                      " WHERE Numero = {id}",
                                      vId),
                               "Almacen", *objCn);
  return found.isEmpty() ? std::string(kUsualWarehouse) : joined(found);
}

std::int16_t ClsTickets::GetState(const Variant& vId, ObjCn objCn) const {
  return lookUp(withId("SELECT Numero,"
                       " Estado"
                       " FROM "
                       "Tickets"
                       " WHERE Numero = {id}",
                       vId),
                "Estado", *objCn)
      .toInt16(locale());
}

std::int16_t ClsTickets::GetIncTax(const Variant& vId, ObjCn objCn) const {
  return lookUp(withId("SELECT Numero,"
                       " Impuesto_Incluido"
                       " FROM "
                       "Tickets"
                       " WHERE Numero = {id}",
                       vId),
                "Impuesto_Incluido", *objCn)
      .toInt16(locale());
}

void ClsTickets::ConvertirSerie(const Variant& vId, const Variant& vNewId, std::string_view sSerie,
                                ObjCn cnnActive) const {
  Statement statement(
      "UPDATE "
      "Tickets"
      " SET Numero = ");
  statement << spliced(joined(vNewId)) << " , Serie = '" << spliced(sSerie)
            << "' WHERE(Numero = " << spliced(joined(vId)) << ")";
  write(statement, *cnnActive);
}

void ClsTickets::FacturarDocumento(const Variant& vId, std::int16_t iFacturado,
                                   const Variant& vIdFac, ObjCn cnnActive) const {
  Statement statement("UPDATE  Tickets  SET Facturado = ");
  statement << spliced(std::to_string(iFacturado)) << " , Doc_F = " << spliced(joined(vIdFac))
            << " WHERE(Numero = " << spliced(joined(vId)) << ")";
  write(statement, *cnnActive);
}

void ClsTickets::CancelarFacturacion(const Variant& vId, std::int16_t iFacturado,
                                     ObjCn cnnActive) const {
  Statement statement("UPDATE  Tickets SET Facturado = 0 , Doc_F = 0 WHERE(Numero = ");
  statement << spliced(joined(vId)) << " and Facturado = " << spliced(std::to_string(iFacturado))
            << ")";
  write(statement, *cnnActive);
}

// Twice would divide twice. The divisor is a text with a decimal comma, so a shop without one
// divides by another number.
void ClsTickets::ActualizarEuros(ObjCn cnnActive) const {
  write(euros::nullToZero("Tickets", "Base"), *cnnActive);
  write(euros::nullToZero("Tickets", "Gastos"), *cnnActive);
  write(Statement("UPDATE  "
                  "Tickets"
                  " SET Base = Format([Base]/'166,386','Currency'), Gastos = "
                  "Format([Gastos]/'166,386','Currency')"
                  ", Importe_Impuestos = Format([Importe_Impuestos]/'166,386','Currency'), "
                  "Importe_Recargo = Format([Importe_Recargo]/'166,386','Currency')"
                  ", Importe_Irpf = Format([Importe_Irpf]/'166,386','Currency')"
                  ", Total = Format([Total]/'166,386','Currency'), Entrega = "
                  "Format([Entrega]/'166,386','Currency'), Cambio = "
                  "Format([Cambio]/'166,386','Currency');"),
        *cnnActive);
}

// ---------------------------------------------------------------------------------------------
// Logs and text files

std::int16_t ClsTickets::OpenLog(std::string_view sAction) {
  // Behind a separator the name would be that of another file, which opening empties.
  if (sAction.find_first_of("/\\") != std::string_view::npos) {
    raise(errors::kInvalidCall, kInfo.word,
          "\"" + std::string(sAction) + "\" is no action but a path");
  }
  std::string name("Log");
  name.append(sAction).append("Tickets.txt");
  return logs_->open(DataSession().ReportPath(name));
}

void ClsTickets::CloseLog(std::int16_t iNum) {
  logs_->close(iNum);
}

void ClsTickets::SaveLog(std::int16_t iNum, std::string_view sText) {
  std::string line = format(Apartment::current().clock().now(), "HH:MM:SS", locale());
  line.append(" . ").append(sText);
  logs_->writeLine(iNum, line);
}

std::string ClsTickets::GetTxtFile() const {
  return reportFile("Tickets.txt");
}

std::string ClsTickets::GetTxtFileDisp() const {
  return reportFile("dTickets.txt");
}

std::string ClsTickets::GetTxtFileDraw() const {
  return reportFile("dwTickets.txt");
}

}  // namespace tavelor
