// SPDX-License-Identifier: MIT
// tavelor stock: what the places that hold stock say of an article, side by side.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "tavelor/articles/articulos_almacenes.hpp"
#include "tavelor/articles/articulos_lotes.hpp"
#include "tavelor/articles/articulos_mov_almacen.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(Stock lies in four places that nobody joins: the article's own total, its rows
by warehouse, its lots, and the ledger of movements. A place without a row of the
article says nothing; another one is compared with the article's total.

  tavelor stock A100
  tavelor stock A100 --check && echo "all agree")";

constexpr std::string_view kNothing = "·";
// Statements carry six decimals: less than half of the last one is no difference.
constexpr double kNoDifference = 5e-7;

struct StockOptions {
  std::string article;
  bool check = false;
};

/// The article's row.
struct Article {
  std::string description;
  double stock = 0;
  double onOrder = 0;
  bool isKept = false;
  bool isSold = false;
  bool hasLots = false;
};

struct Warehouse {
  std::optional<double> stock;
  std::optional<double> ledger;
  double onOrder = 0;
};

struct Lot {
  std::string word;
  double stock = 0;
  bool active = false;
  bool keepsStock = false;
  std::string expires;
};

/// What the places say; nothing where they have no row of the article.
struct Stock {
  std::optional<Article> article;
  std::map<std::string, Warehouse> warehouses;
  std::vector<Lot> lots;
  std::optional<double> inWarehouses;
  std::optional<double> onOrderInWarehouses;
  std::optional<double> inLots;
  std::optional<double> inLedger;
};

// ---------------------------------------------------------------------------------------------
// Reading

class StockReader {
 public:
  StockReader(const std::string& code, const Locale& locale)
      : code_(doubledQuotes(code)), locale_(locale) {}

  Stock read() {
    Stock stock;
    readArticle(stock);
    readWarehouses(stock);
    readLots(stock);
    readLedger(stock);
    return stock;
  }

 private:
  /// `before`, the article's code between quotes, `after`.
  RecordsetPtr select(Statement::Constant before, Statement::Constant after = "'") {
    Statement statement(before);
    statement << spliced(code_) << after;
    RecordsetPtr rows;
    DataSession().OpenRecordset(selector::kMain, statement, rows, connection_);
    return rows;
  }
  std::string text(Recordset& rows, std::string_view column) {
    return shown(rows.Field(column).Value(), locale_);
  }

  void readArticle(Stock& stock) {
    const RecordsetPtr rows = select(
        "SELECT Descripcion, Existencia, Pendiente, Actualizar_Stock, Restar_Stock, Lotes FROM "
        "Articulos WHERE Codigo = '");
    if (rows->RecordCount() == 0) return;
    stock.article = Article{text(*rows, "Descripcion"),
                            asNumber(rows->Field("Existencia").Value()),
                            asNumber(rows->Field("Pendiente").Value()),
                            asFlag(rows->Field("Actualizar_Stock").Value()),
                            asFlag(rows->Field("Restar_Stock").Value()),
                            asFlag(rows->Field("Lotes").Value())};
  }

  void readWarehouses(Stock& stock) {
    const RecordsetPtr rows =
        select("SELECT Almacen, Cantidad, Pendiente FROM Articulos_Almacenes WHERE Codigo = '");
    if (rows->RecordCount() == 0) return;
    stock.inWarehouses = asNumber(ClsArticulosAlmacenes().GetStockActual(code_, connection_));
    stock.onOrderInWarehouses = 0;
    for (; !rows->Eof(); rows->MoveNext()) {
      Warehouse& warehouse = stock.warehouses[text(*rows, "Almacen")];
      const double onOrder = asNumber(rows->Field("Pendiente").Value());
      warehouse.stock = warehouse.stock.value_or(0) + asNumber(rows->Field("Cantidad").Value());
      warehouse.onOrder += onOrder;
      *stock.onOrderInWarehouses += onOrder;
    }
  }

