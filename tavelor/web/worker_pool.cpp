// SPDX-License-Identifier: MIT
// The threads that answer requests.
#include "tavelor/web/worker_pool.hpp"

#include <memory>
#include <utility>

#include "tavelor/services/apartment.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/worker.hpp"

namespace tavelor::web {

namespace {

/// What a thread works with; the worker goes before its apartment.
struct Desk {
  explicit Desk(Application& application) : apartment(application.installation()) {}
  Apartment apartment;
  Worker worker;
};

}  // namespace

WorkerPool::WorkerPool(Application& application, std::size_t threads, std::size_t mostWaiting)
    : application_(application), mostWaiting_(mostWaiting) {
  for (std::size_t i = 0; i < threads; ++i) threads_.emplace_back([this] { work(); });
}

WorkerPool::~WorkerPool() {
  {
    const std::lock_guard lock(mutex_);
    isEnding_ = true;
  }
  wake_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

bool WorkerPool::give(Request request, Done done) {
  {
    const std::lock_guard lock(mutex_);
    if (jobs_.size() >= mostWaiting_) return false;
    jobs_.push_back({std::move(request), std::move(done)});
  }
  wake_.notify_one();
  return true;
}

bool WorkerPool::take(Job& job) {
  std::unique_lock lock(mutex_);
  wake_.wait(lock, [this] { return isEnding_ || !jobs_.empty(); });
  if (jobs_.empty()) return false;
  job = std::move(jobs_.front());
  jobs_.pop_front();
  return true;
}

void WorkerPool::work() {
  std::unique_ptr<Desk> desk;
  for (Job job; take(job);) {
    Told told;
    Answer answer;
    try {
      if (!desk) desk = std::make_unique<Desk>(application_);
      answer = application_.answer(job.request, desk->worker, told);
    } catch (...) {  // no apartment: the next request tries again
      answer = answerOf(std::current_exception(), told.fault);
    }
    job.done(std::move(answer), std::move(told));
  }
}

}  // namespace tavelor::web
