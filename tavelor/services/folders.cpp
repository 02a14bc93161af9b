// SPDX-License-Identifier: MIT
// Paths inside the folders of an installation.
#include "tavelor/services/folders.hpp"

#include <algorithm>
#include <system_error>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"

namespace tavelor {

namespace fs = std::filesystem;

std::string folderText(const fs::path& folder) {
  std::error_code ignored;
  fs::create_directories(folder, ignored);
  return folder.string() + static_cast<char>(fs::path::preferred_separator);
}

std::string pathInFolder(const fs::path& folder, std::string_view file, std::string_view source) {
  if (file.empty()) return folderText(folder);
  std::string name(file);
  std::replace(name.begin(), name.end(), '\\', static_cast<char>(fs::path::preferred_separator));

  const fs::path given(name);
  const fs::path full = (given.is_absolute() ? given : folder / given).lexically_normal();
  const fs::path inside = full.lexically_relative(folder.lexically_normal());
  const bool leaves = inside.empty() || *inside.begin() == ".." || *inside.begin() == ".";
  if (leaves || name.find('\0') != std::string::npos) {
    raise(errors::kInvalidCall, source,
          fmt::format("\"{}\" is no file of the folder {}.", file, folder.string()));
  }
  folderText(full.parent_path());
  return full.string();
}

}  // namespace tavelor
