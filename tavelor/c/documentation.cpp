// SPDX-License-Identifier: MIT
// Finds the comments of the public headers.
#include "tavelor/c/documentation.hpp"

#include <algorithm>
#include <map>
#include <span>
#include <utility>

#include "tavelor/c/documentation_tables.hpp"

namespace tavelor::c {

namespace {

const DocumentedClass* documentedClass(std::string_view name) {
  static const auto all = [] {
    std::map<std::string_view, const DocumentedClass*> made;
    for (const DocumentedClass& each : std::span(kDocumentedClasses, kDocumentedClassCount)) {
      made.emplace(each.name, &each);
    }
    return made;
  }();
  const auto found = all.find(name);
  return found == all.end() ? nullptr : found->second;
}

const char* ofMember(std::string_view className, std::string_view member) {
  using Key = std::pair<std::string_view, std::string_view>;
  static const auto all = [] {
    std::map<Key, const char*> made;
    for (const DocumentedMember& each : std::span(kDocumentedMembers, kDocumentedMemberCount)) {
      made.emplace(Key(each.of, each.name), each.documentation);
    }
    return made;
  }();
  const auto found = all.find({className, member});
  return found == all.end() ? nullptr : found->second;
}

}  // namespace

const char* documentationOf(std::string_view className) {
  const DocumentedClass* const found = documentedClass(className);
  return found == nullptr ? "" : found->documentation;
}

const char* documentationOf(std::string_view className, std::string_view member) {
  // The only member that C++ calls otherwise.
  if (className == "Recordset" && member == "Connect") member = "ActiveConnection";
  if (const char* const told = ofMember(className, member)) return told;
  const DocumentedClass* const found = documentedClass(className);
  std::string_view bases = found == nullptr ? std::string_view() : found->bases;
  while (!bases.empty()) {
    const std::size_t end = std::min(bases.find(' '), bases.size());
    if (const char* told = documentationOf(bases.substr(0, end), member); *told != '\0')
      return told;
    bases.remove_prefix(std::min(end + 1, bases.size()));
  }
  return "";
}

}  // namespace tavelor::c
