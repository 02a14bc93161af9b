// SPDX-License-Identifier: MIT
// What of a chain was sent and what waits, in the documents database.
#include "tavelor/sending/outbox.hpp"

#include "tavelor/fiscal/export.hpp"
#include "tavelor/fiscal/words.hpp"
#include "tavelor/flows/again.hpp"
#include "tavelor/flows/both_databases.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::sending {

namespace {

Literal textOrNull(std::string_view text) {
  return text.empty() ? sqlLiteral(Variant(Null())) : sqlText(text);
}
Literal codeOrNull(std::int32_t code) {
  return code == 0 ? sqlLiteral(Variant(Null())) : sqlLiteral(code);
}

/// Calls `work` with the first and the last position of each run of records without a gap.
template <typename Work>
void eachRun(const std::vector<std::int32_t>& positions, Work&& work) {
  for (std::size_t at = 0; at < positions.size();) {
    std::size_t end = at + 1;
    while (end < positions.size() && positions[end] == positions[end - 1] + 1) ++end;
    work(positions[at], positions[end - 1]);
    at = end;
  }
}

}  // namespace

Outbox::Outbox(std::int32_t chain, ConnectionPtr documents)
    : chain_(chain),
      documents_(std::move(documents)),
      kept_(fiscal::keptRanges(chain_, documents_)) {}

Pace Outbox::pace() const {
  Statement statement("SELECT * FROM Fiscal_Remisiones WHERE Cadena = ");
  statement << sqlLiteral(chain_);
  const Rows row(selector::kDocuments, statement, documents_);
  Pace pace;
  pace.isThere = row.hasRow();
  if (!pace.isThere) return pace;
  pace.messages = row.whole("Mensajes");
  pace.upTo = row.whole("Hasta");
  pace.wait = row.whole("Espera");
  pace.next = row.number("Siguiente");
  pace.most = row.whole("Tope");
  pace.failures = row.whole("Fallos");
  pace.reason = row.text("Motivo");
  pace.moment = row.text("Momento");
  pace.sender = row.text("Remitente");
  pace.lease = row.number("Plazo");
  return pace;
}

Statement Outbox::whereWaiting(std::int32_t upTo, Which which) const {
  Statement where(
      " FROM Fiscal_Registros AS R LEFT JOIN Fiscal_Envios AS E ON R.Cadena = E.Cadena AND "
      "R.Posicion = E.Posicion WHERE R.Cadena = ");
  where << sqlLiteral(chain_) << " AND R.Posicion > " << sqlLiteral(upTo);
  if (which == Which::kInOrder) where << " AND (E.Estado Is Null OR E.Estado = 'E')";
  if (which == Which::kApart) where << " AND E.Estado = 'S'";
  if (which == Which::kAll) where << " AND (E.Estado Is Null OR E.Estado IN ('E', 'S'))";
  for (const auto& [first, last] : kept_) {
    where << " AND (R.Posicion < " << sqlLiteral(first) << " OR R.Posicion > " << sqlLiteral(last)
          << ")";
  }
  return where;
}

std::vector<WaitingRecord> Outbox::read(const Pace& pace, Which which) const {
  Statement order("SELECT R.Posicion");
  order << whereWaiting(pace.upTo, which) << " ORDER BY R.Posicion";
  std::int32_t last = 0;
  std::int32_t count = 0;
  for (Rows rows(selector::kDocuments, order, documents_);
       rows.hasRow() && count < fiscal::kMostInMessage; rows.next()) {
    last = rows.whole("Posicion");
    ++count;
  }
  if (count == 0) return {};
  Statement statement(
      "SELECT R.Posicion, R.Tipo, R.Serie_Numero, R.Fecha_Expedicion, R.Momento, R.Registro, "
      "E.Veces");
  statement << whereWaiting(pace.upTo, which) << " AND R.Posicion <= " << sqlLiteral(last)
            << " ORDER BY R.Posicion";
  std::vector<WaitingRecord> records;
  for (Rows rows(selector::kDocuments, statement, documents_); rows.hasRow(); rows.next()) {
    WaitingRecord record;
    record.position = rows.whole("Posicion");
    record.times = rows.whole("Veces");
    record.isCancellation = rows.text("Tipo") == fiscal::kCancellationWord;
    record.number = rows.text("Serie_Numero");
    record.day = rows.day("Fecha_Expedicion");
    record.moment = rows.text("Momento");
    record.xml = rows.text("Registro");
    records.push_back(std::move(record));
  }
  return records;
}

std::vector<WaitingRecord> Outbox::waiting(const Pace& pace) const {
  std::vector<WaitingRecord> records = read(pace, Which::kInOrder);
  return records.empty() ? read(pace, Which::kApart) : records;
}

/// Runs `work` in a transaction of its own.
template <typename Work>
auto Outbox::stored(Work&& work) {
  return flows::untilThrough(
      *documents_,
      [&](flows::Before) {
        flows::DatabaseTransaction transaction(documents_);
        auto result = work();
        transaction.commit();
        return result;
      },
      [] {});
}

