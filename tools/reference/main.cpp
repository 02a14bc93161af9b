// SPDX-License-Identifier: MIT
// reference SOURCE XML HELP SITE: writes the reference as a static site. SOURCE is the repository,
// XML what Doxygen made of its headers, HELP what the command says of itself (help.sh), SITE the
// folder that holds Doxygen's own pages in cpp/ already.
#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>

#include <fmt/format.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/trace.hpp"
#include "tools/reference/class_page.hpp"
#include "tools/reference/html.hpp"
#include "tools/reference/site.hpp"

namespace tavelor::reference {
namespace {

namespace fs = std::filesystem;

/// A shop without rows, for as long as the classes are asked; the day is always the same, so that
/// the site is.
class EmptyShop {
 public:
  explicit EmptyShop(fs::path folder)
      : folder_(std::move(folder)), apartment_((fs::remove_all(folder_), create())) {
    apartment_.trace().turn(true);
    apartment_.clock().fix(Date::of(2026, 11, 20));
  }
  ~EmptyShop() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  EmptyShop(const EmptyShop&) = delete;
  EmptyShop& operator=(const EmptyShop&) = delete;

  Apartment& apartment() { return apartment_; }

 private:
  std::shared_ptr<Installation> create() const {
    Settings settings;
    settings.synchronous = false;
    return Installation::create(folder_.string(), settings);
  }

  fs::path folder_;
  Apartment apartment_;
};

// ---------------------------------------------------------------------------------------------
// Pages of the repository

/// Readers of a language other than English have the same page below docs/es/, or as README.es.md.
std::string alternateOf(const std::string& path, const fs::path& source) {
  std::string other;
  if (path == "README.md") other = "README.es.md";
  if (path == "README.es.md") other = "README.md";
  if (path.starts_with("docs/es/")) other = "docs/" + path.substr(8);
  if (path.starts_with("docs/") && other.empty()) other = "docs/es/" + path.substr(5);
  return !other.empty() && fs::exists(source / other) ? addressOfPage(other) : "";
}

std::string languageOf(const std::string& path) {
  return path.starts_with("docs/es/") || path == "README.es.md" ? "es" : "en";
}

std::vector<std::string> pagePaths(const fs::path& source) {
  std::vector<std::string> paths;
  const auto take = [&](const fs::path& path) {
    if (path.extension() == ".md") paths.push_back(path.lexically_relative(source).string());
  };
  for (const auto& entry : fs::directory_iterator(source)) take(entry.path());
  for (const auto& entry : fs::recursive_directory_iterator(source / "docs")) take(entry.path());
  std::sort(paths.begin(), paths.end());
  return paths;
}

/// Files and folders that pages link to but that are no pages: they are shown as they are.
class Sources {
 public:
  explicit Sources(fs::path source) : source_(std::move(source)) {}

  std::string addressOf(const std::string& path) {
    wanted_.insert(path);
    return fmt::format("{}source/{}.html", kRoot, path);
  }
  void write(Site& site) const {
    for (const std::string& path : wanted_) {
      std::string body = fmt::format("<h1>{}</h1>\n", escaped(path));
      if (fs::is_directory(source_ / path)) {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(source_ / path)) {
          names.insert(entry.path().filename().string());
        }
        body += "<ul>\n";
        for (const std::string& name : names) body += fmt::format("<li>{}</li>\n", code(name));
        body += "</ul>\n";
      } else {
        body += fmt::format("<pre>{}</pre>\n", escaped(readText(source_ / path)));
      }
      site.write(fmt::format("source/{}.html", path), {.title = path, .alternate = {}}, body);
    }
  }

