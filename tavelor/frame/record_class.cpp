// SPDX-License-Identifier: MIT
// The frame: opening, moving, editing and codes, told once for all record classes.
#include "tavelor/frame/record_class.hpp"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "tavelor/frame/modes.hpp"
#include "tavelor/frame/strict_modes.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/prompt_global.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kPrimary = "Primary";
constexpr std::string_view kSource = "NuevoCodigo";
constexpr std::string_view kIdMark = "{id}";

const Locale& locale() {
  return Apartment::current().locale();
}

/// Whether a code has room in a column. Only texts have a length of their own: the size of a number
/// is that of its bytes, which says nothing of its digits.
bool fits(const Variant& code, const Field& column) {
  switch (static_cast<DataType>(column.Type())) {
    case DataType::kVarChar:
    case DataType::kVarWChar:
    case DataType::kLongVarWChar:
      return text::length(code.toText(locale())) <= static_cast<std::size_t>(column.DefinedSize());
    default:
      return true;
  }
}

// Bookmarks travel as text through some callers, so what is no number is 0 and the record set
// decides whether that is a row.
double numberOf(const Variant& bookmark) {
  if (bookmark.isNull()) return 0;
  return parseNumber(bookmark.toText(locale()), locale()).value_or(0);
}

}  // namespace

void RecordClassEvents::DataMemberChanged(std::string_view /*member*/) {}

/// Hands the record set's moves on to the class.
class RecordClass::PrimaryEvents final : public RecordsetEvents {
 public:
  explicit PrimaryEvents(RecordClass& owner) : owner_(owner) {}

  void MoveComplete(EventReason /*reason*/, const Error* /*error*/, EventStatus& /*status*/,
                    Recordset& /*set*/) override {
    owner_.raiseMoveComplete();
  }

 private:
  RecordClass& owner_;
};

RecordClass::RecordClass(const ClassInfo& info) : info_(info) {}

// The record set is not closed on purpose: a bound grid may hold it longer than the class lives.
RecordClass::~RecordClass() {
  if (adoPrimaryRS_ && primaryEvents_) adoPrimaryRS_->removeListener(primaryEvents_.get());
}

// ---------------------------------------------------------------------------------------------
// Opening

void RecordClass::takePrimary(RecordsetPtr rows) {
  if (adoPrimaryRS_ && primaryEvents_) adoPrimaryRS_->removeListener(primaryEvents_.get());
  adoPrimaryRS_ = std::move(rows);
  if (info_.raisesMoveComplete) {
    if (!primaryEvents_) primaryEvents_ = std::make_unique<PrimaryEvents>(*this);
    adoPrimaryRS_->addListener(primaryEvents_.get());
  }
}

void RecordClass::offerPrimary() {
  // Classes that do not clear the list get one more entry each time. Bound forms count on that list
  // as it is, so it must not be mended here.
  if (info_.clearsDataMembers) dataMembers_.clear();
  dataMembers_.emplace_back(kPrimary);
}

// An error of the engine tells the statement, and this whose it was.
template <typename Work>
auto RecordClass::ofClass(Work&& work) const {
  try {
    return work();
  } catch (Error& error) {
    error.noting("class " + typeName());
    throw;
  }
}

void RecordClass::openPrimary(std::string& sSelecSql, const Variant& id, ConnectionPtr& cnnActive) {
  mustBeHome();
  const Statement statement = modeStatement(sSelecSql, id);  // a refused word leaves what is open
  takePrimary(std::make_shared<Recordset>());
  DataSession().OpenRecordset(info_.selector, statement, adoPrimaryRS_, cnnActive);
  cnnPrimary_ = adoPrimaryRS_->ActiveConnection();

  offerPrimary();
  restoreOrForgetOrder(sSelecSql);
}

RecordsetPtr RecordClass::openPrimaryFromFile(std::string_view path) {
  mustBeHome();
  RecordsetPtr rows = DataSession().OpenRecordsetFromFile(path);
  requireOwnRows(*rows, path);
  takePrimary(std::move(rows));
  offerPrimary();
  return adoPrimaryRS_;
}

/// A file tells the tables of its fields; one that tells none, as of a set without a database, is
/// taken as it is.
void RecordClass::requireOwnRows(Recordset& rows, std::string_view path) const {
  std::string others;
  for (std::int32_t i = 0; i < rows.Fields().Count(); ++i) {
    const std::string base = rows.Field(i).BaseTable();
    if (text::equalsIgnoreCase(base, info_.table.text())) return;
    if (others.empty()) others = base;
  }
  if (others.empty()) return;
  raise(errors::kInvalidArgument, info_.word,
        fmt::format("{} holds rows of {}, not of {}.", path, others, info_.table.text()));
}

