// SPDX-License-Identifier: MIT
// What a record set is made of.
//
//   RecordsetStore      rows and pending changes, shared with clones
//   RecordsetView       which rows show, in which order
//   RecordsetCursor     where the set stands in the view
//   RecordsetEdit       the row in edit, and what is pending
//   RecordsetListeners  who is told
//
// Each knows those above it that it is made with, and none below.
#pragma once

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/recordset/constants.hpp"
#include "tavelor/services/recordset/recordset_cursor.hpp"
#include "tavelor/services/recordset/recordset_edit.hpp"
#include "tavelor/services/recordset/recordset_listeners.hpp"
#include "tavelor/services/recordset/recordset_store.hpp"
#include "tavelor/services/recordset/recordset_view.hpp"

namespace tavelor {

inline constexpr std::string_view kRecordsetSource = "Recordset";

/// Fields appended to a set that is not open yet.
struct AppendedFields {
  std::shared_ptr<dialect::Plan> plan = std::make_shared<dialect::Plan>();
  RecordsetSchema schema{plan, {}};
};

/// The parts of one set, and the work that takes several of them.
class RecordsetParts {
 public:
  using Row = RecordsetStore::Row;

  explicit RecordsetParts(Recordset& set) : listeners(set, store) {}
  /// Of a connection, for what else is made of them. Raises 3704 for a closed one.
  static engine::Session& sessionOf(const Connection& connection);
  RecordsetParts(const RecordsetParts&) = delete;
  RecordsetParts& operator=(const RecordsetParts&) = delete;
  ~RecordsetParts();

  std::shared_ptr<RecordsetStore> store;     ///< null when closed
  ConnectionPtr connection;                  ///< null without one
  std::unique_ptr<AppendedFields> appended;  ///< of a closed set; null without any
  LockType lockType = LockType::kBatchOptimistic;
  std::int32_t pageSize = 10;
  RecordsetView view;
  RecordsetCursor cursor{view};
  RecordsetEdit edit{view, cursor};
  RecordsetListeners listeners;
  RecordsetParts* nextOnConnection = nullptr;  ///< the sets that are open over it, linked

  // ---- Open and close

  /// The store, or 3704.
  RecordsetStore& opened() const {
    if (!store) raiseClosed();
    return *store;
  }
  /// Of an open set or of appended fields, or 3704.
  const RecordsetSchema& schema() const;
  /// Fetches and shows the rows of a statement. Raises 3709 for no or a closed connection.
  void open(const Statement& statement, const ConnectionPtr& over);
  /// Shows all rows of a store.
  void open(std::shared_ptr<RecordsetStore> rows);
  void close() noexcept;
  /// Grows whenever other rows are shown: whoever holds a row by its number asks it.
  std::uint32_t openings() const { return openings_; }
  /// Null leaves the connection that there is.
  void connect(const ConnectionPtr& to);
  /// The open connection, or 3709.
  Connection& openConnection() const;
  /// Runs the statement again and shows the new rows by the same filter text and order. After an
  /// error the old rows are still there.
  void refetch();

  // ---- After listeners were told

  /// Rows that were settled before are rows of this store still, else 3219.
  void requireSame(const std::shared_ptr<RecordsetStore>& before) const;
  /// The row that they were told of is still the one to work on, else 3219.
  void requireStillOn(Row row) const;

  // ---- Moving

  /// The current row of an open set, or 3021.
  Row currentRow() const {
    opened();
    return cursor.row();
  }
  /// The same for reading and writing: -2147217885 for a deleted one.
  Row readableRow() const {
    opened();
    return cursor.readableRow();
  }
  void requireMovable(int direction);
  /// Posts the row in edit. The listeners of that may have closed the set: 3704 then.
  void leaveRow();
  void standOnFirst();
  /// One row on; behind the last one the listeners are asked for more.
  void step(int direction);
  /// Announces a move around `work`.
  template <typename Work>
  void moving(EventReason reason, Work&& work, bool deniable = true) {
    listeners.around({.kind = EventKind::kMove, .reason = reason, .deniable = deniable},
                     std::forward<Work>(work));
  }
  /// Sets a filter and goes to the first row. `parse` gives the filter for the rows of then.
  template <typename Parse>
  void filter(Parse&& parse);

  // ---- Changes

  /// 3704 for a closed set, 3251 for a read-only one.
  void requireWritable() const;
  /// Whether each change is written as it is posted.
  bool writesAtOnce() const { return lockType == LockType::kOptimistic && !store->detached; }
  void assign(std::size_t column, const Variant& value);
  void appendChunk(std::size_t column, const Variant& data);
  Variant getChunk(std::size_t column, std::size_t length);
  /// Posts the row in edit, and writes it where changes are written at once. After an error it is
  /// in edit still.
  void post();
  /// Writes pending changes. Errors and what is left as Recordset::UpdateBatch tells.
  void write(const std::vector<Row>& rows);
  /// Reads rows again. Errors and what is left as Recordset::Resync tells.
  void resync(const std::vector<Row>& rows, ResyncValues values);

 private:
  [[noreturn]] static void raiseClosed();
  void postAndWrite();
  void joinStore(std::shared_ptr<RecordsetStore> rows);
  void leaveStore() noexcept;
  void leaveConnection() noexcept;

  std::uint32_t openings_ = 0;
};

template <typename Parse>
void RecordsetParts::filter(Parse&& parse) {
  opened();
  if (listeners.areToldOfRecords()) raise(errors::kNotAllowedInContext, kRecordsetSource);
  leaveRow();
  moving(EventReason::kMove, [&] {
    opened();
    leaveRow();
    view.filter(parse());
    standOnFirst();
  });
}

}  // namespace tavelor
