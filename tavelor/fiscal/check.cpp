// SPDX-License-Identifier: MIT
// Whether the chains are as they were written.
#include "tavelor/fiscal/check.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "tavelor/fiscal/chain_walk.hpp"
#include "tavelor/fiscal/record_xml.hpp"
#include "tavelor/fiscal/rules.hpp"
#include "tavelor/fiscal/words.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::fiscal {

namespace {

/// A column of a file holds what somebody has put into it. What is no whole number, or a greater
/// one, stands nowhere.
constexpr std::int32_t kLastPlace = std::numeric_limits<std::int32_t>::max();

constexpr std::array<Statement::Constant, 2> kTicketTables = {"Tickets", "HTickets"};

std::string nameOf(const InvoiceId& invoice) {
  return "the invoice " + invoice.number + " of " + dayText(invoice.day);
}

std::int64_t centsAt(const Rows& row, const ColumnKey& column) {
  return std::llround(row.number(column) * 100);
}

/// " WHERE column >= .. AND column < ..", for the days of a span.
Statement within(Statement::Constant column, const DaySpan& span, Date start = Date()) {
  Statement where(" WHERE ");
  where << column << " >= " << sqlLiteral(std::max(start, span.from.value_or(start)));
  if (span.to) where << " AND " << column << " < " << sqlLiteral(Date(span.to->days() + 1));
  return where;
}

/// Columns of a record, of which there are many to be looked at: found by their places.
enum RecordColumn : std::int32_t {
  kPosition,
  kKind,
  kSeries,
  kNumber,
  kNumberText,
  kIssued,
  kQuota,
  kTotal,
  kMoment,
  kHash,
  kSeal,
  kTicket,
  kXml
};
constexpr Statement::Constant kRecordColumns =
    "Posicion, Tipo, Serie, Numero, Serie_Numero, Fecha_Expedicion, Cuota, Total, Momento, Huella, "
    "Sello, Ticket, Registro";

/// A chain by its own row.
struct ChainRow {
  std::int32_t code = 0;
  std::string taxpayer;
  std::int32_t records = 0;
  std::string hash;
  std::string seal;
  std::int32_t events = 0;
  std::string eventHash;
  std::string eventSeal;
  bool isAlone = true;  ///< of its taxpayer, whose series run through all chains
};

/// An invoice by issuer and number: two taxpayers may have the same number.
std::string keyOf(const InvoiceId& invoice) {
  return invoice.issuer + '\n' + invoice.number;
}

/// What of a record is looked at together with others.
struct Recorded {
  std::int32_t position = 0;
  InvoiceId invoice;
  Date day;
  std::int64_t total = 0;
  bool isCancellation = false;
};

class Check {
 public:
  Check(const Book& book, const DaySpan& span)
      : documents_(book.documents()),
        start_(book.settings().start),
        span_(span),
        now_(secondsOf(momentOf(Apartment::current().clock())).value_or(0)) {}

  CheckReport run() {
    for (const ChainRow& chain : chains()) {
      lookAtRecords(chain);
      if (isWhole()) lookAtEvents(chain);
    }
    if (isWhole()) lookAtSeries();
    lookAtTickets();
    report_.total = Amount::ofCents(total_);
    return std::move(report_);
  }

 private:
  /// Whether all there is is looked at.
  bool isWhole() const { return !span_.from && !span_.to; }

  std::vector<ChainRow> chains() {
    std::vector<ChainRow> chains;
    for (Rows rows = read(Statement("SELECT * FROM Fiscal_Cadenas ORDER BY Codigo")); rows.hasRow();
         rows.next()) {
      chains.push_back({rows.whole("Codigo"), rows.text("NIF"), rows.whole("Registros"),
                        rows.text("Huella"), rows.text("Sello"), rows.whole("Eventos"),
                        rows.text("Evento_Huella"), rows.text("Evento_Sello")});
    }
    for (ChainRow& chain : chains) {
      chain.isAlone = std::ranges::count(chains, chain.taxpayer, &ChainRow::taxpayer) == 1;
    }
    return chains;
  }

