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
  statement << value(joined(alta.vId)) << "', '" << value(alta.sNombre) << "', '"
            << value(alta.sRazonSocial) << "', '" << value(alta.sNif) << "', '" << value(alta.sdir)
            << "', '" << value(alta.sCp) << "', '" << value(alta.sPob) << "', '"
            << value(alta.sProv) << "', '" << value(alta.stel) << "', '" << value(alta.sMov)
            << "', '" << value(alta.sEmail) << "', '" << value(alta.seMailDoc) << "', '"
            << value(flagNumber(alta.bActivo)) << "', '" << value(joined(alta.dDescuento)) << "', '"
            << value(alta.sTarifa) << "', '" << value(alta.sSerie) << "', '"
            << value(alta.sConcepto) << "', '" << value(alta.stpcli) << "', '"
            << value(*alta.sLista) << "', " << value(todayLiteral(info().selector)) << ", '"
            << value(alta.sExternalId) << "' )";
  write(statement, *alta.objCn);
}

void ClsClientes::Actualizar(const Alta& alta) const {
  Statement statement("UPDATE Clientes SET Nombre = '");
  statement << value(alta.sNombre) << "', Razon_Social = '" << value(alta.sRazonSocial)
            << "', NIF = '" << value(alta.sNif) << "', Direccion  = '" << value(alta.sdir)
            << "', Codigo_Postal = '" << value(alta.sCp) << "', Poblacion  = '" << value(alta.sPob)
            << "', Provincia = '" << value(alta.sProv) << "', Telefono= '" << value(alta.stel)
            << "', Movil = '" << value(alta.sMov) << "', E_Mail =  '" << value(alta.sEmail)
            << "', E_Mail_doc = '" << value(alta.seMailDoc) << "', Activo = '"
            << value(flagNumber(alta.bActivo)) << "', Descuento = '"
            << value(joined(alta.dDescuento)) << "', Tarifa = '" << value(alta.sTarifa)
            << "', Serie = '" << value(alta.sSerie) << "' WHERE(Codigo ='"
            << value(joined(alta.vId)) << "')";
  write(statement, *alta.objCn);
}

void ClsClientes::CambiarTarifa(const Variant& vId, std::string_view sTarifa,
                                ObjCn cnnActive) const {
  Statement statement("UPDATE Clientes SET Tarifa = '");
  statement << value(sTarifa) << "' WHERE(Codigo = '" << value(joined(vId)) << "')";
  write(statement, *cnnActive);
}

// A state that has no assignment leaves a statement that no engine takes.
void ClsClientes::CambiarEstadoCliente(const Variant& vId, double bModo, ObjCn cnnActive) const {
  Statement statement("UPDATE Clientes SET ");
  if (bModo == 0) {
    statement << "Activo = 0 ";
  } else if (bModo == 1 || bModo == -1) {
    statement << "Activo = " << value(joined(bModo))
              << "  ,Fecha_re = " << value(todayLiteral(info().selector));
  }
  statement << " WHERE (Codigo = '" << value(joined(vId)) << "')";
  write(statement, *cnnActive);
}

void ClsClientes::ActualizarExternalId(std::string_view sId, std::string_view sExtId,
                                       ObjCn cnnActive) const {
  Statement statement("UPDATE Clientes SET ExternalID = '");
  statement << value(sExtId) << "' WHERE ( Codigo =  '" << value(sId) << "')";
  write(statement, *cnnActive);
}

}  // namespace tavelor
