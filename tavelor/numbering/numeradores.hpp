// SPDX-License-Identifier: MIT
// Counters of documents, and the periods that they are kept in.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// One row a year with the last number that each family of documents used in its series a, b and c,
/// the digit lengths of the master codes and the format of the year's codes.
///
/// Reading reserves nothing: two reads without a write between them give the same numbers, and a
/// second workstation gets them too. Who needs a number for himself alone reads, uses and writes it
/// inside one transaction of his own connection, or tests the number against the documents.
///
/// Counters are doubles, written as text of 15 digits: above 999999999999999 the last ones are
/// rounded off, and the next number may be one that was used already.
///
/// Families, by exact word: "Pedidos", "Facturas_Proveedores", "Pedidos_Clientes", "Albaranes",
/// "Facturas", "Tickets", "Presupuestos", "Ordenes"; when writing also "rectificativa". Any other
/// word makes a statement that the database refuses.
///
/// A period is a year of four digits. Where a member takes none, or an empty one, the session's
/// current period counts, and is left in an empty `sPeriodo`.
class TAVELOR_API clsNumeradores final : public OpensByWord {
 public:
  clsNumeradores();
  std::string typeName() const override { return "clsNumeradores"; }
  static const Component& component();

  // ---- Counters

  /// Whether the period works with lots of use; always on a database server. `vId` is not looked
  /// at.
  bool ActivarLoteUso(const Variant& vId, ObjCn objCn = {}) const;
  /// Whether delivery notes share one number across their series; false without a row.
  bool Alb_Num_Simple(ObjCn objCn = {}) const;
  /// GetNewNum for a period that the caller names, whose last two digits make the seed; without the
  /// rule of the delivery notes.
  void GetNewNumPeriodo(std::string_view vId, std::string_view sPeriodo, InOut<double> dSerieA,
                        InOut<double> dSerieB, InOut<double> dSerieC, ObjCn objCn = {}) const;
  /// The next rectifying invoice: the last one plus 1, or the year and "0001".
  void GetNewRectifi(InOut<double> dSeriR, ObjCn objCn = {}) const;
  /// The next numbers of a family: the last one of each series plus 1. A series never used puts its
  /// seed into `dSerieA`, whichever it is, and leaves its own number as it came. Delivery notes
  /// with one number get the greatest of the three in all. Raises 3021 for a period without a row.
  void GetNewNum(std::string_view vId, InOut<double> dSerieA, InOut<double> dSerieB,
                 InOut<double> dSerieC, ObjCn objCn = {}) const;
  /// Stores the last numbers used. A period without a row is written nowhere, silently.
  void SetNewNum(std::string_view vId, double dSerieA, double dSerieB, double dSerieC,
                 ObjCn objCn = {}, InOut<std::string> sPeriodo = {}) const;
  /// Stores one series of work orders; `vId` is its letter, A, B or C, in either case.
  void SetNewNumOrd(std::string_view vId, double dSerieA, double dSerieB, double dSerieC,
                    ObjCn objCn = {}, InOut<std::string> sPeriodo = {}) const;
  /// Frees the length of article codes in the current period.
  void SetDigitArtTo0(ObjCn objCn = {}) const;
  /// Digits of a code: "Artículos", "Clientes" or "Proveedores"; 0 where it is not fixed or there
  /// is no row. Another word gives 6, or with a row what its last null length leaves behind.
  Variant GetLong(std::string_view vId, ObjCn objCn = {}) const;

  // ---- Periods and code formats

  /// Key of a period's row, "001" where it is null; Empty without a row.
  Variant GetCodigo(ObjCn objCn = {}, InOut<std::string> sPeriodo = {}) const;
  /// Letter of the code format, "" without one.
  std::string GetLetra(ObjCn objCn = {}, InOut<std::string> sPeriodo = {}) const;
  /// Parts of the code format; false without a row.
  bool GetAño(ObjCn objCn = {}, InOut<std::string> sPeriodo = {}) const;
  /// Whether codes hold the month; false without a row.
  bool GetMes(ObjCn objCn = {}, InOut<std::string> sPeriodo = {}) const;
  /// Whether codes hold a counter; false without a row.
  bool GetContador(ObjCn objCn = {}, InOut<std::string> sPeriodo = {}) const;

  /// Whether there are rows from before periods.
  bool ExistenPeriodosNulos(ObjCn objCn = {}) const;
  /// Makes the row of today's year, with the lengths of the current period and the year's seeds,
  /// and makes that year current. Tickets start unused; flags do not carry over. Twice in a year
  /// makes two rows, of which readers take the first. After a failure the year is not current and
  /// the row not written, and the primary record set holds it as an added one.
  void CrearPeriodoActual();
  /// Whether today's year has a row, whatever the session's period. After a no CrearPeriodoActual
  /// of this object makes none where another program has begun the year meanwhile.
  bool ExistenPeriodoActual(ObjCn objCn = {}) const;
  /// Gives rows without a period the year 2004, and makes today's year current.
  void ActualizarPeriodosNulos(ObjCn cnnActive = {}) const;

  // ---- For whoever lets a person choose the period; no slots of the interface.

  /// The session's period, "" where none was ever set. It outlives the program and is that of all
  /// programs of the installation.
  static std::string currentPeriod();
  /// Makes a period current, whether it has a row or not.
  static void setCurrentPeriod(std::string_view year);

 private:
  /// Today by a date mask: "yy", "yyyy".
  static std::string today(std::string_view mask);
  static void fillPeriod(std::string& sPeriodo);

  void readNumbers(std::string_view vId, std::string_view period, const std::string& seed,
                   double& dSerieA, double& dSerieB, double& dSerieC, ObjCn objCn) const;
  void writeCounters(Statement statement, ObjCn objCn, std::string& sPeriodo) const;
  Variant periodColumn(Statement::Constant column, ObjCn objCn, std::string& sPeriodo) const;
  void addPeriod(const std::string& year);

  mutable std::string missingYear_;  // the one that ExistenPeriodoActual found no row of last
};

}  // namespace tavelor
