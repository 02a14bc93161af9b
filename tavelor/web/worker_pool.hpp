// SPDX-License-Identifier: MIT
// The threads that answer requests, and those that wait for one.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "tavelor/web/application.hpp"
#include "tavelor/web/message.hpp"

namespace tavelor::web {

/// Each thread has an apartment of its own for its whole life.
class WorkerPool {
 public:
  /// Called by the thread that has answered.
  using Done = std::function<void(Answer, Told)>;

  WorkerPool(Application& application, std::size_t threads, std::size_t mostWaiting);
  /// Answers what waits, and ends the apartments.
  ~WorkerPool();
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  /// False where too many wait already; nothing happens then.
  bool give(Request request, Done done);

 private:
  struct Job {
    Request request;
    Done done;
  };
  bool take(Job& job);
  void work();

  Application& application_;
  std::size_t mostWaiting_;
  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<Job> jobs_;
  bool isEnding_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace tavelor::web