 private:
  fs::path source_;
  std::set<std::string> wanted_;
};

/// Names of classes in code lead to their pages, "ClsCierres.Insertar" to the member.
std::string addressOfCode(const std::string& word) {
  const std::size_t dot = word.find('.');
  const std::string name = word.substr(0, dot);
  const auto& all = components();
  const auto found = std::find_if(all.begin(), all.end(),
                                  [&](const Component* each) { return each->name() == name; });
  if (found == all.end()) return {};
  if (dot == std::string::npos) return addressOfClass(name);
  const std::string member = word.substr(dot + 1, word.find('(') - dot - 1);
  const auto& members = (*found)->members();
  const bool there = std::any_of(members.begin(), members.end(),
                                 [&](const Member& each) { return each.name == member; });
  return there ? addressOfClass(name, member) : "";
}

void readPages(const fs::path& source, Library& library, Sources& sources) {
  const std::vector<std::string> paths = pagePaths(source);
  for (const std::string& path : paths) {
    const Addresses addresses{
        .ofLink =
            [&](const std::string& target) {
              if (target.find("://") != std::string::npos || target.starts_with('#')) return target;
              const std::size_t hash = std::min(target.find('#'), target.size());
              const std::string file = (fs::path(path).parent_path() / target.substr(0, hash))
                                           .lexically_normal()
                                           .string();
              const std::string anchor = target.substr(hash);
              const bool isPage = std::find(paths.begin(), paths.end(), file) != paths.end();
              return (isPage ? addressOfPage(file) : sources.addressOf(file)) + anchor;
            },
        .ofCode = addressOfCode};
    library.pages.emplace(path, pageOf(readText(source / path), addresses));
  }
}

void writePages(const fs::path& source, const Library& library, Site& site) {
  for (const auto& [path, page] : library.pages) {
    const std::string alternate = alternateOf(path, source);
    const std::string address = addressOfPage(path);
    site.write(address.substr(kRoot.size()),
               {.title = page.title, .language = languageOf(path), .alternate = alternate},
               page.html);
    for (const Section& section : page.sections) {
      const std::string title = section.title == page.title
                                    ? page.title
                                    : fmt::format("{}: {}", page.title, section.title);
      site.add({title, "page", fmt::format("{}#{}", address, section.anchor), section.text});
    }
  }
}

// ---------------------------------------------------------------------------------------------
// Classes by docs/classes.md: | `ClsRegistros`, ... | what it keeps | [page](page.md) |

void readClasses(const fs::path& source, Apartment& apartment, Library& library) {
  const fs::path list = source / "docs" / "classes.md";
  std::istringstream lines(readText(list));
  std::map<std::string, std::pair<std::string, std::string>> told;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("| `")) continue;
    std::array<std::string, 3> cells;
    std::istringstream row(line.substr(2));
    for (std::string& cell : cells) std::getline(row, cell, '|');
    const std::size_t open = cells[2].find('(');
    const std::string page = "docs/" + cells[2].substr(open + 1, cells[2].find(')') - open - 1);
    const std::string keeps = cells[1].substr(1, cells[1].size() - 2);
    for (std::size_t at = cells[0].find('`'); at != std::string::npos;) {
      const std::size_t end = cells[0].find('`', at + 1);
      told[cells[0].substr(at + 1, end - at - 1)] = {keeps, page};
      at = cells[0].find('`', end + 1);
    }
  }
  for (const Component* each : components()) {
    const auto found = told.find(each->name());
    if (found == told.end()) {
      throw std::runtime_error(fmt::format("{}: no line for {}", list.string(), each->name()));
    }
    library.classes.push_back({.data = dataOf(*each, apartment),
                               .comment = library.comments.ofClass(each->name()),
                               .keeps = found->second.first,
                               .page = found->second.second});
  }
}

// ---------------------------------------------------------------------------------------------
// Tables and errors

void writeTables(const Library& library, Site& site) {
  std::map<std::string, std::string> families;
  std::string list =
      "<h1>Tables</h1>\n<p>All tables of an installation by families, with what "
      "each column holds. Widths count characters.</p>\n";
  std::string last;
  for (const Table& table : library.tables) {
    if (table.family != last) {
      list += fmt::format("<h2 id=\"{0}\">{0}</h2>\n<p class=\"soft\">Databases: {1}.</p>\n",
                          escaped(table.family), escaped(table.databases));
      last = table.family;
    }
    list += fmt::format("<p>{} {}</p>\n", link(addressOfTable(table), code(table.name)),
                        escaped(table.comment));
    std::string& body = families[table.family];
    if (body.empty()) {
      body = fmt::format("<h1>Tables: {}</h1>\n<p class=\"soft\">Databases: {}.</p>\n",
                         escaped(table.family), escaped(table.databases));
    }
    body += fmt::format("<h2 id=\"{0}\">{0}</h2>\n<p>{1}</p>\n", escaped(table.name),
                        escaped(table.comment));
    body += columnTable(table.columns, table.name + ".");
    site.add({table.name, "table", addressOfTable(table), table.comment});
    for (const Column& column : table.columns) {
      site.add({fmt::format("{}.{}", table.name, column.name), "column",
                fmt::format("{}.{}", addressOfTable(table), column.name),
                fmt::format("{} {}", column.type, column.comment)});
    }
  }
  site.write("tables/index.html", {.title = "Tables", .alternate = {}}, list);
  for (const auto& [family, body] : families) {
    site.write(fmt::format("tables/{}.html", family),
               {.title = "Tables: " + family, .alternate = {}}, body);
  }
}

