// SPDX-License-Identifier: MIT
// The one exception of the library, and the numbers that callers test for.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

#include "tavelor/platform/export.hpp"

namespace tavelor {

/// Error numbers. The small ones are the classic run-time errors, the 3xxx ones the record set's,
/// the negative ones what a database answers. Callers compare numbers, so none is ever renumbered.
namespace errors {
inline constexpr std::int32_t kInvalidCall = 5;          ///< an argument that makes no sense
inline constexpr std::int32_t kOverflow = 6;             ///< a number that does not fit its type
inline constexpr std::int32_t kSubscriptOutOfRange = 9;  ///< a position that is not there
inline constexpr std::int32_t kDivisionByZero = 11;      ///< a division by zero
/// a value that does not read as the type wanted
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kFileNotFound = 53;      ///< a file that is not there
inline constexpr std::int32_t kPathAccess = 75;        ///< a file or folder that the system refuses
inline constexpr std::int32_t kObjectNotSet = 91;      ///< no record set yet, or no apartment
inline constexpr std::int32_t kInvalidPattern = 93;    ///< a pattern of Like that is wrong
inline constexpr std::int32_t kInvalidUseOfNull = 94;  ///< null where a value is wanted
inline constexpr std::int32_t kObjectRequired = 424;   ///< no object where one is wanted
inline constexpr std::int32_t kMemberNotFound = 438;   ///< a class or member that is not there
inline constexpr std::int32_t kWrongNumberOfArguments = 450;  ///< too many arguments, or too few
inline constexpr std::int32_t kKeyAlreadyAssociated = 457;  ///< a key that a collection has already

/// an argument that a record set does not take
inline constexpr std::int32_t kInvalidArgument = 3001;
/// no current row: none there, or before or behind all
inline constexpr std::int32_t kNoCurrentRecord = 3021;
/// not now: unsaved changes, no open transaction
inline constexpr std::int32_t kNotAllowedInContext = 3219;
inline constexpr std::int32_t kInTransaction = 3246;  ///< not inside a transaction
inline constexpr std::int32_t kNotSupported = 3251;  ///< what this record set or engine does not do
inline constexpr std::int32_t kItemNotFound = 3265;  ///< a column that is not in the list
inline constexpr std::int32_t kAlreadyInCollection = 3367;  ///< a column that is there already
inline constexpr std::int32_t kObjectInvalid = 3420;        ///< an object that is gone
inline constexpr std::int32_t kWrongType = 3421;     ///< a value that is not of the column's type
inline constexpr std::int32_t kObjectClosed = 3704;  ///< a record set or connection that is closed
inline constexpr std::int32_t kObjectOpen = 3705;    ///< one that is open already
inline constexpr std::int32_t kInvalidConnection = 3709;  ///< no open connection
inline constexpr std::int32_t kCancelledByUser = 3712;    ///< a listener has said no

inline constexpr std::int32_t kUnspecified = -2147467259;  ///< the rest: disk full, file damaged
/// a listener has cancelled the change
inline constexpr std::int32_t kOperationCanceled = -2147217842;
/// a row that somebody else has changed or deleted
inline constexpr std::int32_t kRowNotLocated = -2147217864;
inline constexpr std::int32_t kTableNotFound = -2147217865;  ///< a table that is not there
/// a key that is there already, or a Null that the table refuses
inline constexpr std::int32_t kIntegrityViolation = -2147217873;
inline constexpr std::int32_t kDeletedRow = -2147217885;  ///< the current row is deleted
/// a text too long, or a number out of range, for its column
inline constexpr std::int32_t kMultipleStep = -2147217887;
inline constexpr std::int32_t kSyntax = -2147217900;  ///< a statement that does not read
/// a name that is no column, and so a parameter without a value
inline constexpr std::int32_t kMissingParameter = -2147217904;
/// a filter whose value is not of the column's type
inline constexpr std::int32_t kCriteriaTypeMismatch = -2147217913;
/// The database is locked by somebody else and stayed so for the whole wait.
inline constexpr std::int32_t kBusy = -2147217843;
/// The engine has ended the open transaction by itself; only its rollback is taken now.
inline constexpr std::int32_t kTransactionLost = -2147168231;
/// The engine has undone the transaction because it and another one waited for each other: run it
/// again from its beginning.
inline constexpr std::int32_t kTryAgain = -2147217837;
/// A statement took longer than it may, or was cancelled.
inline constexpr std::int32_t kTimeout = -2147217871;
/// The line to the server is gone.
inline constexpr std::int32_t kConnectionLost = -2147217831;
}  // namespace errors

/// What a program does about an error: tell its user, ask again, try again, give up. Each number is
/// of one kind.
enum class ErrorKind : std::uint8_t {
  kArgument,    ///< a call that makes no sense: the program is wrong
  kValue,       ///< a value of the wrong type, too large, too long, or Null
  kNotFound,    ///< no such row, column, table, file, class or member
  kConflict,    ///< somebody else has changed or deleted the row
  kIntegrity,   ///< a key that is there already, or a Null that a table refuses
  kBusy,        ///< locked by somebody else, or given way to them: try again
  kClosed,      ///< what is not open, not there yet, or gone
  kNotAllowed,  ///< not now, or not with this object
  kCancelled,   ///< a listener or the program has said no
  kSyntax,      ///< a statement that does not read, or names what is no column
  kEngine,      ///< the file, the disk, the engine or the line to it: no call is to blame
  kOther,       ///< a number of an application's own
};
/// The kind of a number.
TAVELOR_API ErrorKind errorKind(std::int32_t number) noexcept;

/// What went wrong: a number for programs, a source and a description for people, and for whoever
/// debugs the statement, the engine's own code and the place in the statement.
///
/// Source, description and what() are for people whatever was quoted in them: valid UTF-8 without
/// NUL, and at most some thousand bytes, of a longer one its beginning and its end.
class TAVELOR_API Error : public std::exception {
 public:
  /// As whoever raises it tells; what() is made of all three.
  Error(std::int32_t number, std::string source, std::string description);

