// SPDX-License-Identifier: MIT
// Reads and writes the settings of an installation.
#include "tavelor/services/settings_file.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <optional>
#include <pugixml.hpp>
#include <sstream>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engines.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/settings_xml.hpp"

namespace tavelor {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kSource = "Installation";
constexpr int kFormat = 1;
constexpr int kMostDecimals = 6;
constexpr int kLongestWaitMs = 3'600'000;
constexpr int kLongestConnectS = 300;
constexpr std::size_t kLongestSchema = 63;
constexpr std::size_t kLargestFile = 1 << 20;

std::string readWhole(const fs::path& file) {
  std::optional<std::string> text = readSettingsText(file, kSource);
  if (!text) {
    raise(errors::kFileNotFound, kSource,
          fmt::format("{} is no installation: it has no {}.", file.parent_path().string(),
                      file.filename().string()));
  }
  if (text->size() > kLargestFile) {
    raise(errors::kInvalidCall, kSource,
          fmt::format("{} is too large for a settings file.", file.string()));
  }
  return std::move(*text);
}

/// Takes the settings out of the parsed file; every complaint names file, line and column.
class Reader : private SettingsXml {
 public:
  Reader(const fs::path& file, std::string text) : SettingsXml(file, std::move(text), kSource) {}

  Settings read() {
    const pugi::xml_node installation = root("installation");
    allowAttributes(installation, {"format"});
    if (whole(installation, "format", 0, 0, 1'000'000) != kFormat) {
      complain(installation, fmt::format("the format of the file must be {}", kFormat));
    }
    for (const pugi::xml_node node : installation.children()) element(node);
    return std::move(settings_);
  }

 private:
  std::string attribute(pugi::xml_node node, const char* name, std::string_view fallback) const {
    const pugi::xml_attribute found = node.attribute(name);
    return found ? found.value() : std::string(fallback);
  }
  int whole(pugi::xml_node node, const char* name, int fallback, int least, int most) const {
    const pugi::xml_attribute found = node.attribute(name);
    if (!found) return fallback;
    const std::string_view text = found.value();
    int value = 0;
    const auto end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || value < least || value > most) {
      complain(node, fmt::format("{} must be a whole number from {} to {}, not \"{}\"", name, least,
                                 most, text));
    }
    return value;
  }
  bool flag(pugi::xml_node node, const char* name, bool fallback) const {
    const pugi::xml_attribute found = node.attribute(name);
    if (!found) return fallback;
    const std::string_view text = found.value();
    if (text != "true" && text != "false") {
      complain(node, fmt::format("{} must be true or false, not \"{}\"", name, text));
    }
    return text == "true";
  }
  std::string content(pugi::xml_node node) const {
    allowAttributes(node, {});
    if (node.first_child() != node.last_child() ||
        (node.first_child() && node.first_child().type() != pugi::node_pcdata)) {
      complain(node, fmt::format("<{}> must hold a text", node.name()));
    }
    return node.child_value();
  }

  void element(pugi::xml_node node) {
    static const Names kKnown = {"company", "product",  "locale",  "formats", "databases",
                                 "server",  "registry", "folders", "modes",   "trace"};
    const std::string_view name = node.name();
    Settings& s = settings_;
    mustBeOnlyOne(node);
    if (name == "company") {
      s.company = content(node);
    } else if (name == "product") {
      s.product = content(node);
    } else if (name == "locale") {
      s.locale = content(node);
    } else if (name == "formats") {
      allowOnlyAttributes(node, {"amount", "quantity", "currency-decimals"});
      s.amountFormat = attribute(node, "amount", s.amountFormat);
      s.quantityFormat = attribute(node, "quantity", s.quantityFormat);
      s.currencyDecimals = whole(node, "currency-decimals", s.currencyDecimals, 0, kMostDecimals);
    } else if (name == "databases") {
      databases(node);
    } else if (name == "server") {
      server(node);
    } else if (name == "registry") {
      allowOnlyAttributes(node, {"engine", "file", "schema"});
      s.registryEngine = attribute(node, "engine", s.registryEngine);
      s.registryFile = attribute(node, "file", s.registryFile);
      s.registrySchema = attribute(node, "schema", s.registrySchema);
    } else if (name == "folders") {
      allowOnlyAttributes(node, {"export", "document", "text", "email-text"});
      s.exportFolder = attribute(node, "export", s.exportFolder);
      s.documentFolder = attribute(node, "document", s.documentFolder);
      s.textFolder = attribute(node, "text", s.textFolder);
      s.emailTextFolder = attribute(node, "email-text", s.emailTextFolder);
    } else if (name == "modes") {
      allowOnlyAttributes(node, {"strict"});
      s.strictModes = flag(node, "strict", s.strictModes);
    } else if (name == "trace") {
      allowOnlyAttributes(node, {"on", "file"});
      s.trace = flag(node, "on", s.trace);
      s.traceFile = attribute(node, "file", s.traceFile);
    } else {
      unknown(node, "element", name, kKnown);
    }
  }

