// SPDX-License-Identifier: MIT
// Several writers, killed processes and full disks.
#include <atomic>
#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/wait.h>

#include "tests/sqlite/support.hpp"

namespace tavelor::engine::test {
namespace {

using testing::HasSubstr;

TEST(SqliteFaults, TwoThreadsThatWriteAtOnceWaitForEachOtherAndBothSucceed) {
  const TemporaryFolder folder;
  const std::string path = folder.file("a.db");
  openNew(path)->execute("CREATE TABLE T (A INTEGER); INSERT INTO T VALUES (0)");
  const auto addMany = [&] {
    const auto session = openExisting(path, 60'000);
    for (int i = 0; i < 100; ++i) {
      Transaction transaction(*session);
      const std::int64_t seen = wholeOf(*session, "SELECT A FROM T");
      session->execute("UPDATE T SET A = " + std::to_string(seen + 1));
      transaction.commit();
    }
  };
  std::thread one(addMany);
  std::thread two(addMany);
  one.join();
  two.join();
  EXPECT_EQ(wholeOf(*openExisting(path), "SELECT A FROM T"), 200);
}

/// The error that a call raises on a thread of its own, if it does.
std::optional<Error> onAnotherThread(const std::function<void()>& call) {
  std::optional<Error> error;
  std::thread([&] { error = errorOf(call); }).join();
  return error;
}

TEST(SqliteFaults, AWriterThatOutlastsTheWaitIsABusyErrorThatNamesTheFileAndTheWait) {
  const TemporaryFolder folder;
  const std::string path = folder.file("a.db");
  const auto first = openNew(path);
  first->execute("CREATE TABLE T (A INTEGER)");
  const auto second = openExisting(path, 30);
  first->begin();
  const auto error = onAnotherThread([&] { second->begin(); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kBusy);
  EXPECT_EQ(error->nativeCode() & 0xFF, 5);
  EXPECT_THAT(error->description(), HasSubstr(path));
  EXPECT_THAT(error->description(), HasSubstr("30 ms"));
  EXPECT_EQ(second->depth(), 0);
  const auto again = onAnotherThread([&] { second->execute("INSERT INTO T VALUES (1)"); });
  ASSERT_TRUE(again);
  EXPECT_EQ(again->number(), errors::kBusy);
  first->commit();
  second->execute("INSERT INTO T VALUES (1)");
}

TEST(SqliteFaults, AWaitThatWouldBeForItselfFailsAtOnceAndSaysSo) {
  const TemporaryFolder folder;
  const std::string path = folder.file("a.db");
  const auto first = openNew(path);
  first->execute("CREATE TABLE T (A INTEGER)");
  const auto second = openExisting(path, 3'600'000);  // whoever waits here hangs
  first->begin();
  const auto error = errorOf([&] { second->begin(); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kBusy);
  EXPECT_THAT(error->description(), HasSubstr("this same thread"));
  first->commit();
  EXPECT_EQ(second->begin(), 1);
}

TEST(SqliteFaults, SettlingBringsEverythingIntoTheFileItself) {
  const TemporaryFolder folder;
  const auto session = openNew(folder.file("a.db"));
  session->execute("CREATE TABLE T (A INTEGER); INSERT INTO T VALUES (7)");
  session->settle();
  std::filesystem::copy_file(folder.file("a.db"), folder.file("b.db"));
  EXPECT_EQ(wholeOf(*openExisting(folder.file("b.db")), "SELECT A FROM T"), 7);
}

// The engine would write on to the file that nobody finds any more.
TEST(SqliteFaults, AFileThatWasTakenAwayOrReplacedIsNotWrittenTo) {
  const TemporaryFolder folder;
  const std::string path = folder.file("a.db");
  const auto session = openNew(path);
  session->execute("CREATE TABLE T (A INTEGER)");
  const auto insert = session->prepare("INSERT INTO T VALUES (1)");
  insert->run();
  const auto refused = [&] {
    for (const auto& write : {std::function<void()>([&] { insert->run(); }),
                              std::function<void()>([&] { session->begin(); }),
                              std::function<void()>([&] { session->execute("DELETE FROM T"); })}) {
      const auto error = errorOf(write);
      ASSERT_TRUE(error);
      EXPECT_EQ(error->number(), errors::kPathAccess);
      EXPECT_THAT(error->description(), HasSubstr(path));
    }
    EXPECT_EQ(session->depth(), 0);
  };
  std::filesystem::rename(path, folder.file("elsewhere.db"));
  refused();
  std::filesystem::rename(folder.file("elsewhere.db"), path);
  insert->run();
  EXPECT_EQ(wholeOf(*session, "SELECT Count(*) FROM T"), 2);

  openNew(folder.file("other.db"))->execute("CREATE TABLE T (A INTEGER)");
  std::filesystem::rename(folder.file("other.db"), path);
  refused();
}

TEST(SqliteFaults, ReadersNeverWaitForAWriter) {
  const TemporaryFolder folder;
  const auto writer = openNew(folder.file("a.db"));
  writer->execute("CREATE TABLE T (A INTEGER); INSERT INTO T VALUES (1)");
  const auto reader = openExisting(folder.file("a.db"), 0);
  writer->begin();
  writer->execute("UPDATE T SET A = 2");
  EXPECT_EQ(wholeOf(*reader, "SELECT A FROM T"), 1);
  writer->commit();
  EXPECT_EQ(wholeOf(*reader, "SELECT A FROM T"), 2);
}

TEST(SqliteFaults, ManySessionsMayOpenANewFileAtOnce) {
  const TemporaryFolder folder;
  std::vector<std::thread> threads;
  std::atomic<int> opened = 0;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      openNew(folder.file("a.db"))->execute("CREATE TABLE IF NOT EXISTS T (A INTEGER)");
      ++opened;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(opened, 8);
}

/// Writes pairs of rows in transactions for ever; tells through `ready` when it has begun.
[[noreturn]] void writePairs(const std::string& path, int ready) {
  const auto session = openExisting(path);
  const auto insert = session->prepare("INSERT INTO T VALUES (?1, ?2)");
  for (std::int64_t i = 1;; ++i) {
    session->begin();
    for (const int side : {0, 1}) {
      insert->bind(1, Value::ofInteger(i));
      insert->bind(2, Value::ofInteger(side));
      insert->run();
      if (side == 0 && ::write(ready, "x", 1) != 1) ::_exit(1);
    }
    session->commit();
  }
}

TEST(SqliteFaults, AProcessKilledInMidTransactionLeavesAllOfItOrNone) {
  const TemporaryFolder folder;
  const std::string path = folder.file("a.db");
  openNew(path)->execute("CREATE TABLE T (A INTEGER, B INTEGER)");
  std::int64_t before = 0;
  for (int round = 0; round < 5; ++round) {
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const pid_t child = ::fork();
    if (child == 0) writePairs(path, pipe[1]);
    char byte = 0;
    for (int i = 0; i <= round * 7; ++i) ASSERT_EQ(::read(pipe[0], &byte, 1), 1);
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    ::close(pipe[0]);
    ::close(pipe[1]);
    ASSERT_TRUE(WIFSIGNALED(status));

    const auto session = openExisting(path, 0);
    EXPECT_EQ(textOf(*session, "PRAGMA integrity_check"), "ok");
    EXPECT_EQ(wholeOf(*session, "SELECT count(*) FROM T WHERE B = 0"),
              wholeOf(*session, "SELECT count(*) FROM T WHERE B = 1"));
    // What was committed before the last transaction began is there.
    const std::int64_t now = wholeOf(*session, "SELECT count(*) FROM T WHERE B = 0");
    EXPECT_GE(now, before + round * 7);
    before = now;
    session->execute("INSERT INTO T VALUES (-1, 0), (-1, 1)");
    ++before;
  }
}

void fillUntilItFails(Session& session, std::optional<Error>& error) {
  const std::string text(3000, 'x');
  const auto insert = session.prepare("INSERT INTO T (B) VALUES (?1)");
  error = errorOf([&] {
    for (int i = 0; i < 10'000; ++i) {
      insert->bind(1, Value::ofText(text));
      insert->run();
    }
  });
}

TEST(SqliteFaults, AFullDatabaseRaisesAndKeepsWhatWasCommitted) {
  const TemporaryFolder folder;
  const auto session = openNew(folder.file("a.db"));
  session->execute(
      "CREATE TABLE T (A INTEGER PRIMARY KEY, B TEXT); INSERT INTO T (B) VALUES ('y')");
  wholeOf(*session, "PRAGMA max_page_count = 60");
  session->begin();
  session->execute("INSERT INTO T (B) VALUES ('z')");
  std::optional<Error> error;
  fillUntilItFails(*session, error);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kUnspecified);
  EXPECT_EQ(error->nativeCode(), 13);
  EXPECT_THAT(error->description(), HasSubstr(folder.file("a.db")));
  if (session->depth() > 0) session->rollback();
  EXPECT_EQ(textOf(*session, "SELECT group_concat(B) FROM T"), "y");
}

/// A disk of its own, small enough to fill. Not there without the right to mount.
class SmallDisk {
 public:
  SmallDisk() { mounted_ = ::mount("tavelor", folder_.path().c_str(), "tmpfs", 0, "size=1m") == 0; }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;
  ~SmallDisk() {
    if (mounted_) ::umount2(folder_.path().c_str(), MNT_DETACH);
  }
  bool mounted() const { return mounted_; }
  std::string file(const std::string& name) const { return folder_.file(name); }

 private:
  TemporaryFolder folder_;
  bool mounted_ = false;
};

TEST(SqliteFaults, AFullDiskRaisesAndKeepsWhatWasCommitted) {
  const SmallDisk disk;
  if (!disk.mounted()) GTEST_SKIP() << "no right to mount a small disk";
  {
    const auto session = openNew(disk.file("a.db"));
    session->execute(
        "CREATE TABLE T (A INTEGER PRIMARY KEY, B TEXT); INSERT INTO T (B) VALUES ('y')");
    std::optional<Error> error;
    session->begin();
    fillUntilItFails(*session, error);
    if (!error) error = errorOf([&] { session->commit(); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->number(), errors::kUnspecified);
    EXPECT_THAT(error->description(), HasSubstr(disk.file("a.db")));
    if (session->depth() > 0) session->rollback();
    EXPECT_EQ(wholeOf(*session, "SELECT count(*) FROM T"), 1);
  }
  const auto again = openExisting(disk.file("a.db"));
  EXPECT_EQ(textOf(*again, "PRAGMA integrity_check"), "ok");
  EXPECT_EQ(textOf(*again, "SELECT B FROM T"), "y");
  again->execute("INSERT INTO T (B) VALUES ('z')");
}

TEST(SqliteFaults, ADiskWithoutAnyRoomRefusesANewDatabase) {
  const SmallDisk disk;
  if (!disk.mounted()) GTEST_SKIP() << "no right to mount a small disk";
  {
    std::ofstream filler(disk.file("lleno"), std::ios::binary);
    for (int i = 0; i < 2000 && filler; ++i) filler << std::string(1024, 'x') << std::flush;
  }
  const auto error = errorOf([&] { openNew(disk.file("a.db"))->execute("CREATE TABLE T (A)"); });
  ASSERT_TRUE(error);
  EXPECT_THAT(error->description(), HasSubstr(disk.file("a.db")));
}

}  // namespace
}  // namespace tavelor::engine::test
