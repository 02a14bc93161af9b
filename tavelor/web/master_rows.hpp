// SPDX-License-Identifier: MIT
// Rows of tables by their own names, for the pages of articles, customers and suppliers.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "tavelor/flows/account.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/web/json.hpp"

namespace tavelor::web {

/// The first rows of a SELECT of the main database, each an object by the names of its columns.
/// Bytes are left out.
Json rowsOf(const Statement& select, std::int64_t most = 10'000);
/// The rows of one owner, by the column that names him.
Json rowsOfOwner(Statement::Constant table, std::string_view owner,
                 Statement::Constant column = "Codigo", Statement::Constant order = {});
/// The first row, or nothing.
std::optional<Json> rowOf(const Statement& select);

/// The account of a partner, {entries, balance, opening, debit, credit}; null for one who is not
/// there and never was.
Json accountOf(flows::LedgerOf of, const std::string& owner, std::optional<Date> from = {},
               std::optional<Date> to = {});

}  // namespace tavelor::web
