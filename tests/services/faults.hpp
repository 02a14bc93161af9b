// SPDX-License-Identifier: MIT
// What the tests of faults share: errors with their texts, files as bytes, processes that die.
#pragma once

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tests/support/file_limit.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::test {

/// The error that `action` raises; number 0 when it raises none.
template <typename Action>
Error raisedBy(Action&& action) {
  try {
    action();
  } catch (const Error& error) {
    return error;
  }
  return {0, "", ""};
}

/// Makes the engine undo the open transaction of a connection to the main database by itself: its
/// changes no longer fit in memory, and not in the file either.
inline void loseTransaction(Connection& connection) {
  const FileLimit limit(4U << 20U);
  const std::string text(1U << 20U, 'x');
  EXPECT_NE(errorOf([&] {
              for (int i = 0; i < 40; ++i) {
                connection.Execute(
                    Statement("INSERT INTO Articulos_Comentarios (Id, Comentarios) VALUES (")
                    << sqlLiteral(i) << ", '" << spliced(text) << "')");
              }
            }),
            0);
}

inline std::string readFile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

inline void writeFile(const std::filesystem::path& file, std::string_view content) {
  std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
}

/// Another process that runs `work`. It must open what it needs by itself.
class Child {
 public:
  template <typename Work>
  explicit Child(Work work) : id_(::fork()) {
    if (id_ != 0) return;
    int status = 1;
    try {
      work();
      status = 0;
    } catch (...) {
      // The parent sees the status.
    }
    ::_exit(status);
  }
  ~Child() {
    if (id_ > 0) kill();
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  /// True when it ended by itself and well.
  bool wait() {
    int status = 0;
    ::waitpid(id_, &status, 0);
    id_ = 0;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }
  void kill() {
    ::kill(id_, SIGKILL);
    wait();
  }

 private:
  pid_t id_;
};

/// Waits until `condition` holds; false after ten seconds, so that a failure ends.
template <typename Condition>
bool eventually(Condition condition) {
  for (int i = 0; i < 2000; ++i) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return false;
}

}  // namespace tavelor::test
