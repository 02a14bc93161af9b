// SPDX-License-Identifier: MIT
// writers FILE PROCESSES THREADS EACH: so many processes of so many threads each write to one
// database without a pause, in transactions of ten rows. Prints how long they took: the median, one
// in a hundred, the slowest, that by the median, how many came later and were served earlier than
// one of them at the worst, and how many were refused. Times are those of the machine too; the
// order is the queue's alone.
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/value.hpp"
#include "tavelor/services/sqlite/sqlite_engine.hpp"

namespace {

using namespace tavelor::engine;
using std::chrono::duration_cast;
using std::chrono::nanoseconds;
using std::chrono::steady_clock;

constexpr int kRows = 10;
constexpr std::int64_t kRefused = -1;

/// What all processes write to: counts, and a record of each transaction.
struct Counts {
  std::atomic<std::int64_t> come;
  std::atomic<std::int64_t> served;
};
struct Record {
  std::int64_t time;  ///< nanoseconds from before it began to after its commit, or kRefused
  std::int64_t come;
  std::int64_t served;
};
Counts* counts = nullptr;

template <typename T>
T* shared(std::size_t count) {
  void* const memory =
      ::mmap(nullptr, count * sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) std::abort();
  return static_cast<T*>(memory);
}

std::unique_ptr<Session> open(const std::string& path, bool create) {
  OpenOptions options;
  // What is measured is who comes next. A machine with too much to do may leave one writer without
  // the processor for seconds, and those behind it are not to be refused for that.
  options.busyTimeoutMs = 60'000;
  options.path = path;
  options.create = create;
  return sqliteEngine().open(options);
}

void write(const std::string& path, Record* records, int count) {
  const auto session = open(path, false);
  const auto insert = session->prepare("INSERT INTO T (A, B) VALUES (?1, ?2)");
  for (int i = 0; i < count; ++i) {
    Record& record = records[i];
    const auto started = steady_clock::now();
    record.come = counts->come++;
    try {
      Transaction transaction(*session);
      record.served = counts->served++;
      for (int row = 0; row < kRows; ++row) {
        insert->bind(1, Value::ofInteger(row));
        insert->bind(2, Value::ofText("una línea de un ticket de la tienda"));
        insert->run();
      }
      transaction.commit();
      record.time = duration_cast<nanoseconds>(steady_clock::now() - started).count();
    } catch (const tavelor::Error&) {
      record.time = kRefused;
    }
  }
}

void writeByThreads(const std::string& path, Record* records, int threads, int each) {
  std::vector<std::thread> all;
  for (int thread = 0; thread < threads; ++thread) {
    all.emplace_back(write, path, records + std::ptrdiff_t{thread} * each, each);
  }
  for (std::thread& thread : all) thread.join();
}

/// How many came later and were served earlier than one of them, at the worst.
std::ptrdiff_t mostOvertaken(std::vector<Record> records) {
  std::erase_if(records, [](const Record& record) { return record.time == kRefused; });
  std::sort(records.begin(), records.end(),
            [](const Record& a, const Record& b) { return a.served < b.served; });
  std::ptrdiff_t most = 0;
  for (auto one = records.begin(); one != records.end(); ++one) {
    most = std::max(most, std::count_if(records.begin(), one, [one](const Record& other) {
                      return other.come > one->come;
                    }));
  }
  return most;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fputs("usage: writers FILE PROCESSES THREADS EACH\n", stderr);
    return 2;
  }
  const std::string path = argv[1];
  const int processes = std::atoi(argv[2]);
  const int threads = std::atoi(argv[3]);
  const int each = std::atoi(argv[4]);
  open(path, true)->execute("CREATE TABLE T (Id INTEGER PRIMARY KEY, A INTEGER, B TEXT)");

  const auto count = static_cast<std::size_t>(processes) * static_cast<std::size_t>(threads) *
                     static_cast<std::size_t>(each);
  counts = shared<Counts>(1);
  Record* const records = shared<Record>(count);
  for (int process = 0; process < processes; ++process) {
    if (::fork() != 0) continue;
    writeByThreads(path, records + std::ptrdiff_t{process} * threads * each, threads, each);
    ::_exit(0);
  }
  bool isWell = true;
  for (int process = 0, status = 0; process < processes; ++process) {
    isWell = ::wait(&status) > 0 && status == 0 && isWell;
  }
  std::vector<std::int64_t> times;
  for (std::size_t i = 0; i < count; ++i) times.push_back(records[i].time);
  std::sort(times.begin(), times.end());
  const auto refused = std::count(times.begin(), times.end(), kRefused);
  const auto at = [&](std::size_t place) { return static_cast<double>(times[place]) / 1e6; };
  std::printf("%9d %7d %7zu %9.2f %9.2f %9.2f %11.1f %9td %8td\n", processes, threads, count,
              at(count / 2), at(count - 1 - count / 100), at(count - 1),
              at(count - 1) / std::max(at(count / 2), 1e-6),
              mostOvertaken({records, records + count}), refused);
  return isWell ? 0 : 1;
}
