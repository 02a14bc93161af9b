// SPDX-License-Identifier: MIT
// Translation of statements that were never seen, beside the engine's own compiling of the result.
#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <sqlite3.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/lexer.hpp"
#include "tests/dialect/corpus_case.hpp"

namespace tavelor::bench {

namespace {

using engine::Catalogue;

int selectorOf(const Installation& installation, const std::string& label) {
  for (const DatabaseSettings& database : installation.settings().databases) {
    if (database.label == label) return database.selector;
  }
  return 1;
}

/// A statement with the catalogue that it binds on, and what the engine is sent for it.
struct Task {
  Statement statement;
  const Catalogue* catalogue;
  sqlite3* engine;
  std::vector<std::string> texts;
};

/// The engine compiles a call of a function only if it knows the name.
void nameFunctions(sqlite3* database, const std::set<std::string>& names) {
  const auto nothing = [](sqlite3_context* context, int, sqlite3_value**) {
    sqlite3_result_null(context);
  };
  for (const std::string& name : names) {
    sqlite3_create_function(database, name.c_str(), -1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                            nothing, nullptr, nullptr);
  }
}

void collectFunctions(const std::string& text, std::set<std::string>& names) {
  for (std::size_t at = text.find("tv_"); at != std::string::npos; at = text.find("tv_", at + 1)) {
    const std::size_t end = text.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_", at);
    names.insert(text.substr(at, end - at));
  }
}

class Translation {
 public:
  Translation() {
    std::set<std::string> functions;
    for (const auto& file : tests::corpusFiles()) {
      for (const tests::CorpusCase& one : tests::readCorpus(file)) {
        if (one.runs) add(one, functions);
      }
    }
    for (auto& [label, database] : databases_) nameFunctions(database.engine->handle(), functions);
    std::erase_if(tasks_, [this](const Task& task) {
      const bool compiles =
          std::all_of(task.texts.begin(), task.texts.end(),
                      [&](const auto& text) { return compile(task.engine, text); });
      forget();
      if (!compiles) refused_.push_back(fmt::format("the engine: {}", task.texts.front()));
      return !compiles;
    });
  }
  ~Translation() { forget(); }
  Translation(const Translation&) = delete;
  Translation& operator=(const Translation&) = delete;

  std::size_t statements() const { return tasks_.size(); }
  const std::vector<std::string>& refused() const { return refused_; }

  double translateAll() {
    std::size_t texts = 0;
    for (const Task& task : tasks_) texts += translate(task);
    return static_cast<double>(texts);
  }
  /// What a first run of a statement adds to the compiling: its shape is looked up, then
  /// translated.
  double shapeAndTranslateAll() {
    std::size_t texts = 0;
    for (const Task& task : tasks_) {
      if (dialect::shapeOf(task.statement).key.empty()) return 0;
      texts += translate(task);
    }
    return static_cast<double>(texts);
  }
  double compileAll() {
    std::size_t texts = 0;
    for (const Task& task : tasks_) {
      for (const std::string& text : task.texts) compile(task.engine, text);
      texts += task.texts.size();
    }
    return static_cast<double>(texts);
  }
  /// The compiled ones are dropped outside of the time that is taken.
  void forget() {
    for (sqlite3_stmt* statement : compiled_) sqlite3_finalize(statement);
    compiled_.clear();
  }

  /// The statements with the greatest ratio, each measured for itself.
  Table worst(std::size_t count) {
    struct Line {
      double ours;
      double engine;
      const Task* task;
    };
    std::vector<Line> lines;
    for (const Task& task : tasks_) {
      const Scale scale{false, 11};
      const double ours = measure({[&] { return static_cast<double>(translate(task)); }}, scale);
      const double theirs = measure({[&] {
                                       for (const auto& text : task.texts)
                                         compile(task.engine, text);
                                       return 0.0;
                                     },
                                     {},
                                     [&] { forget(); }},
                                    scale);
      lines.push_back({ours * 1000, theirs * 1000, &task});
    }
    std::sort(lines.begin(), lines.end(),
              [](const Line& a, const Line& b) { return a.ours / a.engine > b.ours / b.engine; });
    Table table{"Statements that are dearest to translate",
                {"statement", "compile µs", "translate µs", "ratio"},
                {}};
    for (std::size_t i = 0; i < std::min(count, lines.size()); ++i) {
      const Line& line = lines[i];
      std::string text(line.task->statement.text().substr(0, 80));
      while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0x80) != 0)
        text.pop_back();
      table.rows.push_back({text, fmt::format("{:.1f}", line.engine),
                            fmt::format("{:.1f}", line.ours),
                            fmt::format("{:.2f}", line.ours / line.engine)});
    }
    return table;
  }

 private:
  struct Database {
    std::shared_ptr<const Catalogue> catalogue;
    std::unique_ptr<driver::Database> engine;
  };

  Database& databaseOf(const std::string& label) {
    auto found = databases_.find(label);
    if (found == databases_.end()) {
      const int selector = selectorOf(shop_.installation(), label);
      Database made{
          shop_.installation().catalogue(selector),
          std::make_unique<driver::Database>(shop_.installation().databaseFile(selector))};
      found = databases_.emplace(label, std::move(made)).first;
    }
    return found->second;
  }

  void add(const tests::CorpusCase& one, std::set<std::string>& functions) {
    Database& database = databaseOf(one.database);
    Task task{one.statement(), database.catalogue.get(), database.engine->handle(), {}};
    try {
      dialect::Literals literals;
      auto plan =
          dialect::translate(task.statement, *task.catalogue, dialect::sqliteWriter(), literals);
      for (auto& step : plan.steps) {
        collectFunctions(step.sql, functions);
        task.texts.push_back(std::move(step.sql));
      }
      tasks_.push_back(std::move(task));
    } catch (const Error& error) {
      refused_.push_back(one.name + ": " + error.what());
    }
  }

  static std::size_t translate(const Task& task) {
    dialect::Literals literals;
    return dialect::translate(task.statement, *task.catalogue, dialect::sqliteWriter(), literals)
        .steps.size();
  }

  bool compile(sqlite3* database, const std::string& text) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v2(database, text.data(), static_cast<int>(text.size()),
                                        &statement, nullptr);
    if (statement != nullptr) compiled_.push_back(statement);
    return code == SQLITE_OK;
  }

  BenchShop shop_;
  std::map<std::string, Database> databases_;
  std::vector<Task> tasks_;
  std::vector<sqlite3_stmt*> compiled_;
  std::vector<std::string> refused_;
};

}  // namespace

void measureTranslation(Report& report, const Scale& scale) {
  Translation all;
  for (const std::string& line : all.refused()) report.note("Left out: " + line);
  const Side engine{[&] { return all.compileAll(); }, {}, [&] { all.forget(); }};
  report.add(compare(
      {"translate a new statement (engine: compile it)", all.statements(), 1.0, engine, {[&] {
         return all.translateAll();
       }}},
      scale));
  report.add(compare({"the same, its shape looked up before", all.statements(), 0, engine, {[&] {
                        return all.shapeAndTranslateAll();
                      }}},
                     scale));
  if (!scale.quick) report.add(all.worst(8));
}

}  // namespace tavelor::bench
