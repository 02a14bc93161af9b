// SPDX-License-Identifier: MIT
// An installation of the system: one folder with its settings, databases and registry.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"
#include "tavelor/services/engine/server_address.hpp"

namespace tavelor {

struct Locale;
namespace engine {
class Catalogue;
class Engine;
class Session;
struct OpenOptions;
}  // namespace engine
namespace dialect {
class Writer;
}

/// Who the component is and where it lives. The registry root is made of it.
struct TAVELOR_API VersionRecord {
  std::string folder;  ///< absolute
  std::string company;
  std::string product;
  int major = 1;
  int minor = 0;
  /// "SOFTWARE\Merivan\Tavelor\1.0", without a backslash at its end.
  std::string registryRoot() const;
  /// "SOFTWARE\Merivan\Global\Configuracion\Sesion\": the session tree lies outside the version.
  std::string sessionRoot() const;
};

/// One database of the installation.
struct TAVELOR_API DatabaseSettings {
  int selector = 0;
  std::string label;  ///< "main", "documents"...
  std::string engine = "sqlite";
  std::string file;             ///< relative to the installation folder, or absolute
  bool servesAsServer = false;  ///< the classes then take it for a server's database
  std::string schema = {};      ///< of a server's database; "" for the label
};

/// What the settings file holds. The defaults are those of a new installation.
struct TAVELOR_API Settings {
  std::string company = "Merivan";
  std::string product = "Tavelor";
  std::string locale = "es-ES";
  std::string amountFormat = "#,##0.00";
  std::string quantityFormat = "#,##0.00";
  int currencyDecimals = 2;

  std::vector<DatabaseSettings> databases = {{1, "main", "sqlite", "main.db", false},
                                             {3, "documents", "sqlite", "documents.db", false},
                                             {4, "historic", "sqlite", "historic.db", false},
                                             {5, "import", "sqlite", "import.db", false},
                                             {0, "further", "sqlite", "further.db", false}};
  engine::ServerAddress server;  ///< of those databases that are no files
  std::string registryEngine = "sqlite";
  std::string registryFile = "registry.db";
  std::string registrySchema = "registry";  ///< on a server, where all its tills share it
  bool synchronous = true;   ///< false: a power cut may lose the last transactions, never a file
  int busyTimeoutMs = 5000;  ///< how long a write waits for another writer

  std::string exportFolder =
      "export";  ///< folders are relative to the installation folder, or absolute
  std::string documentFolder = "doc";
  std::string textFolder = "txt";
  std::string emailTextFolder = "email";

  /// IniciaRs refuses words that its class does not know, where it would open the whole table.
  bool strictModes = false;

  bool trace = false;     ///< statements are kept from the start of an apartment on
  std::string traceFile;  ///< and appended to this file; "" for none
};

/// The same with all databases and the registry as schemas of that server's database.
TAVELOR_API Settings onServer(Settings settings, engine::ServerAddress server);

/// One folder with a settings file (tavelor.xml), its databases and its registry. Never changes
/// once open, so the apartments of several threads may share it. Paths are given and taken as text.
class TAVELOR_API Installation {
 public:
  static constexpr std::string_view kSettingsFile = "tavelor.xml";  ///< name of the settings file
  /// Folder of reports and pages, always directly below the installation folder.
  static constexpr std::string_view kReportFolder = "rpt";

  /// Makes a working installation in `folder`, schema included, and opens it. The folder is made
  /// when it is missing; one that holds an installation already is refused with 75 and left alone.
  /// The settings file comes last: what is left after a failure is no installation, and create()
  /// may be run again over it.
  static std::shared_ptr<Installation> create(const std::string& folder,
                                              const Settings& settings = {});
  /// Opens one. Databases of an older schema are brought up to date, each in one transaction; one
  /// of a newer schema is refused and left alone. Errors say which file and, for a settings file
  /// that does not read, line and column: 53 for a missing one, 75 for one that cannot be read,
  /// 5 for a wrong value. Nothing is changed by a failure.
  static std::shared_ptr<Installation> open(const std::string& folder);

  ~Installation();
  Installation(const Installation&) = delete;
  Installation& operator=(const Installation&) = delete;

  /// Whose component it is, and where it lives.
  const VersionRecord& version() const { return version_; }
  /// As they were when it was opened.
  const Settings& settings() const { return settings_; }
  /// By which texts read and values print.
  const std::shared_ptr<const Locale>& locale() const { return locale_; }
  /// Full path, without a separator at its end.
  const std::string& folder() const { return version_.folder; }

  /// Raises 9 for a selector that the settings do not name.
  const DatabaseSettings& database(int selector) const;
  /// Full path of a file-based database; "" for another.
  std::string databaseFile(int selector) const;
  /// What runs the statements of a database. Raises 9 as database() does.
  const engine::Engine& databaseEngine(int selector) const;
  /// "Provider=sqlite;Data Source=/shops/centre/main.db", or "Provider=postgresql;Data Source=db1;
  /// Initial Catalog=shop;Schema=main". Never a user's password.
  const std::string& connectionString(int selector) const;
  /// What writes its text.
  const dialect::Writer& writer(int selector) const;
  /// How a session of that database is opened.
  engine::OpenOptions openOptions(int selector) const;
  /// Full path of the registry; "" where it is no file.
  std::string registryFile() const;
  /// What runs the statements of the registry.
  const engine::Engine& registryEngine() const;
  /// How a session of the registry is opened.
  engine::OpenOptions registryOptions() const;

  /// Full path of the folder of reports and pages.
  std::string reportFolder() const;
  /// Full path of the folder of exports.
  std::string exportFolder() const;
  /// Full path of the folder of documents.
  std::string documentFolder() const;
  /// Full path of the folder of text exports.
  std::string textFolder() const;
  /// Full path of the folder of text exports for mail.
  std::string emailTextFolder() const;

  /// Whether a file, by whatever name or link, is one that the installation lives in: its settings,
  /// its databases and registry, and what lies beside them while they are written. Nothing else may
  /// be written there.
  bool isOwnFile(const std::string& file) const;

  /// Writes changed settings in the place of the old ones: after a crash there is one or the other,
  /// whole. Those who have the installation open go on with the old ones.
  static void saveSettings(const std::string& folder, const Settings& settings);

  /// The tables of a database as they are now, whoever made them. The description is shared by all
  /// threads, and read anew only after a change.
  std::shared_ptr<const engine::Catalogue> catalogue(int selector) const;
  /// The same, read by a session of that database that is open already.
  std::shared_ptr<const engine::Catalogue> catalogue(int selector, engine::Session& over) const;
  /// Adds tables, columns and indexes of the application's own to a database, in one transaction:
  /// any number of CREATE TABLE, CREATE INDEX and ALTER TABLE .. ADD COLUMN of the dialect.
  /// Connections taken from then on, of this installation or of any other over the same folder, see
  /// them. Raises 3251 for DDL that drops.
  void addToSchema(int selector, std::string_view ddl);
  /// Makes the indexes by which rows are found by words anew from their tables, each database in
  /// one transaction: where a file was damaged, or a program has written past the triggers.
  void rebuildTextIndexes() const;

 private:
  struct Database;
  Installation(const std::string& folder, Settings settings);
  const Database& entry(int selector) const;
  engine::OpenOptions commonOptions() const;
  void prepareDatabases(bool create) const;
  std::string within(const std::string& path) const;

  VersionRecord version_;
  Settings settings_;
  std::shared_ptr<const Locale> locale_;
  std::vector<std::unique_ptr<Database>> databases_;
};

}  // namespace tavelor
