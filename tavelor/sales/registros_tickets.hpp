// SPDX-License-Identifier: MIT
// Grouped results of sales, and their collection.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tavelor/frame/keyed_objects.hpp"
#include "tavelor/platform/export.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor {

class Component;

/// One group of a sum: what it is of, and its amounts in the shop's currency. Its values may be of
/// any kind, objects too, which are then shared.
class TAVELOR_API ClsRegTickets final : public Object {
 public:
  static constexpr std::string_view kTypeName = "ClsRegTickets";
  std::string typeName() const override { return std::string(kTypeName); }
  static const Component& component();

  Variant Suma;         ///< sum, or base of a tax
  Variant Importe;      ///< amount
  Variant Descripcion;  ///< description of the group
  Variant Codigo;       ///< code of the group: family, rate or payment method
};
/// A sum, shared.
using ClsRegTicketsPtr = std::shared_ptr<ClsRegTickets>;

/// Groups in the order in which they were added, some under a key. A group is found by its
/// position, from 1, or by its key, whose case does not count; see KeyedObjects for errors.
class TAVELOR_API CollectionTickets final
    : public KeyedCollection<CollectionTickets, ClsRegTickets> {
 public:
  static constexpr std::string_view kTypeName = "CollectionTickets";
  std::string typeName() const override { return std::string(kTypeName); }
  static const Component& component();

  /// Adds a group and gives it. It is found by `sKey`, unless that is empty; `Key` is taken and not
  /// kept, as a group has no place for it. Raises 457 for an `sKey` that is there: nothing is added
  /// then.
  ClsRegTicketsPtr Add(std::string_view Key, const Variant& Codigo, const Variant& Descripcion,
                       const Variant& Importe, const Variant& Suma, std::string_view sKey = {});
};
/// A collection of sums, shared.
using CollectionTicketsPtr = std::shared_ptr<CollectionTickets>;

}  // namespace tavelor