  Rows read(const Statement& statement) const {
    return {selector::kDocuments, statement, documents_};
  }

  void tell(Flaw flaw, std::int32_t chain) {
    flaw.chain = chain;
    report_.flaws.push_back(std::move(flaw));
  }

  // -------------------------------------------------------------------------------------------
  // Records

  void lookAtRecords(const ChainRow& chain) {
    std::int32_t last = std::max(chain.records, greatest("Fiscal_Registros", chain.code));
    ChainPlace begin;
    if (!isWhole()) {
      Statement range(
          "SELECT Min(Posicion) AS Primera, Max(Posicion) AS Ultima FROM "
          "Fiscal_Registros");
      range << within("Fecha_Expedicion", span_) << " AND Cadena = " << sqlLiteral(chain.code);
      const Rows row = read(range);
      if (row.isNull("Primera")) return;
      last = row.whole("Ultima");
      const std::int64_t before = total_;
      begin = placeBefore(chain, row.whole("Primera"));
      total_ = before;
    }
    series_.clear();
    ChainWalk walk(
        [&](std::int32_t behind, std::int32_t upTo, const ChainWalk::Take& take) {
          records(chain, behind, upTo, take);
        },
        [&](const std::string& hash) { return find("Fiscal_Registros", chain.code, hash); }, now_);
    for (Flaw& flaw : walk.walk(begin, last)) tell(std::move(flaw), chain.code);
    report_.records += walk.seen();
    if (isWhole()) {
      lookAtEnd(chain.code, walk.place(), chain.records, chain.hash, chain.seal, "record");
    }
  }

  std::int32_t greatest(Statement::Constant table, std::int32_t chain) const {
    Statement statement("SELECT Max(Posicion) AS Ultima FROM ");
    statement << table << " WHERE Cadena = " << sqlLiteral(chain)
              << " AND Posicion <= " << sqlLiteral(kLastPlace);
    return read(statement).whole("Ultima");
  }

  std::int32_t find(Statement::Constant table, std::int32_t chain, const std::string& hash) const {
    Statement statement("SELECT Posicion FROM ");
    statement << table << " WHERE Cadena = " << sqlLiteral(chain)
              << " AND Huella = " << sqlText(hash) << " AND Posicion <= " << sqlLiteral(kLastPlace);
    const Rows row = read(statement);
    return row.hasRow() ? row.whole("Posicion") : 0;
  }

  /// What the first record of a span follows.
  ChainPlace placeBefore(const ChainRow& chain, std::int32_t first) {
    ChainPlace place;
    place.position = first - 1;
    records(chain, first - 2, first - 1, [&](const ChainItem& item) {
      place = {item.position, item.self, item.hash, item.seal, item.moment};
    });
    return place;
  }

  void records(const ChainRow& chain, std::int32_t behind, std::int32_t upTo,
               const ChainWalk::Take& take) {
    const auto relations = this->relations(chain.code, behind, upTo);
    forEach(kRecordColumns, "Fiscal_Registros", chain.code, behind, upTo, take,
            [&](const Rows& row) { return record(chain, row, relations); });
  }

  /// Takes what `look` gives of the rows of some places. A value that is not of its column's type
  /// keeps the engine from reading all of them; then the halves are read, down to the row that has
  /// it.
  template <typename Look>
  void forEach(Statement::Constant columns, Statement::Constant table, std::int32_t chain,
               std::int32_t behind, std::int32_t upTo, const ChainWalk::Take& take,
               const Look& look) const {
    Statement statement("SELECT ");
    statement << columns << " FROM " << table << " WHERE Cadena = " << sqlLiteral(chain)
              << " AND Posicion > " << sqlLiteral(behind) << " AND Posicion <= " << sqlLiteral(upTo)
              << " ORDER BY Posicion";
    std::optional<Rows> rows;
    try {
      rows.emplace(read(statement));
    } catch (const Error& error) {
      if (error.number() != errors::kTypeMismatch && error.number() != errors::kOverflow) throw;
      if (upTo - behind == 1) return take(unreadable(table, chain, upTo, error));
    }
    if (!rows) {
      const std::int32_t middle = behind + (upTo - behind) / 2;
      forEach(columns, table, chain, behind, middle, take, look);
      forEach(columns, table, chain, middle, upTo, take, look);
      return;
    }
    for (; rows->hasRow(); rows->next()) take(look(*rows));
  }

