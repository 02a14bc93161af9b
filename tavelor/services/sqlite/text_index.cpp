// SPDX-License-Identifier: MIT
// Text indexes of a database file.
//
// Of a table T there are four of the engine's own:
//
//   tv_search_T        a row for each of T, with the texts that the index was given: title, codes a
//                      line each, the rest
//   tv_search_T_words  the index over it, which keeps no texts of its own
//   tv_search_T_new    keys whose rows were written since: what the index has of them counts
//   nothing tv_search_T_of     the columns that are searched
//
// A trigger notes the key of a row that is written and no more: to make its texts, and to take them
// into the index, costs ten times as much where each row does it by itself. Whoever asks reads the
// rows that wait from T itself, and takes them into the index where they are many.
#include "tavelor/services/sqlite/text_index.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include <fmt/format.h>

#include "tavelor/platform/text.hpp"
#include "tavelor/platform/utf8.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/text_ranking.hpp"
#include "tavelor/services/engine/value.hpp"
#include "tavelor/services/sqlite/prepared.hpp"
#include "tavelor/services/sqlite/session.hpp"

namespace tavelor::engine::sqlite {

namespace {

/// So many rows are read with each question before they are taken into the index.
constexpr std::size_t kMostWaiting = 64;
/// Of a question, so that a stroke of a key lasts a tenth of a second at most; the next one goes
/// on.
constexpr std::size_t kAbsorbedAtOnce = 10'000;
/// Of rows that can't be taken into the index now, as another writes. Reading more would be felt.
constexpr std::size_t kMostRead = 50'000;
/// A title begins with it in the index, in a text of its own: so rows whose title begins with a
/// word are found among very many that have it somewhere. It is of no script, and a letter.
constexpr char32_t kTitleMark = 0xE000;
constexpr std::array kTokenizer{"remove_diacritics", "2"};

std::string quoted(std::string_view name) {
  std::string out = "\"";
  for (const char c : name) out.append(c == '"' ? 2 : 1, c);
  return out + '"';
}

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
  return fmt::format("{}", fmt::join(parts, separator));
}

/// What the engine has of an index.
struct Names {
  explicit Names(std::string_view table)
      : columns(quoted(fmt::format("{}{}_of", kSearchTables, table))),
        texts(quoted(fmt::format("{}{}", kSearchTables, table))),
        words(quoted(fmt::format("{}{}_words", kSearchTables, table))),
        waiting(quoted(fmt::format("{}{}_new", kSearchTables, table))) {}

