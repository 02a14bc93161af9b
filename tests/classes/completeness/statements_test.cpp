// SPDX-License-Identifier: MIT
// The statements of the library and those of the corpus are the same.
//
// Statements are joined from literals and values. So each literal of a class that is a piece of a
// statement has its place in the corpus; and the text between two values of a statement of the
// corpus is made of literals of the classes.
#include <algorithm>
#include <array>
#include <sstream>
#include <unordered_map>

#include <gtest/gtest.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tests/classes/completeness/sources.hpp"
#include "tests/support/shop.hpp"

namespace tavelor {
namespace {

using test::Literal;
using test::literalsOf;
using test::piecesOf;
using tests::CorpusCase;

/// Folders of the library that make the statements of the corpus: those of the frame and the
/// classes. What flows and records of invoices ask beside them is theirs to change, on their way to
/// the tax office too.
std::vector<std::string> folders() {
  const std::set<std::string> others = {"tavelor/platform", "tavelor/services", "tavelor/fiscal",
                                        "tavelor/flows",    "tavelor/sending",  "tavelor/signing",
                                        "tavelor/web"};
  std::vector<std::string> found;
  const std::filesystem::path root = tests::detail::kSource;
  for (const auto& entry : std::filesystem::directory_iterator(root / "tavelor")) {
    std::string folder = entry.path().lexically_relative(root).string();
    if (entry.is_directory() && others.count(folder) == 0) found.push_back(std::move(folder));
  }
  return found;
}

struct Piece {
  std::string text;
  std::string place;  ///< "file:line"
};

const std::vector<Piece>& pieces() {
  static const std::vector<Piece> all = [] {
    std::vector<Piece> found;
    for (const std::string& folder : folders()) {
      for (const auto& [file, text] : test::textsBelow(folder, {".cpp", ".hpp"})) {
        for (const Literal& literal : literalsOf(text)) {
          for (std::string& piece : piecesOf(literal.text)) {
            found.push_back({std::move(piece), file + ":" + std::to_string(literal.line)});
          }
        }
      }
    }
    return found;
  }();
  return all;
}

/// What a statement of the corpus says between its values.
std::vector<std::string> segmentsOf(std::string_view marked) {
  std::vector<std::string> segments;
  while (true) {
    const std::size_t open = marked.find(tests::detail::kOpen);
    segments.emplace_back(marked.substr(0, open));
    if (open == std::string_view::npos) return segments;
    marked.remove_prefix(marked.find(tests::detail::kClose) + tests::detail::kClose.size());
  }
}

const std::vector<CorpusCase>& corpus() {
  static const std::vector<CorpusCase> all = [] {
    std::vector<CorpusCase> cases;
    for (const auto& file : tests::corpusFiles()) {
      for (CorpusCase& each : tests::readCorpus(file)) cases.push_back(std::move(each));
    }
    return cases;
  }();
  return all;
}

/// Whether a word of statements stands alone in the text, as statements write it.
bool looksLikeAStatement(std::string_view text) {
  constexpr std::array kWords = {"SELECT", "INSERT", "UPDATE",   "DELETE",   "FROM",   "From",
                                 "WHERE",  "Where",  "where",    "VALUES",   "Values", "values",
                                 "SET",    "JOIN",   "Order By", "Order by", "HAVING", "GROUP BY"};
  const auto isLetter = [&](std::size_t at) {
    return at < text.size() &&
           (std::isalnum(static_cast<unsigned char>(text[at])) != 0 || text[at] == '_');
  };
  return std::any_of(kWords.begin(), kWords.end(), [&](std::string_view word) {
    for (std::size_t at = text.find(word); at != std::string_view::npos;
         at = text.find(word, at + 1)) {
      if ((at == 0 || !isLetter(at - 1)) && !isLetter(at + word.size())) return true;
    }
    return false;
  });
}

TEST(Statements, EachPieceOfAStatementInTheLibraryStandsInTheCorpus) {
  std::vector<std::string> segments;
  for (const CorpusCase& each : corpus()) {
    for (std::string& segment : segmentsOf(each.marked)) segments.push_back(std::move(segment));
  }
  std::size_t looked = 0;
  for (const Piece& piece : pieces()) {
    const bool isSignature = piece.text.front() == '[';
    if (isSignature || !looksLikeAStatement(piece.text)) continue;
    ++looked;
    EXPECT_TRUE(std::any_of(
        segments.begin(), segments.end(),
        [&](const std::string& segment) { return segment.find(piece.text) != std::string::npos; }))
        << piece.place << ": no statement of tests/dialect/corpus says\n"
        << piece.text;
  }
  EXPECT_GT(looked, 500U) << "literals are not found any more";
}

/// Whether the text is some of the pieces, one behind the other.
class Joiner {
 public:
  Joiner() {
    std::set<std::string_view> unique;
    for (const Piece& piece : pieces()) {
      if (unique.insert(piece.text).second) byFirst_[piece.text.front()].push_back(piece.text);
    }
  }
  bool canMake(std::string_view text) const {
    std::vector<bool> reached(text.size() + 1);
    reached[0] = true;
    for (std::size_t at = 0; at < text.size(); ++at) {
      const auto starting = byFirst_.find(text[at]);
      if (!reached[at] || starting == byFirst_.end()) continue;
      for (const std::string_view piece : starting->second) {
        if (text.substr(at).starts_with(piece)) reached[at + piece.size()] = true;
      }
    }
    return reached[text.size()];
  }

