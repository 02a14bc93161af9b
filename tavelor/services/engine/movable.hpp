// SPDX-License-Identifier: MIT
// What moving databases from one engine to another asks of them, beside the rest of the contract.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/engine/row_store.hpp"

namespace tavelor::engine {

class Catalogue;
struct Column;
struct Table;

/// An index of its own right: neither that of a primary key nor one that the engine has for itself.
struct Index {
  std::string name;
  std::string table;
  std::vector<std::string> columns;  ///< in its order; "" where it is of an expression
  bool isUnique = false;
};

/// An engine that databases can be moved to is one of these too.
class Destination {
 public:
  virtual ~Destination() = default;
  /// Why a column of that kind cannot hold a value, or would give another one back: the end of a
  /// sentence that begins with the column's name; "" when it can. `row` holds the value in
  /// `place`, and no Null.
  virtual std::string whyNot(const Column& column, const RowStore::Row& row,
                             std::size_t place) const = 0;
};

/// A session whose database can be moved, or made of another one, is one of these too. Its members
/// are called inside a transaction.
class Movable {
 public:
  virtual ~Movable() = default;
  /// Keeps everybody else from writing to these tables until the transaction ends, and waits for
  /// those who do: what is read from then on belongs together. Raises kBusy.
  virtual void holdStill(const Catalogue& tables) = 0;
  /// In the order in which they were made.
  virtual std::vector<Index> indexes() = 0;
  /// The last number that a counter has given, or has been led behind; 0 for none.
  virtual std::int64_t lastNumber(const Table& table, const Column& counter) = 0;
  /// The counter's next number is the one behind this one.
  virtual void goOnBehind(const Table& table, const Column& counter, std::int64_t number) = 0;
  /// Takes the database out of use, under its name with `ending` behind it, once the transaction
  /// ends at the latest: whoever has it open is refused at the next write. Nothing in it changes.
  virtual void putAway(std::string_view ending) = 0;
};

}  // namespace tavelor::engine
