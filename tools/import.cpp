// SPDX-License-Identifier: MIT
// tavelor import: takes articles or customers from a file of comma-separated values.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/installation.hpp"
#include "tools/article_import.hpp"
#include "tools/command.hpp"
#include "tools/csv_file.hpp"
#include "tools/customer_import.hpp"
#include "tools/interrupt.hpp"
#include "tools/output.hpp"
#include "tools/progress.hpp"
#include "tools/refusals.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(FILE is comma-separated values in UTF-8, plain or compressed by xz; its first row
names the columns. Columns that bear the name of a field need no --map. Fields of
articles:

  Codigo Descripcion Seccion Familia Tarifa_A Tarifa_B Tarifa_C Impuesto Descuento
  Descuento_D Existencia Lotes Actualizar_Stock Activo Lista

of customers:

  Codigo Nombre Razon_Social NIF Direccion Codigo_Postal Poblacion Provincia
  Telefono Movil E_Mail E_Mail_doc Activo Descuento Tarifa Serie Concepto
  Tipo_Cliente Lista ExternalID Forma_Pago Riesgo Facturar Contacto Telefono_2
  Descuento_pp Recargo

A row that is not there is added, in use unless Activo says no; one that is there
is rewritten where the file says otherwise. Fields that the file does not give stay
as they are. Of articles Impuesto, Existencia, Lotes and Actualizar_Stock are taken
by new ones only, and the reference of a rewritten one becomes its code.

The NIF of a customer is cleaned and gets its class word. One that is not right by
law is taken as VERIFICAR and told, and so is one that another customer has. Type
and payment method are a code or a name of the shop's catalogues, a tariff one that
the shop has.

Numbers are read with the decimal sign of the installation's locale, or of
--decimal. One whose other sign does not part thousands, as in 2.55 where the
comma is decimal, is refused.

The whole file is read once before anything is written. Then rows are written in
transactions of a thousand. A row with a fault is left out and reported, with its
line, and the exit code is 1. After an interruption give the same command again:
what is stored already is not written twice. With --dry-run all is tried and
nothing stays written.

  tavelor import articles articles.csv.xz --map product_id=Codigo product_type=Descripcion
  tavelor import articles tarifa.csv --map Precio=Tarifa_A --decimal comma --report left-out.csv
  tavelor import customers customers.csv.xz --map Cliente=Codigo CIF=NIF --dry-run)";

struct ImportOptions {
  std::string kind;
  std::string file;
  std::vector<std::string> maps;
  std::vector<std::string> constants;
  std::string separator;
  std::string decimal;
  std::string report;
  bool isDryRun = false;
};

/// What can be imported.
struct Kind {
  const ImportTable& table;
  std::unique_ptr<RowImport> (*make)(ImportSetup setup);
};

template <typename Import>
Kind kindOf() {
  return {Import::kTable, [](ImportSetup setup) -> std::unique_ptr<RowImport> {
            return std::make_unique<Import>(std::move(setup));
          }};
}

std::vector<Kind> kinds() {
  return {kindOf<ArticleImport>(), kindOf<CustomerImport>()};
}

std::vector<std::string> kindNames() {
  std::vector<std::string> names;
  for (const Kind& kind : kinds()) names.emplace_back(kind.table.what);
  return names;
}

Kind kindNamed(std::string_view what) {
  const std::vector<Kind> all = kinds();
  return *std::find_if(all.begin(), all.end(),
                       [&](const Kind& kind) { return kind.table.what == what; });
}

// ---------------------------------------------------------------------------------------------
// Where the fields come from

std::string joined(const std::vector<std::string>& names) {
  std::string all;
  for (const std::string& name : names) all += (all.empty() ? "" : ", ") + printable(name);
  return all;
}

std::vector<std::string_view> namesOf(const ImportTable& table) {
  std::vector<std::string_view> names;
  for (const ImportField& field : table.fields) {
    if (field.use != FieldUse::kDerived) names.push_back(field.name);
  }
  return names;
}

std::optional<std::size_t> fieldNamed(std::string_view name, const ImportTable& table) {
  for (std::size_t i = 0; i < table.fields.size(); ++i) {
    const bool isGiven = table.fields[i].use != FieldUse::kDerived;
    if (isGiven && text::equalsIgnoreCase(name, table.fields[i].name)) return i;
  }
  return std::nullopt;
}

/// "left=Field" taken apart at its last "=".
std::pair<std::string, std::size_t> assignment(const std::string& text, bool fieldFirst,
                                               const ImportTable& table) {
  const std::size_t equals = fieldFirst ? text.find('=') : text.rfind('=');
  if (equals == std::string::npos) {
    throw UsageError(
        fmt::format("{} is no {}", printable(text), fieldFirst ? "field=value" : "column=field"));
  }
  const std::string before = text.substr(0, equals);
  const std::string behind = text.substr(equals + 1);
  const std::string& name = fieldFirst ? before : behind;
  const std::optional<std::size_t> field = fieldNamed(name, table);
  if (!field) {
    const std::string near = text::nearest(name, namesOf(table));
    throw UsageError(fmt::format("{} have no field {}{}", table.what, printable(name),
                                 near.empty() ? "" : fmt::format("; did you mean {}?", near)));
  }
  return {fieldFirst ? behind : before, *field};
}

