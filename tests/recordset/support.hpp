// SPDX-License-Identifier: MIT
// What the tests of the record set share: fabricated sets, and a small database in memory.
#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/sqlite/sqlite_engine.hpp"
#include "tests/support/errors.hpp"

namespace tavelor::test {

inline constexpr std::string_view kSchema = R"(
CREATE TABLE Bancos (Codigo TEXT(10) NOT NULL, Descripcion TEXT(40), Saldo CURRENCY,
  Alta DATETIME, Activo BIT, Plazos SHORT, Nota MEMO, Logotipo LONGBINARY, Peso SINGLE,
  Ratio DOUBLE, PRIMARY KEY (Codigo));
CREATE TABLE Lineas (Id COUNTER, Ticket LONG NOT NULL,
  Texto TEXT(20), Cantidad LONG DEFAULT 1, PRIMARY KEY (Id));
CREATE TABLE Notas (Texto TEXT(20), Numero LONG DEFAULT 5);
)";

/// Lends one session for the length of a test.
class Lease final : public SessionLease {
 public:
  explicit Lease(const std::string& path) {
    engine::OpenOptions options;
    options.path = path;
    options.create = true;
    options.synchronous = false;
    options.busyTimeoutMs = 200;
    options.locale = Locale::spanish();
    session_ = engine::sqliteEngine().open(options);
    bind();
  }

  engine::Session& session() override { return *session_; }
  dialect::PlanCache& plans() override { return *plans_; }

  void create(std::string_view schema) {
    for (const std::string& text : dialect::translateSchema(schema, dialect::sqliteWriter())) {
      session_->execute(text);
    }
    bind();
  }

 private:
  void bind() {
    auto catalogue = std::make_shared<const engine::Catalogue>(session_->describe());
    plans_ = std::make_unique<dialect::PlanCache>(*session_, std::move(catalogue),
                                                  Locale::spanish(), dialect::sqliteWriter());
  }

  std::unique_ptr<engine::Session> session_;
  std::unique_ptr<dialect::PlanCache> plans_;
};

/// Remembers what the trace was told.
class Journal final : public TraceSink {
 public:
  struct Line {
    std::string text;
    std::int64_t rows;
    std::int32_t error;
  };
  bool isOn() const override { return true; }
  void statement(const Entry& entry) override {
    lines.push_back({std::string(entry.text), entry.rows, entry.error});
  }
  std::vector<std::string> texts() const {
    std::vector<std::string> result;
    for (const Line& line : lines) result.push_back(line.text);
    return result;
  }
  std::vector<Line> lines;
};

/// A folder that goes with the test.
class Folder {
 public:
  Folder() {
    static std::atomic<int> count = 0;
    path_ = std::filesystem::temp_directory_path() /
            ("tavelor-rs-" + std::to_string(::getpid()) + "-" + std::to_string(++count));
    std::filesystem::create_directories(path_);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string file(const std::string& name) const { return (path_ / name).string(); }
  std::size_t files() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_),
                                                  std::filesystem::directory_iterator()));
  }

 private:
  std::filesystem::path path_;
};

/// A database with the tables above and three banks.
class ShopTest : public testing::Test {
 protected:
  ShopTest() {
    lease->create(kSchema);
    connection = connect(lease);
    run("INSERT INTO Bancos (Codigo, Descripcion, Saldo, Alta, Activo, Plazos) "
        "VALUES ('001', 'Uno', 10.5, #01/02/2024#, True, 3)");
    run("INSERT INTO Bancos (Codigo, Descripcion, Saldo, Alta, Activo, Plazos) "
        "VALUES ('002', 'Dos', -3, #12/31/2023 10:30:00#, False, 1)");
    run("INSERT INTO Bancos (Codigo, Descripcion) VALUES ('003', 'Tres')");
  }

  ConnectionPtr connect(std::shared_ptr<SessionLease> over) {
    ConnectionSettings settings;
    settings.lease = std::move(over);
    settings.connectionString = "Data Source=shop";
    settings.selector = 1;
    settings.trace = journal;
    return Connection::open(std::move(settings));
  }

  void run(std::string_view text) { connection->Execute(Statement::trusted(text)); }

  RecordsetPtr open(std::string_view text) {
    auto set = std::make_shared<Recordset>();
    set->Open(Statement::trusted(text), connection);
    return set;
  }
  RecordsetPtr openBanks() { return open("SELECT * FROM Bancos ORDER BY Codigo"); }

  /// The first value that a statement gives, as text.
  std::string scalar(std::string_view text) {
    return open(text)->Field(0).Value().toText(*Locale::neutral());
  }

  std::shared_ptr<Lease> lease = std::make_shared<Lease>(":memory:");
  std::shared_ptr<Journal> journal = std::make_shared<Journal>();
  ConnectionPtr connection;
};

/// A set without a database: a name and a number, a row for each pair.
inline RecordsetPtr fabricate(const std::vector<std::pair<const char*, int>>& rows) {
  auto set = std::make_shared<Recordset>();
  set->Fields().Append("Nombre", DataType::kVarWChar, 20);
  set->Fields().Append("Numero", DataType::kInt32);
  set->Open();
  for (const auto& [name, number] : rows) set->AddNew({"Nombre", "Numero"}, {name, number});
  set->UpdateBatch();
  if (!rows.empty()) set->MoveFirst();
  return set;
}

/// A fabricated set of three rows, on the first.
inline RecordsetPtr three() {
  return fabricate({{"a", 1}, {"b", 2}, {"c", 3}});
}

inline std::string textAt(Recordset& set, std::string_view field) {
  return set.Field(field).Value().toText(*Locale::spanish());
}

/// The values of a field in the order of the view. Leaves the set at EOF.
inline std::vector<std::string> column(Recordset& set, std::string_view field) {
  std::vector<std::string> values;
  if (set.RecordCount() == 0) return values;
  for (set.MoveFirst(); !set.Eof(); set.MoveNext()) {
    const Variant value = set.Field(field).Value();
    values.push_back(value.isNull() ? "Null" : value.toText(*Locale::spanish()));
  }
  return values;
}

}  // namespace tavelor::test
