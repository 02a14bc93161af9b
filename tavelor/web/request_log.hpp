// SPDX-License-Identifier: MIT
// The log of requests: a line of JSON each.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace tavelor::web {

/// What a line tells.
struct LogLine {
  std::string method{};
  std::string path{};  ///< without the query, which may hold names of people
  int status = 0;
  double milliseconds = 0;
  std::string who{};
  std::string address{};
  std::size_t bytes = 0;  ///< of the answer's body
  std::string fault{};    ///< what was raised
};

/// Lines are written by a thread of their own, so that whoever reads them, or does not, holds up
/// nobody. What cannot be written is lost, and so are lines beyond some thousand that wait: the
/// next line tells how many.
class RequestLog {
 public:
  /// Onto a file, at its end; "" for standard error, "-" for nowhere. Raises 75 for a file that
  /// cannot be opened.
  explicit RequestLog(const std::string& file);
  /// Writes what waits.
  ~RequestLog();
  RequestLog(const RequestLog&) = delete;
  RequestLog& operator=(const RequestLog&) = delete;

  void write(const LogLine& line);
  /// Something that is no request: "started", "stopping".
  void tell(std::string_view what, std::string_view detail = {});

 private:
  void add(std::string line);
  void work();

  int file_ = -1;
  bool isOwnFile_ = false;
  std::mutex mutex_;
  std::condition_variable wake_;
  std::vector<std::string> lines_;
  std::uint64_t lost_ = 0;
  bool isEnding_ = false;
  std::thread writer_;
};

}  // namespace tavelor::web
