// SPDX-License-Identifier: MIT
// What the comments of the public headers say, from the XML that Doxygen makes of them.
#include "tools/reference/comments.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <pugixml.hpp>
#include <sstream>
#include <stdexcept>

#include <fmt/format.h>

#include "tools/reference/html.hpp"

namespace tavelor::reference {

namespace {

constexpr std::string_view kLibrary = "tavelor::";

std::unique_ptr<pugi::xml_document> read(const std::filesystem::path& file) {
  auto document = std::make_unique<pugi::xml_document>();
  const pugi::xml_parse_result result =
      document->load_file(file.c_str(), pugi::parse_default | pugi::parse_ws_pcdata);
  if (!result) throw std::runtime_error(fmt::format("{}: {}", file.string(), result.description()));
  return document;
}

/// Elements of Doxygen that have one of HTML, and those that are read through.
struct Element {
  std::string_view name;
  std::string_view html;
};
constexpr std::array kElements = {
    Element{"para", "p"},
    Element{"computeroutput", "code"},
    Element{"bold", "strong"},
    Element{"emphasis", "em"},
    Element{"itemizedlist", "ul"},
    Element{"orderedlist", "ol"},
    Element{"listitem", "li"},
    Element{"verbatim", "pre"},
    Element{"programlisting", "pre"},
    Element{"table", "table"},
    Element{"row", "tr"},
    Element{"entry", "td"},
    Element{"briefdescription", ""},
    Element{"detaileddescription", ""},
    Element{"codeline", ""},
    Element{"highlight", ""},
    Element{"description", ""},
};
constexpr std::array<std::pair<std::string_view, std::string_view>, 6> kSigns = {
    {{"ndash", "–"},
     {"mdash", "—"},
     {"nonbreakablespace", "&nbsp;"},
     {"sp", " "},
     {"linebreak", "<br>"},
     {"zwj", ""}}};

std::string_view textOf(const pugi::xml_node& node, const char* child) {
  return node.child(child).child_value();
}

/// All text below a node, links included.
std::string wholeText(const pugi::xml_node& node) {
  std::string text;
  for (const pugi::xml_node& child : node.children()) {
    text += child.type() == pugi::node_pcdata ? std::string(child.value()) : wholeText(child);
  }
  return text;
}

/// Members of a class that its users may call, or that stand for such.
bool isPublic(const pugi::xml_node& member) {
  return std::strcmp(member.attribute("prot").value(), "public") == 0;
}

}  // namespace

Comments::Comments(std::filesystem::path folder, std::string pages)
    : folder_(std::move(folder)), pages_(std::move(pages)) {
  const auto index = read(folder_ / "index.xml");
  for (const pugi::xml_node& compound : index->child("doxygenindex").children("compound")) {
    const std::string_view kind = compound.attribute("kind").value();
    if (kind == "namespace") namespaces_.emplace_back(compound.attribute("refid").value());
    if (kind != "class" && kind != "struct") continue;
    ids_.emplace(textOf(compound, "name"), compound.attribute("refid").value());
  }
}

Comments::~Comments() = default;

const pugi::xml_document& Comments::compound(const std::string& id) const {
  auto& document = compounds_[id];
  if (document == nullptr) document = read(folder_ / (id + ".xml"));
  return *document;
}

pugi::xml_node Comments::definition(const std::string& id) const {
  return compound(id).child("doxygen").child("compounddef");
}

std::string Comments::idOf(std::string_view name) const {
  const auto found = ids_.find(fmt::format("{}{}", kLibrary, name));
  if (found == ids_.end()) {
    throw std::runtime_error(fmt::format("no public header declares the class {}", name));
  }
  return found->second;
}

// "classA_1abc" is the place abc of the page classA.
std::string Comments::addressOf(std::string_view id, bool ofMember) const {
  const std::size_t cut = ofMember ? id.rfind("_1") : std::string_view::npos;
  if (cut == std::string_view::npos) return fmt::format("{}{}.html", pages_, id);
  return fmt::format("{}{}.html#{}", pages_, id.substr(0, cut), id.substr(cut + 2));
}

void Comments::show(const pugi::xml_node& node, std::string& out) const {
  if (node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata) {
    out += escaped(node.value());
    return;
  }
  const std::string_view name = node.name();
  const auto inner = [&] {
    for (const pugi::xml_node& child : node.children()) show(child, out);
  };
  if (name == "ref") {
    const bool ofMember = std::strcmp(node.attribute("kindref").value(), "member") == 0;
    std::string text;
    for (const pugi::xml_node& child : node.children()) show(child, text);
    out += link(addressOf(node.attribute("refid").value(), ofMember), text);
    return;
  }
  if (name == "simplesect") {
    out += "<div class=\"note\">";
    inner();
    out += "</div>";
    return;
  }
  for (const auto& [sign, html] : kSigns) {
    if (name == sign) {
      out += html;
      return;
    }
  }
  const auto* const element = std::find_if(kElements.begin(), kElements.end(),
                                           [&](const Element& each) { return each.name == name; });
  if (element == kElements.end()) {
    throw std::runtime_error(fmt::format("nobody knows how to show <{}> of a comment", name));
  }
  if (!element->html.empty()) out += fmt::format("<{}>", element->html);
  inner();
  if (!element->html.empty()) out += fmt::format("</{}>", element->html);
}

std::string Comments::shown(const pugi::xml_node& description) const {
  std::string out;
  for (const pugi::xml_node& child : description.children()) {
    if (child.type() == pugi::node_element) show(child, out);
  }
  return out;
}

// The first sentence comes apart from the rest of its paragraph.
std::string Comments::commentOf(const pugi::xml_node& member) const {
  const std::string brief = shown(member.child("briefdescription"));
  const std::string rest = shown(member.child("detaileddescription"));
  constexpr std::string_view kOpen = "<p>";
  constexpr std::string_view kClose = "</p>";
  if (brief.ends_with(kClose) && rest.starts_with(kOpen)) {
    return brief.substr(0, brief.size() - kClose.size()) + ' ' + rest.substr(kOpen.size());
  }
  return brief + rest;
}

ClassComment Comments::ofClass(std::string_view name) const {
  const std::string id = idOf(name);
  const pugi::xml_node node = definition(id);
  return {.text = commentOf(node),
          .header = node.child("location").attribute("file").value(),
          .address = addressOf(id, false)};
}

// A base that is a template derives from its arguments, as TicketTable<OpensByWord> does.
std::vector<std::string> Comments::basesOf(const pugi::xml_node& node) const {
  std::vector<std::string> bases;
  for (const pugi::xml_node& base : node.children("basecompoundref")) {
    if (base.attribute("refid")) bases.emplace_back(base.attribute("refid").value());
    std::string name = base.child_value();
    for (char& c : name) {
      if (c == '<' || c == '>' || c == ',') c = ' ';
    }
    std::istringstream words(name);
    for (std::string word; words >> word;) {
      const auto argument =
          ids_.find(word.starts_with(kLibrary) ? word : fmt::format("{}{}", kLibrary, word));
      if (argument != ids_.end()) bases.push_back(argument->second);
    }
  }
  return bases;
}

void Comments::takeFields(const std::string& id, std::map<std::string, std::string>& fields) const {
  const pugi::xml_node node = definition(id);
  for (const pugi::xml_node& section : node.children("sectiondef")) {
    for (const pugi::xml_node& member : section.children("memberdef")) {
      if (std::strcmp(member.attribute("kind").value(), "variable") != 0) continue;
      const std::string comment = commentOf(member);
      if (!comment.empty()) fields.emplace(textOf(member, "name"), comment);
    }
  }
  for (const std::string& base : basesOf(node)) {
    if (base != id) takeFields(base, fields);
  }
}

std::optional<MemberComment> Comments::ofMember(std::string_view className, std::string_view name,
                                                const std::vector<std::string>& parameters) const {
  std::vector<std::string> line = {idOf(className)};
  for (std::size_t at = 0; at < line.size(); ++at) {
    const pugi::xml_node node = definition(line[at]);
    pugi::xml_node best;
    pugi::xml_node bestSection;
    std::size_t bestCount = 0;
    for (const pugi::xml_node& section : node.children("sectiondef")) {
      for (const pugi::xml_node& member : section.children("memberdef")) {
        if (textOf(member, "name") != name || !isPublic(member)) continue;
        std::size_t count = 1;
        for (const pugi::xml_node& parameter : member.children("param")) {
          const std::string_view declared = textOf(parameter, "declname");
          if (std::find(parameters.begin(), parameters.end(), declared) != parameters.end()) {
            ++count;
          }
        }
        if (count > bestCount) {
          best = member;
          bestSection = section;
          bestCount = count;
        }
      }
    }
    if (best) {
      MemberComment found;
      found.owner = textOf(node, "compoundname");
      if (found.owner.starts_with(kLibrary)) found.owner.erase(0, kLibrary.size());
      found.declaration = wholeText(best.child("type"));
      if (!found.declaration.empty()) found.declaration += ' ';
      found.declaration += fmt::format("{}{}", name, textOf(best, "argsstring"));
      found.text = commentOf(best);
      found.brief = shown(best.child("briefdescription"));
      if (const std::string group = shown(bestSection.child("description")); !group.empty()) {
        found.group = fmt::format("<b>{}</b> {}", escaped(textOf(bestSection, "header")), group);
      }
      found.address = addressOf(best.attribute("id").value(), true);
      for (const pugi::xml_node& parameter : best.children("param")) {
        for (const pugi::xml_node& type : parameter.child("type").children("ref")) {
          const std::string_view id = type.attribute("refid").value();
          if (id.starts_with("struct")) takeFields(std::string(id), found.fields);
        }
      }
      return found;
    }
    for (const std::string& base : basesOf(node)) {
      if (std::find(line.begin(), line.end(), base) == line.end()) line.push_back(base);
    }
  }
  return std::nullopt;
}

std::vector<ErrorNumber> Comments::errors() const {
  std::vector<ErrorNumber> all;
  for (const pugi::xml_node& section :
       definition("namespacetavelor_1_1errors").children("sectiondef")) {
    for (const pugi::xml_node& member : section.children("memberdef")) {
      const std::string value = wholeText(member.child("initializer"));  // "= 3021"
      all.push_back({std::string(textOf(member, "name")),
                     std::stoi(value.substr(value.find_first_of("-0123456789"))),
                     commentOf(member)});
    }
  }
  return all;
}

std::vector<Symbol> Comments::symbols() const {
  std::vector<std::string> all = namespaces_;
  for (const auto& [name, id] : ids_) all.push_back(id);
  std::vector<Symbol> found;
  for (const std::string& id : all) {
    const pugi::xml_node node = definition(id);
    const bool isSpecialised = std::strchr(node.child_value("compoundname"), '<') != nullptr;
    if (isSpecialised || (node.attribute("prot") && !isPublic(node))) continue;
    const std::string qualified(textOf(node, "compoundname"));
    const std::string name =
        qualified.starts_with(kLibrary) ? qualified.substr(kLibrary.size()) : qualified;
    if (std::strcmp(node.attribute("kind").value(), "namespace") != 0) {
      found.push_back({name, "C++ class", addressOf(id, false),
                       plainOf(shown(node.child("briefdescription")))});
    }
    std::string last;  // one entry for neighbouring overloads
    for (const pugi::xml_node& section : node.children("sectiondef")) {
      for (const pugi::xml_node& member : section.children("memberdef")) {
        const std::string_view kind = member.attribute("kind").value();
        const std::string_view own = textOf(member, "name");
        if (kind != "function" || !isPublic(member) || own == last ||
            name.substr(name.rfind(':') + 1) == own || own.starts_with('~')) {
          continue;
        }
        last = own;
        found.push_back({fmt::format("{}::{}", name, own), "C++ member",
                         addressOf(member.attribute("id").value(), true),
                         plainOf(shown(member.child("briefdescription")))});
      }
    }
  }
  return found;
}

}  // namespace tavelor::reference
