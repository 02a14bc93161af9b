// SPDX-License-Identifier: MIT
// Paths inside the folders of an installation.
#include "tavelor/services/folders.hpp"

#include <algorithm>
#include <system_error>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"

namespace tavelor {

namespace fs = std::filesystem;

namespace {

/// Characters: error texts go to screens and logs.
constexpr std::size_t kMostShown = 200;

[[noreturn]] void refuse(std::string_view source, std::string_view what, const fs::path& path,
                         const std::error_code& reason) {
  const std::string whole = path.string();
  const std::string_view shown = text::left(whole, kMostShown);
  raise(errors::kPathAccess, source,
        fmt::format("The {} {}{} cannot be used: {}.", what, shown,
                    shown.size() < whole.size() ? "..." : "", reason.message()));
}

}  // namespace

std::string folderText(const fs::path& folder, std::string_view source) {
  std::error_code failure;
  fs::create_directories(folder, failure);
  if (failure) refuse(source, "folder", folder, failure);
  return folder.string() + static_cast<char>(fs::path::preferred_separator);
}

std::string pathInFolder(const fs::path& folder, std::string_view file, std::string_view source) {
  if (file.empty()) return folderText(folder, source);
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
  folderText(full.parent_path(), source);
  std::error_code failure;
  if (fs::symlink_status(full, failure).type() == fs::file_type::none) {
    refuse(source, "file", full, failure);
  }
  return full.string();
}

fs::path resolvedFile(const fs::path& file) {
  std::error_code unknown;
  const fs::path whole = fs::weakly_canonical(fs::absolute(file, unknown), unknown);
  return unknown ? file.lexically_normal() : whole;
}

bool isSameFile(const fs::path& a, const fs::path& b) {
  std::error_code unknown;
  return fs::equivalent(a, b, unknown) || resolvedFile(a) == resolvedFile(b);
}

}  // namespace tavelor
