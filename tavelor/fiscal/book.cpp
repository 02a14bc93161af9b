// SPDX-License-Identifier: MIT
// Adds to the chains in the documents database.
#include "tavelor/fiscal/book.hpp"

#include <cmath>
#include <map>

#include <fmt/format.h>

#include "tavelor/fiscal/record_xml.hpp"
#include "tavelor/fiscal/rules.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::fiscal {

namespace {

constexpr std::int32_t kChainBegins = 1;
constexpr std::int64_t kClocksDiffer = 60;        // seconds that the law lets a clock be wrong by
constexpr std::int64_t kSummaryEvery = 6 * 3600;  // seconds
constexpr std::int64_t kMoneyPerCent = Currency::kScale / 100;

Literal money(const Amount& amount) {
  return sqlLiteral(Currency::fromScaled(amount.cents() * kMoneyPerCent));
}

/// "Null" for nothing.
template <typename Value>
Literal orNull(const std::optional<Value>& value) {
  return value ? sqlLiteral(*value) : sqlLiteral(Variant(Null()));
}

StoredRegistration storedAt(const Rows& row) {
  return {row.whole("Cadena"), row.whole("Posicion"),
          std::get<Registration>(readRecord(row.text("Registro")))};
}

Rows chainOf(const std::string& taxpayer, const std::string& installation,
             const ConnectionPtr& documents) {
  Statement statement("SELECT * FROM Fiscal_Cadenas WHERE NIF = ");
  statement << sqlText(taxpayer) << " AND Instalacion = " << sqlText(installation);
  return {selector::kDocuments, statement, documents};
}

Amount amountAt(const Rows& row, std::string_view column) {
  return Amount::of(row.number(column));
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Opening

std::unique_ptr<Book> Book::open(const ConnectionPtr& documents) {
  const Installation& installation = Apartment::current().installation();
  if (std::optional<Settings> settings = readSettings(installation)) {
    return std::make_unique<Book>(std::move(*settings), documents);
  }
  const Rows chains(selector::kDocuments, Statement("SELECT TOP 1 NIF FROM Fiscal_Cadenas"),
                    documents);
  if (chains.hasRow()) {
    raise(errors::kFileNotFound, "Fiscal",
          fmt::format("{} is missing, and {} has records already: put the file back, or make it "
                      "again with `tavelor fiscal setup`.",
                      settingsFile(installation), chains.text("NIF")));
  }
  return nullptr;
}

Book::Book(Settings settings, ConnectionPtr documents)
    : settings_(std::move(settings)), documents_(std::move(documents)) {}

const std::string& Book::seriesOf(InvoiceKind kind) const {
  if (isRectifying(kind)) return settings_.series.rectifying;
  return kind == InvoiceKind::kSimplified ? settings_.series.tickets : settings_.series.invoices;
}

// ---------------------------------------------------------------------------------------------
// The chain's end

ChainEnd Book::end() const {
  ChainEnd end;
  const Rows row = chainOf(settings_.taxpayer.number, settings_.system.installation, documents_);
  if (!row.hasRow()) return end;
  end.chain = row.whole("Codigo");
  end.isSending = row.flag("Envia");
  end.records = row.whole("Registros");
  if (end.records > 0) {
    end.last =
        Link{{settings_.taxpayer.number, row.text("Serie_Numero"), row.day("Fecha_Expedicion")},
             row.text("Huella")};
    end.moment = row.text("Momento");
    end.seal = row.text("Sello");
  }
  end.events = row.whole("Eventos");
  if (end.events > 0) {
    end.lastEvent = EventLink{eventKindOf(row.text("Evento_Tipo")).value_or(EventKind::kOther),
                              row.text("Evento_Momento"), row.text("Evento_Huella")};
    end.eventSeal = row.text("Evento_Sello");
  }
  return end;
}

/// The end of a chain that is there: made where it was not, and with the events of a system that
/// begins to send, or ceases to.
ChainEnd Book::begun(ChainEnd end) {
  const bool isSending = settings_.mode == Mode::kSending;
  const bool isNew = end.chain == 0;
  if (isNew) {
    const Rows last(selector::kDocuments,
                    Statement("SELECT Max(Codigo) AS Ultimo FROM Fiscal_Cadenas"), documents_);
    end.chain = last.whole("Ultimo") + kChainBegins;
    end.isSending = isSending;
    Statement statement("INSERT INTO Fiscal_Cadenas (Codigo, NIF, Instalacion, Envia) VALUES (");
    statement << sqlLiteral(end.chain) << ", " << sqlText(settings_.taxpayer.number) << ", "
              << sqlText(settings_.system.installation) << ", " << sqlLiteral(isSending) << ")";
    execute(statement);
  }
  if (isNew ? !isSending : end.isSending != isSending) {
    addEvent(end, isSending ? EventKind::kEnd : EventKind::kBegin, {}, {});
  }
  return end;
}

/// Nobody else may have written the end since it was read.
void Book::store(const ChainEnd& before, const ChainEnd& after) {
  const auto textOrNull = [](bool isThere, std::string_view text) {
    return isThere ? sqlText(text) : sqlLiteral(Variant(Null()));
  };
  const bool hasLast = after.last.has_value();
  const bool hasEvent = after.lastEvent.has_value();
  Statement statement("UPDATE Fiscal_Cadenas SET Envia = ");
  statement << sqlLiteral(settings_.mode == Mode::kSending)
            << ", Registros = " << sqlLiteral(after.records) << ", Serie_Numero = "
            << textOrNull(hasLast, hasLast ? after.last->invoice.number : std::string())
            << ", Fecha_Expedicion = "
            << (hasLast ? sqlLiteral(after.last->invoice.day) : sqlLiteral(Variant(Null())))
            << ", Momento = " << textOrNull(hasLast, after.moment)
            << ", Huella = " << textOrNull(hasLast, hasLast ? after.last->hash : std::string())
            << ", Sello = " << textOrNull(hasLast, after.seal)
            << ", Eventos = " << sqlLiteral(after.events) << ", Evento_Tipo = "
            << textOrNull(hasEvent, hasEvent ? word(after.lastEvent->kind) : std::string_view())
            << ", Evento_Momento = "
            << textOrNull(hasEvent, hasEvent ? after.lastEvent->moment : std::string())
            << ", Evento_Huella = "
            << textOrNull(hasEvent, hasEvent ? after.lastEvent->hash : std::string())
            << ", Evento_Sello = " << textOrNull(hasEvent, after.eventSeal)
            << " WHERE Codigo = " << sqlLiteral(after.chain)
            << " AND Registros = " << sqlLiteral(before.records)
            << " AND Eventos = " << sqlLiteral(before.events);
  if (documents_->Execute(statement) == 1) return;
  raise(errors::kTryAgain, "Fiscal",
        "Another program has added to the chain of records meanwhile.");
}

Statement Book::ofSeries(const std::string& series) const {
  Statement where(" WHERE NIF = ");
  where << sqlText(settings_.taxpayer.number) << " AND Serie = " << sqlText(series);
  return where;
}

std::optional<std::int32_t> Book::lastNumber(InvoiceKind kind) const {
  Statement select("SELECT Ultimo FROM Fiscal_Series");
  select << ofSeries(seriesOf(kind));
  const Rows row(selector::kDocuments, select, documents_);
  return row.hasRow() ? std::optional(row.whole("Ultimo")) : std::nullopt;
}

std::int32_t Book::nextNumber(InvoiceKind kind) {
  const std::string& series = seriesOf(kind);
  const std::optional<std::int32_t> last = lastNumber(kind);
  if (!last) {
    Statement insert("INSERT INTO Fiscal_Series (NIF, Serie, Ultimo) VALUES (");
    insert << sqlText(settings_.taxpayer.number) << ", " << sqlText(series) << ", 1)";
    execute(insert);
    return 1;
  }
  Statement update("UPDATE Fiscal_Series SET Ultimo = ");
  update << sqlLiteral(*last + 1) << ofSeries(series);
  execute(update);
  return *last + 1;
}

/// Now. Clocks of two tills may differ by what the law lets them: then time stands still, as no
/// record may be older than the one before it. A clock that is further behind is told as it is, and
/// found by a check.
std::string Book::moment(const std::string& last) const {
  std::string now = momentOf(Apartment::current().clock());
  if (last.empty()) return now;
  const std::int64_t behind = secondsOf(last).value_or(0) - secondsOf(now).value_or(0);
  return behind > 0 && behind <= kClocksDiffer ? last : now;
}

void Book::execute(const Statement& statement) {
  documents_->Send(statement);
}

// ---------------------------------------------------------------------------------------------
// Records

Registration Book::add(Registration record, std::optional<double> ticket) {
  const ChainEnd before = end();
  const std::string& series = seriesOf(record.kind);
  const std::int32_t number = nextNumber(record.kind);
  record.invoice.issuer = settings_.taxpayer.number;
  record.invoice.number = fmt::format("{}/{}", series, number);
  record.issuerName = settings_.taxpayer.name;
  return chained(before, std::move(record), series, number, ticket);
}

Cancellation Book::cancel(const std::string& number, std::optional<double> ticket) {
  Cancellation record;
  record.invoice = required(number).invoice;
  if (isRelated(record.invoice, "A")) {
    raise(errors::kInvalidCall, "Fiscal", fmt::format("The invoice {} is cancelled.", number));
  }
  return chained(end(), std::move(record), {}, 0, ticket);
}

Registration Book::correct(Registration record) {
  const Registration stored = required(record.invoice.number);
  if (isRelated(stored.invoice, "A")) {
    raise(errors::kInvalidCall, "Fiscal",
          fmt::format("The invoice {} is cancelled.", stored.invoice.number));
  }
  if (record.invoice != stored.invoice || record.total.cents() != stored.total.cents()) {
    raise(errors::kInvalidCall, "Fiscal",
          fmt::format("The invoice {} came to {} on {}: a correction cannot make another of it.",
                      stored.invoice.number, stored.total.text(), dayText(stored.invoice.day)));
  }
  record.isCorrection = true;
  record.issuerName = settings_.taxpayer.name;
  return chained(end(), std::move(record));
}

Cancellation Book::cancelAgain(const std::string& number, bool hasNoRecord) {
  Cancellation record;
  record.invoice = required(number).invoice;
  if (!isRelated(record.invoice, "A")) {
    raise(errors::kInvalidCall, "Fiscal", fmt::format("The invoice {} is not cancelled.", number));
  }
  record.hasNoRecord = hasNoRecord;
  record.wasRefused = true;
  return chained(end(), std::move(record));
}

Registration Book::required(const std::string& number) const {
  std::optional<StoredRegistration> stored = find(number);
  if (!stored) {
    raise(errors::kInvalidCall, "Fiscal", fmt::format("There is no invoice {}.", number));
  }
  return std::move(stored->record);
}

/// Gives a record its place at the end of the chain, and stores it there.
template <typename Any>
Any Book::chained(const ChainEnd& before, Any record, const std::string& series,
                  std::int32_t number, std::optional<double> ticket) {
  ChainEnd end = begun(before);
  record.chaining = {end.last, settings_.system, moment(end.moment)};
  record.chaining.hash = hasher_(hashedText(record));
  addRecord(end, record, series, number, ticket);
  summarise(end);
  store(before, end);
  return record;
}

void Book::addRecord(ChainEnd& end, const Record& record, const std::string& series,
                     std::int32_t number, std::optional<double> ticket) {
  const auto* const registration = std::get_if<Registration>(&record);
  const InvoiceId& invoice = fiscal::invoiceOf(record);
  const Chaining& chaining = chainingOf(record);
  const std::string xml = xmlOf(record);
  end.seal = hasher_(end.seal, xml);
  end.last = Link{invoice, chaining.hash};
  end.moment = chaining.moment;
  ++end.records;

  Statement statement(
      "INSERT INTO Fiscal_Registros (Cadena, Posicion, Tipo, Serie, Numero, Serie_Numero, "
      "Fecha_Expedicion, Cuota, Total, Momento, Huella, Sello, Ticket, Registro) VALUES (");
  statement << sqlLiteral(end.chain) << ", " << sqlLiteral(end.records) << ", "
            << sqlText(registration != nullptr ? word(registration->kind) : kCancellationWord)
            << ", ";
  if (!series.empty()) {
    statement << sqlText(series) << ", " << sqlLiteral(number) << ", ";
  } else {
    statement << "Null, Null, ";
  }
  statement << sqlText(invoice.number) << ", " << sqlLiteral(invoice.day) << ", ";
  if (registration != nullptr) {
    statement << money(registration->quota) << ", " << money(registration->total) << ", ";
  } else {
    statement << "Null, Null, ";
  }
  statement << sqlText(chaining.moment) << ", " << sqlText(chaining.hash) << ", "
            << sqlText(end.seal) << ", " << orNull(ticket) << ", " << sqlText(xml) << ")";
  execute(statement);

  const auto relate = [&](std::string_view relation, const InvoiceId& earlier) {
    Statement related(
        "INSERT INTO Fiscal_Relaciones (Cadena, Posicion, Tipo, NIF, Serie_Numero) VALUES (");
    related << sqlLiteral(end.chain) << ", " << sqlLiteral(end.records) << ", " << sqlText(relation)
            << ", " << sqlText(earlier.issuer) << ", " << sqlText(earlier.number) << ")";
    execute(related);
  };
  if (registration == nullptr) return relate("A", invoice);
  for (const InvoiceId& earlier : registration->rectified) relate("R", earlier);
  for (const InvoiceId& earlier : registration->replaced) relate("S", earlier);
}

std::optional<StoredRegistration> Book::find(const std::string& number) const {
  Statement statement(
      "SELECT R.Cadena, R.Posicion, R.Registro FROM Fiscal_Registros AS R INNER JOIN "
      "Fiscal_Cadenas AS C ON R.Cadena = C.Codigo WHERE R.Serie_Numero = ");
  statement << sqlText(number) << " AND R.Tipo <> " << sqlText(kCancellationWord)
            << " AND C.NIF = " << sqlText(settings_.taxpayer.number)
            << " ORDER BY R.Cadena DESC, R.Posicion DESC";
  const Rows row(selector::kDocuments, statement, documents_);
  if (!row.hasRow()) return std::nullopt;
  return storedAt(row);
}

std::optional<StoredRegistration> Book::invoiceOf(double ticket) const {
  std::optional<StoredRegistration> issued = issuedWith(ticket);
  if (!issued) return issued;
  const std::string replacement = numberInPlaceOf(issued->record.invoice);
  return replacement.empty() ? issued : find(replacement);
}

std::string Book::numberInPlaceOf(const InvoiceId& invoice) const {
  Statement statement(
      "SELECT R.Serie_Numero FROM Fiscal_Registros AS R INNER JOIN Fiscal_Relaciones AS S ON "
      "R.Cadena = S.Cadena AND R.Posicion = S.Posicion WHERE S.Serie_Numero = ");
  statement << sqlText(invoice.number) << " AND S.NIF = " << sqlText(invoice.issuer)
            << " AND S.Tipo = 'S'";
  const Rows row(selector::kDocuments, statement, documents_);
  return row.hasRow() ? row.text("Serie_Numero") : std::string();
}

std::optional<StoredRegistration> Book::issuedWith(double ticket) const {
  // An earlier taxpayer of the shop may have given the same number to another ticket.
  Statement statement(
      "SELECT R.Serie_Numero FROM Fiscal_Registros AS R INNER JOIN Fiscal_Cadenas AS C ON "
      "R.Cadena = C.Codigo WHERE R.Ticket = ");
  statement << sqlLiteral(ticket)
            << " AND R.Serie Is Not Null AND C.NIF = " << sqlText(settings_.taxpayer.number);
  const Rows row(selector::kDocuments, statement, documents_);
  return row.hasRow() ? find(row.text("Serie_Numero")) : std::nullopt;
}

std::optional<double> Book::ticketOf(const InvoiceId& invoice) const {
  // A correction is a record without a ticket of its own.
  Statement statement(
      "SELECT R.Ticket FROM Fiscal_Registros AS R INNER JOIN Fiscal_Cadenas AS C ON R.Cadena = "
      "C.Codigo WHERE R.Serie_Numero = ");
  statement << sqlText(invoice.number) << " AND C.NIF = " << sqlText(invoice.issuer)
            << " AND R.Serie Is Not Null AND R.Ticket Is Not Null";
  const Rows row(selector::kDocuments, statement, documents_);
  return row.hasRow() ? std::optional(row.number("Ticket")) : std::nullopt;
}

bool Book::isRelated(const InvoiceId& invoice, std::string_view relation) const {
  Statement statement("SELECT Posicion FROM Fiscal_Relaciones WHERE Serie_Numero = ");
  statement << sqlText(invoice.number) << " AND NIF = " << sqlText(invoice.issuer)
            << " AND Tipo = " << sqlText(relation);
  return documents_->anyRow(statement);
}

// ---------------------------------------------------------------------------------------------
// Events

void Book::log(EventKind kind, decltype(Event::data) data, std::string_view text) {
  if (settings_.mode == Mode::kSending) return;
  const ChainEnd before = this->end();
  ChainEnd end = begun(before);
  addEvent(end, kind, std::move(data), text);
  store(before, end);
}

void Book::addEvent(ChainEnd& end, EventKind kind, decltype(Event::data) data,
                    std::string_view text) {
  Event event;
  event.system = settings_.system;
  event.taxpayer = settings_.taxpayer;
  event.moment = moment(end.lastEvent ? end.lastEvent->moment : std::string());
  event.kind = kind;
  event.data = std::move(data);
  event.text = recordText(text, kLongestEventText);
  event.previous = end.lastEvent;
  event.hash = hasher_(hashedText(event));
  const std::string xml = xmlOf(event);
  end.eventSeal = hasher_(end.eventSeal, xml);
  end.lastEvent = EventLink{kind, event.moment, event.hash};
  ++end.events;
  Statement statement(
      "INSERT INTO Fiscal_Eventos (Cadena, Posicion, Tipo, Momento, Huella, Sello, Registros, "
      "Evento) VALUES (");
  statement << sqlLiteral(end.chain) << ", " << sqlLiteral(end.events) << ", "
            << sqlText(word(kind)) << ", " << sqlText(event.moment) << ", " << sqlText(event.hash)
            << ", " << sqlText(end.eventSeal) << ", " << sqlLiteral(end.records) << ", "
            << sqlText(xml) << ")";
  execute(statement);
}

/// Every six hours of work the log tells what was done since it last did.
void Book::summarise(ChainEnd& end) {
  if (settings_.mode == Mode::kSending) return;
  const std::int64_t now = secondsOf(end.moment).value_or(0);
  if (now < nextSummary_) return;
  Statement newest("SELECT Max(Posicion) AS Ultima FROM Fiscal_Eventos WHERE Cadena = ");
  newest << sqlLiteral(end.chain) << " AND Tipo IN ('01', '10')";
  Statement statement("SELECT Posicion, Momento, Registros FROM Fiscal_Eventos WHERE Cadena = ");
  statement << sqlLiteral(end.chain) << " AND Posicion = "
            << sqlLiteral(Rows(selector::kDocuments, newest, documents_).whole("Ultima"));
  const Rows last(selector::kDocuments, statement, documents_);
  const std::int64_t due = secondsOf(last.text("Momento")).value_or(0) + kSummaryEvery;
  nextSummary_ = std::max(due, now);
  if (now < due) return;

  Summary summary;
  std::map<std::string, std::uint64_t> kinds;
  Statement events("SELECT Tipo, Count(*) AS Cuantos FROM Fiscal_Eventos WHERE Cadena = ");
  events << sqlLiteral(end.chain) << " AND Posicion >= " << sqlLiteral(last.whole("Posicion"))
         << " GROUP BY Tipo ORDER BY Tipo";
  for (Rows rows(selector::kDocuments, events, documents_); rows.hasRow(); rows.next()) {
    summary.events.emplace_back(eventKindOf(rows.text("Tipo")).value_or(EventKind::kOther),
                                static_cast<std::uint64_t>(rows.number("Cuantos")));
  }
  const auto where = [&](Statement::Constant select, Statement::Constant place,
                         Statement::Constant toCancellation) {
    Statement records(select);
    records << " FROM Fiscal_Registros WHERE Cadena = " << sqlLiteral(end.chain) << " AND Posicion "
            << place << sqlLiteral(last.whole("Registros") + 1);
    if (!toCancellation.text().empty()) {
      records << " AND Tipo " << toCancellation << sqlText(kCancellationWord);
    }
    return Rows(selector::kDocuments, records, documents_);
  };
  const Rows sums = where("SELECT Count(*) AS Cuantos, Sum(Cuota) AS Cuotas, Sum(Total) AS Totales",
                          ">= ", "<> ");
  summary.registrations = static_cast<std::uint64_t>(sums.number("Cuantos"));
  summary.quota = amountAt(sums, "Cuotas");
  summary.total = amountAt(sums, "Totales");
  const Rows cancelled = where("SELECT Count(*) AS Cuantos", ">= ", "= ");
  summary.cancellations = static_cast<std::uint64_t>(cancelled.number("Cuantos"));
  const Rows first = where("SELECT Serie_Numero, Fecha_Expedicion, Huella", "= ", "");
  if (first.hasRow()) {
    summary.first =
        Link{{settings_.taxpayer.number, first.text("Serie_Numero"), first.day("Fecha_Expedicion")},
             first.text("Huella")};
    summary.last = end.last;
  }
  addEvent(end, EventKind::kSummary, std::move(summary), {});
  nextSummary_ = now + kSummaryEvery;
}

}  // namespace tavelor::fiscal
