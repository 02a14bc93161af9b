// SPDX-License-Identifier: MIT
// Where exported files lie.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/platform/export.hpp"

namespace tavelor {

class Apartment;

/// Made anew for each use. Folders end with a separator and are made when they are asked for and
/// missing.
class TAVELOR_API PathsService {
 public:
  /// Of the calling thread's apartment; raises 91 when there is none.
  PathsService();

  /// Full path of an export file ("Bancos.htm") in the report folder. Raises 5 for a name that
  /// leaves that folder.
  std::string HtmlFile(std::string_view file) const;
  /// Folder of text exports.
  std::string TxtFolder() const;
  /// Folder of text exports that go out by mail.
  std::string EmailTxtFolder() const;
  /// The installation folder, without a separator at its end: logs and slips lie in its "rpt".
  std::string WorkPath() const;
  /// True if there is a file (not a folder) of that path. Never raises.
  bool FileExists(std::string_view path) const;

 private:
  Apartment& apartment_;
};

}  // namespace tavelor
