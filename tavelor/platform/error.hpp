// SPDX-License-Identifier: MIT
// The one exception of the library, and the numbers that callers test for.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace tavelor {

/// Error numbers. The small ones are the classic run-time errors, the 3xxx ones the record set's,
/// the negative ones what a database answers. Callers compare numbers, so none is ever renumbered.
namespace errors {
inline constexpr std::int32_t kInvalidCall = 5;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kSubscriptOutOfRange = 9;
inline constexpr std::int32_t kDivisionByZero = 11;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kFileNotFound = 53;
inline constexpr std::int32_t kPathAccess = 75;
inline constexpr std::int32_t kObjectNotSet = 91;
inline constexpr std::int32_t kInvalidPattern = 93;
inline constexpr std::int32_t kInvalidUseOfNull = 94;
inline constexpr std::int32_t kObjectRequired = 424;
inline constexpr std::int32_t kMemberNotFound = 438;
inline constexpr std::int32_t kWrongNumberOfArguments = 450;
inline constexpr std::int32_t kKeyAlreadyAssociated = 457;

inline constexpr std::int32_t kInvalidArgument = 3001;
inline constexpr std::int32_t kNoCurrentRecord = 3021;
inline constexpr std::int32_t kNotAllowedInContext = 3219;
inline constexpr std::int32_t kInTransaction = 3246;
inline constexpr std::int32_t kNotSupported = 3251;
inline constexpr std::int32_t kItemNotFound = 3265;
inline constexpr std::int32_t kAlreadyInCollection = 3367;
inline constexpr std::int32_t kObjectInvalid = 3420;
inline constexpr std::int32_t kWrongType = 3421;
inline constexpr std::int32_t kObjectClosed = 3704;
inline constexpr std::int32_t kObjectOpen = 3705;
inline constexpr std::int32_t kInvalidConnection = 3709;
inline constexpr std::int32_t kCancelledByUser = 3712;

inline constexpr std::int32_t kUnspecified = -2147467259;
inline constexpr std::int32_t kOperationCanceled = -2147217842;
inline constexpr std::int32_t kRowNotLocated = -2147217864;
inline constexpr std::int32_t kTableNotFound = -2147217865;
inline constexpr std::int32_t kIntegrityViolation = -2147217873;
inline constexpr std::int32_t kDeletedRow = -2147217885;
inline constexpr std::int32_t kMultipleStep = -2147217887;
inline constexpr std::int32_t kSyntax = -2147217900;
inline constexpr std::int32_t kMissingParameter = -2147217904;
inline constexpr std::int32_t kCriteriaTypeMismatch = -2147217913;
/// The database is locked by somebody else and stayed so for the whole wait.
inline constexpr std::int32_t kBusy = -2147217843;
/// The engine has ended the open transaction by itself; only its rollback is taken now.
inline constexpr std::int32_t kTransactionLost = -2147168231;
}  // namespace errors

/// What went wrong: a number for programs, a source and a description for people, and for whoever
/// debugs the statement, the engine's own code and the place in the statement.
///
/// Source, description and what() are for people whatever was quoted in them: valid UTF-8 without
/// NUL, and at most some thousand bytes, of a longer one its beginning and its end.
class Error : public std::exception {
 public:
  Error(std::int32_t number, std::string source, std::string description);

  std::int32_t number() const noexcept { return number_; }
  const std::string& source() const noexcept { return source_; }
  const std::string& description() const noexcept { return description_; }

  /// The statement that failed, or "".
  const std::string& statement() const noexcept { return statement_; }
  /// Byte offset of the fault in statement(), or -1.
  std::int64_t offset() const noexcept { return offset_; }
  /// The engine's own (extended) result code, or 0.
  std::int32_t nativeCode() const noexcept { return nativeCode_; }

  /// Adds the statement unless one is known already: the innermost knows best.
  Error& inStatement(std::string_view statement, std::int64_t offset = -1);
  Error& withNativeCode(std::int32_t code) noexcept;

  /// "source: description (error number)", and the place in the statement when it is known.
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  void compose();

  std::int32_t number_;
  std::int32_t nativeCode_ = 0;
  std::int64_t offset_ = -1;
  std::string source_;
  std::string description_;
  std::string statement_;
  std::string what_;
};

/// Line and column, both from 1, columns counted in characters, of a byte offset in a UTF-8 text.
struct TextPlace {
  std::int64_t line = 1;
  std::int64_t column = 1;
};
TextPlace placeOf(std::string_view text, std::int64_t byteOffset);

/// The description that belongs to a number ("Type mismatch."), or "" for an unknown one.
std::string_view defaultDescription(std::int32_t number) noexcept;

/// Raises `number` with its default description, followed by `detail` when there is one.
[[noreturn]] void raise(std::int32_t number, std::string_view source, std::string_view detail = {});

}  // namespace tavelor
