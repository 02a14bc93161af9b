// SPDX-License-Identifier: MIT
// The frame that every record class shares: one primary record set, browsed, edited and offered to
// bound consumers.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/frame/class_info.hpp"
#include "tavelor/platform/export.hpp"
#include "tavelor/platform/inout.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/apartment.hpp"

namespace tavelor {

class Connection;
class Control;
class GridColumns;
class Recordset;
/// A connection, shared.
using ConnectionPtr = std::shared_ptr<Connection>;
using RecordsetPtr = std::shared_ptr<Recordset>;

/// The optional connection of a member: nothing, or a caller's variable. A read or write that finds
/// the variable empty fills it, so that the next call uses the same connection.
using ObjCn = InOut<ConnectionPtr>;

/// Listens to a record class. Every function has an empty default.
class TAVELOR_API RecordClassEvents {
 public:
  virtual ~RecordClassEvents() = default;
  /// The primary record set has moved to another row.
  virtual void MoveComplete() {}
  /// The rows behind a data member were fetched again: bound consumers read them anew.
  virtual void DataMemberChanged(std::string_view member);
};

/// Base of every record class.
///
/// A new object holds no record set; IniciaRs makes one, and until then members that need it raise
/// 91 (EditingRecord and AbsolutePosition answer false and 0 instead). Errors of the platform and
/// of the services pass unchanged, and nothing is rolled back: state stays as it was at that
/// moment. An object is used by one thread, while the apartment is bound that it was made in; what
/// would reach a database, the registry or a file of another one raises 5, and 91 once its own has
/// ended.
class TAVELOR_API RecordClass : public Object {
 public:
  ~RecordClass() override;
  RecordClass(const RecordClass&) = delete;
  RecordClass& operator=(const RecordClass&) = delete;

  /// What makes the class differ from others, as data.
  const ClassInfo& info() const { return info_; }
  /// The class's name, "ClsBancos".
  std::string typeName() const override = 0;

  /// Puts the full path of the report file `sRptPath` in its place.
  void GetRptPath(InOut<std::string> sRptPath) const;
  /// How a report engine reaches the class's database.
  void GetConnectionStrToRpt(InOut<std::string> sDbtype, InOut<std::string> sDataSource,
                             InOut<std::string> sCatalog, InOut<std::string> sUser,
                             InOut<std::string> sPasw) const;
  /// The class word: "Bancos".
  std::string sClassName() const;
  /// The connection of the primary record set; before IniciaRs a closed one of the class's own.
  ConnectionPtr GetConnection();
  /// Always "", though the service is asked; only classes that say so in their ClassInfo answer.
  std::string GetConnectionStr() const;

  /// The greatest code plus 1; 1 on an empty table. A maximum that is no number comes back as it
  /// is. The sum is a number: "00012" gives 13. The maximum of a text column is the greatest text,
  /// so "9" beats "10", and a sum that is too long for a text column is dropped for the maximum.
  /// Raises 6 for a maximum so large that a double cannot tell the next code from it. Nothing
  /// reserves the code: two callers may get the same.
  Variant NuevoCodigo(ObjCn objCn = {}) const;
  /// Whether no row has that code.
  bool CodigoLibre(const Variant& vId, ObjCn objCn = {}) const;

  /// Whether the current row is being edited or added. False on any error.
  bool EditingRecord() const;
  /// From 1; 0 on any error.
  std::int32_t AbsolutePosition() const;

