// SPDX-License-Identifier: MIT
// The least that makes an engine: it takes every statement and gives no rows. Whoever adds one
// begins here; what its members promise is in tavelor/services/engine/engine.hpp.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/value.hpp"

namespace tavelor::engine::skeleton {

// [statement]
class SkeletonStatement final : public Prepared {
 public:
  explicit SkeletonStatement(std::string_view text) : text_(text) {}

  int parameterCount() const override { return 0; }
  void bind(int /*index*/, const Value& /*value*/) override {}
  std::int64_t run() override { return 0; }
  bool metOtherSchema() override { return false; }

 private:
  void fetchRows(RowStore& /*rows*/, std::size_t /*most*/) override {}

  std::string text_;
};
// [statement]

// [session]
class SkeletonSession final : public Session {
 public:
  explicit SkeletonSession(Callback<Date()> now) : now_(std::move(now)) {}

  std::unique_ptr<Prepared> prepare(std::string_view engineText) override {
    return std::make_unique<SkeletonStatement>(engineText);
  }
  void execute(std::string_view /*engineText*/) override {}
  int begin() override { return ++depth_; }
  int commit() override { return leave(); }
  int rollback() override { return leave(); }
  int depth() const override { return depth_; }
  void mustNotBeLost() const override {}
  Catalogue describe() override { return {}; }
  bool hasTable(std::string_view /*name*/) override { return false; }
  std::int64_t schemaVersion() override { return 0; }
  Date now() const override { return now_ ? now_() : Date::now(); }

 private:
  int leave() {
    if (depth_ == 0) raise(errors::kNotAllowedInContext, "Skeleton");
    return --depth_;
  }

  Callback<Date()> now_;
  int depth_ = 0;
};
// [session]

// [engine]
class SkeletonEngine final : public Engine {
 public:
  std::string_view name() const override { return "skeleton"; }
  bool isFile() const override { return true; }
  std::unique_ptr<Session> open(const OpenOptions& options) const override {
    return std::make_unique<SkeletonSession>(options.now);
  }
};

inline const Engine& skeletonEngine() {
  static const SkeletonEngine engine;
  return engine;
}
// [engine]

// [writer]
class SkeletonWriter final : public dialect::Writer {
 public:
  const dialect::Words& words() const override {
    static constexpr dialect::Words kWords{
        .row = "row_number", .smaller = "least", .larger = "greatest", .mostArguments = 100};
    return kWords;
  }
  void placeholder(std::string& out, std::int32_t number, bool /*isNew*/) const override {
    out.append(":").append(std::to_string(number));
  }
  void name(std::string& out, std::string_view name) const override { quote(out, name, '"'); }
  std::string createTable(const Table& table) const override {
    std::string sql = "CREATE TABLE ";
    this->table(sql, table.name);
    std::string_view separator = " (";
    for (const Column& column : table.columns) {
      sql.append(separator);
      columnDeclaration(sql, table, column);
      separator = ", ";
    }
    return sql.append(")");
  }
  void columnDeclaration(std::string& out, const Table& /*table*/,
                         const Column& column) const override {
    name(out, column.name);
    out.append(" ").append(ddlWord(column.type));
  }
  void indexedColumn(std::string& out, std::string_view column, bool /*mayBeNull*/) const override {
    name(out, column);
  }
};

inline std::unique_ptr<const dialect::Writer> skeletonWriter(const std::string& /*schema*/) {
  return std::make_unique<SkeletonWriter>();
}
// [writer]

}  // namespace tavelor::engine::skeleton
