// SPDX-License-Identifier: MIT
// Writers are served in the order in which they came, threads and processes alike.
#include <atomic>
#include <chrono>
#include <csignal>
#include <functional>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "tests/sqlite/support.hpp"

namespace tavelor::engine::test {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr int kForEver = 3'600'000;

class WriteQueueThreads : public testing::Test {
 protected:
  WriteQueueThreads() {
    holder = openNew(path);
    holder->execute("CREATE TABLE T (Id INTEGER PRIMARY KEY, A INTEGER)");
  }

  /// Tickets that were given so far, by the file that the writers share.
  std::uint64_t given() const {
    std::uint64_t number = 0;
    std::ifstream(path + "-queue", std::ios::binary)
        .read(reinterpret_cast<char*>(&number), sizeof number);
    return number;
  }
  /// Starts one writer and waits until it stands in the queue.
  void awaitOneMore(const std::function<void()>& start) {
    const std::uint64_t before = given();
    start();
    for (int i = 0; i < 4000 && given() == before; ++i) {
      std::this_thread::sleep_for(milliseconds(5));
    }
    ASSERT_EQ(given(), before + 1);
  }
  void startThread(int mark, int patience = kForEver) {
    awaitOneMore([&] { threads.emplace_back([=, this] { write(mark, patience); }); });
  }
  /// The same behind a cut that the count of tickets was lost in.
  void startThreadAfterCut(int mark) {
    const auto lost = [this] { return std::filesystem::file_size(path + "-queue") < 16; };
    ASSERT_TRUE(lost());
    threads.emplace_back([=, this] { write(mark, kForEver); });
    // A writer that waits has written its place, which lies behind.
    for (int i = 0; i < 4000 && lost(); ++i) std::this_thread::sleep_for(milliseconds(5));
    ASSERT_FALSE(lost());
  }
  /// A process that stands in the queue once it is told to, writes `mark` at its turn, and stays
  /// there for ever if it shall.
  struct Process {
    pid_t id;
    int go;
  };
  Process fork(int mark, bool stays = false) const {
    int pipe[2];
    if (::pipe(pipe) != 0) ::abort();
    const pid_t id = ::fork();
    if (id != 0) {
      ::close(pipe[0]);
      return {id, pipe[1]};
    }
    ::close(pipe[1]);
    char byte = 0;
    if (::read(pipe[0], &byte, 1) != 1) ::_exit(1);
    const auto session = openExisting(path, kForEver);
    session->begin();
    session->execute("INSERT INTO T (A) VALUES (" + std::to_string(mark) + ")");
    if (stays) ::pause();
    session->commit();
    ::_exit(0);
  }
  void start(Process& process) {
    awaitOneMore([&] {
      ASSERT_EQ(::write(process.go, "g", 1), 1);
      ::close(process.go);
    });
  }
  static void end(const Process& process, int signal = 0) {
    if (signal != 0) ::kill(process.id, signal);
    int status = 0;
    ::waitpid(process.id, &status, 0);
    EXPECT_EQ(WIFEXITED(status) && WEXITSTATUS(status) == 0, signal == 0);
  }
  void joinAll() {
    for (std::thread& thread : threads) thread.join();
    threads.clear();
  }
  void write(int mark, int patience = kForEver) {
    const auto session = openExisting(path, patience);
    Transaction transaction(*session);
    session->execute("INSERT INTO T (A) VALUES (" + std::to_string(mark) + ")");
    transaction.commit();
  }
  std::vector<std::int64_t> marks() {
    const RowStore rows = fetchAll(*holder, "SELECT A FROM T ORDER BY Id", {ColumnType::kInt32});
    std::vector<std::int64_t> all;
    for (std::size_t row = 0; row < rows.rows(); ++row) all.push_back(rows.integer(row, 0));
    return all;
  }

