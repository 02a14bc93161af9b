// SPDX-License-Identifier: MIT
// Reads the values of a row, compares them with what is stored, and has them written.
#include "tools/row_import.hpp"

#include <algorithm>
#include <functional>

#include <fmt/format.h>

#include "tavelor/flows/both_databases.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/data_session.hpp"
#include "tools/row_errors.hpp"

namespace tavelor::tools {

namespace {

bool isText(FieldKind kind) {
  return kind == FieldKind::kText || kind == FieldKind::kWord;
}

}  // namespace

/// The keys of the file with their lines, 12 bytes in at most half of the slots. Keys count as
/// equal when their hashes are, which for distinct keys is not to be expected in 64 bits.
class RowImport::SeenKeys {
 public:
  /// The line that had the key before, or 0.
  std::uint64_t add(std::string_view key, std::uint64_t line) {
    if (2 * (used_ + 1) > hashes_.size()) grow();
    const std::uint64_t hash = std::max<std::uint64_t>(std::hash<std::string_view>()(key), 1);
    const std::size_t slot = slotOf(hash);
    if (hashes_[slot] == hash) return lines_[slot];
    hashes_[slot] = hash;
    lines_[slot] = static_cast<std::uint32_t>(line);
    ++used_;
    return 0;
  }

 private:
  std::size_t slotOf(std::uint64_t hash) const {
    std::size_t slot = hash & (hashes_.size() - 1);
    while (hashes_[slot] != 0 && hashes_[slot] != hash) slot = (slot + 1) & (hashes_.size() - 1);
    return slot;
  }
  void grow() {
    std::vector<std::uint64_t> hashes(hashes_.empty() ? 1024 : 2 * hashes_.size());
    std::vector<std::uint32_t> lines(hashes.size());
    hashes.swap(hashes_);
    lines.swap(lines_);
    for (std::size_t i = 0; i < hashes.size(); ++i) {
      if (hashes[i] == 0) continue;
      const std::size_t slot = slotOf(hashes[i]);
      hashes_[slot] = hashes[i];
      lines_[slot] = lines[i];
    }
  }

  std::vector<std::uint64_t> hashes_;  // 0 is free
  std::vector<std::uint32_t> lines_;
  std::size_t used_ = 0;
};

/// What is stored of the rows of a batch.
struct RowImport::Stored {
  RecordsetPtr rows;
  std::unordered_map<std::string, std::int32_t> positions;
};

RowImport::RowImport(const ImportTable& table, ImportSetup setup)
    : table_(table),
      setup_(std::move(setup)),
      connection_(DataSession().OpenConnection(selector::kMain)),
      seen_(std::make_unique<SeenKeys>()) {}

RowImport::~RowImport() = default;

void RowImport::taken(const Record& /*record*/, Recordset* /*before*/) {}

// ---------------------------------------------------------------------------------------------
// Reading a row

std::string RowImport::faultOf(std::size_t field, std::string_view what,
                               std::string_view text) const {
  return fieldFault(table_.fields[field], what, text);
}

std::string RowImport::read(const CsvFile::Row& row, Record& record) {
  const std::size_t keyColumn = *setup_.sources.front().column;
  record.line = row.line;
  record.values.assign(table_.fields.size(), {});
  if (keyColumn < row.fields.size()) record.key = row.fields[keyColumn];
  if (row.fields.size() != setup_.columns) {
    return fmt::format("{} fields where the first row has {}", row.fields.size(), setup_.columns);
  }
  if (record.key.empty()) return "there is no code";
  for (std::size_t field = 0; field < table_.fields.size(); ++field) {
    const FieldSource& source = setup_.sources[field];
    if (!source.given) continue;
    std::string fault = readField(table_.fields[field], source.in(row.fields), *setup_.numbers,
                                  record.values[field]);
    if (!fault.empty()) return fault;
  }
  try {
    return check(record);
  } catch (const Error& error) {
    if (!isOfTheRow(error.number())) throw;
    return error.description();
  }
}

std::vector<RowImport::Record> RowImport::readBatch(const std::vector<CsvFile::Row>& rows,
                                                    std::size_t count) {
  std::vector<Record> batch;
  batch.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    Record record;
    std::string fault = read(rows[i], record);
    if (fault.empty()) {
      const std::uint64_t before = seen_->add(record.key, record.line);
      if (before != 0) fault = fmt::format("line {} has that code already", before);
    }
    if (fault.empty()) {
      batch.push_back(std::move(record));
    } else {
      refuse(record.line, std::string(record.key), std::move(fault));
    }
  }
  return batch;
}

void RowImport::refuse(std::uint64_t line, std::string key, std::string reason) {
  ++counts_.refused;
  refusals_.push_back({line, std::move(key), std::move(reason)});
}

