// SPDX-License-Identifier: MIT
// Makes and opens installations.
#include "tavelor/services/installation.hpp"

#include <algorithm>
#include <array>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engines.hpp"
#include "tavelor/services/folders.hpp"
#include "tavelor/services/own_files.hpp"
#include "tavelor/services/registry_tree.hpp"
#include "tavelor/services/schema.hpp"
#include "tavelor/services/settings_file.hpp"

namespace tavelor {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kSource = "Installation";

void makeFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) {
    raise(errors::kPathAccess, kSource,
          fmt::format("The folder {} cannot be made: {}.", folder.string(), error.message()));
  }
}

fs::path absoluteFolder(const fs::path& folder) {
  if (folder.empty()) raise(errors::kInvalidCall, kSource, "The installation has no folder.");
  std::error_code error;
  fs::path path = fs::absolute(folder, error).lexically_normal();
  if (error) {
    raise(errors::kPathAccess, kSource,
          fmt::format("The folder {} cannot be found: {}.", folder.string(), error.message()));
  }
  // Without the separator at its end, so that what is joined to it has one and not two.
  return path.has_filename() ? path : path.parent_path();
}

}  // namespace

std::string VersionRecord::registryRoot() const {
  return fmt::format("SOFTWARE\\{}\\{}\\{}.{}", company, product, major, minor);
}

std::string VersionRecord::sessionRoot() const {
  return fmt::format("SOFTWARE\\{}\\Global\\Configuracion\\Sesion\\", company);
}

Settings onServer(Settings settings, engine::ServerAddress server) {
  constexpr std::string_view kEngine = "postgresql";
  settings.server = std::move(server);
  for (DatabaseSettings& database : settings.databases) {
    database.engine = kEngine;
    database.file.clear();
  }
  settings.registryEngine = kEngine;
  return settings;
}

struct Installation::Database {
  DatabaseSettings settings;
  fs::path file;  // empty where it is none
  const engine::Engine* engine = nullptr;
  std::unique_ptr<const dialect::Writer> writer;
  std::string connectionString;

  std::string place(const engine::ServerAddress& server) const {
    return engine->isFile()
               ? file.string()
               : fmt::format("{}.{} of {}", server.database, settings.schema, server.hosts);
  }

  mutable std::mutex mutex;  // of what follows; the rest never changes
  mutable std::shared_ptr<const engine::Catalogue> catalogue;
  mutable std::int64_t schemaVersion = 0;  // of the catalogue
};

engine::OpenOptions Installation::commonOptions() const {
  engine::OpenOptions options;
  options.server = settings_.server;
  options.synchronous = settings_.synchronous;
  options.busyTimeoutMs = settings_.busyTimeoutMs;
  options.locale = locale_;
  return options;
}

engine::OpenOptions Installation::openOptions(int selector) const {
  const Database& database = entry(selector);
  engine::OpenOptions options = commonOptions();
  options.path = database.file.string();
  options.schema = database.settings.schema;
  return options;
}

engine::OpenOptions Installation::registryOptions() const {
  engine::OpenOptions options = commonOptions();
  options.path = registryFile();
  options.schema = settings_.registrySchema;
  return options;
}

Installation::Installation(const std::string& folder, Settings settings)
    : version_{folder, settings.company, settings.product},
      settings_(std::move(settings)),
      locale_(Locale::byName(settings_.locale)) {
  for (const DatabaseSettings& each : settings_.databases) {
    auto database = std::make_unique<Database>();
    database->settings = each;
    if (each.schema.empty()) database->settings.schema = each.label;
    database->engine = findEngine(each.engine);
    database->writer = makeWriter(*database->engine, database->settings.schema);
    if (database->engine->isFile()) {
      database->file = (fs::path(folder) / each.file).lexically_normal();
      database->connectionString =
          fmt::format("Provider={};Data Source={}", each.engine, database->file.string());
    } else {
      database->connectionString =
          fmt::format("Provider={};Data Source={};Initial Catalog={};Schema={}", each.engine,
                      settings_.server.hosts, settings_.server.database, database->settings.schema);
    }
    databases_.push_back(std::move(database));
  }
}

Installation::~Installation() = default;

std::shared_ptr<Installation> Installation::create(const std::string& folder,
                                                   const Settings& settings) {
  const fs::path place = absoluteFolder(folder);
  const fs::path file = place / kSettingsFile;
  checkSettings(settings, place, "The settings of the new installation");
  std::error_code ignored;
  if (fs::exists(fs::symlink_status(file, ignored))) {
    raise(errors::kPathAccess, kSource,
          fmt::format("There is an installation in {} already.", place.string()));
  }
  makeFolder(place);
  std::shared_ptr<Installation> made(new Installation(place, settings));
  for (const fs::path each : {made->reportFolder(), made->exportFolder(), made->documentFolder(),
                              made->textFolder(), made->emailTextFolder()}) {
    makeFolder(each);
  }
  made->prepareDatabases(true);
  writeSettings(file, settings);
  return made;
}

