// SPDX-License-Identifier: MIT
// Rows of tables by their own names.
#include "tavelor/web/master_rows.hpp"

#include "tavelor/frame/class_info.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor::web {

Json rowsOf(const Statement& select, std::int64_t most) {
  RecordsetPtr rows;
  ConnectionPtr connection;
  DataSession().OpenRecordset(selector::kMain, select, rows, connection);
  Json list = Json::array();
  for (const Row row : rows) {
    if (most-- == 0) break;
    Json values = Json::object();
    for (std::int32_t i = 0; i < rows->Fields().Count(); ++i) {
      const std::string& name = rows->Field(i).Name();
      const Variant value = row.value(std::string_view(name));
      if (value.getIf<Bytes>() == nullptr) values[name] = toJson(value);
    }
    list.push_back(std::move(values));
  }
  return list;
}

Json rowsOfOwner(Statement::Constant table, std::string_view owner, Statement::Constant column,
                 Statement::Constant order) {
  Statement select("SELECT * FROM ");
  select << table << " WHERE " << column << " = " << sqlText(owner);
  if (!order.empty()) select << " ORDER BY " << order;
  return rowsOf(select);
}

std::optional<Json> rowOf(const Statement& select) {
  Json rows = rowsOf(select);
  if (rows.empty()) return std::nullopt;
  return std::move(rows.front());
}

Json accountOf(flows::LedgerOf of, const std::string& owner, std::optional<Date> from,
               std::optional<Date> to) {
  const std::optional<flows::Account> account = flows::readAccount(of, owner, from, to);
  if (!account) return nullptr;
  Json entries = Json::array();
  for (const flows::AccountEntry& entry : account->entries) {
    entries.push_back({{"id", entry.id},
                       {"day", entry.date ? Json(dayText(*entry.date)) : Json(nullptr)},
                       {"text", entry.text},
                       {"document", toJson(entry.document)},
                       {"debit", toJson(entry.debit)},
                       {"credit", toJson(entry.credit)},
                       {"balance", toJson(entry.right)}});
  }
  return {{"entries", std::move(entries)},
          {"opening", toJson(account->opening)},
          {"debit", toJson(account->debit)},
          {"credit", toJson(account->credit)},
          {"balance", toJson(account->closing)}};
}

}  // namespace tavelor::web
