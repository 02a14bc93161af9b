// SPDX-License-Identifier: MIT
// Where exported files lie.
#include "tavelor/services/paths_service.hpp"

#include <filesystem>
#include <system_error>

#include "tavelor/services/apartment.hpp"
#include "tavelor/services/folders.hpp"
#include "tavelor/services/installation.hpp"

namespace tavelor {

namespace {
constexpr std::string_view kSource = "PathsService";
}

PathsService::PathsService() : apartment_(Apartment::current()) {}

std::string PathsService::HtmlFile(std::string_view file) const {
  return pathInFolder(apartment_.installation().reportFolder(), file, kSource);
}

std::string PathsService::TxtFolder() const {
  return folderText(apartment_.installation().textFolder(), kSource);
}

std::string PathsService::EmailTxtFolder() const {
  return folderText(apartment_.installation().emailTextFolder(), kSource);
}

std::string PathsService::WorkPath() const {
  return apartment_.installation().folder();
}

bool PathsService::FileExists(std::string_view path) const {
  // A zero byte ends a name for the system, which would look for another file.
  if (path.find('\0') != std::string_view::npos) return false;
  std::error_code error;
  const auto status = std::filesystem::status(std::filesystem::path(path), error);
  return !error && std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

}  // namespace tavelor