void RecordClass::saveRows(Recordset& rows, std::string_view path) const {
  const std::string file(path);
  if (Apartment::current().installation().isOwnFile(file)) {
    raise(errors::kPathAccess, info_.word, fmt::format("{} is the installation's own file.", path));
  }
  rows.Save(file);
}

/// An empty word and "todos" ask for the whole table; another one that the class does not know is
/// more likely a slip, and rows that nobody asked for would be edited or deleted.
static void requireWholeTable(const ClassInfo& info, const std::string& word) {
  if (word.empty() || text::equalsIgnoreCase(word, "todos")) return;
  const std::vector<std::string> words = modeWords(info);
  const std::string nearest = text::nearest(word, words);
  raise(errors::kInvalidArgument, info.word,
        fmt::format("There is no mode \"{}\"{}; the modes are {}.", text::left(word, 40),
                    nearest.empty() ? "" : fmt::format(", \"{}\" is near", nearest),
                    fmt::join(words, ", ")));
}

Statement RecordClass::modeStatement(std::string& word, const Variant& id) const {
  const auto known = std::find_if(info_.modes.begin(), info_.modes.end(), [&](const Mode& mode) {
    return mode.word == kAnyOtherWord || mode.word == word;
  });
  if (known->word == kAnyOtherWord) {
    if (StrictModes::isOn() || Apartment::current().installation().settings().strictModes) {
      requireWholeTable(info_, word);
    }
    word = "todos";
  }
  Statement statement = withId(known->select, id);
  statement << withId(known->tail, id);
  return statement;
}

void RecordClass::Requery(InOut<std::string> sSelecSql) {
  primary().Requery(-1);
  tell([](RecordClassEvents& listener) { listener.DataMemberChanged(kPrimary); });
  if (sSelecSql->empty()) sSelecSql = "Todos";
  restoreOrder(*sSelecSql);
}

RecordsetPtr RecordClass::DataMember(std::string_view name) const {
  return name == kPrimary ? adoPrimaryRS_ : nullptr;
}

Recordset& RecordClass::primary() const {
  if (!adoPrimaryRS_) {
    raise(errors::kObjectNotSet, info_.word, "IniciaRs has not been called");
  }
  return *adoPrimaryRS_;
}

// ---------------------------------------------------------------------------------------------
// Editing and moving
//
// A listener may call IniciaRs while it is told of a change or of a move, and with that the record
// set is another one: members ask for it anew after each step, and none holds it across two.

void RecordClass::addRow(bool bDefVal) {
  mustBeHome();
  primary().AddNew();
  Variant code = NuevoCodigo();
  if (text::length(joined(code)) < info_.codeWidth) {
    code = text::padLeft(joined(code), info_.codeWidth, '0');
  }
  if (info_.addNew == AddNewForm::kGeneral && !fits(code, primary().Field(0))) {
    code = std::int32_t{0};
  }
  if (bDefVal) primary().Field(0).Value(code);
  setDefaults(bDefVal);
}

bool RecordClass::fillsNewRow() const {
  return false;
}

void RecordClass::setDefaults(bool /*bDefVal*/) {}

void RecordClass::Update() {
  Recordset& rows = primary();
  ofClass([&] {
    if (info_.update == UpdateForm::kCurrentRow) {
      rows.UpdateBatch(Affect::kCurrent);
    } else if (ExistenRegistros()) {
      rows.UpdateBatch(Affect::kAll);
    }
  });
}

void RecordClass::Delete() {
  primary().Delete(Affect::kCurrent);
  if (info_.remove == DeleteForm::kWrites) primary().UpdateBatch(Affect::kAll);
}

void RecordClass::Cancel() {
  primary().CancelUpdate();
}

bool RecordClass::EditingRecord() const {
  try {
    return primary().EditMode() != EditMode::kNone;
  } catch (const Error&) {
    return false;
  }
}

std::int32_t RecordClass::AbsolutePosition() const {
  try {
    return primary().AbsolutePosition();
  } catch (const Error&) {
    return 0;
  }
}

bool RecordClass::ExistenRegistros() const {
  const Recordset& rows = primary();
  return !(rows.Bof() && rows.Eof());
}

void RecordClass::MoveFirst() {
  if (ExistenRegistros()) primary().MoveFirst();
}

void RecordClass::MoveLast() {
  if (ExistenRegistros()) primary().MoveLast();
}

