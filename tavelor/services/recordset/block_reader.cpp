// SPDX-License-Identifier: MIT
// Many rows at once, by columns, into memory of the caller's.
#include "tavelor/services/recordset/block_reader.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"

namespace tavelor {

namespace {

using engine::ColumnType;
using RowNumber = RecordsetStore::Row;

constexpr std::string_view kSource = "Recordset";
/// Rows that are read together, column by column: their cells stay in the processor's nearest
/// cache. At most as many as a word has bits, and whole bytes of them.
constexpr std::size_t kTile = 64;

bool isLaidAs(ColumnType type, CellLayout layout) {
  switch (layout) {
    case CellLayout::kInt16:
      return type == ColumnType::kInt16 || type == ColumnType::kByte;
    case CellLayout::kInt32:
      return engine::isWhole(type) || type == ColumnType::kBoolean;
    case CellLayout::kInt64:
      return engine::isWhole(type) || type == ColumnType::kBoolean || type == ColumnType::kCurrency;
    case CellLayout::kDouble:
      return engine::isNumeric(type) || type == ColumnType::kDate;
    case CellLayout::kSingle:
      return type == ColumnType::kSingle;
    case CellLayout::kBool8:
      return type == ColumnType::kBoolean;
    case CellLayout::kUnixUs:
    case CellLayout::kUnixDay:
      return type == ColumnType::kDate;
    case CellLayout::kText:
      return engine::isText(type) || type == ColumnType::kBinary;
  }
  return false;
}

// A variant of a column's type as its cell would hold it.
std::int64_t wholeOf(const Variant& value) {
  if (const auto* flag = value.getIf<bool>()) return *flag ? -1 : 0;
  if (const auto* small = value.getIf<std::int16_t>()) return *small;
  if (const auto* money = value.getIf<Currency>()) return money->scaled();
  return *value.getIf<std::int32_t>();
}
double realOf(const Variant& value) {
  if (const auto* single = value.getIf<float>()) return widen(*single);
  if (const auto* date = value.getIf<Date>()) return date->days();
  return *value.getIf<double>();
}
std::string_view bytesOf(const Variant& value) {
  if (const auto* text = value.getIf<std::string>()) return *text;
  const Bytes& bytes = *value.getIf<Bytes>();
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

constexpr double kUnixEpoch = 25569;  // 1970-01-01 as a day number
constexpr double kFirstDay = -657434;
constexpr double kLastDay = 2958465;

double wholeDay(double days) {
  const double day = std::trunc(days);
  if (!(day >= kFirstDay && day <= kLastDay)) raise(errors::kOverflow, kSource, "A date");
  return day;
}
std::int64_t unixMicroseconds(double days) {
  constexpr double kSecondsOfDay = 86400;
  constexpr std::int64_t kMicroseconds = 1'000'000;
  const double day = wholeDay(days);
  const auto second = static_cast<std::int64_t>(std::lround(std::fabs(days - day) * kSecondsOfDay));
  return (static_cast<std::int64_t>(day - kUnixEpoch) * 86400 + second) * kMicroseconds;
}
std::int32_t unixDay(double days) {
  return static_cast<std::int32_t>(wholeDay(days) - kUnixEpoch);
}

/// Some rows, found once for all columns.
struct Tile {
  struct Entry {
    engine::RowStore::Row cells;
    RowNumber row = 0;
    bool isChanged = false;  ///< in edit, or with changes: its values lie elsewhere
  };
  const RecordsetEdit& edit;
  std::array<Entry, kTile> rows;
  std::size_t count = 0;

  /// Calls `write` with the row's index in the tile and what `cell` or `changed` make of it, `none`
  /// with the index of each that is Null.
  template <typename Cell, typename Changed, typename Write, typename None>
  void each(std::size_t column, Cell&& cell, Changed&& changed, Write&& write, None&& none) const {
    for (std::size_t i = 0; i < count; ++i) {
      const Entry& entry = rows[i];
      if (entry.isChanged) {
        const Variant value = edit.value(entry.row, column);
        if (value.isNull() || value.isEmpty()) {
          none(i);
        } else {
          write(i, changed(value));
        }
      } else if (entry.cells.isNull(column)) {
        none(i);
      } else {
        write(i, cell(entry.cells));
      }
    }
  }
  template <typename Write, typename None>
  void eachWhole(std::size_t column, Write&& write, None&& none) const {
    each(
        column, [=](const auto& cells) { return cells.integer(column); }, wholeOf, write, none);
  }
  template <typename Write, typename None>
  void eachReal(std::size_t column, Write&& write, None&& none) const {
    each(
        column, [=](const auto& cells) { return cells.real(column); }, realOf, write, none);
  }
  template <typename Write, typename None>
  void eachText(std::size_t column, Write&& write, None&& none) const {
    each(
        column, [=](const auto& cells) { return cells.text(column); }, bytesOf, write, none);
  }
};

/// Lays a tile of one column down behind the rows that are there.
class Layer {
 public:
  Layer(ColumnTarget& target, ColumnType type) : target_(target), type_(type) {
    target.used = 0;
    target.nullCount = 0;
    if (target.offsets != nullptr) target.offsets[0] = 0;
  }

  /// What a tile may be taken back to.
  struct Mark {
    std::size_t used;
    std::size_t nullCount;
  };
  Mark mark() const { return {target_.used, target_.nullCount}; }
  void takeBack(const Mark& mark) {
    target_.used = mark.used;
    target_.nullCount = mark.nullCount;
  }
  /// Tells what the first row of a tile wants, which does not fit.
  void tellWanted(Tile tile) const {
    if (target_.as != CellLayout::kText) return;
    tile.count = 1;
    target_.used = 0;
    tile.eachText(
        target_.column, [&](std::size_t, std::string_view text) { target_.used = text.size(); },
        [](std::size_t) {});
  }

  /// Gives how many of the tile's rows had room.
  std::size_t lay(const Tile& tile, std::size_t at) {
    std::uint64_t bits = 0;
    const auto valid = [&](std::size_t i) { bits |= std::uint64_t{1} << i; };
    const std::size_t fit = layCells(tile, at, valid);
    if (target_.validity != nullptr) {
      std::memcpy(target_.validity + at / 8, &bits, (tile.count + 7) / 8);
    }
    return fit;
  }

 private:
  static_assert(std::endian::native == std::endian::little);

  template <typename Valid>
  std::size_t layCells(const Tile& tile, std::size_t at, const Valid& valid) {
    switch (target_.as) {
      case CellLayout::kInt16:
        return layWhole<std::int16_t>(tile, at, valid);
      case CellLayout::kInt32:
        return layWhole<std::int32_t>(tile, at, valid);
      case CellLayout::kInt64:
        return layWhole<std::int64_t>(tile, at, valid);
      case CellLayout::kBool8:
        return layWhole<std::uint8_t>(tile, at, valid);
      case CellLayout::kDouble:
        return layDouble(tile, at, valid);
      case CellLayout::kSingle:
        return layReal<float>(tile, at, valid, std::numeric_limits<float>::quiet_NaN(),
                              [](double value) { return static_cast<float>(value); });
      case CellLayout::kUnixUs:
        return layReal<std::int64_t>(tile, at, valid, std::numeric_limits<std::int64_t>::min(),
                                     unixMicroseconds);
      case CellLayout::kUnixDay:
        return layReal<std::int32_t>(tile, at, valid, 0, unixDay);
      case CellLayout::kText:
        return layText(tile, at, valid);
    }
    return tile.count;
  }

  template <typename T, typename Valid>
  std::size_t layWhole(const Tile& tile, std::size_t at, const Valid& valid) {
    T* const to = target_.values == nullptr ? nullptr : static_cast<T*>(target_.values) + at;
    const bool isFlag = type_ == ColumnType::kBoolean;
    tile.eachWhole(
        target_.column,
        [&](std::size_t i, std::int64_t value) {
          valid(i);
          if (to != nullptr) to[i] = static_cast<T>(isFlag ? (value != 0 ? 1 : 0) : value);
        },
        [&](std::size_t i) {
          ++target_.nullCount;
          if (to != nullptr) to[i] = 0;
        });
    return tile.count;
  }
  template <typename T, typename Valid, typename Convert>
  std::size_t layReal(const Tile& tile, std::size_t at, const Valid& valid, T none,
                      Convert&& convert) {
    T* const to = target_.values == nullptr ? nullptr : static_cast<T*>(target_.values) + at;
    tile.eachReal(
        target_.column,
        [&](std::size_t i, double value) {
          valid(i);
          if (to != nullptr) to[i] = convert(value);
        },
        [&](std::size_t i) {
          ++target_.nullCount;
          if (to != nullptr) to[i] = none;
        });
    return tile.count;
  }
  template <typename Valid>
  std::size_t layDouble(const Tile& tile, std::size_t at, const Valid& valid) {
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    if (!engine::isWhole(type_) && type_ != ColumnType::kCurrency) {
      return layReal<double>(tile, at, valid, kNone, [](double value) { return value; });
    }
    auto* const to =
        target_.values == nullptr ? nullptr : static_cast<double*>(target_.values) + at;
    const bool isMoney = type_ == ColumnType::kCurrency;
    tile.eachWhole(
        target_.column,
        [&](std::size_t i, std::int64_t value) {
          valid(i);
          if (to == nullptr) return;
          to[i] = isMoney ? Currency::fromScaled(value).toDouble() : static_cast<double>(value);
        },
        [&](std::size_t i) {
          ++target_.nullCount;
          if (to != nullptr) to[i] = kNone;
        });
    return tile.count;
  }
  template <typename Valid>
  std::size_t layText(const Tile& tile, std::size_t at, const Valid& valid) {
    // Kept here: what is written to the bytes might be these, as far as a compiler knows.
    char* const bytes = target_.bytes;
    std::int64_t* const ends = target_.offsets == nullptr ? nullptr : target_.offsets + at + 1;
    const std::size_t capacity = bytes == nullptr ? SIZE_MAX : target_.capacity;
    std::size_t used = target_.used;
    std::size_t nulls = 0;
    std::size_t fit = tile.count;
    tile.eachText(
        target_.column,
        [&](std::size_t i, std::string_view text) {
          valid(i);
          if (text.size() > capacity - used) {
            fit = std::min(fit, i);
          } else if (fit == tile.count) {
            if (bytes != nullptr && !text.empty()) {
              std::memcpy(bytes + used, text.data(), text.size());
            }
            used += text.size();
          }
          if (ends != nullptr) ends[i] = static_cast<std::int64_t>(used);
        },
        [&](std::size_t i) {
          ++nulls;
          if (ends != nullptr) ends[i] = static_cast<std::int64_t>(used);
        });
    target_.used = used;
    target_.nullCount += nulls;
    return fit;
  }

  ColumnTarget& target_;
  ColumnType type_;
};

std::vector<Layer> layersOf(std::span<ColumnTarget> targets, const RecordsetStore& store) {
  std::vector<Layer> layers;
  layers.reserve(targets.size());
  for (ColumnTarget& target : targets) {
    if (target.column >= store.width()) {
      raise(errors::kItemNotFound, kSource, "There is no field " + std::to_string(target.column));
    }
    const dialect::OutputColumn& field = store.columns()[target.column];
    if (!isLaidAs(field.type, target.as)) {
      raise(errors::kWrongType, kSource,
            "Field '" + field.name + "' cannot be laid down as " +
                std::to_string(static_cast<std::int32_t>(target.as)));
    }
    layers.emplace_back(target, field.type);
  }
  return layers;
}

}  // namespace

std::int64_t readBlock(Recordset& set, std::int64_t first, std::int64_t rows,
                       std::span<ColumnTarget> targets) {
  RecordsetParts& parts = set.parts();
  const RecordsetStore& store = parts.opened();
  std::vector<Layer> layers = layersOf(targets, store);
  // From here on an index of the view is a position.
  parts.cursor.removeHoles();
  const std::int64_t begin = std::clamp<std::int64_t>(first, 0, parts.view.extent());
  const std::int64_t wanted = std::clamp<std::int64_t>(rows, 0, parts.view.extent() - begin);
  std::vector<Layer::Mark> marks(layers.size());
  Tile tile{parts.edit, {}, 0};
  std::int64_t read = 0;
  while (read < wanted) {
    tile.count = std::min(kTile, static_cast<std::size_t>(wanted - read));
    const std::size_t found = tile.count;
    for (std::size_t i = 0; i < found; ++i) {
      const RowNumber row = parts.view.rowAt(begin + read + static_cast<std::int64_t>(i));
      tile.rows[i] = {store.rows().row(row), row,
                      parts.edit.isOf(row) || (store.flags(row) & RecordsetStore::kEdited) != 0};
    }
    std::transform(layers.begin(), layers.end(), marks.begin(), std::mem_fn(&Layer::mark));
    for (std::size_t i = 0; i < layers.size(); ++i) {
      const std::size_t fit = layers[i].lay(tile, static_cast<std::size_t>(read));
      if (fit == tile.count) continue;
      // The rows that have room in all columns so far, from the first one on again.
      tile.count = fit;
      for (std::size_t j = 0; j <= i; ++j) layers[j].takeBack(marks[j]);
      i = static_cast<std::size_t>(-1);
    }
    read += static_cast<std::int64_t>(tile.count);
    if (tile.count == found) continue;
    if (read == 0) {
      for (const Layer& layer : layers) layer.tellWanted(tile);
    }
    break;
  }
  return read;
}

}  // namespace tavelor