  /// Adds a row as the class does it where nothing is said of `bDefVal`.
  void AddNew() { addRow(fillsNewRow()); }
  /// Adds a row. In most classes the next code is computed in any case and written to the first
  /// field only if `bDefVal` is true.
  void AddNew(bool bDefVal) { addRow(bDefVal); }
  /// Deletes the current row, or only marks it, as the class says. Where it writes, all that is
  /// pending is written with it. After an error the rows that were not written are pending still.
  void Delete();
  /// A bookmark whose text is no number counts as 0.
  void MoveToBookmark(const Variant& mybookmark);
  /// Fetches the rows again; the filter stays. An empty `sSelecSql` becomes "Todos", which is the
  /// key of the order that is restored: the registry does not tell it from "todos".
  void Requery(InOut<std::string> sSelecSql = {});
  /// Writes the current row; in classes that say so, all rows that are pending. Raises -2147217864
  /// where somebody else has changed the row meanwhile; after any error what was not written is
  /// pending still.
  virtual void Update();
  /// Begins a transaction, or a level inside one, on the connection that GetConnection gives.
  void CnnBeginTrans();
  /// Ends the innermost level and keeps what was written. Raises 3219 without one.
  void CnnCommitTrans();
  /// Ends the innermost level and undoes what was written in it; the rows of the record set stay as
  /// they are. Raises 3219 without one.
  void CnnRollbackTrans();
  /// Takes back the edit of the current row, or a row that is being added.
  void Cancel();
  /// Nothing happens without rows.
  void MoveFirst();
  /// Nothing happens without rows.
  void MoveLast();
  /// Beeps and stays on the last row when there is no next one.
  void MoveNext();
  /// Beeps and stays on the first row when there is none before.
  void MovePrevious();
  /// Whether the primary record set has any row.
  bool ExistenRegistros() const;
  /// From the current row on; at EOF when nothing is found. `Criteria` is not escaped.
  void FindRecord(std::string_view Criteria);

  // ---- One row by its key, for forms that come with a key and not from a list

  /// Columns of the class's table that tell a row from all others: its primary key, or the column
  /// of its codes where the table has none, of which several rows may have the same.
  std::vector<std::string> keyColumns() const;
  /// Opens the primary record set as IniciaRs does, by those rows of the mode `word` that have this
  /// key, read by their key and not by reading all rows; no order is restored. A value for each of
  /// keyColumns(); a Null opens no row, as a form begins that only adds. Raises 450 for another
  /// number of values, 3001 for a word that is none of the class's, and what the engine raises for
  /// a mode that does not show rows of the class's table; the record set is a closed one then.
  void openByKey(std::string word, const Variant& id, const std::vector<Variant>& key);

  // ---- Validation of a control's entry, by the type of the field that it is bound to.
  // A control whose DataField is no field of the record set raises 3265.

  /// Characters that an entry may have.
  std::int32_t ValidaDefinedSize(const Control& Text) const;
  /// Whether a key is accepted; the length tested is that of the text before it.
  bool ValidaKey(const Control& Text, std::int16_t KeyAscii) const;
  /// Whether the text fits the field's type.
  bool ValidaValue(const Control& Text) const;

  // ---- Filters and orders, each remembered under the class word and the free word `sLlave`.

  /// The filter that SetFilter stored, or "".
  std::string GetFilter(std::string_view sLlave) const;
  /// Filters the primary record set; "" clears.
  void AplyFilter(std::string_view Criteria);
  /// One criterion from one control, "" for an empty one. `iType` "1" asks for >=, "2" for <=,
  /// anything else for Like on text and = on the rest. Quotes in the control's text are not
  /// escaped; the entries of a list box are read by selecting each in turn.
  std::string CreateFilter(Control& ctl, std::string_view iType = {}) const;
  /// Stores a filter; the record set stays as it is.
  void SetFilter(std::string_view Criteria, std::string_view sLlave) const;
  /// Sorts by the field at `index`, its name directly followed by `Mode` (" DESC" brings its own
  /// blank), and remembers both under `sLlave`. On an empty record set it does nothing at all.
  void SetOrder(std::int16_t index, std::string_view Mode, std::string_view sLlave);
  /// What SetOrder remembered: 0 and "" where it never did. IniciaRs forgets an order that does
  /// not fit its rows; they stay in the order of their statement.
  void GetOrder(InOut<std::int16_t> index, InOut<std::string> Mode, std::string_view sLlave) const;

  /// Whether the current user may use the function `sId` of the application: true unless the
  /// registry holds a value of that name among the denials.
  bool SeguridadPermiso(std::string_view sId) const;

  // ---- Pages. See page.hpp for encoding and failures.

  /// Where the class's page lies.
  std::string GetHtmlFile() const;
  /// Writes the visible columns of a grid as a page. `bDoclone` works on a clone in the order
  /// remembered for `sSelecSql`, and writes nothing when there are no rows; without it the primary
  /// record set is walked and left at EOF. `bFilter` applies the filter stored under "Filter" and
  /// fetches the rows again; on the primary record set it raises 3219 while there are unsaved
  /// changes, before anything has happened. Values are written as they are, with no escaping.
  void ToHtmlGrid(const GridColumns& clColfields, bool bDoclone = false,
                  std::string_view sSelecSql = {}, bool bFilter = false);

