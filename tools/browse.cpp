// SPDX-License-Identifier: MIT
// tavelor browse: the rows of a class, as a bound grid would show them.
#include <CLI/CLI.hpp>

#include <fmt/format.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/modes.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"
#include "tools/page.hpp"
#include "tools/session.hpp"
#include "tools/table.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter = R"(  tavelor browse ClsBancos
  tavelor browse ClsBancos --mode seleccioncombo
  tavelor browse ClsBancos --mode registro --id 00001
  tavelor browse ClsBancos --filter "Descripción Like 'Caja*'" --sort "Descripción DESC"
  tavelor browse ClsBancos --filter "Descripción = 'Banco d''Or'"
  tavelor browse ClsBancos --columns Código,IBAN --csv
  tavelor browse ClsBancos --html)";

struct BrowseOptions {
  std::string className;
  std::string word;
  std::string id;
  std::string filter;
  std::string sort;
  TableOptions table;
  bool html = false;
};

void browse(const BrowseOptions& options, const Common& common) {
  const Component& browsed = component(options.className);
  Session session(common);
  const std::unique_ptr<Object> object = browsed.make();
  auto* record = dynamic_cast<RecordClass*>(object.get());
  if (record == nullptr) {
    throw UsageError(fmt::format("{} has no rows to browse", browsed.name()));
  }
  openMode(browsed, *object, options.word, options.id);
  const RecordsetPtr rows = record->DataMember("Primary");
  if (!options.filter.empty()) rows->Filter(options.filter);
  if (!options.sort.empty()) rows->Sort(options.sort);
  if (options.html) {
    fmt::print("{}\n", writePage(*record, options.table.columns));
    return;
  }
  printRows(*rows, session.locale(), options.table, Style(common.color, stdout));
}

}  // namespace

void addBrowse(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("browse", "Show the rows of a class");
  auto options = std::make_shared<BrowseOptions>();
  command->add_option("class", options->className, "Name or class identifier")
      ->required()
      ->type_name("CLASS");
  command->add_option("--mode", options->word, "Mode word of IniciaRs; all rows without one")
      ->type_name("WORD");
  command
      ->add_option("--id", options->id, "What the mode looks for, as it is: quotes are not doubled")
      ->type_name("ID");
  command->add_option("--filter", options->filter, "Show the rows that fit")->type_name("CRITERIA");
  command->add_option("--sort", options->sort, "Order: column [DESC], ...")->type_name("ORDER");
  addTableOptions(*command, options->table);
  command->add_flag("--html", options->html, "Write the page of the class, and tell where it lies")
      ->excludes("--limit", "--csv");
  addInstallationOptions(*command, common);
  addColorOption(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { browse(*options, common); });
}

}  // namespace tavelor::tools
