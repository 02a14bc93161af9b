// SPDX-License-Identifier: MIT
// A folder for a test, in memory where there is room.
#pragma once

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include <unistd.h>

namespace tavelor::test {

/// A folder of its own that goes with the object.
class TemporaryFolder {
 public:
  /// A name that nobody has: one made of the process would meet what a killed test of the same
  /// number has left.
  TemporaryFolder() {
    std::string name = (place() / "tavelor-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) {
      throw std::system_error(errno, std::generic_category(), name);
    }
    path_ = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::filesystem::path& path() const { return path_; }
  std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  /// In memory where that is to be had and nobody asked for another place: a shop is six databases,
  /// and a disk takes its time to keep them.
  static std::filesystem::path place() {
    const std::filesystem::path memory = "/dev/shm";
    constexpr std::uintmax_t kRoom = 1U << 30U;
    std::error_code error;
    const bool fits = std::getenv("TMPDIR") == nullptr && ::access(memory.c_str(), W_OK) == 0 &&
                      std::filesystem::space(memory, error).available > kRoom && !error;
    return fits ? memory : std::filesystem::temp_directory_path();
  }

  std::filesystem::path path_;
};

}  // namespace tavelor::test
