// SPDX-License-Identifier: MIT
// Moves an installation from one engine to another.
//
// The settings of the installation as it will be are written first, beside those that hold: they
// tell the next run what an interrupted one may have left. In the end they take the place of the
// old ones, in one step.
#include "tavelor/services/relocation.hpp"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/dialect/ddl.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/movable.hpp"
#include "tavelor/services/engines.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/schema.hpp"
#include "tavelor/services/settings_file.hpp"
#include "tavelor/services/table_copy.hpp"

namespace tavelor {

namespace fs = std::filesystem;

namespace {

using Kind = RelocationStep::Kind;

constexpr std::string_view kSource = "Relocation";
constexpr std::string_view kPending = ".moving";      // behind the settings file: as it will be
constexpr std::string_view kPutAway = ".moved-";      // behind what was put away, before the moment
constexpr std::string_view kRegistry = "registry";    // label of the registry
constexpr std::string_view kMovers = "Tavelor_Move";  // whoever moves the installation waits here

/// A database on one side of a move, the registry being one too. On a server all of a side are one
/// transaction.
struct Side {
  std::string label;
  const engine::Engine* engine = nullptr;
  engine::OpenOptions options;
  std::unique_ptr<const dialect::Writer> writer;
  std::unique_ptr<engine::Session> session;
  engine::Movable* movable = nullptr;
  std::optional<engine::Transaction> transaction;  // goes before its session
  engine::Catalogue tables;
  std::vector<engine::TextIndex> textIndexes;  // of the target

  std::string place() const { return engine->isFile() ? options.path : options.schema; }

  void begin(std::shared_ptr<engine::Shared>& shared) {
    options.shared = &shared;
    session = engine->open(options);
    movable = dynamic_cast<engine::Movable*>(session.get());
    if (movable == nullptr || writer->words().row.empty()) {
      raise(errors::kNotSupported, kSource,
            fmt::format("The engine {} moves no databases.", engine->name()));
    }
    transaction.emplace(*session);
  }
};

struct Sides {
  std::shared_ptr<engine::Shared> shared;  // goes behind the sessions
  std::vector<std::unique_ptr<Side>> databases;

