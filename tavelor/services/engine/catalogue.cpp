// SPDX-License-Identifier: MIT
// Look-ups in the tables of a database.
#include "tavelor/services/engine/catalogue.hpp"

#include <algorithm>
#include <bit>
#include <limits>

#include "tavelor/platform/text.hpp"

namespace tavelor::engine {

std::int32_t fixedSize(ColumnType type) {
  switch (type) {
    case ColumnType::kByte:
      return 1;
    case ColumnType::kInt16:
    case ColumnType::kBoolean:
      return 2;
    case ColumnType::kInt32:
    case ColumnType::kSingle:
      return 4;
    case ColumnType::kDouble:
    case ColumnType::kCurrency:
    case ColumnType::kDate:
      return 8;
    case ColumnType::kMemo:
      return 536'870'910;
    case ColumnType::kBinary:
      return std::numeric_limits<std::int32_t>::max();
    case ColumnType::kText:
      break;
  }
  return 0;
}

std::string_view ddlWord(ColumnType type) {
  switch (type) {
    case ColumnType::kInt16:
      return "SHORT";
    case ColumnType::kInt32:
      return "LONG";
    case ColumnType::kSingle:
      return "SINGLE";
    case ColumnType::kDouble:
      return "DOUBLE";
    case ColumnType::kCurrency:
      return "CURRENCY";
    case ColumnType::kDate:
      return "DATETIME";
    case ColumnType::kBoolean:
      return "BIT";
    case ColumnType::kByte:
      return "BYTE";
    case ColumnType::kText:
      return "TEXT";
    case ColumnType::kMemo:
      return "MEMO";
    case ColumnType::kBinary:
      return "LONGBINARY";
  }
  return "";
}

namespace {

bool isAscii(std::string_view text) {
  return std::none_of(text.begin(), text.end(),
                      [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

char lowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

std::uint32_t hashFolded(std::string_view name) {
  std::uint32_t hash = 2166136261U;
  for (const char c : name) {
    hash = (hash ^ static_cast<unsigned char>(lowerAscii(c))) * 16777619U;
  }
  return hash ^ hash >> 15;
}

bool sameName(std::string_view a, std::string_view b) {
  if (a == b) return true;
  if (a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
        return lowerAscii(x) == lowerAscii(y);
      })) {
    return true;
  }
  return !(isAscii(a) && isAscii(b)) && text::equalsIgnoreCase(a, b);
}

}  // namespace

void NameIndex::reserve(std::size_t names) {
  slots_.assign(std::bit_ceil(std::max<std::size_t>(names * 2, 8)), {});
}

void NameIndex::add(std::string_view name, std::size_t position) {
  const std::uint32_t hash = hashOf(name);
  std::size_t i = hash & (slots_.size() - 1);
  while (slots_[i].position >= 0) i = (i + 1) & (slots_.size() - 1);
  slots_[i] = {hash, static_cast<std::int32_t>(position)};
}

std::uint32_t NameIndex::hashOf(std::string_view name) {
  return isAscii(name) ? hashFolded(name) : hashFolded(text::foldCase(name));
}

int Table::find(std::string_view column) const {
  const int found = columnIndex.find(column, [&](std::size_t i) {
    return i < columns.size() && sameName(columns[i].name, column);
  });
  if (found >= 0) return found;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (sameName(columns[i].name, column)) return static_cast<int>(i);
  }
  return -1;
}

Catalogue::Catalogue(std::vector<Table> tables) : tables_(std::move(tables)) {
  index_.reserve(tables_.size());
  for (std::size_t i = 0; i < tables_.size(); ++i) {
    Table& table = tables_[i];
    index_.add(table.name, i);
    table.columnIndex.reserve(table.columns.size());
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
      table.columnIndex.add(table.columns[c].name, c);
    }
  }
}

const Table* Catalogue::find(std::string_view table) const {
  const int found =
      index_.find(table, [&](std::size_t i) { return sameName(tables_[i].name, table); });
  return found < 0 ? nullptr : &tables_[static_cast<std::size_t>(found)];
}

}  // namespace tavelor::engine
