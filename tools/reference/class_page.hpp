// SPDX-License-Identifier: MIT
// The page of one class, and that of the frame.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tools/reference/class_data.hpp"
#include "tools/reference/comments.hpp"
#include "tools/reference/markdown.hpp"

namespace tavelor {
struct Member;
}

namespace tavelor::reference {

class Site;

/// A class as the pages of all classes need it.
struct ClassEntry {
  ClassData data;
  ClassComment comment;
  std::string keeps;  ///< what docs/classes.md says that it keeps
  std::string page;   ///< the page that tells of it, "docs/closing.md"
};

/// Everything that class pages are made from.
struct Library {
  explicit Library(const Comments& headers) : comments(headers) {}

  const Comments& comments;
  std::vector<ClassEntry> classes;
  std::vector<Table> tables;
  std::map<std::string, Page> pages;  ///< by their paths
  std::set<std::int32_t> errors;      ///< numbers that the page of errors has
};

/// Where a class, or a member of it, is told of: with kRoot.
std::string addressOfClass(std::string_view name, std::string_view member = {});
std::string addressOfTable(const Table& table);
std::string addressOfPage(std::string_view path);

/// The columns of a table, each line with the name of its column as a place behind `idPrefix`.
std::string columnTable(const std::vector<Column>& columns, const std::string& idPrefix);

/// Writes classes/*.html. Raises std::runtime_error, naming them all, for members of slots that no
/// comment tells of.
void writeClasses(const Library& library, Site& site);

}  // namespace tavelor::reference
