// SPDX-License-Identifier: MIT
// A transaction in the main database, for what the server keeps itself.
#pragma once

#include "tavelor/flows/both_databases.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::web {

inline constexpr int kMain = 1;  ///< selector of the database that holds the tables Web_*

/// Undone unless commit() is called. Only one process or thread has it at a time.
class Transaction {
 public:
  Transaction() : connection_(DataSession().OpenConnection(kMain)), transaction_(connection_) {}
  const ConnectionPtr& connection() const { return connection_; }
  void commit() { transaction_.commit(); }

 private:
  ConnectionPtr connection_;
  flows::DatabaseTransaction transaction_;
};

}  // namespace tavelor::web
