// SPDX-License-Identifier: MIT
// Puts a file in its place in one step.
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/settings_file.hpp"

namespace tavelor {

namespace {

/// A file descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  int get() const { return number_; }
  bool isOpen() const { return number_ >= 0; }

 private:
  int number_;
};

bool writeAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = ::write(descriptor, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

void replaceFile(const std::filesystem::path& file, std::string_view content) {
  const std::string temporary = fmt::format("{}.new-{}", file.string(), ::getpid());
  const auto fail = [&](std::string_view what) {
    const int reason = errno;
    ::unlink(temporary.c_str());
    raise(errors::kPathAccess, "Installation",
          fmt::format("{} cannot be {}: {}.", file.string(), what, std::strerror(reason)));
  };
  {
    const Descriptor out(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    if (!out.isOpen()) fail("written");
    if (!writeAll(out.get(), content) || ::fsync(out.get()) != 0) fail("written");
  }
  if (std::rename(temporary.c_str(), file.c_str()) != 0) fail("replaced");
  // The new name lasts through a power cut only once the folder is on the disk too.
  const Descriptor folder(::open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.isOpen()) ::fsync(folder.get());
}

}  // namespace tavelor
