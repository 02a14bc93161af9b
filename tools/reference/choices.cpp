// SPDX-License-Identifier: MIT
// Which class, and which member of it, a page tells of where it tells of a choice or an oddity.
#include "tools/reference/choices.hpp"

#include <algorithm>

#include "tavelor/frame/component.hpp"

namespace tavelor::reference {

namespace {

/// "Insertar", "ClsCierres.Insertar" and "AddNew(true)" name a member.
bool names(const std::string& word, std::string_view className, std::string_view member) {
  std::string_view rest = word;
  if (rest.starts_with(className) && rest.substr(className.size()).starts_with('.')) {
    rest.remove_prefix(className.size() + 1);
  }
  return rest.starts_with(member) && (rest.size() == member.size() || rest[member.size()] == '(');
}

bool namesMember(const Choice& choice, std::string_view className, std::string_view member) {
  return std::any_of(choice.words.begin(), choice.words.end(),
                     [&](const std::string& word) { return names(word, className, member); });
}

}  // namespace

Choices::Choices(const Library& library) : library_(library) {
  for (const ClassEntry& each : library.classes) {
    const std::string& header = each.comment.header;
    ++perPage_[each.page];
    byStem_[header.substr(0, header.rfind('.'))].insert(each.data.component->name());
  }
}

std::set<std::string> Choices::classesOf(const std::set<std::string>& words) const {
  std::set<std::string> found;
  for (const std::string& word : words) {
    const std::string name = word.substr(0, word.find('.'));
    for (const ClassEntry& each : library_.classes) {
      if (each.data.component->name() == name) found.insert(name);
    }
    // A class is told in several sources, whose names begin as its header's does.
    const std::string stem = word.substr(0, word.rfind('.'));
    const std::set<std::string>* nearest = nullptr;
    std::size_t length = 0;
    for (const auto& [header, classes] : byStem_) {
      if (stem.starts_with(header) && header.size() > length) {
        nearest = &classes;
        length = header.size();
      }
    }
    if (nearest != nullptr) found.insert(nearest->begin(), nearest->end());
  }
  return found;
}

std::set<std::string> Choices::classesOf(const Choice& choice, const Page& page) const {
  std::set<std::string> named = classesOf(choice.words);
  for (auto section = choice.path.rbegin(); section != choice.path.rend() && named.empty();
       ++section) {
    named = classesOf(page.sections[*section].words);
  }
  return named;
}

std::vector<const Choice*> Choices::ofMember(const ClassEntry& entry, std::string_view member,
                                             bool ofFrame) const {
  const std::string& name = entry.data.component->name();
  const Page& page = library_.pages.at(entry.page);
  std::vector<const Choice*> found;
  for (const Choice& choice : page.choices) {
    if (!namesMember(choice, name, member)) continue;
    const auto classes = classesOf(choice, page);
    const bool concerns = classes.empty() ? isAlone(entry) || !ofFrame : classes.count(name) != 0;
    if (concerns) found.push_back(&choice);
  }
  return found;
}

std::vector<const Choice*> Choices::ofClass(const ClassEntry& entry) const {
  const Component& component = *entry.data.component;
  const Page& page = library_.pages.at(entry.page);
  std::vector<const Choice*> found;
  for (const Choice& choice : page.choices) {
    const bool ofAMember = std::any_of(
        component.members().begin(), component.members().end(),
        [&](const Member& slot) { return namesMember(choice, component.name(), slot.name); });
    if (ofAMember) continue;
    const auto classes = classesOf(choice, page);
    if (classes.empty() ? isAlone(entry) : classes.count(component.name()) != 0) {
      found.push_back(&choice);
    }
  }
  return found;
}

std::vector<std::pair<std::string, const Choice*>> Choices::ofFrame(std::string_view member) const {
  std::vector<std::pair<std::string, const Choice*>> found;
  for (const auto& [path, classes] : perPage_) {
    const Page& page = library_.pages.at(path);
    for (const Choice& choice : page.choices) {
      if (classes > 1 && namesMember(choice, {}, member) && classesOf(choice, page).empty()) {
        found.emplace_back(path, &choice);
      }
    }
  }
  return found;
}

}  // namespace tavelor::reference