  std::string columns, texts, words, waiting;
};

constexpr std::string_view kTextColumns = "Clave, Titulo, Codigos, Resto, Uso";

/// The parts of one kind, each behind a separator: of the row `a`, and of those that name it.
std::string partsText(const TextIndex& index, bool isCode, std::string_view separator) {
  std::string out;
  for (const TextIndex::Part& part : index.parts) {
    if (part.isCode != isCode) continue;
    const std::string column = quoted(part.column);
    if (part.table == index.table) {
      out += fmt::format(" || coalesce({} || a.{}, '')", separator, column);
    } else {
      out += fmt::format(
          " || coalesce((SELECT {0} || group_concat(o.{1}, {0}) FROM {2} o WHERE o.{3} = a.{3} "
          "AND o.{1} IS NOT NULL), '')",
          separator, column, quoted(part.table), quoted(index.key));
    }
  }
  return out;
}

/// The texts of the rows as they are now.
std::string textsNow(const TextIndex& index) {
  return fmt::format(
      "(SELECT a.{0} AS Clave, coalesce(a.{1}, '') AS Titulo, a.{0}{2} AS Codigos, ''{3} AS Resto, "
      "coalesce(a.{4} <> 0, 0) AS Uso FROM {5} a WHERE a.{0} IS NOT NULL)",
      quoted(index.key), quoted(index.title), partsText(index, true, "char(10)"),
      partsText(index, false, "' '"), quoted(index.inUse), quoted(index.table));
}

/// Key, title and what tells whether a row is in use come first in tv_search_T_of.
constexpr std::size_t kOwnColumns = 3;

std::string columnsText(const Names& names, const TextIndex& index) {
  std::vector<TextIndex::Part> all{{index.table, index.key, true},
                                   {index.table, index.title, false},
                                   {index.table, index.inUse, false}};
  all.insert(all.end(), index.parts.begin(), index.parts.end());
  std::vector<std::string> rows;
  for (const TextIndex::Part& part : all) {
    rows.push_back(
        fmt::format("('{}', '{}', {})", part.table, part.column, static_cast<int>(part.isCode)));
  }
  return fmt::format("INSERT INTO {} (Tabla, Columna, Codigo) VALUES {};\n", names.columns,
                     joined(rows, ", "));
}

/// Writes the texts that `condition` chooses into the index, or takes them out of it.
std::string indexText(const Names& names, bool isTakenOut, std::string_view condition) {
  return fmt::format(
      "INSERT INTO {0} ({1}rowid, Inicio, Titulo, Codigos, Resto) "
      "SELECT {2}Id, Inicio, Titulo, Codigos, Resto FROM {3} {4} ORDER BY Id;\n",
      names.words, isTakenOut ? names.words + ", " : "", isTakenOut ? "'delete', " : "",
      names.texts, condition);
}

/// Takes the first ones of the rows that wait into the index.
std::string absorbText(const Names& names, std::string_view now, std::size_t most) {
  const std::string first =
      fmt::format("(SELECT Clave FROM {} ORDER BY Clave LIMIT {})", names.waiting, most);
  const std::string ofThem = "WHERE Clave IN " + first;
  return indexText(names, true, ofThem) +
         fmt::format(
             "DELETE FROM {0} {1};\nINSERT INTO {0} ({2}) SELECT v.* FROM {3} n "
             "CROSS JOIN {4} v ON v.Clave = n.Clave;\n",
             names.texts, ofThem, kTextColumns, first, now) +
         indexText(names, false, ofThem) +
         fmt::format("DELETE FROM {} {};\n", names.waiting, ofThem);
}

/// The names and expressions that the definitions of one index share.
class Definition {
 public:
  explicit Definition(const TextIndex& index)
      : index_(index), names_(index.table), key_(quoted(index.key)) {}

  std::string text() {
    return tables() +
           fmt::format("INSERT INTO {} ({}) SELECT * FROM {};\n", names_.texts, kTextColumns,
                       textsNow(index_)) +
           indexText(names_, false, "") + ofTheTable() + ofOthers();
  }

 private:
  std::string tables() const {
    return fmt::format(
        "DROP TABLE IF EXISTS {0};\nDROP TABLE IF EXISTS {1};\nDROP TABLE IF EXISTS {2};\n"
        "DROP TABLE IF EXISTS {6};\n"
        "CREATE TABLE {6} (Id INTEGER PRIMARY KEY, Tabla TEXT NOT NULL, Columna TEXT NOT NULL, "
        "Codigo INT NOT NULL);\n{7}"
        "CREATE TABLE {2} (Id INTEGER PRIMARY KEY, Clave TEXT NOT NULL UNIQUE, "
        "Titulo TEXT NOT NULL, Codigos TEXT NOT NULL, Resto TEXT NOT NULL, Uso INT NOT NULL, "
        "Inicio TEXT AS (char({3}) || substr(ltrim(Titulo), 1, 24)) VIRTUAL);\n"
        "CREATE TABLE {1} (Clave TEXT PRIMARY KEY) WITHOUT ROWID;\n"
        "CREATE VIRTUAL TABLE {0} USING fts5(Inicio, Titulo, Codigos, Resto, content={2}, "
        "content_rowid='Id', tokenize='unicode61 {4} {5}', prefix='1 2 3 4', detail=none, "
        "columnsize=0);\n",
        names_.words, names_.waiting, names_.texts, static_cast<std::uint32_t>(kTitleMark),
        kTokenizer[0], kTokenizer[1], names_.columns, columnsText(names_, index_));
  }

