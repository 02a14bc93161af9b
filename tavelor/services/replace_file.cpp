// SPDX-License-Identifier: MIT
// Puts a file in its place in one step.
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <system_error>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/settings_file.hpp"

namespace tavelor {

namespace {

// Between a file's name and the process that writes it anew.
constexpr std::string_view kTemporary = ".new-";

/// The process that writes, or wrote, a temporary file; 0 for another file.
pid_t writerOf(const std::string& name) {
  const std::size_t mark = name.rfind(kTemporary);
  if (mark == 0 || mark == std::string::npos) return 0;
  const char* const begin = name.data() + mark + kTemporary.size();
  const char* const end = name.data() + name.size();
  pid_t writer = 0;
  const auto [last, error] = std::from_chars(begin, end, writer);
  return error == std::errc() && last == end && writer > 0 ? writer : 0;
}

bool isGone(pid_t process) {
  return ::kill(process, 0) != 0 && errno == ESRCH;
}

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
  const std::string temporary = fmt::format("{}{}{}", file.string(), kTemporary, ::getpid());
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

std::vector<std::string> removeUnfinished(const std::filesystem::path& folder) {
  namespace fs = std::filesystem;
  std::vector<std::string> removed;
  std::error_code fault;
  for (fs::directory_iterator file(folder, fault), end; !fault && file != end;
       file.increment(fault)) {
    const pid_t writer = writerOf(file->path().filename().string());
    std::error_code ignored;
    if (writer == 0 || !isGone(writer) || !file->is_regular_file(ignored)) continue;
    if (fs::remove(file->path(), ignored)) removed.push_back(file->path().string());
  }
  return removed;
}

}  // namespace tavelor
