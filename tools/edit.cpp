// SPDX-License-Identifier: MIT
// tavelor edit: the edit cycle of a class on one row.
#include <CLI/CLI.hpp>

#include <fmt/format.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/modes.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"
#include "tools/session.hpp"
#include "tools/table.hpp"
#include "tools/typed_number.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(The row is opened by IniciaRs, changed through the record set and written by
Update, as a form does it. COLUMN is a name as browse shows it; VALUE is read by
the locale and the column's type, and nothing behind the = is Null. A number that
reads only by dropping a mark, as 9.95 under a decimal comma, is refused. Where
the mode does not look for the ID, or finds several rows, it is the row whose
first column is the ID.

  tavelor edit ClsBancos --id 00001 "Dirección=Calle Mayor 1" Predeterminada=True
  tavelor edit ClsBancos --add "Descripción=Caja Rural"
  tavelor edit ClsBancos --id 00001 --delete)";

struct EditOptions {
  std::string className;
  std::string word = {};  ///< "": "registro" where the class has it, else all its rows
  std::string id;
  bool add = false;
  bool remove = false;
  TableOptions table;
};

struct Assignment {
  std::string column;
  Variant value;
};

std::vector<Assignment> parse(const std::vector<std::string>& texts) {
  std::vector<Assignment> assignments;
  for (const std::string& text : texts) {
    const std::size_t equals = text.find('=');
    if (equals == 0 || equals == std::string::npos) {
      throw UsageError(fmt::format("{} is no COLUMN=VALUE", printable(text)));
    }
    const std::string value = text.substr(equals + 1);
    assignments.push_back(
        {text.substr(0, equals), value.empty() ? Variant(Null()) : Variant(value)});
  }
  return assignments;
}

void check(const EditOptions& options, const std::vector<Assignment>& assignments) {
  if (options.remove != assignments.empty()) {
    throw UsageError("give either COLUMN=VALUE or --delete");
  }
  if (options.add == !options.id.empty()) throw UsageError("give either --id or --add");
}

/// Calls a member without arguments as the class has it, not as the frame does.
void callPlain(const Component& component, Object& object, std::string_view member,
               std::vector<Variant> arguments = {}) {
  component.call(object, member, arguments);
}

/// Leaves the row of the id in view, or none.
void leaveOne(Recordset& rows, const EditOptions& options, const ClassInfo& info,
              const Locale& locale) {
  if (looksForId(info, options.word) && rows.RecordCount() < 2) return;
  std::vector<Variant> found;
  for (; !rows.Eof(); rows.MoveNext()) {
    const Variant first = rows.Field(0).Value();
    if (!first.isNull() && shown(first, locale) == options.id) found.push_back(rows.Bookmark());
  }
  if (found.size() > 1) {
    throw UsageError(fmt::format("{} rows have the id {}; name a --mode that finds one",
                                 found.size(), printable(options.id)));
  }
  rows.Filter(found);
}

bool isNumber(DataType type) {
  switch (type) {
    case DataType::kByte:
    case DataType::kInt16:
    case DataType::kInt32:
    case DataType::kInt64:
    case DataType::kSingle:
    case DataType::kDouble:
    case DataType::kCurrency:
    case DataType::kDecimal:
    case DataType::kNumeric:
      return true;
    default:
      return false;
  }
}

void assign(Recordset& rows, const Assignment& assignment, const Locale& locale) {
  Field field = rows.Field(assignment.column);
  if (isNumber(static_cast<DataType>(field.Type()))) {
    const std::string typed = shown(assignment.value, locale);
    requireTypedNumber(assignment.column, typed, locale);
  }
  field.Value(assignment.value);
}

void edit(EditOptions options, const std::vector<Assignment>& assignments, const Common& common) {
  const Component& edited = component(options.className);
  Session session(common);
  const std::unique_ptr<Object> object = edited.make();
  auto* const record = dynamic_cast<RecordClass*>(object.get());
  if (record == nullptr) throw UsageError(fmt::format("{} has no rows to edit", edited.name()));
  if (options.word.empty()) {
    options.word = looksForId(record->info(), "registro") ? "registro" : "todos";
  }
  openMode(edited, *object, options.word, options.id);
  const RecordsetPtr rows = record->DataMember("Primary");
  if (!options.add) leaveOne(*rows, options, record->info(), session.locale());

  if (options.remove) {
    callPlain(edited, *object, "Delete");
    if (record->info().remove == DeleteForm::kMarks) callPlain(edited, *object, "Update");
    fmt::print("1 row deleted\n");
    return;
  }
  if (options.add) callPlain(edited, *object, "AddNew", {Variant(true)});
  for (const Assignment& each : assignments) assign(*rows, each, session.locale());
  callPlain(edited, *object, "Update");
  rows->Filter(std::vector{rows->Bookmark()});
  printRows(*rows, session.locale(), options.table, Style(common.color, stdout));
}

}  // namespace

void addEdit(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("edit", "Change, add or delete one row of a class");
  auto options = std::make_shared<EditOptions>();
  command->add_option("class", options->className, "Name or class identifier, then the new values")
      ->required()
      ->type_name("CLASS [COLUMN=VALUE...]");
  command->add_option("--mode", options->word, "Mode word that finds the row")->type_name("WORD");
  command->add_option("--id", options->id, "Which row, as it is: quotes are not doubled")
      ->type_name("ID");
  command->add_flag("--add", options->add, "Add a row, under the next code");
  command->add_flag("--delete", options->remove, "Delete the row");
  addTableOptions(*command, options->table);
  addInstallationOptions(*command, common);
  addColorOption(*command, common);
  command->allow_extras();
  command->footer(kFooter);
  command->callback([options, command, &common] {
    const std::vector<Assignment> assignments = parse(argumentTexts(*command, common));
    check(*options, assignments);
    edit(*options, assignments, common);
  });
}

}  // namespace tavelor::tools
