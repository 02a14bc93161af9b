// SPDX-License-Identifier: MIT
// What the collections of the library hold: objects in order, some of them under a key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor {

/// An item is found by its position, from 1, or by its key, whose case does not count. A number is
/// a position (1.5 is 2), a text is a key. Errors: 9 for a position that is not there, 5 for a key,
/// 94 for Null, 13 for what is neither number nor text.
class TAVELOR_API KeyedObjects {
 public:
  /// Adds at the end; "" is no key. Raises 457 for a key that is there: nothing is added then.
  void add(ObjectPtr item, std::string_view key = {});
  /// By position or key.
  const ObjectPtr& item(const Variant& which) const { return entries_[find(which)].object; }
  /// Number of items.
  std::int32_t count() const { return static_cast<std::int32_t>(entries_.size()); }
  /// The items behind it move up, which takes a time that grows with their number.
  void remove(const Variant& which);

 private:
  struct Entry {
    std::string key;  // folded; "" for none
    ObjectPtr object;
  };

  std::size_t find(const Variant& which) const;

  std::vector<Entry> entries_;
  std::map<std::string, std::size_t> places_;  // by the folded key
};

/// What a collection class has beside Add: its `Element`s are found, counted and removed as
/// KeyedObjects says. `Collection` is the class itself.
template <typename Collection, typename Element>
class TAVELOR_API KeyedCollection : public Object {
 public:
  /// An item by its position, from 1, or by its key.
  std::shared_ptr<Element> Item(const Variant& vntIndexKey) const {
    return std::static_pointer_cast<Element>(items_.item(vntIndexKey));
  }
  /// Number of items.
  std::int32_t Count() const { return items_.count(); }
  /// Takes an item out, by its position or key.
  void Remove(const Variant& vntIndexKey) { items_.remove(vntIndexKey); }
  /// The same items in a collection of its own, which stays as it is while this one changes.
  std::shared_ptr<Collection> NewEnum() const {
    return std::make_shared<Collection>(static_cast<const Collection&>(*this));
  }

 protected:
  /// What the collection holds, for its Add.
  KeyedObjects items_;
};

}  // namespace tavelor
