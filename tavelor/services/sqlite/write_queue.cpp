// SPDX-License-Identifier: MIT
// Tickets in a file that all writers share.
//
// Taking a ticket: lock the byte of the next number, then make it the last number given. Who finds
// the byte locked, or the number given meanwhile, tries the one after it. A lock is never waited
// for, so none can block: a writer whose turn has not come sleeps on a word of its own place, which
// its predecessor changes when it leaves. Only the death of a predecessor goes untold; it is found
// by looking at the locks every kLook.
//
// The file is read and written by calls, never through memory: a program that touches a mapped page
// that somebody has cut off the file is ended by the system. What is cut off reads as 0. Only the
// system itself looks at the mapped words, where a writer sleeps, and it answers with an error.
#include "tavelor/services/sqlite/write_queue.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <ctime>
#include <random>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <linux/futex.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tavelor::engine::sqlite {

namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::steady_clock;

constexpr milliseconds kLook{20};
// More may wait; those that share a place with another are woken by kLook only.
constexpr std::size_t kPlaces = 256;
// Its byte is still a place in a file.
constexpr std::uint64_t kLastTicket = std::uint64_t{1} << 62U;
// So often a number that somebody is just taking, or a file that somebody takes away, is tried.
constexpr int kTries = 1000;

/// Names a thread among those of all processes. Another one after a fork.
std::uint64_t thisThread() {
  thread_local pid_t process = 0;
  thread_local std::uint64_t name = 0;
  if (const pid_t now = ::getpid(); process != now) {
    std::random_device random;
    name = (std::uint64_t{random()} << 32U | random()) | 1U;  // 0 is nobody
    process = now;
  }
  return name;
}

/// What lies in the file. It holds sense in all states that a killed process, a power cut or a
/// stranger can leave: the numbers need not be right, as the locks alone decide. Numbers that two
/// write at once are no worse.
struct Shared {
  struct Turn {
    std::uint64_t served;  // the last that was first and left: all before it are gone
    std::uint64_t holder;
    std::uint64_t holderThread;  // 0 while nobody holds the right
  };
  struct Place {
    std::uint32_t calls;   // slept on; changed to wake
    std::uint64_t ticket;  // of the waiter, or 0
    std::uint64_t thread;
  };
  using Places = std::array<Place, kPlaces>;

  std::uint64_t given;  // the last ticket
  Turn turn;
  Places places;
};

constexpr std::size_t kGiven = offsetof(Shared, given);
constexpr std::size_t kServed = offsetof(Shared, turn.served);
constexpr std::size_t kHolder = offsetof(Shared, turn.holder);
constexpr std::size_t kHolderThread = offsetof(Shared, turn.holderThread);
constexpr std::size_t kAllPlaces = offsetof(Shared, places);

/// Where the place of a ticket lies.
constexpr std::size_t placeOf(std::uint64_t ticket) {
  return kAllPlaces + ticket % kPlaces * sizeof(Shared::Place);
}

}  // namespace