  /// What is told of a row that cannot be read whole.
  ChainItem unreadable(Statement::Constant table, std::int32_t chain, std::int32_t position,
                       const Error& error) const {
    Statement statement("SELECT Huella, Sello FROM ");
    statement << table << " WHERE Cadena = " << sqlLiteral(chain)
              << " AND Posicion = " << sqlLiteral(position);
    const Rows row = read(statement);
    ChainItem item{.position = position};
    item.isRead = false;
    if (table.text() == "Fiscal_Eventos") item.what = "event";
    item.fault = error.description();
    item.hash = row.text("Huella");
    item.seal = row.text("Sello");
    return item;
  }

  using Relations = std::multimap<std::int32_t, std::string>;

  static std::string relation(std::string_view kind, std::string_view issuer,
                              std::string_view number) {
    return fmt::format("{} {} {}", kind, issuer, number);
  }
  Relations relations(std::int32_t chain, std::int32_t behind, std::int32_t upTo) const {
    Relations all;
    Statement statement(
        "SELECT Posicion, Tipo, NIF, Serie_Numero FROM Fiscal_Relaciones WHERE Cadena = ");
    statement << sqlLiteral(chain) << " AND Posicion > " << sqlLiteral(behind)
              << " AND Posicion <= " << sqlLiteral(upTo);
    for (Rows rows = read(statement); rows.hasRow(); rows.next()) {
      all.emplace(rows.whole("Posicion"),
                  relation(rows.text("Tipo"), rows.text("NIF"), rows.text("Serie_Numero")));
    }
    return all;
  }

  ChainItem record(const ChainRow& chain, const Rows& row, const Relations& relations) {
    ChainItem item;
    item.position = row.whole(kPosition);
    item.text = row.text(kXml);
    item.seal = row.text(kSeal);
    try {
      const Record record = readRecord(item.text);
      const InvoiceId& invoice = fiscal::invoiceOf(record);
      item.invoice = invoice;
      item.isCancellation = std::holds_alternative<Cancellation>(record);
      const Chaining& chaining = chainingOf(record);
      if (chaining.previous) {
        item.previous = nameOf(chaining.previous->invoice);
        item.previousHash = chaining.previous->hash;
      }
      item.self = nameOf(invoice);
      item.hash = hasher_(hashedText(record));
      item.moment = secondsOf(chaining.moment).value_or(0);
      item.fault = faultOf(chain, record, row, item.hash);
      if (item.fault.empty()) item.fault = faultOfRelations(record, item.position, relations);
      lookAtSums(record, item);
      lookAtSeriesOf(chain, row, item);
      remember(chain, record, row);
    } catch (const Error& error) {
      item.isRead = false;
      item.isCancellation = false;
      item.fault = error.description();
      item.self = "the invoice " + row.text(kNumberText);
      item.hash = row.text(kHash);
    }
    return item;
  }

  /// What in a record is not what it was; "" for nothing.
  static std::string faultOf(const ChainRow& chain, const Record& record, const Rows& row,
                             const std::string& hash) {
    const Chaining& chaining = chainingOf(record);
    const InvoiceId& invoice = fiscal::invoiceOf(record);
    if (chaining.hash != hash) return "its hash is not that of what stands in it";
    const auto* const registration = std::get_if<Registration>(&record);
    const auto differs = [&](std::string_view column) {
      return fmt::format("its column {} is not what stands in it", column);
    };
    if (row.text(kHash) != hash) return differs("Huella");
    if (row.text(kMoment) != chaining.moment) return differs("Momento");
    if (row.text(kNumberText) != invoice.number) return differs("Serie_Numero");
    if (Date(row.number(kIssued)) != invoice.day) return differs("Fecha_Expedicion");
    if (row.text(kKind) !=
        (registration != nullptr ? word(registration->kind) : kCancellationWord)) {
      return differs("Tipo");
    }
    if (invoice.issuer != chain.taxpayer) return "its taxpayer is another one";
    if (registration == nullptr) return {};
    if (centsAt(row, kQuota) != registration->quota.cents()) return differs("Cuota");
    if (centsAt(row, kTotal) != registration->total.cents()) return differs("Total");
    if (registration->isCorrection) {
      if (!row.isNull(kSeries) || !row.isNull(kNumber)) return differs("Numero");
    } else if (row.text(kSeries) + '/' + std::to_string(row.whole(kNumber)) != invoice.number) {
      return differs("Numero");
    }
    return {};
  }

