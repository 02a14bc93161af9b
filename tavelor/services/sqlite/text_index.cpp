// SPDX-License-Identifier: MIT
// Text indexes of a database file.
//
// Of a table T there are three of the engine's own:
//
//   tv_search_T        a row for each of T, with its texts: title, codes a line each, the rest
//   tv_search_T_words  the index over it, which keeps no texts of its own
//   tv_search_T_new    numbers of rows of tv_search_T that the index does not have yet
//
// A statement that writes one row to the index costs it a segment, some 25 microseconds; one that
// writes 64 costs it hardly more. So rows wait in tv_search_T_new, which is read with each question
// as it is, until there are that many.
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

constexpr int kMostWaiting = 64;
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

/// The names and expressions that the definitions of one index share.
class Definition {
 public:
  explicit Definition(const TextIndex& index)
      : index_(index),
        texts_(quoted(std::string(kSearchTables) + index.table)),
        words_(quoted(std::string(kSearchTables) + index.table + "_words")),
        waiting_(quoted(std::string(kSearchTables) + index.table + "_new")) {}

  std::string text() { return tables() + fill() + ofTheTable() + ofOthers() + ofTheTexts(); }

 private:
  std::string trigger(std::string_view when, std::string_view body) {
    return fmt::format("CREATE TRIGGER {} AFTER {} BEGIN {} END;\n",
                       quoted(fmt::format("{}{}_{}", kSearchTables, index_.table, ++triggers_)),
                       when, body);
  }

  std::string tables() const {
    return fmt::format(
        "DROP TABLE IF EXISTS {0};\nDROP TABLE IF EXISTS {1};\nDROP TABLE IF EXISTS {2};\n"
        "CREATE TABLE {2} (Id INTEGER PRIMARY KEY, Clave TEXT NOT NULL UNIQUE, "
        "Titulo TEXT NOT NULL, Codigos TEXT NOT NULL, Resto TEXT NOT NULL, Uso INT NOT NULL, "
        "Inicio TEXT AS (char({3}) || substr(ltrim(Titulo), 1, 24)) VIRTUAL);\n"
        "CREATE TABLE {1} (Id INTEGER PRIMARY KEY);\n"
        "CREATE VIRTUAL TABLE {0} USING fts5(Inicio, Titulo, Codigos, Resto, content={2}, "
        "content_rowid='Id', tokenize='unicode61 {4} {5}', prefix='1 2 3 4', detail=none, "
        "columnsize=0);\n",
        words_, waiting_, texts_, static_cast<std::uint32_t>(kTitleMark), kTokenizer[0],
        kTokenizer[1]);
  }

  /// The parts of one kind, each behind a separator: of the row `a`, and of those that name it.
  std::string partsText(bool isCode, std::string_view separator) const {
    std::string out;
    for (const TextIndex::Part& part : index_.parts) {
      if (part.isCode != isCode) continue;
      const std::string column = quoted(part.column);
      if (part.table == index_.table) {
        out += fmt::format(" || coalesce({} || a.{}, '')", separator, column);
      } else {
        out += fmt::format(
            " || coalesce((SELECT {0} || group_concat(o.{1}, {0}) FROM {2} o WHERE o.{3} = a.{3} "
            "AND o.{1} IS NOT NULL), '')",
            separator, column, quoted(part.table), quoted(index_.key));
      }
    }
    return out;
  }

  std::string selectText() const {
    return fmt::format(
        "SELECT a.{0}, coalesce(a.{1}, ''), a.{0}{2}, ''{3}, coalesce(a.{4} <> 0, 0) FROM {5} a",
        quoted(index_.key), quoted(index_.title), partsText(true, "char(10)"),
        partsText(false, "' '"), quoted(index_.inUse), quoted(index_.table));
  }
  std::string insertText() const {
    return fmt::format("INSERT INTO {} (Clave, Titulo, Codigos, Resto, Uso) {}", texts_,
                       selectText());
  }
  std::string indexText(std::string_view condition) const {
    return fmt::format(
        "INSERT INTO {} (rowid, Inicio, Titulo, Codigos, Resto) "
        "SELECT Id, Inicio, Titulo, Codigos, Resto FROM {} {};",
        words_, texts_, condition);
  }

  std::string fill() const { return insertText() + ";\n" + indexText("ORDER BY Id") + "\n"; }

  /// Writes the texts of one row anew.
  std::string refresh(std::string_view row) const {
    return fmt::format(
        "{0} WHERE a.{1} = {2}.{1} ON CONFLICT (Clave) DO UPDATE SET Titulo = excluded.Titulo, "
        "Codigos = excluded.Codigos, Resto = excluded.Resto, Uso = excluded.Uso;",
        insertText(), quoted(index_.key), row);
  }

  std::string ofTheTable() {
    const std::string key = quoted(index_.key);
    std::vector<std::string> columns = {key, quoted(index_.title), quoted(index_.inUse)};
    for (const TextIndex::Part& part : index_.parts) {
      if (part.table == index_.table) columns.push_back(quoted(part.column));
    }
    std::vector<std::string> changes;
    for (const std::string& column : columns) {
      changes.push_back(fmt::format("old.{0} IS NOT new.{0}", column));
    }
    const std::string table = quoted(index_.table);
    return trigger("INSERT ON " + table, refresh("new")) +
           trigger(fmt::format("UPDATE OF {} ON {} WHEN {}", joined(columns, ", "), table,
                               joined(changes, " OR ")),
                   fmt::format("DELETE FROM {0} WHERE Clave = old.{1} AND old.{1} <> new.{1}; {2}",
                               texts_, key, refresh("new"))) +
           trigger("DELETE ON " + table,
                   fmt::format("DELETE FROM {} WHERE Clave = old.{};", texts_, key));
  }