void RowImport::remark(const Record& record, std::string what) {
  refusals_.push_back({record.line, std::string(record.key), std::move(what), true});
}

// ---------------------------------------------------------------------------------------------
// Writing a batch

void RowImport::take(const std::vector<CsvFile::Row>& rows, std::size_t count) {
  refusals_.clear();
  const ImportCounts before = counts_;
  flows::DatabaseTransaction transaction(connection_);
  try {
    const std::vector<Record> batch = readBatch(rows, count);
    if (!batch.empty()) {
      const Stored present = stored(batch);
      for (const Record& record : batch) write(record, present);
    }
    if (!setup_.isDryRun) transaction.commit();
  } catch (...) {
    counts_ = before;
    throw;
  }
  std::stable_sort(refusals_.begin(), refusals_.end(),
                   [](const Refusal& a, const Refusal& b) { return a.line < b.line; });
}

void RowImport::finish() {
  if (!setup_.isDryRun) connection_->absorbTexts();
}

// One read a batch, by all its keys: a read a row would take longer than its write.
RowImport::Stored RowImport::stored(const std::vector<Record>& batch) {
  Statement statement("SELECT ");
  for (const ImportField& field : table_.fields) {
    statement << (&field == &table_.fields.front() ? Statement::Constant() : ", ") << field.name;
  }
  const Statement::Constant key = table_.fields.front().name;
  statement << " FROM " << table_.name << " WHERE " << key << " In (";
  for (const Record& record : batch) {
    statement << (&record == &batch.front() ? Statement::Constant() : ", ") << sqlText(record.key);
  }
  statement << ")";
  Stored found;
  DataSession().OpenRecordset(selector::kMain, statement, found.rows, connection_);
  const Field code = found.rows->Field(key);
  for (std::int32_t position = 1; !found.rows->Eof(); ++position) {
    found.positions.emplace(*code.Value().getIf<std::string>(), position);
    found.rows->MoveNext();
  }
  return found;
}

std::string RowImport::widthFault(const Record& record, Recordset& rows) const {
  for (std::size_t field = 0; field < table_.fields.size(); ++field) {
    if (!isText(table_.fields[field].kind)) continue;
    const std::string_view text = record.text(field);
    const auto width =
        static_cast<std::size_t>(rows.Field(static_cast<std::int32_t>(field)).DefinedSize());
    if (text.size() > width && text::length(text) > width) {
      return fmt::format("{} has more than {} characters", table_.fields[field].name, width);
    }
  }
  return {};
}

bool RowImport::differs(const Record& record, std::size_t field, Recordset& rows) const {
  const std::string_view column = table_.fields[field].name;
  switch (table_.fields[field].kind) {
    case FieldKind::kText:
    case FieldKind::kWord: {
      std::string old;
      takeColumn(rows, column, old);
      return record.text(field) != old;
    }
    case FieldKind::kFlag: {
      bool old = false;
      takeColumn(rows, column, old);
      return record.flag(field) != old;
    }
    case FieldKind::kDay: {
      double old = 0;
      takeColumn(rows, column, old);
      return record.day(field).value_or(Date()).days() != old;
    }
    default: {
      double old = 0;
      takeColumn(rows, column, old);
      return record.number(field) != old;
    }
  }
}

// A transaction of its own in that of the batch makes the engine keep what each page was before it,
// which costs a third of an insert; a single statement needs none.
void RowImport::insertWhole(const Record& record) {
  if (insertsByOneStatement(record)) return insert(record);
  flows::DatabaseTransaction ofTheRow(connection_);
  insert(record);
  ofTheRow.commit();
}

void RowImport::write(const Record& record, const Stored& before) {
  Recordset& rows = *before.rows;
  if (std::string fault = widthFault(record, rows); !fault.empty()) {
    return refuse(record.line, std::string(record.key), std::move(fault));
  }
  try {
    const auto position = before.positions.find(std::string(record.key));
    if (position == before.positions.end()) {
      insertWhole(record);
      ++counts_.added;
      return taken(record, nullptr);
    }
    flows::DatabaseTransaction ofTheRow(connection_);
    rows.AbsolutePosition(position->second);
    std::vector<std::size_t> differing;
    for (std::size_t field = 1; field < table_.fields.size(); ++field) {
      const bool counts = record.has(field) && table_.fields[field].use != FieldUse::kForNew;
      if (counts && differs(record, field, rows)) differing.push_back(field);
    }
    if (!differing.empty()) rewrite(record, rows, differing);
    ofTheRow.commit();
    ++(differing.empty() ? counts_.same : counts_.changed);
    taken(record, &rows);
  } catch (const Error& error) {
    if (!isOfTheRow(error.number())) throw;
    refuse(record.line, std::string(record.key), error.description());
  }
}

}  // namespace tavelor::tools
