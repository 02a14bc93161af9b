// SPDX-License-Identifier: MIT
// A stroke of a key in a search, beside the engine's own index asked by hand.
#include "tavelor/flows/search.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::bench {

namespace {

constexpr std::size_t kArticles = 92'331;
constexpr std::size_t kManyArticles = 766'000;
constexpr double kTarget = 2;

/// Words of a shop's shelves: 300 of them, some on every tenth article and some on few.
class Shelves {
 public:
  std::string description() {
    std::string text = word();
    for (std::size_t words = 2 + dice_.below(4); words > 0; --words) text += " " + word();
    return text + fmt::format(" {},{} {}", 1 + dice_.below(9), dice_.below(10),
                              dice_.below(2) == 0 ? "kg" : "l");
  }

 private:
  std::string word() {
    static constexpr std::array<std::string_view, 12> kBegins{"acei", "choco", "leche", "jab",
                                                              "pan",  "toma",  "vin",   "galle",
                                                              "café", "que",   "arr",   "añe"};
    static constexpr std::array<std::string_view, 25> kEnds{
        "te",   "late", "ra",  "ón",  "ería",  "tes",  "agre",  "tas", "ína",
        "so",   "oz",   "jo",  "",    "cillo", "dor",  "mento", "eta", "ado",
        "illa", "ín",   "era", "osa", "ante",  "uelo", "al"};
    // The smaller of two: words are not alike often.
    const auto place = std::min(dice_.below(300), dice_.below(300));
    return std::string(kBegins[place % kBegins.size()]) +
           std::string(kEnds[place / kBegins.size() % kEnds.size()]);
  }

  Dice dice_{11};
};

void fill(BenchShop& shop, std::size_t count) {
  driver::Query insert = shop.filler().prepare(
      "INSERT INTO Articulos (Codigo, Lista, Referencia, Descripcion, Familia, Tarifa_A, Impuesto, "
      "Existencia, Activo, Actualizar_Stock) VALUES (?1, 'PRC', ?1, ?2, ?3, 1.5, '1', 5, -1, -1)");
  Shelves shelves;
  shop.filler().execute("BEGIN");
  for (std::size_t i = 0; i < count; ++i) {
    const std::string code = fmt::format("{:07}", i * 7);
    const std::string description = shelves.description();
    const std::string family = fmt::format("F{:02}", i % 40);
    insert.bind(1, std::string_view(code)).bind(2, std::string_view(description));
    insert.bind(3, std::string_view(family)).run();
  }
  shop.filler().execute("COMMIT");
}

struct Typed {
  const char* work;
  std::vector<std::string> questions;
};

const std::vector<Typed>& typed() {
  static const std::vector<Typed> all = {
      {"one letter", {"a", "c", "l", "1", "p"}},
      {"two and three letters", {"ch", "cho", "le", "lec", "an"}},
      {"a word, stroke by stroke", {"choc", "choco", "chocol", "chocola", "chocolat", "chocolate"}},
      {"two and three words", {"choco lec", "acei jab 1", "pan cafe", "vin que tom", "aneja gall"}},
      {"a code", {"0064526", "0000007", "0350000", "0123452"}}};
  return all;
}

/// In the engine's language: all words, by their beginnings.
std::string matchOf(const std::string& question) {
  std::string out;
  for (std::size_t at = 0; at < question.size();) {
    const std::size_t end = std::min(question.find(' ', at), question.size());
    out += (out.empty() ? "\"" : " AND \"") + question.substr(at, end - at) + "\"*";
    at = end + 1;
  }
  return out;
}

void measureFiles(Report& report, const Scale& scale, std::size_t articles) {
  BenchShop shop;
  fill(shop, scale.of(articles));
  // What is searched by hand is the index itself, which rows reach behind their writing.
  DataSession().OpenConnection(1)->absorbTexts();
  shop.share();
  driver::Query byHand = shop.floor().prepare(
      "SELECT a.Codigo, a.Descripcion, a.Tarifa_A, a.Familia, a.Existencia, a.Activo "
      "FROM tv_search_Articulos_words w JOIN tv_search_Articulos t ON t.Id = w.rowid "
      "JOIN Articulos a ON a.Codigo = t.Clave WHERE tv_search_Articulos_words MATCH ?1 "
      "ORDER BY rank LIMIT 20");
  for (const Typed& each : typed()) {
    const auto askByHand = [&] {
      std::size_t found = 0;
      for (const std::string& question : each.questions) {
        const std::string match = matchOf(question);
        byHand.bind(1, std::string_view(match));
        found += byHand.fetch().size();
      }
      return static_cast<double>(found);
    };
    const auto ask = [&] {
      std::size_t found = 0;
      for (const std::string& question : each.questions) {
        found += flows::findArticles({.words = question}).size();
      }
      return static_cast<double>(found);
    };
    report.add(compare({.work = fmt::format("search of {} articles: {}", articles, each.work),
                        .rows = each.questions.size(),
                        .target = kTarget,
                        .floor = {askByHand},
                        .ours = {ask}},
                       scale));
  }
}

}  // namespace

void measureSearch(Report& report, const Scale& scale) {
  measureFiles(report, scale, kArticles);
  measureFiles(report, scale, kManyArticles);
}

}  // namespace tavelor::bench
