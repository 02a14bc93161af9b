// SPDX-License-Identifier: MIT
// tavelor import: takes articles, customers or suppliers from a file of comma-separated values, and
// with import_database.cpp the tables of an old database.
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
#include "tools/file_options.hpp"
#include "tools/interrupt.hpp"
#include "tools/output.hpp"
#include "tools/progress.hpp"
#include "tools/refusals.hpp"
#include "tools/session.hpp"
#include "tools/supplier_import.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(  tavelor import articles articles.csv.xz --map product_id=Codigo product_type=Descripcion
  tavelor import articles tarifa.csv --map Precio=Tarifa_A --decimal comma --report left-out.csv
  tavelor import customers customers.csv.xz --map Cliente=Codigo CIF=NIF --dry-run
  tavelor import suppliers suppliers.csv --set Forma_Pago=transferencia
  tavelor import database old.mdb --dry-run)";

constexpr const char* kBefore =
    R"(FILE is comma-separated values in UTF-8, plain or compressed by xz; its first row
names the columns. Columns that bear the name of a field need no --map. Fields:

)";

constexpr const char* kArticleFields =
    R"(  Codigo Descripcion Seccion Familia Tarifa_A Tarifa_B Tarifa_C Impuesto Descuento
  Descuento_D Existencia Lotes Actualizar_Stock Restar_Stock Activo Lista

Impuesto, Existencia, Lotes, Actualizar_Stock and Restar_Stock (else as
Actualizar_Stock) are taken by new articles only, and the reference of a rewritten
one becomes its code.

)";

constexpr const char* kCustomerFields =
    R"(  Codigo Nombre Razon_Social NIF Direccion Codigo_Postal Poblacion Provincia
  Telefono Movil E_Mail E_Mail_doc Activo Descuento Tarifa Serie Concepto
  Tipo_Cliente Lista ExternalID Forma_Pago Riesgo Facturar Contacto Telefono_2
  Descuento_pp Recargo

The NIF is cleaned. One that is not right by law is taken and told, and so is one
that another customer has; it gives the class word, VERIFICAR where it is not
right. Type and payment method are a code or a name of the shop's catalogues, a
tariff one that the shop has.

)";

constexpr const char* kSupplierFields =
    R"(  Codigo Nombre Razon_Social NIF Forma_Pago Tarifa Serie Contacto Direccion
  Codigo_Postal Poblacion Provincia Telefono Telefono_2 Movil Fax E_Mail Http Activo
  Sub Recargo Descuento Descuento_pp Concepto Cta_Tesoreria Cta_Contable
  Cta_Contrapartida

The NIF is cleaned. One that is not right by law is taken and told, and so is one
that another supplier has. The payment method is a code or a name of the shop's
catalogue, a tariff one that the shop has.

)";

constexpr const char* kBehind =
    R"(A row that is not there is added, in use unless Activo says no; one that is there
is rewritten where the file says otherwise: an empty text empties its field, an empty
number, flag or word says nothing. Fields that the file does not give stay as they
are.

Numbers are read with the decimal sign of the installation's locale, or of
--decimal. One whose other sign does not part thousands, as in 2.55 where the
comma is decimal, is refused.

The whole file is read once before anything is written. Then rows are written in
transactions of a thousand. A row with a fault is left out and reported, with its
line, and the exit code is 1. After an interruption give the same command again:
what is stored already is not written twice. With --dry-run all is tried and
nothing stays written.)";

/// What can be imported row by row.
struct Kind {
  const ImportTable& table;
  const char* fields;  ///< for the help
  std::unique_ptr<RowImport> (*make)(ImportSetup setup);
};

template <typename Import>
Kind kindOf(const char* fields) {
  return {Import::kTable, fields, [](ImportSetup setup) -> std::unique_ptr<RowImport> {
            return std::make_unique<Import>(std::move(setup));
          }};
}

std::vector<Kind> kinds() {
  return {kindOf<ArticleImport>(kArticleFields), kindOf<CustomerImport>(kCustomerFields),
          kindOf<SupplierImport>(kSupplierFields)};
}

// ---------------------------------------------------------------------------------------------
// The work

/// Reads the file to its end, so that a fault of the file as such shows before anything is written.
std::uint64_t countRows(const FileOptions& from) {
  CsvFile file(from.file, separatorOf(from));
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
  import.finish();
}

/// The key is a column: one code for all rows would be one row.
std::vector<FieldSource> sourcesOf(const FileOptions& from, const std::vector<std::string>& columns,
                                   const ImportTable& table) {
  std::vector<FieldSource> sources = fieldSources(from, columns, table);
  if (!sources.front().column) {
    throw UsageError(
        fmt::format("say which column is the code: --map COLUMN=Codigo; the file has {}",
                    joinedNames(columns)));
  }
  return sources;
}

void importRows(const Kind& kind, const FileOptions& from, const Common& common) {
  CsvFile file(from.file, separatorOf(from));
  const std::vector<FieldSource> sources = sourcesOf(from, file.columns(), kind.table);
  Session session(common);
  tellUnused(file.columns(), sources);
  const std::shared_ptr<const Locale> numbers = numbersOf(from, session.installation());
  const std::uint64_t total = countRows(from);
  Refusals refusals(from.report, from.file, session.installation());
  const std::unique_ptr<RowImport> import =
      kind.make({sources, file.columns().size(), numbers.get(), from.isDryRun});

  const ImportCounts& counts = import->counts();
  const auto tell = [&] {  // the batches before an error stay
    refusals.print();
    fmt::print("{} of {} rows: {} new, {} changed, {} as stored, {} refused{}{}\n", counts.total(),
               total, counts.added, counts.changed, counts.same, counts.refused,
               refusals.remarks() > 0 ? fmt::format(", {} with a remark", refusals.remarks()) : "",
               from.isDryRun ? "; nothing was written" : "");
    std::fflush(stdout);
  };
  workAndTell([&] { takeRows(file, *import, refusals, total); }, tell);
  if (counts.total() < total) {
    throw FileError("interrupted; the same command goes on with the rest");
  }
  if (counts.refused > 0) throw FileError(fmt::format("{} rows were refused", counts.refused));
}

void requireKind(const CLI::App& command) {
  if (!command.get_subcommands().empty()) return;
  std::vector<std::string> names;
  for (const CLI::App* each : command.get_subcommands(nullptr)) names.push_back(each->get_name());
  const std::vector<std::string> given = command.remaining();
  if (given.empty()) throw UsageError(fmt::format("say what to take: {}", joinedNames(names)));
  const std::string near = text::nearest(given.front(), names);
  throw UsageError(fmt::format("there are no {} to take{}; there are {}", printable(given.front()),
                               near.empty() ? "" : fmt::format(" (did you mean {}?)", near),
                               joinedNames(names)));
}

}  // namespace

void addImport(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("import", "Take rows from a file, or an old database");
  command->footer(kFooter);
  addInstallationOptions(*command, common);
  for (const Kind& kind : kinds()) {
    CLI::App* const each = command->add_subcommand(
        std::string(kind.table.what),
        fmt::format("Take {} from comma-separated values", kind.table.what));
    auto options = std::make_shared<FileOptions>();
    addFileOptions(*each, *options);
    addInstallationOptions(*each, common);
    each->footer(fmt::format("{}{}{}", kBefore, kind.fields, kBehind));
    each->callback([kind, options, &common] { importRows(kind, *options, common); });
  }
  addImportDatabase(*command, common);
  command->allow_extras();  // last: subcommands that are added later would take it over
  command->callback([command] { requireKind(*command); });
}

}  // namespace tavelor::tools