void RecordClass::MoveNext() {
  if (!primary().Eof()) primary().MoveNext();
  if (primary().Eof() && primary().RecordCount() > 0) {
    Apartment::current().promptGlobal().Beep();
    primary().MoveLast();
  }
}

void RecordClass::MovePrevious() {
  if (!primary().Bof()) primary().MovePrevious();
  if (primary().Bof() && primary().RecordCount() > 0) {
    Apartment::current().promptGlobal().Beep();
    primary().MoveFirst();
  }
}

void RecordClass::MoveToBookmark(const Variant& mybookmark) {
  primary().Bookmark(Variant(numberOf(mybookmark)));
}

void RecordClass::FindRecord(std::string_view Criteria) {
  Recordset& rows = primary();
  const std::string& field = rows.Field(0).Name();
  rows.Find(info_.find == FindForm::kWhole ? fmt::format("{} = '{}'", field, Criteria)
                                           : fmt::format("{} Like '{}*'", field, Criteria));
}

// ---------------------------------------------------------------------------------------------
// Codes

Variant RecordClass::NuevoCodigo(ObjCn objCn) const {
  return newCode(*objCn);
}

Variant RecordClass::newCode(ConnectionPtr& objCn) const {
  const RecordsetPtr rows = greatest(info_.codeColumn, objCn);
  const Field newest = rows->Field(0);
  const Variant old = newest.Value();
  Variant next = successor(old);
  return old.isNull() || fits(next, newest) ? next : old;
}

Variant RecordClass::nextCode(Statement::Constant column, std::int32_t digits, ObjCn objCn) const {
  const Variant old = greatest(column, *objCn)->Field(0).Value();
  Variant next = successor(old);
  const bool hasRoom = digits < 1 || text::length(joined(next)) <= static_cast<std::size_t>(digits);
  return old.isNull() || hasRoom ? next : old;
}

RecordsetPtr RecordClass::greatest(Statement::Constant column, ConnectionPtr& objCn) const {
  Statement statement("SELECT MAX(");
  statement << column << ") AS Nuevo_Codigo FROM " << info_.table;
  return read(statement, objCn);
}

Variant RecordClass::successor(const Variant& code) {
  if (code.isNull()) return std::int32_t{1};
  if (!isNumeric(code, locale())) return code;
  const double last = code.toDouble(locale());
  const double next = last + 1;
  // Where a double counts in steps of more than one, the next code would be the last one again.
  if (!(next - last == 1)) {
    raise(errors::kOverflow, kSource, "There is no code after " + joined(code));
  }
  const bool isWhole = !code.isText() && std::floor(next) == next;
  return isWhole ? Variant(static_cast<std::int64_t>(next)) : Variant(next);
}

bool RecordClass::CodigoLibre(const Variant& vId, ObjCn objCn) const {
  return isCodeFree(vId, *objCn);
}

bool RecordClass::isCodeFree(const Variant& vId, ConnectionPtr& objCn) const {
  if (!info_.freeCode.empty()) return !anyRow(withId(info_.freeCode, vId), objCn);
  Statement statement("SELECT Codigo FROM ");
  statement << info_.table << " where codigo ='" << spliced(joined(vId)) << "'";
  return !anyRow(statement, objCn);
}

// ---------------------------------------------------------------------------------------------
// Connections and paths

ConnectionPtr& RecordClass::connection() {
  if (!cnnPrimary_) cnnPrimary_ = std::make_shared<Connection>();
  return cnnPrimary_;
}

void RecordClass::setConnection(ConnectionPtr connection) {
  cnnPrimary_ = std::move(connection);
}

ConnectionPtr RecordClass::GetConnection() {
  return connection();
}
void RecordClass::CnnBeginTrans() {
  connection()->BeginTrans();
}
void RecordClass::CnnCommitTrans() {
  connection()->CommitTrans();
}
void RecordClass::CnnRollbackTrans() {
  connection()->RollbackTrans();
}

// Nearly all classes ask the service and drop its answer. Callers have come to rely on the empty
// text (it makes them fall back to GetConnection), so it must not be mended here.
std::string RecordClass::GetConnectionStr() const {
  std::string answer = DataSession().ConnectionString(info_.selector);
  return info_.givesConnectionString ? answer : std::string();
}

void RecordClass::GetConnectionStrToRpt(InOut<std::string> sDbtype, InOut<std::string> sDataSource,
                                        InOut<std::string> sCatalog, InOut<std::string> sUser,
                                        InOut<std::string> sPasw) const {
  reportConnection(info_.selector, *sDbtype, *sDataSource, *sCatalog, *sUser, *sPasw);
}