  void readLots(Stock& stock) {
    const RecordsetPtr rows = select(
        "SELECT Lote, Existencia, Activo, Stock, Caduca FROM Articulos_Lotes WHERE Codigo = '",
        "' ORDER BY Id");
    if (rows->RecordCount() == 0) return;
    stock.inLots = asNumber(ClsArticulosLotes().GetStockActualLotes(code_, connection_));
    for (; !rows->Eof(); rows->MoveNext()) {
      stock.lots.push_back({text(*rows, "Lote"), asNumber(rows->Field("Existencia").Value()),
                            asFlag(rows->Field("Activo").Value()),
                            asFlag(rows->Field("Stock").Value()), text(*rows, "Caduca")});
    }
  }

  void readLedger(Stock& stock) {
    const RecordsetPtr rows = select(
        "SELECT Almacen, Movimiento, Sum(Cantidad) AS Suma FROM Articulos_Movimientos_Almacen "
        "WHERE Codigo = '",
        "' GROUP BY Almacen, Movimiento");
    if (rows->RecordCount() == 0) return;
    stock.inLedger = ClsArticulosMovAlmacen().GetTotalMaovArt(code_, connection_);
    for (; !rows->Eof(); rows->MoveNext()) {
      Warehouse& warehouse = stock.warehouses[text(*rows, "Almacen")];
      const double sum = asNumber(rows->Field("Suma").Value());
      const double kind = asNumber(rows->Field("Movimiento").Value());
      warehouse.ledger = warehouse.ledger.value_or(0) + (kind == 0 ? sum : kind == 1 ? -sum : 0);
    }
  }

  std::string code_;  // as a statement and the classes take it
  const Locale& locale_;
  ConnectionPtr connection_;
};

// ---------------------------------------------------------------------------------------------
// Printing

struct Cell {
  Cell(std::string content, bool isMarked = false) : text(std::move(content)), marked(isMarked) {}
  Cell(const char* content) : Cell(std::string(content)) {}
  std::string text;
  bool marked;
};
using Line = std::vector<Cell>;

/// Columns of one width, the first to the left and the others to the right, below their heads.
void printLines(const Line& heads, const std::vector<Line>& lines, const Style& style) {
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < heads.size(); ++i) {
    widths.push_back(text::length(heads[i].text));
    for (const Line& line : lines) widths[i] = std::max(widths[i], text::length(line[i].text));
  }
  const auto print = [&](const Line& line, auto paint) {
    std::size_t filled = line.size();
    while (filled > 0 && line[filled - 1].text.empty()) --filled;
    std::string joined;
    for (std::size_t i = 0; i < filled; ++i) {
      const std::string padded = i == 0 ? text::padRight(line[i].text, widths[i])
                                        : "  " + text::padLeft(line[i].text, widths[i]);
      joined += paint(line[i], padded);
    }
    fmt::print("{}\n", joined);
  };
  fmt::print("\n");
  print(heads, [&](const Cell&, const std::string& text) { return style.bold(text); });
  for (const Line& line : lines) {
    print(line, [&](const Cell& cell, const std::string& text) {
      return cell.marked ? style.red(text) : text;
    });
  }
}

class StockPrinter {
 public:
  StockPrinter(const Stock& stock, const Locale& locale, const Style& style)
      : stock_(stock), locale_(locale), style_(style) {}

  /// Whether all places agree.
  bool print(const std::string& code) {
    printArticle(code);
    printPlaces();
    printWarehouses();
    printLots();
    return agree_;
  }

 private:
  std::string amount(const std::optional<double>& value) const {
    return value ? plainNumber(*value, locale_) : std::string(kNothing);
  }
  /// What `value` has more than `expected`: "" for nothing, "!" behind what there is.
  Cell difference(const std::optional<double>& value, const std::optional<double>& expected) {
    if (!value || !expected) return "";
    const double more = roundHalfAway(*value - *expected, 6);
    if (std::abs(more) <= kNoDifference) return "";
    agree_ = false;
    return {fmt::format("{}{} !", more > 0 ? "+" : "", plainNumber(more, locale_)), true};
  }

