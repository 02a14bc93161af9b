// SPDX-License-Identifier: MIT
// Records as files for whoever asks for them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/fiscal/book.hpp"
#include "tavelor/fiscal/check.hpp"

namespace tavelor::fiscal {

/// How many records a file of an export holds, and a message to the tax office.
inline constexpr std::int32_t kMostInMessage = 1000;

/// What was exported.
struct ExportReport {
  std::vector<std::string> files;  ///< paths; the page of sums is the last one
  std::uint64_t registrations = 0;
  std::uint64_t cancellations = 0;
  std::uint64_t events = 0;
  std::uint64_t unsignedRecords = 0;  ///< that should be signed, and are not yet
  std::uint64_t unsignedEvents = 0;   ///< the same
  Amount quota;                       ///< of the registrations
  Amount total;                       ///< the same
};

/// The message that carries records of this taxpayer: what the tax office's schema has a
/// definition of. Each text is a record as it is stored. `isLate` says that an outage kept records
/// from being sent when they were made (Incidencia).
std::string messageOf(const Party& taxpayer, const std::vector<std::string>& records,
                      bool isLate = false);

/// A record or an event as it was signed: with its signature as the last child.
std::string withSignature(std::string xml, std::string_view signature);

/// Writes the records from the first to the last one that was issued in the span, all of this
/// taxpayer's chains, a thousand a file, and the log of events beside them, each with its signature
/// where it has one, into a folder that is made where it is not there; besides, a page with the
/// SHA-256 of each file, as `sha256sum -c` reads it, and with the counts and sums. Raises 75 for a
/// file that is there already or cannot be written: what was written before stays.
ExportReport exportRecords(const Book& book, const DaySpan& span, const std::string& folder);

/// Writes into the log of a system that does not send what was exported. Inside a transaction on
/// the book's connection.
void logExport(Book& book, const ExportReport& report, const DaySpan& span);

}  // namespace tavelor::fiscal
