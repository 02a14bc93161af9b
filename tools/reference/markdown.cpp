// SPDX-License-Identifier: MIT
// The pages of the repository: as HTML, and cut into the choices that they tell of.
#include "tools/reference/markdown.hpp"

#include <map>
#include <memory>
#include <stdexcept>

#include <cmark-gfm-core-extensions.h>
#include <cmark-gfm.h>
#include <fmt/format.h>

#include "tools/reference/html.hpp"

namespace tavelor::reference {

namespace {

struct Free {
  void operator()(cmark_parser* parser) const { cmark_parser_free(parser); }
  void operator()(cmark_node* node) const { cmark_node_free(node); }
  void operator()(cmark_iter* iterator) const { cmark_iter_free(iterator); }
};
using Parser = std::unique_ptr<cmark_parser, Free>;
using Node = std::unique_ptr<cmark_node, Free>;
using Iterator = std::unique_ptr<cmark_iter, Free>;

/// Calls `visit` with each node when it is entered. The visitor may put nodes before or around the
/// one that it is given, where that one has no children.
template <typename Visit>
void walk(cmark_node* root, Visit visit) {
  const Iterator iterator(cmark_iter_new(root));
  for (cmark_event_type event = cmark_iter_next(iterator.get()); event != CMARK_EVENT_DONE;
       event = cmark_iter_next(iterator.get())) {
    if (event == CMARK_EVENT_ENTER) visit(cmark_iter_get_node(iterator.get()));
  }
}

std::string literal(cmark_node* node) {
  const char* const text = cmark_node_get_literal(node);
  return text == nullptr ? "" : text;
}

std::string plainText(cmark_node* root) {
  std::string text;
  walk(root, [&](cmark_node* node) {
    const cmark_node_type type = cmark_node_get_type(node);
    if (type == CMARK_NODE_TEXT || type == CMARK_NODE_CODE || type == CMARK_NODE_CODE_BLOCK) {
      text += literal(node);
    } else if (type == CMARK_NODE_SOFTBREAK || cmark_node_first_child(node) != nullptr) {
      if (!text.empty() && text.back() != ' ' && type != CMARK_NODE_STRONG &&
          type != CMARK_NODE_EMPH && type != CMARK_NODE_LINK) {
        text += ' ';
      }
    }
  });
  return text;
}

std::set<std::string> codeWords(cmark_node* root) {
  std::set<std::string> words;
  walk(root, [&](cmark_node* node) {
    if (cmark_node_get_type(node) == CMARK_NODE_CODE) words.insert(literal(node));
  });
  return words;
}

std::string rendered(cmark_node* node) {
  const std::unique_ptr<char, decltype(&std::free)> html(
      cmark_render_html(node, CMARK_OPT_UNSAFE, nullptr), &std::free);
  return html.get();
}

void linkTo(cmark_node* node, const std::string& address) {
  cmark_node* const around = cmark_node_new(CMARK_NODE_LINK);
  cmark_node_set_url(around, address.c_str());
  cmark_node_insert_before(node, around);
  cmark_node_append_child(around, node);
}

bool isWithinLink(cmark_node* node) {
  for (; node != nullptr; node = cmark_node_parent(node)) {
    if (cmark_node_get_type(node) == CMARK_NODE_LINK) return true;
  }
  return false;
}

void mapAddresses(cmark_node* root, const Addresses& addresses) {
  std::vector<cmark_node*> words;
  walk(root, [&](cmark_node* node) {
    if (cmark_node_get_type(node) == CMARK_NODE_LINK) {
      cmark_node_set_url(node, addresses.ofLink(cmark_node_get_url(node)).c_str());
    } else if (cmark_node_get_type(node) == CMARK_NODE_CODE && !isWithinLink(node)) {
      words.push_back(node);
    }
  });
  for (cmark_node* const word : words) {
    if (const std::string address = addresses.ofCode(literal(word)); !address.empty()) {
      linkTo(word, address);
    }
  }
}

/// Gives each heading its anchor, and what stands below it to its section.
class Cutter {
 public:
  explicit Cutter(Page& page) : page_(page) {}

  void block(cmark_node* node) {
    if (cmark_node_get_type(node) == CMARK_NODE_HEADING) {
      heading(node);
      return;
    }
    const bool isList = cmark_node_get_type(node) == CMARK_NODE_LIST;
    if (!page_.sections.empty()) {
      Section& section = page_.sections.back();
      if (isFirst_) section.words.merge(codeWords(node));
      section.text += plainText(node) + ' ';
    }
    if (isList) {
      for (cmark_node* item = cmark_node_first_child(node); item != nullptr;
           item = cmark_node_next(item)) {
        page_.choices.push_back({lead_, rendered(item), codeWords(item), path_});
      }
    }
    lead_ = cmark_node_get_type(node) == CMARK_NODE_PARAGRAPH ? rendered(node) : "";
    isFirst_ = false;
  }

 private:
  void heading(cmark_node* node) {
    Section section;
    section.level = cmark_node_get_heading_level(node);
    section.title = plainText(node);
    section.anchor = anchorOf(section.title);
    if (const int again = anchors_[section.anchor]++; again > 0) {
      section.anchor += fmt::format("-{}", again);
    }
    section.words = codeWords(node);
    cmark_node* const anchor = cmark_node_new(CMARK_NODE_CUSTOM_INLINE);
    cmark_node_set_on_enter(anchor, fmt::format("<a id=\"{}\"></a>", section.anchor).c_str());
    cmark_node_prepend_child(node, anchor);

    while (!path_.empty() && page_.sections[path_.back()].level >= section.level) path_.pop_back();
    path_.push_back(page_.sections.size());
    if (page_.title.empty()) page_.title = section.title;
    page_.sections.push_back(std::move(section));
    lead_.clear();
    isFirst_ = true;
  }

  Page& page_;
  std::vector<std::size_t> path_;
  std::map<std::string, int> anchors_;
  std::string lead_;
  bool isFirst_ = false;
};

}  // namespace

Page pageOf(std::string_view markdown, const Addresses& addresses) {
  cmark_gfm_core_extensions_ensure_registered();
  const Parser parser(cmark_parser_new(CMARK_OPT_DEFAULT));
  cmark_syntax_extension* const tables = cmark_find_syntax_extension("table");
  if (tables == nullptr) throw std::runtime_error("cmark-gfm knows no tables");
  cmark_parser_attach_syntax_extension(parser.get(), tables);
  cmark_parser_feed(parser.get(), markdown.data(), markdown.size());
  const Node document(cmark_parser_finish(parser.get()));

  mapAddresses(document.get(), addresses);
  Page page;
  Cutter cutter(page);
  for (cmark_node* node = cmark_node_first_child(document.get()); node != nullptr;
       node = cmark_node_next(node)) {
    cutter.block(node);
  }
  page.html = rendered(document.get());
  return page;
}

}  // namespace tavelor::reference
