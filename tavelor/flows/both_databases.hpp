// SPDX-License-Identifier: MIT
// A transaction in the main database and one in the documents, begun and ended together.
#pragma once

#include <cstdint>
#include <utility>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

/// A transaction on a connection, undone unless commit() is called. Inside another one it is a part
/// of that.
class DatabaseTransaction {
 public:
  explicit DatabaseTransaction(ConnectionPtr connection) : connection_(std::move(connection)) {
    begin();
  }
  ~DatabaseTransaction() { undo(); }
  DatabaseTransaction(const DatabaseTransaction&) = delete;
  DatabaseTransaction& operator=(const DatabaseTransaction&) = delete;

  void begin() {
    connection_->BeginTrans();
    isOpen_ = true;
  }
  void commit() {
    connection_->CommitTrans();
    isOpen_ = false;
  }
  void undo() noexcept {
    if (!std::exchange(isOpen_, false)) return;
    try {
      connection_->RollbackTrans();
    } catch (const Error&) {  // a transaction that the engine has ended by itself
    }
  }

 private:
  ConnectionPtr connection_;
  bool isOpen_ = false;
};

/// The main database comes first: whoever holds it may look at the documents in peace. Undone
/// unless commit() is called.
class BothDatabases {
 public:
  enum class First : std::uint8_t { kMain, kDocuments };

  BothDatabases(const ConnectionPtr& main, const ConnectionPtr& documents)
      : main_(main), documents_(documents) {}

  /// Once more, after commit().
  void begin() {
    main_.begin();
    try {
      documents_.begin();
    } catch (...) {
      main_.undo();
      throw;
    }
  }

  void commit(First first) {
    if (first == First::kMain) main_.commit();
    documents_.commit();
    if (first == First::kDocuments) main_.commit();
  }

 private:
  DatabaseTransaction main_;
  DatabaseTransaction documents_;  // ends before the main one does
};

/// For whoever only looks: while it lives no sale and no closing is seen half, because each of them
/// takes a number of these tables before it commits.
class QuietDatabases {
 public:
  QuietDatabases(const ConnectionPtr& main, const ConnectionPtr& documents)
      : both_(main, documents) {
    documents->HoldNumbersOf("Tickets");
    main->HoldNumbersOf("Cierres");
  }

 private:
  BothDatabases both_;
};

}  // namespace tavelor::flows