std::optional<std::int32_t> Outbox::begin(const Pace& pace,
                                          const std::vector<WaitingRecord>& records,
                                          const std::string& sender, double now, double lease,
                                          const std::string& moment) {
  const std::int32_t message = pace.messages + 1;
  std::vector<std::int32_t> fresh;
  std::vector<std::int32_t> again;
  for (const WaitingRecord& each : records)
    (each.times == 0 ? fresh : again).push_back(each.position);
  Statement mine("SELECT Cadena FROM Fiscal_Remisiones WHERE Cadena = ");
  mine << sqlLiteral(chain_) << " AND Mensajes = " << sqlLiteral(message)
       << " AND Remitente = " << sqlText(sender);
  return stored([&]() -> std::optional<std::int32_t> {
    // A commit whose line was lost has done it already.
    if (documents_->anyRow(mine)) return message;
    Statement where(" WHERE Cadena = ");
    where << sqlLiteral(chain_);
    if (!pace.isThere) {
      Statement any("SELECT Cadena FROM Fiscal_Remisiones");
      any << where;
      if (documents_->anyRow(any)) return std::nullopt;
      Statement insert("INSERT INTO Fiscal_Remisiones (Cadena) VALUES (");
      insert << sqlLiteral(chain_) << ")";
      documents_->Execute(insert);
    }
    Statement take("UPDATE Fiscal_Remisiones SET Mensajes = ");
    take << sqlLiteral(message) << ", Siguiente = " << sqlLiteral(now + pace.wait)
         << ", Momento = " << sqlText(moment) << ", Remitente = " << sqlText(sender)
         << ", Plazo = " << sqlLiteral(lease) << where
         << " AND Mensajes = " << sqlLiteral(pace.messages);
    if (documents_->Execute(take) != 1) return std::nullopt;
    eachRun(again, [&](std::int32_t first, std::int32_t last) {
      Statement update("UPDATE Fiscal_Envios SET Mensaje = ");
      update << sqlLiteral(message) << ", Veces = Veces + 1, Momento = " << sqlText(moment) << where
             << " AND Posicion BETWEEN " << sqlLiteral(first) << " AND " << sqlLiteral(last);
      documents_->Execute(update);
    });
    eachRun(fresh, [&](std::int32_t first, std::int32_t last) {
      Statement insert(
          "INSERT INTO Fiscal_Envios (Cadena, Posicion, Estado, Mensaje, Veces, Momento) SELECT "
          "Cadena, Posicion, 'E', ");
      insert << sqlLiteral(message) << ", 1, " << sqlText(moment) << " FROM Fiscal_Registros"
             << where << " AND Posicion BETWEEN " << sqlLiteral(first) << " AND "
             << sqlLiteral(last);
      documents_->Execute(insert);
    });
    return message;
  });
}

Statement Outbox::ofMessage(std::int32_t message) const {
  Statement where(" WHERE Cadena = ");
  return where << sqlLiteral(chain_) << " AND Mensaje = " << sqlLiteral(message);
}

/// Nothing where another message was begun meanwhile: its sender closes it.
void Outbox::closePace(std::int32_t message, const Pace& after) {
  Statement first("SELECT R.Posicion");
  first << whereWaiting(after.upTo, Which::kAll) << " ORDER BY R.Posicion";
  const auto waits = documents_->firstValue(first, "Posicion");
  Statement update("UPDATE Fiscal_Remisiones SET Espera = ");
  update << sqlLiteral(after.wait) << ", Siguiente = " << sqlLiteral(after.next)
         << ", Tope = " << sqlLiteral(after.most) << ", Fallos = " << sqlLiteral(after.failures)
         << ", Motivo = " << textOrNull(after.reason) << ", Remitente = Null, Plazo = 0, Hasta = ";
  if (waits) {
    update << sqlLiteral(static_cast<std::int32_t>(asNumber(*waits)) - 1);
  } else {
    // Nothing waits: those of this message are the last ones, or others behind them were answered.
    Statement last("SELECT Posicion FROM Fiscal_Envios WHERE Cadena = ");
    last << sqlLiteral(chain_) << " ORDER BY Posicion DESC";
    const auto end = documents_->firstValue(last, "Posicion");
    update << sqlLiteral(end ? static_cast<std::int32_t>(asNumber(*end)) : after.upTo);
  }
  update << " WHERE Cadena = " << sqlLiteral(chain_) << " AND Mensajes = " << sqlLiteral(message);
  documents_->Execute(update);
}

void Outbox::finish(std::int32_t message, const Pace& after, const std::vector<Outcome>& outcomes,
                    const std::string& csv) {
  const std::string& moment = after.moment;
  std::size_t accepted = 0;
  for (const Outcome& each : outcomes) accepted += each.state == state::kAccepted ? 1U : 0U;
  // Most messages are accepted whole: one statement tells it of all, and others of the exceptions.
  const bool isMostly = accepted * 2 > outcomes.size();
  stored([&] {
    const auto update = [&](const Outcome& outcome, bool isAll) {
      const bool isAnswered = outcome.state != state::kUnknown && outcome.state != state::kApart;
      Statement statement("UPDATE Fiscal_Envios SET Estado = ");
      statement << sqlText(outcome.state) << ", Codigo = " << codeOrNull(outcome.code)
                << ", Texto = " << textOrNull(outcome.text)
                << ", CSV = " << textOrNull(isAnswered ? csv : std::string())
                << ", Momento = " << sqlText(moment) << ofMessage(message);
      if (!isAll) statement << " AND Posicion = " << sqlLiteral(outcome.position);
      documents_->Send(statement);
    };
    if (isMostly) update({.state = state::kAccepted}, true);
    for (const Outcome& each : outcomes) {
      if (!isMostly || each.state != state::kAccepted) update(each, false);
    }
    closePace(message, after);
    return true;
  });
}

void Outbox::takeBack(std::int32_t message, const Pace& after) {
  stored([&] {
    Statement fresh("DELETE FROM Fiscal_Envios");
    fresh << ofMessage(message) << " AND Veces = 1";
    documents_->Execute(fresh);
    Statement again("UPDATE Fiscal_Envios SET Veces = Veces - 1");
    again << ofMessage(message);
    documents_->Execute(again);
    closePace(message, after);
    return true;
  });
}

}  // namespace tavelor::sending
