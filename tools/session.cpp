// SPDX-License-Identifier: MIT
// Opens the installation of a command.
#include "tools/session.hpp"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <system_error>
#include <vector>

#include <fmt/format.h>
#include <unistd.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/prompt_global.hpp"
#include "tavelor/services/trace.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

namespace {

/// Messages and questions go to standard error, so that what a member gives can be piped; answers
/// are lines of standard input.
class TerminalPrompts final : public PromptHandler {
 public:
  void message(const Prompt& prompt) override { print(prompt, "\n"); }
  Variant askInput(const std::string& prompt) override {
    complain(fmt::format("{} ", prompt));
    return answer();
  }
  bool question(const Prompt& prompt) override {
    print(prompt, " (s/n) ");
    const std::string word = text::lower(answer());
    return word == "s" || word == "sí" || word == "si" || word == "y" || word == "yes";
  }
  void beep() override {
    if (isatty(STDERR_FILENO) == 1) std::fputc('\a', stderr);
  }

 private:
  static void print(const Prompt& prompt, std::string_view end) {
    complain(
        fmt::format("{}{}{}{}", prompt.title, prompt.title.empty() ? "" : ": ", prompt.text, end));
  }
  static std::string answer() {
    std::string line;
    std::getline(std::cin, line);
    return line;
  }
};

}  // namespace

std::shared_ptr<Installation> openInstallation(const Common& common) {
  const char* const home = std::getenv("TAVELOR_HOME");
  std::filesystem::path folder = common.folder;
  if (folder.empty()) folder = home != nullptr && *home != '\0' ? home : ".";
  folder = std::filesystem::absolute(folder).lexically_normal();
  if (!folder.has_filename()) folder = folder.parent_path();

  std::error_code fault;
  const auto settings = folder / Installation::kSettingsFile;
  const auto status = std::filesystem::symlink_status(settings, fault);
  if (std::filesystem::exists(status)) return Installation::open(folder);
  if (status.type() != std::filesystem::file_type::not_found) {
    raise(errors::kPathAccess, "tavelor",
          fmt::format("{} cannot be looked at: {}.", settings.string(), fault.message()));
  }
  raise(errors::kFileNotFound, "tavelor",
        fmt::format("There is no installation in {}: {} is missing. Make one with `tavelor new`, "
                    "or name another folder with --in.",
                    folder.string(), Installation::kSettingsFile));
}

Session::Session(const Common& common) : apartment_(openInstallation(common)) {
  apartment_.setPromptHandler(std::make_shared<TerminalPrompts>());
  if (common.trace) showTrace();
}

void Session::showTrace() {
  apartment_.trace().turn(true);
  apartment_.trace().listen([this](const TraceEntry& entry) {
    std::string end = entry.error != 0 ? fmt::format("error {}", entry.error)
                      : entry.rows < 0
                          ? "sent"
                          : fmt::format("{} row{}", entry.rows, entry.rows == 1 ? "" : "s");
    if (entry.waits > 0)
      end += fmt::format(", {} wait{}", entry.waits, entry.waits == 1 ? "" : "s");
    complain(fmt::format("[{}] {} µs, {}: {}\n", installation().database(entry.selector).label,
                         entry.microseconds, end, printable(entry.text)));
  });
}

int Session::selector(std::string_view word) const {
  std::string known;
  for (const DatabaseSettings& each : apartment_.installation().settings().databases) {
    if (text::equalsIgnoreCase(word, each.label) || word == std::to_string(each.selector)) {
      return each.selector;
    }
    known += fmt::format("{}{} {}", known.empty() ? "" : ", ", each.selector, each.label);
  }
  throw UsageError(fmt::format("there is no database {}; there are {}", printable(word), known));
}

}  // namespace tavelor::tools