  void server(pugi::xml_node node) {
    if (node.attribute("password")) {
      complain(node,
               "a password has no place here: it comes from the environment (PGPASSWORD) or from a "
               "password file (password-file)");
    }
    allowOnlyAttributes(node, {"hosts", "database", "user", "password-file", "tls",
                               "root-certificate", "certificate", "key", "connect-timeout-s"});
    engine::ServerAddress& s = settings_.server;
    s.hosts = attribute(node, "hosts", s.hosts);
    s.database = attribute(node, "database", s.database);
    s.user = attribute(node, "user", s.user);
    s.passwordFile = attribute(node, "password-file", s.passwordFile);
    s.tls = attribute(node, "tls", s.tls);
    s.rootCertificate = attribute(node, "root-certificate", s.rootCertificate);
    s.certificate = attribute(node, "certificate", s.certificate);
    s.key = attribute(node, "key", s.key);
    s.connectTimeoutS = whole(node, "connect-timeout-s", s.connectTimeoutS, 1, kLongestConnectS);
  }

  void databases(pugi::xml_node node) {
    allowAttributes(node, {"synchronous", "busy-timeout-ms"});
    settings_.synchronous = flag(node, "synchronous", settings_.synchronous);
    settings_.busyTimeoutMs =
        whole(node, "busy-timeout-ms", settings_.busyTimeoutMs, 0, kLongestWaitMs);
    settings_.databases.clear();
    for (const pugi::xml_node child : node.children()) {
      if (std::string_view(child.name()) != "database") {
        unknown(child, "element", child.name(), {"database"});
      }
      allowOnlyAttributes(child, {"selector", "label", "engine", "file", "schema", "serves-as"});
      DatabaseSettings database;
      database.selector = whole(child, "selector", -1, 0, 99);
      if (database.selector < 0) complain(child, "a database needs a selector");
      database.label = attribute(child, "label", "");
      database.engine = attribute(child, "engine", database.engine);
      database.file = attribute(child, "file", "");
      database.schema = attribute(child, "schema", "");
      const std::string servesAs = attribute(child, "serves-as", "file");
      if (servesAs != "file" && servesAs != "server") {
        complain(child,
                 fmt::format("serves-as must be \"file\" or \"server\", not \"{}\"", servesAs));
      }
      database.servesAsServer = servesAs == "server";
      settings_.databases.push_back(std::move(database));
    }
  }

  Settings settings_;
};

/// Refuses what XML can't carry and what would break a path or a registry key.
void checkText(std::string_view what, std::string_view value, const std::string& where,
               bool mayBeEmpty = false) {
  const auto complain = [&](std::string_view why) {
    raise(errors::kInvalidCall, kSource, fmt::format("{}: {} {}.", where, what, why));
  };
  if (value.empty() && !mayBeEmpty) complain("is empty");
  if (!text::isValidUtf8(value)) complain("is no UTF-8 text");
  for (const char c : value) {
    if (static_cast<unsigned char>(c) < 0x20) complain("holds control characters");
  }
}

/// Amounts and quantities are rounded by their formats: what these write is read again.
void checkFormat(std::string_view what, const std::string& mask, const Locale& locale,
                 const std::string& where) {
  checkText(what, mask, where);
  if (readsBack(mask, locale)) return;
  raise(errors::kInvalidCall, kSource,
        fmt::format("{}: {} \"{}\" writes numbers that do not read as the same numbers again, as "
                    "\"#,##0.00\" does.",
                    where, what, mask));
}

void checkKeyName(std::string_view what, std::string_view value, const std::string& where) {
  checkText(what, value, where);
  if (value.find('\\') != std::string_view::npos || text::trim(value) != value) {
    raise(errors::kInvalidCall, kSource,
          fmt::format("{}: {} \"{}\" has a backslash in it or blanks around it.", where, what,
                      value));
  }
}

bool isFile(const std::string& engine) {
  const engine::Engine* const found = findEngine(engine);
  return found == nullptr || found->isFile();
}

