// SPDX-License-Identifier: MIT
// The static site: its pages in their common dress, and the index that its search reads.
#include "tools/reference/site.hpp"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <fmt/format.h>

#include "tools/reference/html.hpp"

namespace tavelor::reference {

namespace {

struct Words {
  std::string_view search, start, documentation, classes, tables, errors, commands, other;
};
constexpr Words kEnglish = {"Search classes, members, columns, errors…",
                            "Start",
                            "Documentation",
                            "Classes",
                            "Tables",
                            "Errors",
                            "Commands",
                            "Español"};
constexpr Words kSpanish = {"Buscar clases, miembros, columnas, errores…",
                            "Inicio",
                            "Documentación",
                            "Clases",
                            "Tablas",
                            "Errores",
                            "Órdenes",
                            "English"};

std::string replaced(std::string text, std::string_view what, std::string_view with) {
  for (std::size_t at = text.find(what); at != std::string::npos;
       at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

/// A text of JavaScript, which may stand in a script of its own.
std::string scriptText(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
  }
  return out + '"';
}

}  // namespace

std::string readText(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error(fmt::format("{} cannot be read", file.string()));
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void writeText(const std::filesystem::path& file, std::string_view text) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary);
  out << text;
  out.close();
  if (!out) throw std::runtime_error(fmt::format("{} cannot be written", file.string()));
}

void Site::write(const std::string& path, const Dress& dress, std::string_view body) const {
  const bool spanish = dress.language == "es";
  const Words& words = spanish ? kSpanish : kEnglish;
  const std::string_view other =
      dress.alternate.empty() ? (spanish ? "@/index.html" : "@/index.es.html") : dress.alternate;
  const std::string page = fmt::format(
      R"(<!DOCTYPE html>
<html lang="{language}">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{title}</title>
<link rel="stylesheet" href="@/site.css">
<script src="@/search-index.js" defer></script>
<script src="@/search.js" defer></script>
</head>
<body data-root="@/">
<header>
<a class="name" href="{home}">Tavelor</a>
<div class="search"><input id="search" type="search" placeholder="{search}" aria-label="{search}" autocomplete="off" spellcheck="false"><ol id="found"></ol></div>
<nav>
<a href="{home}">{start}</a>
<a href="@/docs/README.html">{documentation}</a>
<a href="@/docs/classes.html">{classes}</a>
<a href="@/tables/index.html">{tables}</a>
<a href="@/errors.html">{errors}</a>
<a href="@/commands.html">{commands}</a>
<a href="@/cpp/annotated.html">C++</a>
<a href="{other}">{otherWord}</a>
</nav>
</header>
<main>
{body}
</main>
</body>
</html>
)",
      fmt::arg("language", dress.language),
      fmt::arg("title", escaped(dress.title == "Tavelor" ? "Tavelor" : dress.title + " · Tavelor")),
      fmt::arg("home", spanish ? "@/index.es.html" : "@/index.html"),
      fmt::arg("search", words.search), fmt::arg("start", words.start),
      fmt::arg("documentation", words.documentation), fmt::arg("classes", words.classes),
      fmt::arg("tables", words.tables), fmt::arg("errors", words.errors),
      fmt::arg("commands", words.commands), fmt::arg("other", other),
      fmt::arg("otherWord", words.other), fmt::arg("body", body));
  std::string up;
  for (auto depth = std::count(path.begin(), path.end(), '/'); depth > 0; --depth) up += "../";
  writeText(folder_ / path, replaced(page, "\"@/", "\"" + up));
}

void Site::finish(const std::filesystem::path& assets) const {
  std::string index = "window.searchIndex = [\n";
  for (const Entry& entry : entries_) {
    index += fmt::format("[{},{},{},{}],\n", scriptText(entry.title), scriptText(entry.kind),
                         scriptText(entry.address.substr(kRoot.size())), scriptText(entry.text));
  }
  index += "];\n";
  writeText(folder_ / "search-index.js", index);
  for (const char* name : {"site.css", "search.js"}) {
    writeText(folder_ / name, readText(assets / name));
  }
}

}  // namespace tavelor::reference
