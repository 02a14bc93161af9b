// SPDX-License-Identifier: MIT
// Text files that are kept open under small numbers.
#include "tavelor/sales/log_files.hpp"

#include <algorithm>

#include "tavelor/platform/error.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kSource = "LogFiles";
// The platform's number for a file number that stands for no open file.
constexpr std::int32_t kBadFileNumber = 52;

}  // namespace

std::int16_t LogFiles::open(const std::string& path) {
  std::unique_ptr<std::FILE, Closer> file(std::fopen(path.c_str(), "wb"));
  if (!file) raise(errors::kPathAccess, kSource, path);
  auto place = std::find_if(logs_.begin(), logs_.end(), [](const Log& log) { return !log.file; });
  if (place == logs_.end()) place = logs_.emplace(logs_.end());
  *place = {path, std::move(file)};
  return static_cast<std::int16_t>(place - logs_.begin() + 1);
}

LogFiles::Log* LogFiles::find(std::int16_t number) {
  const bool given = number > 0 && static_cast<std::size_t>(number) <= logs_.size();
  return given ? &logs_[static_cast<std::size_t>(number) - 1] : nullptr;
}

void LogFiles::close(std::int16_t number) noexcept {
  if (Log* log = find(number)) log->file.reset();
}

void LogFiles::writeLine(std::int16_t number, std::string_view line) {
  const Log* log = find(number);
  if (log == nullptr || !log->file) {
    raise(kBadFileNumber, kSource, "No open file has the number " + std::to_string(number));
  }
  std::string bytes(line);
  bytes += "\r\n";
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), log->file.get()) == bytes.size();
  if (!written || std::fflush(log->file.get()) != 0) {
    raise(errors::kPathAccess, kSource, log->path);
  }
}

}  // namespace tavelor
