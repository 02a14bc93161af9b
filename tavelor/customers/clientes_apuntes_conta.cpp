// SPDX-License-Identifier: MIT
// ClsClientesApuntesConta, the running accounts of customers.
#include "tavelor/customers/clientes_apuntes_conta.hpp"

#include <array>

#include "tavelor/companions/account_slots.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Clientes_Apuntes_Contables: Debe and Haber of the customer Codigo, with the balance Saldo
// after them.

namespace {

constexpr std::string_view kTodos =
    "SELECT   Fecha, Concepto, Debe_Haber as Tipo , Debe, Haber, Saldo, Estado,"
    " Documento_E as Documento, Id, Serie, Codigo FROM Clientes_Apuntes_Contables";

constexpr std::array kModes = {
    Mode{"seleccion", kTodos, " WHERE Codigo =  '{id}'"},
    Mode{"ninguno", kTodos, " Where (Codigo = '0')"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Clientes_Apuntes_Contables",
    .table = "Clientes_Apuntes_Contables",
    .codeColumn = "Id",
    .modes = kModes,
    .update = UpdateForm::kAllRows,
    .remove = DeleteForm::kMarks,
    .clearsDataMembers = true,
};

constexpr std::array kAfterDeletion = {
    BalanceRepair{"-", BalanceRepair::Entries::kSameDate},
    BalanceRepair{"-", BalanceRepair::Entries::kLaterDates},
};

const Locale& locale() {
  return Apartment::current().locale();
}

}  // namespace

ClsClientesApuntesConta::ClsClientesApuntesConta() : RunningAccount(kInfo, kAfterDeletion) {}

void ClsClientesApuntesConta::DeleteToDate(const Variant& vId, const Variant& dtFecha,
                                           ObjCn cnnActive) const {
  const std::string date = dateText(dtFecha);
  Statement statement("DELETE  FROM Clientes_Apuntes_Contables WHERE ((Fecha <= ");
  statement << spliced(date) << ") AND (Codigo = '" << spliced(joined(vId)) << "'))";
  write(statement, *cnnActive);
}

// Amounts stand between quotes here, as the locale prints them. The later balances move by the
// whole new movement and not by its difference with the old one: that is what programs above count
// on, which run UpdateTotal behind it.
void ClsClientesApuntesConta::Modificarnovale(const Correccion& correccion) const {
  const Correccion& c = correccion;
  const double id = GetId(*c.iEstado, c.vDoc_E, *c.objCn);
  const double movement = c.dHaber - c.dDebe;
  const double balance = movement + Saldo(c.sCodigo, c.dtFecha, *c.objCn);

  Statement entry("UPDATE Clientes_Apuntes_Contables SET Saldo =  '");
  entry << spliced(joined(balance)) << "' , Debe = '" << spliced(joined(c.dDebe)) << "', Haber = '"
        << spliced(joined(c.dHaber)) << "' WHERE ((Estado = " << spliced(std::to_string(*c.iEstado))
        << " ) AND (Documento_E = " << spliced(joined(c.vDoc_E)) << " ));";
  write(entry, *c.objCn);

  Statement later("UPDATE Clientes_Apuntes_Contables SET Saldo = Saldo + '");
  later << spliced(joined(movement)) << "' WHERE ((Fecha >= #"
        << spliced(format(c.dtFecha, "MM/DD/YYYY", locale())) << "# ) AND (Codigo='"
        << spliced(c.sCodigo) << "') And (ID > " << spliced(joined(id)) << " ));";
  write(later, *c.objCn);
}

double ClsClientesApuntesConta::Saldo_actual(std::string_view sCod, ObjCn objCn) const {
  Statement condition("(Codigo='");
  condition << spliced(sCod) << "')";
  return balance(condition, *objCn);
}

double ClsClientesApuntesConta::GetId(std::int16_t iEst, const Variant& vDoc, ObjCn objCn) const {
  Statement statement("SELECT  Id From Clientes_Apuntes_Contables WHERE ((Estado = ");
  statement << spliced(std::to_string(iEst)) << " ) AND (Documento_E = " << spliced(joined(vDoc))
            << " ));";
  return asNumber(read(statement, *objCn)->Field("Id").Value());
}

const Component& ClsClientesApuntesConta::component() {
  using C = ClsClientesApuntesConta;
  static const Component table(
      "ClsClientesApuntesConta", "{A4D2E7C1-5B38-4F06-8C9D-7E1F60B3D506}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withAccountTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
          member("DeleteToDate", &C::DeleteToDate, "vId, dtFecha, [cnnActive]"),
          member("Eliminar", &C::Eliminar, "iEst, vDoc, [objCn]"),
          member("Modificarnovale", &C::Modificarnovale, entryParameters<Correccion>()),
          member("Insertar", &C::Insertar, entryParameters<Apunte>()),
          member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          member("Saldo", &C::Saldo, "sCod, dtFecha, [objCn]"),
          member("Saldo_actual", &C::Saldo_actual, "sCod, [objCn]"),
          member("GetId", &C::GetId, "iEst, vDoc, [objCn]"),
          frameMember("SeguridadPermiso"),
      }));
  return table;
}

}  // namespace tavelor
