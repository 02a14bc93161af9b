// SPDX-License-Identifier: MIT
// Rows of text taken into a table: new ones are inserted, the others rewritten where they differ.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tools/csv_file.hpp"
#include "tools/fields.hpp"
#include "tools/refusals.hpp"

namespace tavelor::tools {

/// Where rows come from, and how they are read.
struct ImportSetup {
  std::vector<FieldSource> sources;  ///< by field; the key's is a column
  std::size_t columns = 0;           ///< of the file
  const Locale* numbers = nullptr;   ///< how the file writes them
  bool isDryRun = false;             ///< all is done and undone
};

struct ImportCounts {
  std::uint64_t added = 0;
  std::uint64_t changed = 0;
  std::uint64_t same = 0;
  std::uint64_t refused = 0;

  std::uint64_t total() const { return added + changed + same + refused; }
};

/// Takes rows in batches, each in a transaction of its own. The first field of the table is the
/// key, a text. A field that no source gives keeps its value in a row that is there. A row that
/// says what is stored is not written, so the same file can be taken again after whatever ended the
/// first time.
///
/// A row is refused for its own faults, and nothing of it is written: no key, a key that the file
/// had before, a text that does not fit or is no number. Any other error undoes the batch and
/// passes.
class RowImport {
 public:
  static constexpr std::size_t kBatch = 1000;

  virtual ~RowImport();
  RowImport(const RowImport&) = delete;
  RowImport& operator=(const RowImport&) = delete;

  /// One transaction.
  void take(const std::vector<CsvFile::Row>& rows, std::size_t count);

  /// Behind the last batch: what it has written is brought into the indexes at once.
  void finish();

  const ImportCounts& counts() const { return counts_; }
  /// Of the last call, by line: rows that were refused, and rows that were taken with a remark.
  const std::vector<Refusal>& refusals() const { return refusals_; }

 protected:
  struct Record : FieldValues {
    std::uint64_t line = 0;
    std::string_view key;
  };

  RowImport(const ImportTable& table, ImportSetup setup);

  /// What is wrong with the values as such, or "". May put better ones in their places.
  virtual std::string check(Record& record) = 0;
  virtual void insert(const Record& record) = 0;
  /// True if insert() runs one statement only: the engine itself leaves nothing of one that fails.
  virtual bool insertsByOneStatement(const Record& /*record*/) const { return false; }
  /// `stored` stands on the row, `differing` are the fields in which the two differ. Not called
  /// where there are none.
  virtual void rewrite(const Record& record, Recordset& stored,
                       std::span<const std::size_t> differing) = 0;
  /// Behind each row that is taken; `before` stands on what was stored of it, or is null.
  virtual void taken(const Record& record, Recordset* before);

  const ImportTable& table() const { return table_; }
  ConnectionPtr& connection() { return connection_; }
  void remark(const Record& record, std::string what);
  /// The text of a field that must be one of some; names the field and the text.
  std::string faultOf(std::size_t field, std::string_view what, std::string_view text) const;

 private:
  class SeenKeys;
  struct Stored;

  std::string read(const CsvFile::Row& row, Record& record);
  std::vector<Record> readBatch(const std::vector<CsvFile::Row>& rows, std::size_t count);
  Stored stored(const std::vector<Record>& batch);
  void insertWhole(const Record& record);
  void write(const Record& record, const Stored& before);
  std::string widthFault(const Record& record, Recordset& rows) const;
  bool differs(const Record& record, std::size_t field, Recordset& rows) const;
  void refuse(std::uint64_t line, std::string key, std::string reason);

  const ImportTable& table_;
  ImportSetup setup_;
  ConnectionPtr connection_;
  std::unique_ptr<SeenKeys> seen_;
  ImportCounts counts_;
  std::vector<Refusal> refusals_;
};

}  // namespace tavelor::tools