  std::string trigger(std::string_view when, std::string_view body) {
    return fmt::format("CREATE TRIGGER {} AFTER {} BEGIN {} END;\n",
                       quoted(fmt::format("{}{}_{}", kSearchTables, index_.table, ++triggers_)),
                       when, body);
  }

  /// A row of another table may name none. ON CONFLICT holds whatever the writer's statement says.
  std::string note(std::string_view row) const {
    return fmt::format(
        "INSERT INTO {0} SELECT {1}.{2} WHERE {1}.{2} IS NOT NULL ON CONFLICT DO NOTHING;",
        names_.waiting, row, key_);
  }

  std::string onWrites(std::string_view table, const std::vector<std::string>& columns) {
    std::vector<std::string> changes;
    for (const std::string& column : columns) {
      changes.push_back(fmt::format("old.{0} IS NOT new.{0}", column));
    }
    const std::string name = quoted(table);
    return trigger("INSERT ON " + name, note("new")) +
           trigger(fmt::format("UPDATE OF {} ON {} WHEN {}", joined(columns, ", "), name,
                               joined(changes, " OR ")),
                   note("old") + " " + note("new")) +
           trigger("DELETE ON " + name, note("old"));
  }

  std::string ofTheTable() {
    std::vector<std::string> columns = {key_, quoted(index_.title), quoted(index_.inUse)};
    for (const TextIndex::Part& part : index_.parts) {
      if (part.table == index_.table) columns.push_back(quoted(part.column));
    }
    return onWrites(index_.table, columns);
  }

  std::string ofOthers() {
    std::string out;
    for (const TextIndex::Part& part : index_.parts) {
      if (part.table != index_.table) out += onWrites(part.table, {key_, quoted(part.column)});
    }
    return out;
  }

  const TextIndex& index_;
  Names names_;
  std::string key_;
  int triggers_ = 0;
};

std::string titleMark() {
  std::string mark;
  utf8::append(mark, kTitleMark);
  return mark;
}

/// What no row has: the engine takes an empty question for a mistake.
std::string none() {
  return "\"" + titleMark() + titleMark() + "\"";
}

/// All words, by their beginnings. They hold no quotes, as these are none of a word.
std::string allOf(const std::vector<std::string>& words) {
  std::string out;
  for (const std::string& word : words) {
    out += fmt::format("{}\"{}\"*", out.empty() ? "" : " AND ", word);
  }
  return out;
}

/// The same, and one of them begins the title.
std::string allWithTitle(const std::vector<std::string>& words) {
  const std::string mark = titleMark();
  std::string titles;
  for (const std::string& word : words) {
    titles += fmt::format("{}\"{}{}\"*", titles.empty() ? "" : " OR ", mark, word);
  }
  return words.size() == 1 ? titles : allOf(words) + " AND (" + titles + ")";
}

/// All words, whole: a short code among very many that begin with it.
std::string allWhole(const std::vector<std::string>& words) {
  std::string out;
  for (const std::string& word : words) {
    out += fmt::format("{}\"{}\"", out.empty() ? "" : " AND ", word);
  }
  return out;
}

std::vector<std::string> indexedTables(Database& database) {
  const StatementHandle names = compile(
      database, fmt::format("SELECT substr(name, {0}, length(name) - {0} - 2) FROM sqlite_master "
                            "WHERE type = 'table' AND name GLOB '{1}*_of'",
                            kSearchTables.size() + 1, kSearchTables));
  std::vector<std::string> tables;
  while (sqlite3_step(names.get()) == SQLITE_ROW) {
    tables.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(names.get(), 0)));
  }
  return tables;
}

