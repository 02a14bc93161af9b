// SPDX-License-Identifier: MIT
// The registry as two tables of a database file of its own.
//
// A value is found by one look-up, whatever the depth of its key: the folded path is the key of the
// row. The tree is in the column `parent`, which only the lists of keys and the removals read.
#include "tavelor/services/registry_tree.hpp"

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/value.hpp"
#include "tavelor/services/engines.hpp"
#include "tavelor/services/installation.hpp"

namespace tavelor {

using engine::ColumnType;
using engine::Prepared;
using engine::RowStore;
using engine::Value;

namespace {

constexpr std::string_view kSource = "Registry";
constexpr std::size_t kLongestName = 4096;

constexpr std::string_view kTables =
    "CREATE TABLE registry_keys (path MEMO NOT NULL, parent MEMO NOT NULL, name MEMO NOT NULL,"
    " CONSTRAINT PK_registry_keys PRIMARY KEY (path));"
    "CREATE INDEX registry_parents ON registry_keys (parent, path);"
    "CREATE TABLE registry_values (path MEMO NOT NULL, folded MEMO NOT NULL, name MEMO NOT NULL,"
    " value MEMO NOT NULL, CONSTRAINT PK_registry_values PRIMARY KEY (path, folded));";
constexpr std::string_view kLastTable = "registry_values";

constexpr std::string_view kGet = "SELECT value FROM registry_values WHERE path=? AND folded=?";
constexpr std::string_view kSet =
    "INSERT INTO registry_values (path, folded, name, value) VALUES (?, ?, ?, ?) "
    "ON CONFLICT (path, folded) DO UPDATE SET value=excluded.value";
constexpr std::string_view kAddKey =
    "INSERT INTO registry_keys (path, parent, name) VALUES (?, ?, ?) ON CONFLICT DO NOTHING";
constexpr std::string_view kRemove = "DELETE FROM registry_values WHERE path=? AND folded=?";
constexpr std::string_view kKeys = "SELECT name FROM registry_keys WHERE parent=? ORDER BY path";
constexpr std::string_view kValues =
    "SELECT name, value FROM registry_values WHERE path=? ORDER BY folded";
// All below a key lies between its path with a backslash and that with the character after it.
constexpr std::string_view kRemoveKeys =
    "DELETE FROM registry_keys WHERE path=?1 OR (path>?1||'\\' AND path<?1||']')";
constexpr std::string_view kRemoveValues =
    "DELETE FROM registry_values WHERE path=?1 OR (path>?1||'\\' AND path<?1||']')";

/// A bound text without an address would be Null.
Value textValue(std::string_view text) {
  return Value::ofText(text.empty() ? "" : text);
}

/// A path with one backslash between its names and none around.
std::string normalPath(std::string_view key) {
  std::string path;
  path.reserve(key.size());
  for (const char c : key) {
    if (c != '\\' || (!path.empty() && path.back() != '\\')) path.push_back(c);
  }
  if (path.ends_with('\\')) path.pop_back();
  if (path.find('\0') != std::string::npos || path.size() > kLongestName) {
    raise(errors::kInvalidCall, kSource, "A key has no zero bytes and at most 4096 bytes.");
  }
  return path;
}

std::string requiredPath(std::string_view key) {
  std::string path = normalPath(key);
  if (path.empty()) raise(errors::kInvalidCall, kSource, "The path of the key is empty.");
  return path;
}

std::string foldedName(std::string_view name) {
  if (name.find('\0') != std::string_view::npos || name.size() > kLongestName) {
    raise(errors::kInvalidCall, kSource, "A name has no zero bytes and at most 4096 bytes.");
  }
  return text::foldCase(name);
}

}  // namespace

struct RegistryTree::State {
  std::unique_ptr<engine::Session> session;
  std::unique_ptr<Prepared> get, set, addKey, remove, keys, values, removeKeys, removeValues;

  void open(const engine::Engine& engine, const engine::OpenOptions& options,
            const dialect::Writer& writer) {
    session = engine.open(options);
    if (!session->hasTable(kLastTable)) {
      if (!options.create) {
        raise(errors::kUnspecified, kSource,
              fmt::format("{} is no registry: it has no table {}.",
                          engine.isFile() ? "The file " + options.path : "Schema " + options.schema,
                          kLastTable));
      }
      makeTables(writer);
    }
    const auto prepare = [&](std::string_view text) {
      return session->prepare(writer.composed(text));
    };
    get = prepare(kGet);
    set = prepare(kSet);
    addKey = prepare(kAddKey);
    remove = prepare(kRemove);
    keys = prepare(kKeys);
    values = prepare(kValues);
    removeKeys = prepare(kRemoveKeys);
    removeValues = prepare(kRemoveValues);
  }

