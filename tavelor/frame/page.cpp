// SPDX-License-Identifier: MIT
// Encoding and safe replacement of pages.
#include "tavelor/frame/page.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstring>

#include <fmt/format.h>
#include <unistd.h>

#include "tavelor/platform/error.hpp"
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

}  // namespace

Page::Page(std::filesystem::path path)
    : path_(std::move(path)),
      draft_(path_),
      buffer_(std::make_unique<char[]>(kBuffer)),
      next_(buffer_.get()) {
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

// Most text is ASCII through and through, so it is copied a word at a time.
Page& Page::operator<<(std::string_view text) {
  const char* from = text.data();
  const char* const end = from + text.size();
  while (from != end) {
    if (room() < kLongestReference) flush();
    const auto left = static_cast<std::size_t>(end - from);
    if (left >= sizeof(std::uint64_t)) {
      const auto word = load<std::uint64_t>(from);
      if (isAsciiWord(word)) {
        std::memcpy(next_, &word, sizeof word);
        from += sizeof word;
        next_ += sizeof word;
        continue;
      }
    } else if (left >= sizeof(std::uint32_t)) {
      // The two halves of what is left, which may overlap.
      const auto first = load<std::uint32_t>(from);
      const auto last = load<std::uint32_t>(end - sizeof(std::uint32_t));
      if (isAsciiWord(first | last)) {
        std::memcpy(next_, &first, sizeof first);
        next_ += left;
        std::memcpy(next_ - sizeof last, &last, sizeof last);
        return *this;
      }
    }
    if (utf8::isAscii(*from)) {
      *next_++ = *from++;
      continue;
    }
    const utf8::Character odd = utf8::decode({from, left}, 0);
    encode(odd.code);
    from += odd.size;
  }
  return *this;
}

void Page::number(std::int64_t value) {
  if (room() < kLongestNumber) flush();
  next_ = std::to_chars(next_, next_ + kLongestNumber, value).ptr;
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
