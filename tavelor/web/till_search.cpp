// SPDX-License-Identifier: MIT
// Articles and customers as they are typed and scanned.
#include "tavelor/flows/search.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/endpoints.hpp"
#include "tavelor/web/routes.hpp"
#include "tavelor/web/till_values.hpp"

namespace tavelor::web {

namespace {

constexpr std::int64_t kMost = 500;
constexpr std::int64_t kUsual = 20;
constexpr std::size_t kWidth = 200;  // of what is looked for

std::string wordsOf(Context& context) {
  std::string words = context.query("q", "");
  if (text::length(words) > kWidth) throw Failure::input("q may have 200 characters at most.");
  return words;
}

std::size_t mostOf(Context& context) {
  return static_cast<std::size_t>(context.queryWhole("most", 1, kMost, kUsual));
}

Json jsonOf(const flows::FoundArticle& article) {
  return {{"code", article.code},
          {"description", article.description},
          {"price", toJson(article.price)},
          {"tax", toJson(article.tax)},
          {"family", article.family},
          {"stock", article.stock ? toJson(*article.stock, 6) : Json(nullptr)},
          {"isActive", article.isActive}};
}

Answer articles(Context& context) {
  mayLook(context);
  flows::ArticleQuestion question;
  question.words = wordsOf(context);
  question.most = mostOf(context);
  question.tariff = context.query("tariff", "A");
  Json found = Json::array();
  for (const flows::FoundArticle& each : flows::findArticles(question)) {
    found.push_back(jsonOf(each));
  }
  return answer({{"articles", std::move(found)}});
}

/// Several articles may have a barcode, or a reference that is another one's code: one in use comes
/// first.
Answer scan(Context& context) {
  mayLook(context);
  const std::string& text = context.path("text");
  if (text::length(text) > kWidth) throw Failure::missing("No article has this code.");
  flows::ArticleQuestion question;
  question.words = text;
  question.most = 5;
  question.tariff = context.query("tariff", "A");
  question.withInternal = true;
  const flows::FoundArticle* chosen = nullptr;
  const auto found = flows::findArticles(question);
  for (const flows::FoundArticle& each : found) {
    if (!each.isExact) continue;
    if (chosen == nullptr || each.code == text || (!chosen->isActive && each.isActive)) {
      chosen = &each;
    }
    if (each.code == text) break;
  }
  if (chosen == nullptr) throw Failure::missing("No article has this code.");
  return answer({{"article", jsonOf(*chosen)}, {"quantity", 1}});
}

}  // namespace

void addTillSearch(Routes& routes) {
  routes.add(Method::kGet, "/api/v1/articles/search", Right::kSignedIn, articles,
             {.summary = "Articles by beginnings of words, codes and barcodes, the best first",
              .parameters = {{"q", "what was typed"},
                             {"most", "how many to give, 20 unless it is told", "integer"},
                             {"tariff", "of the prices; A unless it is told"}}});
  routes.add(Method::kGet, "/api/v1/articles/scan/{text}", Right::kSignedIn, scan,
             {.summary = "The article with exactly that code or barcode",
              .parameters = {{"tariff", "of the price; A unless it is told"}}});
}

}  // namespace tavelor::web
