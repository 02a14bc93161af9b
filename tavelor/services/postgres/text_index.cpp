// SPDX-License-Identifier: MIT
// Text indexes of a server.
//
// Of a table T there is one of the engine's own, tv_search_T, with a row for each of T: its title,
// its codes, a line each, and the words of all its texts under a GIN index. The function
// tv_search_T(key) writes a row anew, and the triggers call it.
#include "tavelor/services/postgres/text_index.hpp"

#include <vector>

#include <fmt/format.h>

#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/text_ranking.hpp"
#include "tavelor/services/engine/value.hpp"
#include "tavelor/services/postgres/connect.hpp"
#include "tavelor/services/postgres/session.hpp"

namespace tavelor::engine::postgres {

namespace {

/// The names and expressions that the definitions of one index share.
class Definition {
 public:
  Definition(const TextIndex& index, std::string_view schema)
      : index_(index),
        schema_(quotedName(schema)),
        name_(std::string(kSearchTables) + index.table),
        texts_(schema_ + "." + quotedName(name_)),
        key_(quotedName(index.key)) {}

  std::string text() const { return tables() + refresh() + triggers(); }

 private:
  std::string tables() const {
    return fmt::format(
        "DROP TABLE IF EXISTS {0};\n"
        "CREATE TABLE {0} (\"Clave\" text COLLATE \"C\" PRIMARY KEY, \"Titulo\" text NOT NULL, "
        "\"Codigos\" text NOT NULL, \"Uso\" boolean NOT NULL, \"Palabras\" tsvector NOT NULL);\n"
        "{1};\n"
        // What waits for the index is read with every question.
        "CREATE INDEX {2} ON {0} USING gin (\"Palabras\") WITH (gin_pending_list_limit = 128);\n"
        "ANALYZE {0};\n",
        texts_, insert(), quotedName(name_ + "_words"));
  }

  std::string qualified(std::string_view table) const { return schema_ + "." + quotedName(table); }

  /// The parts of one kind, each behind a separator: of the row `a`, and of those that name it.
  std::string partsText(bool isCode, std::string_view separator) const {
    std::string out;
    for (const TextIndex::Part& part : index_.parts) {
      if (part.isCode != isCode) continue;
      const std::string column = quotedName(part.column);
      if (part.table == index_.table) {
        out += fmt::format(" || coalesce({} || a.{}, '')", separator, column);
      } else {
        out += fmt::format(
            " || coalesce((SELECT {0} || string_agg(o.{1}, {0}) FROM {2} o WHERE o.{3} = a.{3}), "
            "'')",
            separator, column, qualified(part.table), key_);
      }
    }
    return out;
  }

  std::string insert() const {
    return fmt::format(
        "INSERT INTO {0} SELECT x.key, x.title, x.codes, x.use, "
        "tavelor.tv_search_words(x.title, x.codes || x.rest) FROM (SELECT a.{1} AS key, "
        "coalesce(a.{2}, '') AS title, a.{1}{3} AS codes, ''{4} AS rest, "
        "coalesce(a.{5} <> 0, false) AS use FROM {6} a{7}) x",
        texts_, key_, quotedName(index_.title), partsText(true, "chr(10)"), partsText(false, "' '"),
        quotedName(index_.inUse), qualified(index_.table), condition_);
  }

  /// The row is held before it is read what it shall be: of two transactions that add a code to it
  /// the second one sees what the first has added. Plans are made while the tables are empty, and
  /// kept: without the setting they would read all of them for each row of an import.
  std::string refresh() const {
    Definition one = *this;
    one.condition_ = fmt::format(" WHERE a.{} = which", key_);
    return fmt::format(
        "CREATE OR REPLACE FUNCTION {0}(which text) RETURNS void LANGUAGE plpgsql "
        "SET enable_seqscan = off AS $body$ BEGIN "
        "PERFORM 1 FROM {0} WHERE \"Clave\" = which FOR UPDATE; "
        "{1} ON CONFLICT (\"Clave\") DO UPDATE SET \"Titulo\" = excluded.\"Titulo\", "
        "\"Codigos\" = excluded.\"Codigos\", \"Uso\" = excluded.\"Uso\", "
        "\"Palabras\" = excluded.\"Palabras\"; END $body$;\n",
        texts_, one.insert());
  }

