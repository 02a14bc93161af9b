// SPDX-License-Identifier: MIT
// The pages of the repository: as HTML, and cut into the choices that they tell of.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tavelor::reference {

/// An item of a list on a page: one choice or one oddity.
struct Choice {
  std::string lead;               ///< what introduces its list: "Kept as they are, ...:", HTML
  std::string html;               ///< the item itself
  std::set<std::string> words;    ///< what it says in code
  std::vector<std::size_t> path;  ///< the sections that it stands in, outermost first
};

struct Section {
  int level = 1;
  std::string title;  ///< plain
  std::string anchor;
  std::set<std::string> words;  ///< what its heading and its first paragraph say in code
  std::string text;             ///< all of it, plain, for the search
};

struct Page {
  std::string title;
  std::string html;
  std::vector<Section> sections;
  std::vector<Choice> choices;
};

/// Where a page's links and its words in code lead to.
struct Addresses {
  std::function<std::string(const std::string& target)> ofLink;  ///< never ""
  std::function<std::string(const std::string& word)> ofCode;    ///< "" for no link
};

/// Renders GitHub's Markdown with tables.
Page pageOf(std::string_view markdown, const Addresses& addresses);

}  // namespace tavelor::reference
