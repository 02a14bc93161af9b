// SPDX-License-Identifier: MIT
// Tests of the registry tree, as the permissions use them.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/platform/export.hpp"

namespace tavelor {

class RegistryTree;

/// One object per apartment. Errors: those of RegistryTree.
class TAVELOR_API RegistryStore {
 public:
  /// Over that tree, which must outlive it.
  explicit RegistryStore(RegistryTree& tree) : tree_(tree) {}

  /// True if that value is set under that key, whatever it holds, an empty text included.
  bool TestValue(std::string_view key, std::string_view name);
  /// The base under which a caller appends a key of its own: `path` with one backslash at its end.
  std::string BaseKey(std::string_view path) const;

 private:
  RegistryTree& tree_;
};

}  // namespace tavelor
