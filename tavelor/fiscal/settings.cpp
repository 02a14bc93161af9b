// SPDX-License-Identifier: MIT
// Reads, checks and writes fiscal.xml.
#include "tavelor/fiscal/settings.hpp"

#include <filesystem>
#include <pugixml.hpp>
#include <sstream>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tavelor/fiscal/rules.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/settings_file.hpp"
#include "tavelor/services/settings_xml.hpp"

namespace tavelor::fiscal {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kSource = "Fiscal";
constexpr std::string_view kFormat = "1";
constexpr std::string_view kSending = "verifactu";
constexpr std::string_view kNotSending = "no-verifactu";
constexpr std::size_t kLongestSystemName = 30;
constexpr std::size_t kLongestSystemId = 2;
constexpr std::size_t kLongestVersion = 50;
constexpr std::size_t kLongestInstallation = 100;
constexpr std::size_t kLongestSeries = 20;

/// Takes the settings out of the parsed file; every complaint names file, line and column.
class Reader : private SettingsXml {
 public:
  Reader(const fs::path& file, std::string text) : SettingsXml(file, std::move(text), kSource) {}

  Settings read() {
    const pugi::xml_node fiscal = root("fiscal");
    allowAttributes(fiscal, {"format"});
    if (fiscal.attribute("format").value() != kFormat) {
      complain(fiscal, fmt::format("the format of the file must be {}", kFormat));
    }
    for (const pugi::xml_node node : fiscal.children()) element(node);
    for (const char* const name : {"taxpayer", "system", "start"}) {
      if (!fiscal.child(name)) complain(fiscal, fmt::format("there is no <{}>", name));
    }
    if (const auto faults = faultsOf(settings_); !faults.empty()) {
      complain(fiscal, fmt::format("{}", fmt::join(faults, "; ")));
    }
    return std::move(settings_);
  }

 private:
  void take(pugi::xml_node node, const char* name, std::string& to) const {
    if (const pugi::xml_attribute found = node.attribute(name)) to = found.value();
  }
  void take(pugi::xml_node node, const char* name, bool& to) const {
    choose(node, name, {{"false", false}, {"true", true}}, to);
  }
  /// One of a few words.
  template <typename Value>
  void choose(pugi::xml_node node, const char* name,
              const std::vector<std::pair<std::string_view, Value>>& words, Value& to) const {
    const pugi::xml_attribute found = node.attribute(name);
    if (!found) return;
    std::string known;
    for (const auto& [word, meaning] : words) {
      if (found.value() == word) {
        to = meaning;
        return;
      }
      known += fmt::format("{}\"{}\"", known.empty() ? "" : " or ", word);
    }
    complain(node, fmt::format("{} must be {}, not \"{}\"", name, known, found.value()));
  }
  /// What `reader` makes of a text.
  template <typename Value, typename ReadText>
  void takeRead(pugi::xml_node node, const char* name, std::string_view what, ReadText&& reader,
                Value& to) const {
    const pugi::xml_attribute found = node.attribute(name);
    if (!found) return;
    const auto value = reader(found.value());
    if (!value) complain(node, fmt::format("{} must be {}, not \"{}\"", name, what, found.value()));
    to = *value;
  }

  void element(pugi::xml_node node) {
    static const Names kKnown = {"taxpayer", "system", "mode",      "certificate",
                                 "start",    "series", "operations"};
    const std::string_view name = node.name();
    Settings& s = settings_;
    mustBeOnlyOne(node);
    if (name == "taxpayer") {
      allowOnlyAttributes(node, {"nif", "name"});
      take(node, "nif", s.taxpayer.number);
      take(node, "name", s.taxpayer.name);
    } else if (name == "system") {
      allowOnlyAttributes(node, {"producer-nif", "producer", "name", "id", "version",
                                 "installation", "only-sends", "may-serve-many", "serves-many"});
      take(node, "producer-nif", s.system.producer.number);
      take(node, "producer", s.system.producer.name);
      take(node, "name", s.system.name);
      take(node, "id", s.system.id);
      take(node, "version", s.system.version);
      take(node, "installation", s.system.installation);
      take(node, "only-sends", s.system.onlySends);
      take(node, "may-serve-many", s.system.mayServeMany);
      take(node, "serves-many", s.system.servesMany);
    } else if (name == "mode") {
      allowOnlyAttributes(node, {"word", "host", "endpoint"});
      choose<Mode>(node, "word", {{kSending, Mode::kSending}, {kNotSending, Mode::kNotSending}},
                   s.mode);
      choose(node, "host", {{"production", false}, {"test", true}}, s.isTest);
      take(node, "endpoint", s.endpoint);
    } else if (name == "certificate") {
      allowOnlyAttributes(node, {"file", "password-variable"});
      take(node, "file", s.certificate);
      take(node, "password-variable", s.passwordName);
    } else if (name == "start") {
      allowOnlyAttributes(node, {"day"});
      takeRead(node, "day", "a day as 01-01-2027", readDay, s.start);
    } else if (name == "series") {
      allowOnlyAttributes(node, {"tickets", "invoices", "rectifying"});
      take(node, "tickets", s.series.tickets);
      take(node, "invoices", s.series.invoices);
      take(node, "rectifying", s.series.rectifying);
    } else if (name == "operations") {
      allowOnlyAttributes(node, {"description", "zero-rate"});
      take(node, "description", s.description);
      takeRead(node, "zero-rate", "one of S1, S2, N1, N2 and E1 to E6", operationOf, s.zeroRate);
    } else {
      unknown(node, "element", name, kKnown);
    }
  }

