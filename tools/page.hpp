// SPDX-License-Identifier: MIT
// The page of a class, as a form with a grid on all of its rows would write it.
#pragma once

#include <string>
#include <vector>

namespace tavelor {
class RecordClass;
}

namespace tavelor::tools {

/// Writes the class's page with the rows that its primary record set shows; `columns` by name, none
/// for all but pictures. Gives the file. Raises 3265 for an unknown column.
std::string writePage(RecordClass& record, const std::vector<std::string>& columns);

}  // namespace tavelor::tools
