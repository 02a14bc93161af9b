// SPDX-License-Identifier: MIT
// What employees earn by work phase.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// The points, or the value, that an employee earns by section and phase of work. Nothing but
/// Insertar keeps one row a pair of employee and phase.
///
/// The record set is a batch: Delete only marks, UpdateId gives the rows their keys, and Update
/// writes all that is pending.
class TAVELOR_API ClsEmpleadosPuntos final : public OpensOnConnection {
 public:
  ClsEmpleadosPuntos();
  std::string typeName() const override { return "ClsEmpleadosPuntos"; }
  static const Component& component();

  void GetRptPath(InOut<std::string> sRptPath) const = delete;
  bool CodigoLibre(const Variant& vId, ObjCn objCn = {}) const = delete;

  // ---- The table

  /// Puts one row in the place of all that the employee has of that phase: in the section of the
  /// phase, empty for a phase that is not there or has none, and with a `Max` of 1. The rows are
  /// cleared first, so the new one may get the key of a cleared one; and after an error behind the
  /// clearing the employee has none of that phase. Whoever wants all or nothing passes a connection
  /// with a transaction. Raises 6 before it writes anything for a value that is not finite.
  void Insertar(std::string_view sEmpleado, std::string_view sFase, double dValor,
                ObjCn objCn = {}) const;
  /// Gives all rows of the employee that have a phase one value.
  void ActualizarValor(std::string_view sEmpleado, double dValor, ObjCn objCn = {}) const;
  /// Keys of the employee's rows that have a phase, in their order.
  std::vector<Variant> ObtenerFasesEmpleado(const Variant& vId, ObjCn objCn = {}) const;
  /// The row of that key. A Null text is "0"; a Null number leaves its variable, and where there is
  /// no row all are left.
  void ObtenerFase(const Variant& vId, InOut<std::string> sSec, InOut<std::string> sFase,
                   InOut<double> dVal, InOut<double> dMax, ObjCn objCn = {}) const;
  /// Value of the first row that the employee has in a section; 0 where there is none or it is
  /// Null.
  double GetValorInterno(const Variant& vId, const Variant& vIdSec, ObjCn objCn = {}) const;
  /// The same: `vIdfase` is a section too.
  double GetValorCantFases(const Variant& vId, const Variant& vIdfase, ObjCn objCn = {}) const;
  /// Deletes the rows of an employee.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;

  // ---- The grid of one employee

  /// Whether a row of the grid is of that section already. A blank one never is.
  bool ComprobarSeccion(const Variant& vIdReg) const;
  /// Gives all rows, stored ones too and those that a filter hides, the employee `vId` and new
  /// keys, consecutive from the next one on in the order of the view, and stands on the first one;
  /// Update writes them. Raises 3265 in a list without keys, before anything has changed.
  void UpdateId(const Variant& vId);
  /// Gives the current row the employee `vId`; Update writes it.
  void UpdateadAffectCurrent(const Variant& vId);
  /// Drops all that is pending.
  void CancelBatch();
};

}  // namespace tavelor