  void makeTables(const dialect::Writer& writer) const {
    engine::Transaction transaction(*session);
    session->holdNumbersOf(kLastTable);
    // Another process may have been faster.
    if (!session->hasTable(kLastTable)) {
      for (const std::string& text : dialect::translateSchema(kTables, writer)) {
        session->execute(text);
      }
    }
    transaction.commit();
  }

  std::optional<std::string> find(std::string_view path, std::string_view folded) const {
    get->bind(1, textValue(path));
    get->bind(2, textValue(folded));
    RowStore rows({ColumnType::kMemo});
    get->fetch(rows);
    if (rows.rows() == 0) return std::nullopt;
    return std::string(rows.text(0, 0));
  }

  /// Adds a key and those above it.
  void addKeys(std::string_view path, std::string_view folded) const {
    // Folding may change the number of bytes but never a backslash, so both are cut alike.
    std::size_t end = 0;
    std::size_t foldedEnd = 0;
    std::string_view parent;
    while (end != std::string_view::npos) {
      const std::size_t start = end == 0 ? 0 : end + 1;
      end = path.find('\\', start);
      foldedEnd = folded.find('\\', foldedEnd == 0 ? 0 : foldedEnd + 1);
      const std::string_view own = folded.substr(0, foldedEnd);
      addKey->bind(1, textValue(own));
      addKey->bind(2, textValue(parent));
      addKey->bind(3, textValue(path.substr(start, end - start)));
      addKey->run();
      parent = own;
    }
  }
};

RegistryTree::RegistryTree(const std::string& file, Options options)
    : state_(std::make_unique<State>()) {
  engine::OpenOptions open;
  open.path = file;
  open.create = options.create;
  open.synchronous = options.synchronous;
  open.busyTimeoutMs = options.busyTimeoutMs;
  const engine::Engine& engine = *findEngine("sqlite");
  state_->open(engine, open, *makeWriter(engine, {}));
}

RegistryTree::RegistryTree(const Installation& installation,
                           std::shared_ptr<engine::Shared>* shared, bool create)
    : state_(std::make_unique<State>()) {
  engine::OpenOptions open = installation.registryOptions();
  open.shared = shared;
  open.create = create;
  const engine::Engine& engine = installation.registryEngine();
  state_->open(engine, open, *makeWriter(engine, open.schema));
}

RegistryTree::~RegistryTree() = default;

std::optional<std::string> RegistryTree::get(std::string_view key, std::string_view name) {
  return state_->find(text::foldCase(requiredPath(key)), foldedName(name));
}

bool RegistryTree::has(std::string_view key, std::string_view name) {
  return get(key, name).has_value();
}

void RegistryTree::set(std::string_view key, std::string_view name, std::string_view value) {
  const std::string path = requiredPath(key);
  const std::string foldedPath = text::foldCase(path);
  const std::string folded = foldedName(name);
  const std::optional<std::string> present = state_->find(foldedPath, folded);
  if (present && *present == value) return;

  engine::Transaction transaction(*state_->session);
  if (!present) state_->addKeys(path, foldedPath);
  Prepared& set = *state_->set;
  set.bind(1, textValue(foldedPath));
  set.bind(2, textValue(folded));
  set.bind(3, textValue(name));
  set.bind(4, textValue(value));
  set.run();
  transaction.commit();
}

bool RegistryTree::remove(std::string_view key, std::string_view name) {
  const std::string path = text::foldCase(requiredPath(key));
  const std::string folded = foldedName(name);
  state_->remove->bind(1, textValue(path));
  state_->remove->bind(2, textValue(folded));
  return state_->remove->run() > 0;
}

bool RegistryTree::removeKey(std::string_view key) {
  const std::string path = text::foldCase(requiredPath(key));
  engine::Transaction transaction(*state_->session);
  state_->removeValues->bind(1, textValue(path));
  state_->removeValues->run();
  state_->removeKeys->bind(1, textValue(path));
  const bool was = state_->removeKeys->run() > 0;
  transaction.commit();
  return was;
}

std::vector<std::string> RegistryTree::keys(std::string_view key) {
  const std::string path = text::foldCase(normalPath(key));
  state_->keys->bind(1, textValue(path));
  RowStore rows({ColumnType::kMemo});
  state_->keys->fetch(rows);
  std::vector<std::string> names;
  for (std::size_t row = 0; row < rows.rows(); ++row) names.emplace_back(rows.text(row, 0));
  return names;
}

std::vector<RegistryTree::NamedValue> RegistryTree::values(std::string_view key) {
  const std::string path = text::foldCase(requiredPath(key));
  state_->values->bind(1, textValue(path));
  RowStore rows({ColumnType::kMemo, ColumnType::kMemo});
  state_->values->fetch(rows);
  std::vector<NamedValue> all;
  for (std::size_t row = 0; row < rows.rows(); ++row) {
    all.push_back({std::string(rows.text(row, 0)), std::string(rows.text(row, 1))});
  }
  return all;
}

}  // namespace tavelor
