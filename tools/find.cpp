// SPDX-License-Identifier: MIT
// tavelor find: articles and customers by the beginnings of words.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "tavelor/flows/search.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/text.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"
#include "tools/session.hpp"
#include "tools/table.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(Words in any order, without regard to case and accents, a code or a barcode. What is
it exactly comes first, then codes that begin so, then descriptions by their words.

  tavelor find ace oli
  tavelor find 8410076472885
  tavelor find peña --customers
  tavelor find --rebuild                   makes the indexes anew from the tables)";

struct FindOptions {
  std::vector<std::string> words;
  std::size_t most = 20;
  bool customers = false;
  bool rebuild = false;
};

/// Columns as wide as their widest cell; the last `numbers` of them stand at the right.
void print(const std::vector<std::vector<std::string>>& rows, std::size_t numbers,
           const Style& style) {
  std::vector<std::size_t> widths(rows.front().size());
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], text::length(row[i]));
    }
  }
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (i > 0) line += "  ";
      const bool isNumber = i + numbers >= row.size();
      line += isNumber ? text::alignRight(row[i], widths[i]) : text::alignLeft(row[i], widths[i]);
    }
    line = std::string(text::trimRight(line));
    fmt::print("{}\n", &row == &rows.front() ? style.bold(line) : line);
  }
  const std::size_t count = rows.size() - 1;
  fmt::print("{}\n", style.dim(fmt::format("({} {})", count, count == 1 ? "row" : "rows")));
}

std::vector<std::vector<std::string>> articleRows(const std::string& words, std::size_t most,
                                                  const Locale& locale) {
  std::vector<std::vector<std::string>> rows = {
      {"Code", "Description", "Family", "Stock", "Tax", "Price"}};
  for (const flows::FoundArticle& article : flows::findArticles({.words = words, .most = most})) {
    const std::string note = article.isActive ? "" : " (out of use)";
    rows.push_back(
        {printable(article.code), printable(article.description) + note, printable(article.family),
         article.stock ? format(*article.stock, "General Number", locale) : "",
         format(article.tax, "General Number", locale), format(article.price, "Standard", locale)});
  }
  return rows;
}

std::vector<std::vector<std::string>> customerRows(const std::string& words, std::size_t most) {
  std::vector<std::vector<std::string>> rows = {
      {"Code", "Name", "Trade name", "NIF", "Phone", "Place"}};
  for (const flows::FoundCustomer& customer :
       flows::findCustomers({.words = words, .most = most})) {
    const std::string note = customer.isActive ? "" : " (out of use)";
    rows.push_back({printable(customer.code), printable(customer.name) + note,
                    printable(customer.tradeName), printable(customer.fiscalNumber),
                    printable(customer.phone), printable(customer.place)});
  }
  return rows;
}

void find(const FindOptions& options, const Common& common) {
  std::string words;
  for (const auto* const texts : {&options.words, &common.literal}) {
    for (const std::string& word : *texts) words += (words.empty() ? "" : " ") + word;
  }
  if (options.rebuild != words.empty()) {
    throw UsageError("find takes words, or --rebuild alone");
  }
  const Session session(common);
  const Style style(common.color, stdout);
  if (options.rebuild) {
    flows::rebuildSearch();
    fmt::print("the indexes of articles and customers are made anew\n");
  } else if (options.customers) {
    print(customerRows(words, options.most), 0, style);
  } else {
    constexpr std::size_t kNumbers = 3;
    print(articleRows(words, options.most, session.locale()), kNumbers, style);
  }
}

}  // namespace

void addFind(CLI::App& app, Common& common) {
  CLI::App* command =
      app.add_subcommand("find", "Find articles or customers by the beginnings of words");
  auto options = std::make_shared<FindOptions>();
  command->add_option("words", options->words, "Beginnings of words, a code or a barcode")
      ->type_name("WORD");
  command->add_option("--most", options->most, "Rows at most, 20 without it")
      ->type_name("N")
      ->check(notNegative);
  command->add_flag("--customers", options->customers, "Customers in place of articles");
  command->add_flag("--rebuild", options->rebuild, "Make the indexes anew from the tables")
      ->excludes("--customers", "--most");
  addInstallationOptions(*command, common);
  addColorOption(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { find(*options, common); });
}

}  // namespace tavelor::tools
