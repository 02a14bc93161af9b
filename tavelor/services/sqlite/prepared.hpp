// SPDX-License-Identifier: MIT
// A compiled statement: binding, running, fetching.
#pragma once

#include <optional>

#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/value.hpp"
#include "tavelor/services/sqlite/database.hpp"

namespace tavelor::engine::sqlite {

class PreparedStatement final : public Prepared {
 public:
  PreparedStatement(std::shared_ptr<Database> database, std::string_view engineText)
      : database_(std::move(database)),
        statement_(compile(*database_, engineText)),
        writes_(sqlite3_stmt_readonly(statement_.get()) == 0) {}

  int parameterCount() const override { return sqlite3_bind_parameter_count(statement_.get()); }
  void bind(int index, const Value& value) override;
  std::int64_t run() override;
  bool metOtherSchema() override;

 private:
  void fetchRows(RowStore& rows, std::size_t most) override;
  /// Leaves the statement ready for its next run, then raises.
  [[noreturn]] void failAndReset(int code);

  std::shared_ptr<Database> database_;
  StatementHandle statement_;
  bool writes_;
  int compiledAgain_ = 0;
};

}  // namespace tavelor::engine::sqlite
