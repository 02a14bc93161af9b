// SPDX-License-Identifier: MIT
// A file of settings as XML: what is wrong with it is told with file, line and column, and nothing
// in it is passed over.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace tavelor {

/// The bytes of a file of settings; nothing where there is no file. Raises 75, as `source`, for one
/// that cannot be read.
std::optional<std::string> readSettingsText(const std::filesystem::path& file,
                                            std::string_view source);

/// The parsed file. Complaints are errors of number 5 of `source`, whose text must stay.
class SettingsXml {
 public:
  using Names = std::vector<std::string_view>;

  /// Complains of what does not read as XML.
  SettingsXml(std::filesystem::path file, std::string text, std::string_view source);
  SettingsXml(const SettingsXml&) = delete;
  SettingsXml& operator=(const SettingsXml&) = delete;
  ~SettingsXml() = default;

  /// The outermost element; complains of one of another name.
  pugi::xml_node root(std::string_view name) const;

  [[noreturn]] void complain(pugi::xml_node node, std::string_view what) const;
  /// With the nearest of those that are known.
  [[noreturn]] void unknown(pugi::xml_node node, std::string_view kind, std::string_view name,
                            const Names& known) const;

  /// Complains of a text between the elements, and of an element that is given twice.
  void mustBeOnlyOne(pugi::xml_node node) const;
  /// Complains of other attributes, and of one that is given twice.
  void allowAttributes(pugi::xml_node node, const Names& known) const;
  /// The same for an element that says everything by its attributes.
  void allowOnlyAttributes(pugi::xml_node node, const Names& known) const;

 private:
  [[noreturn]] void complainAt(std::ptrdiff_t offset, std::string_view what) const;

  std::filesystem::path file_;
  std::string text_;
  std::string_view source_;
  pugi::xml_document document_;
};

}  // namespace tavelor
