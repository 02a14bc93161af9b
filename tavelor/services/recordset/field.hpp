// SPDX-License-Identifier: MIT
// The columns of a record set.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include "tavelor/platform/export.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/recordset/constants.hpp"

namespace tavelor {

class Recordset;

/// One column of a record set, seen at the set's current row. A light handle: it names a set and a
/// position, so it follows the set's moves, and must not be used when the set is gone.
///
/// Errors of all members: 3704 when the set is closed, 3265 when the set has been reopened with
/// fewer columns. Of those that read or write a value also 3021 at BOF and EOF, and -2147217885
/// when the current row is deleted.
class TAVELOR_API Field final {
 public:
  /// A column of `set`, from 0.
  Field(Recordset& set, std::size_t column) : set_(&set), column_(column) {}

  /// Name as the statement gave it. Valid until the set is closed or opened again.
  const std::string& Name() const;
  /// The number of a DataType.
  std::int32_t Type() const;
  /// Characters of a text, 255 where a statement computes one, 0 where a set without a database was
  /// told none; 536870910 characters of a memo; bytes of the other types.
  std::int32_t DefinedSize() const;
  /// Characters or bytes of the current value; 0 for Null.
  std::int32_t ActualSize() const;
  /// Digits of a number, 255 for what is none.
  std::int32_t Precision() const;
  /// Bits of field_attribute.
  std::int32_t Attributes() const;
  /// The table that the column is stored in; "" for one that the statement computes, and where
  /// nobody told. Valid as Name().
  const std::string& BaseTable() const;

  /// Empty for a field of a new row that nobody has written yet.
  Variant Value() const;
  /// Writes the field and puts the row into edit. The value becomes the field's type by the
  /// connection's locale; money rounds to four decimals, whole numbers halves to even.
  ///
  /// Empty puts a field of a new row back to unwritten, so that the table's default applies, and is
  /// Null elsewhere. Errors: 3421 for a value that is not of the type, the empty text included
  /// where the field holds none, and for a text with a character of code 0; -2147217887 for a text
  /// that is too long or a number out of range, 3251 in a read-only clone. The field keeps its
  /// value then.
  void Value(const Variant& value);

  /// The value as it was read from the database, before any edit; Null in a new row. Can be read in
  /// a deleted row.
  Variant OriginalValue() const;

  /// Writes in pieces: the first call replaces the value, later ones append to it until another
  /// field is touched. Memo and binary fields only, else 3219.
  void AppendChunk(const Variant& data);
  /// The next `length` characters or bytes; Null when there are no more. Memo and binary fields
  /// only, else 3219.
  Variant GetChunk(std::int32_t length);

  /// Position of the column, from 0.
  std::size_t column() const { return column_; }

 private:
  Recordset* set_;
  std::size_t column_;
};

/// The columns of a record set in the order of the statement. Of equal names the first one is found
/// by name, all by position.
class TAVELOR_API Fields final {
 public:
  /// The columns of `set`.
  explicit Fields(Recordset& set) : set_(&set) {}

  /// 0 for a closed set.
  std::int32_t Count() const;

  /// By position from 0. Raises 3265 out of range.
  Field Item(std::int32_t position) const;
  /// By name without regard to case. Raises 3265, naming the nearest field.
  template <typename Text>
  requires std::convertible_to<const Text&, std::string_view> Field Item(const Text& name)
  const { return byName(name); }
  /// A number is a position (0.1 is 0), a text is a name. Anything else raises 3265.
  Field Item(const Variant& which) const;

  /// Adds a column to an unopened set without a connection. `size` counts characters of text types.
  /// Errors: 3219 with a connection, 3705 when open, 3367 for a name that is there already, 3001
  /// for an empty name or a type that cannot be held.
  void Append(std::string_view name, DataType type, std::int32_t size = 0,
              std::int32_t attributes = field_attribute::kIsNullable);

 private:
  Field byName(std::string_view name) const;
  Recordset* set_;
};

}  // namespace tavelor
