// SPDX-License-Identifier: MIT
// The staff.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// The staff of the business, and the walk from one employee to the next that screens of shifts
/// take. Lists for choosing show the active ones, the full list shows all.
class TAVELOR_API ClsEmpleados final : public OpensOnConnection {
 public:
  ClsEmpleados();
  std::string typeName() const override { return "ClsEmpleados"; }
  static const Component& component();

  /// Codes of all employees, the inactive ones too.
  std::vector<Variant> ObtenerCol(ObjCn objCn = {}) const;
  /// The current row. Fields that the list does not show, and Null ones, are left as they came;
  /// errors are passed over.
  void ObtenerRegistroActivo(InOut<Variant> vId, InOut<std::string> sNombre,
                             InOut<std::string> sEmpresa, InOut<std::string> sDireccion,
                             InOut<std::string> sCp, InOut<std::string> sPoblacion,
                             InOut<std::string> sProvincia, InOut<std::string> sTelefono) const;
  /// The text file of the class.
  std::string GetTxtFile() const;
  /// The one that goes out by mail.
  std::string GetTxtFile_email() const;
  /// Mail address of the current row, "" where it is Null. Raises what the record set raises: 91
  /// before IniciaRs, 3021 without a row, 3265 in a list that does not show it.
  std::string sQMailDoc() const;

  // ---- One column of one employee

  /// The name; "" where it is Null or there is no such employee.
  std::string NombreEmpleado(std::string_view sEmple, ObjCn objCn = {}) const;
  /// The category; "" where it is Null or there is no such employee.
  std::string CategoriaEmpleado(std::string_view sEmple, ObjCn objCn = {}) const;

  // ---- The circular walk, by character codes
  //
  // Over the active employees: the next code behind `sEmple`, whether or not somebody bears that,
  // and the lowest one behind the last. `sEmple` itself where there is nobody.

  /// The same without the employees of the category `scatego`, and without those of none.
  std::string SiguienteEmpleadoCatego(std::string_view sEmple, std::string_view scatego,
                                      ObjCn objCn = {}) const;
  /// The employee who follows.
  std::string SiguienteEmpleado(std::string_view sEmple, ObjCn objCn = {}) const;

  // ---- One column of one employee, by whatever holds the code

  /// Commission in percent; 0 where it is Null or there is no such employee.
  double Get_Comision(const Variant& vId, ObjCn objCn = {}) const;
  /// The phase of work that is taken where none is given; "0" where it is Null or there is no such
  /// employee.
  std::string Get_fase_predeterminada(const Variant& vId, ObjCn objCn = {}) const;
  /// A text that a screen may propose as a password: the postcode followed by the code, zeros for
  /// a Null postcode. "" where there is no such employee.
  std::string Get_Auto_pas(const Variant& vId, ObjCn objCn = {}) const;
  /// Name and company with a blank between them, the one that is there where the other is Null;
  /// "no" where both are or there is no such employee.
  std::string Get_Nombre(const Variant& vId, ObjCn objCn = {}) const;
  /// Name and company with a blank between them; "No" where one of them, or the code, is Null,
  /// "Empleado" for any other code that nobody bears.
  std::string GetDescripcion(const Variant& vId, ObjCn objCn = {}) const;

  /// Puts the full path of the document `sDocPath` in its place.
  void GetDocPath(InOut<std::string> sDocPath) const;

 protected:
  void setDefaults(bool bDefVal) override;

 private:
  std::string nextOf(std::string_view sEmple, const Statement& among, ConnectionPtr& objCn) const;
};

}  // namespace tavelor
