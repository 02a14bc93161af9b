// SPDX-License-Identifier: MIT
// The order of a record set's view.
#include "tavelor/services/recordset/sort.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"

namespace tavelor {

namespace {

using engine::ColumnType;
using Row = RecordsetStore::Row;

constexpr std::string_view kSource = "Recordset.Sort";
constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;

enum class Storage : std::uint8_t { kInteger, kReal, kText };

Storage storageOf(ColumnType type) {
  switch (type) {
    case ColumnType::kSingle:
    case ColumnType::kDouble:
    case ColumnType::kDate:
      return Storage::kReal;
    case ColumnType::kText:
    case ColumnType::kMemo:
    case ColumnType::kBinary:
      return Storage::kText;
    default:
      return Storage::kInteger;
  }
}

// A number whose unsigned order is the order of the values. Equal numbers say nothing about texts
// beyond their first eight bytes, nor about Null against the smallest value: the cells decide then.

std::uint64_t keyOf(std::int64_t value) {
  return static_cast<std::uint64_t>(value) ^ kSignBit;
}

std::uint64_t keyOf(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value + 0.0);  // -0 becomes 0
  return (bits & kSignBit) != 0 ? ~bits : bits | kSignBit;
}

std::uint64_t keyOf(std::string_view text) {
  std::uint64_t key = 0;
  std::memcpy(&key, text.data(), std::min<std::size_t>(text.size(), sizeof key));
  return __builtin_bswap64(key);
}

template <typename Cells>
std::uint64_t keyOfCell(const Cells& cells, Row row, std::size_t column, Storage storage) {
  if (cells.isNull(row, column)) return 0;
  switch (storage) {
    case Storage::kInteger:
      return keyOf(cells.integer(row, column));
    case Storage::kReal:
      return keyOf(cells.real(row, column));
    case Storage::kText:
      return keyOf(cells.text(row, column));
  }
  return 0;
}

template <typename A, typename B>
int compareCells(const A& a, Row rowA, const B& b, Row rowB, std::size_t column, Storage storage) {
  const bool nullA = a.isNull(rowA, column);
  const bool nullB = b.isNull(rowB, column);
  if (nullA || nullB) return static_cast<int>(nullB) - static_cast<int>(nullA);
  switch (storage) {
    case Storage::kInteger: {
      const std::int64_t x = a.integer(rowA, column);
      const std::int64_t y = b.integer(rowB, column);
      return x < y ? -1 : static_cast<int>(x > y);
    }
    case Storage::kReal: {
      const double x = a.real(rowA, column);
      const double y = b.real(rowB, column);
      return x < y ? -1 : static_cast<int>(x > y);
    }
    case Storage::kText:
      return a.text(rowA, column).compare(b.text(rowB, column));
  }
  return 0;
}

int compareRows(const RecordsetStore& store, const std::vector<SortKey>& order, Row a, Row b) {
  return withCells(store, a, [&](const auto& cellsA) {
    return withCells(store, b, [&](const auto& cellsB) {
      for (const SortKey& key : order) {
        const Storage storage = storageOf(store.columns()[key.column].type);
        const int result = compareCells(cellsA, a, cellsB, b, key.column, storage);
        if (result != 0) return key.descending ? -result : result;
      }
      return 0;
    });
  });
}

std::string_view unbracketed(std::string_view name) {
  const bool bracketed = name.size() >= 2 && name.front() == '[' && name.back() == ']';
  return bracketed ? name.substr(1, name.size() - 2) : name;
}

SortKey parseKey(std::string_view term, const RecordsetSchema& schema) {
  const std::string_view whole = text::trim(term);
  if (whole.empty()) raise(errors::kInvalidArgument, kSource, "A field name is missing");
  const int found = schema.find(unbracketed(whole));
  if (found >= 0) return {static_cast<std::uint32_t>(found), false};

  const std::size_t blank = whole.find_last_of(" ]");
  if (blank == std::string_view::npos) schema.require(whole, kSource);
  const std::size_t nameEnd = whole[blank] == ']' ? blank + 1 : blank;
  const std::string_view word = text::trim(whole.substr(blank + 1));
  const std::string_view name = unbracketed(text::trim(whole.substr(0, nameEnd)));
  const bool descending = text::equalsIgnoreCase(word, "DESC");
  if (!descending && !text::equalsIgnoreCase(word, "ASC")) {
    if (schema.find(name) < 0) schema.require(unbracketed(whole), kSource);
    raise(errors::kInvalidArgument, kSource,
          "'" + std::string(word) + "' behind '" + std::string(name) + "' is not ASC or DESC");
  }
  return {static_cast<std::uint32_t>(schema.require(name, kSource)), descending};
}

}  // namespace

std::vector<SortKey> parseOrder(std::string_view order, const RecordsetSchema& schema) {
  std::vector<SortKey> keys;
  if (text::trim(order).empty()) return keys;
  bool bracketed = false;
  std::size_t begin = 0;
  for (std::size_t i = 0; i <= order.size(); ++i) {
    if (i < order.size() && order[i] == '[') bracketed = true;
    if (i < order.size() && order[i] == ']') bracketed = false;
    if (i == order.size() || (order[i] == ',' && !bracketed)) {
      keys.push_back(parseKey(order.substr(begin, i - begin), schema));
      begin = i + 1;
    }
  }
  return keys;
}

bool comesBefore(const RecordsetStore& store, const std::vector<SortKey>& order, Row a, Row b) {
  const int result = compareRows(store, order, a, b);
  return result != 0 ? result < 0 : a < b;
}

void sortRows(const RecordsetStore& store, const std::vector<SortKey>& order,
              std::vector<Row>& rows) {
  if (order.empty()) return;
  struct Entry {
    std::uint64_t key;
    Row row;
  };
  const std::size_t column = order.front().column;
  const Storage storage = storageOf(store.columns()[column].type);
  const std::uint64_t flip = order.front().descending ? ~std::uint64_t{0} : 0;
  std::vector<Entry> entries;
  entries.reserve(rows.size());
  for (const Row row : rows) {
    const std::uint64_t key = withCells(
        store, row, [&](const auto& cells) { return keyOfCell(cells, row, column, storage); });
    entries.push_back({key ^ flip, row});
  }
  std::sort(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) {
    return a.key != b.key ? a.key < b.key : comesBefore(store, order, a.row, b.row);
  });
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = entries[i].row;
}

}  // namespace tavelor
