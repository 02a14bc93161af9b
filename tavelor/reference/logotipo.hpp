// SPDX-License-Identifier: MIT
// Pictures on their way into a record.
#pragma once

#include <string>

#include "tavelor/platform/export.hpp"

namespace tavelor {

class Recordset;

/// Loads a file into the column Logotipo of the current row, which the caller then writes with
/// Update. A file that is not there, or is empty, changes nothing. Raises 75 for one that cannot be
/// read: the column then holds the part read so far until Cancel; 3265 for a record set without
/// that column.
TAVELOR_API void readLogotipo(Recordset& rows, const std::string& source);

}  // namespace tavelor
