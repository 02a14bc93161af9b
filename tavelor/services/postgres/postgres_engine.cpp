// SPDX-License-Identifier: MIT
// Opens sessions on a server.
#include "tavelor/services/postgres/postgres_engine.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/services/postgres/errors.hpp"
#include "tavelor/services/postgres/moving.hpp"
#include "tavelor/services/postgres/schemas.hpp"
#include "tavelor/services/postgres/session.hpp"

namespace tavelor::engine {

namespace postgres {

namespace {

/// The lines of one apartment. One for all, unless its sessions want different ones.
class Lines final : public Shared {
 public:
  std::shared_ptr<Line> take(const LineSettings& settings) {
    const auto known = std::find_if(lines_.begin(), lines_.end(),
                                    [&](const auto& line) { return line->settings() == settings; });
    if (known != lines_.end()) return *known;
    return lines_.emplace_back(std::make_shared<Line>(settings));
  }

 private:
  std::vector<std::shared_ptr<Line>> lines_;
};

std::shared_ptr<Line> lineOf(const OpenOptions& options) {
  const LineSettings settings{.server = options.server,
                              .readOnly = options.readOnly,
                              .synchronous = options.synchronous,
                              .busyTimeoutMs = options.busyTimeoutMs,
                              .locale = options.locale ? options.locale : Locale::spanish()};
  if (options.shared == nullptr) return std::make_shared<Line>(settings);
  auto lines = std::dynamic_pointer_cast<Lines>(*options.shared);
  if (!lines) {
    lines = std::make_shared<Lines>();
    *options.shared = lines;
  }
  return lines->take(settings);
}

class ServerEngine final : public Engine, public Destination {
 public:
  std::string_view name() const override { return "postgresql"; }
  bool isFile() const override { return false; }
  std::string whyNot(const Column& column, const RowStore::Row& row,
                     std::size_t place) const override {
    return postgres::whyNot(column, row, place);
  }

  std::unique_ptr<Session> open(const OpenOptions& options) const override {
    if (options.schema.empty()) {
      throw Error(errors::kFileNotFound, std::string(kSource), "The database has no schema.");
    }
    auto state = std::make_shared<SessionState>();
    state->line = lineOf(options);
    state->schema = options.schema;
    state->now = options.now;
    schemasMustBeThere(state, options.create);
    return std::make_unique<ServerSession>(std::move(state));
  }
};

}  // namespace

}  // namespace postgres

const Engine& postgresEngine() {
  static const postgres::ServerEngine engine;
  return engine;
}

}  // namespace tavelor::engine
