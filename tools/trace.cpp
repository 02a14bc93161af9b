// SPDX-License-Identifier: MIT
// tavelor trace: what statements an installation's programs run.
#include <CLI/CLI.hpp>
#include <deque>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/installation.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"
#include "tools/output_file.hpp"
#include "tools/session.hpp"
#include "tools/table.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(The trace is a setting of the installation: programs that open it from then on
append a line a statement to the file. --trace on any other command shows the
statements of that command alone.

  tavelor trace on
  tavelor browse ClsBancos
  tavelor trace show --last 5
  tavelor trace off)";

constexpr std::string_view kUsualFile = "trace.log";

struct TraceOptions {
  std::string action = "show";
  std::string file;
  std::size_t last = 20;
};

void change(const Installation& installation, const TraceOptions& options) {
  Settings settings = installation.settings();
  settings.trace = options.action == "on";
  if (!options.file.empty()) settings.traceFile = options.file;
  if (settings.traceFile.empty()) settings.traceFile = kUsualFile;
  const auto path = std::filesystem::path(installation.folder()) / settings.traceFile;
  const bool isKnown = settings.traceFile == installation.settings().traceFile;
  if (settings.trace && !isKnown) requireForeign("--file", path.string(), installation);
  // Programs lose what they cannot write without a word, or wait at a pipe, so it is told here.
  std::error_code unknown;
  const bool isFile =
      !std::filesystem::exists(path, unknown) || std::filesystem::is_regular_file(path, unknown);
  if (settings.trace && (!isFile || !std::ofstream(path, std::ios::app))) {
    raise(errors::kPathAccess, "tavelor",
          fmt::format("The trace file {} cannot be written.", path.string()));
  }
  Installation::saveSettings(installation.folder(), settings);
  fmt::print("Trace {}, {}\n", options.action, path.string());
}

void show(const Installation& installation, std::size_t last) {
  const Settings& settings = installation.settings();
  const auto path = std::filesystem::path(installation.folder()) / settings.traceFile;
  fmt::print("Trace {}{}\n", settings.trace ? "on" : "off",
             settings.traceFile.empty() ? "" : ", " + path.string());
  if (settings.traceFile.empty()) return;
  std::ifstream file(path);
  std::deque<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    lines.push_back(std::move(line));
    if (lines.size() > last) lines.pop_front();
  }
  for (const std::string& line : lines) fmt::print("  {}\n", printable(line));
}

}  // namespace

void addTrace(CLI::App& app, Common& common) {
  CLI::App* command =
      app.add_subcommand("trace", "Turn the installation's trace on or off, or show it");
  auto options = std::make_shared<TraceOptions>();
  command->add_option("action", options->action, "show, unless another is given")
      ->check(CLI::IsMember({"on", "off", "show"}).description(""))
      ->type_name("on|off|show");
  command->add_option("--file", options->file, "Append to this file, relative to the installation")
      ->type_name("FILE");
  command->add_option("--last", options->last, "Show so many lines")
      ->check(notNegative)
      ->type_name("N");
  addInstallationOptions(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] {
    // Opened without an apartment, so that looking at the trace leaves none of its own.
    const auto installation = openInstallation(common);
    if (options->action == "show") {
      show(*installation, options->last);
    } else {
      change(*installation, *options);
    }
  });
}

}  // namespace tavelor::tools
