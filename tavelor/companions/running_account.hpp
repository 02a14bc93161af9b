// SPDX-License-Identifier: MIT
// The running account of a customer or supplier: entries that store the balance after them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

/// One statement that Eliminar runs behind a deletion: the balances of the entries that `entries`
/// names are moved by the deleted movement.
struct TAVELOR_API BalanceRepair {
  /// Which entries, seen from the deleted one.
  enum class Entries : std::uint8_t {
    kSameDate,    ///< of the same date with a higher Id
    kLaterDates,  ///< of all later dates
  };

  Statement::Constant sign;  ///< "+" or "-"
  Entries entries;
};

/// A ledger of one entry a row, whose Saldo is the balance of its owner after it: the sum of Haber
/// minus Debe over the owner's entries up to it, in the order of Fecha, then Id. So a statement of
/// account is read without summing, and whoever writes an entry of the past mends the balances of
/// those behind it. Credit is positive; a Null amount counts as 0.
///
/// Amounts are written with a decimal point and at most six decimals. A date is a Date or a text
/// that is read by the locale; entries of one moment are those of one date, so that a time of the
/// day orders them too. Estado and Documento_E name the document that an entry comes from.
///
/// No member opens a transaction. After an error between two statements of Insertar or Eliminar the
/// entries are right and balances behind them are not: UpdateTotal mends them. Whoever wants all or
/// nothing passes a connection with a transaction. Two sessions that insert at once may take the
/// same Id: the second INSERT is refused by the key, before any balance has moved.
///
/// AddNew, Delete and the members below that change rows leave them pending until Update.
class TAVELOR_API RunningAccount : public OpensOnConnection {
 public:
  bool CodigoLibre(const Variant& vId, ObjCn objCn = {}) const = delete;

  // ---- The table

  /// Deletes all entries of an owner.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Deletes the entries of a document, one at a time, and moves balances behind each as the class
  /// says. A document without entries is no error. Raises 94 for an entry without a date, which
  /// stays.
  void Eliminar(std::int16_t iEst, const Variant& vDoc, ObjCn objCn = {}) const;

  /// Parameters of Insertar, in their order. `Estado` is by value there, by reference where an
  /// entry is corrected.
  template <typename Estado>
  struct EntryOf {
    std::string sSerie = {};
    std::string sCodigo = {};  ///< the owner; nobody looks whether there is one
    Variant dtFecha = {};
    std::string sConcepto = {};
    std::string sD_H = {};  ///< side, "D" or "H"; the amounts decide
    double dDebe = 0;
    double dHaber = 0;
    Estado iEstado = {};
    Variant vDoc_E = {};  ///< number of the document; Empty is a syntax error, 0 none
    ObjCn objCn = {};
  };
  /// An entry whose state is a number.
  using Apunte = EntryOf<std::int16_t>;
  /// Writes an entry behind those of its date, with its balance in the shop's format of amounts,
  /// and moves the balances of all later dates by its movement. Raises 6 before it writes anything
  /// for a movement that is not finite.
  void Insertar(const Apunte& apunte) const;

  /// Balance of an owner up to a date and including it, in the shop's format of amounts; summed,
  /// not read from the stored balances.
  double Saldo(std::string_view sCod, const Variant& dtFecha, ObjCn objCn = {}) const;

  // ---- The rows of the primary record set

  /// Adds a row; `bDefVal` gives it the next key, the owner `vId`, today's date, the side "H", the
  /// series "A" and zeros.
  void AddNew(InOut<Variant> vId, bool bDefVal = false);
  /// Gives all rows new keys, consecutive from the next one on in the order of the view, and stands
  /// on the first row. Under a descending order that turns the entries of one date round.
  void UpdateId();
  /// Computes the balances of the rows anew, from the oldest entry on whatever the order of the
  /// view, rounding to two decimals at each step; what is right already is left alone. The rows
  /// should be those of one owner, all of them: nobody looks. Stands at EOF afterwards, or on the
  /// first row where the order remembered for "seleccion" is " DESC".
  void UpdateTotal();
  /// Gives the current row the owner `vId` and posts it.
  void UpdateadAffectCurrent(InOut<Variant> vId);
  /// Drops all that is pending.
  void CancelBatch();

 protected:
  /// `afterDeletion` must outlive the object: it is a literal.
  RunningAccount(const ClassInfo& info, std::span<const BalanceRepair> afterDeletion)
      : OpensOnConnection(info), afterDeletion_(afterDeletion) {}

  /// Haber minus Debe of the entries that fulfil a condition, in the shop's format of amounts.
  double balance(const Statement& condition, ObjCn objCn) const;
  /// "#03/05/2026#".
  std::string dateText(const Variant& date) const;

 private:
  /// Of no owner.
  void addRow(bool bDefVal) override { AddNew({}, bDefVal); }

  std::span<const BalanceRepair> afterDeletion_;
};

}  // namespace tavelor
