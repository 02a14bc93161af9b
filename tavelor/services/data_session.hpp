// SPDX-License-Identifier: MIT
// The only road from the classes to a database.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "tavelor/platform/export.hpp"
#include "tavelor/platform/inout.hpp"

namespace tavelor {

class Apartment;
class Connection;
class Recordset;
class Statement;
class Variant;
using ConnectionPtr = std::shared_ptr<Connection>;
using RecordsetPtr = std::shared_ptr<Recordset>;

/// Made anew by each member of a class. A selector names a database of the installation: 1 main,
/// 3 documents, 4 historic, 5 import, 0 the further one; any other raises 9.
class TAVELOR_API DataSession {
 public:
  /// Of the calling thread's apartment; raises 91 when there is none.
  DataSession();

  /// Brings what report engines read up to date: everything committed in the main database is moved
  /// into its own file, so that a reader of that one file sees it. `what` is not looked at. Raises
  /// errors::kBusy while others write.
  void UpdateReportTables(const Variant& what);

  /// "Provider=sqlite;Data Source=/shops/centre/main.db".
  std::string ConnectionString(int selector) const;
  /// "main", "documents", "historic", "import", "further".
  std::string DatabaseLabel(int selector) const;
  /// For a report engine: kind of database, the file or host, the catalogue, user and password
  /// (the last three are empty for a file; the password always is).
  void ReportConnection(int selector, InOut<std::string> sDbtype, InOut<std::string> sDataSource,
                        InOut<std::string> sCatalog, InOut<std::string> sUser,
                        InOut<std::string> sPasw) const;
  /// False for a server, and for a file that the settings declare to serve as one.
  bool IsDbFile(int selector) const;
  /// Full path of the file; "" where IsDbFile() is false.
  std::string DbFilePath(int selector) const;

  /// Full path of a file in the report, export and documents folder. An empty name gives the folder
  /// with a separator at its end. Raises 5 for a name that leaves the folder, 75 for one that the
  /// system does not take and for a folder that is missing and cannot be made.
  std::string ReportPath(std::string_view file) const;
  /// The same, of the export folder.
  std::string ExportPath(std::string_view file) const;
  /// The same, of the folder of documents.
  std::string DocPath(std::string_view file) const;

  /// An open connection of its own, from the idle ones of the apartment where there is one. It
  /// returns to them when its last holder drops it; what is not committed then is undone.
  /// `options` and `reserved` mean nothing.
  ConnectionPtr OpenConnection(int selector, InOut<std::int32_t> options = {}, int reserved = 0);

  /// Runs a statement that gives no rows on `objCn`, filled from OpenConnection() when it is empty.
  /// Nobody asks how many it wrote: see Connection::Send().
  void Execute(int selector, const Statement& statement, ConnectionPtr& objCn);

  /// The record set saved in that file. Raises 53 when there is no such file, 75 when it cannot be
  /// read, 3001 with the place when it holds something else.
  RecordsetPtr OpenRecordsetFromFile(std::string_view path);

  /// Opens the statement into `recordset`, fully fetched, over `objCn`; either is made when it is
  /// empty. A connection that is made here reads what a transaction of this apartment on that
  /// database has written so far, for as long as it is open; what it writes itself waits for nobody
  /// of its own thread and is refused with errors::kBusy. Raises 3705 for a record set that is
  /// open. `reserved` means nothing.
  void OpenRecordset(int selector, const Statement& statement, RecordsetPtr& recordset,
                     ConnectionPtr& objCn, int reserved = 0);

  /// "#03/05/2024#" (month first, whatever the locale), with " 14:05:09" before the second # where
  /// the date has a time. A text is read by the locale. Raises 94 for Null, 13 for no date.
  std::string DateLiteral(int selector, const Variant& date) const;
  /// "#14:05:09#". Errors as above.
  std::string TimeLiteral(int selector, const Variant& time) const;

 private:
  Apartment& apartment_;
};

}  // namespace tavelor
