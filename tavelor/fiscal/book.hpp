// SPDX-License-Identifier: MIT
// The records of a shop, and the log of one that does not send: two chains in the documents
// database.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tavelor/fiscal/event.hpp"
#include "tavelor/fiscal/hash.hpp"
#include "tavelor/fiscal/record.hpp"
#include "tavelor/fiscal/settings.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::fiscal {

/// A registration as it is stored.
struct StoredRegistration {
  std::int32_t chain = 0;
  std::int32_t position = 0;
  Registration record;
};

/// A chain's own row: where it ends.
struct ChainEnd {
  std::int32_t chain = 0;  ///< its code; 0: there is no such chain yet
  bool isSending = false;  ///< when something was last added
  std::int32_t records = 0;
  std::optional<Link> last{};  ///< record
  std::string moment{};        ///< of it
  std::string seal{};          ///< the same
  std::int32_t events = 0;
  std::optional<EventLink> lastEvent{};
  std::string eventSeal{};
};

/// Adds to the chain of the installation's taxpayer, and finds what is in it. Everything goes over
/// one connection to the documents; what adds must be called inside a transaction there, which
/// stores ticket and record together. Of one thread.
///
/// The chain's end is read and written inside that transaction, so programs add one after the
/// other. Should an engine let two of them read the same end all the same, the second one raises
/// errors::kTryAgain, and nothing of it is left.
class Book {
 public:
  /// Nothing where the installation has no settings: it keeps no records. Raises what
  /// readSettings() does, and 53 where there are records and their settings are gone: nothing may
  /// be sold without a record then.
  static std::unique_ptr<Book> open(const ConnectionPtr& documents);

  /// With these settings, whatever the file says.
  Book(Settings settings, ConnectionPtr documents);

  /// As they were when it was opened.
  const Settings& settings() const { return settings_; }
  /// Whether the sales of a day are recorded.
  bool covers(Date day) const { return day >= settings_.start; }
  /// The series that an invoice of a kind belongs to.
  const std::string& seriesOf(InvoiceKind kind) const;

  /// Gives the registration the next number of its series and its place in the chain, and stores
  /// it; `ticket` is the number of the ticket that goes with it. Gives it as it was stored. Its own
  /// values must have been looked at by faultsOf().
  Registration add(Registration record, std::optional<double> ticket);

  /// Stores the cancellation of an invoice of this taxpayer; `ticket` as above. Raises 5 for one
  /// that there is not, or that is cancelled.
  Cancellation cancel(const std::string& number, std::optional<double> ticket);

  /// Stores a registration again, right now (Subsanacion): of the same invoice, with its number, in
  /// a new place of the chain. `record` is what it should have said. Gives it as it was stored. The
  /// invoice itself, its amounts above all, cannot be another: raises 5 for one that there is not,
  /// that is cancelled, or that comes to another total.
  Registration correct(Registration record);
  /// Stores the cancellation of an invoice again, where the tax office refused it; `hasNoRecord`
  /// where it has no record of the invoice. Raises 5 for an invoice that is not cancelled.
  Cancellation cancelAgain(const std::string& number, bool hasNoRecord);

  /// Adds an event to the log. A system that sends keeps none: then it does nothing.
  void log(EventKind kind, decltype(Event::data) data = {}, std::string_view text = {});

  /// The invoice that stands for a ticket now: the one in its place, where it was replaced. As it
  /// was corrected last.
  std::optional<StoredRegistration> invoiceOf(double ticket) const;
  /// The invoice that was issued with a ticket, as it was corrected last.
  std::optional<StoredRegistration> issuedWith(double ticket) const;
  /// The ticket that an invoice was issued with, corrected or not; none where it stands in the
  /// place of tickets.
  std::optional<double> ticketOf(const InvoiceId& invoice) const;
  /// The number of the invoice in the place of another one; "" for none.
  std::string numberInPlaceOf(const InvoiceId& invoice) const;
  /// By the number that it bears, as it was corrected last.
  std::optional<StoredRegistration> find(const std::string& number) const;
  /// Whether a later record cancels it, replaces it, or rectifies it: "A", "S", "R".
  bool isRelated(const InvoiceId& invoice, std::string_view relation) const;

  /// Where this taxpayer's chain ends.
  ChainEnd end() const;
  /// The last one of the series that a kind belongs to; nothing before the first.
  std::optional<std::int32_t> lastNumber(InvoiceKind kind) const;

  /// What it was opened over.
  const ConnectionPtr& documents() const { return documents_; }

 private:
  ChainEnd begun(ChainEnd end);
  template <typename Any>
  Any chained(const ChainEnd& before, Any record, const std::string& series = {},
              std::int32_t number = 0, std::optional<double> ticket = {});
  void addRecord(ChainEnd& end, const Record& record, const std::string& series,
                 std::int32_t number, std::optional<double> ticket);
  void addEvent(ChainEnd& end, EventKind kind, decltype(Event::data) data, std::string_view text);
  void summarise(ChainEnd& end);
  void store(const ChainEnd& before, const ChainEnd& after);
  Statement ofSeries(const std::string& series) const;
  std::int32_t nextNumber(InvoiceKind kind);
  Registration required(const std::string& number) const;
  std::string moment(const std::string& last) const;
  void execute(const Statement& statement);

  Settings settings_;
  ConnectionPtr documents_;
  Hasher hasher_;
  std::int64_t nextSummary_ = 0;  // seconds; before it there is none to write
};

}  // namespace tavelor::fiscal
