// SPDX-License-Identifier: MIT
// What tables a database has: the types that the dialect, the engines and the record set share.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"

namespace tavelor::engine {

/// A column's type, by the numbers that a record set's Field.Type answers.
enum class ColumnType : std::uint8_t {
  kInt16 = 2,
  kInt32 = 3,
  kSingle = 4,
  kDouble = 5,
  kCurrency = 6,
  kDate = 7,
  kBoolean = 11,
  kByte = 17,
  kText = 202,   ///< up to `size` characters
  kMemo = 203,   ///< text without a limit
  kBinary = 205  ///< bytes without a limit
};

/// Whether a column holds text.
constexpr bool isText(ColumnType t) {
  return t == ColumnType::kText || t == ColumnType::kMemo;
}
/// Whether a column holds whole numbers.
constexpr bool isWhole(ColumnType t) {
  return t == ColumnType::kInt16 || t == ColumnType::kInt32 || t == ColumnType::kByte;
}
/// What a whole type holds.
struct TAVELOR_API WholeRange {
  std::int64_t least;
  std::int64_t most;
};
/// Of a whole type.
constexpr WholeRange wholeRange(ColumnType t) {
  if (t == ColumnType::kByte) return {0, 0xFF};
  if (t == ColumnType::kInt16) return {-0x8000, 0x7FFF};
  return {-0x8000'0000LL, 0x7FFF'FFFF};
}
/// Whether a column holds numbers, money among them.
constexpr bool isNumeric(ColumnType t) {
  return isWhole(t) || t == ColumnType::kSingle || t == ColumnType::kDouble ||
         t == ColumnType::kCurrency;
}
/// Bytes of a number, date or flag; of memo and binary the most that a field tells: 1 GiB of
/// two-byte characters, and the largest number of bytes. 0 for a text, whose size is its column's.
TAVELOR_API std::int32_t fixedSize(ColumnType type);
/// The word of the dialect's DDL: "TEXT", "MEMO", "LONG"...
TAVELOR_API std::string_view ddlWord(ColumnType type);

/// One column of a table.
struct TAVELOR_API Column {
  std::string name;
  ColumnType type = ColumnType::kText;
  std::int32_t size = 0;  ///< characters, of kText only
  bool nullable = true;
  bool autoNumber = false;
  std::string defaultText;  ///< the DEFAULT literal as written, or ""
};

/// Finds names without regard to case. Open addressing over the hashes of the folded names.
class TAVELOR_API NameIndex {
 public:
  /// Makes room for so many names.
  void reserve(std::size_t names);
  /// `position` is what find() will give for `name`.
  void add(std::string_view name, std::size_t position);
  /// The first position with that hash for which `isName(position)` says yes, or -1.
  template <typename Test>
  int find(std::string_view name, Test isName) const {
    if (slots_.empty()) return -1;
    const std::uint32_t hash = hashOf(name);
    for (std::size_t i = hash & (slots_.size() - 1); slots_[i].position >= 0;
         i = (i + 1) & (slots_.size() - 1)) {
      if (slots_[i].hash == hash && isName(static_cast<std::size_t>(slots_[i].position))) {
        return slots_[i].position;
      }
    }
    return -1;
  }

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::int32_t position = -1;
  };
  /// Equal for names that differ in case only.
  static std::uint32_t hashOf(std::string_view name);

  std::vector<Slot> slots_;  ///< a power of two, at most half full
};

/// One table.
struct TAVELOR_API Table {
  std::string name;
  std::vector<Column> columns;
  std::vector<std::size_t> key;  ///< positions of the primary key's columns, in key order
  bool counter = false;          ///< its rows are counters: what is read of them is counted up
  NameIndex columnIndex;         ///< made by the catalogue; find() works without it, by trying all

  /// Position of a column without regard to case, or -1.
  int find(std::string_view column) const;
};

/// The tables of one database. Never changes once made, so threads may share it.
class TAVELOR_API Catalogue {
 public:
  Catalogue() = default;
  /// Takes the tables and indexes their names.
  explicit Catalogue(std::vector<Table> tables);

  /// Without regard to case; null when there is none.
  const Table* find(std::string_view table) const;
  /// In the order in which they were given.
  const std::vector<Table>& tables() const { return tables_; }

 private:
  std::vector<Table> tables_;
  NameIndex index_;
};

}  // namespace tavelor::engine