class QueueFile {
 public:
  /// Null where it can't be opened or made.
  static std::shared_ptr<QueueFile> open(const std::string& databasePath) {
    struct stat database {};
    if (::stat(databasePath.c_str(), &database) != 0) return nullptr;
    const mode_t mode = database.st_mode & 0666;
    for (int tries = 0; tries < kTries; ++tries) {
      std::shared_ptr<QueueFile> file(new QueueFile(databasePath + "-queue"));
      if (!file->openDescriptor(mode)) return nullptr;
      switch (file->join()) {
        case Locking::kDone:
          return file->map() ? file : nullptr;
        case Locking::kTaken:  // its last user is taking it away
          ::sched_yield();
          break;
        case Locking::kImpossible:
          return nullptr;
      }
    }
    return nullptr;
  }
  ~QueueFile() {
    if (memory_ != nullptr) ::munmap(memory_, sizeof(Shared));
    // The last one takes the file away. A process that was forked has it from its parent.
    if (isUser_ && process_ == ::getpid() && set(F_WRLCK, kUsers, 1) == Locking::kDone &&
        isInPlace()) {
      ::unlink(path_.c_str());
    }
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  QueueFile(const QueueFile&) = delete;
  QueueFile& operator=(const QueueFile&) = delete;

  template <typename Number = std::uint64_t>
  Number read(std::size_t place) const noexcept {
    Number number{};
    if (::pread(descriptor_, &number, sizeof number, static_cast<off_t>(place)) < 0) return {};
    return number;
  }
  template <typename Number>
  bool write(std::size_t place, const Number& number) const noexcept {
    return ::pwrite(descriptor_, &number, sizeof number, static_cast<off_t>(place)) ==
           ssize_t{sizeof number};
  }

  /// Sleeps while the place's word is `calls`, at most for `time`.
  void sleep(std::size_t place, std::uint32_t calls, nanoseconds time) const {
    constexpr std::int64_t kSecond = 1'000'000'000;
    timespec limit{};
    limit.tv_sec = static_cast<std::time_t>(time.count() / kSecond);
    limit.tv_nsec = time.count() % kSecond;
    const long slept = ::syscall(SYS_futex, memory_ + place, FUTEX_WAIT, calls, &limit, nullptr, 0);
    // The word has been cut off: nobody can wake us.
    if (slept != 0 && errno == EFAULT) std::this_thread::sleep_for(time);
  }
  void wake(std::size_t place) const noexcept {
    write(place, read<std::uint32_t>(place) + 1);
    ::syscall(SYS_futex, memory_ + place, FUTEX_WAKE, INT_MAX, nullptr, nullptr, 0);
  }

  enum class Locking : std::uint8_t { kDone, kTaken, kImpossible };
  Locking lock(std::uint64_t ticket) const noexcept { return set(F_WRLCK, ticket, 1); }
  void unlock(std::uint64_t ticket) const noexcept { set(F_UNLCK, ticket, 1); }
  /// Does another session hold one of `count` tickets from `first` on?
  bool isLocked(std::uint64_t first, std::uint64_t count) const {
    struct flock region = regionOf(F_WRLCK, first, count);
    return ::fcntl(descriptor_, F_OFD_GETLK, &region) == 0 && region.l_type != F_UNLCK;
  }
  /// The highest ticket that another session holds, or 0.
  std::uint64_t lastLocked() const {
    constexpr std::uint64_t kToTheEnd = 0;
    std::uint64_t last = 0;
    for (;;) {
      struct flock region = regionOf(F_WRLCK, last + 1, kToTheEnd);
      if (::fcntl(descriptor_, F_OFD_GETLK, &region) != 0 || region.l_type == F_UNLCK) return last;
      last = static_cast<std::uint64_t>(region.l_start);
    }
  }

 private:
  // Everybody who has the file open holds this byte together; tickets come after it.
  static constexpr std::uint64_t kUsers = 0;

  explicit QueueFile(std::string path) : path_(std::move(path)) {}

  bool openDescriptor(mode_t mode) {
    constexpr int kFlags = O_RDWR | O_CLOEXEC | O_NOFOLLOW;
    descriptor_ = ::open(path_.c_str(), kFlags);
    if (descriptor_ < 0 && errno == ENOENT) {
      descriptor_ = ::open(path_.c_str(), kFlags | O_CREAT, mode);
      // Whoever may write the database may queue, whatever this process masks.
      if (descriptor_ >= 0 && ::fchmod(descriptor_, mode) != 0) errno = 0;
    }
    return descriptor_ >= 0;
  }
  /// Becomes one of its users, unless it is not there any more.
  Locking join() {
    const Locking locking = set(F_RDLCK, kUsers, 1);
    if (locking != Locking::kDone) return locking;
    isUser_ = isInPlace();
    return isUser_ ? Locking::kDone : Locking::kTaken;
  }
  bool isInPlace() const {
    struct stat ours {};
    struct stat named {};
    return ::fstat(descriptor_, &ours) == 0 && ::stat(path_.c_str(), &named) == 0 &&
           ours.st_ino == named.st_ino && ours.st_dev == named.st_dev;
  }
  bool map() {
    struct stat now {};
    if (::fstat(descriptor_, &now) != 0) return false;
    // The room is taken at once: on a disk that is full later the order stays.
    if (static_cast<std::size_t>(now.st_size) < sizeof(Shared) &&
        ::posix_fallocate(descriptor_, 0, sizeof(Shared)) != 0) {
      return false;
    }
    void* const address =
        ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor_, 0);
    if (address == MAP_FAILED) return false;
    memory_ = static_cast<std::byte*>(address);
    return true;
  }
  Locking set(short type, std::uint64_t first, std::uint64_t count) const noexcept {
    struct flock region = regionOf(type, first, count);
    if (::fcntl(descriptor_, F_OFD_SETLK, &region) == 0) return Locking::kDone;
    return errno == EAGAIN || errno == EACCES ? Locking::kTaken : Locking::kImpossible;
  }
  static struct flock regionOf(short type, std::uint64_t first, std::uint64_t count) {
    struct flock region {};
    region.l_type = type;
    region.l_whence = SEEK_SET;
    region.l_start = static_cast<off_t>(first);
    region.l_len = static_cast<off_t>(count);
    return region;
  }

  std::string path_;
  pid_t process_ = ::getpid();
  int descriptor_ = -1;
  bool isUser_ = false;
  std::byte* memory_ = nullptr;  // of the file: for the system alone
};

namespace {

/// The queues at whose head this thread stands, by their files. One that another thread has left
/// for us stays until it is looked at.
thread_local std::vector<std::weak_ptr<QueueFile>> heldHere;

}  // namespace

WriteQueue::WriteQueue(std::string databasePath) : databasePath_(std::move(databasePath)) {}

WriteQueue::~WriteQueue() {
  leave();
}