/// Where a database lies on a server.
void checkSchema(const std::string& what, const std::string& schema, const std::string& where) {
  checkText(what + " schema", schema, where);
  if (schema.size() > kLongestSchema || schema == "tavelor" || schema.starts_with("pg_")) {
    raise(
        errors::kInvalidCall, kSource,
        fmt::format("{}: {} schema can't be named \"{}\": it has at most {} bytes, and \"tavelor\" "
                    "and what begins with \"pg_\" are taken.",
                    where, what, schema, kLongestSchema));
  }
}

void checkServer(const Settings& s, const std::string& where) {
  const auto complain = [&](const std::string& why) {
    raise(errors::kInvalidCall, kSource, fmt::format("{}: {}.", where, why));
  };
  std::vector<std::string> schemas;
  const auto take = [&](const std::string& what, const std::string& schema) {
    checkSchema(what, schema, where);
    if (std::find(schemas.begin(), schemas.end(), schema) != schemas.end()) {
      complain(fmt::format("{} schema \"{}\" is that of another database", what, schema));
    }
    schemas.push_back(schema);
  };
  for (const DatabaseSettings& database : s.databases) {
    if (isFile(database.engine)) continue;
    take(fmt::format("database {}: the", database.selector),
         database.schema.empty() ? database.label : database.schema);
  }
  if (!isFile(s.registryEngine)) take("the registry's", s.registrySchema);
  if (schemas.empty()) return;
  checkText("the server's hosts", s.server.hosts, where);
  checkText("the server's database", s.server.database, where);
  static constexpr std::array<std::string_view, 5> kTls = {"disable", "prefer", "require",
                                                           "verify-ca", "verify-full"};
  if (std::find(kTls.begin(), kTls.end(), s.server.tls) == kTls.end()) {
    complain(fmt::format("tls must be one of {}, not \"{}\"", fmt::join(kTls, ", "), s.server.tls));
  }
}

/// Two uses of one file would spoil what either writes there.
void checkFiles(const Settings& s, const fs::path& folder, const std::string& where) {
  std::vector<std::pair<std::string, fs::path>> taken;
  const auto take = [&](std::string what, const fs::path& file) {
    fs::path full = (folder / file).lexically_normal();
    for (const auto& [other, path] : taken) {
      if (path != full) continue;
      raise(
          errors::kInvalidCall, kSource,
          fmt::format("{}: {} and {} have the same file, {}.", where, other, what, full.string()));
    }
    taken.emplace_back(std::move(what), std::move(full));
  };
  take("the settings", Installation::kSettingsFile);
  for (const DatabaseSettings& database : s.databases) {
    if (isFile(database.engine)) {
      take(fmt::format("database {}", database.selector), database.file);
    }
  }
  if (isFile(s.registryEngine)) take("the registry", s.registryFile);
  if (!s.traceFile.empty()) take("the trace", s.traceFile);
}

/// Only what is not usual.
void writeServer(pugi::xml_node node, const engine::ServerAddress& s) {
  const engine::ServerAddress usual;
  const auto write = [&](const char* name, const std::string& value, const std::string& without) {
    if (value != without) node.append_attribute(name) = value.c_str();
  };
  write("hosts", s.hosts, usual.hosts);
  write("database", s.database, usual.database);
  write("user", s.user, usual.user);
  write("password-file", s.passwordFile, usual.passwordFile);
  write("tls", s.tls, usual.tls);
  write("root-certificate", s.rootCertificate, usual.rootCertificate);
  write("certificate", s.certificate, usual.certificate);
  write("key", s.key, usual.key);
  if (s.connectTimeoutS != usual.connectTimeoutS) {
    node.append_attribute("connect-timeout-s") = s.connectTimeoutS;
  }
}

