// SPDX-License-Identifier: MIT
// Rows as an aligned table or as comma-separated values.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tavelor {
class Recordset;
struct Locale;
}  // namespace tavelor

namespace tavelor::tools {

class Style;

struct TableOptions {
  std::size_t limit = std::numeric_limits<std::size_t>::max();  ///< rows shown
  std::vector<std::string> columns;                             ///< names; none for all
  bool csv = false;
};

/// Check of an option that counts: the parser would take -1 for the greatest number there is.
std::string notNegative(const std::string& text);

/// --limit, --columns, --csv.
void addTableOptions(CLI::App& app, TableOptions& options);

/// Prints the rows of a set from the first one on, and how many there are. Texts are cut to what a
/// table has room for, numbers stand at the right, nulls are a dot. With csv nothing is cut, there
/// is no count, a null is nothing and an empty text is "". Raises 3265 for an unknown column.
void printRows(Recordset& rows, const Locale& locale, const TableOptions& options,
               const Style& style);

}  // namespace tavelor::tools
