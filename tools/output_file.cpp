// SPDX-License-Identifier: MIT
// Files that the user names for what the command writes.
#include "tools/output_file.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <fmt/format.h>

#include "tavelor/services/folders.hpp"
#include "tavelor/services/installation.hpp"
#include "tools/command.hpp"
#include "tools/input_file.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

namespace {

namespace fs = std::filesystem;

/// A file that is there in a folder of the shop's, at any depth.
bool isDocument(const fs::path& file, const Installation& shop) {
  std::error_code unknown;
  if (!fs::exists(file, unknown)) return false;
  const std::array folders = {shop.reportFolder(), shop.exportFolder(), shop.documentFolder(),
                              shop.textFolder(), shop.emailTextFolder()};
  const fs::path whole = resolvedFile(file);
  return std::any_of(folders.begin(), folders.end(), [&](const std::string& folder) {
    const fs::path own = resolvedFile(fs::path(folder) / "");
    const auto inside = whole.lexically_relative(own.has_filename() ? own : own.parent_path());
    return !inside.empty() && *inside.begin() != "..";
  });
}

bool beginsWith(const fs::path& file, std::string_view head) {
  std::error_code unknown;
  if (!fs::is_regular_file(file, unknown)) return false;  // a pipe would wait for its writer
  std::string begin(head.size(), '\0');
  std::ifstream in(file, std::ios::binary);
  in.read(begin.data(), static_cast<std::streamsize>(begin.size()));
  return in && begin == head;
}

}  // namespace

void requireForeign(const std::string& option, const std::string& file, const Installation& shop) {
  if (shop.isOwnFile(file) || isDocument(file, shop)) {
    throw UsageError(fmt::format("{}: {} is the shop's own file", option, printable(file)));
  }
}

OutputFile beginOutput(const std::string& option, const std::string& file, std::string_view head,
                       const std::string& input, const Installation& shop) {
  if (!beginsWith(file, head)) requireForeign(option, file, shop);
  if (!input.empty() && isSameFile(file, input)) {
    throw UsageError(fmt::format("{}: {} is the file that is read", option, printable(file)));
  }
  // Without waiting: a pipe that nobody reads would be opened only when somebody does.
  constexpr int kHow = O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC;
  const int descriptor = ::open(file.c_str(), kHow, 0666);
  OutputFile begun(descriptor < 0 ? nullptr : fdopen(descriptor, "wb"));
  if (!begun) {
    throw FileError(
        fmt::format("{}: {} cannot be written: {}", option, printable(file), std::strerror(errno)));
  }
  fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
  std::fwrite(head.data(), 1, head.size(), begun.get());
  return begun;
}

}  // namespace tavelor::tools