  TemporaryFolder folder;
  const std::string path = folder.file("a.db");
  std::unique_ptr<Session> holder;
  std::vector<std::thread> threads;
};

TEST_F(WriteQueueThreads, AreServedInTheOrderInWhichTheyCame) {
  holder->begin();
  for (const int mark : {1, 2, 3, 4, 5, 6}) startThread(mark);
  holder->commit();
  joinAll();
  EXPECT_THAT(marks(), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(WriteQueueThreads, WhoeverHasJustWrittenStandsBehindThoseWhoWait) {
  holder->begin();
  startThread(1);
  startThread(2);
  holder->commit();
  holder->execute("INSERT INTO T (A) VALUES (3)");
  EXPECT_THAT(marks(), ElementsAre(1, 2, 3));
  joinAll();
}

TEST_F(WriteQueueThreads, SingleStatementsStandInItToo) {
  holder->begin();
  startThread(1);
  awaitOneMore([&] {
    threads.emplace_back([this] {
      const auto session = openExisting(path, kForEver);
      session->prepare("INSERT INTO T (A) VALUES (2)")->run();
    });
  });
  awaitOneMore([&] {
    threads.emplace_back([this] {
      const auto session = openExisting(path, kForEver);
      fetchAll(*session, "INSERT INTO T (A) VALUES (3) RETURNING A", {ColumnType::kInt32});
    });
  });
  startThread(4);
  holder->rollback();
  joinAll();
  EXPECT_THAT(marks(), ElementsAre(1, 2, 3, 4));
}

TEST_F(WriteQueueThreads, ReadersDoNotStandInIt) {
  holder->begin();
  const auto reader = openExisting(path, 0);
  EXPECT_EQ(wholeOf(*reader, "SELECT count(*) FROM T"), 0);
  EXPECT_EQ(given(), 2U) << "the table and the transaction";
}

TEST_F(WriteQueueThreads, WhoeverGivesUpHoldsNobodyUp) {
  holder->begin();
  std::atomic<std::int32_t> refused = 0;
  std::thread impatient([&] { refused = errorNumber([&] { write(1, 30); }); });
  impatient.join();
  EXPECT_EQ(refused, errors::kBusy);
  startThread(2);
  std::thread second([&] { refused = errorNumber([&] { write(3, 30); }); });
  second.join();
  EXPECT_EQ(refused, errors::kBusy);
  startThread(4);
  holder->commit();
  joinAll();
  EXPECT_THAT(marks(), ElementsAre(2, 4));
}

// A long queue is no reason to refuse anybody, as long as it moves.
TEST_F(WriteQueueThreads, PatienceCountsFromTheLastTimeThatTheQueueMoved) {
  constexpr int kPatience = 2000;
  holder->begin();
  for (const int mark : {1, 2, 3, 4}) {
    awaitOneMore([&] {
      threads.emplace_back([=, this] {
        const auto session = openExisting(path, kForEver);
        Transaction transaction(*session);
        session->execute("INSERT INTO T (A) VALUES (" + std::to_string(mark) + ")");
        std::this_thread::sleep_for(milliseconds(kPatience * 3 / 10));
        transaction.commit();
      });
    });
  }
  startThread(5, kPatience);
  holder->commit();
  joinAll();
  EXPECT_THAT(marks(), ElementsAre(1, 2, 3, 4, 5));
}

TEST_F(WriteQueueThreads, ManyWithoutAPauseAreNeverRefused) {
  constexpr int kThreads = 20;
  constexpr int kEach = 30;
  std::atomic<int> refused = 0;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      const auto session = openExisting(path);
      for (int i = 0; i < kEach; ++i) {
        if (errorNumber([&] {
              Transaction transaction(*session);
              session->execute("INSERT INTO T (A) VALUES (" + std::to_string(thread) + ")");
              transaction.commit();
            }) != 0) {
          ++refused;
        }
      }
    });
  }
  joinAll();
  EXPECT_EQ(refused, 0);
  EXPECT_EQ(marks().size(), static_cast<std::size_t>(kThreads * kEach));
}

TEST_F(WriteQueueThreads, LostTransactionLetsTheNextOneIn) {
  holder->begin();
  holder->execute("INSERT INTO T VALUES (1, 1)");
  startThread(2);
  EXPECT_EQ(errorNumber([&] { holder->execute("INSERT OR ROLLBACK INTO T VALUES (1, 1)"); }),
            errors::kIntegrityViolation);
  joinAll();
  EXPECT_EQ(holder->rollback(), 0);
  EXPECT_THAT(marks(), ElementsAre(2));
}

TEST_F(WriteQueueThreads, SessionThatEndsOnAnotherThreadLetsTheNextOneIn) {
  auto ending = openExisting(path);
  ending->begin();
  startThread(1);
  std::thread([&] { ending.reset(); }).join();
  joinAll();
  // And this thread holds nothing that would count as its own any more.
  EXPECT_EQ(holder->begin(), 1);
  holder->commit();
  EXPECT_THAT(marks(), ElementsAre(1));
}

// ---- Two databases

TEST_F(WriteQueueThreads, TwoThatWaitForEachOtherOnTwoDatabasesAreToldApart) {
  const std::string other = folder.file("b.db");
  openNew(other)->execute("CREATE TABLE T (A INTEGER)");
  std::atomic<int> begun = 0;
  std::atomic<int> refused = 0;
  std::string sentence;
  const auto work = [&](const std::string& first, const std::string& second) {
    const auto one = openExisting(first, kForEver);
    const auto two = openExisting(second, kForEver);
    Transaction outer(*one);
    ++begun;
    while (begun < 2) std::this_thread::yield();
    const auto error = errorOf([&] {
      Transaction inner(*two);
      inner.commit();
    });
    if (!error) return;
    EXPECT_EQ(error->number(), errors::kBusy);
    sentence = error->description();
    ++refused;
  };
  threads.emplace_back(work, path, other);
  threads.emplace_back(work, other, path);
  joinAll();
  EXPECT_EQ(refused, 1) << "one gives way, and the other goes on";
  EXPECT_THAT(sentence, HasSubstr("neither wait would ever end"));
}

