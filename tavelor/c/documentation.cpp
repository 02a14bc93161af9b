// SPDX-License-Identifier: MIT
// Finds the comments of the public headers.
#include "tavelor/c/documentation.hpp"

#include <map>
#include <span>
#include <utility>

#include "tavelor/c/documentation_tables.hpp"

namespace tavelor::c {

namespace {

const DocumentedClass* classCalled(std::string_view name) {
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
  const DocumentedClass* const found = classCalled(className);
  return found == nullptr ? "" : found->documentation;
}

const char* documentationOf(std::string_view className, std::string_view member) {
  for (std::string_view of = className; !of.empty();) {
    if (const char* const told = ofMember(of, member)) return told;
    const DocumentedClass* const found = classCalled(of);
    of = found == nullptr ? std::string_view() : found->base;
  }
  return "";
}

}  // namespace tavelor::c
