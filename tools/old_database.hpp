// SPDX-License-Identifier: MIT
// A database file of the Jet engine (.mdb), read by a process of its own.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/callback.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor::tools {

/// A column's type, by the numbers of the format.
enum class OldType : std::uint8_t {
  kFlag = 1,
  kByte = 2,
  kInt16 = 3,
  kInt32 = 4,
  kMoney = 5,
  kSingle = 6,
  kDouble = 7,
  kDate = 8,
  kBinary = 9,
  kText = 10,
  kLongBinary = 11,
  kMemo = 12,
  kGuid = 15,
  kDecimal = 16,
};

struct OldColumn {
  std::string name;
  OldType type = OldType::kText;
};

struct OldTable {
  std::string name;
  std::vector<OldColumn> columns;
  std::uint64_t rows = 0;  ///< as the file tells
};

/// That each row of a table names one of another.
struct OldRelation {
  std::string child;
  std::vector<std::string> childColumns;
  std::string parent;
  std::vector<std::string> parentColumns;
};

struct OldRow {
  std::uint64_t number = 0;  ///< in its table, from 1
  /// A decimal is the text of its digits, with a point; a GUID is a text.
  std::vector<Variant> values;
  std::string fault;  ///< of the first value that cannot be read; "" for none
};

/// Opened for reading only. The library that knows the format trusts what a file says of itself,
/// so a damaged one may end the process that reads it: that is another one, and its end is an error
/// of ours. It holds one row at a time.
///
/// All members raise FileError that names the file: for one that cannot be read or is no such
/// database, for a version that is not read, for a password, for damage.
class OldDatabase {
 public:
  /// A longer text or picture is a fault of its row.
  static constexpr std::size_t kLongestValue = std::size_t{64} << 20U;

  /// Reads what the file has. The process is started here: the fewer files are open by then, the
  /// better.
  explicit OldDatabase(const std::string& path);
  ~OldDatabase();
  OldDatabase(const OldDatabase&) = delete;
  OldDatabase& operator=(const OldDatabase&) = delete;

  /// Those of the user, in the order of the file.
  const std::vector<OldTable>& tables() const { return tables_; }
  /// Names of tables that lie in other files.
  const std::vector<std::string>& linked() const { return linked_; }
  /// Those that the file has kept to; others are drawings.
  const std::vector<OldRelation>& relations() const { return relations_; }

  /// Gives all rows of a table, in the order of the file. Raises FileError too when there are fewer
  /// than the file tells. What `take` raises passes; nothing more can be read then.
  void read(std::size_t table, const Callback<void(OldRow&)>& take);

 private:
  class Process;
  void readStructure();
  [[noreturn]] void fail(std::string_view what) const;

  std::string path_;
  std::unique_ptr<Process> process_;
  std::vector<OldTable> tables_;
  std::vector<std::string> linked_;
  std::vector<OldRelation> relations_;
};

}  // namespace tavelor::tools
