// SPDX-License-Identifier: MIT
// Slips and pages: what a program that died before it wrote them has left out is made again.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tavelor/platform/date.hpp"

namespace tavelor::flows {

/// What writeMissingPapers did.
struct Papers {
  std::vector<std::string> written;  ///< paths of slips and pages
  std::vector<std::string> removed;  ///< halves of files, of programs that are gone
};

/// Which closings to look at.
enum class PapersOf : std::uint8_t {
  kLatest,  ///< the last ones, however many years there are: where a program may just have died
  kAll,
};

/// Writes the slips that are not there, and the page of each day whose page is not there or does
/// not know all closings of the day. A day whose history was put away keeps what page it has, and
/// gets none. Raises 75 for a file that cannot be written; those before it are.
Papers writeMissingPapers(PapersOf which);

/// The page of a day unless it is up to date; "" then.
std::string writeMissingPage(Date day);

}  // namespace tavelor::flows
