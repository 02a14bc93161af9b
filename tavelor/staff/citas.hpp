// SPDX-License-Identifier: MIT
// The agenda of appointments.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Appointments: who comes on which day at what time, to which box, to whom of the staff. Nobody
/// looks whether a box or an employee is taken at that time, or whether the day has passed.
///
/// Days and times are Dates, or texts that are read by the locale: 13 for one that is none, 94 for
/// Null. A day is stored without a time of the day, so that it is found by its day.
///
/// The frame's AddNew writes the next key into the first field, which is the time: rows are added
/// by Insertar.
class TAVELOR_API ClsCitas final : public OpensByWord {
 public:
  ClsCitas();
  std::string typeName() const override { return "ClsCitas"; }
  static const Component& component();

  using OpensByWord::NuevoCodigo;
  /// The same: all appointments are counted in one series, whatever the word.
  Variant NuevoCodigo(std::string_view sSerie, ObjCn objCn = {}) const;

  /// Parameters of the two members below, in their order; `vIdOrd` is of the second alone.
  struct Cita {
    Variant dtFecha = {};       ///< the day
    Variant dtHora = {};        ///< "0:00:00", or Empty, is the present time
    std::string sCod = {};      ///< the customer; nobody looks whether there is one
    std::string sCliente = {};  ///< its name
    std::string sDescripcion = {};
    std::string sCod_e = {};     ///< the employee, as `sCod`
    std::string sEmpleado = {};  ///< its name
    std::string sBox = {};
    std::string sTipo = {};
    Variant vIdOrd = {};  ///< number of the order that the appointment comes from
    ObjCn objCn = {};
  };
  /// Writes an appointment that is in no state yet. A single quote in a name, the description, the
  /// box or the type becomes ´; one in a code is a syntax error. Where the main database is a file
  /// that is not there any more, nothing is written and nothing is raised. Two sessions that insert
  /// at once may take the same key: the second INSERT is refused by it.
  void Insertar(const Cita& cita) const;
  /// The same for an order, in the place of all appointments that it has. They are cleared first:
  /// after an error behind that they are gone. Whoever wants all or nothing passes a connection
  /// with a transaction. The new appointment may get the key of a cleared one.
  void Insertar_cita_orden(const Cita& cita) const;

  /// Asks the user for a day, and deletes the appointments between the first of January 2000 and
  /// that day, both included: those before 2000 stay, and of a day before it those from the day up
  /// to that first of January go. One statement an appointment: after an error those before it are
  /// deleted. Raises 13 for an answer that is no date, an empty one too, with nothing deleted.
  void descargar_registros() const;
  /// Keys of the appointments between two days, both included, whichever is the earlier.
  std::vector<Variant> ObtenerCol(const Variant& dtFchIni, const Variant& dtFchFin,
                                  ObjCn objCn = {}) const;
  /// Deletes one appointment.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;

  // ---- Marks: each takes the place of the one before, whichever that was

  /// The customer has come: "Presente".
  void Upd_llego(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Cancelled: "Anula".
  void Upd_Anula(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Over: "Fin".
  void Upd_Fin(const Variant& vId, ObjCn cnnActive = {}) const;

 protected:
  Statement modeStatement(std::string& word, const Variant& id) const override;

 private:
  void insert(const Cita& cita, bool ofOrder) const;
  void mark(Statement::Constant state, const Variant& vId, ObjCn cnnActive) const;
};

}  // namespace tavelor
