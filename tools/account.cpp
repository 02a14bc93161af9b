// SPDX-License-Identifier: MIT
// tavelor account: a statement of account of a customer or a supplier; whether all balances are
// right.
#include "tavelor/flows/account.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "tavelor/platform/format.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/variant.hpp"
#include "tools/command.hpp"
#include "tools/day_option.hpp"
#include "tools/output.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(Every entry stores the balance after it. --check computes all of them anew and
says which differ; --mend writes them as they should be, an account at a time.

  tavelor account 00012
  tavelor account 00012 --from 2026-01-01 --to 2026-03-31 --html
  tavelor account --check --mend
  tavelor account 400 --supplier
  tavelor account --check --supplier)";

struct AccountOptions {
  std::string code;
  std::string from;
  std::string to;
  bool isSupplier = false;
  bool html = false;
  bool check = false;
  bool mend = false;

  flows::LedgerOf of() const {
    return isSupplier ? flows::LedgerOf::kSuppliers : flows::LedgerOf::kCustomers;
  }
};

struct Words {
  const char* one;
  const char* many;
  const char* head;
};
constexpr Words wordsOf(flows::LedgerOf of) {
  return of == flows::LedgerOf::kCustomers ? Words{"customer", "customers", "Customer"}
                                           : Words{"supplier", "suppliers", "Supplier"};
}

/// Lines of cells below their heads; text to the left, amounts to the right.
class Sheet {
 public:
  Sheet(const Locale& locale, const Style& style) : locale_(locale), style_(style) {}

  std::string money(double amount) const { return format(amount, "Standard", locale_); }
  std::string day(const std::optional<Date>& date) const {
    return date ? format(*date, "Short Date", locale_) : std::string();
  }
  void add(std::vector<std::string> cells, bool isMarked = false) {
    lines_.push_back({std::move(cells), isMarked});
  }
  /// `texts`: how many columns stand to the left.
  void print(std::size_t texts) const {
    std::vector<std::size_t> widths(lines_.front().cells.size());
    for (const Line& line : lines_) {
      for (std::size_t i = 0; i < widths.size(); ++i) {
        widths[i] = std::max(widths[i], text::length(line.cells[i]));
      }
    }
    for (const Line& line : lines_) {
      std::string joined;
      for (std::size_t i = 0; i < widths.size(); ++i) {
        if (i > 0) joined += "  ";
        joined += i < texts ? text::padRight(line.cells[i], widths[i])
                            : text::padLeft(line.cells[i], widths[i]);
      }
      joined.erase(joined.find_last_not_of(' ') + 1);
      const bool isHead = &line == &lines_.front();
      fmt::print("{}\n", isHead          ? style_.bold(joined)
                         : line.isMarked ? style_.red(joined)
                                         : joined);
    }
  }

 private:
  struct Line {
    std::vector<std::string> cells;
    bool isMarked;
  };

  const Locale& locale_;
  const Style& style_;
  std::vector<Line> lines_;
};

void printAccount(const flows::Account& account, bool hasOpening, const Locale& locale,
                  const Style& style) {
  fmt::print("{}  {}\n\n", printable(account.owner),
             account.name.empty()
                 ? fmt::format("there is no such {}, only a ledger", wordsOf(account.of).one)
                 : printable(account.name));
  Sheet sheet(locale, style);
  sheet.add({"Date", "Text", "Debit", "Credit", "Balance", ""});
  if (hasOpening) sheet.add({"", "carried over", "", "", sheet.money(account.opening), ""});
  for (const flows::AccountEntry& entry : account.entries) {
    const auto amount = [&](double value) { return value == 0 ? "" : sheet.money(value); };
    sheet.add({sheet.day(entry.date), printable(entry.text), amount(entry.debit),
               amount(entry.credit), sheet.money(entry.stored),
               entry.isWrong() ? "! should be " + sheet.money(entry.right) : ""},
              entry.isWrong());
  }
  sheet.add({"", "", sheet.money(account.debit), sheet.money(account.credit),
             sheet.money(account.closing), ""});
  sheet.print(2);
}

void showAccount(const AccountOptions& options, const Common& common) {
  const auto [from, to] = dayRange(options.from, options.to);
  const Session session(common);
  const std::optional<flows::Account> account =
      flows::readAccount(options.of(), options.code, from, to);
  if (!account) {
    throw std::runtime_error(fmt::format("there is no {} {} and no ledger of one",
                                         wordsOf(options.of()).one, printable(options.code)));
  }
  printAccount(*account, from.has_value(), session.locale(), Style(common.color, stdout));
  if (options.html) fmt::print("page: {}\n", flows::writeAccountPage(*account, from, to));
}

void checkAccounts(const AccountOptions& options, const Common& common) {
  const Session session(common);
  const Style style(common.color, stdout);
  const flows::LedgerCheck check = flows::checkLedger(options.of());
  const auto counted = [](std::size_t count, const char* one, const char* many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
  };
  const Words words = wordsOf(check.of);
  fmt::print("{} of {}: {}\n", counted(check.entries, "entry", "entries"),
             counted(check.owners, words.one, words.many),
             check.wrong.empty() ? std::string("every balance is right")
                                 : counted(check.wrong.size(), "wrong balance", "wrong balances"));
  if (check.wrong.empty()) return;

  Sheet sheet(session.locale(), style);
  sheet.add({words.head, "Date", "Id", "Stored", "Right", "Difference"});
  for (const auto& [owner, entry] : check.wrong) {
    sheet.add({printable(owner), sheet.day(entry.date), std::to_string(entry.id),
               sheet.money(entry.stored), sheet.money(entry.right),
               sheet.money(entry.stored - entry.right)});
  }
  sheet.print(2);
  if (!options.mend) throw std::runtime_error("balances are wrong: --mend writes them anew");
  flows::mendLedger(check);
  if (const std::size_t left = flows::checkLedger(check.of).wrong.size(); left != 0) {
    throw std::runtime_error(
        fmt::format("{} left: no account is named by an entry whose code is null",
                    counted(left, "wrong balance", "wrong balances")));
  }
  fmt::print("mended\n");
}

void runAccount(const AccountOptions& options, const Common& common) {
  const bool shows = !options.code.empty();
  if (shows == (options.check || options.mend)) {
    throw UsageError(
        "give the code of a customer, or of a supplier with --supplier; or --check for all of "
        "them");
  }
  if (shows) {
    showAccount(options, common);
  } else {
    checkAccounts(options, common);
  }
}

}  // namespace

void addAccount(CLI::App& app, Common& common) {
  CLI::App* command =
      app.add_subcommand("account", "Show an account of a customer or supplier, or check balances");
  auto options = std::make_shared<AccountOptions>();
  command->add_option("customer", options->code, "Code of the customer")->type_name("CUSTOMER");
  command->add_flag("--supplier", options->isSupplier, "The code is a supplier's; check suppliers");
  command->add_option("--from", options->from, "First day shown")->type_name("DAY");
  command->add_option("--to", options->to, "Last day shown")->type_name("DAY");
  command->add_flag("--html", options->html, "Write the statement as a page too");
  command->add_flag("--check", options->check, "Compute all balances anew");
  command->add_flag("--mend", options->mend, "Write those that are wrong");
  addInstallationOptions(*command, common);
  addColorOption(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { runAccount(*options, common); });
}

}  // namespace tavelor::tools