  static std::string faultOfRelations(const Record& record, std::int32_t position,
                                      const Relations& relations) {
    std::multiset<std::string> stored;
    const auto [begin, end] = relations.equal_range(position);
    for (auto each = begin; each != end; ++each) stored.insert(each->second);
    std::multiset<std::string> told;
    const auto add = [&](std::string_view kind, const InvoiceId& invoice) {
      told.insert(relation(kind, invoice.issuer, invoice.number));
    };
    if (const auto* const registration = std::get_if<Registration>(&record)) {
      for (const InvoiceId& each : registration->rectified) add("R", each);
      for (const InvoiceId& each : registration->replaced) add("S", each);
    } else {
      add("A", fiscal::invoiceOf(record));
    }
    return stored == told ? std::string() : "what it does to others is not what is stored of that";
  }

  static void lookAtSums(const Record& record, ChainItem& item) {
    const auto* const registration = std::get_if<Registration>(&record);
    if (registration == nullptr) return;
    const std::string fault = faultOfSums(*registration);
    if (fault.empty()) return;
    Flaw flaw;
    flaw.kind = Flaw::Kind::kSum;
    flaw.position = item.position;
    flaw.invoice = item.invoice;
    flaw.sentence = fmt::format("{} {}", item.name(), fault);
    item.others.push_back(std::move(flaw));
  }

  /// Where a taxpayer has several chains, what is not in this one may be in another; whether all
  /// numbers are there is then seen in all of them together.
  void lookAtSeriesOf(const ChainRow& chain, const Rows& row, ChainItem& item) {
    if (row.isNull(kSeries)) return;
    const std::string series = row.text(kSeries);
    const std::int32_t number = row.whole(kNumber);
    const auto [place, isNew] = series_.try_emplace(series, number);
    const bool isInOrder =
        isNew || (chain.isAlone ? number == place->second + 1 : number > place->second);
    if (!isInOrder) {
      Flaw flaw;
      flaw.kind = Flaw::Kind::kSeries;
      flaw.position = item.position;
      flaw.invoice = item.invoice;
      flaw.sentence =
          fmt::format("{} comes behind {}/{} in its series", item.name(), series, place->second);
      item.others.push_back(std::move(flaw));
    }
    place->second = number;
  }

  void remember(const ChainRow& chain, const Record& record, const Rows& row) {
    const auto* const registration = std::get_if<Registration>(&record);
    const InvoiceId& invoice = fiscal::invoiceOf(record);
    if (registration != nullptr) {
      // A correction is of an invoice that is counted already, and cannot come to another total.
      const std::int64_t total = registration->total.cents();
      const bool isNew = totals_.emplace(keyOf(invoice), total).second;
      const bool isCounted =
          registration->kind != InvoiceKind::kReplacing && !cancelled_.contains(keyOf(invoice));
      if (isNew && isCounted) total_ += total;
    } else if (cancelled_.insert(keyOf(invoice)).second) {
      // Where its invoice is in a later chain it is not counted there.
      const auto found = totals_.find(keyOf(invoice));
      if (found != totals_.end()) total_ -= found->second;
    }
    if (row.isNull(kTicket)) return;
    Recorded recorded{row.whole(kPosition), invoice, invoice.day,
                      registration != nullptr ? registration->total.cents() : 0,
                      registration == nullptr};
    const double ticket = row.number(kTicket);
    if (std::isnan(ticket)) return;  // written by somebody else; the ticket has none then
    if (!recorded_.emplace(ticket, recorded).second) {
      Flaw flaw;
      flaw.kind = Flaw::Kind::kTicket;
      flaw.position = recorded.position;
      flaw.invoice = invoice;
      flaw.sentence = fmt::format("ticket {:.0f} has a second record, {}", ticket, nameOf(invoice));
      tell(std::move(flaw), chain.code);
    }
  }

