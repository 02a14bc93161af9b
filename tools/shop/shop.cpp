// SPDX-License-Identifier: MIT
// A sale, from top to bottom, and under it the steps that it takes.
#include "tools/shop/shop.hpp"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/reference/cajas.hpp"
#include "tavelor/reference/familias.hpp"
#include "tools/shop/shop_inner.hpp"

namespace tavelor::shop {

namespace {

constexpr std::string_view kWarehouse = "001";
constexpr std::string_view kTariff = "A";
constexpr std::string_view kNoLot = "0";

/// Of "10:32"; midnight for another text.
Date timeOf(const std::string& text) {
  return parseSqlDate(text).value_or(Date());
}

/// Code of the tax with that rate, "" where the shop has none.
std::string taxCode(double rate, ConnectionPtr& connection) {
  Statement statement("SELECT Codigo FROM Tipos_Impuesto WHERE Impuesto = ");
  statement << value(sqlNumber(rate));
  const Rows rows(selector::kMain, statement, connection);
  return rows.hasRow() ? rows.text("Codigo") : std::string();
}

}  // namespace

Shop::Shop() : main_(DataSession().OpenConnection(selector::kMain)) {
  double a = 0, b = 0, c = 0;
  try {
    tickets_.GetNumerador(a, b, c, main_);
  } catch (const Error& error) {
    if (error.number() != errors::kNoCurrentRecord) throw;
    throw Error(errors::kNoCurrentRecord, "Shop",
                fmt::format("There are no counters for the period \"{}\". `tavelor seed` makes "
                            "those of this year, `tavelor period` chooses others.",
                            clsNumeradores::currentPeriod()));
  }
  // The class brings the connection by which its rows are read and written; all others of the
  // family follow on it.
  tickets_.IniciaRs("seleccion", "0");
  documents_ = tickets_.GetConnection();
}

Shop::~Shop() = default;

void Shop::openTills(const std::vector<std::string>& tills) {
  ClsCajas catalogue;
  catalogue.IniciaRs("todos");
  const ConnectionPtr connection = catalogue.GetConnection();
  const RecordsetPtr rows = catalogue.DataMember("Primary");
  const auto add = [&](const std::string& till) {
    rows->Filter("Código = '" + doubledQuotes(till) + "'");
    const bool isThere = !rows->Eof();
    rows->Filter("");
    if (isThere) return;
    catalogue.AddNew(false);
    rows->Field("Código").Value(till);
    rows->Field("Descripción").Value("Caja " + till);
    catalogue.Update();
  };
  // Several programs may begin at once: what one reads here, no other adds meanwhile.
  connection->BeginTrans();
  try {
    rows->Requery();
    std::for_each(tills.begin(), tills.end(), add);
    connection->CommitTrans();
  } catch (...) {
    connection->RollbackTrans();
    throw;
  }
}

std::optional<double> Shop::sell(const Sale& sale) {
  if (sale.lines.empty()) {
    throw Error(errors::kInvalidCall, "Shop", fmt::format("Sale {} has no lines.", sale.reference));
  }
  if (sale.reference.empty()) {
    throw Error(errors::kInvalidCall, "Shop", "A sale needs a reference of its own.");
  }
  openTickets();
  try {
    BothDatabases transaction(main_, documents_);
    Recovered recovered;
    const Counters counters = startedCounters(transaction, recovered);
    refuseLosses(recovered);
    if (isSold(sale.reference)) return std::nullopt;
    const Counters next = settle(counters, recovered);
    refuseLosses(recovered);
    writeTicket(sale, next.a);
    moveStock(sale, next.a);
    useNumber(next);
    transaction.commit(BothDatabases::First::kDocuments);
    return next.a;
  } catch (...) {
    knownArticles_.clear();  // some of them may be undone
    throw;
  }
}

/// Rows that were sold before, or that a failure left, go.
void Shop::openTickets() {
  const RecordsetPtr rows = tickets_.DataMember("Primary");
  rows->CancelBatch();
  rows->Requery();
}

bool Shop::isSold(const std::string& reference) {
  for (const std::string_view table : {"Tickets", "HTickets"}) {
    Statement statement("SELECT Numero FROM ");
    statement << table << " WHERE Referencia = '" << value(doubledQuotes(reference)) << "'";
    if (Rows(selector::kDocuments, statement, documents_).hasRow()) return true;
  }
  return false;
}

void Shop::writeTicket(const Sale& sale, double ticket) {
  lines_.IniciaRs(documents_, "ninguno", "0");
  for (const SaleLine& line : sale.lines) addLine(line, ticket);
  double base = 0, tax = 0, surcharge = 0;
  lines_.SumaCol(true, base, tax, surcharge, false);

  tickets_.AddNew(true);
  const RecordsetPtr row = tickets_.DataMember("Primary");
  const auto set = [&](std::string_view column, const Variant& content) {
    row->Field(column).Value(content);
  };
  const double total = sale.total();
  // Who hands over no more than the price, or gets money back, gets no change.
  const double delivered = total < 0 ? total : std::max(sale.delivered, total);
  set("Ticket", ticket);
  set("Serie", kSeries);
  set("Fecha", sale.day);
  set("Cliente", sale.customer);
  set("Empresa", sale.name);
  set("Tarifa", kTariff);
  set("Almacén", kWarehouse);
  set("Referencia", sale.reference);
  set("Pago", sale.payment);
  set("Base", base);
  set("Importe_Impuestos", tax);
  set("Total", total);
  set("Concepto", sale.time);
  set("Entrega", delivered);
  set("Cambio", roundHalfAway(delivered - total, 2));
  set("Caja", sale.till);
  set("Empleado", kNobody);
  tickets_.UpdateIncTax(true);
  tickets_.UpdateState(delivered, total);
  tickets_.Update();

  lines_.UpdateId(ticket);
  lines_.Update();
  writeHeader(sale, ticket);
}

void Shop::addLine(const SaleLine& line, double ticket) {
  lines_.AddNew(false);
  const RecordsetPtr row = lines_.DataMember("Primary");
  const auto set = [&](std::string_view column, const Variant& content) {
    row->Field(column).Value(content);
  };
  set("Código", line.code);
  set("Descripción", line.description);
  set("Cantidad", line.quantity);
  set("Precio", line.price);
  set("DTO", 0.0);
  set("IVA", line.tax);
  set("Importe", line.amount());
  set("Lote", kNoLot);
  lines_.SetFamilia(line.family);
  lines_.UpdateadAffectCurrent(ticket);  // posts the row: SumaCol sees no row that is being added
}

void Shop::writeHeader(const Sale& sale, double ticket) {
  if (!sale.customer.empty()) {
    headers_.Insertar({.vId = headers_.NuevoCodigo(documents_),
                       .vNum = ticket,
                       .sNombre = doubledQuotes(sale.name.empty() ? sale.customer : sale.name),
                       .sProvincia = doubledQuotes(sale.place),
                       .objCn = documents_});
  }
  if (sale.comment.empty()) return;
  comments_.IniciaRs(documents_, "ninguno", "0");
  comments_.AddNew(true);
  const RecordsetPtr row = comments_.DataMember("Primary");
  row->Field("Código").Value(ticket);
  row->Field("Comentarios").Value(sale.comment);
  comments_.Update();
}

/// Takes what was sold off the article, its warehouse and its lot, and writes the movement; returns
/// go the other way. Articles without stock keep none, but their movements are written too.
void Shop::moveStock(const Sale& sale, double ticket) {
  double movement = number(movements_.NuevoCodigo("A", main_));
  std::size_t place = 0;
  for (const SaleLine& line : sale.lines) {
    makeArticle(line);
    const std::string code = doubledQuotes(line.code);
    const bool isReturn = line.quantity < 0;
    const double units = std::abs(line.quantity);
    articles_.DescargarStock_V(code, 0.0, units, isReturn, false, main_);
    warehouses_.DescargarStock_V(code, kWarehouse, 0.0, units, isReturn, false, main_);
    lots_.DescargarStock_V(code, kNoLot, 0.0, units, isReturn, main_);
    movements_.Insertar({.vId = movement++,
                         .dtFecha = sale.day,
                         .hHora = timeOf(sale.time),
                         .sAlmacen = std::string(kWarehouse),
                         .sCodigo = code,
                         .sLote = std::string(kNoLot),
                         .dCantidad = units,
                         .dPrecio = line.price,
                         .sReferencia = doubledQuotes(sale.reference),
                         .iMovimiento = isReturn ? std::int16_t{0} : std::int16_t{1},
                         .sSeccion = {},
                         .sEmpleado = {},
                         .iEstado = kTicketKind,
                         .dDoc_E = ticket,
                         .sCod_ID = std::to_string(++place),
                         .objCn = main_});
  }
}

void Shop::makeArticle(const SaleLine& line) {
  if (knownArticles_.contains(line.code)) return;
  const std::string code = doubledQuotes(line.code);
  if (!articles_.ExisteArt(code, main_)) {
    makeFamily(line.family);
    articles_.Insertar({.vId = code,
                        .sDescripcion = doubledQuotes(line.description),
                        .sSeccion = {},
                        .sFamilia = doubledQuotes(line.family),
                        .dPrecio = line.price,
                        .bDto = true,
                        .sImpuesto = doubledQuotes(taxCode(line.tax, main_)),
                        .bStock = -1,
                        .bActivo = true,
                        .sLista = {},
                        .objCn = main_});
    // A new article is one whose sales take no stock off; no member says otherwise.
    Statement statement("UPDATE Articulos SET Restar_Stock = True WHERE Codigo = '");
    statement << value(code) << "'";
    DataSession().Execute(selector::kMain, statement, main_);
  }
  knownArticles_.insert(line.code);
}

void Shop::makeFamily(const std::string& family) {
  const std::string code = doubledQuotes(family);
  const clsFamilias families;
  if (!family.empty() && !families.ExisteFam(code, main_)) families.Insertar(code, code, main_);
}

void Shop::useNumber(const Counters& next) {
  double a = next.a, b = next.b - 1, c = next.c - 1;
  tickets_.SetNumerador(a, b, c, main_);
}

}  // namespace tavelor::shop
