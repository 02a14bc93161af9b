// SPDX-License-Identifier: MIT
// What commands that take rows from a file are told about it: which column is which field, and how
// its texts are read.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tools/fields.hpp"

namespace CLI {
class App;
}

namespace tavelor {
class Installation;
}

namespace tavelor::tools {

struct FileOptions {
  std::string file;
  std::vector<std::string> maps;       ///< column=field
  std::vector<std::string> constants;  ///< field=value
  std::string separator;
  std::string decimal;
  std::string report;
  bool isDryRun = false;
};

/// FILE, --map, --set, --separator, --decimal, --report and --dry-run. `options` outlives the app.
void addFileOptions(CLI::App& command, FileOptions& options);

/// Where each field of the table comes from: what --map and --set say, else the column that bears
/// its name, with or without accents. Raises UsageError for a field or a column that is not there,
/// and for one that is given twice.
std::vector<FieldSource> fieldSources(const FileOptions& options,
                                      const std::vector<std::string>& columns,
                                      const ImportTable& table);

/// Tells on standard error which columns no field comes from: one that is misspelt would be missed
/// in silence.
void tellUnused(const std::vector<std::string>& columns, const std::vector<FieldSource>& sources);

/// 0 for the one that the first row has most of. Raises UsageError for more than one character.
char separatorOf(const FileOptions& options);
/// How the file writes numbers: as --decimal says, else as the installation does.
std::shared_ptr<const Locale> numbersOf(const FileOptions& options,
                                        const Installation& installation);

/// "a, b, c", as a message shows them.
std::string joinedNames(const std::vector<std::string>& names);

}  // namespace tavelor::tools
