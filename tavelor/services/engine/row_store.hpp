// SPDX-License-Identifier: MIT
// Rows in memory, packed: eight bytes a cell.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "tavelor/platform/words.hpp"
#include "tavelor/services/engine/blocks.hpp"
#include "tavelor/services/engine/catalogue.hpp"

namespace tavelor::engine {

/// The rows of one result. A row is a run of 64-bit words: first the null bits of its cells, then a
/// word a cell. Numbers and dates lie in the word; a text of up to seven bytes too, a longer one in
/// an arena. Rows never move, so a view of a text stays good until that cell is written again.
///
/// Cells by column type: whole numbers and booleans (-1, 0) as 64-bit integer, currency as
/// ten-thousandths, single, double and date as double, text, memo and binary as bytes.
class RowStore {
 public:
  using Word = Word64;  ///< what a cell takes

  /// Holds no rows yet.
  explicit RowStore(std::vector<ColumnType> columns)
      : columns_(std::move(columns)),
        nullWords_((columns_.size() + 63) / 64),
        stride_(nullWords_ + columns_.size()),
        words_(kFirstChunkRows * stride_ * sizeof(Word)) {}

  /// Number of rows.
  std::size_t rows() const { return rows_; }
  /// Number of columns.
  std::size_t columns() const { return columns_.size(); }
  /// Of a column, from 0.
  ColumnType type(std::size_t column) const { return columns_[column]; }

  /// Appends a row of nulls and gives its number.
  std::size_t append();
  /// Takes the last row away again. The room of its long texts comes back only with the store's.
  void removeLast() { --rows_; }

  /// One row to be filled, without looking it up for every cell. The store must not move or die
  /// while it is used; other rows may be appended.
  class Cells {
   public:
    /// A whole number, flag or amount of money.
    void setInteger(std::size_t column, std::int64_t value) {
      set(column, std::bit_cast<Word>(value));
    }
    /// A number with a fraction, or a date.
    void setReal(std::size_t column, double value) { set(column, std::bit_cast<Word>(value)); }
    /// Text or bytes, copied.
    void setText(std::size_t column, std::string_view value) {
      set(column, store_->packText(value));
    }

   private:
    friend class RowStore;
    Cells(RowStore& store, Word* words) : store_(&store), words_(words) {}
    void set(std::size_t column, Word value) {
      words_[store_->nullWords_ + column] = value;
      words_[column / 64] &= ~(Word{1} << (column % 64));
    }

    RowStore* store_;
    Word* words_;
  };
  /// To fill a row.
  Cells cells(std::size_t row) { return {*this, &word(row, 0)}; }

  /// One row to be read, without looking it up for every cell. Good as long as the store lives,
  /// moves or not; it shows what is written to the row meanwhile.
  class Row {
   public:
    Row() = default;

    /// Whether a cell is Null.
    bool isNull(std::size_t column) const {
      return (nulls_[column / 64] >> (column % 64) & 1U) != 0;
    }
    /// A whole number, flag or amount of money.
    std::int64_t integer(std::size_t column) const {
      return std::bit_cast<std::int64_t>(cells_[column]);
    }
    /// A number with a fraction, or a date.
    double real(std::size_t column) const { return std::bit_cast<double>(cells_[column]); }
    /// Text or bytes, valid as long as the store.
    std::string_view text(std::size_t column) const { return textOf(cells_[column]); }

   private:
    friend class RowStore;
    Row(const Word* nulls, const Word* cells) : nulls_(nulls), cells_(cells) {}

    const Word* nulls_ = nullptr;
    const Word* cells_ = nullptr;
  };
  /// To read a row.
  Row row(std::size_t row) const {
    const Word* words = &word(row, 0);
    return {words, words + nullWords_};
  }

  /// Whether a cell is Null.
  bool isNull(std::size_t row, std::size_t column) const {
    return (word(row, column / 64) >> (column % 64) & 1U) != 0;
  }
  /// A whole number, flag or amount of money.
  std::int64_t integer(std::size_t row, std::size_t column) const {
    return std::bit_cast<std::int64_t>(word(row, nullWords_ + column));
  }
  /// A number with a fraction, or a date.
  double real(std::size_t row, std::size_t column) const {
    return std::bit_cast<double>(word(row, nullWords_ + column));
  }
  /// Text or bytes, valid as long as the store.
  std::string_view text(std::size_t row, std::size_t column) const {
    return textOf(word(row, nullWords_ + column));
  }

  /// Makes a cell Null.
  void setNull(std::size_t row, std::size_t column) {
    word(row, column / 64) |= Word{1} << (column % 64);
  }
  /// A whole number, flag or amount of money.
  void setInteger(std::size_t row, std::size_t column, std::int64_t value) {
    setCell(row, column, std::bit_cast<Word>(value));
  }
  /// A number with a fraction, or a date.
  void setReal(std::size_t row, std::size_t column, double value) {
    setCell(row, column, std::bit_cast<Word>(value));
  }
  /// Text or bytes, copied.
  void setText(std::size_t row, std::size_t column, std::string_view value) {
    setCell(row, column, packText(value));
  }

  /// Bytes held, arena and unused room included.
  std::size_t memory() const { return words_.memory() + texts_.memory(); }

 private:
  static constexpr std::size_t kInline = 7;
  static constexpr Word kInlineMark = Word{0x80} << 56;
  static constexpr std::size_t kFirstChunkRows = 16;
  static constexpr std::size_t kChunkRows = 1024;
  static constexpr std::size_t kFirstTexts = 4 * 1024;

  static_assert(std::endian::native == std::endian::little);

  // Rows lie in chunks: the first one small, as most results are, the others of kChunkRows.
  const Word& word(std::size_t row, std::size_t index) const {
    return row < kFirstChunkRows ? chunks_[0][row * stride_ + index]
                                 : chunks_[1 + (row - kFirstChunkRows) / kChunkRows]
                                          [(row - kFirstChunkRows) % kChunkRows * stride_ + index];
  }
  Word& word(std::size_t row, std::size_t index) {
    return const_cast<Word&>(std::as_const(*this).word(row, index));
  }
  void setCell(std::size_t row, std::size_t column, Word value) {
    word(row, nullWords_ + column) = value;
    word(row, column / 64) &= ~(Word{1} << (column % 64));
  }

  // A text word holds either up to seven bytes with their count below the mark in the top byte, or
  // the address of a 32-bit length followed by the bytes.
  static std::string_view textOf(const Word& cell) {
    if ((cell & kInlineMark) != 0) {
      return {reinterpret_cast<const char*>(&cell), static_cast<std::size_t>(cell >> 56 & 0x7)};
    }
    const char* place = std::bit_cast<const char*>(cell);
    std::uint32_t length = 0;
    std::memcpy(&length, place, sizeof length);
    return {place + sizeof length, length};
  }
  Word packText(std::string_view value) {
    if (value.size() <= kInline) {
      return kInlineMark | static_cast<Word>(value.size()) << 56 |
             loadWord(value.data(), value.size());
    }
    return std::bit_cast<Word>(store(value));
  }
  void addChunk(std::size_t rows);
  const char* store(std::string_view value);

  std::vector<ColumnType> columns_;
  std::size_t nullWords_;
  std::size_t stride_;
  std::size_t rows_ = 0;
  Blocks words_;
  Blocks texts_{kFirstTexts};
  std::vector<Word*> chunks_;
};

}  // namespace tavelor::engine
