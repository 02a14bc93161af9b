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

/// What is known of a number.
struct Known {
  std::int32_t number;
  ErrorKind kind;
  std::string_view description;
};

constexpr std::array kKnown{
    Known{errors::kInvalidCall, ErrorKind::kArgument, "Invalid procedure call or argument."},
    Known{errors::kOverflow, ErrorKind::kValue, "Overflow."},
    Known{errors::kSubscriptOutOfRange, ErrorKind::kArgument, "Subscript out of range."},
    Known{errors::kDivisionByZero, ErrorKind::kValue, "Division by zero."},
    Known{errors::kTypeMismatch, ErrorKind::kValue, "Type mismatch."},
    Known{errors::kFileNotFound, ErrorKind::kNotFound, "File not found."},
    Known{errors::kPathAccess, ErrorKind::kEngine, "Path or file access error."},
    Known{errors::kObjectNotSet, ErrorKind::kClosed, "Object variable not set."},
    Known{errors::kInvalidPattern, ErrorKind::kArgument, "Invalid pattern string."},
    Known{errors::kInvalidUseOfNull, ErrorKind::kValue, "Invalid use of Null."},
    Known{errors::kObjectRequired, ErrorKind::kArgument, "Object required."},
    Known{errors::kMemberNotFound, ErrorKind::kNotFound,
          "Object does not support this property or method."},
    Known{errors::kWrongNumberOfArguments, ErrorKind::kArgument, "Wrong number of arguments."},
    Known{errors::kKeyAlreadyAssociated, ErrorKind::kIntegrity,
          "This key is already associated with an element of this collection."},
    Known{errors::kInvalidArgument, ErrorKind::kArgument,
          "Arguments are of the wrong type, are out of acceptable range, or are in conflict "
          "with one another."},
    Known{errors::kNoCurrentRecord, ErrorKind::kNotFound,
          "Either BOF or EOF is True, or the current record has been deleted. Requested "
          "operation requires a current record."},
    Known{errors::kNotAllowedInContext, ErrorKind::kNotAllowed,
          "Operation is not allowed in this context."},
    Known{errors::kInTransaction, ErrorKind::kNotAllowed,
          "The object cannot be closed explicitly while in a transaction."},
    Known{errors::kNotSupported, ErrorKind::kNotAllowed,
          "Object or provider is not capable of performing requested operation."},
    Known{errors::kItemNotFound, ErrorKind::kNotFound,
          "Item cannot be found in the collection corresponding to the requested name or "
          "ordinal."},
    Known{errors::kAlreadyInCollection, ErrorKind::kIntegrity,
          "The object is already in the collection and cannot be appended."},
    Known{errors::kObjectInvalid, ErrorKind::kClosed, "Object is no longer valid."},
    Known{errors::kWrongType, ErrorKind::kValue,
          "Application uses a value of the wrong type for the current operation."},
    Known{errors::kObjectClosed, ErrorKind::kClosed,
          "Operation is not allowed when the object is closed."},
    Known{errors::kObjectOpen, ErrorKind::kNotAllowed,
          "Operation is not allowed when the object is open."},
    Known{errors::kInvalidConnection, ErrorKind::kClosed,
          "The connection cannot be used to perform this operation. It is either closed or "
          "invalid in this context."},
    Known{errors::kCancelledByUser, ErrorKind::kCancelled,
          "Operation has been cancelled by the user."},
    Known{errors::kUnspecified, ErrorKind::kEngine, "Unspecified error."},
    Known{errors::kOperationCanceled, ErrorKind::kCancelled, "Operation was canceled."},
    Known{errors::kBusy, ErrorKind::kBusy, "The database is locked."},
    Known{errors::kTransactionLost, ErrorKind::kEngine,
          "The transaction was lost: the database has undone all of it after an error. Roll "
          "it back before anything else."},
    Known{errors::kTryAgain, ErrorKind::kBusy,
          "The transaction gave way to another one; run it again from its beginning."},
    Known{errors::kTimeout, ErrorKind::kBusy, "The statement took longer than it may."},
    Known{errors::kConnectionLost, ErrorKind::kEngine, "The line to the server is lost."},
    Known{errors::kRowNotLocated, ErrorKind::kConflict,
          "Row cannot be located for updating. Some values may have been changed since it "
          "was last read."},
    Known{errors::kTableNotFound, ErrorKind::kNotFound, "The table does not exist."},
    Known{errors::kIntegrityViolation, ErrorKind::kIntegrity,
          "The change would create duplicate or dangling values in a key."},
    Known{errors::kDeletedRow, ErrorKind::kNotFound,
          "Row handle referred to a deleted row or a row marked for deletion."},
    Known{errors::kMultipleStep, ErrorKind::kValue,
          "Multiple-step operation generated errors. Check each status value."},
    Known{errors::kSyntax, ErrorKind::kSyntax, "Syntax error in the statement."},
    Known{errors::kMissingParameter, ErrorKind::kSyntax,
          "No value given for one or more required parameters."},
    Known{errors::kCriteriaTypeMismatch, ErrorKind::kValue,
          "Data type mismatch in criteria expression."},
};

const Known* knownOf(std::int32_t number) noexcept {
  const auto* const found = std::find_if(
      kKnown.begin(), kKnown.end(), [&](const Known& known) { return known.number == number; });
  return found == kKnown.end() ? nullptr : &*found;
}

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

Error& Error::noting(std::string_view note) {
  if (!notes_.empty()) notes_ += '\n';
  notes_ += readable(std::string(note));
  compose();
  return *this;
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
  for (const std::string_view note : text::lines(notes_)) what_.append("\n  ").append(note);
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
  const Known* known = knownOf(number);
  return known == nullptr ? std::string_view() : known->description;
}

ErrorKind errorKind(std::int32_t number) noexcept {
  const Known* known = knownOf(number);
  return known == nullptr ? ErrorKind::kOther : known->kind;
}

void raise(std::int32_t number, std::string_view source, std::string_view detail) {
  std::string description(defaultDescription(number));
  if (!description.empty() && !detail.empty()) description += ' ';
  description += detail;
  throw Error(number, std::string(source), std::move(description));
}

}  // namespace tavelor
