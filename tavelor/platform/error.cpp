// SPDX-License-Identifier: MIT
// The one exception of the library.
#include "tavelor/platform/error.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "tavelor/platform/text.hpp"
#include "tavelor/platform/utf8.hpp"

namespace tavelor {

namespace {

struct NumberedText {
  std::int32_t number;
  std::string_view description;
};

constexpr std::array kDescriptions{
    NumberedText{errors::kInvalidCall, "Invalid procedure call or argument."},
    NumberedText{errors::kOverflow, "Overflow."},
    NumberedText{errors::kSubscriptOutOfRange, "Subscript out of range."},
    NumberedText{errors::kDivisionByZero, "Division by zero."},
    NumberedText{errors::kTypeMismatch, "Type mismatch."},
    NumberedText{errors::kFileNotFound, "File not found."},
    NumberedText{errors::kPathAccess, "Path or file access error."},
    NumberedText{errors::kObjectNotSet, "Object variable not set."},
    NumberedText{errors::kInvalidPattern, "Invalid pattern string."},
    NumberedText{errors::kInvalidUseOfNull, "Invalid use of Null."},
    NumberedText{errors::kObjectRequired, "Object required."},
    NumberedText{errors::kMemberNotFound, "Object does not support this property or method."},
    NumberedText{errors::kWrongNumberOfArguments, "Wrong number of arguments."},
    NumberedText{errors::kKeyAlreadyAssociated,
                 "This key is already associated with an element of this collection."},
    NumberedText{errors::kInvalidArgument,
                 "Arguments are of the wrong type, are out of acceptable range, or are in conflict "
                 "with one another."},
    NumberedText{errors::kNoCurrentRecord,
                 "Either BOF or EOF is True, or the current record has been deleted. Requested "
                 "operation requires a current record."},
    NumberedText{errors::kNotAllowedInContext, "Operation is not allowed in this context."},
    NumberedText{errors::kInTransaction,
                 "The object cannot be closed explicitly while in a transaction."},
    NumberedText{errors::kNotSupported,
                 "Object or provider is not capable of performing requested operation."},
    NumberedText{errors::kItemNotFound,
                 "Item cannot be found in the collection corresponding to the requested name or "
                 "ordinal."},
    NumberedText{errors::kAlreadyInCollection,
                 "The object is already in the collection and cannot be appended."},
    NumberedText{errors::kObjectInvalid, "Object is no longer valid."},
    NumberedText{errors::kWrongType,
                 "Application uses a value of the wrong type for the current operation."},
    NumberedText{errors::kObjectClosed, "Operation is not allowed when the object is closed."},
    NumberedText{errors::kObjectOpen, "Operation is not allowed when the object is open."},
    NumberedText{errors::kInvalidConnection,
                 "The connection cannot be used to perform this operation. It is either closed or "
                 "invalid in this context."},
    NumberedText{errors::kCancelledByUser, "Operation has been cancelled by the user."},
    NumberedText{errors::kUnspecified, "Unspecified error."},
    NumberedText{errors::kOperationCanceled, "Operation was canceled."},
    NumberedText{errors::kBusy, "The database is locked."},
    NumberedText{errors::kTransactionLost,
                 "The transaction was lost: the database has undone all of it after an error. Roll "
                 "it back before anything else."},
    NumberedText{errors::kRowNotLocated,
                 "Row cannot be located for updating. Some values may have been changed since it "
                 "was last read."},
    NumberedText{errors::kTableNotFound, "The table does not exist."},
    NumberedText{errors::kIntegrityViolation,
                 "The change would create duplicate or dangling values in a key."},
    NumberedText{errors::kDeletedRow,
                 "Row handle referred to a deleted row or a row marked for deletion."},
    NumberedText{errors::kMultipleStep,
                 "Multiple-step operation generated errors. Check each status value."},
    NumberedText{errors::kSyntax, "Syntax error in the statement."},
    NumberedText{errors::kMissingParameter, "No value given for one or more required parameters."},
    NumberedText{errors::kCriteriaTypeMismatch, "Data type mismatch in criteria expression."},
};

/// How much of a long statement a message shows, in bytes.
constexpr std::size_t kShownBytes = 300;

bool startsCharacter(std::string_view text, std::size_t position) {
  return position == text.size() ||
         !utf8::isContinuation(static_cast<unsigned char>(text[position]));
}

/// The part of the statement around the fault, cut between characters.
std::string shownPart(std::string_view statement, std::int64_t offset) {
  if (statement.size() <= kShownBytes) return std::string(statement);
  const std::size_t place =
      offset < 0 ? 0 : std::min(static_cast<std::size_t>(offset), statement.size());
  std::size_t begin = place > kShownBytes / 2 ? place - kShownBytes / 2 : 0;
  begin = std::min(begin, statement.size() - kShownBytes);
  std::size_t end = begin + kShownBytes;
  while (begin > 0 && !startsCharacter(statement, begin)) --begin;
  while (end < statement.size() && !startsCharacter(statement, end)) ++end;
  std::string shown;
  if (begin > 0) shown += "...";
  shown += statement.substr(begin, end - begin);
  if (end < statement.size()) shown += "...";
  return shown;
}

/// Bytes of the longest description: no sentence of ours is near, only what is quoted in one.
constexpr std::size_t kMostBytes = 4'000;

/// What is no character, and NUL, becomes the sign that stands for such.
std::string cleaned(std::string_view text) {
  std::string clean;
  for (std::size_t i = 0; i < text.size();) {
    const utf8::Character character = utf8::decode(text, i);
    const bool isShown = character.code != 0 && character.code < utf8::kInvalidBase;
    clean += isShown ? text.substr(i, character.size) : std::string_view("\uFFFD");
    i += character.size;
  }
  return clean;
}

/// A text for people: of one that is too long the middle goes.
std::string readable(std::string text) {
  if (text.find('\0') != std::string::npos || !text::isValidUtf8(text)) text = cleaned(text);
  if (text.size() <= kMostBytes) return text;
  std::size_t head = kMostBytes * 3 / 4;
  std::size_t tail = text.size() - kMostBytes / 4;
  while (!startsCharacter(text, head)) --head;
  while (!startsCharacter(text, tail)) ++tail;
  return text.replace(head, tail - head, " ... ");
}

}  // namespace

Error::Error(std::int32_t number, std::string source, std::string description)
    : number_(number),
      source_(readable(std::move(source))),
      description_(readable(std::move(description))) {
  compose();
}

Error& Error::inStatement(std::string_view statement, std::int64_t offset) {
  if (!statement_.empty()) return *this;
  statement_ = statement;
  offset_ = offset;
  compose();
  return *this;
}

Error& Error::withNativeCode(std::int32_t code) noexcept {
  nativeCode_ = code;
  return *this;
}

void Error::compose() {
  what_.clear();
  if (!source_.empty()) what_.append(source_).append(": ");
  what_.append(description_).append(" (error ").append(std::to_string(number_)).append(")");
  if (statement_.empty()) return;
  what_.append("\n  in: ").append(readable(shownPart(statement_, offset_)));
  if (offset_ < 0) return;
  const TextPlace place = placeOf(statement_, offset_);
  what_.append("\n  at line ").append(std::to_string(place.line));
  what_.append(", column ").append(std::to_string(place.column));
}

TextPlace placeOf(std::string_view text, std::int64_t byteOffset) {
  const std::size_t end =
      byteOffset < 0 ? 0 : std::min(static_cast<std::size_t>(byteOffset), text.size());
  TextPlace place;
  for (std::size_t i = 0; i < end;) {
    const utf8::Character character = utf8::decode(text, i);
    i += character.size;
    if (i > end) break;  // the offset points into this character
    if (character.code == U'\n') {
      ++place.line;
      place.column = 1;
    } else {
      ++place.column;
    }
  }
  return place;
}

std::string_view defaultDescription(std::int32_t number) noexcept {
  for (const NumberedText& entry : kDescriptions) {
    if (entry.number == number) return entry.description;
  }
  return {};
}

void raise(std::int32_t number, std::string_view source, std::string_view detail) {
  std::string description(defaultDescription(number));
  if (!description.empty() && !detail.empty()) description += ' ';
  description += detail;
  throw Error(number, std::string(source), std::move(description));
}

}  // namespace tavelor
