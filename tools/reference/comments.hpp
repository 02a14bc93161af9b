// SPDX-License-Identifier: MIT
// What the comments of the public headers say, from the XML that Doxygen makes of them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pugi {
class xml_document;
class xml_node;
}  // namespace pugi

namespace tavelor::reference {

/// What a header says of a member that has a slot. Addresses are those of Site.
struct MemberComment {
  std::string owner;        ///< the class that declares it, without its namespace
  std::string declaration;  ///< as C++
  std::string text;         ///< HTML
  std::string brief;        ///< its first sentence, HTML
  std::string address;      ///< its place in the C++ reference
  std::string group;        ///< what heads it and its neighbours in the header, HTML; often ""
  /// Comments of the fields, by name, where it takes its parameters as one aggregate; HTML.
  std::map<std::string, std::string> fields;
};

struct ClassComment {
  std::string text;     ///< HTML
  std::string header;   ///< "tavelor/closing/cierres.hpp"
  std::string address;  ///< of its page in the C++ reference
};

/// A number that errors bear.
struct ErrorNumber {
  std::string name;  ///< "kNoCurrentRecord"
  std::int32_t number = 0;
  std::string text;  ///< HTML
};

/// A name of the C++ reference, for the index of the search.
struct Symbol {
  std::string name;
  std::string kind;
  std::string address;
  std::string brief;
};

/// Raises std::runtime_error for XML that is not there, does not read, or has an element that
/// nobody here knows to show: nothing of a comment is lost in silence.
class Comments {
 public:
  /// `folder` is the one with index.xml; the addresses of the C++ reference begin with `pages`.
  Comments(std::filesystem::path folder, std::string pages);
  ~Comments();
  Comments(const Comments&) = delete;
  Comments& operator=(const Comments&) = delete;

  ClassComment ofClass(std::string_view name) const;
  /// Of a class or its bases, nearest first. Of overloads the one that has `parameters` by name, or
  /// most of them. Nothing where no header declares it.
  std::optional<MemberComment> ofMember(std::string_view className, std::string_view name,
                                        const std::vector<std::string>& parameters) const;
  /// The constants of tavelor::errors, in their order.
  std::vector<ErrorNumber> errors() const;
  /// All classes with their public functions, and the functions of namespaces.
  std::vector<Symbol> symbols() const;

 private:
  const pugi::xml_document& compound(const std::string& id) const;
  pugi::xml_node definition(const std::string& id) const;
  std::string idOf(std::string_view name) const;
  std::string addressOf(std::string_view id, bool ofMember) const;
  /// HTML of a description and what it holds.
  std::string shown(const pugi::xml_node& description) const;
  void show(const pugi::xml_node& node, std::string& out) const;
  std::string commentOf(const pugi::xml_node& member) const;
  /// Ids of the classes that one derives from.
  std::vector<std::string> basesOf(const pugi::xml_node& node) const;
  void takeFields(const std::string& id, std::map<std::string, std::string>& fields) const;

  std::filesystem::path folder_;
  std::string pages_;
  std::map<std::string, std::string, std::less<>> ids_;  // of classes, by the qualified name
  std::vector<std::string> namespaces_;                  // their ids
  mutable std::map<std::string, std::unique_ptr<pugi::xml_document>> compounds_;
};

}  // namespace tavelor::reference