  /// Names of the data members: none before IniciaRs, then "Primary", in most classes once more for
  /// each IniciaRs.
  const std::vector<std::string>& DataMembers() const { return dataMembers_; }
  /// The record set behind a data member: the primary one for "Primary" exactly, else nothing.
  RecordsetPtr DataMember(std::string_view name) const;

  /// The interface that MoveComplete is raised on, "__ClsBancos"; "" for a class without events.
  std::string eventInterface() const;
  /// A listener must be removed before it dies; it may be removed while an event is delivered.
  void addListener(RecordClassEvents& listener);
  /// Takes a listener off; one that was never added is passed over.
  void removeListener(RecordClassEvents& listener);

 protected:
  /// `info` must outlive the object: it is a constant of the class.
  explicit RecordClass(const ClassInfo& info);

  /// What the three shapes of IniciaRs do. `cnnActive` is filled when it is empty.
  void openPrimary(std::string& sSelecSql, const Variant& id, ConnectionPtr& cnnActive);

  /// Makes the record set saved in that file the primary one, without a connection. Raises 3001
  /// where no field of it is one of the class's table. After an error the old one is still there.
  RecordsetPtr openPrimaryFromFile(std::string_view path);

  /// The statement of a mode word, which becomes "todos" when the class does not know it.
  virtual Statement modeStatement(std::string& word, const Variant& id) const;
  /// What NuevoCodigo and AddNew take the next code from.
  virtual Variant newCode(ConnectionPtr& objCn) const;
  /// What AddNew does: a class whose own AddNew is another one is that through the frame too.
  virtual void addRow(bool bDefVal);
  /// What AddNew without `bDefVal` takes it for.
  virtual bool fillsNewRow() const;
  /// Defaults of a new row beside its code. Runs last in AddNew.
  virtual void setDefaults(bool bDefVal);
  /// What CodigoLibre answers.
  virtual bool isCodeFree(const Variant& vId, ConnectionPtr& objCn) const;
  /// What ToHtmlGrid does.
  virtual void writeGridPage(const GridColumns& clColfields, bool bDoclone,
                             std::string_view sSelecSql, bool bFilter);

  /// The primary record set; raises 91 before IniciaRs.
  Recordset& primary() const;
  /// Makes `connection` the class's, until IniciaRs brings another: GetConnection gives it, and the
  /// three transaction members work on it.
  void setConnection(ConnectionPtr connection);

  /// The rows that a page shows: a sorted clone or the primary record set, filtered if asked. Null
  /// when a clone has no rows.
  RecordsetPtr pageRows(bool bDoclone, std::string_view sSelecSql, bool bFilter);
  /// The record by record form of a page, for the classes that offer it as ToHtml.
  void writeRecordPage(bool bDoclone, std::string_view sSelecSql, bool bFilter);
  /// The same as plain text, ToTxt, in a file with the ending .txt in the report folder. Encoding
  /// and failures are those of pages.
  void writeRecordText(bool bDoclone, std::string_view sSelecSql, bool bFilter);
  /// The visible columns of a grid as a page with a style of its own, in the user's folder: as
  /// given, or below the installation's folder when it is relative, or the usual one when it is "".
  void writeModernPage(std::string_view sPersonalFolder, const GridColumns& clColfields,
                       bool bDoclone, std::string_view sSelecSql, bool bFilter);

  /// Saves rows in a file that the caller names, in the place of an earlier one, whole or not at
  /// all. Raises 75 for a file that cannot be written, and for one of the installation's own.
  void saveRows(Recordset& rows, std::string_view path) const;

  /// Opens a SELECT on `objCn`, filling it when it is empty.
  RecordsetPtr read(const Statement& statement, ObjCn objCn) const;
  /// The same on another database than the class's.
  RecordsetPtr readOn(int selector, const Statement& statement, ObjCn objCn) const;
  /// Runs a statement that gives no rows on `objCn`, filling it when it is empty.
  void write(const Statement& statement, ObjCn objCn) const;
  /// The first row's `column`; Empty when there is no row or its value is null.
  Variant lookUp(const Statement& statement, std::string_view column, ObjCn objCn) const;
  /// Whether the statement gives a row.
  bool anyRow(const Statement& statement, ObjCn objCn) const;
  /// The description that a look-up gives for a code: "No" for a Null code, whatever was read,
  /// `fallback` where there is no row or no description.
  std::string describe(const Statement& statement, const Variant& vId, std::string_view fallback,
                       ObjCn objCn) const;

