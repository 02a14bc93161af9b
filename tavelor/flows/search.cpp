// SPDX-License-Identifier: MIT
// Articles and customers by the beginnings of words.
#include "tavelor/flows/search.hpp"

#include <algorithm>
#include <span>
#include <unordered_map>
#include <utility>

#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/literal.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"

namespace tavelor::flows {

namespace {

using engine::TextFound;

constexpr std::size_t kMost = 500;
/// Rows are read so many at a time: so one plan reads them all.
constexpr std::size_t kAtOnce = 20;

/// Appends "(key, key, ..)", the last one as often as it takes.
void addKeys(Statement& statement, std::span<const TextFound> found) {
  Statement::Constant separator = "(";
  for (std::size_t i = 0; i < kAtOnce; ++i) {
    statement << separator << sqlText(found[std::min(i, found.size() - 1)].key);
    separator = ", ";
  }
  statement << ")";
}

/// What the index finds, in its order, as rows that `read` makes of up to kAtOnce keys; `accepts`
/// chooses among them.
template <typename Row, typename Read, typename Accepts>
std::vector<Row> readInOrder(std::span<const TextFound> found, std::size_t most, Read read,
                             Accepts accepts) {
  std::vector<Row> rows;
  for (std::size_t i = 0; i < found.size() && rows.size() < most; i += kAtOnce) {
    const std::span<const TextFound> part = found.subspan(i, std::min(kAtOnce, found.size() - i));
    std::unordered_map<std::string, Row> byKey = read(part);
    for (const TextFound& each : part) {
      const auto row = byKey.find(each.key);
      if (row == byKey.end() || !accepts(row->second) || rows.size() == most) continue;
      row->second.isExact = each.isExact;
      rows.push_back(std::move(row->second));
    }
  }
  return rows;
}

struct Article : FoundArticle {
  bool isInternal = false;
};

/// Prices of another tariff than the three of the article itself.
void readTariff(std::span<const TextFound> found, const std::string& tariff,
                std::unordered_map<std::string, Article>& articles, const ConnectionPtr& main) {
  Statement statement("SELECT Codigo, Precio FROM Articulos_Tarifas WHERE Tarifa = ");
  statement << sqlText(tariff) << " AND Codigo IN ";
  addKeys(statement, found);
  for (Rows rows(selector::kMain, statement, main); rows.hasRow(); rows.next()) {
    const auto article = articles.find(rows.text("Codigo"));
    if (article != articles.end()) article->second.price = rows.number("Precio");
  }
}

std::unordered_map<std::string, Article> readArticles(std::span<const TextFound> found,
                                                      const std::string& tariff,
                                                      const ConnectionPtr& main) {
  Statement statement(
      "SELECT A.Codigo, A.Descripcion, A.Tarifa_A, A.Tarifa_B, A.Tarifa_C, A.Familia, "
      "A.Existencia, A.Actualizar_Stock, A.Activo, A.Interno, T.Impuesto FROM Articulos AS A LEFT "
      "JOIN Tipos_Impuesto AS T ON A.Impuesto = T.Codigo WHERE A.Codigo IN ");
  addKeys(statement, found);
  std::unordered_map<std::string, Article> articles;
  for (Rows rows(selector::kMain, statement, main); rows.hasRow(); rows.next()) {
    Article article;
    article.code = rows.text("Codigo");
    article.description = rows.text("Descripcion");
    article.price = rows.number(tariff == "B"   ? "Tarifa_B"
                                : tariff == "C" ? "Tarifa_C"
                                                : "Tarifa_A");
    article.tax = rows.number("Impuesto");
    article.family = rows.text("Familia");
    if (rows.flag("Actualizar_Stock")) article.stock = rows.number("Existencia");
    article.isActive = rows.flag("Activo");
    article.isInternal = rows.flag("Interno");
    articles.emplace(article.code, std::move(article));
  }
  if (tariff != "A" && tariff != "B" && tariff != "C" && !tariff.empty()) {
    readTariff(found, tariff, articles, main);
  }
  return articles;
}

struct Customer : FoundCustomer {};

std::unordered_map<std::string, Customer> readCustomers(std::span<const TextFound> found,
                                                        const ConnectionPtr& main) {
  Statement statement(
      "SELECT Codigo, Razon_Social, Nombre, NIF, Telefono, Telefono_2, Movil, Poblacion, Activo "
      "FROM Clientes WHERE Codigo IN ");
  addKeys(statement, found);
  std::unordered_map<std::string, Customer> customers;
  for (Rows rows(selector::kMain, statement, main); rows.hasRow(); rows.next()) {
    Customer customer;
    customer.code = rows.text("Codigo");
    customer.name = rows.text("Razon_Social");
    customer.tradeName = rows.text("Nombre");
    customer.fiscalNumber = rows.text("NIF");
    for (const char* const column : {"Telefono", "Telefono_2", "Movil"}) {
      if (customer.phone.empty()) customer.phone = rows.text(column);
    }
    customer.place = rows.text("Poblacion");
    customer.isActive = rows.flag("Activo");
    customers.emplace(customer.code, std::move(customer));
  }
  return customers;
}

}  // namespace

std::vector<FoundArticle> findArticles(const ArticleQuestion& question) {
  const ConnectionPtr main = Apartment::current().openForReading(selector::kMain);
  const std::vector<TextFound> found = main->findText("Articulos", question.words, kMost);
  const std::vector<Article> articles = readInOrder<Article>(
      found, std::min(question.most, kMost),
      [&](std::span<const TextFound> part) { return readArticles(part, question.tariff, main); },
      [&](const Article& article) {
        return (question.withInternal || !article.isInternal) &&
               (question.withOutOfUse || article.isActive);
      });
  return {articles.begin(), articles.end()};
}

std::vector<FoundCustomer> findCustomers(const CustomerQuestion& question) {
  const ConnectionPtr main = Apartment::current().openForReading(selector::kMain);
  const std::vector<TextFound> found = main->findText("Clientes", question.words, kMost);
  const std::vector<Customer> customers = readInOrder<Customer>(
      found, std::min(question.most, kMost),
      [&](std::span<const TextFound> part) { return readCustomers(part, main); },
      [](const Customer&) { return true; });
  return {customers.begin(), customers.end()};
}

void rebuildSearch() {
  Apartment::current().installation().rebuildTextIndexes();
}

}  // namespace tavelor::flows
