// SPDX-License-Identifier: MIT
// The criteria of Filter and Find, read once and tested on many rows.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/like.hpp"
#include "tavelor/services/recordset/recordset_store.hpp"

namespace tavelor::criteria {

enum class Operator : std::uint8_t {
  kEqual,
  kNotEqual,
  kLess,
  kLessEqual,
  kGreater,
  kGreaterEqual
};

/// How a clause looks at its cell.
enum class Test : std::uint8_t {
  kInteger,         ///< the cell's integer against `integer`
  kIntegerAsReal,   ///< the cell's integer against `real`
  kCurrencyAsReal,  ///< an amount against a number of more than four decimals, or out of its range
  kReal,            ///< the cell's real against `real`
  kText,            ///< the cell's text, exactly
  kLikeText,        ///< the cell's text against a pattern
  kLikePrinted,     ///< the value as it prints against a pattern
  kIsNull,
  kIsNotNull,
  kNothing  ///< fits no row
};

/// One comparison, and where to go on: an index of another one, or one of the ends.
struct Clause {
  static constexpr std::int32_t kAccept = -1;
  static constexpr std::int32_t kReject = -2;

  std::uint32_t column = 0;
  Test test = Test::kText;
  Operator op = Operator::kEqual;
  std::int32_t onTrue = kAccept;
  std::int32_t onFalse = kReject;
  std::int64_t integer = 0;
  double real = 0;
  std::string text;
  std::unique_ptr<LikePattern> pattern;
};

/// Comparisons chained by jumps, so that a row is left as soon as it is decided.
class Program {
 public:
  explicit Program(std::vector<Clause> clauses) : clauses_(std::move(clauses)) {}

  /// Tests a row with its pending changes. A Null, or a field of a new row that nobody has written,
  /// fits no comparison but those with Null.
  bool matches(const RecordsetStore& store, RecordsetStore::Row row) const;
  /// Tests a row as the database holds it.
  bool matchesBase(const RecordsetStore& store, RecordsetStore::Row row) const;
  /// Appends the rows from 0 on that fit and have none of the flags in `without`.
  void select(const RecordsetStore& store, std::uint8_t without,
              std::vector<RecordsetStore::Row>& rows) const;
  bool uses(std::size_t column) const;

 private:
  std::vector<Clause> clauses_;
};

/// Reads `field operator value`, joined by AND and OR (AND binds more tightly) and grouped by
/// parentheses. Values: 'text' (a quote inside doubled), #date# month first, or #text# for a text
/// field, a number with a decimal point, True, False, Null. Any number but 0 is True. A number, a
/// date or a flag compares with the empty text as with a Null: no row fits. Like ignores case; in
/// its pattern `*` and `%` stand for any run of characters and everything else for itself.
///
/// Errors: 3001 with the place of the fault, also for NOT, IN, BETWEEN and IS, which criteria do
/// not have; 3265 for an unknown field, -2147217913 for a value that does not compare with the
/// field.
std::unique_ptr<Program> parse(std::string_view text, const RecordsetSchema& schema,
                               const Locale& locale);
/// The same for Find: a single comparison, else 3001.
std::unique_ptr<Program> parseSingle(std::string_view text, const RecordsetSchema& schema,
                                     const Locale& locale);

}  // namespace tavelor::criteria
