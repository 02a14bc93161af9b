// SPDX-License-Identifier: MIT
// Moves an installation from one engine to another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/callback.hpp"
#include "tavelor/platform/export.hpp"
#include "tavelor/services/engine/server_address.hpp"

namespace tavelor {

/// What a move is about to do.
struct TAVELOR_API RelocationStep {
  /// In this order. The first one writes nothing; behind kSwitching the shop works on the new
  /// engine.
  enum class Kind : std::uint8_t {
    kLook,     ///< reads a table, for what the other engine cannot hold
    kCopy,     ///< writes it there
    kCompare,  ///< reads it back
    kKeep,     ///< ends the transactions there
    kSwitch,   ///< lets the settings name it
    kPutAway,  ///< takes the old databases out of use
  };
  Kind kind;                  ///< what comes now
  std::string_view database;  ///< its label, "registry" for that one; "" from kKeep on
  std::string_view table;     ///< "" likewise
};
/// Is told each step before it is done. An error that it raises ends the move as any other does.
using RelocationListener = Callback<void(const RelocationStep&)>;

/// What was moved.
struct TAVELOR_API Relocation {
  /// A database with all its tables.
  struct TAVELOR_API Database {
    std::string label;       ///< "main", "registry"
    std::string place;       ///< where it is now: a file, or a schema
    std::size_t tables = 0;  ///< how many it has
    std::int64_t rows = 0;   ///< in all of them
    std::uint64_t sum = 0;   ///< of all values, the same on every engine
  };
  std::vector<Database> databases;  ///< the registry last
  std::string ending;               ///< what the names of the old databases end with now
  std::string keptSettings;         ///< full path of the settings as they were
  bool wasThere = false;            ///< a move that was interrupted had copied everything already
};

/// Moves all databases and the registry of the installation in `folder` to schemas of that server's
/// database: tables, rows in their stored order, indexes, and counters, which go on behind the
/// last number they gave. Its other files stay.
///
/// All is read in one state. Whoever wants to write meanwhile waits as for any other writer, and is
/// refused by kBusy in the end; whoever has the installation open is refused at the first write
/// behind the move, until it is opened anew. Both sides are counted and summed up before anything
/// is kept. The old databases stay under other names, and so do the old settings.
///
/// Errors: those of opening the installation and the server, kBusy and kTryAgain for others who
/// write, 5 where the installation is there already, kPathAccess for a target that holds tables,
/// kTypeMismatch for values that a server cannot hold, each told with database, table, key and
/// column; kUnspecified where what was written differs from what was read, with the first such
/// table. The installation is what it was then, and the target holds no rows.
///
/// A program that dies on the way leaves the installation as it was too, or, once the settings are
/// exchanged, as it will be. What it leaves at the target is taken up or removed by the next move
/// there, which knows it by the file "tavelor.xml.moving"; only where the shop has gone on after
/// all had been copied, the target is refused and must be emptied by hand. If it dies between the
/// exchange of the settings and the end, the old databases are still in their place: the same move
/// once more puts files away, and schemas are renamed by hand.
TAVELOR_API Relocation moveToServer(const std::string& folder, const engine::ServerAddress& server,
                                    const RelocationListener& listener = {});
/// The other way round: to files in the folder of the installation, named as those of a new one,
/// or with a number behind where a file of that name was put away once. kPathAccess for a file that
/// is in the way.
TAVELOR_API Relocation moveToFiles(const std::string& folder,
                                   const RelocationListener& listener = {});

}  // namespace tavelor
