// SPDX-License-Identifier: MIT
// A list of settings under one key of the registry.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/platform/export.hpp"

namespace tavelor {

class Apartment;
class Variant;

/// Made anew for each use. Key() comes first: before it the other two raise 91.
class TAVELOR_API ListConfig {
 public:
  /// Of the calling thread's apartment; raises 91 when there is none.
  ListConfig();

  /// Binds the list to a key: "SOFTWARE\Merivan\Tavelor\1.0\Configuracion\registros\Bancos\todos\".
  void Key(std::string_view path);
  /// The key that it is bound to, "" at first.
  const std::string& Key() const { return key_; }

  /// The value, or `fallback` where the value or its key is missing. `name` is taken as text;
  /// raises 94 for Null.
  std::string GetValue(const Variant& name, std::string_view fallback = {});
  /// Writes the value and makes the key. A value that is there already is not written again.
  void SetValue(const Variant& name, std::string_view value);

 private:
  void requireKey() const;

  Apartment& apartment_;
  std::string key_;
};

}  // namespace tavelor
