// SPDX-License-Identifier: MIT
// Encoding and safe replacement of pages.
#include "tavelor/frame/page.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <fmt/format.h>
#include <unistd.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/utf8.hpp"

namespace tavelor {

namespace {

// windows-1252 from 0x80 to 0x9F; 0 where it has no character.
constexpr std::array<char32_t, 32> kUpper = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

// Room that one character takes at most: "&#1114111;".
constexpr std::size_t kLongestReference = 10;
// "-9223372036854775808".
constexpr std::size_t kLongestNumber = 20;
// A text that goes in one piece with the mark before it.
constexpr std::size_t kShortText = 64;

template <typename Word>
Word load(const char* from) {
  Word word;
  std::memcpy(&word, from, sizeof word);
  return word;
}

template <typename Word>
bool isAsciiWord(Word word) {
  return (word & static_cast<Word>(utf8::kHighBits)) == 0;
}

/// Copies at least `sizeof(Word)` bytes, at most two words, which may overlap. False, with nothing
/// of use written, unless all are ASCII.
template <typename Word>
bool copyTail(const char* from, std::size_t count, char* to) {
  const Word first = load<Word>(from);
  const Word last = load<Word>(from + count - sizeof(Word));
  std::memcpy(to, &first, sizeof first);
  std::memcpy(to + count - sizeof(Word), &last, sizeof last);
  return isAsciiWord(static_cast<Word>(first | last));
}

/// Copies bytes up to the first that is not ASCII; gives their number. Most text is ASCII through
/// and through, so it is copied two words at a time.
std::size_t copyAscii(const char* from, std::size_t count, char* to) {
  using Word = std::uint64_t;
  using Half = std::uint32_t;
  constexpr std::size_t kStep = 2 * sizeof(Word);
  std::size_t done = 0;
  for (; count - done >= kStep && copyTail<Word>(from + done, kStep, to + done); done += kStep) {
  }
  const std::size_t rest = count - done;
  if (rest < kStep) {
    if (rest >= sizeof(Word)) {
      if (copyTail<Word>(from + done, rest, to + done)) return count;
    } else if (rest >= sizeof(Half)) {
      if (copyTail<Half>(from + done, rest, to + done)) return count;
    }
  }
  for (; done < count && utf8::isAscii(from[done]); ++done) to[done] = from[done];
  return done;
}

// Numbers are written where they will lie; each gives the place behind it.

char* writeWhole(char* at, std::integral auto value) {
  return std::to_chars(at, at + kLongestNumber, value).ptr;
}

/// Most numbers of a shop are whole counts of hundredths. The number that is nearest to such a
/// count has its digits, and they are quickly told. Null for another number.
char* writeHundredths(char* at, double value, char decimal) {
  constexpr double kLimit = 1e9;
  constexpr std::uint32_t kHundred = 100;
  if (!(std::fabs(value) < kLimit)) return nullptr;
  const auto hundredths = static_cast<std::int64_t>(value * kHundred + (value < 0 ? -0.5 : 0.5));
  if (static_cast<double>(hundredths) / kHundred != value) return nullptr;
  if (hundredths < 0) *at++ = '-';
  const auto count = static_cast<std::uint64_t>(std::abs(hundredths));
  at = writeWhole(at, static_cast<std::uint32_t>(count / kHundred));
  const auto rest = static_cast<char>(count % kHundred);
  if (rest == 0) return at;
  *at++ = decimal;
  *at++ = static_cast<char>('0' + rest / 10);
  if (rest % 10 != 0) *at++ = static_cast<char>('0' + rest % 10);
  return at;
}

/// 0 where it is no single character.
char decimalOf(const Locale& locale) {
  return locale.decimal.size() == 1 ? locale.decimal.front() : '\0';
}

}  // namespace

Page::Page(std::filesystem::path path)
    : path_(std::move(path)),
      draft_(path_),
      buffer_(std::make_unique_for_overwrite<char[]>(kBuffer)),
      next_(buffer_.get()) {
  // A zero byte ends a name for the system: the page would lie elsewhere.
  if (path_.native().find('\0') != std::string::npos) {
    errno = EINVAL;
    fail("cannot be made");
  }
  // Two threads may write the same page, each for its own apartment.
  static std::atomic<std::uint32_t> drafts{0};
  draft_ += fmt::format(".{}-{}.tmp", ::getpid(), drafts++);
  file_.reset(std::fopen(draft_.c_str(), "wb"));
  if (!file_) fail("cannot be made");
  std::setvbuf(file_.get(), nullptr, _IONBF, 0);
}

Page::~Page() {
  if (!file_) return;
  file_.reset();
  std::remove(draft_.c_str());
}

Page& Page::operator<<(std::string_view text) {
  const char* from = text.data();
  const char* const end = from + text.size();
  for (;;) {
    const auto left = static_cast<std::size_t>(end - from);
    const std::size_t copied = copyAscii(from, std::min(left, room()), next_);
    from += copied;
    next_ += copied;
    if (from == end) return *this;
    if (room() < kLongestReference) {
      flush();
      continue;
    }
    const utf8::Character odd = utf8::decode({from, left - copied}, 0);
    encode(odd.code);
    from += odd.size;
  }
}

void Page::number(std::int64_t value) {
  if (room() < kLongestNumber) flush();
  next_ = writeWhole(next_, value);
}

void Page::number(double value, const Locale& locale) {
  if (const char decimal = decimalOf(locale); decimal != '\0') {
    if (room() < kLongestNumber) flush();
    if (char* const end = writeHundredths(next_, value, decimal)) {
      next_ = end;
      return;
    }
  }
  *this << plainNumber(value, locale);
}

void Page::cell(const PageMark& mark, std::string_view text) {
  char* const at = behind(mark, kShortText);
  next_ = at;
  if (text.size() <= kShortText && copyAscii(text.data(), text.size(), at) == text.size()) {
    next_ = at + text.size();
  } else {
    *this << text;
  }
}

void Page::cell(const PageMark& mark, std::int64_t value) {
  next_ = writeWhole(behind(mark, kLongestNumber), value);
}

void Page::cell(const PageMark& mark, double value, const Locale& locale) {
  char* const at = behind(mark, kLongestNumber);
  const char decimal = decimalOf(locale);
  if (char* const end = decimal == '\0' ? nullptr : writeHundredths(at, value, decimal)) {
    next_ = end;
  } else {
    next_ = at;
    *this << plainNumber(value, locale);
  }
}

/// Of a character that is not ASCII. A byte that is no UTF-8 goes out as it is: it came from a
/// program that wrote this encoding.
void Page::encode(char32_t character) {
  if (character >= utf8::kInvalidBase || (character >= 0xA0 && character <= 0xFF)) {
    *next_++ = static_cast<char>(static_cast<unsigned char>(character & 0xFFU));
    return;
  }
  const auto* const place = std::find(kUpper.begin(), kUpper.end(), character);
  if (place != kUpper.end()) {
    *next_++ = static_cast<char>(static_cast<unsigned char>(0x80 + (place - kUpper.begin())));
  } else {
    next_ = fmt::format_to(next_, "&#{};", static_cast<std::uint32_t>(character));
  }
}

void Page::flush() {
  const auto count = static_cast<std::size_t>(next_ - buffer_.get());
  if (std::fwrite(buffer_.get(), 1, count, file_.get()) != count) fail("cannot be written");
  next_ = buffer_.get();
}

void Page::finish() {
  flush();
  const bool written = std::fclose(file_.release()) == 0;
  if (written && std::rename(draft_.c_str(), path_.c_str()) == 0) return;
  const int reason = errno;
  std::remove(draft_.c_str());
  errno = reason;
  fail(written ? "cannot take its place" : "cannot be written");
}

void Page::fail(std::string_view what) const {
  raise(errors::kPathAccess, "Page",
        fmt::format("The page {} {}: {}", path_.string(), what, std::strerror(errno)));
}

}  // namespace tavelor
