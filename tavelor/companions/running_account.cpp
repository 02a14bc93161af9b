// SPDX-License-Identifier: MIT
// The running account of a customer or supplier: entries that store the balance after them.
#include "tavelor/companions/running_account.hpp"

#include <algorithm>
#include <limits>
#include <tuple>
#include <vector>

#include "tavelor/companions/account_slots.hpp"
#include "tavelor/frame/batch_rows.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/format_global.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

const Locale& locale() {
  return Apartment::current().locale();
}

/// An amount for a place without quotes.
std::string bare(double amount) {
  return Apartment::current().formatGlobal().SqlNumber(amount);
}

/// As the shop shows its amounts, read back: a shop sees in a statement of account what it stores.
double shown(double amount) {
  const std::string mask = Apartment::current().formatGlobal().AmountFormat();
  return RoundingMask(mask, locale())(amount);
}

/// What both balances of a movement are moved by, and whose they are.
struct Movement {
  std::string amount;
  std::string date;
  std::string owner;
};

/// The balances of an owner's entries of later dates are moved.
Statement moveLater(Statement::Constant table, Statement::Constant sign, const Movement& by) {
  Statement statement("UPDATE ");
  statement << table << " SET Saldo = Saldo " << sign << " " << spliced(by.amount)
            << " WHERE ((Fecha > " << spliced(by.date) << ") AND (Codigo='" << spliced(by.owner)
            << "'));";
  return statement;
}

/// The balances of his entries of the same date behind `id` are moved.
Statement moveSameDate(Statement::Constant table, Statement::Constant sign, const Movement& by,
                       std::string_view id) {
  Statement statement("UPDATE ");
  statement << table << " SET Saldo = Saldo " << sign << " " << spliced(by.amount)
            << " WHERE ((Id > " << spliced(id) << ") and (Fecha = " << spliced(by.date)
            << ") AND (Codigo='" << spliced(by.owner) << "'));";
  return statement;
}

}  // namespace

std::string RunningAccount::dateText(const Variant& date) const {
  return DataSession().DateLiteral(info().selector, date);
}

// ---------------------------------------------------------------------------------------------
// The table

void RunningAccount::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  Statement statement("DELETE  FROM ");
  statement << info().table << " WHERE (Codigo = '" << spliced(joined(vId)) << "')";
  write(statement, *cnnActive);
}

double RunningAccount::balance(const Statement& condition, ObjCn objCn) const {
  Statement statement("SELECT  Sum(Debe) AS SumaDeDebe, Sum(Haber) AS SumaDeHaber From ");
  statement << info().table << " WHERE (" << condition << ");";
  const RecordsetPtr sums = read(statement, *objCn);
  return shown(asNumber(sums->Field("SumaDeHaber").Value()) -
               asNumber(sums->Field("SumaDeDebe").Value()));
}

double RunningAccount::Saldo(std::string_view sCod, const Variant& dtFecha, ObjCn objCn) const {
  const std::string date = dateText(dtFecha);
  Statement condition("(Fecha <= ");
  condition << spliced(date) << ") AND (Codigo='" << spliced(sCod) << "')";
  return balance(condition, *objCn);
}

void RunningAccount::Insertar(const Apunte& apunte) const {
  const Apunte& a = apunte;
  const std::string id = joined(NuevoCodigo(*a.objCn));
  const double before = Saldo(a.sCodigo, a.dtFecha, *a.objCn);
  const Movement movement = {bare(a.dHaber - a.dDebe), dateText(a.dtFecha), a.sCodigo};

  Statement entry("INSERT INTO ");
  entry << info().table
        << " ( Id, Serie, Codigo, Fecha, Concepto, Debe_Haber, Debe, Haber, Saldo, Estado,"
           " Documento_E ) Values ( "
        << spliced(id) << " , '" << spliced(a.sSerie) << "', '" << spliced(a.sCodigo) << "', "
        << spliced(movement.date) << ", '" << spliced(a.sConcepto) << "', '" << spliced(a.sD_H)
        << "', " << spliced(bare(a.dDebe)) << ", " << spliced(bare(a.dHaber)) << ", "
        << spliced(bare(shown(a.dHaber - a.dDebe + before))) << ", "
        << spliced(std::to_string(a.iEstado)) << ", " << spliced(joined(a.vDoc_E)) << " );";
  write(entry, *a.objCn);
  write(moveLater(info().table, "+", movement), *a.objCn);
}

