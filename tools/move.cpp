// SPDX-License-Identifier: MIT
// tavelor move: moves an installation to a server, or back to files.
#include <CLI/CLI.hpp>
#include <memory>

#include <fmt/format.h>

#include "tavelor/services/relocation.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kMoveFooter =
    R"(Databases and registry go whole and in one state, and both sides are counted and
summed up before anything is kept. Who sells meanwhile waits, and is refused when
it takes too long; who has the installation open is refused afterwards until it is
opened anew. What the other side cannot hold is named before anything is written.

The old databases and settings stay, with the moment of the move behind their
names. A target that holds anything already is refused. A move that was interrupted
leaves the shop as it was: give the same command again.

  tavelor move shop --to postgresql://shop_owner@db1/shop
  tavelor move shop --to-files)";

struct MoveOptions {
  std::string folder;
  std::string server;
  bool toFiles = false;
};

void printDatabases(const Relocation& done) {
  for (const Relocation::Database& database : done.databases) {
    fmt::print("  {:<10}  {}: {} tables, {} rows, sum {:016x}\n", database.label,
               printable(database.place), database.tables, database.rows, database.sum);
  }
}

void moveShop(const MoveOptions& options) {
  const engine::ServerAddress server =
      options.toFiles ? engine::ServerAddress() : engine::serverAddress(options.server);
  const Relocation done =
      options.toFiles ? moveToFiles(options.folder) : moveToServer(options.folder, server);
  if (done.wasThere && done.databases.front().tables == 0) {
    fmt::print("It was there already; {} old databases are put away now, as *{}\n",
               done.databases.size(), done.ending);
    return;
  }
  if (done.wasThere) fmt::print("An interrupted move had copied everything already.\n");
  fmt::print("Moved the installation in {} to {}\n", printable(options.folder),
             options.toFiles ? std::string("files")
                             : fmt::format("the database {} of {}", printable(server.database),
                                           printable(server.hosts)));
  printDatabases(done);
  fmt::print("  kept        the old databases and tavelor.xml, as *{}\n", done.ending);
}

}  // namespace

void addMove(CLI::App& app, Common&) {
  CLI::App* command =
      app.add_subcommand("move", "Move an installation to a server, or back to files");
  auto options = std::make_shared<MoveOptions>();
  command->add_option("folder", options->folder, "Folder of the installation")
      ->required()
      ->type_name("FOLDER");
  CLI::Option* const server =
      command
          ->add_option("--to", options->server, "To the schemas of a PostgreSQL server's database")
          ->type_name("ADDRESS");
  command->add_flag("--to-files", options->toFiles, "To files in its folder")->excludes(server);
  command->footer(kMoveFooter);
  command->callback([options] {
    if (options->server.empty() && !options->toFiles) {
      throw UsageError("say where to move it: --to ADDRESS or --to-files");
    }
    moveShop(*options);
  });
}

}  // namespace tavelor::tools
