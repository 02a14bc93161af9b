// SPDX-License-Identifier: MIT
// The order in which sessions write to one database file.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace tavelor::engine::sqlite {

class QueueFile;

/// A place in the queue of those who want to write to one database, be they threads or processes.
/// Whoever comes first is served first. The engine's own lock still keeps writers apart: the queue
/// only sees to it that they do not race for it, so whatever goes wrong here costs the order and
/// never a row.
///
/// The queue is a file beside the database, "main.db-queue", that goes with its last user, as the
/// engine's own files do; what a killed program leaves is taken up by the next. Each place is a
/// ticket: a number and a lock on the byte of that number. Locks belong to the open file, so they
/// end with a process that is killed, waiting or writing, and those behind it move up. A place is
/// held by whoever is at its head until leave(); any thread may call that. Whatever others do to
/// the file, fill it, cut it short or take it away, costs the order and nothing else.
class WriteQueue {
 public:
  enum class Answer : std::uint8_t {
    kFirst,      ///< the right to write is ours
    kOwnThread,  ///< this very thread holds it: waiting would never end
    kCircle,     ///< its holder waits for a database that this thread holds
    kTooLong,    ///< one and the same holder kept it for all of our patience
  };

  explicit WriteQueue(std::string databasePath);
  ~WriteQueue();
  WriteQueue(const WriteQueue&) = delete;
  WriteQueue& operator=(const WriteQueue&) = delete;

  /// Waits for our turn. Patience counts from the last time that the queue moved. Answers kFirst
  /// where there can be no queue (a folder that may not be written): the engine's own wait is left.
  Answer enter(std::chrono::milliseconds patience);
  /// Lets the next one in. Nothing to do when we are not in.
  void leave() noexcept;

 private:
  Answer wait(std::chrono::milliseconds patience);
  bool takeTicket();
  bool isFirst() const;
  bool waitsForUs(std::uint64_t holder, std::uint64_t us) const;
  void leavePlace() noexcept;
  void giveUp() noexcept;
  void wakeNext() noexcept;

  std::string databasePath_;
  std::shared_ptr<QueueFile> file_;  // opened by the first enter()
  std::uint64_t ticket_ = 0;         // 0: not in
};

}  // namespace tavelor::engine::sqlite
