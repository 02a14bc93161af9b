// SPDX-License-Identifier: MIT
// CollectionRegistros and ClsRegistros.
#include "tavelor/articles/registros.hpp"

#include "tavelor/frame/component.hpp"

namespace tavelor {

ClsRegistrosPtr CollectionRegistros::Add(std::string_view Key, const Variant& Codigo,
                                         const Variant& Cantidad, const Variant& Recibido,
                                         const Variant& Lote, const Variant& Almacen,
                                         const Variant& Precio, std::string_view sKey) {
  auto item = std::make_shared<ClsRegistros>();
  item->Key = Key;
  item->Codigo = Codigo;
  item->Cantidad = Cantidad;
  item->Recibido = Recibido;
  item->Lote = Lote;
  item->Almacen = Almacen;
  item->Precio = Precio;
  items_.add(item, sKey);
  return item;
}

const Component& ClsRegistros::component() {
  using C = ClsRegistros;
  static const Component table(kTypeName, "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B60B}", {},
                               []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
                               {
                                   variable("Key", &C::Key),
                                   variable("Precio", &C::Precio),
                                   variable("Almacen", &C::Almacen),
                                   variable("Lote", &C::Lote),
                                   variable("Recibido", &C::Recibido),
                                   variable("Cantidad", &C::Cantidad),
                                   variable("Codigo", &C::Codigo),
                               });
  return table;
}

const Component& CollectionRegistros::component() {
  using C = CollectionRegistros;
  static const Component table(
      kTypeName, "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B60C}", {},
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      {
          member("Add", &C::Add, "Key, Codigo, Cantidad, Recibido, Lote, Almacen, Precio, [sKey]"),
          property("Item", &C::Item, "vntIndexKey"),
          property("Count", &C::Count),
          member("Remove", &C::Remove, "vntIndexKey"),
          property("NewEnum", &C::NewEnum),
      });
  return table;
}

}  // namespace tavelor