TEST_F(WriteQueueThreads, WaitingForASecondDatabaseIsNoCircleByItself) {
  const std::string other = folder.file("b.db");
  const auto second = openNew(other);
  second->execute("CREATE TABLE T (A INTEGER)");
  second->begin();
  std::atomic<bool> isIn = false;
  std::int32_t error = -1;
  std::thread both([&] {
    const auto one = openExisting(path, kForEver);
    const auto two = openExisting(other, kForEver);
    Transaction outer(*one);
    isIn = true;
    error = errorNumber([&] { two->execute("INSERT INTO T VALUES (1)"); });
  });
  while (!isIn) std::this_thread::yield();
  std::this_thread::sleep_for(milliseconds(60));
  second->commit();
  both.join();
  EXPECT_EQ(error, 0);
}

// ---- Processes. They are forked while this one has nothing open: the engine does not take its
// handles over a fork.

class WriteQueueProcesses : public WriteQueueThreads {
 protected:
  WriteQueueProcesses() { holder.reset(); }
  void hold() {
    holder = openExisting(path);
    holder->begin();
  }
};

TEST_F(WriteQueueProcesses, AndThreadsStandInOneQueue) {
  Process first = fork(1);
  Process second = fork(2);
  Process fourth = fork(4);
  hold();
  start(first);
  start(second);
  startThread(3);
  start(fourth);
  holder->commit();
  joinAll();
  for (const Process& each : {first, second, fourth}) end(each);
  EXPECT_THAT(marks(), ElementsAre(1, 2, 3, 4));
}

TEST_F(WriteQueueProcesses, KilledInTheQueueHoldNobodyUp) {
  Process first = fork(1);
  Process second = fork(2);
  hold();
  start(first);
  start(second);
  startThread(3);
  end(first, SIGKILL);
  end(second, SIGKILL);
  startThread(4);
  holder->commit();
  joinAll();
  EXPECT_THAT(marks(), ElementsAre(3, 4));
}

TEST_F(WriteQueueProcesses, KilledAtItsTurnLetsTheNextOneIn) {
  Process first = fork(1, true);
  Process second = fork(2);
  start(first);
  start(second);
  startThread(3);
  end(first, SIGKILL);
  joinAll();
  end(second);
  holder = openExisting(path);
  EXPECT_THAT(marks(), ElementsAre(2, 3));
}

TEST_F(WriteQueueProcesses, ThatWaitForEachOtherOnTwoDatabasesAreToldApart) {
  const std::string other = folder.file("b.db");
  openNew(other)->execute("CREATE TABLE T (A INTEGER)");
  // Each answers through its pipe: 'b' when it has begun, 'r' refused, 'd' done.
  int answers[2];
  int starts[2];
  ASSERT_EQ(::pipe(answers), 0);
  ASSERT_EQ(::pipe(starts), 0);
  const auto say = [&](char what) {
    if (::write(answers[1], &what, 1) != 1) ::_exit(1);
  };
  const auto begin = [&](const std::string& mine, const std::string& next) {
    const pid_t child = ::fork();
    if (child != 0) return Process{child, -1};
    const auto one = openExisting(mine, kForEver);
    const auto two = openExisting(next, kForEver);
    one->begin();
    say('b');
    char byte = 0;
    if (::read(starts[0], &byte, 1) != 1) ::_exit(1);
    const std::int32_t error = errorNumber([&] { two->begin(); });
    if (error == errors::kBusy) one->rollback();
    say(error == errors::kBusy ? 'r' : 'd');
    ::_exit(0);
  };
  const Process first = begin(path, other);
  const Process last = begin(other, path);
  std::string said(4, ' ');
  for (std::size_t i = 0; i < 2; ++i) ASSERT_EQ(::read(answers[0], &said[i], 1), 1);
  ASSERT_EQ(::write(starts[1], "gg", 2), 2);
  for (std::size_t i = 2; i < 4; ++i) ASSERT_EQ(::read(answers[0], &said[i], 1), 1);
  // One gives way, and the other goes on; which of them tells it first is theirs.
  EXPECT_THAT(said, testing::AnyOf("bbrd", "bbdr"));
  end(first);
  end(last);
  for (const int descriptor : {answers[0], answers[1], starts[0], starts[1]}) ::close(descriptor);
}

// ---- The file

