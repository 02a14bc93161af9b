// SPDX-License-Identifier: MIT
// What can be told of a statement by its text alone.
#pragma once

#include <string_view>

namespace tavelor::engine::postgres {

/// A look at a statement without the server.
struct StatementText {
  /// Reads names, texts between quotes or dollars, and comments as the server does.
  explicit StatementText(std::string_view text);

  std::string_view body;       ///< without the blanks, comments and semicolons around it
  int placeholders = 0;        ///< the largest number behind a dollar
  bool isRead = false;         ///< it only gives rows
  bool isLocking = false;      ///< it may lock rows for its transaction
  bool isDefinition = false;   ///< it changes tables or columns
  bool isOneStatement = true;  ///< nothing stands behind a semicolon
};

}  // namespace tavelor::engine::postgres
