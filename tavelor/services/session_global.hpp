// SPDX-License-Identifier: MIT
// The values of the session: the current period, the customers' series.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/platform/export.hpp"
#include "tavelor/platform/inout.hpp"

namespace tavelor {

class RegistryTree;

/// One object per apartment. The values live in the installation's registry, so they outlive the
/// program. A value that was never set is the empty text. Errors: those of RegistryTree.
class TAVELOR_API SessionGlobal {
 public:
  /// Over that tree, which must outlive it.
  explicit SessionGlobal(RegistryTree& tree) : tree_(tree) {}

  /// One named value of a key.
  std::string GetNamedValue(std::string_view key, std::string_view name);
  /// Sets one named value of a key.
  void SetNamedValue(std::string_view key, std::string_view name, std::string_view value);

  /// The value of the key itself.
  void SetValue(std::string_view key, std::string_view value);
  /// Gives it back and leaves it in `value` too.
  std::string GetValue(std::string_view key, InOut<std::string> value = {});

 private:
  RegistryTree& tree_;
};

}  // namespace tavelor