  /// The chain's own row tells how many there must be: what was cut off at the end is seen here.
  void lookAtEnd(std::int32_t chain, const ChainPlace& place, std::int32_t count,
                 const std::string& hash, const std::string& seal, std::string_view what) {
    Flaw flaw;
    flaw.isOfEvent = what == "event";
    if (place.position < count) {
      flaw.kind = Flaw::Kind::kRemoved;
      flaw.position = place.position + 1;
      flaw.sentence =
          fmt::format("the last {}s were removed: there are {} of {}", what, place.position, count);
    } else if (place.position > count) {
      flaw.kind = Flaw::Kind::kInserted;
      flaw.position = count + 1;
      flaw.sentence =
          fmt::format("{} {} was inserted: the chain ends at {}", what, count + 1, count);
    } else if (count > 0 && (place.hash != hash || place.seal != seal) && !isTold(chain, count)) {
      flaw.position = count;
      flaw.sentence =
          fmt::format("{} {} was changed, or the chain's end was: they do not agree", what, count);
    } else {
      return;
    }
    tell(std::move(flaw), chain);
  }

  bool isTold(std::int32_t chain, std::int32_t position) const {
    return std::any_of(report_.flaws.begin(), report_.flaws.end(), [&](const Flaw& flaw) {
      return flaw.chain == chain && flaw.position == position;
    });
  }

  // -------------------------------------------------------------------------------------------
  // Events

  void lookAtEvents(const ChainRow& chain) {
    const std::int32_t last = std::max(chain.events, greatest("Fiscal_Eventos", chain.code));
    ChainWalk walk(
        [&](std::int32_t behind, std::int32_t upTo, const ChainWalk::Take& take) {
          forEach("*", "Fiscal_Eventos", chain.code, behind, upTo, take,
                  [&](const Rows& row) { return event(row); });
        },
        [&](const std::string& hash) { return find("Fiscal_Eventos", chain.code, hash); }, now_);
    for (Flaw& flaw : walk.walk({}, last)) {
      flaw.isOfEvent = true;
      tell(std::move(flaw), chain.code);
    }
    report_.events += walk.seen();
    lookAtEnd(chain.code, walk.place(), chain.events, chain.eventHash, chain.eventSeal, "event");
  }

  ChainItem event(const Rows& row) {
    const auto named = [](EventKind kind, std::string_view moment) {
      return fmt::format("the event {} of {}", word(kind), moment);
    };
    ChainItem item;
    item.what = "event";
    item.position = row.whole("Posicion");
    item.text = row.text("Evento");
    item.seal = row.text("Sello");
    try {
      const Event event = readEvent(item.text);
      if (event.previous) {
        item.previous = named(event.previous->kind, event.previous->moment);
        item.previousHash = event.previous->hash;
      }
      item.self = named(event.kind, event.moment);
      item.hash = hasher_(hashedText(event));
      item.moment = secondsOf(event.moment).value_or(0);
      if (event.hash != item.hash || row.text("Huella") != item.hash) {
        item.fault = "its hash is not that of what stands in it";
      } else if (row.text("Tipo") != word(event.kind) || row.text("Momento") != event.moment) {
        item.fault = "its columns are not what stands in it";
      }
    } catch (const Error& error) {
      item.isRead = false;
      item.fault = error.description();
      item.self.clear();
      item.hash = row.text("Huella");
    }
    return item;
  }

  // -------------------------------------------------------------------------------------------
  // Series and tickets

