// SPDX-License-Identifier: MIT
// tavelor pin and tavelor key: who may use what tavelor serve serves.
#include <CLI/CLI.hpp>
#include <iostream>
#include <string>

#include <fmt/format.h>
#include <termios.h>
#include <unistd.h>

#include "tavelor/web/pins.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

/// While it lives, what is typed is not shown.
class Unseen {
 public:
  Unseen() : isOn_(tcgetattr(STDIN_FILENO, &before_) == 0) {
    termios now = before_;
    now.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    if (isOn_) tcsetattr(STDIN_FILENO, TCSAFLUSH, &now);
  }
  ~Unseen() {
    if (isOn_) tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
  }
  Unseen(const Unseen&) = delete;
  Unseen& operator=(const Unseen&) = delete;

 private:
  termios before_ = {};
  bool isOn_;
};

std::string lineOf(const char* question) {
  const bool isTyped = isatty(STDIN_FILENO) == 1;
  if (isTyped) complain(question);
  std::string line;
  {
    const Unseen unseen;
    if (!std::getline(std::cin, line)) throw UsageError("there is no PIN on standard input");
  }
  if (isTyped) complain("\n");
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

/// Typed twice on a terminal.
std::string newPin() {
  std::string pin = lineOf("PIN: ");
  if (isatty(STDIN_FILENO) == 1 && lineOf("Again: ") != pin) {
    throw UsageError("the two are not the same; nothing was changed");
  }
  return pin;
}

struct PinOptions {
  std::string employee;
  std::string role = "seller";
  bool removes = false;
};

void changePin(const PinOptions& options, const Common& common) {
  const Session session(common);
  if (options.employee.empty()) {
    for (const web::Caller& each : web::employeesWithPin()) {
      fmt::print("{:<10}  {:<10}  {}\n", printable(each.code), printable(each.role),
                 printable(each.name));
    }
  } else if (options.removes) {
    fmt::print("{} {}\n", printable(options.employee),
               web::removePin(options.employee) ? "cannot sign in any more" : "had no PIN");
  } else {
    web::setPin(options.employee, newPin(), options.role);
    fmt::print("{} may sign in as {}\n", printable(options.employee), printable(options.role));
  }
}

struct KeyOptions {
  std::string name;
  std::string rights = "till.sell till.return office.read";
  bool removes = false;
};

void changeKey(const KeyOptions& options, const Common& common) {
  const Session session(common);
  if (options.removes) {
    fmt::print("the key {} {}\n", printable(options.name),
               web::removeKey(options.name) ? "is taken back" : "was not there");
    return;
  }
  // Shown once, and alone, for a script to take.
  fmt::print("{}\n", web::makeKey(options.name, options.rights));
}

}  // namespace

void addPin(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("pin", "Let an employee sign in, or list who may");
  auto options = std::make_shared<PinOptions>();
  command->add_option("employee", options->employee, "Code of the employee; none lists all")
      ->type_name("CODE");
  command
      ->add_option("--role", options->role,
                   "What they may do: seller, manager, owner, or the shop's own")
      ->type_name("ROLE");
  command->add_flag("--remove", options->removes, "Take the PIN back");
  addInstallationOptions(*command, common);
  command->footer(
      "The PIN is read from the terminal, or from standard input: 4 to 12 digits, or a\n"
      "phrase of at least 8 characters. A new one signs out whoever is signed in.\n\n"
      "  tavelor pin 1 --role owner");
  command->callback([options, &common] { changePin(*options, common); });
}

void addKey(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("key", "Let another program use the server, by a key");
  auto options = std::make_shared<KeyOptions>();
  command->add_option("name", options->name, "What the key is called")
      ->required()
      ->type_name("NAME");
  command->add_option("--rights", options->rights, "What it may do, separated by blanks")
      ->type_name("RIGHTS");
  command->add_flag("--remove", options->removes, "Take the key back");
  addInstallationOptions(*command, common);
  command->footer(
      "The key is shown once; only its hash is kept.\n\n"
      "  tavelor key webshop --rights \"till.sell office.read\"");
  command->callback([options, &common] { changeKey(*options, common); });
}

}  // namespace tavelor::tools