/// Of the file that is there: it may have been made by another version.
TextIndex readIndex(const std::shared_ptr<Database>& database, std::string_view table) {
  PreparedStatement read(database, fmt::format("SELECT Tabla, Columna, Codigo FROM {} ORDER BY Id",
                                               Names(table).columns));
  RowStore rows({ColumnType::kMemo, ColumnType::kMemo, ColumnType::kBoolean});
  read.fetch(rows);
  if (rows.rows() < kOwnColumns) {
    throw Error(
        errors::kUnspecified, std::string(kSource),
        fmt::format("The text index of {} is damaged: tavelor find --rebuild makes it anew.",
                    table));
  }
  const auto column = [&](std::size_t i) { return std::string(rows.row(i).text(1)); };
  TextIndex index{std::string(table), column(0), column(1), column(2), {}};
  for (std::size_t i = kOwnColumns; i < rows.rows(); ++i) {
    const RowStore::Row row = rows.row(i);
    index.parts.push_back(
        {std::string(row.text(0)), std::string(row.text(1)), row.integer(2) != 0});
  }
  return index;
}

/// Where another writes, whoever asks goes on without waiting.
class NoPatience {
 public:
  explicit NoPatience(Database& database)
      : database_(database), patience_(std::exchange(database.busyTimeoutMs, 0)) {}
  NoPatience(const NoPatience&) = delete;
  NoPatience& operator=(const NoPatience&) = delete;
  ~NoPatience() { database_.busyTimeoutMs = patience_; }

 private:
  Database& database_;
  int patience_;
};

}  // namespace

std::string textIndexDdl(const TextIndex& index) {
  return Definition(index).text();
}

std::string dropTriggers(Database& database, const TextIndex& index) {
  const StatementHandle names = compile(database,
                                        "SELECT name FROM sqlite_master WHERE type = 'trigger' AND "
                                        "substr(name, 1, length(?1)) = ?1");
  const std::string beginning = std::string(kSearchTables) + index.table + "_";
  sqlite3_bind_text64(names.get(), 1, beginning.data(), beginning.size(), SQLITE_STATIC,
                      SQLITE_UTF8);
  std::string out;
  int code = SQLITE_ROW;
  while ((code = sqlite3_step(names.get())) == SQLITE_ROW) {
    const auto* const name = reinterpret_cast<const char*>(sqlite3_column_text(names.get(), 0));
    out += fmt::format("DROP TRIGGER {};\n", quoted(name));
  }
  if (code != SQLITE_DONE) database.fail(code);
  return out;
}

struct Tokenizer::Parts {
  fts5_tokenizer calls{};
  Fts5Tokenizer* tokenizer = nullptr;
};

Tokenizer::Tokenizer(Database& database) : parts_(std::make_unique<Parts>()) {
  fts5_api* api = nullptr;
  const StatementHandle ask = compile(database, "SELECT fts5(?1)");
  sqlite3_bind_pointer(ask.get(), 1, static_cast<void*>(&api), "fts5_api_ptr", nullptr);
  sqlite3_step(ask.get());
  void* context = nullptr;
  std::array<const char*, kTokenizer.size()> arguments = kTokenizer;
  const bool isThere =
      api != nullptr &&
      api->xFindTokenizer(api, "unicode61", &context, &parts_->calls) == SQLITE_OK &&
      parts_->calls.xCreate(context, arguments.data(), static_cast<int>(arguments.size()),
                            &parts_->tokenizer) == SQLITE_OK;
  if (!isThere) {
    throw Error(errors::kNotSupported, std::string(kSource),
                "The engine has no FTS5, by which texts are found.");
  }
}

Tokenizer::~Tokenizer() {
  if (parts_->tokenizer != nullptr) parts_->calls.xDelete(parts_->tokenizer);
}

std::vector<std::string> Tokenizer::words(std::string_view text, std::size_t most) const {
  struct Taken {
    std::vector<std::string> words;
    std::size_t most;
  } taken{{}, most};
  const auto take = [](void* context, int /*flags*/, const char* word, int size, int /*begin*/,
                       int /*end*/) {
    auto& to = *static_cast<Taken*>(context);
    std::string one(word, static_cast<std::size_t>(size));
    if (std::find(to.words.begin(), to.words.end(), one) == to.words.end()) {
      to.words.push_back(std::move(one));
    }
    return to.words.size() < to.most ? SQLITE_OK : SQLITE_DONE;
  };
  parts_->calls.xTokenize(parts_->tokenizer, &taken, FTS5_TOKENIZE_QUERY, text.data(),
                          static_cast<int>(text.size()), take);
  return std::move(taken.words);
}