TEST_F(WriteQueueThreads, MayBeUsedByWhoeverMayWriteTheDatabase) {
  const auto modeOf = [](const std::string& file) {
    struct stat found {};
    EXPECT_EQ(::stat(file.c_str(), &found), 0);
    return found.st_mode & 0777;
  };
  EXPECT_EQ(modeOf(path + "-queue"), modeOf(path));
  const std::string shared = folder.file("shared.db");
  openNew(shared);
  ASSERT_EQ(::chmod(shared.c_str(), 0660), 0);
  const auto session = openExisting(shared);
  session->execute("CREATE TABLE T (A INTEGER)");
  EXPECT_EQ(modeOf(shared + "-queue"), 0660U);
}

TEST_F(WriteQueueThreads, GoesWithItsLastUser) {
  auto second = openExisting(path);
  second->execute("INSERT INTO T (A) VALUES (1)");
  holder.reset();
  EXPECT_TRUE(std::filesystem::exists(path + "-queue"));
  second.reset();
  EXPECT_FALSE(std::filesystem::exists(path + "-queue"));
  holder = openExisting(path);
  holder->begin();
  startThread(2);
  holder->commit();
  joinAll();
  EXPECT_THAT(marks(), ElementsAre(1, 2));
}

// Each of them opens the file, takes it away or finds it taken away.
TEST_F(WriteQueueThreads, ManyThatComeAndGoLoseNothing) {
  constexpr int kEach = 40;
  holder.reset();
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([this] {
      for (int i = 0; i < kEach; ++i) write(i);
    });
  }
  joinAll();
  holder = openExisting(path);
  EXPECT_EQ(marks().size(), 4U * kEach);
}

TEST_F(WriteQueueThreads, WhereThereCanBeNoneTheEnginesOwnWaitIsLeft) {
  const std::string other = folder.file("b.db");
  std::filesystem::create_directory(other + "-queue");
  const auto first = openNew(other);
  first->execute("CREATE TABLE T (A INTEGER)");
  const auto second = openExisting(other, 30);
  first->begin();
  EXPECT_EQ(errorNumber([&] { second->begin(); }), errors::kBusy);
  first->commit();
  EXPECT_EQ(second->begin(), 1);
}

TEST_F(WriteQueueThreads, RubbishInItIsOvercome) {
  for (const char byte : {'\xFF', '\x7F', 'x', '\0'}) {
    std::ofstream(path + "-queue", std::ios::binary | std::ios::in) << std::string(4096, byte);
    holder->begin();
    holder->execute("INSERT INTO T (A) VALUES (0)");
    startThread(1);
    holder->commit();
    joinAll();
  }
  EXPECT_EQ(marks().size(), 8U);
}

TEST_F(WriteQueueThreads, CutShortItEndsNobodyAndKeepsTheOrder) {
  holder->begin();
  startThread(1);
  std::filesystem::resize_file(path + "-queue", 0);
  startThreadAfterCut(2);
  std::filesystem::resize_file(path + "-queue", 12);
  startThreadAfterCut(3);
  holder->commit();
  joinAll();
  EXPECT_THAT(marks(), ElementsAre(1, 2, 3));
}

TEST_F(WriteQueueThreads, CutShortWhileManyWriteItEndsNobodyAndLosesNothing) {
  constexpr int kThreads = 8;
  constexpr int kEach = 60;
  std::atomic<int> working = kThreads;
  std::atomic<int> refused = 0;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int i = 0; i < kEach; ++i) {
        if (errorNumber([&] { write(thread); }) != 0) ++refused;
      }
      --working;
    });
  }
  for (std::uintmax_t size = 0; working > 0; size = (size + 100) % 8192) {
    std::error_code gone;
    std::filesystem::resize_file(path + "-queue", size, gone);
    std::this_thread::yield();
  }
  joinAll();
  EXPECT_EQ(refused, 0);
  EXPECT_EQ(marks().size(), static_cast<std::size_t>(kThreads * kEach));
}

TEST_F(WriteQueueProcesses, GoOnWhenTheFileIsCutShort) {
  Process first = fork(1);
  Process second = fork(2);
  hold();
  start(first);
  start(second);
  std::filesystem::resize_file(path + "-queue", 0);
  holder->commit();
  end(first);
  end(second);
  EXPECT_THAT(marks(), ElementsAre(1, 2));
}

TEST_F(WriteQueueThreads, TakenAwayItIsMadeAnewAndNothingIsLost) {
  holder->begin();
  std::filesystem::remove(path + "-queue");
  std::thread late([this] { write(2); });
  holder->execute("INSERT INTO T (A) VALUES (1)");
  holder->commit();
  late.join();
  EXPECT_THAT(marks(), ElementsAre(1, 2));
}

}  // namespace
}  // namespace tavelor::engine::test
