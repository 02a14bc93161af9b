// SPDX-License-Identifier: MIT
// What the tests of all engines share.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tests/support/temporary_folder.hpp"

namespace tavelor::engine::test {

using tavelor::test::TemporaryFolder;

/// The error that a call raises, if it does.
template <typename Call>
std::optional<Error> errorOf(Call call) {
  try {
    call();
  } catch (const Error& error) {
    return error;
  }
  return std::nullopt;
}

/// Its number; 0 when the call raises nothing.
template <typename Call>
std::int32_t errorNumber(Call call) {
  const auto error = errorOf(call);
  return error ? error->number() : 0;
}

inline RowStore fetchAll(Session& session, std::string_view sql, std::vector<ColumnType> types) {
  RowStore rows(std::move(types));
  session.prepare(sql)->fetch(rows);
  return rows;
}

inline std::int64_t wholeOf(Session& session, std::string_view sql) {
  return fetchAll(session, sql, {ColumnType::kInt32}).integer(0, 0);
}

inline double realOf(Session& session, std::string_view sql) {
  return fetchAll(session, sql, {ColumnType::kDouble}).real(0, 0);
}

inline std::string textOf(Session& session, std::string_view sql) {
  return std::string(fetchAll(session, sql, {ColumnType::kMemo}).text(0, 0));
}

}  // namespace tavelor::engine::test
