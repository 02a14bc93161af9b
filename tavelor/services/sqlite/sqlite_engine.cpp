// SPDX-License-Identifier: MIT
// Opens database files.
#include "tavelor/services/sqlite/sqlite_engine.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <thread>

#include <fmt/format.h>

#include "tavelor/platform/locale.hpp"
#include "tavelor/services/sqlite/database.hpp"
#include "tavelor/services/sqlite/functions.hpp"
#include "tavelor/services/sqlite/moving.hpp"
#include "tavelor/services/sqlite/session.hpp"

namespace tavelor::engine {

namespace sqlite {

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::string_view kInMemory = ":memory:";

[[noreturn]] void refusePlace(std::int32_t number, std::string text) {
  throw Error(number, std::string(kSource), std::move(text));
}

/// The absolute path: it can't be taken for one of the engine's special names or for an address.
/// Raises for what can be told apart before the engine tries.
std::string placeOf(const OpenOptions& options) {
  if (options.path == kInMemory) return options.path;
  if (options.path.empty()) refusePlace(errors::kFileNotFound, "The database has no path.");
  if (options.path.find('\0') != std::string::npos) {
    refusePlace(errors::kFileNotFound, "The path of the database holds a NUL character.");
  }
  std::error_code failure;
  const fs::path path = fs::absolute(options.path, failure);
  if (failure) {
    refusePlace(errors::kPathAccess, fmt::format("The database {} can't be reached: {}.",
                                                 options.path, failure.message()));
  }
  const fs::file_status status = fs::status(path, failure);
  if (fs::is_directory(status)) {
    refusePlace(errors::kPathAccess,
                fmt::format("The path {} is a folder, not a database.", path.string()));
  }
  if (status.type() == fs::file_type::none) {
    refusePlace(errors::kPathAccess, fmt::format("The database {} can't be reached: {}.",
                                                 path.string(), failure.message()));
  }
  if (status.type() == fs::file_type::not_found) {
    if (!fs::is_directory(path.parent_path(), failure)) {
      refusePlace(errors::kFileNotFound,
                  fmt::format("There is no folder {} for the database {}.",
                              path.parent_path().string(), path.filename().string()));
    }
    if (!options.create || options.readOnly) {
      refusePlace(errors::kFileNotFound, fmt::format("There is no database {}.", path.string()));
    }
  }
  // The engine names files beside the database, and takes shorter paths than the system.
  constexpr std::size_t kLongestEnding = 8;
  const auto longest = static_cast<std::size_t>(sqlite3_vfs_find(nullptr)->mxPathname);
  if (path.string().size() + kLongestEnding > longest) {
    refusePlace(errors::kPathAccess,
                fmt::format("The path of the database {} is longer than the {} bytes that the "
                            "engine takes.",
                            path.string(), longest - kLongestEnding));
  }
  return path.string();
}

/// Waits for what does not stand in the queue: a program of another kind, or the engine's own
/// moment alone with the file. A little longer at each call, and no longer than was asked for.
int waitForOther(void* shared, int calls) {
  static constexpr std::array kPauses{1, 1, 2, 3, 5, 8, 13, 21, 34};
  auto& database = *static_cast<Database*>(shared);
  const auto now = steady_clock::now();
  if (calls == 0) database.waitSince = now;
  const auto left = database.waitSince + milliseconds(database.busyTimeoutMs) - now;
  if (left <= steady_clock::duration::zero()) return 0;
  const auto step = std::min(static_cast<std::size_t>(calls), kPauses.size() - 1);
  std::this_thread::sleep_for(std::min<steady_clock::duration>(milliseconds(kPauses[step]), left));
  return 1;
}

void openHandle(Database& database, const OpenOptions& options) {
  int flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  flags |= options.readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
  if (options.create && !options.readOnly) flags |= SQLITE_OPEN_CREATE;
  const int code = sqlite3_open_v2(database.path.c_str(), &database.handle, flags, nullptr);
  if (code == SQLITE_OK) return;
  if (database.handle == nullptr) throw errorOf(database, SQLITE_NOMEM, "");
  if ((code & 0xFF) == SQLITE_CANTOPEN) {
    Error error(errors::kPathAccess, std::string(kSource),
                fmt::format("The database {} can't be opened: {}.", database.path,
                            std::strerror(sqlite3_system_errno(database.handle))));
    throw error.withNativeCode(code);
  }
  database.fail(code);
}

/// Runs one setting. Going over to the log needs the file for itself for a moment, and the engine
/// does not call our wait for that.
void set(Database& database, std::string_view pragma) {
  for (int attempt = 0;; ++attempt) {
    const StatementHandle statement = compile(database, pragma);
    int code = SQLITE_ROW;
    while (code == SQLITE_ROW) code = sqlite3_step(statement.get());
    if (code == SQLITE_DONE) return;
    if ((code & 0xFF) != SQLITE_BUSY || waitForOther(&database, attempt) == 0) database.fail(code);
  }
}

void configure(Database& database, const OpenOptions& options) {
  sqlite3* const handle = database.handle;
  sqlite3_busy_handler(handle, waitForOther, &database);
  // A name in double quotes is a name, never a text; what the file brings along is not trusted.
  for (const int off :
       {SQLITE_DBCONFIG_DQS_DML, SQLITE_DBCONFIG_DQS_DDL, SQLITE_DBCONFIG_TRUSTED_SCHEMA,
        SQLITE_DBCONFIG_ENABLE_FKEY, SQLITE_DBCONFIG_ENABLE_VIEW}) {
    sqlite3_db_config(handle, off, 0, nullptr);
  }
  // Triggers note what the text indexes lack.
  sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 1, nullptr);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  set(database, "PRAGMA temp_store = MEMORY");
  set(database, "PRAGMA cache_size = -16384");
  // Some builds of the engine overwrite what is deleted with zeros; that costs writes and is no
  // need of ours.
  set(database, "PRAGMA secure_delete = OFF");
  if (options.readOnly) {
    set(database, "PRAGMA schema_version");
    return;
  }
  // The first look into the file: whatever is no database is found out here.
  set(database, "PRAGMA journal_mode = WAL");
  set(database, options.synchronous ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
  set(database, "PRAGMA journal_size_limit = 33554432");
  if (sqlite3_db_readonly(handle, "main") == 1) {
    refusePlace(errors::kPathAccess,
                fmt::format("The database {} may not be written.", database.path));
  }
}

class FileEngine final : public Engine, public Destination {
 public:
  std::string_view name() const override { return "sqlite"; }
  bool isFile() const override { return true; }
  std::string whyNot(const Column& column, const RowStore::Row& row,
                     std::size_t place) const override {
    return sqlite::whyNot(column, row, place);
  }

  std::unique_ptr<Session> open(const OpenOptions& options) const override {
    auto database = std::make_shared<Database>();
    database->path = placeOf(options);
    database->locale = options.locale ? options.locale : Locale::spanish();
    database->busyTimeoutMs = options.busyTimeoutMs;
    database->now = options.now;
    openHandle(*database, options);
    addFunctions(*database);
    configure(*database, options);
    if (!options.readOnly && database->path != kInMemory) {
      // The engine follows links to the file; all writers must meet in one queue.
      database->queue = std::make_unique<WriteQueue>(sqlite3_db_filename(database->handle, "main"));
    }
    return std::make_unique<FileSession>(std::move(database), options.readOnly);
  }
};

}  // namespace

}  // namespace sqlite

const Engine& sqliteEngine() {
  static const sqlite::FileEngine engine;
  return engine;
}

}  // namespace tavelor::engine
