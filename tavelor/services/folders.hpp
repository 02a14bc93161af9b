// SPDX-License-Identifier: MIT
// Paths inside the folders of an installation.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tavelor {

/// `folder` with a separator at its end. Makes the folder when it is missing; raises 75, from
/// `source`, when that fails.
std::string folderText(const std::filesystem::path& folder, std::string_view source);

/// Full path of a file in `folder`; an empty name gives folderText(). Backslashes in the name are
/// separators too, as older programs write them. A full path inside the folder is given back as it
/// is, so that asking twice does no harm. Raises 5, from `source`, for a name that leaves the
/// folder, and 75 for one that the system does not take (too long, or in a folder without rights).
std::string pathInFolder(const std::filesystem::path& folder, std::string_view file,
                         std::string_view source);

/// The file's full name as its folder's links resolve, whether it is there or not.
std::filesystem::path resolvedFile(const std::filesystem::path& file);
/// Whether two names, links and ways through folders are those of one file, be it there or not.
bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b);

}  // namespace tavelor
