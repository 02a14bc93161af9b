// SPDX-License-Identifier: MIT
// The record set's enumerations. The numbers are fixed: callers store and compare them.
#pragma once

#include <cstdint>

namespace tavelor {

enum class ObjectState : std::int32_t { kClosed = 0, kOpen = 1 };
enum class CursorLocation : std::int32_t { kServer = 2, kClient = 3 };
enum class CursorType : std::int32_t { kForwardOnly = 0, kKeyset = 1, kDynamic = 2, kStatic = 3 };
enum class LockType : std::int32_t {
  kUnspecified = -1,
  kReadOnly = 1,
  kPessimistic = 2,
  kOptimistic = 3,
  kBatchOptimistic = 4
};
enum class EditMode : std::int32_t { kNone = 0, kInProgress = 1, kAdd = 2, kDelete = 4 };
enum class Affect : std::int32_t { kCurrent = 1, kGroup = 2, kAll = 3, kAllChapters = 4 };
enum class FilterGroup : std::int32_t {
  kNone = 0,
  kPending = 1,     ///< rows with changes that no UpdateBatch has written yet, deleted ones too
  kAffected = 2,    ///< rows that the last Delete, UpdateBatch or CancelBatch touched
  kFetched = 3,     ///< rows as they were fetched: all of them
  kConflicting = 5  ///< rows that the last UpdateBatch could not write
};
enum class SearchDirection : std::int32_t { kForward = 1, kBackward = -1 };
enum class CompareResult : std::int32_t {
  kLessThan = 0,
  kEqual = 1,
  kGreaterThan = 2,
  kNotEqual = 3,
  kNotComparable = 4
};
enum class EventStatus : std::int32_t {
  kOk = 1,
  kErrorsOccurred = 2,
  kCantDeny = 3,
  kCancel = 4,
  kUnwantedEvent = 5
};
enum class EventReason : std::int32_t {
  kAddNew = 1,
  kDelete = 2,
  kUpdate = 3,
  kUndoUpdate = 4,
  kUndoAddNew = 5,
  kUndoDelete = 6,
  kRequery = 7,
  kResynch = 8,
  kClose = 9,
  kMove = 10,
  kFirstChange = 11,
  kMoveFirst = 12,
  kMoveNext = 13,
  kMovePrevious = 14,
  kMoveLast = 15
};
enum class DataType : std::int32_t {
  kInt16 = 2,
  kInt32 = 3,
  kSingle = 4,
  kDouble = 5,
  kCurrency = 6,
  kDate = 7,
  kBstr = 8,
  kBoolean = 11,
  kDecimal = 14,
  kByte = 17,
  kInt64 = 20,
  kGuid = 72,
  kBinary = 128,
  kChar = 129,
  kWChar = 130,
  kNumeric = 131,
  kDbDate = 133,
  kDbTime = 134,
  kTimestamp = 135,
  kVarChar = 200,
  kLongVarChar = 201,
  kVarWChar = 202,
  kLongVarWChar = 203,
  kVarBinary = 204,
  kLongVarBinary = 205
};

/// Recordset::AbsolutePosition() when there is no row to count.
namespace position {
inline constexpr std::int32_t kUnknown = -1;
inline constexpr std::int32_t kBof = -2;
inline constexpr std::int32_t kEof = -3;
}  // namespace position

/// Starting points of Move and Find that are no bookmarks of rows.
namespace bookmark {
inline constexpr std::int32_t kCurrent = 0;
inline constexpr std::int32_t kFirst = 1;
inline constexpr std::int32_t kLast = 2;
}  // namespace bookmark

/// Bits of Recordset::Status().
namespace record_status {
inline constexpr std::int32_t kOk = 0;
inline constexpr std::int32_t kNew = 0x1;
inline constexpr std::int32_t kModified = 0x2;
inline constexpr std::int32_t kDeleted = 0x4;
inline constexpr std::int32_t kUnmodified = 0x8;
inline constexpr std::int32_t kInvalid = 0x10;
inline constexpr std::int32_t kPendingChanges = 0x80;
inline constexpr std::int32_t kCanceled = 0x100;
inline constexpr std::int32_t kConcurrencyViolation = 0x800;
inline constexpr std::int32_t kIntegrityViolation = 0x1000;
inline constexpr std::int32_t kDbDeleted = 0x40000;
}  // namespace record_status

/// Bits of Field::Attributes().
namespace field_attribute {
inline constexpr std::int32_t kUpdatable = 0x4;
inline constexpr std::int32_t kIsNullable = 0x20;
inline constexpr std::int32_t kMayBeNull = 0x40;
inline constexpr std::int32_t kLong = 0x80;  ///< may be written and read in pieces
}  // namespace field_attribute

}  // namespace tavelor