std::size_t columnNamed(const std::string& name, const std::vector<std::string>& columns) {
  const auto found = std::find(columns.begin(), columns.end(), name);
  if (found != columns.end()) {
    if (std::find(found + 1, columns.end(), name) != columns.end()) {
      throw UsageError(fmt::format("the file has several columns {}", printable(name)));
    }
    return static_cast<std::size_t>(found - columns.begin());
  }
  const std::string near = text::nearest(name, columns);
  throw UsageError(fmt::format("the file has no column {}{}; it has {}", printable(name),
                               near.empty() ? "" : fmt::format(" (did you mean {}?)", near),
                               joined(columns)));
}

std::vector<FieldSource> sourcesOf(const ImportOptions& options,
                                   const std::vector<std::string>& columns,
                                   const ImportTable& table) {
  std::vector<FieldSource> sources(table.fields.size());
  const auto give = [&](std::size_t field) -> FieldSource& {
    FieldSource& source = sources[field];
    if (source.given) {
      throw UsageError(fmt::format("the field {} is given twice", table.fields[field].name));
    }
    source.given = true;
    return source;
  };
  for (const std::string& map : options.maps) {
    const auto [column, field] = assignment(map, false, table);
    give(field).column = columnNamed(column, columns);
  }
  for (const std::string& constant : options.constants) {
    const auto [value, field] = assignment(constant, true, table);
    give(field).constant = value;
  }
  const std::vector<FieldSource> told = sources;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::optional<std::size_t> field = fieldNamed(columns[i], table);
    if (!field || told[*field].given) continue;
    if (sources[*field].given) {
      throw UsageError(fmt::format("the file has several columns {}", printable(columns[i])));
    }
    give(*field).column = i;
  }
  if (!sources.front().column) {
    throw UsageError(fmt::format(
        "say which column is the code: --map COLUMN=Codigo; the file has {}", joined(columns)));
  }
  return sources;
}

char separatorOf(const std::string& word) {
  if (word.empty()) return 0;
  if (word == "tab") return '\t';
  if (word.size() == 1 && word != "\"") return word.front();
  throw UsageError("a separator is one character, or the word tab");
}

std::shared_ptr<const Locale> numbersOf(const std::string& decimal, const Session& session) {
  if (decimal == "comma") return Locale::spanish();
  if (decimal == "point") return Locale::neutral();
  return session.installation().locale();
}

// ---------------------------------------------------------------------------------------------
// The work

/// Reads the file to its end, so that a fault of the file as such shows before anything is written.
std::uint64_t countRows(const ImportOptions& options) {
  CsvFile file(options.file, separatorOf(options.separator));
  CsvFile::Row row;
  std::uint64_t rows = 0;
  while (file.next(row)) ++rows;
  return rows;
}

void takeRows(CsvFile& file, RowImport& import, Refusals& refusals, std::uint64_t total) {
  const Interruptible guard;
  Progress progress(stderr, total);
  std::vector<CsvFile::Row> rows(RowImport::kBatch);
  std::size_t count = 0;
  do {
    count = 0;
    while (count < rows.size() && file.next(rows[count])) ++count;
    if (count == 0) break;
    import.take(rows, count);
    refusals.add(import.refusals());
    progress.at(import.counts().total());
  } while (count == rows.size() && !Interruptible::interrupted());
}

void importRows(const ImportOptions& options, const Common& common) {
  const Kind kind = kindNamed(options.kind);
  CsvFile file(options.file, separatorOf(options.separator));
  const std::vector<FieldSource> sources = sourcesOf(options, file.columns(), kind.table);
  Session session(common);
  const std::shared_ptr<const Locale> numbers = numbersOf(options.decimal, session);
  const std::uint64_t total = countRows(options);
  Refusals refusals(options.report, options.file, session.installation());
  const std::unique_ptr<RowImport> import =
      kind.make({sources, file.columns().size(), numbers.get(), options.isDryRun});

  takeRows(file, *import, refusals, total);
  refusals.print();
  const ImportCounts& counts = import->counts();
  fmt::print("{} of {} rows: {} new, {} changed, {} as stored, {} refused{}{}\n", counts.total(),
             total, counts.added, counts.changed, counts.same, counts.refused,
             refusals.remarks() > 0 ? fmt::format(", {} with a remark", refusals.remarks()) : "",
             options.isDryRun ? "; nothing was written" : "");
  std::fflush(stdout);
  if (counts.total() < total) {
    throw FileError("interrupted; the same command goes on with the rest");
  }
  if (counts.refused > 0) throw FileError(fmt::format("{} rows were refused", counts.refused));
}

}  // namespace

void addImport(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("import", "Take articles or customers from a file");
  auto options = std::make_shared<ImportOptions>();
  command->add_option("what", options->kind, "What the rows are")
      ->required()
      ->check(CLI::IsMember(kindNames()).description(""))
      ->type_name(fmt::format("{}", fmt::join(kindNames(), "|")));
  command->add_option("file", options->file, "The file")->required()->type_name("FILE");
  command->add_option("--map", options->maps, "Which column is which field")
      ->type_name("COLUMN=FIELD...");
  command->add_option("--set", options->constants, "A field that is the same in all rows")
      ->type_name("FIELD=VALUE...");
  command
      ->add_option("--separator", options->separator,
                   "Between fields; else what the first row has most of: , ; tab |")
      ->type_name("CHARACTER");
  command->add_option("--decimal", options->decimal, "Else as the installation's locale writes it")
      ->check(CLI::IsMember({"comma", "point"}).description(""))
      ->type_name("comma|point");
  command->add_option("--report", options->report, "Write all refused rows to this file")
      ->type_name("FILE");
  command->add_flag("--dry-run", options->isDryRun, "Try all of it and leave nothing written");
  addInstallationOptions(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { importRows(*options, common); });
}

}  // namespace tavelor::tools