void RecordClass::reportConnection(int selector, std::string& sDbtype, std::string& sDataSource,
                                   std::string& sCatalog, std::string& sUser, std::string& sPasw) {
  DataSession().ReportConnection(selector, sDbtype, sDataSource, sCatalog, sUser, sPasw);
}

void RecordClass::GetRptPath(InOut<std::string> sRptPath) const {
  mustBeHome();
  sRptPath = DataSession().ReportPath(*sRptPath);
}

std::string RecordClass::sClassName() const {
  return std::string(info_.word);
}

// ---------------------------------------------------------------------------------------------
// Events

std::string RecordClass::eventInterface() const {
  return info_.raisesMoveComplete ? "__" + typeName() : std::string();
}

void RecordClass::addListener(RecordClassEvents& listener) {
  listeners_.push_back(&listener);
}

void RecordClass::removeListener(RecordClassEvents& listener) {
  std::erase(listeners_, &listener);
}

void RecordClass::raiseMoveComplete() {
  tell([](RecordClassEvents& listener) { listener.MoveComplete(); });
}

template <typename Event>
void RecordClass::tell(Event event) {
  // Who is told is settled beforehand; who was removed meanwhile is left out.
  const std::vector<RecordClassEvents*> told = listeners_;
  for (RecordClassEvents* listener : told) {
    if (std::find(listeners_.begin(), listeners_.end(), listener) != listeners_.end()) {
      event(*listener);
    }
  }
}

// ---------------------------------------------------------------------------------------------
// Reading and writing for the classes

RecordsetPtr RecordClass::read(const Statement& statement, ObjCn objCn) const {
  return readOn(info_.selector, statement, *objCn);
}

RecordsetPtr RecordClass::readOn(int selector, const Statement& statement, ObjCn objCn) const {
  mustBeHome();
  return ofClass([&] {
    auto rows = std::make_shared<Recordset>();
    DataSession().OpenRecordset(selector, statement, rows, *objCn);
    return rows;
  });
}

void RecordClass::write(const Statement& statement, ObjCn objCn) const {
  mustBeHome();
  DataSession session;
  if (!*objCn) objCn = session.OpenConnection(info_.selector);
  ofClass([&] { session.Execute(info_.selector, statement, *objCn); });
}

Variant RecordClass::lookUp(const Statement& statement, std::string_view column,
                            ObjCn objCn) const {
  Variant found = forReading(*objCn).firstValue(statement, column).value_or(Variant());
  return found.isNull() ? Variant() : found;
}

bool RecordClass::anyRow(const Statement& statement, ObjCn objCn) const {
  return forReading(*objCn).anyRow(statement);
}

Connection& RecordClass::forReading(ConnectionPtr& objCn) const {
  mustBeHome();
  if (!objCn) objCn = Apartment::current().openForReading(info_.selector);
  return *objCn;
}

std::string RecordClass::describe(const Statement& statement, const Variant& vId,
                                  std::string_view fallback, ObjCn objCn) const {
  const Variant found = lookUp(statement, "Descripcion", *objCn);
  if (vId.isNull()) return "No";
  return found.isEmpty() ? std::string(fallback) : joined(found);
}

std::string RecordClass::joined(const Variant& value) {
  return value.isNull() ? std::string() : value.toText(locale());
}

Statement RecordClass::withId(Statement::Constant text, const Variant& id) {
  Statement statement;
  const std::string idText = joined(id);
  std::size_t begin = 0;
  for (std::size_t mark = text.text().find(kIdMark); mark != std::string_view::npos;
       mark = text.text().find(kIdMark, begin)) {
    statement << text.part(begin, mark - begin) << spliced(idText);
    begin = mark + kIdMark.size();
  }
  statement << text.part(begin);
  return statement;
}

// ---------------------------------------------------------------------------------------------
// The three shapes of IniciaRs

void OpensByWord::IniciaRs(InOut<std::string> sSelecSql, const Variant& id) {
  ConnectionPtr own;
  openPrimary(*sSelecSql, id, own);
}

void OpensByWordOnConnection::IniciaRs(InOut<std::string> sSelecSql, const Variant& id,
                                       ObjCn cnnActive) {
  openPrimary(*sSelecSql, id, *cnnActive);
}

void OpensOnConnection::IniciaRs(ObjCn cnnActive, InOut<std::string> sSelecSql, const Variant& id) {
  openPrimary(*sSelecSql, id, *cnnActive);
}

}  // namespace tavelor
