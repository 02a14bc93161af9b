// SPDX-License-Identifier: MIT
// What the subcommands share: the options of every one of them, and who declares which.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tavelor::tools {

/// What subcommands are told in common.
struct Common {
  std::string folder;  ///< of the installation; "" for the environment's or the current one
  bool trace = false;
  std::string color = "auto";
  std::vector<std::string> literal;  ///< what stands behind "--"
};

/// What the user asked for cannot be understood: exit code 2.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// --in and --trace.
void addInstallationOptions(CLI::App& app, Common& common);
void addColorOption(CLI::App& app, Common& common);

/// What no option of a subcommand with allow_extras() took, and what stands behind "--". An option
/// of several values would take "[a,b]" apart; here it stays one text.
std::vector<std::string> argumentTexts(const CLI::App& command, const Common& common);

// Each adds its subcommand, whose work runs at the end of the parsing.
void addNew(CLI::App& app, Common& common);
void addMove(CLI::App& app, Common& common);
void addSeed(CLI::App& app, Common& common);
void addClasses(CLI::App& app, Common& common);
void addCall(CLI::App& app, Common& common);
void addBrowse(CLI::App& app, Common& common);
void addEdit(CLI::App& app, Common& common);
void addPeriod(CLI::App& app, Common& common);
void addDay(CLI::App& app, Common& common);
void addTicket(CLI::App& app, Common& common);
void addReceive(CLI::App& app, Common& common);
void addRecover(CLI::App& app, Common& common);
void addAccount(CLI::App& app, Common& common);
void addAgenda(CLI::App& app, Common& common);
void addFind(CLI::App& app, Common& common);
void addStock(CLI::App& app, Common& common);
void addFiscal(CLI::App& app, Common& common);
void addServe(CLI::App& app, Common& common);
void addPin(CLI::App& app, Common& common);
void addKey(CLI::App& app, Common& common);
void addSql(CLI::App& app, Common& common);
void addImport(CLI::App& app, Common& common);
/// Of the import.
void addImportDatabase(CLI::App& import, Common& common);
void addTrace(CLI::App& app, Common& common);
void addManual(CLI::App& app, Common& common);
void addCompletion(CLI::App& app, Common& common);

}  // namespace tavelor::tools
