// SPDX-License-Identifier: MIT
// The engines by name: a new one is a folder of its own and a line here.
#include "tavelor/services/engines.hpp"

#include <array>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/postgres/postgres_engine.hpp"
#include "tavelor/services/sqlite/sqlite_engine.hpp"

namespace tavelor {

namespace {

struct Entry {
  const engine::Engine& (*engine)();
  dialect::WriterMaker writer;
};

constexpr std::array kEngines{
    Entry{engine::sqliteEngine, dialect::sqliteWriter},
    Entry{engine::postgresEngine, dialect::postgresWriter},
};

}  // namespace

const engine::Engine* findEngine(std::string_view name) {
  for (const Entry& entry : kEngines) {
    if (entry.engine().name() == name) return &entry.engine();
  }
  return nullptr;
}

std::unique_ptr<const dialect::Writer> makeWriter(const engine::Engine& engine,
                                                  const std::string& schema) {
  for (const Entry& entry : kEngines) {
    if (&entry.engine() == &engine) return entry.writer(schema);
  }
  raise(errors::kUnspecified, "Installation", "An engine without a writer.");
}

}  // namespace tavelor