void RunningAccount::Eliminar(std::int16_t iEst, const Variant& vDoc, ObjCn objCn) const {
  mustBeHome();
  if (!*objCn) objCn = DataSession().OpenConnection(info().selector);
  Statement ofDocument("SELECT Id, Codigo, Fecha, Debe, Haber From ");
  ofDocument << info().table << " WHERE ((Estado = " << spliced(std::to_string(iEst))
             << " ) AND (Documento_E = " << spliced(joined(vDoc)) << " ));";
  const RecordsetPtr entries = read(ofDocument, *objCn);
  for (; !entries->Eof(); entries->MoveNext()) {
    const std::string id = joined(entries->Field("Id").Value());
    const double amount =
        asNumber(entries->Field("Haber").Value()) - asNumber(entries->Field("Debe").Value());
    const Movement movement = {bare(amount), dateText(entries->Field("Fecha").Value()),
                               joined(entries->Field("Codigo").Value())};

    Statement deletion("DELETE  FROM ");
    deletion << info().table << " WHERE (Id = " << spliced(id) << ")";
    write(deletion, *objCn);
    for (const BalanceRepair& repair : afterDeletion_) {
      write(repair.entries == BalanceRepair::Entries::kSameDate
                ? moveSameDate(info().table, repair.sign, movement, id)
                : moveLater(info().table, repair.sign, movement),
            *objCn);
    }
  }
}

// ---------------------------------------------------------------------------------------------
// The rows of the primary record set

void RunningAccount::AddNew(InOut<Variant> vId, bool bDefVal) {
  mustBeHome();
  Recordset& rows = primary();
  rows.AddNew();
  if (!bDefVal) return;
  rows.Field("ID").Value(NuevoCodigo());
  rows.Field("Codigo").Value(*vId);
  rows.Field("Fecha").Value(format(Apartment::current().clock().today(), "Short Date", locale()));
  rows.Field("Tipo").Value("H");
  rows.Field("Serie").Value("A");
  for (const std::string_view column : {"Debe", "Haber", "Saldo", "Estado", "Documento"}) {
    rows.Field(column).Value(std::int32_t{0});
  }
}

void RunningAccount::UpdateId() {
  if (!ExistenRegistros()) return;
  keyAllRows(primary(), NuevoCodigo(GetConnection()));
}

namespace {

/// An entry as UpdateTotal walks it.
struct Walked {
  double date;  ///< Null before all days
  double id;    ///< of a row without a key behind all of its date
  Variant place;
  double movement;
  Variant balance;
};

std::vector<Walked> walkOf(Recordset& rows) {
  std::vector<Walked> walk;
  for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext()) {
    const Variant date = rows.Field("Fecha").Value();
    const Variant id = rows.Field("Id").Value();
    walk.push_back({date.isNull() || date.isEmpty() ? -std::numeric_limits<double>::infinity()
                                                    : date.toDate(locale()).days(),
                    id.isEmpty() ? std::numeric_limits<double>::infinity() : asNumber(id),
                    rows.Bookmark(),
                    asNumber(rows.Field("Haber").Value()) - asNumber(rows.Field("Debe").Value()),
                    rows.Field("Saldo").Value()});
  }
  // An order of the view leaves open how the entries of one date follow each other, and a
  // descending one would bring them the wrong way round.
  std::stable_sort(walk.begin(), walk.end(), [](const Walked& a, const Walked& b) {
    return std::tie(a.date, a.id) < std::tie(b.date, b.id);
  });
  return walk;
}

}  // namespace

void RunningAccount::UpdateTotal() {
  std::int16_t index = 0;
  std::string mode;
  GetOrder(index, mode, "seleccion");
  if (!ExistenRegistros()) return;

  Recordset& rows = primary();
  const RoundingMask standard("Standard", locale());
  double total = 0;
  for (const Walked& entry : walkOf(rows)) {
    total = standard(total + standard(entry.movement));
    if (!entry.balance.isNull() && !entry.balance.isEmpty() && asNumber(entry.balance) == total) {
      continue;
    }
    rows.Bookmark(entry.place);
    rows.Field("Saldo").Value(total);
    rows.Update();
  }
  if (mode == " DESC") {
    rows.MoveFirst();
  } else {
    rows.MoveLast();
    rows.MoveNext();
  }
}

void RunningAccount::UpdateadAffectCurrent(InOut<Variant> vId) {
  keyCurrentRow(primary(), *vId, "Codigo");
}

void RunningAccount::CancelBatch() {
  primary().CancelBatch();
}

std::vector<Member> withAccountTail(std::vector<Member> head) {
  using A = RunningAccount;
  std::vector<Member> slots =
      withFrameTail(std::move(head), {member("AddNew", &A::AddNew, "inout vId, [bDefVal]")});
  slots = withSlotsBehind(
      "Requery", {member("UpdateId", &A::UpdateId), member("UpdateTotal", &A::UpdateTotal)},
      std::move(slots));
  slots = withSlotsBehind("Update",
                          {member("UpdateadAffectCurrent", &A::UpdateadAffectCurrent, "inout vId")},
                          std::move(slots));
  return withSlotsBehind("Cancel", {member("CancelBatch", &A::CancelBatch)}, std::move(slots));
}

}  // namespace tavelor