  std::string triggerOn(std::string_view table, const std::vector<std::string>& columns) const {
    std::string list;
    std::string changes;
    for (const std::string& column : columns) {
      list += (list.empty() ? "" : ", ") + column;
      changes +=
          fmt::format("{0}OLD.{1} IS DISTINCT FROM NEW.{1}", changes.empty() ? "" : " OR ", column);
    }
    return fmt::format(
        "DROP TRIGGER IF EXISTS tv_search ON {0};\nDROP TRIGGER IF EXISTS tv_search_of ON {0};\n"
        "CREATE TRIGGER tv_search AFTER INSERT OR DELETE ON {0} FOR EACH ROW "
        "EXECUTE FUNCTION {1}();\n"
        "CREATE TRIGGER tv_search_of AFTER UPDATE OF {2} ON {0} FOR EACH ROW WHEN ({3}) "
        "EXECUTE FUNCTION {1}();\n",
        qualified(table), texts_, list, changes);
  }

  std::string triggers() const {
    std::string out = fmt::format(
        "CREATE OR REPLACE FUNCTION {0}() RETURNS trigger LANGUAGE plpgsql AS $body$ BEGIN "
        "IF TG_OP <> 'INSERT' THEN "
        "IF TG_RELID <> '{1}'::regclass THEN PERFORM {0}(OLD.{2}); "
        "ELSIF TG_OP = 'DELETE' OR OLD.{2} <> NEW.{2} THEN "
        "DELETE FROM {0} WHERE \"Clave\" = OLD.{2}; END IF; END IF; "
        "IF TG_OP <> 'DELETE' THEN PERFORM {0}(NEW.{2}); END IF; RETURN NULL; END $body$;\n",
        texts_, qualified(index_.table), key_);
    std::vector<std::string> own = {key_, quotedName(index_.title), quotedName(index_.inUse)};
    for (const TextIndex::Part& part : index_.parts) {
      if (part.table == index_.table) {
        own.push_back(quotedName(part.column));
      } else {
        out += triggerOn(part.table, {key_, quotedName(part.column)});
      }
    }
    return out + triggerOn(index_.table, own);
  }

  const TextIndex& index_;
  std::string schema_;
  std::string name_;
  std::string texts_;  // the table, and the functions of its name
  std::string key_;
  std::string condition_;
};

}  // namespace

std::string textIndexDdl(const TextIndex& index, std::string_view schema) {
  return Definition(index, schema).text();
}

void ServerSession::makeTextIndex(const TextIndex& index) {
  execute(textIndexDdl(index, state_->schema));
}

std::vector<TextFound> ServerSession::findText(std::string_view table, std::string_view question,
                                               std::size_t most) {
  enum Column : std::size_t { kKey, kTitle, kCodes, kInUse };
  if (question.find_first_not_of(' ') == std::string_view::npos) return {};
  const Line::Aside aside(*state_->line);
  if (!findText_) {
    findText_ = prepare(
        "SELECT key, title, codes, in_use FROM tavelor.tv_search($1::text::regclass, "
        "btrim($2), $3::integer)");
  }
  const std::string texts = quotedName(state_->schema) + "." +
                            quotedName(std::string(kSearchTables) + std::string(table));
  findText_->bind(1, Value::ofText(texts));
  findText_->bind(2, Value::ofText(question));
  findText_->bind(3, Value::ofInteger(kMostCandidates));
  RowStore rows({ColumnType::kMemo, ColumnType::kMemo, ColumnType::kMemo, ColumnType::kBoolean});
  findText_->fetch(rows);
  TextRanking ranking(question);
  for (std::size_t i = 0; i < rows.rows(); ++i) {
    const RowStore::Row row = rows.row(i);
    ranking.offer(row.text(kKey), row.text(kTitle), row.text(kCodes), row.integer(kInUse) != 0);
  }
  return ranking.best(most);
}

}  // namespace tavelor::engine::postgres
