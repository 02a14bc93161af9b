// SPDX-License-Identifier: MIT
// The tavelor command: looks into an installation and calls its classes from a shell.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include "tavelor/frame/strict_modes.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

namespace {

// What the shell is told. The numbers are promised: scripts test them.
enum ExitCode { kDone = 0, kFailed = 1, kMisused = 2 };

constexpr const char* kFooter =
    R"(The installation is the folder given with --in, else that of the variable
TAVELOR_HOME, else the current folder.

  tavelor new shop                         make an installation in the folder shop
  tavelor -C shop call ClsBancos CrearBanco "" "Banco de Ahorro"
  tavelor -C shop browse ClsBancos         the rows of a class
  tavelor -C shop sql main "SELECT Count(*) FROM Bancos"

Exit codes: 0 done, 1 an error of the library or of the output, 2 a command that
is not understood. Errors go to standard error.)";

/// Runs before the subcommand does.
void checkCommand(const CLI::App& app, const Common& common) {
  if (const std::vector<std::string> unknown = app.remaining(); !unknown.empty()) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands(nullptr))
      names.push_back(command->get_name());
    const std::string near = text::nearest(unknown.front(), names);
    throw UsageError(fmt::format("there is no command {}{}", printable(unknown.front()),
                                 near.empty() ? "" : fmt::format("; did you mean {}?", near)));
  }
  if (app.get_subcommands().empty()) throw UsageError("give a command; --help lists them");
  if (!common.literal.empty() && !app.get_subcommands().front()->get_allow_extras()) {
    throw UsageError(
        fmt::format("{} takes nothing behind --", app.get_subcommands().front()->get_name()));
  }
}

void addCommands(CLI::App& app, Common& common) {
  addInstallationOptions(app, common);
  addColorOption(app, common);
  app.set_version_flag("--version", "tavelor " TAVELOR_VERSION);
  app.footer(kFooter);
  addNew(app, common);
  addMove(app, common);
  addSeed(app, common);
  addClasses(app, common);
  addCall(app, common);
  addBrowse(app, common);
  addEdit(app, common);
  addPeriod(app, common);
  addDay(app, common);
  addTicket(app, common);
  addReceive(app, common);
  addRecover(app, common);
  addAccount(app, common);
  addAgenda(app, common);
  addFind(app, common);
  addStock(app, common);
  addFiscal(app, common);
  addServe(app, common);
  addPin(app, common);
  addKey(app, common);
  addSql(app, common);
  addImport(app, common);
  addTrace(app, common);
  addManual(app, common);
  addCompletion(app, common);
  app.allow_extras();  // last: subcommands that are added later would take it over
  app.parse_complete_callback([&app, &common] { checkCommand(app, common); });
}

/// Takes "--" and what follows it off the arguments: the parser would not keep it together.
std::vector<std::string> takeLiteral(std::vector<std::string>& arguments) {
  const auto mark = std::find(arguments.begin(), arguments.end(), "--");
  if (mark == arguments.end()) return {};
  std::vector<std::string> literal(mark + 1, arguments.end());
  arguments.erase(mark, arguments.end());
  return literal;
}

/// A standard stream that the shell has closed leaves its number to the next file that is opened,
/// and a message would be written into a database or a report. Its place is taken by what refuses
/// to be written, or read.
void occupyStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) != -1) continue;
    // The lowest free number is given, and those below are in use.
    if (open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) != stream) std::abort();
  }
}

/// What was printed must have arrived: a full disk is no success.
int flushed(int code) {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return code;
  complain("tavelor: the output cannot be written\n");
  return kFailed;
}

int run(int argc, char** argv) {
  CLI::App app("Looks into a Tavelor installation and calls its classes.", "tavelor");
  Common common;
  try {
    addCommands(app, common);
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    common.literal = takeLiteral(arguments);
    std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
    app.parse(std::move(arguments));
    return flushed(kDone);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? flushed(kDone) : kMisused;
  } catch (const UsageError& error) {
    complain(fmt::format("tavelor: {}\n", error.what()));
    return kMisused;
  } catch (const Error& error) {
    std::fflush(stdout);  // what was found before the error comes before it
    printError(error, Style(common.color, stderr));
  } catch (const std::exception& error) {
    if (flushed(kDone) != kDone) return kFailed;  // of which the error may be the consequence
    complain(fmt::format("tavelor: {}\n", error.what()));
  }
  return kFailed;
}

}  // namespace

void addInstallationOptions(CLI::App& app, Common& common) {
  app.add_option("-C,--in", common.folder, "Folder of the installation")->type_name("FOLDER");
  app.add_flag("--trace", common.trace, "Show the statements on standard error as they run");
}

void addColorOption(CLI::App& app, Common& common) {
  app.add_option("--color", common.color, "Colours")
      ->check(CLI::IsMember({"auto", "always", "never"}).description(""))
      ->type_name("auto|always|never");
}

std::vector<std::string> argumentTexts(const CLI::App& command, const Common& common) {
  std::vector<std::string> texts = command.remaining();
  texts.insert(texts.end(), common.literal.begin(), common.literal.end());
  return texts;
}

}  // namespace tavelor::tools

int main(int argc, char** argv) {
  const tavelor::StrictModes strict;  // a word is typed here, and slips are
  tavelor::tools::occupyStandardStreams();
  return tavelor::tools::run(argc, argv);
}
