// SPDX-License-Identifier: MIT
// Encoding and safe replacement of pages.
#include "tavelor/frame/page.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include <fmt/format.h>
#include <unistd.h>

#include "tavelor/platform/error.hpp"

namespace tavelor {

namespace {

constexpr std::size_t kBuffer = 256 * 1024;

// windows-1252 from 0x80 to 0x9F; 0 where it has no character.
constexpr std::array<char32_t, 32> kUpper = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

bool isAscii(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}

// One character of a UTF-8 text; a byte that is none counts as itself. Moves `text` on.
char32_t takeCharacter(std::string_view& text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const auto follows = [&](std::size_t count) {
    if (text.size() <= count) return false;
    for (std::size_t i = 1; i <= count; ++i) {
      if ((byte(i) & 0xC0U) != 0x80) return false;
    }
    return true;
  };
  char32_t character = byte(0);
  std::size_t length = 1;
  if ((byte(0) & 0xE0U) == 0xC0 && follows(1)) {
    character = (byte(0) & 0x1FU) << 6U | (byte(1) & 0x3FU);
    length = 2;
  } else if ((byte(0) & 0xF0U) == 0xE0 && follows(2)) {
    character = (byte(0) & 0x0FU) << 12U | (byte(1) & 0x3FU) << 6U | (byte(2) & 0x3FU);
    length = 3;
  } else if ((byte(0) & 0xF8U) == 0xF0 && follows(3)) {
    character = (byte(0) & 0x07U) << 18U | (byte(1) & 0x3FU) << 12U | (byte(2) & 0x3FU) << 6U |
                (byte(3) & 0x3FU);
    length = 4;
  }
  text.remove_prefix(length);
  return character;
}

void appendEncoded(std::string& to, char32_t character) {
  if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) {
    to += static_cast<char>(static_cast<unsigned char>(character));
    return;
  }
  const auto* const place = std::find(kUpper.begin(), kUpper.end(), character);
  if (place != kUpper.end()) {
    to += static_cast<char>(static_cast<unsigned char>(0x80 + (place - kUpper.begin())));
  } else {
    to += fmt::format("&#{};", static_cast<std::uint32_t>(character));
  }
}

}  // namespace

Page::Page(std::filesystem::path path) : path_(std::move(path)), draft_(path_) {
  draft_ += fmt::format(".{}.tmp", ::getpid());
  file_.reset(std::fopen(draft_.c_str(), "wb"));
  if (!file_) fail("cannot be made");
  std::setvbuf(file_.get(), nullptr, _IONBF, 0);
  buffer_.reserve(kBuffer + kBuffer / 4);
}

Page::~Page() {
  if (!file_) return;
  file_.reset();
  std::error_code ignored;
  std::filesystem::remove(draft_, ignored);
}

Page& Page::operator<<(std::string_view utf8) {
  while (!utf8.empty()) {
    const auto* const odd = std::find_if_not(utf8.begin(), utf8.end(), isAscii);
    const auto plain = static_cast<std::size_t>(odd - utf8.begin());
    buffer_.append(utf8.data(), plain);
    utf8.remove_prefix(plain);
    if (!utf8.empty()) appendEncoded(buffer_, takeCharacter(utf8));
  }
  if (buffer_.size() >= kBuffer) flush();
  return *this;
}

void Page::flush() {
  if (std::fwrite(buffer_.data(), 1, buffer_.size(), file_.get()) != buffer_.size()) {
    fail("cannot be written");
  }
  buffer_.clear();
}

void Page::finish() {
  flush();
  std::FILE* const file = file_.release();
  if (std::fclose(file) != 0) fail("cannot be written");
  std::error_code error;
  std::filesystem::rename(draft_, path_, error);
  if (error) {
    errno = error.value();
    std::error_code ignored;
    std::filesystem::remove(draft_, ignored);
    fail("cannot take its place");
  }
}

void Page::fail(std::string_view what) const {
  raise(errors::kPathAccess, "Page",
        fmt::format("The page {} {}: {}", path_.string(), what, std::strerror(errno)));
}

}  // namespace tavelor