TextFinder::TextFinder(std::shared_ptr<Database> database)
    : database_(std::move(database)), tokenizer_(*database_) {}

TextFinder::Statements& TextFinder::statementsOf(std::string_view table) {
  if (const auto known = statements_.find(table); known != statements_.end()) return known->second;
  const Names names(table);
  Statements made;
  made.now = textsNow(readIndex(database_, table));
  const auto matching = [&](int number) {
    return fmt::format(
        "SELECT * FROM (SELECT t.Clave, t.Titulo, t.Codigos, t.Uso, NULL FROM {0} "
        "CROSS JOIN {1} t ON t.Id = {0}.rowid WHERE {0} MATCH ?{2} "
        "AND NOT EXISTS (SELECT 1 FROM {3} n WHERE n.Clave = t.Clave) LIMIT {4})",
        names.words, names.texts, number, names.waiting, kMostCandidates);
  };
  const auto waiting = [&](std::string_view condition, std::size_t most) {
    return fmt::format(
        "SELECT v.Clave, v.Titulo, v.Codigos, v.Uso, v.Resto FROM (SELECT Clave FROM {} {} "
        "ORDER BY Clave LIMIT {}) n CROSS JOIN {} v ON v.Clave = n.Clave",
        names.waiting, condition, most, made.now);
  };
  const auto coded = [&](int from, int to) {
    const std::string condition = fmt::format("WHERE Clave >= ?{} AND Clave < ?{}", from, to);
    return fmt::format(
        "SELECT Clave, Titulo, Codigos, Uso, NULL FROM (SELECT * FROM {} t {} AND NOT EXISTS "
        "(SELECT 1 FROM {} n WHERE n.Clave = t.Clave) ORDER BY Clave LIMIT 50) UNION ALL {}",
        names.texts, condition, names.waiting, waiting(condition, 50));
  };
  made.waiting = std::make_unique<PreparedStatement>(
      database_, fmt::format("SELECT count(*) FROM (SELECT 1 FROM {} LIMIT {})", names.waiting,
                             kMostWaiting + 1));
  made.words = std::make_unique<PreparedStatement>(
      database_, fmt::format("{} UNION ALL {}", matching(1), waiting("", kMostRead)));
  made.best = std::make_unique<PreparedStatement>(
      database_, fmt::format("{} UNION ALL {} UNION ALL {} UNION ALL {}", matching(1), matching(2),
                             coded(3, 4), coded(5, 6)));
  return statements_.emplace(table, std::move(made)).first->second;
}

std::size_t TextFinder::waiting(Statements& statements) const {
  RowStore count({ColumnType::kInt32});
  statements.waiting->fetch(count);
  return static_cast<std::size_t>(count.integer(0, 0));
}