std::string xmlOf(const Settings& s) {
  pugi::xml_document document;
  pugi::xml_node declaration = document.append_child(pugi::node_declaration);
  declaration.append_attribute("version") = "1.0";
  declaration.append_attribute("encoding") = "UTF-8";
  pugi::xml_node root = document.append_child("installation");
  root.append_attribute("format") = kFormat;
  root.append_child("company").text() = s.company.c_str();
  root.append_child("product").text() = s.product.c_str();
  root.append_child("locale").text() = s.locale.c_str();

  pugi::xml_node formats = root.append_child("formats");
  formats.append_attribute("amount") = s.amountFormat.c_str();
  formats.append_attribute("quantity") = s.quantityFormat.c_str();
  formats.append_attribute("currency-decimals") = s.currencyDecimals;

  pugi::xml_node databases = root.append_child("databases");
  databases.append_attribute("synchronous") = s.synchronous;
  databases.append_attribute("busy-timeout-ms") = s.busyTimeoutMs;
  for (const DatabaseSettings& database : s.databases) {
    pugi::xml_node node = databases.append_child("database");
    node.append_attribute("selector") = database.selector;
    node.append_attribute("label") = database.label.c_str();
    node.append_attribute("engine") = database.engine.c_str();
    if (isFile(database.engine)) {
      node.append_attribute("file") = database.file.c_str();
    } else if (!database.schema.empty()) {
      node.append_attribute("schema") = database.schema.c_str();
    }
    if (database.servesAsServer) node.append_attribute("serves-as") = "server";
  }
  if (!s.server.hosts.empty()) writeServer(root.append_child("server"), s.server);
  pugi::xml_node registry = root.append_child("registry");
  if (isFile(s.registryEngine)) {
    registry.append_attribute("file") = s.registryFile.c_str();
  } else {
    registry.append_attribute("engine") = s.registryEngine.c_str();
    registry.append_attribute("schema") = s.registrySchema.c_str();
  }

  pugi::xml_node folders = root.append_child("folders");
  folders.append_attribute("export") = s.exportFolder.c_str();
  folders.append_attribute("document") = s.documentFolder.c_str();
  folders.append_attribute("text") = s.textFolder.c_str();
  folders.append_attribute("email-text") = s.emailTextFolder.c_str();

  root.append_child("modes").append_attribute("strict") = s.strictModes;

  pugi::xml_node trace = root.append_child("trace");
  trace.append_attribute("on") = s.trace;
  trace.append_attribute("file") = s.traceFile.c_str();

  std::ostringstream out;
  document.save(out, "  ", pugi::format_default, pugi::encoding_utf8);
  return out.str();
}

}  // namespace

Settings readSettings(const fs::path& file) {
  Settings settings = Reader(file, readWhole(file)).read();
  checkSettings(settings, file.parent_path(), file.string());
  return settings;
}

void checkSettings(const Settings& s, const fs::path& folder, const std::string& where) {
  const auto complain = [&](const std::string& why) {
    raise(errors::kInvalidCall, kSource, fmt::format("{}: {}.", where, why));
  };
  checkKeyName("the company", s.company, where);
  checkKeyName("the product", s.product, where);
  if (!Locale::byName(s.locale)) {
    complain(fmt::format("there is no locale \"{}\"; there are \"{}\" and \"{}\"", s.locale,
                         Locale::spanish()->name, Locale::neutral()->name));
  }
  checkFormat("the amount format", s.amountFormat, *Locale::byName(s.locale), where);
  checkFormat("the quantity format", s.quantityFormat, *Locale::byName(s.locale), where);
  if (s.currencyDecimals < 0 || s.currencyDecimals > kMostDecimals) {
    complain(fmt::format("the currency can't have {} decimals", s.currencyDecimals));
  }
  if (s.busyTimeoutMs < 0 || s.busyTimeoutMs > kLongestWaitMs) {
    complain(fmt::format("nobody waits {} ms for another writer", s.busyTimeoutMs));
  }
  if (s.databases.empty()) complain("it names no databases");
  for (std::size_t i = 0; i < s.databases.size(); ++i) {
    const DatabaseSettings& database = s.databases[i];
    const std::string what = fmt::format("database {}: the", database.selector);
    checkText(what + " label", database.label, where);
    if (isFile(database.engine)) checkText(what + " file", database.file, where);
    if (findEngine(database.engine) == nullptr) {
      complain(fmt::format("database {}: there is no engine \"{}\"", database.selector,
                           database.engine));
    }
    for (std::size_t j = 0; j < i; ++j) {
      if (s.databases[j].selector == database.selector) {
        complain(fmt::format("the selector {} is given twice", database.selector));
      }
    }
  }
  if (findEngine(s.registryEngine) == nullptr) {
    complain(fmt::format("the registry: there is no engine \"{}\"", s.registryEngine));
  }
  if (isFile(s.registryEngine)) checkText("the registry file", s.registryFile, where);
  checkServer(s, where);
  checkText("the export folder", s.exportFolder, where);
  checkText("the document folder", s.documentFolder, where);
  checkText("the text folder", s.textFolder, where);
  checkText("the email text folder", s.emailTextFolder, where);
  checkText("the trace file", s.traceFile, where, true);
  checkFiles(s, folder, where);
}

void writeSettings(const fs::path& file, const Settings& settings) {
  checkSettings(settings, file.parent_path(), file.string());
  replaceFile(file, xmlOf(settings));
}

}  // namespace tavelor
