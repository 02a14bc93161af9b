// SPDX-License-Identifier: MIT
// A tree of keys with named text values, kept in a file of the installation.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"

namespace tavelor {

class Installation;
namespace engine {
class Shared;
}

/// The registry of an installation: keys such as "SOFTWARE\Merivan\Tavelor\1.0\Seguridad\", and
/// under each key values by name. One object is one connection, used by one thread; all objects
/// over one file see at once what any of them, in any process, has written.
///
/// Paths: names joined by backslashes; one at the end, and doubled or leading ones, do not matter.
/// Keys and names do not care about case (all letters, not only ASCII) and keep the writing of
/// their first use. The empty name is the value of the key itself. Values are kept byte by byte.
///
/// A write is there or not there after a crash of the program, never in part. With the setting
/// "synchronous" off a power cut may lose the last writes.
///
/// Errors: those of the engine for a file or server that is missing, damaged, locked for too long
/// or on a full disk; 5 for an empty path.
class TAVELOR_API RegistryTree {
 public:
  /// How the file is opened.
  struct Options {
    bool create = false;  ///< make the file when it is not there; else that is an error
    bool synchronous = true;
    int busyTimeoutMs = 5000;
  };
  /// Opens the file.
  explicit RegistryTree(const std::string& file, Options options);
  /// The same by the usual options.
  explicit RegistryTree(const std::string& file) : RegistryTree(file, Options{}) {}
  /// That of an installation, wherever it keeps it, beside the sessions that share `shared`. Made
  /// when it is not there and `create` is set.
  explicit RegistryTree(const Installation& installation,
                        std::shared_ptr<engine::Shared>* shared = nullptr, bool create = false);
  ~RegistryTree();
  RegistryTree(const RegistryTree&) = delete;
  RegistryTree& operator=(const RegistryTree&) = delete;

  /// A value, or nothing where it was never set.
  std::optional<std::string> get(std::string_view key, std::string_view name);
  /// Whether a value was set.
  bool has(std::string_view key, std::string_view name);
  /// Makes the key where it is missing. A value that is there already is not written again.
  void set(std::string_view key, std::string_view name, std::string_view value);
  /// True if there was such a value.
  bool remove(std::string_view key, std::string_view name);
  /// Removes a key with all below it; true if there was such a key.
  bool removeKey(std::string_view key);

  /// Names of the keys directly below `key` ("" is the root), in the order of their folded names.
  std::vector<std::string> keys(std::string_view key);
  /// One value of a key.
  struct NamedValue {
    std::string name;
    std::string value;
    friend bool operator==(const NamedValue&, const NamedValue&) = default;
  };
  /// All values of a key, in the order of their folded names.
  std::vector<NamedValue> values(std::string_view key);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tavelor
