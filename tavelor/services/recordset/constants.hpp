// SPDX-License-Identifier: MIT
// The record set's enumerations. The numbers are fixed: callers store and compare them.
#pragma once

#include <cstdint>

namespace tavelor {

/// Whether a record set or connection is open.
enum class ObjectState : std::int32_t { kClosed = 0, kOpen = 1 };
/// Where rows are kept.
enum class CursorLocation : std::int32_t { kServer = 2, kClient = 3 };
/// What a record set sees of changes that others make.
enum class CursorType : std::int32_t { kForwardOnly = 0, kKeyset = 1, kDynamic = 2, kStatic = 3 };
/// When changes are written.
enum class LockType : std::int32_t {
  kUnspecified = -1,
  kReadOnly = 1,
  kPessimistic = 2,
  kOptimistic = 3,
  kBatchOptimistic = 4
};
/// What is being done to a row.
enum class EditMode : std::int32_t { kNone = 0, kInProgress = 1, kAdd = 2, kDelete = 4 };
/// Which rows an operation is about.
enum class Affect : std::int32_t { kCurrent = 1, kGroup = 2, kAll = 3, kAllChapters = 4 };
/// What Recordset::Resync reads again.
enum class ResyncValues : std::int32_t {
  kUnderlying = 1,  ///< what Field::UnderlyingValue tells; changes stay pending
  kAll = 2          ///< the rows themselves; their pending changes are dropped
};
/// Rows that a filter shows by their state.
enum class FilterGroup : std::int32_t {
  kNone = 0,
  kPending = 1,     ///< rows with changes that no UpdateBatch has written yet, deleted ones too
  kAffected = 2,    ///< rows that the last Delete, UpdateBatch or CancelBatch touched
  kFetched = 3,     ///< rows as they were fetched: all of them
  kConflicting = 5  ///< rows that the last UpdateBatch could not write
};
/// Where Find goes.
enum class SearchDirection : std::int32_t { kForward = 1, kBackward = -1 };
/// Where one bookmark stands to another.
enum class CompareResult : std::int32_t {
  kLessThan = 0,
  kEqual = 1,
  kGreaterThan = 2,
  kNotEqual = 3,
  kNotComparable = 4
};
/// How an event came about; a listener may set kCancel before a change.
enum class EventStatus : std::int32_t {
  kOk = 1,
  kErrorsOccurred = 2,
  kCantDeny = 3,
  kCancel = 4,
  kUnwantedEvent = 5
};
/// What a change is about.
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
/// The type of a column.
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
inline constexpr std::int32_t kUnknown = -1;  ///< no rows, or a deleted one
inline constexpr std::int32_t kBof = -2;      ///< before the first row
inline constexpr std::int32_t kEof = -3;      ///< behind the last row
}  // namespace position

/// Starting points of Move and Find that are no bookmarks of rows.
namespace bookmark {
inline constexpr std::int32_t kCurrent = 0;  ///< the current row
inline constexpr std::int32_t kFirst = 1;    ///< the first row
inline constexpr std::int32_t kLast = 2;     ///< the last row
}  // namespace bookmark

/// What Recordset::Supports is asked for.
namespace cursor_option {
inline constexpr std::int32_t kHoldRecords = 0x100;      ///< rows stay while others are read
inline constexpr std::int32_t kMovePrevious = 0x200;     ///< moves backward
inline constexpr std::int32_t kBookmark = 0x2000;        ///< Bookmark
inline constexpr std::int32_t kApproxPosition = 0x4000;  ///< AbsolutePosition and AbsolutePage
inline constexpr std::int32_t kUpdateBatch = 0x10000;    ///< UpdateBatch and CancelBatch
inline constexpr std::int32_t kResync = 0x20000;         ///< Resync
inline constexpr std::int32_t kNotify = 0x40000;         ///< events
inline constexpr std::int32_t kFind = 0x80000;           ///< Find
inline constexpr std::int32_t kSeek = 0x400000;          ///< never
inline constexpr std::int32_t kIndex = 0x800000;         ///< never
inline constexpr std::int32_t kAddNew = 0x1000400;       ///< AddNew
inline constexpr std::int32_t kDelete = 0x1000800;       ///< Delete
inline constexpr std::int32_t kUpdate = 0x1008000;       ///< Update
}  // namespace cursor_option

/// Bits of Recordset::Status().
namespace record_status {
inline constexpr std::int32_t kOk = 0;                 ///< written
inline constexpr std::int32_t kNew = 0x1;              ///< added and not yet written
inline constexpr std::int32_t kModified = 0x2;         ///< changed and not yet written
inline constexpr std::int32_t kDeleted = 0x4;          ///< marked as deleted
inline constexpr std::int32_t kUnmodified = 0x8;       ///< as it was read
inline constexpr std::int32_t kInvalid = 0x10;         ///< not written, for what its place names
inline constexpr std::int32_t kPendingChanges = 0x80;  ///< it has changes that are not written
inline constexpr std::int32_t kCanceled = 0x100;       ///< its writing was cancelled
/// not written: somebody else has changed it
inline constexpr std::int32_t kConcurrencyViolation = 0x800;
inline constexpr std::int32_t kIntegrityViolation = 0x1000;  ///< not written: its table refuses it
inline constexpr std::int32_t kDbDeleted = 0x40000;          ///< its deletion is written
}  // namespace record_status

/// Bits of Field::Attributes().
namespace field_attribute {
inline constexpr std::int32_t kUpdatable = 0x4;    ///< may be written
inline constexpr std::int32_t kIsNullable = 0x20;  ///< takes Null
inline constexpr std::int32_t kMayBeNull = 0x40;   ///< may hold Null
inline constexpr std::int32_t kLong = 0x80;        ///< may be written and read in pieces
}  // namespace field_attribute

}  // namespace tavelor