 private:
  std::unordered_map<char, std::vector<std::string_view>> byFirst_;
};

TEST(Statements, EachStatementOfTheCorpusIsMadeOfPiecesOfTheLibrary) {
  const Joiner joiner;
  for (const CorpusCase& each : corpus()) {
    for (const std::string& segment : segmentsOf(each.marked)) {
      EXPECT_TRUE(joiner.canMake(segment))
          << each.name << " (line " << each.line << "): no literals of the library make\n"
          << segment;
    }
  }
}

// "ClsBancos.GetIbanBic / note", "ClsBancos.GetValor, GetWeb / note".
TEST(Statements, EachStatementOfTheCorpusBearsTheNamesOfMembers) {
  for (const CorpusCase& each : corpus()) {
    const std::string title = each.name.substr(0, each.name.find(" / "));
    const std::size_t dot = title.find('.');
    ASSERT_NE(dot, std::string::npos) << each.name;
    std::istringstream names(title.substr(dot + 1));
    for (std::string name; std::getline(names >> std::ws, name, ',');) {
      EXPECT_NO_THROW(component(title.substr(0, dot)).member(name)) << each.name;
    }
  }
}

// "ClsClientes.IniciaRs / 347, series A": what the title begins with is a mode of the class, one of
// its data or one whose statement it makes; those of that kind stand nowhere else to be found.
TEST(Statements, EachModeOfTheCorpusIsKnownByItsClassAndTheOtherWayRound) {
  constexpr std::string_view kMember = ".IniciaRs / ";
  std::map<std::string, std::vector<std::string>> titles;
  for (const CorpusCase& each : corpus()) {
    const std::size_t at = each.name.find(kMember);
    if (at != std::string::npos) {
      titles[each.name.substr(0, at)].push_back(each.name.substr(at + kMember.size()));
    }
  }
  ASSERT_GT(titles.size(), 30U) << "titles are not found any more";
  for (const auto& [name, found] : titles) {
    const test::Shop shop;
    const std::unique_ptr<Object> object = component(name).make();
    const ClassInfo& info = dynamic_cast<const RecordClass&>(*object).info();
    std::vector<std::string_view> words(info.madeModes.begin(), info.madeModes.end());
    for (const Mode& mode : info.modes) words.push_back(mode.word);
    words.insert(words.end(), {"todos", "any other word"});
    for (const std::string& title : found) {
      EXPECT_TRUE(std::any_of(
          words.begin(), words.end(),
          [&](std::string_view word) { return !word.empty() && title.starts_with(word); }))
          << name << " has no mode " << title;
    }
    for (const std::string_view word : info.madeModes) {
      EXPECT_TRUE(std::any_of(found.begin(), found.end(),
                              [&](const std::string& title) { return title.starts_with(word); }))
          << "no statement of tests/dialect/corpus is that of " << name << " / " << word;
    }
  }
}

// ---- The checks themselves

TEST(StatementPieces, LiteralsAreJoinedAndCommentsLeftOut) {
  const std::vector<Literal> found = literalsOf(
      "// \"no\"\n#include \"no.hpp\"\nf(\"SELECT a\"\n  \" FROM \\\"b\\\"\" /* \"no\" */ \" c\", "
      "'+', 1'000, \"d\");");
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0].text, "SELECT a FROM \"b\" c");
  EXPECT_EQ(found[0].line, 3);
  EXPECT_EQ(found[1].text, "+");
  EXPECT_EQ(found[2].text, "d");
}

TEST(StatementPieces, PlacesOfValuesPartALiteral) {
  EXPECT_EQ(piecesOf("a = '{id}' and {} or {X}"),
            (std::vector<std::string>{"a = '", "' and ", " or {X}"}));
}

}  // namespace
}  // namespace tavelor