  /// One of errors, or an application's own.
  std::int32_t number() const noexcept { return number_; }
  /// What to do about it.
  ErrorKind kind() const noexcept { return errorKind(number_); }
  /// The class or part that raised it.
  const std::string& source() const noexcept { return source_; }
  /// What went wrong, for people.
  const std::string& description() const noexcept { return description_; }

  /// The statement that failed, or "".
  const std::string& statement() const noexcept { return statement_; }
  /// Byte offset of the fault in statement(), or -1.
  std::int64_t offset() const noexcept { return offset_; }
  /// The engine's own (extended) result code, or 0.
  std::int32_t nativeCode() const noexcept { return nativeCode_; }

  /// What it was about (a table, a key) and what helps, one a line; or "". Not in description(),
  /// whose words callers may compare.
  const std::string& notes() const noexcept { return notes_; }

  /// Adds a line to notes().
  Error& noting(std::string_view note);
  /// Adds the statement unless one is known already: the innermost knows best.
  Error& inStatement(std::string_view statement, std::int64_t offset = -1);
  /// Adds the engine's own result code.
  Error& withNativeCode(std::int32_t code) noexcept;

  /// "source: description (error number)", the notes, and the place in the statement where known.
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  void compose();

  std::int32_t number_;
  std::int32_t nativeCode_ = 0;
  std::int64_t offset_ = -1;
  std::string source_;
  std::string description_;
  std::string notes_;
  std::string statement_;
  std::string what_;
};

/// Line and column, both from 1, columns counted in characters, of a byte offset in a UTF-8 text.
struct TAVELOR_API TextPlace {
  std::int64_t line = 1;
  std::int64_t column = 1;
};
/// The line and column of a byte.
TAVELOR_API TextPlace placeOf(std::string_view text, std::int64_t byteOffset);

/// The description that belongs to a number ("Type mismatch."), or "" for an unknown one.
TAVELOR_API std::string_view defaultDescription(std::int32_t number) noexcept;

/// Raises `number` with its default description, followed by `detail` when there is one.
[[noreturn]] TAVELOR_API void raise(std::int32_t number, std::string_view source,
                                    std::string_view detail = {});

}  // namespace tavelor
