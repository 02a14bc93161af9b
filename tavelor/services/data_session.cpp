// SPDX-License-Identifier: MIT
// The road from the classes to the databases.
#include "tavelor/services/data_session.hpp"

#include <fmt/compile.h>
#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/folders.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kSource = "DataSession";
constexpr int kMain = 1;

}  // namespace

DataSession::DataSession() : apartment_(Apartment::current()) {}

void DataSession::UpdateReportTables(const Variant& /*what*/) {
  apartment_.settle(kMain);
}

std::string DataSession::ConnectionString(int selector) const {
  return apartment_.installation().connectionString(selector);
}

std::string DataSession::DatabaseLabel(int selector) const {
  return apartment_.installation().database(selector).label;
}

void DataSession::ReportConnection(int selector, InOut<std::string> sDbtype,
                                   InOut<std::string> sDataSource, InOut<std::string> sCatalog,
                                   InOut<std::string> sUser, InOut<std::string> sPasw) const {
  const Installation& installation = apartment_.installation();
  *sDbtype = installation.database(selector).engine;
  sPasw->clear();
  if (installation.databaseEngine(selector).isFile()) {
    *sDataSource = installation.databaseFile(selector);
    sCatalog->clear();
    sUser->clear();
  } else {
    const engine::ServerAddress& server = installation.settings().server;
    *sDataSource = server.hosts;
    *sCatalog = server.database;
    *sUser = server.user;
  }
}

bool DataSession::IsDbFile(int selector) const {
  const Installation& installation = apartment_.installation();
  return installation.databaseEngine(selector).isFile() &&
         !installation.database(selector).servesAsServer;
}

std::string DataSession::DbFilePath(int selector) const {
  return IsDbFile(selector) ? apartment_.installation().databaseFile(selector) : std::string();
}

std::string DataSession::ReportPath(std::string_view file) const {
  return pathInFolder(apartment_.installation().reportFolder(), file, kSource);
}

std::string DataSession::ExportPath(std::string_view file) const {
  return pathInFolder(apartment_.installation().exportFolder(), file, kSource);
}

std::string DataSession::DocPath(std::string_view file) const {
  return pathInFolder(apartment_.installation().documentFolder(), file, kSource);
}

ConnectionPtr DataSession::OpenConnection(int selector, InOut<std::int32_t> /*options*/,
                                          int /*reserved*/) {
  return apartment_.openConnection(selector);
}

void DataSession::Execute(int selector, const Statement& statement, ConnectionPtr& objCn) {
  if (!objCn) objCn = OpenConnection(selector);
  objCn->Send(statement);
}

RecordsetPtr DataSession::OpenRecordsetFromFile(std::string_view path) {
  return Recordset::OpenFile(std::string(path), apartment_.installation().locale());
}

void DataSession::OpenRecordset(int selector, const Statement& statement, RecordsetPtr& recordset,
                                ConnectionPtr& objCn, int /*reserved*/) {
  if (!objCn) objCn = apartment_.openForReading(selector);
  if (!recordset) recordset = std::make_shared<Recordset>();
  recordset->Open(statement, objCn);
}

std::string DataSession::DateLiteral(int selector, const Variant& date) const {
  apartment_.installation().database(selector);
  return sqlLiteral(date.toDate(apartment_.locale()));
}

std::string DataSession::TimeLiteral(int selector, const Variant& time) const {
  apartment_.installation().database(selector);
  const CivilTime at = time.toDate(apartment_.locale()).civil();
  return fmt::format("#{:02}:{:02}:{:02}#", at.hour, at.minute, at.second);
}

}  // namespace tavelor
