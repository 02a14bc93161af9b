// SPDX-License-Identifier: MIT
// A disk that is full from a size on, without a disk.
#pragma once

#include <csignal>
#include <cstdint>

#include <sys/resource.h>

namespace tavelor::test {

/// While it lives no file of this process grows beyond `bytes`: writing further is an I/O error.
class FileLimit {
 public:
  explicit FileLimit(std::uintmax_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FileLimit(const FileLimit&) = delete;
  FileLimit& operator=(const FileLimit&) = delete;

 private:
  using Handler = void (*)(int);
  rlimit before_{};
  Handler handler_;
};

}  // namespace tavelor::test