std::shared_ptr<Installation> Installation::open(const std::string& folder) {
  const fs::path place = absoluteFolder(folder);
  std::shared_ptr<Installation> opened(
      new Installation(place, readSettings(place / kSettingsFile)));
  opened->prepareDatabases(false);
  return opened;
}

void Installation::prepareDatabases(bool create) const {
  std::shared_ptr<engine::Shared> shared;
  for (const auto& database : databases_) {
    engine::OpenOptions options = openOptions(database->settings.selector);
    options.shared = &shared;
    options.create = create;
    const auto session = database->engine->open(options);
    const int selector = database->settings.selector;
    schema::bringUpToDate(*session,
                          {schema::ddlOf(selector), schema::currentVersion(), create,
                           database->place(settings_.server), schema::textIndexesOf(selector)},
                          *database->writer);
  }
  const RegistryTree registry(*this, &shared, create);
}

void Installation::saveSettings(const std::string& folder, const Settings& settings) {
  writeSettings(absoluteFolder(folder) / kSettingsFile, settings);
}

const Installation::Database& Installation::entry(int selector) const {
  for (const auto& database : databases_) {
    if (database->settings.selector == selector) return *database;
  }
  raise(errors::kSubscriptOutOfRange, kSource,
        fmt::format("The installation {} has no database {}.", folder(), selector));
}

const DatabaseSettings& Installation::database(int selector) const {
  return entry(selector).settings;
}

std::string Installation::databaseFile(int selector) const {
  return entry(selector).file;
}

const engine::Engine& Installation::databaseEngine(int selector) const {
  return *entry(selector).engine;
}

const std::string& Installation::connectionString(int selector) const {
  return entry(selector).connectionString;
}

const dialect::Writer& Installation::writer(int selector) const {
  return *entry(selector).writer;
}

std::string Installation::registryFile() const {
  return registryEngine().isFile() ? within(settings_.registryFile) : std::string();
}

const engine::Engine& Installation::registryEngine() const {
  return *findEngine(settings_.registryEngine);
}

std::string Installation::reportFolder() const {
  return within(std::string(kReportFolder));
}
std::string Installation::exportFolder() const {
  return within(settings_.exportFolder);
}
std::string Installation::documentFolder() const {
  return within(settings_.documentFolder);
}
std::string Installation::textFolder() const {
  return within(settings_.textFolder);
}
std::string Installation::emailTextFolder() const {
  return within(settings_.emailTextFolder);
}

bool Installation::isOwnFile(const std::string& file) const {
  std::vector<fs::path> stored = {registryFile()};
  for (const auto& database : databases_) stored.push_back(database->file);
  std::erase_if(stored, [](const fs::path& each) { return each.empty(); });
  const auto isAny = [&](std::string_view companion) {
    return std::any_of(stored.begin(), stored.end(), [&](const fs::path& each) {
      return isSameFile(file, each.string().append(companion));
    });
  };
  constexpr std::array<std::string_view, 5> kCompanions = {"", "-wal", "-shm", "-journal",
                                                           "-queue"};
  return isSameFile(file, fs::path(folder()) / kSettingsFile) ||
         isSameFile(file, fs::path(folder()) / kFiscalSettingsFile) ||
         std::any_of(kCompanions.begin(), kCompanions.end(), isAny);
}

std::string Installation::within(const std::string& path) const {
  const fs::path full = (fs::path(folder()) / path).lexically_normal();
  return full.has_filename() ? full : full.parent_path();
}

std::shared_ptr<const engine::Catalogue> Installation::catalogue(int selector) const {
  return catalogue(selector, *entry(selector).engine->open(openOptions(selector)));
}

std::shared_ptr<const engine::Catalogue> Installation::catalogue(int selector,
                                                                 engine::Session& over) const {
  const Database& database = entry(selector);
  // Asked before the tables are read: a change between the two is noticed the next time.
  const std::int64_t version = over.schemaVersion();
  const std::lock_guard lock(database.mutex);
  if (!database.catalogue || database.schemaVersion != version) {
    database.catalogue = std::make_shared<const engine::Catalogue>(schema::describe(over));
    database.schemaVersion = version;
  }
  return database.catalogue;
}

void Installation::addToSchema(int selector, std::string_view ddl) {
  const Database& database = entry(selector);
  const auto session = database.engine->open(openOptions(selector));
  schema::apply(*session, ddl, *database.writer);
}

void Installation::rebuildTextIndexes() const {
  for (const auto& database : databases_) {
    const std::vector<engine::TextIndex> indexes =
        schema::textIndexesOf(database->settings.selector);
    if (indexes.empty()) continue;
    const auto session = database->engine->open(openOptions(database->settings.selector));
    engine::Transaction transaction(*session);
    schema::makeTextIndexes(*session, indexes);
    transaction.commit();
  }
}

}  // namespace tavelor