  std::string ofOthers() {
    std::string out;
    for (const TextIndex::Part& part : index_.parts) {
      if (part.table == index_.table) continue;
      const std::string table = quoted(part.table);
      const std::string key = quoted(index_.key);
      const std::string column = quoted(part.column);
      out += trigger("INSERT ON " + table, refresh("new"));
      out += trigger(fmt::format("UPDATE OF {0}, {1} ON {2} WHEN old.{0} IS NOT new.{0} OR "
                                 "old.{1} IS NOT new.{1}",
                                 key, column, table),
                     refresh("old") + " " + refresh("new"));
      out += trigger("DELETE ON " + table, refresh("old"));
    }
    return out;
  }

  /// Takes what the index has of a row out of it, by the very texts that it was given.
  std::string unindex() const {
    return fmt::format(
        "INSERT INTO {0} ({0}, rowid, Inicio, Titulo, Codigos, Resto) SELECT 'delete', old.Id, "
        "old.Inicio, old.Titulo, old.Codigos, old.Resto WHERE NOT EXISTS (SELECT 1 FROM {1} WHERE "
        "Id = old.Id);",
        words_, waiting_);
  }
  std::string ofTheTexts() {
    return trigger("INSERT ON " + texts_,
                   fmt::format("INSERT INTO {} VALUES (new.Id);", waiting_)) +
           trigger(
               fmt::format("UPDATE OF Titulo, Codigos, Resto ON {} WHEN old.Titulo <> new.Titulo "
                           "OR old.Codigos <> new.Codigos OR old.Resto <> new.Resto",
                           texts_),
               fmt::format("{0} INSERT INTO {1} SELECT new.Id WHERE NOT EXISTS (SELECT 1 FROM "
                           "{1} WHERE Id = new.Id);",
                           unindex(), waiting_)) +
           trigger("DELETE ON " + texts_,
                   fmt::format("{} DELETE FROM {} WHERE Id = old.Id;", unindex(), waiting_)) +
           trigger(fmt::format("INSERT ON {0} WHEN (SELECT count(*) FROM {0}) >= {1}", waiting_,
                               kMostWaiting),
                   fmt::format("{} DELETE FROM {};",
                               indexText(fmt::format("WHERE Id IN (SELECT Id FROM {})", waiting_)),
                               waiting_));
  }

  const TextIndex& index_;
  std::string texts_;
  std::string words_;
  std::string waiting_;
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
  return allOf(words) + " AND (" + titles + ")";
}

/// All words, whole: a short code among very many that begin with it.
std::string allWhole(const std::vector<std::string>& words) {
  std::string out;
  for (const std::string& word : words) {
    out += fmt::format("{}\"{}\"", out.empty() ? "" : " AND ", word);
  }
  return out;
}

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
  const std::string texts = quoted(fmt::format("{}{}", kSearchTables, table));
  const std::string words = quoted(fmt::format("{}{}_words", kSearchTables, table));
  const std::string waiting = quoted(fmt::format("{}{}_new", kSearchTables, table));
  const auto matching = [&](int number, std::string_view rest) {
    return fmt::format(
        "SELECT t.Clave, t.Titulo, t.Codigos, t.Uso, {3} FROM (SELECT rowid AS r FROM {0} "
        "WHERE {0} MATCH ?{1} LIMIT {4}) JOIN {2} t ON t.Id = r",
        words, number, texts, rest, kMostCandidates);
  };
  const auto coded = [&](int from, int to) {
    return fmt::format(
        "SELECT Clave, Titulo, Codigos, Uso, NULL FROM (SELECT * FROM {} WHERE Clave >= ?{} AND "
        "Clave < ?{} ORDER BY Clave LIMIT 50)",
        texts, from, to);
  };
  Statements made;
  made.words = std::make_unique<PreparedStatement>(
      database_, fmt::format("{} UNION ALL SELECT t.Clave, t.Titulo, t.Codigos, t.Uso, t.Resto "
                             "FROM {} n JOIN {} t ON t.Id = n.Id",
                             matching(1, "NULL"), waiting, texts));
  made.best = std::make_unique<PreparedStatement>(
      database_, fmt::format("{} UNION ALL {} UNION ALL {} UNION ALL {}", matching(1, "NULL"),
                             matching(2, "NULL"), coded(3, 4), coded(5, 6)));
  return statements_.emplace(table, std::move(made)).first->second;
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

void FileSession::makeTextIndex(const TextIndex& index) {
  execute(dropTriggers(*database_, index) + textIndexDdl(index));
}

std::vector<TextFound> FileSession::findText(std::string_view table, std::string_view question,
                                             std::size_t most) {
  if (!textFinder_) textFinder_ = std::make_unique<TextFinder>(database_);
  return textFinder_->find(table, question, most);
}

}  // namespace tavelor::engine::sqlite