  auto begin() const { return databases.begin(); }
  auto end() const { return databases.end(); }
  Side& operator[](std::size_t i) const { return *databases[i]; }
  std::size_t size() const { return databases.size(); }
};

void add(Sides& sides, std::string label, std::string_view engine, engine::OpenOptions options,
         std::vector<engine::TextIndex> textIndexes = {}) {
  auto side = std::make_unique<Side>();
  side->textIndexes = std::move(textIndexes);
  side->label = std::move(label);
  side->engine = findEngine(engine);
  side->writer = makeWriter(*side->engine, options.schema);
  side->options = std::move(options);
  sides.databases.push_back(std::move(side));
}

/// What the installation lives in.
Sides sidesOf(const Installation& installation) {
  Sides sides;
  for (const DatabaseSettings& each : installation.settings().databases) {
    add(sides, each.label, each.engine, installation.openOptions(each.selector));
  }
  add(sides, std::string(kRegistry), installation.settings().registryEngine,
      installation.registryOptions());
  return sides;
}

/// The same by settings that do not hold yet.
Sides sidesOf(const Installation& installation, const Settings& settings) {
  Sides sides;
  const auto options = [&](const std::string& file, const std::string& schema) {
    engine::OpenOptions common = installation.registryOptions();
    common.server = settings.server;
    common.path = file.empty() ? "" : (fs::path(installation.folder()) / file).string();
    common.schema = schema;
    common.synchronous = true;  // what the settings name must be on the disk
    return common;
  };
  for (const DatabaseSettings& each : settings.databases) {
    add(sides, each.label, each.engine,
        options(each.file, each.schema.empty() ? each.label : each.schema),
        schema::textIndexesOf(each.selector));
  }
  const bool isFile = findEngine(settings.registryEngine)->isFile();
  add(sides, std::string(kRegistry), settings.registryEngine,
      options(isFile ? settings.registryFile : "", settings.registrySchema));
  return sides;
}

/// Whether both mean the same databases. Where a server is found may be written in several ways.
bool isSamePlace(const Settings& a, const Settings& b) {
  const auto isSame = [](const DatabaseSettings& x, const DatabaseSettings& y) {
    const auto schema = [](const DatabaseSettings& each) {
      return each.schema.empty() ? each.label : each.schema;
    };
    return x.selector == y.selector && x.engine == y.engine && x.file == y.file &&
           (!x.file.empty() || schema(x) == schema(y));
  };
  const auto isOnServer = [](const Settings& s) {
    return std::any_of(s.databases.begin(), s.databases.end(),
                       [](const DatabaseSettings& each) { return each.file.empty(); });
  };
  return std::equal(a.databases.begin(), a.databases.end(), b.databases.begin(), b.databases.end(),
                    isSame) &&
         a.registryEngine == b.registryEngine &&
         (!isOnServer(a) ||
          (a.server.hosts == b.server.hosts && a.server.database == b.server.database));
}

/// Behind what is put away now.
std::string endingOfNow() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return fmt::format("{}{:04}{:02}{:02}-{:02}{:02}{:02}", kPutAway, local.tm_year + 1900,
                     local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

/// The names of a folder's files that begin so, in their order.
std::vector<std::string> filesThatBegin(const fs::path& folder, const std::string& with) {
  std::vector<std::string> names;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(folder, ignored)) {
    std::string name = entry.path().filename().string();
    if (name.starts_with(with)) names.push_back(std::move(name));
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// A program may still have files open that were put away, and removes by name what lies beside
/// them when it ends: no new file takes such a name.
std::string freeFile(const fs::path& folder, const std::string& label) {
  for (int number = 1;; ++number) {
    std::string name = number == 1 ? label + ".db" : fmt::format("{}-{}.db", label, number);
    if (filesThatBegin(folder, name + std::string(kPutAway)).empty()) return name;
  }
}

class Mover {
 public:
  Mover(const std::string& folder, const RelocationListener& listener)
      : listener_(listener),
        installation_(Installation::open(folder)),
        file_(fs::path(installation_->folder()) / Installation::kSettingsFile),
        pending_(file_.string() + std::string(kPending)) {}

  const Installation& installation() const { return *installation_; }

  Relocation to(const Settings& settings) {
    const Settings& now = installation_->settings();
    if (isSamePlace(now, settings)) return finishEarlier();
    target_ = settings;
    source_ = sidesOf(*installation_);
    sides_ = sidesOf(*installation_, target_);
    holdSource();
    const bool isCopied = !mustBeEmpty();
    look();
    if (!isCopied) {
      make();
      copy();
    }
    compare();
    return finish(isCopied);
  }

 private:
  void tell(Kind kind, std::string_view database = {}, std::string_view table = {}) const {
    if (listener_) listener_(RelocationStep{kind, database, table});
  }
  TableSource reader(const Side& side, const engine::Table& table) const {
    return {*side.session, *side.writer, table, side.label};
  }

  /// Everything is read in the state of this moment.
  void holdSource() {
    for (const auto& side : source_) side->begin(source_.shared);
    source_[0].session->holdNumbersOf(kMovers);
    for (const auto& side : source_) {
      side->tables = side->session->describe();
      side->movable->holdStill(side->tables);
    }
    // Whoever was waited for may have been another mover.
    if (isSamePlace(readSettings(file_), installation_->settings())) return;
    raise(errors::kBusy, kSource,
          fmt::format("The installation {} was moved meanwhile.", installation_->folder()));
  }

  /// Whether nothing is there. False where an earlier move has left everything: it is compared.
  bool mustBeEmpty() {
    std::error_code ignored;
    const bool isOurs =
        fs::exists(pending_, ignored) && isSamePlace(readSettings(pending_), target_);
    for (const auto& side : sides_) {
      if (side->engine->isFile()) {
        mustBeFree(side->options.path, isOurs);
      } else if (holdsTables(*side)) {
        if (isOurs) return false;
        raise(errors::kPathAccess, kSource,
              fmt::format("The schema {} of {} holds tables already: nothing is moved there.",
                          side->options.schema, target_.server.database));
      }
    }
    return true;
  }
  static void mustBeFree(const std::string& file, bool isOurs) {
    std::error_code ignored;
    for (const std::string_view ending : {"", "-wal", "-shm", "-journal", "-queue"}) {
      const fs::path each = file + std::string(ending);
      if (!fs::exists(fs::symlink_status(each, ignored))) continue;
      if (isOurs) {
        fs::remove(each, ignored);
      } else {
        raise(errors::kPathAccess, kSource,
              fmt::format("There is a file {} already: nothing is moved there.", each.string()));
      }
    }
  }
  static bool holdsTables(const Side& side) {
    try {
      return !side.engine->open(side.options)->describe().tables().empty();
    } catch (const Error& error) {
      if (error.number() == errors::kFileNotFound) return false;  // no schema, or no functions yet
      throw;
    }
  }

  /// Names what the other side cannot hold, and sums up what is there.
  void look() {
    Unfit unfit;
    for (std::size_t i = 0; i < source_.size(); ++i) {
      const Side& side = source_[i];
      const auto* const destination = dynamic_cast<const engine::Destination*>(sides_[i].engine);
      if (destination == nullptr) {
        raise(errors::kNotSupported, kSource,
              fmt::format("Nothing is moved to the engine {}.", sides_[i].engine->name()));
      }
      unfit.lookAt(side.label, side.movable->indexes());
      std::vector<TableSum>& sums = sums_.emplace_back();
      for (const engine::Table& table : side.tables.tables()) {
        tell(Kind::kLook, side.label, table.name);
        const TableSource rows = reader(side, table);
        TableSum sum(table);
        rows.each([&](const engine::RowStore::Row& row) {
          sum.add(row);
          unfit.lookAt(rows, row, *destination);
        });
        sums.push_back(sum);
      }
    }
    unfit.mustBeNone();
  }

  /// The tables, in transactions that are open still.
  void make() {
    writeSettings(pending_, target_);
    for (std::size_t i = 0; i < sides_.size(); ++i) {
      sides_[i].options.create = true;
      sides_[i].begin(sides_.shared);
      if (!sides_[i].session->describe().tables().empty()) {
        raise(errors::kPathAccess, kSource,
              fmt::format("{} holds tables already: somebody was faster.", sides_[i].place()));
      }
      for (const engine::Table& table : source_[i].tables.tables()) {
        sides_[i].session->execute(sides_[i].writer->createTable(table));
      }
    }
  }

  void copy() {
    for (std::size_t i = 0; i < source_.size(); ++i) {
      const Side& from = source_[i];
      const Side& to = sides_[i];
      for (const engine::Table& table : from.tables.tables()) {
        tell(Kind::kCopy, from.label, table.name);
        TableTarget target(*to.session, *to.writer, table);
        reader(from, table).eachPage([&](const engine::RowStore& page) { target.add(page); });
        for (const engine::Column& column : table.columns) {
          if (!column.autoNumber) continue;
          const std::int64_t last = std::max(from.movable->lastNumber(table, column),
                                             reader(from, table).largest(column));
          to.movable->goOnBehind(table, column, last);
        }
      }
      for (const engine::Index& index : from.movable->indexes()) {
        const dialect::Definition definition{dialect::DefinitionKind::kCreateIndex,
                                             *from.tables.find(index.table), index.name,
                                             index.isUnique, index.columns};
        to.session->execute(dialect::createIndex(definition, &definition.table, *to.writer));
      }
      // Their triggers come last, and so cost the copying nothing.
      schema::makeTextIndexes(*to.session, to.textIndexes);
      to.session->wait();
    }
  }

  /// Reads back what is there.
  void compare() {
    for (std::size_t i = 0; i < sides_.size(); ++i) {
      Side& side = sides_[i];
      if (!side.session) side.begin(sides_.shared);
      side.tables = side.session->describe();
      const std::vector<engine::Table>& tables = source_[i].tables.tables();
      for (std::size_t t = 0; t < tables.size(); ++t) {
        const engine::Table& table = tables[t];
        tell(Kind::kCompare, side.label, table.name);
        const engine::Table* const there = side.tables.find(table.name);
        if (there == nullptr || !isAlike(table, *there)) differ(side, table, "has other columns");
        TableSum sum(table);
        reader(side, table).each([&](const engine::RowStore::Row& row) { sum.add(row); });
        if (sum.rows() != sums_[i][t].rows()) {
          differ(side, table, fmt::format("has {} rows of {}", sum.rows(), sums_[i][t].rows()));
        }
        if (sum.sum() != sums_[i][t].sum()) differ(side, table, "holds other values");
      }
    }
  }
  [[noreturn]] void differ(const Side& side, const engine::Table& table,
                           std::string_view how) const {
    Error error(errors::kUnspecified, std::string(kSource),
                fmt::format("The table {} of {} {} at the target: nothing was moved.", table.name,
                            side.label, how));
    error.noting(
        "an earlier move that was interrupted has left it there, and the shop has gone on "
        "since: drop the target's schemas, or files, and move again");
    throw error;
  }

  Relocation finish(bool wasThere) {
    Relocation done;
    done.wasThere = wasThere;
    for (std::size_t i = 0; i < sides_.size(); ++i) {
      Relocation::Database& database = done.databases.emplace_back();
      database.label = sides_[i].label;
      database.place = sides_[i].place();
      database.tables = sums_[i].size();
      for (const TableSum& sum : sums_[i]) {
        database.rows += sum.rows();
        database.sum = database.sum * 31 + sum.sum();
      }
    }
    done.ending = endingOfNow();
    // What is a part of the transaction may be refused now, and happens at its end.
    for (const auto& side : source_) {
      if (!side->engine->isFile()) side->movable->putAway(done.ending);
    }
    tell(Kind::kKeep);
    for (const auto& side : sides_) side->transaction->commit();
    // A file is whole by itself once nobody has it open.
    for (const auto& side : sides_) {
      side->transaction.reset();
      side->session.reset();
    }
    tell(Kind::kSwitch);
    done.keptSettings = file_.string() + done.ending;
    std::error_code fault;
    if (!fs::copy_file(file_, done.keptSettings, fs::copy_options::overwrite_existing, fault)) {
      raise(errors::kPathAccess, kSource,
            fmt::format("The old settings cannot be kept as {}: {}.", done.keptSettings,
                        fault.message()));
    }
    writeSettings(file_, target_);
    fs::remove(pending_, fault);
    tell(Kind::kPutAway);
    try {
      for (const auto& side : source_) {
        if (side->engine->isFile()) side->movable->putAway(done.ending);
      }
      for (const auto& side : source_) side->transaction->commit();
    } catch (Error& error) {
      error.noting(
          "the installation works on the new engine already; only the old databases are "
          "still in their place, where programs that are open may write to them");
      throw;
    }
    return done;
  }

  /// Where the settings name the place already: puts away what a move that died could not.
  Relocation finishEarlier() {
    const std::vector<std::string> kept =
        filesThatBegin(installation_->folder(), file_.filename().string() + std::string(kPutAway));
    Relocation done;
    if (!kept.empty()) {
      done.wasThere = true;
      done.keptSettings = (fs::path(installation_->folder()) / kept.back()).string();
      done.ending = kept.back().substr(file_.filename().string().size());
      putFilesAway(readSettings(done.keptSettings), done);
    }
    std::error_code ignored;
    fs::remove(pending_, ignored);
    if (!done.databases.empty()) return done;
    raise(errors::kInvalidCall, kSource,
          fmt::format("The installation {} is there already.", installation_->folder()));
  }
  void putFilesAway(const Settings& old, Relocation& done) const {
    Sides left = sidesOf(*installation_, old);
    for (const auto& side : left) {
      std::error_code ignored;
      if (!side->engine->isFile() || installation_->isOwnFile(side->options.path) ||
          !fs::exists(side->options.path, ignored)) {
        continue;
      }
      side->begin(left.shared);
      side->movable->putAway(done.ending);
      done.databases.push_back({side->label, side->options.path + done.ending});
    }
  }

  const RelocationListener& listener_;
  std::shared_ptr<Installation> installation_;
  fs::path file_;     // the settings
  fs::path pending_;  // and as they will be
  Settings target_;
  Sides source_;
  Sides sides_;                              // of the target, in the same order
  std::vector<std::vector<TableSum>> sums_;  // of the source's tables
};

}  // namespace

Relocation moveToServer(const std::string& folder, const engine::ServerAddress& server,
                        const RelocationListener& listener) {
  Mover mover(folder, listener);
  return mover.to(onServer(mover.installation().settings(), server));
}

Relocation moveToFiles(const std::string& folder, const RelocationListener& listener) {
  Mover mover(folder, listener);
  const Installation& installation = mover.installation();
  Settings settings = installation.settings();
  const std::string engine = Settings().registryEngine;
  const auto isFile = [](const std::string& name) { return findEngine(name)->isFile(); };
  for (DatabaseSettings& database : settings.databases) {
    if (isFile(database.engine)) continue;
    database.engine = engine;
    database.file = freeFile(installation.folder(), database.label);
    database.schema.clear();
  }
  if (!isFile(settings.registryEngine)) {
    settings.registryEngine = engine;
    settings.registryFile = freeFile(installation.folder(), std::string(kRegistry));
  }
  settings.server = {};
  return mover.to(settings);
}

}  // namespace tavelor
