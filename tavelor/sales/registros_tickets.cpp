// SPDX-License-Identifier: MIT
// CollectionTickets and ClsRegTickets.
#include "tavelor/sales/registros_tickets.hpp"

#include "tavelor/frame/component.hpp"

namespace tavelor {

ClsRegTicketsPtr CollectionTickets::Add(std::string_view /*Key*/, const Variant& Codigo,
                                        const Variant& Descripcion, const Variant& Importe,
                                        const Variant& Suma, std::string_view sKey) {
  auto item = std::make_shared<ClsRegTickets>();
  item->Codigo = Codigo;
  item->Descripcion = Descripcion;
  item->Importe = Importe;
  item->Suma = Suma;
  items_.add(item, sKey);
  return item;
}

const Component& ClsRegTickets::component() {
  using C = ClsRegTickets;
  static const Component table(kTypeName, "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B412}", {},
                               []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
                               {
                                   variable("Suma", &C::Suma),
                                   variable("Importe", &C::Importe),
                                   variable("Descripcion", &C::Descripcion),
                                   variable("Codigo", &C::Codigo),
                               });
  return table;
}

const Component& CollectionTickets::component() {
  using C = CollectionTickets;
  static const Component table(
      kTypeName, "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B413}", {},
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      {
          member("Add", &C::Add, "Key, Codigo, Descripcion, Importe, Suma, [sKey]"),
          property("Item", &C::Item, "vntIndexKey"),
          property("Count", &C::Count),
          member("Remove", &C::Remove, "vntIndexKey"),
          property("NewEnum", &C::NewEnum),
      });
  return table;
}

}  // namespace tavelor