  /// Of all chains of a taxpayer together, each number of a series is there once, from 1 to the
  /// last that was given.
  void lookAtSeries() {
    const Statement statement("SELECT NIF, Serie, Ultimo FROM Fiscal_Series ORDER BY NIF, Serie");
    for (Rows rows = read(statement); rows.hasRow(); rows.next()) {
      Statement numbers(
          "SELECT Count(*) AS Cuantos, Min(R.Numero) AS Primero, Max(R.Numero) AS Ultimo FROM "
          "Fiscal_Registros AS R INNER JOIN Fiscal_Cadenas AS C ON R.Cadena = C.Codigo WHERE "
          "C.NIF = ");
      numbers << sqlText(rows.text("NIF")) << " AND R.Serie = " << sqlText(rows.text("Serie"))
              << " AND R.Numero <= " << sqlLiteral(kLastPlace);
      const Rows found = read(numbers);
      const std::int32_t last = rows.whole("Ultimo");
      if (found.whole("Cuantos") == last && found.whole("Primero") == 1 &&
          found.whole("Ultimo") == last) {
        continue;
      }
      Flaw flaw;
      flaw.kind = Flaw::Kind::kSeries;
      flaw.sentence =
          fmt::format("of the series {} {} numbers were given, and {} are there, from {} to {}",
                      rows.text("Serie"), last, found.whole("Cuantos"), found.whole("Primero"),
                      found.whole("Ultimo"));
      tell(std::move(flaw), 0);
    }
  }

  void lookAtTickets() {
    const auto complain = [&](double ticket, const Recorded* record, const std::string& sentence) {
      Flaw flaw;
      flaw.kind = Flaw::Kind::kTicket;
      if (record != nullptr) {
        flaw.position = record->position;
        flaw.invoice = record->invoice;
      }
      flaw.sentence = fmt::format("ticket {:.0f} {}", ticket, sentence);
      tell(std::move(flaw), 0);
    };
    for (const Statement::Constant table : kTicketTables) {
      Statement statement("SELECT Numero, Fecha, Total FROM ");
      statement << table << within("Fecha", span_, start_) << " ORDER BY Numero";
      for (Rows rows = read(statement); rows.hasRow(); rows.next()) {
        ++report_.tickets;
        const double ticket = rows.number("Numero");
        const auto found = recorded_.find(ticket);
        if (found == recorded_.end()) {
          complain(ticket, nullptr, "has no record");
          continue;
        }
        const Recorded& record = found->second;
        const std::int64_t total = centsAt(rows, "Total");
        if (record.isCancellation) {
          const auto cancelled = totals_.find(keyOf(record.invoice));
          if (cancelled != totals_.end() && cancelled->second != -total) {
            complain(ticket, &record,
                     fmt::format("comes to {}, and cancels {}", Amount::ofCents(total).text(),
                                 Amount::ofCents(cancelled->second).text()));
          }
        } else if (record.total != total) {
          complain(
              ticket, &record,
              fmt::format("comes to {}, and its record, {}, to {}", Amount::ofCents(total).text(),
                          nameOf(record.invoice), Amount::ofCents(record.total).text()));
        } else if (record.day != rows.day("Fecha")) {
          complain(ticket, &record,
                   fmt::format("is of {}, and its record is {}", dayText(rows.day("Fecha")),
                               nameOf(record.invoice)));
        }
        recorded_.erase(found);
      }
    }
    if (!isWhole()) return;  // the ticket of a record may lie outside of the span
    for (const auto& [ticket, record] : recorded_) {
      complain(ticket, &record,
               fmt::format("is not there, but its record is: {}", nameOf(record.invoice)));
    }
  }

  ConnectionPtr documents_;
  Date start_;
  DaySpan span_;
  std::int64_t now_;
  CheckReport report_;
  Hasher hasher_;
  std::int64_t total_ = 0;
  std::map<std::string, std::int32_t> series_;            // the last number of each
  std::unordered_map<std::string, std::int64_t> totals_;  // by keyOf
  std::set<std::string> cancelled_;                       // the same
  std::map<double, Recorded> recorded_;                   // by ticket; those without one stay
};

}  // namespace

CheckReport check(const Book& book, const DaySpan& span) {
  return Check(book, span).run();
}

}  // namespace tavelor::fiscal
