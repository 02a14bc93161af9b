// SPDX-License-Identifier: MIT
// The customer's data as typed at the till.
#pragma once

#include <string>
#include <vector>

#include "tavelor/platform/export.hpp"
#include "tavelor/sales/ticket_notes.hpp"

namespace tavelor {

class Component;

/// Headers of tickets: who the customer is, where the ticket says so. Values are joined into
/// statements without escaping: a quote in a name raises the database's syntax error.
class TAVELOR_API ClsTicketsCabecera final : public TicketNotes {
 public:
  ClsTicketsCabecera();
  std::string typeName() const override { return "ClsTicketsCabecera"; }
  static const Component& component();

  /// Parameters of Insertar, in their order.
  struct Alta {
    Variant vId = {};   ///< key of the row
    Variant vNum = {};  ///< number of the ticket
    std::string sNif = {};
    std::string sNombre = {};
    std::string sEmpresa = {};
    std::string sDireccion = {};
    std::string sCp = {};
    std::string sPoblacion = {};
    std::string sProvincia = {};
    ObjCn objCn = {};
  };
  /// Writes a header. The telephone is not among its columns: only AddNew and Update fill it.
  void Insertar(const Alta& alta) const;

  /// Parameters of Obtener, in their order.
  struct Datos {
    Variant vId = {};  ///< number of the ticket
    std::string sNif = {};
    std::string sNombre = {};
    std::string sEmpresa = {};
    std::string sDireccion = {};
    std::string sCp = {};
    std::string sPoblacion = {};
    std::string sProvincia = {};
    ObjCn objCn = {};
  };
  /// Reads the first header of a ticket. What is null, and all of a header that is not there, stays
  /// as it came.
  void Obtener(Datos& datos) const;

  /// The current row as lines of a receipt: name, company, fiscal number, address, postal code and
  /// town, province, telephone, each only where there is one. A postal code without a town is left
  /// out. Raises 3021 without a current row.
  std::vector<Variant> GetCabecera() const;

  /// Parameters of GetDatos, in their order.
  struct Busqueda {
    std::string idTel = {};  ///< telephone, looked for where `index` is 0
    std::string sNif = {};
    std::string sNombre = {};
    std::string sEmpresa = {};  ///< looked for where `index` is 1
    std::string sDireccion = {};
    std::string sCp = {};
    std::string sPoblacion = {};
    std::string sProvincia = {};
    bool bHistor = false;    ///< in history, not among the live headers
    std::int16_t index = 0;  ///< any other than 0 and 1 takes the last header of all
    ObjCn objCn = {};
  };
  /// Finds a customer's data to fill a new header: the last row that the database gives. What is
  /// null there stays as it came. Where nothing is found `sNombre` becomes "no".
  void GetDatos(Busqueda& busqueda) const;
};

}  // namespace tavelor
