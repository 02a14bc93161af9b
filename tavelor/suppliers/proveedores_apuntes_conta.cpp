// SPDX-License-Identifier: MIT
// ClsProveedoresApuntesConta, the running accounts of suppliers.
#include "tavelor/suppliers/proveedores_apuntes_conta.hpp"

#include <array>

#include "tavelor/companions/account_slots.hpp"

namespace tavelor {

// Table Proveedores_Apuntes_Contables: Debe and Haber of the supplier Codigo, with the balance
// Saldo after them.

namespace {

constexpr std::string_view kTodos =
    "SELECT   Fecha, Concepto, Debe_Haber as Tipo , Debe, Haber, Saldo, Estado,"
    " Documento_E as Documento, Id, Serie, Codigo FROM Proveedores_Apuntes_Contables";

constexpr std::array kModes = {
    Mode{"seleccion", kTodos, " WHERE Codigo =  '{id}'"},
    Mode{"ninguno", kTodos, " Where (Codigo = '0')"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Proveedores_Apuntes_Contables",
    .table = "Proveedores_Apuntes_Contables",
    .codeColumn = "Id",
    .modes = kModes,
    .update = UpdateForm::kAllRows,
    .remove = DeleteForm::kMarks,
    .clearsDataMembers = true,
};

// The two cancel each other, and nothing moves the entries of the same date: programs above count
// on the balances that a deletion leaves, and run UpdateTotal when they want others. It is not to
// be made like the customers'.
constexpr std::array kAfterDeletion = {
    BalanceRepair{"+", BalanceRepair::Entries::kLaterDates},
    BalanceRepair{"-", BalanceRepair::Entries::kLaterDates},
};

}  // namespace

ClsProveedoresApuntesConta::ClsProveedoresApuntesConta() : RunningAccount(kInfo, kAfterDeletion) {}

const Component& ClsProveedoresApuntesConta::component() {
  using C = ClsProveedoresApuntesConta;
  static const Component table(
      "ClsProveedoresApuntesConta", "{3E8F1B64-97C2-4D0A-B5E3-0C6A29D481F3}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withAccountTail({
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
          member("Eliminar", &C::Eliminar, "iEst, vDoc, [objCn]"),
          member("Insertar", &C::Insertar, entryParameters<Apunte>()),
          member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          member("Saldo", &C::Saldo, "sCod, dtFecha, [objCn]"),
          frameMember("SeguridadPermiso"),
      }));
  return table;
}

}  // namespace tavelor