  /// What GetConnectionStrToRpt gives, of any database.
  static void reportConnection(int selector, std::string& sDbtype, std::string& sDataSource,
                               std::string& sCatalog, std::string& sUser, std::string& sPasw);
  /// Full path of a file in the report folder of the installation.
  static std::string reportFile(std::string_view name);

  /// What NuevoCodigo gives, of any column and for codes whose length is a setting: a sum of more
  /// than `digits` characters is dropped for the maximum; 0 sets no limit.
  Variant nextCode(Statement::Constant column, std::int32_t digits, ObjCn objCn) const;
  /// The code plus 1; 1 for Null, the code itself where it is no number. Raises 6 where a double
  /// cannot tell the sum from the code.
  static Variant successor(const Variant& code);

  /// Raises unless the object's own apartment is bound.
  void mustBeHome() const { home_.mustBeBound(info_.word); }

  /// A value as it is joined into a statement: plain printing, Null as nothing.
  static std::string joined(const Variant& value);
  /// `text` with {id} replaced by the value.
  static Statement withId(Statement::Constant text, const Variant& id);

 private:
  template <typename>
  friend class SingleReadOf;
  class PrimaryEvents;

  void takePrimary(RecordsetPtr rows);
  void offerPrimary();
  void requireOwnRows(Recordset& rows, std::string_view path) const;
  template <typename Work>
  auto ofClass(Work&& work) const;
  RecordsetPtr greatest(Statement::Constant column, ConnectionPtr& objCn) const;
  void restoreOrder(std::string_view sLlave);
  void restoreOrForgetOrder(std::string_view sLlave);
  static void sortBy(Recordset& rows, std::int16_t index, std::string_view mode);
  ConnectionPtr& connection();
  Connection& forReading(ConnectionPtr& objCn) const;
  void raiseMoveComplete();
  /// Tells every listener of an event.
  template <typename Event>
  void tell(Event event);

  const ClassInfo& info_;
  Apartment::Home home_;
  RecordsetPtr adoPrimaryRS_;
  ConnectionPtr cnnPrimary_;
  std::unique_ptr<PrimaryEvents> primaryEvents_;
  std::vector<std::string> dataMembers_;
  std::vector<RecordClassEvents*> listeners_;
};

/// IniciaRs(sSelecSql, id): the record set rides on a connection of its own.
class TAVELOR_API OpensByWord : public RecordClass {
 public:
  /// Opens the primary record set by the statement of the mode `sSelecSql`, which becomes "todos"
  /// where the class does not know it, for the code `id`. Rows come in the order that was last
  /// chosen for that word. After an error the record set is a closed one.
  void IniciaRs(InOut<std::string> sSelecSql = {}, const Variant& id = {});

 protected:
  using RecordClass::RecordClass;
};

/// IniciaRs(sSelecSql, id, cnnActive): the record set rides on the caller's connection, if given.
class TAVELOR_API OpensByWordOnConnection : public RecordClass {
 public:
  /// Opens the primary record set by the statement of the mode `sSelecSql`, which becomes "todos"
  /// where the class does not know it, for the code `id`, on `cnnActive`, which is filled when it
  /// is empty. Rows come in the order that was last chosen for that word. After an error the record
  /// set is a closed one.
  void IniciaRs(InOut<std::string> sSelecSql = {}, const Variant& id = {}, ObjCn cnnActive = {});

 protected:
  using RecordClass::RecordClass;
};

/// IniciaRs(cnnActive, sSelecSql, id).
class TAVELOR_API OpensOnConnection : public RecordClass {
 public:
  /// Opens the primary record set by the statement of the mode `sSelecSql`, which becomes "todos"
  /// where the class does not know it, for the code `id`, on `cnnActive`, which is filled when it
  /// is empty. Rows come in the order that was last chosen for that word. After an error the record
  /// set is a closed one.
  void IniciaRs(ObjCn cnnActive = {}, InOut<std::string> sSelecSql = {}, const Variant& id = {});

 protected:
  using RecordClass::RecordClass;
};

}  // namespace tavelor
