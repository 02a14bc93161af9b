// SPDX-License-Identifier: MIT
// Reads where sending stands.
#include "tavelor/sending/status.hpp"

#include "tavelor/fiscal/chains.hpp"
#include "tavelor/fiscal/words.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/sending/outbox.hpp"

namespace tavelor::sending {

namespace {

Standing standingOf(std::string_view word) {
  if (word == state::kAccepted) return Standing::kAccepted;
  if (word == state::kWithErrors) return Standing::kWithErrors;
  if (word == state::kRefused) return Standing::kRefused;
  if (word == state::kForeign) return Standing::kOtherIsThere;
  if (word == state::kApart) return Standing::kApart;
  return word == state::kUnknown ? Standing::kUnanswered : Standing::kWaiting;
}

constexpr std::string_view kColumns =
    "SELECT R.Cadena, R.Posicion, R.Tipo, R.Serie_Numero, R.Fecha_Expedicion, E.Estado, E.Codigo, "
    "E.Texto, E.CSV, E.Momento, E.Corregido";

RecordStatus statusAt(const Rows& row, const std::string& taxpayer) {
  RecordStatus status;
  status.chain = row.whole("Cadena");
  status.position = row.whole("Posicion");
  status.invoice = {taxpayer, row.text("Serie_Numero"), row.day("Fecha_Expedicion")};
  status.isCancellation = row.text("Tipo") == fiscal::kCancellationWord;
  status.standing = standingOf(row.text("Estado"));
  status.code = row.whole("Codigo");
  status.text = row.text("Texto");
  status.csv = row.text("CSV");
  status.moment = row.text("Momento");
  status.correctedBy = row.whole("Corregido");
  return status;
}

/// How many rows of each state a chain has.
void countStates(const fiscal::Book& book, ChainStatus& status) {
  Statement statement("SELECT Estado, Count(*) AS Cuantos FROM Fiscal_Envios WHERE Cadena = ");
  statement << sqlLiteral(status.chain) << " GROUP BY Estado";
  for (Rows rows(selector::kDocuments, statement, book.documents()); rows.hasRow(); rows.next()) {
    const auto count = static_cast<std::int64_t>(rows.number("Cuantos"));
    switch (standingOf(rows.text("Estado"))) {
      case Standing::kAccepted:
        status.accepted += count;
        break;
      case Standing::kWithErrors:
        status.accepted += count;
        status.withErrors += count;
        break;
      case Standing::kRefused:
      case Standing::kOtherIsThere:
        status.refused += count;
        break;
      case Standing::kApart:
        status.apart += count;
        break;
      case Standing::kUnanswered:
        status.unanswered += count;
        break;
      case Standing::kWaiting:
        break;
    }
  }
}

void listOpen(const fiscal::Book& book, std::int32_t most, ChainStatus& status) {
  Statement statement = Statement::trusted(kColumns);
  statement << " FROM Fiscal_Envios AS E INNER JOIN Fiscal_Registros AS R ON E.Cadena = R.Cadena "
               "AND E.Posicion = R.Posicion WHERE E.Cadena = "
            << sqlLiteral(status.chain)
            << " AND E.Estado IN ('A', 'D', 'I', 'S') AND E.Corregido Is Null ORDER BY E.Posicion";
  for (Rows rows(selector::kDocuments, statement, book.documents());
       rows.hasRow() && static_cast<std::int32_t>(status.open.size()) < most; rows.next()) {
    status.open.push_back(statusAt(rows, book.settings().taxpayer.number));
  }
}

}  // namespace

std::vector<ChainStatus> statusOf(const fiscal::Book& book, std::int32_t most) {
  std::vector<ChainStatus> all;
  for (const std::int32_t chain :
       fiscal::chainsOf(book.settings().taxpayer.number, book.documents())) {
    const Outbox outbox(chain, book.documents());
    const Pace pace = outbox.pace();
    ChainStatus status;
    status.chain = chain;
    status.messages = pace.messages;
    status.lastMessage = pace.moment;
    status.failures = pace.failures;
    status.reason = pace.reason;
    status.next = static_cast<std::int64_t>(pace.next);
    status.wait = pace.wait;
    status.sender = pace.sender;
    Statement waiting("SELECT Count(*) AS Cuantos, Min(R.Posicion) AS Primera");
    waiting << outbox.whereWaiting(pace.upTo, Outbox::Which::kAll);
    const Rows count(selector::kDocuments, waiting, book.documents());
    status.waiting = static_cast<std::int64_t>(count.number("Cuantos"));
    if (status.waiting > 0) {
      Statement oldest("SELECT Momento FROM Fiscal_Registros WHERE Cadena = ");
      oldest << sqlLiteral(chain) << " AND Posicion = " << sqlLiteral(count.whole("Primera"));
      status.oldest = Rows(selector::kDocuments, oldest, book.documents()).text("Momento");
    }
    countStates(book, status);
    listOpen(book, most, status);
    all.push_back(std::move(status));
  }
  return all;
}

std::vector<RecordStatus> recordsOf(const fiscal::Book& book, const std::string& number) {
  std::vector<RecordStatus> records;
  for (const std::int32_t chain :
       fiscal::chainsOf(book.settings().taxpayer.number, book.documents())) {
    Statement statement = Statement::trusted(kColumns);
    statement << " FROM Fiscal_Registros AS R LEFT JOIN Fiscal_Envios AS E ON R.Cadena = E.Cadena "
                 "AND R.Posicion = E.Posicion WHERE R.Serie_Numero = "
              << sqlText(number) << " AND R.Cadena = " << sqlLiteral(chain)
              << " ORDER BY R.Posicion";
    for (Rows rows(selector::kDocuments, statement, book.documents()); rows.hasRow(); rows.next()) {
      records.push_back(statusAt(rows, book.settings().taxpayer.number));
    }
  }
  return records;
}

}  // namespace tavelor::sending
