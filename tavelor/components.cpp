// SPDX-License-Identifier: MIT
// The registry of public classes: one line each.
#include "tavelor/components.hpp"

#include <fmt/format.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/articulos_almacenes.hpp"
#include "tavelor/articles/articulos_cbarras.hpp"
#include "tavelor/articles/articulos_comentarios.hpp"
#include "tavelor/articles/articulos_componentes.hpp"
#include "tavelor/articles/articulos_lotes.hpp"
#include "tavelor/articles/articulos_mov_almacen.hpp"
#include "tavelor/articles/articulos_precios.hpp"
#include "tavelor/articles/articulos_precios_ventas.hpp"
#include "tavelor/articles/registros.hpp"
#include "tavelor/closing/cierres.hpp"
#include "tavelor/customers/clientes.hpp"
#include "tavelor/customers/clientes_apuntes_conta.hpp"
#include "tavelor/customers/clientes_centros.hpp"
#include "tavelor/customers/clientes_colaboradores.hpp"
#include "tavelor/customers/clientes_comentarios.hpp"
#include "tavelor/customers/clientes_direcciones.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/recordset_components.hpp"
#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/reference/almacenes.hpp"
#include "tavelor/reference/bancos.hpp"
#include "tavelor/reference/cajas.hpp"
#include "tavelor/reference/contactos.hpp"
#include "tavelor/reference/divisas.hpp"
#include "tavelor/reference/emisores.hpp"
#include "tavelor/reference/familias.hpp"
#include "tavelor/reference/formas_pago.hpp"
#include "tavelor/reference/impuestos.hpp"
#include "tavelor/reference/incidencias.hpp"
#include "tavelor/reference/rutas.hpp"
#include "tavelor/reference/secciones.hpp"
#include "tavelor/reference/tipos_cliente.hpp"
#include "tavelor/reference/tipos_documento.hpp"
#include "tavelor/reference/tipos_factura.hpp"
#include "tavelor/reference/transportistas.hpp"
#include "tavelor/sales/registros_tickets.hpp"
#include "tavelor/sales/tickets.hpp"
#include "tavelor/sales/tickets_cabecera.hpp"
#include "tavelor/sales/tickets_comentarios.hpp"
#include "tavelor/sales/tickets_lineas.hpp"
#include "tavelor/staff/citas.hpp"
#include "tavelor/staff/empleados.hpp"
#include "tavelor/staff/empleados_puntos.hpp"
#include "tavelor/suppliers/proveedores.hpp"
#include "tavelor/suppliers/proveedores_apuntes_conta.hpp"
#include "tavelor/suppliers/proveedores_comentarios.hpp"

namespace tavelor {

const std::vector<const Component*>& components() {
  // clang-format off: one line a class
  static const std::vector<const Component*> all = {
      // reference
      &ClsBancos::component(),
      &ClsImpuestos::component(),
      &ClsDivisas::component(),
      &ClsFormasPago::component(),
      &ClsTiposDocumento::component(),
      &ClsTiposFactura::component(),
      &Emisores::component(),
      &ClsAlmacenes::component(),
      &ClsCajas::component(),
      &ClsTiposCliente::component(),
      &ClsSecciones::component(),
      &clsFamilias::component(),
      &clsIncidencias::component(),
      &Rutas::component(),
      &ClsTransportistas::component(),
      &ClsContactos::component(),
      // numbering
      &clsNumeradores::component(),
      // articles
      &clsArticulos::component(),
      &ClsArticulosAlmacenes::component(),
      &ClsArticulosLotes::component(),
      &ClsArticulosMovAlmacen::component(),
      &ClsArticulosPrecios::component(),
      &ClsArticulosPreciosVentas::component(),
      &ClsArticulosCbarras::component(),
      &ClsArticulosComponentes::component(),
      &ClsArticulosComentarios::component(),
      &CollectionRegistros::component(),
      &ClsRegistros::component(),
      // customers
      &ClsClientesDirecciones::component(),
      &ClsClientesCentros::component(),
      &ClsClientesColaboradores::component(),
      &ClsClientesComentarios::component(),
      &ClsClientesApuntesConta::component(),
      // suppliers
      &ClsProveedores::component(),
      &ClsProveedoresApuntesConta::component(),
      &ClsProveedoresComentarios::component(),
      // sales
      &ClsTickets::component(),
      &ClsTicketsCabecera::component(),
      &ClsTicketsComentarios::component(),
      &ClsTicketsLineas::component(),
      &CollectionTickets::component(),
      &ClsRegTickets::component(),
      // closing
      &ClsCierres::component(),
      // customers
      &ClsClientes::component(),
      // staff
      &ClsEmpleados::component(),
      &ClsEmpleadosPuntos::component(),
      &ClsCitas::component(),
  };
  // clang-format on
  return all;
}

const Component& component(std::string_view nameOrClassId) {
  std::string_view wanted = nameOrClassId;
  constexpr std::string_view kLibrary = "Tavelor.";
  if (text::equalsIgnoreCase(text::left(wanted, kLibrary.size()), kLibrary)) {
    wanted.remove_prefix(kLibrary.size());
  }
  std::vector<std::string> names;
  for (const auto* group : {&components(), &recordsetComponents()}) {
    for (const Component* candidate : *group) {
      if (text::equalsIgnoreCase(candidate->name(), wanted) ||
          text::equalsIgnoreCase(candidate->classId(), wanted)) {
        return *candidate;
      }
      names.push_back(candidate->name());
    }
  }
  const std::string near = text::nearest(wanted, names);
  raise(errors::kMemberNotFound, "Tavelor",
        near.empty() ? fmt::format("There is no class {}", nameOrClassId)
                     : fmt::format("There is no class {}; did you mean {}?", nameOrClassId, near));
}

}  // namespace tavelor
