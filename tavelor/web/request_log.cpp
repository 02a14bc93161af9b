// SPDX-License-Identifier: MIT
// The log of requests.
#include "tavelor/web/request_log.hpp"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <unistd.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/web/json.hpp"

namespace tavelor::web {

namespace {

constexpr std::size_t kMostLines = 10'000;
constexpr std::size_t kLongestFault = 2'000;

/// In the time of Greenwich, which never goes back an hour.
std::string nowText() {
  const auto now = std::chrono::system_clock::now();
  const auto part =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()) % 1000;
  return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z",
                     fmt::gmtime(std::chrono::system_clock::to_time_t(now)), part.count());
}

/// False where it cannot be written, for good.
bool writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(file, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

RequestLog::RequestLog(const std::string& file) {
  if (file == "-") return;
  if (file.empty()) {
    file_ = STDERR_FILENO;
  } else {
    constexpr int kMode = 0640;
    file_ = ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, kMode);
    if (file_ < 0) {
      raise(errors::kPathAccess, "Log",
            fmt::format("{} cannot be written: {}.", file, std::strerror(errno)));
    }
    isOwnFile_ = true;
  }
  writer_ = std::thread([this] { work(); });
}

RequestLog::~RequestLog() {
  {
    const std::lock_guard lock(mutex_);
    isEnding_ = true;
  }
  wake_.notify_one();
  if (writer_.joinable()) writer_.join();
  if (isOwnFile_) ::close(file_);
}

void RequestLog::write(const LogLine& line) {
  if (file_ < 0) return;
  Json json = {{"time", nowText()},
               {"method", line.method},
               {"path", line.path},
               {"status", line.status},
               {"ms", toJson(line.milliseconds, 2)},
               {"who", line.who},
               {"address", line.address},
               {"bytes", line.bytes}};
  if (!line.fault.empty()) json["fault"] = line.fault.substr(0, kLongestFault);
  add(dumped(json) + "\n");
}

void RequestLog::tell(std::string_view what, std::string_view detail) {
  if (file_ < 0) return;
  Json json = {{"time", nowText()}, {"event", what}};
  if (!detail.empty()) json["detail"] = detail;
  add(dumped(json) + "\n");
}

void RequestLog::add(std::string line) {
  {
    const std::lock_guard lock(mutex_);
    if (lines_.size() >= kMostLines) {
      ++lost_;
      return;
    }
    lines_.push_back(std::move(line));
  }
  wake_.notify_one();
}

void RequestLog::work() {
  std::unique_lock lock(mutex_);
  while (true) {
    wake_.wait(lock, [this] { return isEnding_ || !lines_.empty(); });
    if (lines_.empty()) return;
    std::vector<std::string> lines;
    lines.swap(lines_);
    if (lost_ > 0)
      lines.push_back(
          fmt::format("{{\"time\":\"{}\",\"event\":\"lost\",\"lines\":{}}}\n", nowText(), lost_));
    lost_ = 0;
    lock.unlock();
    for (const std::string& line : lines) {
      if (!writeAll(file_, line)) break;
    }
    lock.lock();
  }
}

}  // namespace tavelor::web
