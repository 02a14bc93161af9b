// SPDX-License-Identifier: MIT
// Whether the chains are as they were written.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tavelor/fiscal/book.hpp"

namespace tavelor::fiscal {

/// Days of issue, both included; none: from the first, to the last.
struct DaySpan {
  std::optional<Date> from{};
  std::optional<Date> to{};
};

/// What is wrong with a record, an event, or a ticket.
struct Flaw {
  /// What somebody has done, or has not.
  enum class Kind : std::uint8_t {
    kChanged,    ///< the record is not what it was
    kRemoved,    ///< a record is not there
    kInserted,   ///< a record was not there
    kReordered,  ///< a record stands before the one that it follows
    kDate,       ///< time runs backwards, or ahead of today
    kSum,        ///< amounts that do not add up
    kSeries,     ///< a number is missing, or there twice
    kTicket,     ///< a ticket without its record, or a record without its ticket
    kSignature,  ///< a signature that does not hold, or is of other bytes
  };
  Kind kind = Kind::kChanged;
  bool isOfEvent = false;
  std::int32_t chain = 0;
  std::int32_t position = 0;  ///< in its chain; 0 where it is none of a record
  std::optional<InvoiceId> invoice{};
  std::string sentence;  ///< "record 5, the invoice T/5 of 01-02-2027, was changed: .."
};

/// What a check has gone through, and found.
struct CheckReport {
  std::uint64_t records = 0;
  std::uint64_t events = 0;
  std::uint64_t tickets = 0;
  Amount total;             ///< of all registrations but F3, cancelled ones less
  std::vector<Flaw> flaws;  ///< those of the chains first, in the order of their records
  /// Whether nothing was found.
  bool isWhole() const { return flaws.empty(); }
};

/// Recomputes every hash, seal, link and sum of all chains, and compares tickets with records. A
/// span looks at the records from the first to the last one that was issued in it, and at what they
/// follow. Reads only; a thousand records at a time.
CheckReport check(const Book& book, const DaySpan& span = {});

/// Writes into the log of a system that does not send that a check was made, and what it has found
/// first. Inside a transaction on the book's connection.
void logCheck(Book& book, const CheckReport& report);

}  // namespace tavelor::fiscal