  void printArticle(const std::string& code) const {
    if (!stock_.article) {
      fmt::print("{}: there is no article, only its stock\n", printable(code));
      return;
    }
    const Article& article = *stock_.article;
    fmt::print("{}  {}\n", printable(code), printable(article.description));
    fmt::print("{}{}{}\n", article.isKept ? "stock is kept" : "no stock is kept",
               article.isSold ? ", sales take it off" : ", sales do not take it off",
               article.hasLots ? ", by lots" : "");
  }

  void printPlaces() {
    std::optional<double> total;
    std::optional<double> onOrder;
    if (stock_.article) {
      total = stock_.article->stock;
      onOrder = stock_.article->onOrder;
    }
    const auto line = [&](const char* place, const std::optional<double>& stock) {
      return Line{place, amount(stock), difference(stock, total), "", ""};
    };
    std::vector<Line> lines = {line("article", total), line("warehouses", stock_.inWarehouses),
                               line("lots", stock_.inLots), line("ledger", stock_.inLedger)};
    lines[0][3] = amount(onOrder);
    lines[1][3] = amount(stock_.onOrderInWarehouses);
    lines[1][4] = difference(stock_.onOrderInWarehouses, onOrder);
    printLines({"Place", "Stock", "Difference", "On order", "Difference"}, lines, style_);
  }

  void printWarehouses() {
    if (stock_.warehouses.empty()) return;
    // A warehouse that only one of the two knows has nothing in the other.
    const bool both = stock_.inWarehouses && stock_.inLedger;
    std::vector<Line> lines;
    for (const auto& [code, warehouse] : stock_.warehouses) {
      lines.push_back(
          {printable(code), amount(warehouse.stock), amount(warehouse.ledger),
           both ? difference(warehouse.ledger.value_or(0), warehouse.stock.value_or(0)) : "",
           amount(warehouse.onOrder)});
    }
    printLines({"Warehouse", "Stock", "Ledger", "Difference", "On order"}, lines, style_);
  }

  void printLots() const {
    if (stock_.lots.empty()) return;
    const auto yes = [](bool is) { return std::string(is ? "yes" : "no"); };
    std::vector<Line> lines;
    for (const Lot& lot : stock_.lots) {
      lines.push_back({printable(lot.word), amount(lot.stock), yes(lot.active), yes(lot.keepsStock),
                       lot.expires.empty() ? std::string(kNothing) : lot.expires});
    }
    printLines({"Lot", "Stock", "Active", "Keeps stock", "Expires"}, lines, style_);
  }

  const Stock& stock_;
  const Locale& locale_;
  const Style& style_;
  bool agree_ = true;
};

void showStock(const StockOptions& options, const Common& common) {
  Session session(common);
  const Stock stock = StockReader(options.article, session.locale()).read();
  if (!stock.article && stock.warehouses.empty() && stock.lots.empty()) {
    throw std::runtime_error(
        fmt::format("there is no article {} and no stock of it", printable(options.article)));
  }
  const Style style(common.color, stdout);
  const bool agree = StockPrinter(stock, session.locale(), style).print(options.article);
  if (options.check && !agree) throw std::runtime_error("the places that hold stock do not agree");
}

}  // namespace

void addStock(CLI::App& app, Common& common) {
  CLI::App* command =
      app.add_subcommand("stock", "Compare the places that hold an article's stock");
  auto options = std::make_shared<StockOptions>();
  command->add_option("article", options->article, "Code of the article")
      ->required()
      ->type_name("ARTICLE");
  command->add_flag("--check", options->check, "Fail when they do not agree");
  addInstallationOptions(*command, common);
  addColorOption(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { showStock(*options, common); });
}

}  // namespace tavelor::tools
