// SPDX-License-Identifier: MIT
// Which class, and which member of it, a page tells of where it tells of a choice or an oddity.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/reference/class_page.hpp"

namespace tavelor::reference {

/// An item is about the classes that it names; else about those that its section names, itself or
/// by a source of theirs, or the section around that; else it is general. What is general is about
/// the class of a page with one class, and elsewhere about the members that it names.
class Choices {
 public:
  explicit Choices(const Library& library);

  /// Those of the class's page that name the member, which is one of the frame or not.
  std::vector<const Choice*> ofMember(const ClassEntry& entry, std::string_view member,
                                      bool ofFrame) const;
  /// Those that name none of its members.
  std::vector<const Choice*> ofClass(const ClassEntry& entry) const;
  /// General ones of all pages that name a member of the frame, with their pages.
  std::vector<std::pair<std::string, const Choice*>> ofFrame(std::string_view member) const;

 private:
  std::set<std::string> classesOf(const std::set<std::string>& words) const;
  /// Empty for a general one.
  std::set<std::string> classesOf(const Choice& choice, const Page& page) const;
  bool isAlone(const ClassEntry& entry) const { return perPage_.at(entry.page) == 1; }

  const Library& library_;
  std::map<std::string, int> perPage_;                                // classes
  std::map<std::string, std::set<std::string>, std::less<>> byStem_;  // header without its ending
};

}  // namespace tavelor::reference
