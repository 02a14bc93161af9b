// SPDX-License-Identifier: MIT
// The settings of an installation as an XML file.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tavelor {

struct Settings;

/// Reads a settings file. Raises 53 for a missing one, 75 for one that cannot be read, 5 with file,
/// line and column for one that does not read as XML and for what would else be ignored or
/// misunderstood: an unknown element or attribute, one given twice, a wrong value.
Settings readSettings(const std::filesystem::path& file);

/// Raises 5, naming `where`, for settings that no installation in `folder` can work with.
void checkSettings(const Settings& settings, const std::filesystem::path& folder,
                   const std::string& where);

/// Writes a settings file in the place of an old one: after a crash there is one or the other,
/// whole. Raises 5 as checkSettings and 75 when it cannot be written; the old one is untouched
/// then.
void writeSettings(const std::filesystem::path& file, const Settings& settings);

/// Puts a file in its place in one step: a temporary one beside it, flushed to the disk, renamed
/// over it. Raises 75; the old file is untouched then.
void replaceFile(const std::filesystem::path& file, std::string_view content);
/// Removes the temporary files that programs have left in a folder by dying over replaceFile; those
/// of programs that run stay. Gives their paths. Never raises: what cannot be removed stays.
std::vector<std::string> removeUnfinished(const std::filesystem::path& folder);

}  // namespace tavelor
