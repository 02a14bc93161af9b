// SPDX-License-Identifier: MIT
// Which tables a statement reads whole, and which it may.
#pragma once

#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/dialect/plan.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tests/dialect/corpus_case.hpp"

namespace tavelor::tests {

/// The tables and members that may be read whole, by the page that tells why.
struct AllowedScans {
  std::set<std::string> tables;
  std::set<std::string> members;

  AllowedScans() {
    std::ifstream page(detail::kSource / "tests" / "sqlite" / "scans.txt");
    constexpr std::string_view kTable = "table ";
    for (std::string line; std::getline(page, line);) {
      if (line.empty() || line.front() == '#' || line.starts_with("== ")) continue;
      if (line.starts_with(kTable)) {
        tables.insert(line.substr(kTable.size()));
      } else {
        members.insert(line);
      }
    }
  }
};

/// What the engine tells of a statement of its own: "SEARCH Bancos USING INDEX ..", line by line.
inline std::vector<std::string> explain(engine::Session& session, const std::string& sql) {
  using engine::ColumnType;
  engine::RowStore rows(
      {ColumnType::kInt32, ColumnType::kInt32, ColumnType::kInt32, ColumnType::kText});
  session.prepare("EXPLAIN QUERY PLAN " + sql)->fetch(rows);
  std::vector<std::string> lines;
  for (std::uint32_t row = 0; row < rows.rows(); ++row) lines.emplace_back(rows.text(row, 3));
  return lines;
}

/// The tables of the schema that a statement of the engine's own reads whole.
inline std::set<std::string> scannedTables(engine::Session& session, const std::string& sql) {
  constexpr std::string_view kScan = "SCAN ";
  std::set<std::string> tables;
  for (const std::string& line : explain(session, sql)) {
    if (!line.starts_with(kScan)) continue;
    const std::string name = line.substr(kScan.size(), line.find(' ', kScan.size()) - kScan.size());
    // A constant row, and what a statement makes for itself, are no tables.
    if (schemaCatalogue().find(name) != nullptr) tables.insert(name);
  }
  return tables;
}

/// The tables of the schema that a plan reads whole.
inline std::set<std::string> scannedTables(engine::Session& session, const dialect::Plan& plan) {
  std::set<std::string> tables;
  for (const dialect::Step& step : plan.steps) tables.merge(scannedTables(session, step.sql));
  return tables;
}

}  // namespace tavelor::tests
