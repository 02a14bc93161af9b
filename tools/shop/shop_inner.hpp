// SPDX-License-Identifier: MIT
// What the flows of a shop share behind shop.hpp.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tools/shop/rows.hpp"

namespace tavelor::shop {

inline constexpr std::string_view kSeries = "A";
inline constexpr std::string_view kNobody = "";  // tickets without an employee

/// A whole number as a statement writes it.
inline std::string numberText(double value) {
  return sqlNumber(value, 0);
}

/// "" for Null.
inline std::string text(const Variant& value) {
  return value.isNull() ? std::string() : value.toText(Apartment::current().locale());
}

/// A column of all rows that have it, as numbers.
inline std::vector<double> numbersOf(int selector, const Statement& statement,
                                     std::string_view column, const ConnectionPtr& connection) {
  std::vector<double> numbers;
  for (Rows rows(selector, statement, connection); rows.hasRow(); rows.next()) {
    if (!rows.isNull(column)) numbers.push_back(rows.number(column));
  }
  return numbers;
}

/// A transaction in each. The main database comes first: whoever holds it may look at the documents
/// in peace. Undone unless commit() is called.
class BothDatabases {
 public:
  enum class First : std::uint8_t { kMain, kDocuments };

  BothDatabases(const ConnectionPtr& main, const ConnectionPtr& documents)
      : main_(main), documents_(documents) {
    begin();
  }
  ~BothDatabases() { undo(); }
  BothDatabases(const BothDatabases&) = delete;
  BothDatabases& operator=(const BothDatabases&) = delete;

  /// Once more, after commit().
  void begin() {
    main_->BeginTrans();
    mainOpen_ = true;
    try {
      documents_->BeginTrans();
    } catch (...) {
      undo();
      throw;
    }
    documentsOpen_ = true;
  }

  void commit(First first) {
    if (first == First::kMain) commitMain();
    documents_->CommitTrans();
    documentsOpen_ = false;
    if (first == First::kDocuments) commitMain();
  }

 private:
  void commitMain() {
    main_->CommitTrans();
    mainOpen_ = false;
  }
  void undo() noexcept {
    const auto rollBack = [](Connection& connection, bool& open) {
      if (!std::exchange(open, false)) return;
      try {
        connection.RollbackTrans();
      } catch (const Error&) {  // a transaction that the engine has ended by itself
      }
    };
    rollBack(*documents_, documentsOpen_);
    rollBack(*main_, mainOpen_);
  }

  ConnectionPtr main_;
  ConnectionPtr documents_;
  bool mainOpen_ = false;
  bool documentsOpen_ = false;
};

}  // namespace tavelor::shop
