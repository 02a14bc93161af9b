// SPDX-License-Identifier: MIT
// Words of IniciaRs that no class knows: the whole table, or an error.
#pragma once

namespace tavelor {

/// While one lives, IniciaRs of this thread's classes raises 3001 for a word that is none of the
/// class's, with the nearest one, and leaves the rows that were open, where the letter of the
/// classes opens the whole table ("todos"). "todos" and an empty word mean the whole table as ever.
/// An installation whose settings say so
/// (`Settings::strictModes`) is strict without it.
class StrictModes {
 public:
  /// From here on.
  StrictModes();
  /// As it was before.
  ~StrictModes();
  StrictModes(const StrictModes&) = delete;
  StrictModes& operator=(const StrictModes&) = delete;

  /// Whether one lives on this thread.
  static bool isOn();

 private:
  bool before_;
};

}  // namespace tavelor
