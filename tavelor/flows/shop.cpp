// SPDX-License-Identifier: MIT
// A sale, from top to bottom, and under it the steps that it takes.
#include "tavelor/flows/shop.hpp"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "tavelor/flows/customers.hpp"
#include "tavelor/flows/shop_inner.hpp"
#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/reference/cajas.hpp"
#include "tavelor/reference/familias.hpp"

namespace tavelor::flows {

namespace {

constexpr std::string_view kTariff = "A";

/// Of "10:32"; midnight for another text.
Date timeOf(const std::string& text) {
  return parseSqlDate(text).value_or(Date());
}

/// Code of the tax with that rate, "" where the shop has none.
std::string taxCode(double rate, ConnectionPtr& connection) {
  Statement statement("SELECT Codigo FROM Tipos_Impuesto WHERE Impuesto = ");
  statement << spliced(sqlNumber(rate));
  const Rows rows(selector::kMain, statement, connection);
  return rows.hasRow() ? rows.text("Codigo") : std::string();
}

/// As members take it.
std::string lotText(const SaleLine& line) {
  return line.lot.empty() ? std::string(kNoLot) : doubledQuotes(line.lot);
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// What callers see

Shop::Shop() : inner_(std::make_unique<Inner>()) {}
Shop::~Shop() = default;

void Shop::openTills(const std::vector<std::string>& tills) {
  inner_->untilThrough([&](Before /*before*/) { inner_->openTills(tills); });
}
std::vector<Unpriced> Shop::price(Sale& sale) {
  return throughOutages([&] {
    Sale priced = sale;
    std::vector<Unpriced> unpriced = inner_->price(priced);
    sale = std::move(priced);
    return unpriced;
  });
}
SaleLine Shop::price(const PriceQuestion& question) {
  return throughOutages([&] { return inner_->price(question); });
}
std::optional<double> Shop::sell(const Sale& sale) {
  return inner_->sell(sale);
}
double Shop::takeBack(const Return& what) {
  return inner_->takeBack(what, false).ticket;
}
Returned Shop::takeBackSafely(const Return& what) {
  return inner_->takeBack(what, false);
}
double Shop::cancel(const Return& what) {
  return inner_->takeBack(what, true).ticket;
}
std::string Shop::invoiceTickets(const InvoiceWish& wish) {
  return inner_->invoiceTickets(wish);
}
std::optional<Closing> Shop::close(const std::string& till, Date day) {
  return inner_->close(till, day, nullptr);
}
std::optional<Closing> Shop::close(const std::string& till, Date day, const CashCount& count) {
  return inner_->close(till, day, &count);
}
Recovered Shop::recover() {
  return inner_->untilThrough([&](Before /*before*/) { return inner_->recover(); });
}
Recovered Shop::recoverAll(Decision decision) {
  return inner_->recoverAll(decision);
}

// ---------------------------------------------------------------------------------------------
// A sale

Shop::Inner::Inner()
    : main_(DataSession().OpenConnection(selector::kMain)),
      tillsOverlap_(!DataSession().IsDbFile(selector::kMain)),
      prices_(main_),
      known_(main_) {
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
  invoices_ = fiscal::Book::open(documents_);
}

void Shop::Inner::openTills(const std::vector<std::string>& tills) {
  ClsCajas catalogue;
  catalogue.IniciaRs("todos");
  const RecordsetPtr rows = catalogue.DataMember("Primary");
  const auto add = [&](const std::string& till) {
    rows->Filter("Código = " + sqlText(till));
    const bool isThere = !rows->Eof();
    rows->Filter("");
    if (isThere) return;
    catalogue.AddNew(false);
    rows->Field("Código").Value(till);
    rows->Field("Descripción").Value("Caja " + till);
    catalogue.Update();
  };
  // Several programs may begin at once: what one reads here, no other adds meanwhile.
  const ConnectionPtr connection = catalogue.GetConnection();
  DatabaseTransaction transaction(connection);
  connection->HoldNumbersOf("Cajas");
  rows->Requery();
  std::for_each(tills.begin(), tills.end(), add);
  transaction.commit();
}

std::optional<double> Shop::Inner::sell(const Sale& given) {
  return untilThrough([&](Before before) { return sellOnce(given, before); });
}

/// The number comes late: from its reading to the commit no other till gets one. Stock comes before
/// it, articles, warehouses and lots each in the order of the articles' codes, so that two tills
/// never wait for each other in a circle.
///
/// A server is waited for as often whatever the lines: what a step reads is asked for with all that
/// the others read, in four groups, as each of them wants something that the one before it has
/// read, written or locked.
std::optional<double> Shop::Inner::sellOnce(const Sale& given, Before before) {
  refuseFaults(given);
  try {
    startCounters();
    BothDatabases transaction(main_, documents_);
    ReadAhead ahead(main_);
    const bool onCredit = isOnCredit(given);
    askForSale(given, onCredit, ahead);
    openTickets();
    // Of a run whose commit had no answer it is this very sale.
    const auto ticketOfBefore = [&] {
      return before == Before::kUnknown ? ticketOf(given.reference) : std::nullopt;
    };
    if (isThere(given)) return ticketOfBefore();
    if (onCredit) requireCredit(given);
    const Sale sale = withLots(given);
    const Invoice invoice = draftInvoice(sale);
    makeCustomer(sale);
    takeStock(sale, ahead);
    askForNumbers(sale, ahead);
    const Counters counters = startedCounters();
    // Tills that do not wait for each other may have sold it meanwhile, as may that commit.
    if (tillsOverlap_ && isThere(given)) return ticketOfBefore();
    Recovered recovered;
    const Counters settled = settle(counters, recovered);
    refuseLosses(recovered);
    askForTicket(sale, settled, onCredit, invoice, ahead);
    const Counters next = firstFree(settled);
    writeTicket(sale, next.a, onCredit);
    writeParts(sale, next.a, documents_);
    writeInvoice(invoice, next.a);
    writeMovements(sale, next.a);
    if (onCredit) charge(sale, next.a);
    useNumber(next);
    transaction.commit(BothDatabases::First::kDocuments);
    return next.a;
  } catch (...) {
    forget();  // some of it may be undone
    throw;
  }
}

/// What is read before the stock is taken.
void Shop::Inner::askForSale(const Sale& sale, bool onCredit, ReadAhead& ahead) {
  ahead.ask([&] { clsNumeradores::currentPeriod(); });
  ahead.ask([&] { openTickets(); });
  ahead.ask([&] { ticketOf(sale.reference); });
  if (onCredit) {
    ahead.ask([&] { creditOf(sale.customer); });
    ahead.ask([&] { ledger_.Saldo_actual(doubledQuotes(sale.customer), main_); });
  }
  ahead.ask([&] {
    if (!isKnownCustomer(sale.customer)) customers_.ExisteCli(doubledQuotes(sale.customer), main_);
  });
  for (const SaleLine& line : sale.lines) {
    ahead.ask([&] {
      std::string fault;
      lotOf(line, fault);
    });
    askForStock(line.code, ahead);
  }
}

void Shop::Inner::askForStock(const std::string& article, ReadAhead& ahead) {
  ahead.ask([&] {
    const std::string code = doubledQuotes(article);
    articles_.EsdeAlmacen(code, main_);
    articles_.RestaStock_V(code, main_);
  });
}

/// The counters, and behind their lock what somebody may have written until then.
void Shop::Inner::askForNumbers(const Sale& sale, ReadAhead& ahead) {
  ahead.ask([&] { storedCounters(); });
  ahead.ask([&] { clsNumeradores().Alb_Num_Simple(main_); });
  if (tillsOverlap_) ahead.ask([&] { ticketOf(sale.reference); });
  ahead.ask([&] { tickets_.NuevoCodigo(kSeries, documents_); });
}

/// What is read in writing the ticket and what belongs to it.
void Shop::Inner::askForTicket(const Sale& sale, const Counters& next, bool onCredit,
                               const Invoice& invoice, ReadAhead& ahead) {
  ahead.ask([&] { tickets_.CodigoLibre(next.a, documents_); });
  ahead.ask([&] {
    lines_.IniciaRs(documents_, "ninguno", "0");
    lines_.NuevoCodigo(documents_);
  });
  if (!sale.customer.empty()) {
    ahead.ask([&] { headers_.NuevoCodigo(documents_); });
  }
  if (!sale.comment.empty()) {
    ahead.ask([&] {
      comments_.IniciaRs(documents_, "ninguno", "0");
      comments_.NuevoCodigo(documents_);
    });
  }
  if (invoice.registration) {
    ahead.ask([&] {
      invoices_->end();
      invoices_->lastNumber(invoice.registration->kind);
    });
  }
  ahead.ask([&] { writeMovements(sale, next.a); });
  if (onCredit) {
    ahead.ask([&] { charge(sale, next.a); });
  }
  ahead.ask([&] { useNumber(next); });
}

void Shop::Inner::forget() {
  known_.forget();
  startedPeriod_.clear();
  knownArticles_.clear();
  knownCustomers_.clear();
}

/// Rows that were sold before, or that a failure left, go.
void Shop::Inner::openTickets() {
  const RecordsetPtr rows = tickets_.DataMember("Primary");
  rows->CancelBatch();
  rows->Requery();
}

bool Shop::Inner::isOnCredit(const Sale& sale) {
  const PaymentMethod* const method = known_.payment(sale.payment);
  return method != nullptr && method->isOnCredit;
}

void Shop::Inner::writeTicket(const Sale& sale, double ticket, bool onCredit) {
  lines_.IniciaRs(documents_, "ninguno", "0");
  for (const SaleLine& line : sale.lines) addLine(line, ticket);
  const SaleTaxes split = flows::taxesOf(sale);

  tickets_.AddNew(true);
  const RecordsetPtr row = tickets_.DataMember("Primary");
  const auto set = [&](std::string_view column, const Variant& content) {
    row->Field(column).Value(content);
  };
  const double total = sale.total();
  // Who hands over no more than the price, or gets money back, gets no change; who pays later hands
  // over nothing.
  const double paid = total < 0 ? total : std::max(handedOver(sale, known_), total);
  const double delivered = onCredit ? 0 : paid;
  set("Ticket", ticket);
  set("Serie", kSeries);
  set("Fecha", sale.day);
  set("Cliente", sale.customer);
  set("Empresa", sale.name);
  set("Tarifa", kTariff);
  set("Almacén", kWarehouse);
  set("Referencia", sale.reference);
  set("Pago", sale.payment);
  set("Base", split.base);
  set("Importe_Impuestos", split.tax);
  if (split.surcharge != 0) {
    set("Recargo", split.surchargeRate);
    set("Importe_Recargo", split.surcharge);
  }
  set("Total", total);
  set("Concepto", sale.time);
  set("Entrega", delivered);
  set("Cambio", onCredit ? 0 : roundHalfAway(delivered - total, 2));
  set("Caja", sale.till);
  set("Empleado", kNobody);
  tickets_.UpdateIncTax(true);
  tickets_.UpdateState(delivered, total);
  tickets_.Update();

  lines_.UpdateId(ticket);
  lines_.Update();
  writeHeader(sale, ticket);
}

void Shop::Inner::addLine(const SaleLine& line, double ticket) {
  lines_.AddNew(false);
  const RecordsetPtr row = lines_.DataMember("Primary");
  const auto set = [&](std::string_view column, const Variant& content) {
    row->Field(column).Value(content);
  };
  set("Código", line.code);
  set("Descripción", line.description);
  set("Cantidad", line.quantity);
  set("Precio", line.price);
  set("DTO", line.discount);
  set("IVA", line.tax);
  set("Importe", line.amount());
  set("Lote", line.lot.empty() ? kNoLot : std::string_view(line.lot));
  lines_.SetFamilia(line.family);
  lines_.UpdateadAffectCurrent(ticket);  // posts the row: SumaCol sees no row that is being added
}

void Shop::Inner::writeHeader(const Sale& sale, double ticket) {
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

/// What a sale comes to in the main database: whole with the ticket, or made again from it.
void Shop::Inner::book(const Sale& sale, double ticket, bool onCredit) {
  makeCustomer(sale);
  ReadAhead ahead(main_);
  takeStock(sale, ahead);
  writeMovements(sale, ticket);
  if (onCredit) charge(sale, ticket);
}

/// Takes what was sold off the article, its warehouse and its lot; returns go the other way.
/// Articles without stock keep none.
void Shop::Inner::takeStock(const Sale& sale, ReadAhead& ahead) {
  struct Taken {
    const SaleLine* line;
    std::string code;
    std::string lot;
    double units;
    bool isReturn;
  };
  std::vector<Taken> all;
  all.reserve(sale.lines.size());
  for (const SaleLine& line : sale.lines) {
    all.push_back({&line, doubledQuotes(line.code), lotText(line), std::abs(line.quantity),
                   line.quantity < 0});
  }
  std::stable_sort(all.begin(), all.end(),
                   [](const Taken& a, const Taken& b) { return a.line->code < b.line->code; });
  for (const Taken& each : all) {
    if (isThere(each.line->code)) continue;
    makeArticle(*each.line);
    askForStock(each.line->code, ahead);
  }
  for (const Taken& each : all) {
    articles_.DescargarStock_V(each.code, 0.0, each.units, each.isReturn, false, main_);
  }
  // Behind the locks of the articles: who sells the first of one at the same time has put it into
  // its warehouse by then.
  for (const Taken& each : all) {
    ahead.ask([&] { warehouses_.EstaEnElAlmacen(each.code, kWarehouse, main_); });
    if (each.lot == kNoLot) continue;
    ahead.ask([&] {
      lots_.ExisteLote(each.code, each.lot, main_);
      lots_.DescargaStockLote(each.code, each.lot, main_);
    });
  }
  for (const Taken& each : all) {
    warehouses_.DescargarStock_V(each.code, kWarehouse, 0.0, each.units, each.isReturn, false,
                                 main_);
    moveLot(each.code, each.lot, each.units, each.isReturn);
  }
}

/// One for each line, of articles without stock too.
void Shop::Inner::writeMovements(const Sale& sale, double ticket) {
  double movement = asNumber(movements_.NuevoCodigo("A", main_));
  std::size_t place = 0;
  for (const SaleLine& line : sale.lines) {
    const bool isReturn = line.quantity < 0;
    movements_.Insertar({.vId = movement++,
                         .dtFecha = sale.day,
                         .hHora = timeOf(sale.time),
                         .sAlmacen = std::string(kWarehouse),
                         .sCodigo = doubledQuotes(line.code),
                         .sLote = lotText(line),
                         .dCantidad = std::abs(line.quantity),
                         .dPrecio = line.netPrice(),
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

void Shop::Inner::makeArticle(const SaleLine& line) {
  const std::string code = doubledQuotes(line.code);
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
  Statement statement("UPDATE Articulos SET Restar_Stock = True WHERE Codigo = ");
  statement << sqlText(line.code);
  DataSession().Execute(selector::kMain, statement, main_);
  knownArticles_.emplace(line.code, false);
}

/// Nobody is one.
bool Shop::Inner::isKnownCustomer(const std::string& customer) const {
  return customer.empty() || knownCustomers_.contains(customer);
}

void Shop::Inner::makeCustomer(const Sale& sale) {
  if (isKnownCustomer(sale.customer)) return;
  const std::string code = doubledQuotes(sale.customer);
  if (!customers_.ExisteCli(code, main_)) {
    const std::string name = doubledQuotes(sale.name.empty() ? sale.customer : sale.name);
    flows::makeCustomer({.vId = code,
                         .sNombre = name,
                         .sRazonSocial = name,
                         .sProv = doubledQuotes(sale.place),
                         .bActivo = true,
                         .sTarifa = std::string(kTariff),
                         .sSerie = std::string(kSeries),
                         .stpcli = "Nuevo",
                         .objCn = main_},
                        "");
  }
  knownCustomers_.insert(sale.customer);
}

/// The customer owes what is sold on credit, and is owed what comes back.
void Shop::Inner::charge(const Sale& sale, double ticket) {
  const double total = sale.total();
  if (total == 0 || sale.customer.empty()) return;
  ledger_.Insertar({.sSerie = std::string(kSeries),
                    .sCodigo = doubledQuotes(sale.customer),
                    .dtFecha = sale.day,
                    .sConcepto = fmt::format("Ticket {}/{:.0f}", kSeries, ticket),
                    .sD_H = total > 0 ? "D" : "H",
                    .dDebe = std::max(total, 0.0),
                    .dHaber = std::max(-total, 0.0),
                    .iEstado = kTicketKind,
                    .vDoc_E = ticket,
                    .objCn = main_});
}

void Shop::Inner::makeFamily(const std::string& family) {
  const std::string code = doubledQuotes(family);
  const clsFamilias families;
  if (!family.empty() && !families.ExisteFam(code, main_)) families.Insertar(code, code, main_);
}

void Shop::Inner::useNumber(const Counters& next) {
  double a = next.a, b = next.b - 1, c = next.c - 1;
  tickets_.SetNumerador(a, b, c, main_);
}

}  // namespace tavelor::flows
