// SPDX-License-Identifier: MIT
// A file of settings as XML.
#include "tavelor/services/settings_xml.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"

namespace tavelor {

namespace fs = std::filesystem;

std::optional<std::string> readSettingsText(const fs::path& file, std::string_view source) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (status.type() == fs::file_type::not_found) return std::nullopt;
  std::ifstream in(file, std::ios::binary);
  std::string text;
  if (status.type() == fs::file_type::regular && in) {
    text.assign(std::istreambuf_iterator<char>(in), {});
  }
  if (status.type() != fs::file_type::regular || !in) {
    raise(errors::kPathAccess, source,
          fmt::format("The settings file {} cannot be read.", file.string()));
  }
  return text;
}

SettingsXml::SettingsXml(fs::path file, std::string text, std::string_view source)
    : file_(std::move(file)), text_(std::move(text)), source_(source) {
  const pugi::xml_parse_result parsed =
      document_.load_buffer(text_.data(), text_.size(), pugi::parse_default, pugi::encoding_utf8);
  if (!parsed) complainAt(parsed.offset, parsed.description());
}

pugi::xml_node SettingsXml::root(std::string_view name) const {
  const pugi::xml_node root = document_.document_element();
  if (std::string_view(root.name()) != name) {
    complain(root, fmt::format("the outermost element must be <{}>", name));
  }
  return root;
}

void SettingsXml::complainAt(std::ptrdiff_t offset, std::string_view what) const {
  const TextPlace place = placeOf(text_, offset);
  raise(errors::kInvalidCall, source_,
        fmt::format("{}, line {}, column {}: {}.", file_.string(), place.line, place.column, what));
}

void SettingsXml::complain(pugi::xml_node node, std::string_view what) const {
  complainAt(node.offset_debug(), what);
}

void SettingsXml::unknown(pugi::xml_node node, std::string_view kind, std::string_view name,
                          const Names& known) const {
  const std::string near = text::nearest(name, known);
  complain(node, near.empty()
                     ? fmt::format("unknown {} \"{}\"", kind, name)
                     : fmt::format("unknown {} \"{}\"; did you mean \"{}\"?", kind, name, near));
}

void SettingsXml::mustBeOnlyOne(pugi::xml_node node) const {
  if (node.type() != pugi::node_element) complain(node, "a text stands outside the elements");
  if (node.parent().child(node.name()) != node) {
    complain(node, fmt::format("<{}> is given twice", node.name()));
  }
}

void SettingsXml::allowAttributes(pugi::xml_node node, const Names& known) const {
  for (const pugi::xml_attribute attribute : node.attributes()) {
    const std::string_view name = attribute.name();
    if (std::find(known.begin(), known.end(), name) == known.end()) {
      unknown(node, "attribute", name, known);
    }
    if (node.attribute(attribute.name()) != attribute) {
      complain(node, fmt::format("the attribute \"{}\" is given twice", name));
    }
  }
}

void SettingsXml::allowOnlyAttributes(pugi::xml_node node, const Names& known) const {
  allowAttributes(node, known);
  if (node.first_child()) {
    complain(node.first_child(), fmt::format("<{}> takes attributes only", node.name()));
  }
}

}  // namespace tavelor