  Settings settings_;
};

std::string xmlOf(const Settings& s) {
  pugi::xml_document document;
  pugi::xml_node root = document.append_child("fiscal");
  const auto set = [](pugi::xml_node node, const char* name, std::string_view content) {
    node.append_attribute(name).set_value(std::string(content).c_str());
  };
  const auto yes = [&](pugi::xml_node node, const char* name, bool isSo) {
    if (isSo) set(node, name, "true");
  };
  set(root, "format", kFormat);
  pugi::xml_node node = root.append_child("taxpayer");
  set(node, "nif", s.taxpayer.number);
  set(node, "name", s.taxpayer.name);
  node = root.append_child("system");
  set(node, "producer-nif", s.system.producer.number);
  set(node, "producer", s.system.producer.name);
  set(node, "name", s.system.name);
  set(node, "id", s.system.id);
  if (!s.system.version.empty()) set(node, "version", s.system.version);
  set(node, "installation", s.system.installation);
  yes(node, "only-sends", s.system.onlySends);
  yes(node, "may-serve-many", s.system.mayServeMany);
  yes(node, "serves-many", s.system.servesMany);
  node = root.append_child("mode");
  set(node, "word", s.mode == Mode::kSending ? kSending : kNotSending);
  set(node, "host", s.isTest ? "test" : "production");
  if (!s.endpoint.empty()) set(node, "endpoint", s.endpoint);
  if (!s.certificate.empty() || !s.passwordName.empty()) {
    node = root.append_child("certificate");
    set(node, "file", s.certificate);
    set(node, "password-variable", s.passwordName);
  }
  set(root.append_child("start"), "day", dayText(s.start));
  node = root.append_child("series");
  set(node, "tickets", s.series.tickets);
  set(node, "invoices", s.series.invoices);
  set(node, "rectifying", s.series.rectifying);
  node = root.append_child("operations");
  set(node, "description", s.description);
  set(node, "zero-rate", word(s.zeroRate));
  std::ostringstream out;
  document.save(out, "  ");
  return out.str();
}

std::string faultOfSeries(std::string_view series) {
  if (series.empty()) return "a series has no name";
  const bool isPlain = faultOfNumber(series).empty() && series.find('/') == std::string_view::npos;
  if (!isPlain || series.size() > kLongestSeries) {
    return fmt::format("the series \"{}\" is no name of up to {} plain characters without a slash",
                       series, kLongestSeries);
  }
  if (series == kSeriesBefore) {
    return fmt::format("the series {} is that of tickets from before the records", series);
  }
  return {};
}

}  // namespace

std::string settingsFile(const Installation& installation) {
  return (fs::path(installation.folder()) / Settings::kFile).string();
}

std::optional<Settings> readSettings(const Installation& installation) {
  const fs::path file = settingsFile(installation);
  std::optional<std::string> text = readSettingsText(file, kSource);
  if (!text) return std::nullopt;
  Settings settings = Reader(file, std::move(*text)).read();
  if (settings.system.version.empty()) settings.system.version = TAVELOR_VERSION;
  return settings;
}

std::vector<std::string> faultsOf(const Settings& settings) {
  std::vector<std::string> faults;
  const auto add = [&](std::string_view where, const std::string& fault) {
    if (!fault.empty()) faults.push_back(fmt::format("{}{}", where, fault));
  };
  const auto addLonger = [&](std::string_view what, const std::string& text, std::size_t most) {
    if (text.empty()) {
      add("", fmt::format("{} is missing", what));
    } else if (recordText(text, most) != text) {
      add("", fmt::format("{} is no text of up to {} characters", what, most));
    }
  };
  add("the taxpayer: ", faultOf(settings.taxpayer));
  add("the producer of the program: ", faultOf(settings.system.producer));
  addLonger("the name of the program", settings.system.name, kLongestSystemName);
  addLonger("the id of the program", settings.system.id, kLongestSystemId);
  if (!settings.system.version.empty()) {
    addLonger("the version of the program", settings.system.version, kLongestVersion);
  }
  addLonger("the number of the installation", settings.system.installation, kLongestInstallation);
  addLonger("the description of what is sold", settings.description, kLongestDescription);
  if (settings.start < kFirstDay) {
    add("", fmt::format("the first day lies before {}", dayText(kFirstDay)));
  }
  const Series& series = settings.series;
  for (const std::string& name : {series.tickets, series.invoices, series.rectifying}) {
    add("", faultOfSeries(name));
  }
  if (series.tickets == series.invoices || series.tickets == series.rectifying ||
      series.invoices == series.rectifying) {
    add("", "tickets, invoices and rectifying ones need series of their own");
  }
  if (settings.zeroRate == Operation::kReverseCharge) {
    add("", "who owes the tax is a matter of each sale, and not of all");
  }
  return faults;
}

void writeSettings(const Installation& installation, const Settings& settings) {
  const std::string file = settingsFile(installation);
  if (const auto faults = faultsOf(settings); !faults.empty()) {
    raise(errors::kInvalidCall, kSource, fmt::format("{}: {}.", file, fmt::join(faults, "; ")));
  }
  replaceFile(file, xmlOf(settings));
}

}  // namespace tavelor::fiscal