void writeErrors(const std::vector<ErrorNumber>& errors, Site& site) {
  std::string body =
      "<h1>Errors</h1>\n<p>Everything that fails raises one exception, "
      "<code>tavelor::Error</code>, "
      "with a number for programs. The members tell which they raise.</p>\n"
      "<div class=\"wide\"><table><tr><th>Number</th><th>Constant</th><th>Message</th>"
      "<th>When</th></tr>\n";
  for (const ErrorNumber& each : errors) {
    const std::string_view message = defaultDescription(each.number);
    body += fmt::format("<tr id=\"{0}\"><td>{0}</td><td>{1}</td><td>{2}</td><td>{3}</td></tr>\n",
                        each.number, code("errors::" + each.name), escaped(message), each.text);
    site.add({std::to_string(each.number), "error",
              fmt::format("{}errors.html#{}", kRoot, each.number),
              fmt::format("{} {} {}", message, plainOf(each.text), each.name)});
  }
  site.write("errors.html", {.title = "Errors", .alternate = {}}, body + "</table></div>\n");
}

// The file of the command itself comes first among those of its subcommands.
void writeCommands(const fs::path& help, Site& site) {
  std::set<fs::path> files;
  for (const auto& entry : fs::directory_iterator(help)) files.insert(entry.path());
  if (files.empty()) throw std::runtime_error(fmt::format("{}: no help", help.string()));
  std::string body =
      "<h1>Commands</h1>\n<p>What <code>tavelor</code> says of itself. Every subcommand takes "
      "<code>--help</code>.</p>\n";
  for (const fs::path& file : files) {
    const std::string name = file.stem().string();
    const std::string text = readText(file);
    body += fmt::format("<h2 id=\"{}\">{}</h2>\n<pre>{}</pre>\n", anchorOf(name), escaped(name),
                        escaped(text));
    site.add({name, "command", fmt::format("{}commands.html#{}", kRoot, anchorOf(name)), text});
  }
  site.write("commands.html", {.title = "Commands", .alternate = {}}, body);
}

void writeSite(const fs::path& source, const fs::path& xml, const fs::path& help,
               const fs::path& folder) {
  Site site(folder);
  const Comments comments(xml, fmt::format("{}cpp/", kRoot));
  Library library(comments);
  EmptyShop shop(folder.parent_path() / "shop");
  library.tables = tables(shop.apartment());
  readClasses(source, shop.apartment(), library);
  const std::vector<ErrorNumber> errors = comments.errors();
  for (const ErrorNumber& each : errors) library.errors.insert(each.number);
  Sources sources(source);
  readPages(source, library, sources);

  writeClasses(library, site);
  writePages(source, library, site);
  writeTables(library, site);
  writeErrors(errors, site);
  writeCommands(help, site);
  sources.write(site);
  for (const Symbol& each : comments.symbols()) {
    site.add({each.name, each.kind, each.address, each.brief});
  }
  site.finish(source / "tools" / "reference");
  fmt::print("{} classes, {} tables and {} pages in {}\n", library.classes.size(),
             library.tables.size(), library.pages.size(), folder.string());
}

}  // namespace
}  // namespace tavelor::reference

int main(int argc, char** argv) {
  if (argc != 5) {
    fmt::print(stderr, "usage: reference SOURCE XML HELP SITE\n");
    return 2;
  }
  try {
    tavelor::reference::writeSite(argv[1], argv[2], argv[3], std::filesystem::absolute(argv[4]));
  } catch (const std::exception& error) {
    fmt::print(stderr, "reference: {}\n", error.what());
    return 1;
  }
  return 0;
}
