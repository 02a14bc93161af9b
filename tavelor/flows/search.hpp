// SPDX-License-Identifier: MIT
// Articles and customers by the beginnings of words, as they are typed.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tavelor::flows {

/// An article as a till lists it.
struct FoundArticle {
  std::string code;
  std::string description;
  double price = 0;  ///< euros, tax included, of the tariff that was asked for
  double tax = 0;    ///< percent; 0 where the catalogue has none of the article's
  std::string family;
  std::optional<double> stock;  ///< units, all warehouses; none where no stock is kept
  bool isActive = true;         ///< in use
  bool isExact = false;         ///< its code, reference or a barcode is what was asked for
};

/// What is looked for.
struct ArticleQuestion {
  std::string words;          ///< beginnings of words in any order, a code, a barcode
  std::size_t most = 20;      ///< articles; 500 at most are given
  std::string tariff = "A";   ///< of the prices; tariff A where an article has none of it
  bool withInternal = false;  ///< those too that lists of sales hide
  bool withOutOfUse = true;   ///< those too that are not in use, behind all others
};

/// Articles of the main database that have, for each word of the question, a word beginning with it
/// in their description, code, reference, family, barcodes or suppliers' references. Case, accents
/// and marks count nothing, and n is ñ. The best ones first:
///
/// 1. whose code, reference or barcode is the question;
/// 2. whose code begins with it;
/// 3. whose description begins with a word of it, then the others; in each the shorter ones first.
///
/// Those out of use come behind all that are, but for 1. Where very many have the words, the best
/// of those that the index gives first are given. No words, no articles. Whatever is typed raises
/// nothing; the database's own errors come as they are.
std::vector<FoundArticle> findArticles(const ArticleQuestion& question);

/// A customer as a list shows it.
struct FoundCustomer {
  std::string code;
  std::string name;       ///< legal name
  std::string tradeName;  ///< as the street knows it
  std::string fiscalNumber;
  std::string phone;  ///< the first one there is
  std::string place;
  bool isActive = true;
  bool isExact = false;  ///< its code or fiscal number is what was asked for
};

/// What is looked for.
struct CustomerQuestion {
  std::string words;
  std::size_t most = 20;  ///< customers; 500 at most are given
};

/// Customers by names, code, fiscal number, phones and place, as findArticles() finds articles.
std::vector<FoundCustomer> findCustomers(const CustomerQuestion& question);

/// Makes the indexes of the main database anew from its tables, in one transaction: where a file
/// was damaged, or a program has written past the engine's triggers.
void rebuildSearch();

}  // namespace tavelor::flows
