// SPDX-License-Identifier: MIT
// ClsClientes: writes of one customer.
#include "tavelor/customers/clientes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor {

namespace {

// A flag in a statement is -1 or 0, whatever the words of the locale.
std::string_view flagNumber(bool flag) {
  return flag ? "-1" : "0";
}

std::string todayLiteral(int selector) {
  return DataSession().DateLiteral(selector, Apartment::current().clock().today());
}

}  // namespace

// Everything but the date stands between quotes: the discount is printed and read by the locale.
void ClsClientes::Insertar(const Alta& alta) const {
  if (alta.sLista->empty()) alta.sLista = "PRC";
  Statement statement(
      "INSERT INTO Clientes ( Codigo, Nombre, Razon_Social, NIF, Direccion, Codigo_Postal,"
      " Poblacion, Provincia, Telefono, Movil, E_Mail, E_Mail_doc, Activo, Descuento, Tarifa,"
      " Serie, Concepto, Tipo_Cliente, Lista, Fecha, ExternalId ) values ( '");
  statement << spliced(joined(alta.vId)) << "', '" << spliced(alta.sNombre) << "', '"
            << spliced(alta.sRazonSocial) << "', '" << spliced(alta.sNif) << "', '"
            << spliced(alta.sdir) << "', '" << spliced(alta.sCp) << "', '" << spliced(alta.sPob)
            << "', '" << spliced(alta.sProv) << "', '" << spliced(alta.stel) << "', '"
            << spliced(alta.sMov) << "', '" << spliced(alta.sEmail) << "', '"
            << spliced(alta.seMailDoc) << "', '" << spliced(flagNumber(alta.bActivo)) << "', '"
            << spliced(joined(alta.dDescuento)) << "', '" << spliced(alta.sTarifa) << "', '"
            << spliced(alta.sSerie) << "', '" << spliced(alta.sConcepto) << "', '"
            << spliced(alta.stpcli) << "', '" << spliced(*alta.sLista) << "', "
            << spliced(todayLiteral(info().selector)) << ", '" << spliced(alta.sExternalId)
            << "' )";
  write(statement, *alta.objCn);
}

void ClsClientes::Actualizar(const Alta& alta) const {
  Statement statement("UPDATE Clientes SET Nombre = '");
  statement << spliced(alta.sNombre) << "', Razon_Social = '" << spliced(alta.sRazonSocial)
            << "', NIF = '" << spliced(alta.sNif) << "', Direccion  = '" << spliced(alta.sdir)
            << "', Codigo_Postal = '" << spliced(alta.sCp) << "', Poblacion  = '"
            << spliced(alta.sPob) << "', Provincia = '" << spliced(alta.sProv) << "', Telefono= '"
            << spliced(alta.stel) << "', Movil = '" << spliced(alta.sMov) << "', E_Mail =  '"
            << spliced(alta.sEmail) << "', E_Mail_doc = '" << spliced(alta.seMailDoc)
            << "', Activo = '" << spliced(flagNumber(alta.bActivo)) << "', Descuento = '"
            << spliced(joined(alta.dDescuento)) << "', Tarifa = '" << spliced(alta.sTarifa)
            << "', Serie = '" << spliced(alta.sSerie) << "' WHERE(Codigo ='"
            << spliced(joined(alta.vId)) << "')";
  write(statement, *alta.objCn);
}

void ClsClientes::CambiarTarifa(const Variant& vId, std::string_view sTarifa,
                                ObjCn cnnActive) const {
  Statement statement("UPDATE Clientes SET Tarifa = '");
  statement << spliced(sTarifa) << "' WHERE(Codigo = '" << spliced(joined(vId)) << "')";
  write(statement, *cnnActive);
}

// A state that has no assignment leaves a statement that no engine takes.
void ClsClientes::CambiarEstadoCliente(const Variant& vId, double bModo, ObjCn cnnActive) const {
  Statement statement("UPDATE Clientes SET ");
  if (bModo == 0) {
    statement << "Activo = 0 ";
  } else if (bModo == 1 || bModo == -1) {
    statement << "Activo = " << spliced(joined(bModo))
              << "  ,Fecha_re = " << spliced(todayLiteral(info().selector));
  }
  statement << " WHERE (Codigo = '" << spliced(joined(vId)) << "')";
  write(statement, *cnnActive);
}

void ClsClientes::ActualizarExternalId(std::string_view sId, std::string_view sExtId,
                                       ObjCn cnnActive) const {
  Statement statement("UPDATE Clientes SET ExternalID = '");
  statement << spliced(sExtId) << "' WHERE ( Codigo =  '" << spliced(sId) << "')";
  write(statement, *cnnActive);
}

}  // namespace tavelor
