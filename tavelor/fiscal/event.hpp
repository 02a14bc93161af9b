// SPDX-License-Identifier: MIT
// An event of a system that does not send: such a system keeps a log of them, chained as its
// records are.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tavelor/fiscal/record.hpp"

namespace tavelor::fiscal {

/// What has happened (TipoEvento).
enum class EventKind : std::uint8_t {
  kBegin,           ///< 01: of working without sending
  kEnd,             ///< 02
  kCheck,           ///< 03: the records were checked
  kAnomaly,         ///< 04: and something was wrong
  kEventCheck,      ///< 05: the events were checked
  kEventAnomaly,    ///< 06
  kBackupRestored,  ///< 07
  kExport,          ///< 08: of records
  kEventExport,     ///< 09
  kSummary,         ///< 10
  kOther,           ///< 90
};

/// "03", as it stands in events.
std::string_view word(EventKind kind);
/// Nothing for a word that is not in the list.
std::optional<EventKind> eventKindOf(std::string_view word);

/// The event before an event.
struct EventLink {
  EventKind kind = EventKind::kOther;
  std::string moment;
  std::string hash;
  friend bool operator==(const EventLink&, const EventLink&) = default;
};

/// A record, as an event names it.
using RecordLink = Link;

/// How many records, or events, a check has gone through.
struct Checked {
  std::uint64_t hashes = 0;
  std::uint64_t links = 0;
  std::uint64_t dates = 0;
  friend bool operator==(const Checked&, const Checked&) = default;
};

/// What a check has found wrong.
struct Anomaly {
  std::string kind;                    ///< TipoAnomalia, "01" to "15", or "90"
  std::string text;                    ///< up to 100 characters
  std::optional<InvoiceId> invoice{};  ///< of the record
  std::optional<EventLink> event{};    ///< or the event
  friend bool operator==(const Anomaly&, const Anomaly&) = default;
};

/// What was exported.
struct Exported {
  std::string from;  ///< moment
  std::string to;    ///< moment
  std::optional<RecordLink> first{};
  std::optional<RecordLink> last{};
  std::optional<EventLink> firstEvent{};
  std::optional<EventLink> lastEvent{};
  std::uint64_t registrations = 0;  ///< or events
  std::uint64_t cancellations = 0;
  Amount quota{};
  Amount total{};
  friend bool operator==(const Exported&, const Exported&) = default;
};

/// What was done since the summary before.
struct Summary {
  std::vector<std::pair<EventKind, std::uint64_t>> events;  ///< how many of each kind
  std::optional<RecordLink> first{};
  std::optional<RecordLink> last{};
  std::uint64_t registrations = 0;
  std::uint64_t cancellations = 0;
  Amount quota{};
  Amount total{};
  friend bool operator==(const Summary&, const Summary&) = default;
};

/// Characters of a text in the log.
inline constexpr std::size_t kLongestEventText = 100;

/// One entry of the log (RegistroEvento).
struct Event {
  System system;
  Party taxpayer;
  std::string moment;
  EventKind kind = EventKind::kOther;
  std::variant<std::monostate, Checked, Anomaly, Exported, Summary> data{};
  std::string text{};                   ///< OtrosDatosEvento, up to 100 characters
  std::optional<EventLink> previous{};  ///< none: it is the first one
  std::string hash{};
  friend bool operator==(const Event&, const Event&) = default;
};

}  // namespace tavelor::fiscal