WriteQueue::Answer WriteQueue::enter(milliseconds patience) {
  if (!file_) file_ = QueueFile::open(databasePath_);
  if (!file_ || !takeTicket()) return Answer::kFirst;
  if (!isFirst()) {
    const Answer answer = wait(patience);
    if (answer != Answer::kFirst) {
      giveUp();
      return answer;
    }
  }
  const std::uint64_t us = thisThread();
  file_->write(kHolder, std::array{ticket_, us});
  std::erase_if(heldHere, [this, us](const std::weak_ptr<QueueFile>& each) {
    const auto held = each.lock();
    return !held || held == file_ || held->read(kHolderThread) != us;
  });
  heldHere.push_back(file_);
  return Answer::kFirst;
}

bool WriteQueue::takeTicket() {
  for (int tries = 1;; ++tries) {
    const std::uint64_t given = file_->read(kGiven);
    // Nobody comes so far: the file is new, or somebody wrote into it or cut it short.
    const bool isKnown = given != 0 && given < kLastTicket;
    const std::uint64_t last = isKnown ? given : file_->lastLocked();
    const QueueFile::Locking locking = file_->lock(last + 1);
    if (locking == QueueFile::Locking::kImpossible) return false;
    if (locking == QueueFile::Locking::kDone) {
      // Whoever gives a number holds its lock: nobody else gives this one.
      if (file_->read(kGiven) == given) {
        if (!file_->write(kGiven, last + 1)) {
          file_->unlock(last + 1);
          return false;
        }
        ticket_ = last + 1;
        return true;
      }
      file_->unlock(last + 1);
    } else if (tries % kTries == 0) {
      // Nobody takes a number for so long: the count was put back by somebody, and this one waits.
      file_->write(kGiven, file_->lastLocked());
    } else {
      ::sched_yield();
    }
  }
}

bool WriteQueue::isFirst() const {
  return ticket_ == 1 || file_->read(kServed) == ticket_ - 1 || !file_->isLocked(1, ticket_ - 1);
}

WriteQueue::Answer WriteQueue::wait(milliseconds patience) {
  const std::size_t place = placeOf(ticket_);
  const std::uint64_t us = thisThread();
  file_->write(place + offsetof(Shared::Place, ticket), std::array{ticket_, us});
  std::uint64_t served = file_->read(kServed);
  auto until = steady_clock::now() + patience;
  for (;;) {
    const auto calls = file_->read<std::uint32_t>(place);
    if (isFirst()) break;
    const auto turn = file_->read<Shared::Turn>(kServed);
    if (turn.holderThread == us) return Answer::kOwnThread;
    // Both of a circle see it; one is enough to break it.
    if (turn.holderThread > us && waitsForUs(turn.holderThread, us)) return Answer::kCircle;
    const auto now = steady_clock::now();
    if (turn.served != served) {
      served = turn.served;
      until = now + patience;
    }
    if (now >= until) return Answer::kTooLong;
    file_->sleep(place, calls, std::min<nanoseconds>(kLook, until - now));
  }
  leavePlace();
  return Answer::kFirst;
}

/// Whether the thread `holder` waits in a queue at whose head we stand.
bool WriteQueue::waitsForUs(std::uint64_t holder, std::uint64_t us) const {
  for (const std::weak_ptr<QueueFile>& each : heldHere) {
    const auto held = each.lock();
    if (!held || held == file_ || held->read(kHolderThread) != us) continue;
    for (const Shared::Place& place : held->read<Shared::Places>(kAllPlaces)) {
      if (place.ticket != 0 && place.thread == holder && held->isLocked(place.ticket, 1)) {
        return true;
      }
    }
  }
  return false;
}

/// Another ticket may have come to our place.
void WriteQueue::leavePlace() noexcept {
  const std::size_t ticket = placeOf(ticket_) + offsetof(Shared::Place, ticket);
  if (file_->read(ticket) == ticket_) file_->write(ticket, std::uint64_t{0});
}

void WriteQueue::giveUp() noexcept {
  leavePlace();
  file_->unlock(ticket_);
  wakeNext();
  ticket_ = 0;
}

void WriteQueue::leave() noexcept {
  if (ticket_ == 0) return;
  file_->write(kServed, Shared::Turn{ticket_, 0, 0});
  file_->unlock(ticket_);
  wakeNext();
  ticket_ = 0;
}

/// The nearest waiter behind us; who gave up in between has no ticket in its place any more.
void WriteQueue::wakeNext() noexcept {
  const std::uint64_t last = std::min(file_->read(kGiven), ticket_ + kPlaces);
  for (std::uint64_t ticket = ticket_ + 1; ticket <= last; ++ticket) {
    const std::size_t place = placeOf(ticket);
    if (file_->read(place + offsetof(Shared::Place, ticket)) != ticket) continue;
    file_->wake(place);
    return;
  }
}

}  // namespace tavelor::engine::sqlite
