// SPDX-License-Identifier: MIT
// A connection to one database of an installation.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/engine/text_found.hpp"
#include "tavelor/services/recordset/constants.hpp"

namespace tavelor {

class Connection;
class RecordsetParts;
class RecordsetStore;
class Statement;
struct Locale;
using ConnectionPtr = std::shared_ptr<Connection>;

namespace dialect {
class PlanCache;
}
namespace engine {
class Session;
}

/// A session and its prepared plans, lent by whoever keeps them. Both go back when the last holder
/// of the lease lets go.
class TAVELOR_API SessionLease {
 public:
  virtual ~SessionLease() = default;
  /// The session that was leased.
  virtual engine::Session& session() = 0;
  /// Its plans.
  virtual dialect::PlanCache& plans() = 0;
  /// What rows are read by. Another one than plans() where this lease stands for a read that was
  /// given no connection, while whoever keeps the sessions has a transaction open in another.
  virtual dialect::PlanCache& readingPlans() { return plans(); }
};

/// Who is told of every statement that goes through connections: Execute, Open, Requery,
/// UpdateBatch.
class TAVELOR_API TraceSink {
 public:
  /// One statement that has run, or failed.
  struct Entry {
    int selector = 0;
    std::string_view text;  ///< as the caller joined it, or as the batch composed it
    std::int64_t microseconds = 0;
    std::int64_t rows = 0;   ///< read or written; -1 where nobody waited to know
    std::int32_t error = 0;  ///< number of the error that it raised, or 0
    std::int64_t waits = 0;  ///< how often it waited for a server
  };

  virtual ~TraceSink() = default;
  /// False spares the clock and the call of statement().
  virtual bool isOn() const = 0;
  /// A statement has run.
  virtual void statement(const Entry& entry) = 0;
};

/// What a connection is opened with.
struct TAVELOR_API ConnectionSettings {
  std::shared_ptr<SessionLease> lease;
  std::shared_ptr<const Locale>
      locale;  ///< by which texts read as numbers and dates; null: Spanish
  std::string connectionString;
  int selector = 0;
  std::shared_ptr<TraceSink> trace;  ///< may be null
};

/// An open connection, or a closed one that refuses everything. Used by one thread.
///
/// Errors of all members but State, ConnectionString: 3704 when closed. After some errors, a full
/// disk above all, the database undoes the whole transaction by itself; everything but
/// RollbackTrans raises errors::kTransactionLost then, until each level is rolled back, so that
/// nothing meant for the transaction is stored alone.
class TAVELOR_API Connection final : public Object,
                                     public std::enable_shared_from_this<Connection> {
 public:
  /// A closed connection.
  Connection() = default;
  /// An open connection over a leased session.
  static ConnectionPtr open(ConnectionSettings settings);
  /// Rolls back what is not committed.
  ~Connection() override;
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  std::string typeName() const override { return "Connection"; }

  /// Gives the number of open levels: 1 for the outermost transaction.
  int BeginTrans();
  /// 3219 when no transaction is open. When the outermost one fails nothing of the transaction is
  /// left, and none is open.
  void CommitTrans();
  /// 3219 when no transaction is open. After an outermost commit that failed it does nothing, once:
  /// whoever catches the error may roll back whatever it was that failed.
  void RollbackTrans();
  /// Closes the record sets that are open over it; their pending changes are lost. Raises 3246
  /// inside a transaction, with nothing closed.
  void Close();
  /// Open or closed.
  ObjectState State() const { return lease_ ? ObjectState::kOpen : ObjectState::kClosed; }
  /// As the installation gives it.
  std::string ConnectionString() const { return connectionString_; }

  /// Runs a statement that gives no rows; the number of rows written. After an error nothing of the
  /// statement is left.
  std::int64_t Execute(const Statement& statement);
  /// The same for a caller who does not ask how many rows were written. On a server, inside a
  /// transaction, it is on its way when this returns; if it fails, the next call that waits for the
  /// server raises its error, CommitTrans at the latest, and the transaction is lost.
  void Send(const Statement& statement);

  /// The value of `column` in the first row of a SELECT; nothing when there is no row. Looks at no
  /// further row, so what is wrong with a later one stays unknown. Raises 3265 for a column that
  /// the row does not have, 3709 when closed.
  std::optional<Variant> firstValue(const Statement& statement, std::string_view column) const;
  /// True if a SELECT gives a row; looks at no further one.
  bool anyRow(const Statement& statement) const;

  /// Rows of a table that has a text index, by the beginnings of their words: their keys, `most` of
  /// them, the best ones first. `question` is what somebody types: blanks and signs only part its
  /// words. Raises kNotSupported for an engine without text indexes, 3709 when closed. No statement
  /// of the dialect: no trace tells of it.
  std::vector<engine::TextFound> findText(std::string_view table, std::string_view question,
                                          std::size_t most) const;
  /// Behind the writing of very many rows, so that the next question need not bring them into the
  /// text indexes. Raises nothing but 3709 when closed: what can't be done now is done by those who
  /// ask.
  void absorbTexts() const;

  /// Makes every other transaction that calls it for that table wait until this one ends, where the
  /// engine lets several write at a time. A statement that reads the largest number of a table does
  /// so by itself; who writes what another one may be about to write too calls it first.
  void HoldNumbersOf(std::string_view table);

  /// Number of its database in the installation.
  int selector() const { return selector_; }
  /// How often the work of this apartment has waited for the server since it was connected; 0 for a
  /// file. What a till a network away pays for.
  std::int64_t waits() const;
  /// Open levels; 0 when closed.
  int transactionLevel() const;
  /// By which texts read.
  const std::shared_ptr<const Locale>& locale() const { return locale_; }

 private:
  friend class RecordsetParts;
  friend class BatchWriter;
  friend class RowRefresher;

  SessionLease& lease() const;
  /// The rows of a SELECT, `most` of them at most. Raises 3709 when closed.
  std::shared_ptr<RecordsetStore> fetch(const Statement& statement, std::size_t most) const;
  /// Runs `work`, which gives a number of rows, and tells the trace of it. The text of what runs is
  /// asked for only where a trace is on.
  template <typename TextOf, typename Work>
  std::int64_t traced(const TextOf& textOf, Work&& work) const;
  void rollbackAll() noexcept;

  std::shared_ptr<SessionLease> lease_;
  std::shared_ptr<const Locale> locale_;
  std::string connectionString_;
  std::shared_ptr<TraceSink> trace_;
  RecordsetParts* firstRecordset_ = nullptr;  // those open over this connection, linked
  int selector_ = 0;
};

}  // namespace tavelor
