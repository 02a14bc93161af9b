// SPDX-License-Identifier: MIT
// Requests to the stock, and their collection.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tavelor/frame/keyed_objects.hpp"
#include "tavelor/platform/export.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor {

class Component;

/// How much of an article is wanted from which warehouse and lot. Its values may be of any kind,
/// objects too, which are then shared.
class TAVELOR_API ClsRegistros final : public Object {
 public:
  static constexpr std::string_view kTypeName = "ClsRegistros";
  std::string typeName() const override { return std::string(kTypeName); }
  static const Component& component();

  std::string Key;   ///< key that the caller gave it; the collection does not look at it
  Variant Precio;    ///< price
  Variant Almacen;   ///< warehouse
  Variant Lote;      ///< lot
  Variant Recibido;  ///< quantity received
  Variant Cantidad;  ///< quantity wanted
  Variant Codigo;    ///< article
};
/// A request, shared.
using ClsRegistrosPtr = std::shared_ptr<ClsRegistros>;

/// Requests in the order in which they were added, some under a key. An item is found by its
/// position, from 1, or by its key, whose case does not count; see KeyedObjects for errors.
class TAVELOR_API CollectionRegistros final
    : public KeyedCollection<CollectionRegistros, ClsRegistros> {
 public:
  static constexpr std::string_view kTypeName = "CollectionRegistros";
  std::string typeName() const override { return std::string(kTypeName); }
  static const Component& component();

  /// Adds a request and gives it. It is found by `sKey`, unless that is empty; `Key` is only
  /// written into it. Raises 457 for an `sKey` that is there: nothing is added then.
  ClsRegistrosPtr Add(std::string_view Key, const Variant& Codigo, const Variant& Cantidad,
                      const Variant& Recibido, const Variant& Lote, const Variant& Almacen,
                      const Variant& Precio, std::string_view sKey = {});
};
/// A collection of requests, shared.
using CollectionRegistrosPtr = std::shared_ptr<CollectionRegistros>;

}  // namespace tavelor
