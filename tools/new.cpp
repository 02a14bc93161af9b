// SPDX-License-Identifier: MIT
// tavelor new: makes an installation.
#include <CLI/CLI.hpp>
#include <filesystem>

#include <fmt/format.h>

#include "tavelor/platform/locale.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/installation.hpp"
#include "tools/command.hpp"

namespace tavelor::tools {

namespace {

void printMade(const Installation& made) {
  const auto inside = [&](const std::filesystem::path& path) {
    return path.lexically_relative(made.folder()).string();
  };
  const Settings& settings = made.settings();
  fmt::print("Made an installation in {}\n", made.folder());
  fmt::print("  {:<14}  settings: {} {}, locale {}\n", Installation::kSettingsFile,
             settings.company, settings.product, settings.locale);
  // A file, or a schema of the server.
  const auto place = [&](const std::string& file, const std::string& schema) {
    return file.empty() ? schema : inside(file);
  };
  for (const DatabaseSettings& database : settings.databases) {
    fmt::print("  {:<14}  database {}, {}: {} tables\n",
               place(made.databaseFile(database.selector), made.database(database.selector).schema),
               database.selector, database.label,
               made.catalogue(database.selector)->tables().size());
  }
  fmt::print("  {:<14}  registry\n", place(made.registryFile(), settings.registrySchema));
  fmt::print("  folders         {} {} {} {} {}\n", inside(made.reportFolder()),
             inside(made.exportFolder()), inside(made.documentFolder()), inside(made.textFolder()),
             inside(made.emailTextFolder()));
}

struct NewOptions {
  std::string folder;
  std::string locale = Settings().locale;
  std::string server;
};

}  // namespace

void addNew(CLI::App& app, Common&) {
  CLI::App* command = app.add_subcommand("new", "Make an installation in a folder");
  auto options = std::make_shared<NewOptions>();
  command->add_option("folder", options->folder, "The folder; made when it is missing")
      ->required()
      ->type_name("FOLDER");
  command->add_option("--locale", options->locale, "How numbers and dates are written")
      ->type_name("es-ES|neutral");
  command
      ->add_option("--server", options->server,
                   "Keep databases and registry on a PostgreSQL server")
      ->type_name("ADDRESS");
  command->footer(
      "  tavelor new shop\n  tavelor new shop --locale neutral\n"
      "  tavelor new shop --server postgresql://till@db1:5432,db2/shop");
  command->callback([options] {
    if (!Locale::byName(options->locale)) {
      throw UsageError(
          fmt::format("there is no locale {}; there are es-ES and neutral", options->locale));
    }
    Settings settings;
    settings.locale = options->locale;
    if (!options->server.empty()) {
      settings = onServer(std::move(settings), engine::serverAddress(options->server));
    }
    printMade(*Installation::create(options->folder, settings));
  });
}

}  // namespace tavelor::tools
