// SPDX-License-Identifier: MIT
// One connection to a database file.
#pragma once

#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/movable.hpp"
#include "tavelor/services/engine/text_index.hpp"
#include "tavelor/services/sqlite/database.hpp"

namespace tavelor::engine::sqlite {

class TextFinder;

class FileSession final : public Session, public Movable, public TextSearch {
 public:
  /// `readOnly` sessions may begin a transaction too: it gives them one state of the data.
  FileSession(std::shared_ptr<Database> database, bool readOnly);
  FileSession(const FileSession&) = delete;
  FileSession& operator=(const FileSession&) = delete;
  ~FileSession() override;

  std::unique_ptr<Prepared> prepare(std::string_view engineText) override;
  void execute(std::string_view engineText) override;
  int begin() override;
  int commit() override;
  int rollback() override;
  int depth() const override { return database_->depth; }
  void mustNotBeLost() const override { database_->mustNotBeLost(); }
  Catalogue describe() override;
  bool hasTable(std::string_view name) override;
  std::int64_t schemaVersion() override;
  Date now() const override { return database_->time(); }
  void settle() override;

  // Moving: moving.cpp. The right to write that the transaction has holds all still.
  void holdStill(const Catalogue& /*tables*/) override {}
  std::vector<Index> indexes() override;
  std::int64_t lastNumber(const Table& table, const Column& counter) override;
  void goOnBehind(const Table& table, const Column& counter, std::int64_t number) override;
  /// Renames the file and what of it is still in its log, at once. Raises 75.
  void putAway(std::string_view ending) override;

  // Text indexes: text_index.cpp.
  void makeTextIndex(const TextIndex& index) override;
  std::vector<TextFound> findText(std::string_view table, std::string_view question,
                                  std::size_t most) override;
  void absorbTexts() override;

 private:
  TextFinder& textFinder();
  /// Runs a statement of the transaction's own, compiled at its first use.
  int control(StatementHandle& statement, std::string_view text);
  void mustControl(StatementHandle& statement, std::string_view text);

  std::shared_ptr<Database> database_;
  std::string_view beginText_;
  bool commitFailed_ = false;  // and neither a rollback nor a new transaction came since
  std::unique_ptr<TextFinder> textFinder_;  // made at the first question
  StatementHandle begin_, commit_, rollback_, savepoint_, release_, undo_, schemaVersion_;
};

}  // namespace tavelor::engine::sqlite