bool TextFinder::absorb(std::string_view table, const Statements& statements) {
  sqlite3* const handle = database_->handle;
  const auto run = [&](const std::string& text) {
    return sqlite3_exec(handle, text.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
  };
  if (database_->lost || sqlite3_db_readonly(handle, "main") != 0) return false;
  const bool isInside = database_->depth > 0;
  if (!isInside) {
    try {
      database_->takeTurn();
    } catch (const Error&) {
      return false;
    }
  }
  const sqlite3_int64 number = sqlite3_last_insert_rowid(handle);
  bool isDone = run(isInside ? "SAVEPOINT search" : "BEGIN IMMEDIATE");
  if (isDone) {
    isDone = run(absorbText(Names(table), statements.now, kAbsorbedAtOnce)) &&
             run(isInside ? "RELEASE search" : "COMMIT");
    // An engine that has no room left may have ended the transaction by itself.
    if (!isDone && sqlite3_get_autocommit(handle) == 0) {
      run(isInside ? "ROLLBACK TO search; RELEASE search" : "ROLLBACK");
    } else if (!isDone && isInside) {
      database_->lost = true;
      database_->endTurn();
    }
  }
  sqlite3_set_last_insert_rowid(handle, number);
  if (!isInside) database_->endTurn();
  return isDone;
}

void TextFinder::absorbAll() {
  for (const std::string& table : indexedTables(*database_)) {
    Statements& statements = statementsOf(table);
    while (waiting(statements) > 0 && absorb(table, statements)) {
    }
  }
}

bool TextFinder::hasAll(std::string_view texts, const std::vector<std::string>& beginnings) const {
  constexpr std::size_t kAll = SIZE_MAX;
  const std::vector<std::string> words = tokenizer_.words(texts, kAll);
  return std::all_of(beginnings.begin(), beginnings.end(), [&](const std::string& beginning) {
    return std::any_of(words.begin(), words.end(),
                       [&](const std::string& word) { return word.starts_with(beginning); });
  });
}

std::vector<TextFound> TextFinder::find(std::string_view table, std::string_view question,
                                        std::size_t most) {
  enum Column : std::size_t { kKey, kTitle, kCodes, kInUse, kRest };
  const std::vector<ColumnType> types{ColumnType::kMemo, ColumnType::kMemo, ColumnType::kMemo,
                                      ColumnType::kBoolean, ColumnType::kMemo};
  const std::string_view trimmed = text::trim(question);
  if (trimmed.empty()) return {};
  const std::vector<std::string> words = tokenizer_.words(trimmed, kMostWords);
  Statements& statements = statementsOf(table);
  TextRanking ranking(trimmed);

  if (waiting(statements) > kMostWaiting) {
    const NoPatience now(*database_);
    absorb(table, statements);
  }
  RowStore having(types);
  std::size_t indexed = 0;
  if (!words.empty()) {
    const std::string all = allOf(words);
    statements.words->bind(1, Value::ofText(all));
    statements.words->fetch(having);
    std::string texts;
    for (std::size_t i = 0; i < having.rows(); ++i) {
      const RowStore::Row row = having.row(i);
      if (row.isNull(kRest)) {
        ++indexed;
      } else {
        texts = row.text(kTitle);
        texts.append("\n").append(row.text(kCodes)).append("\n").append(row.text(kRest));
        if (!hasAll(texts, words)) continue;
      }
      ranking.offer(row.text(kKey), row.text(kTitle), row.text(kCodes), row.integer(kInUse) != 0);
    }
  }
  RowStore beginning(types);
  if (words.empty() || indexed == kMostCandidates) {
    const std::string titles = words.empty() ? none() : allWithTitle(words);
    const std::string whole = words.empty() ? none() : allWhole(words);
    // Codes are of capitals, or as they were typed. Without a word only the code itself will do.
    const std::string typed(trimmed);
    const std::string upper = text::upper(trimmed);
    const std::string_view last = words.empty() ? std::string_view("\0", 1) : "\xF4\x8F\xBF\xBF";
    const std::string typedEnd = typed + std::string(last);
    const std::string upperEnd = upper + std::string(last);
    int place = 0;
    for (const std::string* const each : {&titles, &whole, &typed, &typedEnd, &upper, &upperEnd}) {
      statements.best->bind(++place, Value::ofText(*each));
    }
    statements.best->fetch(beginning);
    for (std::size_t i = 0; i < beginning.rows(); ++i) {
      const RowStore::Row row = beginning.row(i);
      ranking.offer(row.text(kKey), row.text(kTitle), row.text(kCodes), row.integer(kInUse) != 0);
    }
  }
  return ranking.best(most);
}

TextFinder& FileSession::textFinder() {
  if (!textFinder_) textFinder_ = std::make_unique<TextFinder>(database_);
  return *textFinder_;
}

void FileSession::makeTextIndex(const TextIndex& index) {
  execute(dropTriggers(*database_, index) + textIndexDdl(index));
}

void FileSession::absorbTexts() {
  textFinder().absorbAll();
}

std::vector<TextFound> FileSession::findText(std::string_view table, std::string_view question,
                                             std::size_t most) {
  return textFinder().find(table, question, most);
}

}  // namespace tavelor::engine::sqlite
