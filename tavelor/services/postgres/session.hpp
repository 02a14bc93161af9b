// SPDX-License-Identifier: MIT
// One session: a schema of a server's database, over the line of its apartment.
#pragma once

#include <memory>
#include <string>

#include "tavelor/platform/callback.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/movable.hpp"
#include "tavelor/services/engine/text_index.hpp"
#include "tavelor/services/postgres/line.hpp"

namespace tavelor::engine::postgres {

/// What a session and its statements share. They may outlive it.
struct SessionState {
  std::shared_ptr<Line> line;
  std::string schema;
  Callback<Date()> now;  // may be empty
  Levels levels;
};

class ServerSession final : public Session, public Movable, public TextSearch {
 public:
  explicit ServerSession(std::shared_ptr<SessionState> state) : state_(std::move(state)) {}
  ServerSession(const ServerSession&) = delete;
  ServerSession& operator=(const ServerSession&) = delete;
  ~ServerSession() override;

  /// Compiled at its first run, when the types of its values are known: a text that the server
  /// refuses is found out then.
  std::unique_ptr<Prepared> prepare(std::string_view engineText) override;
  void execute(std::string_view engineText) override;
  int begin() override;
  int commit() override;
  int rollback() override;
  int depth() const override { return state_->levels.open; }
  void mustNotBeLost() const override { state_->line->mustNotBeLost(state_->levels); }
  Catalogue describe() override;
  bool hasTable(std::string_view name) override;
  void wait() override { state_->line->wait(); }
  std::int64_t schemaVersion() override;
  void holdNumbersOf(std::string_view table) override;
  Date now() const override { return state_->now ? state_->now() : Date::now(); }
  void readAhead(Ahead how) override { state_->line->readAhead(how); }
  Ahead ahead() const override { return state_->line->ahead(); }
  std::int64_t waits() const override { return state_->line->waits(); }

  // Moving: moving.cpp.
  void holdStill(const Catalogue& tables) override;
  std::vector<Index> indexes() override;
  std::int64_t lastNumber(const Table& table, const Column& counter) override;
  void goOnBehind(const Table& table, const Column& counter, std::int64_t number) override;
  /// Renames the schema, with the transaction.
  void putAway(std::string_view ending) override;

  // Text indexes: text_index.cpp.
  void makeTextIndex(const TextIndex& index) override;
  std::vector<TextFound> findText(std::string_view table, std::string_view question,
                                  std::size_t most) override;

 private:
  std::shared_ptr<SessionState> state_;
  std::unique_ptr<Prepared> schemaVersion_;
  std::unique_ptr<Prepared> findText_;
};

}  // namespace tavelor::engine::postgres
