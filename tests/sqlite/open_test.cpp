// SPDX-License-Identifier: MIT
// Opening database files, and every way in which that can fail.
#include <gmock/gmock.h>
#include <sys/wait.h>

#include "tests/sqlite/support.hpp"

namespace tavelor::engine::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

TEST(SqliteOpen, MakesTheFileWhenAskedTo) {
  const TemporaryFolder folder;
  openNew(folder.file("tienda.db"))->execute("CREATE TABLE T (A INTEGER)");
  EXPECT_EQ(openExisting(folder.file("tienda.db"))->describe().tables().size(), 1U);
}

TEST(SqliteOpen, AMissingFileIsAnErrorThatNamesItAndMakesNone) {
  const TemporaryFolder folder;
  const auto error = errorOf([&] { openExisting(folder.file("tienda.db")); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kFileNotFound);
  EXPECT_THAT(error->description(), HasSubstr(folder.file("tienda.db")));
  EXPECT_FALSE(fs::exists(folder.file("tienda.db")));
}

TEST(SqliteOpen, AMissingFolderIsAnErrorThatNamesItEvenWhenCreating) {
  const TemporaryFolder folder;
  const auto error = errorOf([&] { openNew(folder.file("nada/tienda.db")); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kFileNotFound);
  EXPECT_THAT(error->description(), HasSubstr("no folder " + folder.file("nada")));
  EXPECT_FALSE(fs::exists(folder.file("nada")));
}

TEST(SqliteOpen, AFolderInPlaceOfAFileIsAnError) {
  const TemporaryFolder folder;
  EXPECT_EQ(errorNumber([&] { openNew(folder.path().string()); }), errors::kPathAccess);
}

TEST(SqliteOpen, AnEmptyPathOrOneWithANulIsAnError) {
  EXPECT_EQ(errorNumber([] { openNew(""); }), errors::kFileNotFound);
  EXPECT_EQ(errorNumber([] { openNew(std::string("a\0b", 3)); }), errors::kFileNotFound);
}

TEST(SqliteOpen, AFileBelowAFileIsAnError) {
  const TemporaryFolder folder;
  std::ofstream(folder.file("plano")) << "x";
  EXPECT_NE(errorNumber([&] { openNew(folder.file("plano/tienda.db")); }), 0);
}

TEST(SqliteOpen, AFileOfAnotherKindIsRefusedAndLeftAlone) {
  const TemporaryFolder folder;
  const std::string text(5000, 'x');
  std::ofstream(folder.file("carta.txt")) << text;
  const auto error = errorOf([&] { openNew(folder.file("carta.txt")); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kUnspecified);
  EXPECT_NE(error->nativeCode(), 0);
  EXPECT_THAT(error->description(), HasSubstr("carta.txt is no database"));
  EXPECT_EQ(contentOf(folder.file("carta.txt")), text);
}

TEST(SqliteOpen, ADamagedFileRaisesAndNeverCrashes) {
  const TemporaryFolder folder;
  const std::string path = folder.file("tienda.db");
  {
    const auto session = openNew(path);
    session->execute("CREATE TABLE T (A INTEGER PRIMARY KEY, B TEXT); CREATE INDEX I ON T (B)");
    session->begin();
    const auto insert = session->prepare("INSERT INTO T (B) VALUES (?1)");
    for (int i = 0; i < 5000; ++i) {
      insert->bind(1, Value::ofText("artículo número"));
      insert->run();
    }
    session->commit();
  }
  const auto size = fs::file_size(path);
  ASSERT_GT(size, 40'000U);
  {
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    for (std::streamoff at = 4096; at < static_cast<std::streamoff>(size); at += 512) {
      file.seekp(at);
      file << std::string(200, '\xA5');
    }
  }
  const auto error = errorOf([&] {
    const auto session = openExisting(path);
    RowStore rows({ColumnType::kInt32, ColumnType::kText});
    session->prepare("SELECT A, B FROM T ORDER BY B")->fetch(rows);
    session->execute("INSERT INTO T (B) VALUES ('x')");
  });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kUnspecified);
  EXPECT_THAT(error->description(), HasSubstr("is damaged"));
}

TEST(SqliteOpen, ATruncatedFileRaises) {
  const TemporaryFolder folder;
  const std::string path = folder.file("tienda.db");
  openNew(path)->execute("CREATE TABLE T (A INTEGER); CREATE TABLE U (A INTEGER)");
  fs::resize_file(path, 5000);
  EXPECT_EQ(errorNumber([&] { openExisting(path)->execute("INSERT INTO U VALUES (1)"); }),
            errors::kUnspecified);
}

TEST(SqliteOpen, CharactersWithAMeaningInAddressesAreOnlyCharacters) {
  const TemporaryFolder folder;
  for (const std::string name :
       {"file:a?mode=memory", "b#c%41&d", "año nuevo.db", ":memory:x", "'"}) {
    openNew(folder.file(name))->execute("CREATE TABLE T (A INTEGER)");
    EXPECT_TRUE(fs::exists(folder.file(name))) << name;
    EXPECT_NE(openExisting(folder.file(name))->describe().find("T"), nullptr) << name;
  }
}

TEST(SqliteOpen, ARelativePathThatLooksLikeAnAddressIsAFile) {
  const TemporaryFolder folder;
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());
  openNew("file:x.db?mode=memory")->execute("CREATE TABLE T (A INTEGER)");
  fs::current_path(before);
  EXPECT_TRUE(fs::exists(folder.file("file:x.db?mode=memory")));
}

TEST(SqliteOpen, AReadOnlySessionReadsAndRefusesToWrite) {
  const TemporaryFolder folder;
  openNew(folder.file("a.db"))->execute("CREATE TABLE T (A INTEGER); INSERT INTO T VALUES (7)");
  OpenOptions options;
  options.path = folder.file("a.db");
  options.readOnly = true;
  const auto session = sqliteEngine().open(options);
  session->begin();
  EXPECT_EQ(wholeOf(*session, "SELECT A FROM T"), 7);
  session->commit();
  EXPECT_EQ(errorNumber([&] { session->execute("INSERT INTO T VALUES (8)"); }),
            errors::kPathAccess);
}

TEST(SqliteOpen, AReadOnlySessionMakesNoFile) {
  const TemporaryFolder folder;
  OpenOptions options = creating(folder.file("a.db"));
  options.readOnly = true;
  EXPECT_EQ(errorNumber([&] { sqliteEngine().open(options); }), errors::kFileNotFound);
}

TEST(SqliteOpen, ADatabaseInMemoryIsItsSessionsOwn) {
  const auto one = openInMemory();
  const auto two = openInMemory();
  one->execute("CREATE TABLE T (A INTEGER)");
  EXPECT_TRUE(two->describe().tables().empty());
  EXPECT_FALSE(fs::exists(":memory:"));
}

TEST(SqliteOpen, SettingsHoldWhateverTheFileSays) {
  const TemporaryFolder folder;
  OpenOptions options = creating(folder.file("a.db"));
  options.synchronous = true;
  const auto session = sqliteEngine().open(options);
  EXPECT_EQ(textOf(*session, "PRAGMA journal_mode"), "wal");
  EXPECT_EQ(wholeOf(*session, "PRAGMA synchronous"), 2);
  EXPECT_EQ(wholeOf(*session, "PRAGMA foreign_keys"), 0);
  EXPECT_EQ(wholeOf(*session, "PRAGMA trusted_schema"), 0);
  EXPECT_EQ(wholeOf(*session, "PRAGMA temp_store"), 2);
  EXPECT_EQ(wholeOf(*openExisting(folder.file("a.db")), "PRAGMA synchronous"), 1);
}

TEST(SqliteOpen, ANameInDoubleQuotesIsNeverAText) {
  const auto session = openInMemory();
  session->execute("CREATE TABLE T (A TEXT)");
  EXPECT_EQ(errorNumber([&] { session->prepare("SELECT A FROM T WHERE A = \"nada\""); }),
            errors::kSyntax);
}

/// Runs `test` as a user without rights in a child process; its answer is the exit code.
template <typename Test>
int asNobody(Test test) {
  const pid_t child = ::fork();
  if (child == 0) {
    if (::geteuid() == 0 && ::setuid(65534) != 0) ::_exit(100);
    ::_exit(test());
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 101;
}

int exitCodeOf(const std::optional<Error>& error, std::string_view named) {
  if (!error) return 1;
  if (error->number() != errors::kPathAccess) return 2;
  return error->description().find(named) == std::string::npos ? 3 : 0;
}

TEST(SqliteOpen, AnUnreadableFileIsAnErrorThatNamesIt) {
  const TemporaryFolder folder;
  const std::string path = folder.file("a.db");
  openNew(path)->execute("CREATE TABLE T (A INTEGER)");
  fs::permissions(path, fs::perms::none);
  EXPECT_EQ(asNobody([&] { return exitCodeOf(errorOf([&] { openExisting(path); }), path); }), 0);
}

TEST(SqliteOpen, AFileThatMayNotBeWrittenIsAnError) {
  const TemporaryFolder folder;
  const std::string path = folder.file("a.db");
  openNew(path)->execute("CREATE TABLE T (A INTEGER)");
  fs::permissions(path, fs::perms::owner_read | fs::perms::others_read);
  fs::permissions(folder.path(), fs::perms::all);
  EXPECT_EQ(asNobody([&] { return exitCodeOf(errorOf([&] { openExisting(path); }), path); }), 0);
}

TEST(SqliteOpen, AFolderThatMayNotBeWrittenIsAnError) {
  const TemporaryFolder folder;
  const std::string path = folder.file("a.db");
  openNew(path)->execute("CREATE TABLE T (A INTEGER)");
  fs::permissions(path, fs::perms::all);
  const fs::perms readOnly = fs::perms::owner_read | fs::perms::owner_exec |
                             fs::perms::others_read | fs::perms::others_exec;
  fs::permissions(folder.path(), readOnly);
  const std::string fresh = folder.file("b.db");
  EXPECT_EQ(asNobody([&] { return exitCodeOf(errorOf([&] { openNew(fresh); }), fresh); }), 0);
  EXPECT_EQ(asNobody([&] { return exitCodeOf(errorOf([&] { openExisting(path); }), path); }), 0);
  fs::permissions(folder.path(), fs::perms::all);
  EXPECT_FALSE(fs::exists(fresh));
}

TEST(SqliteOpen, AFolderThatMayNotBeEnteredIsAnError) {
  const TemporaryFolder folder;
  const std::string path = folder.file("a.db");
  fs::permissions(folder.path(), fs::perms::none);
  EXPECT_EQ(asNobody([&] { return exitCodeOf(errorOf([&] { openNew(path); }), path); }), 0);
  fs::permissions(folder.path(), fs::perms::all);
}

}  // namespace
}  // namespace tavelor::engine::test
