// SPDX-License-Identifier: MIT
// Makes records again that the tax office did not want as they were.
#include "tavelor/sending/correction.hpp"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tavelor/fiscal/rules.hpp"
#include "tavelor/flows/again.hpp"
#include "tavelor/flows/both_databases.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/sending/status.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"

namespace tavelor::sending {

namespace {

[[noreturn]] void refuse(const Correction& correction, std::string_view why) {
  raise(errors::kInvalidCall, "Sending",
        fmt::format("The record of the invoice {} is not corrected: {}.", correction.number, why));
}

bool isRefused(Standing standing) {
  return standing == Standing::kRefused || standing == Standing::kOtherIsThere ||
         standing == Standing::kApart;
}

/// Whether the tax office has a record of the invoice.
bool isThere(const std::vector<RecordStatus>& records) {
  return std::any_of(records.begin(), records.end(), [](const RecordStatus& each) {
    return !each.isCancellation &&
           (each.standing == Standing::kAccepted || each.standing == Standing::kWithErrors ||
            each.standing == Standing::kOtherIsThere);
  });
}

fiscal::Record registeredAgain(fiscal::Book& book, const Correction& correction,
                               const std::vector<RecordStatus>& records) {
  fiscal::Registration record = book.find(correction.number).value().record;
  record.priorRefusal.clear();
  if (!isThere(records)) {
    record.priorRefusal = "X";
  } else if (isRefused(records.back().standing)) {
    record.priorRefusal = "S";
  }
  if (correction.recipient) record.recipients = {*correction.recipient};
  if (!correction.description.empty()) {
    record.description = fiscal::recordText(correction.description, fiscal::kLongestDescription);
  }
  record.isCorrection = true;
  record.issuerName = book.settings().taxpayer.name;
  const auto faults = fiscal::faultsOf(record, Apartment::current().clock().today());
  if (!faults.empty()) refuse(correction, fmt::format("{}", fmt::join(faults, "; ")));
  return book.correct(std::move(record));
}

/// What the new record corrects is not told as open any more, and no longer sent.
void settle(const fiscal::Book& book, const std::vector<RecordStatus>& records) {
  const std::int32_t position = book.end().records;
  for (const RecordStatus& each : records) {
    if (each.correctedBy != 0) continue;
    Statement statement("UPDATE Fiscal_Envios SET Corregido = ");
    statement << sqlLiteral(position);
    if (each.standing == Standing::kApart) statement << ", Estado = 'I'";
    statement << " WHERE Cadena = " << sqlLiteral(each.chain)
              << " AND Posicion = " << sqlLiteral(each.position)
              << " AND Estado IN ('A', 'D', 'I', 'S')";
    book.documents()->Execute(statement);
  }
}

fiscal::Record correctOnce(fiscal::Book& book, const Correction& correction) {
  const std::vector<RecordStatus> records = recordsOf(book, correction.number);
  if (records.empty()) refuse(correction, "there is none");
  const RecordStatus& last = records.back();
  if (last.standing == Standing::kWaiting || last.standing == Standing::kUnanswered) {
    refuse(correction, "its last record waits to be sent, and nobody knows yet what is wrong");
  }
  if (last.isCancellation && !isRefused(last.standing)) refuse(correction, "it is cancelled");
  fiscal::Record record =
      last.isCancellation ? fiscal::Record(book.cancelAgain(correction.number, !isThere(records)))
                          : registeredAgain(book, correction, records);
  settle(book, records);
  return record;
}

}  // namespace

fiscal::Record correct(fiscal::Book& book, const Correction& correction) {
  if (book.settings().mode != fiscal::Mode::kSending) {
    refuse(correction, "the shop does not send its records");
  }
  const ConnectionPtr& documents = book.documents();
  return flows::untilThrough(
      *documents,
      [&](flows::Before before) {
        flows::DatabaseTransaction transaction(documents);
        if (before == flows::Before::kUnknown) {
          // The line was lost, perhaps in the commit: what waits now is then the correction.
          const auto records = recordsOf(book, correction.number);
          if (!records.empty() && records.back().standing == Standing::kWaiting) {
            refuse(correction, "the line to the server was lost, and its last record waits now");
          }
        }
        fiscal::Record record = correctOnce(book, correction);
        transaction.commit();
        return record;
      },
      [] {});
}

}  // namespace tavelor::sending
