// SPDX-License-Identifier: MIT
// Asks the process that reads a database file, and believes nothing that does not fit.
#include "tools/old_database.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <numeric>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tools/input_file.hpp"
#include "tools/old_database_reader.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

using old_database::Cell;
using old_database::Message;

namespace {

constexpr int kPatienceMs = 60'000;
// A row of the longest values that a table may have; the rest of a message is small.
constexpr std::size_t kLongestMessage = 4 * OldDatabase::kLongestValue;

// ---------------------------------------------------------------------------------------------
// The first page

constexpr std::size_t kFirstPage = 0x98;  // of it, what is looked at
constexpr std::size_t kVersionAt = 0x14;
constexpr std::uint8_t kJet3 = 0;
constexpr std::uint8_t kJet4 = 1;

/// The cipher that the first page's settings are written in, with a key that all files share.
void decipherSettings(std::string& page, std::size_t size) {
  constexpr std::array<std::uint8_t, 4> kKey = {0xC7, 0xDA, 0x39, 0x6B};
  constexpr std::size_t kBegin = 0x18;
  std::array<std::uint8_t, 256> state = {};
  std::iota(state.begin(), state.end(), std::uint8_t{0});
  std::uint8_t j = 0;
  for (std::size_t i = 0; i < state.size(); ++i) {
    j = static_cast<std::uint8_t>(j + state[i] + kKey[i % kKey.size()]);
    std::swap(state[i], state[j]);
  }
  std::uint8_t i = 0;
  j = 0;
  for (std::size_t at = kBegin; at < kBegin + size; ++at) {
    i = static_cast<std::uint8_t>(i + 1);
    j = static_cast<std::uint8_t>(j + state[i]);
    std::swap(state[i], state[j]);
    const std::uint8_t mask = state[static_cast<std::uint8_t>(state[i] + state[j])];
    page[at] = static_cast<char>(static_cast<std::uint8_t>(page[at]) ^ mask);
  }
}

bool hasPassword(std::string page, std::uint8_t version) {
  constexpr std::size_t kAt = 0x42;
  constexpr std::size_t kDayAt = 0x72;  // of its making, with which Jet 4 hides the password
  decipherSettings(page, version == kJet3 ? 126 : 128);
  const std::size_t size = version == kJet3 ? 20 : 40;
  std::array<char, 4> mask = {};
  if (version == kJet4) {
    double day = 0;
    std::memcpy(&day, page.data() + kDayAt, sizeof day);
    const auto whole = static_cast<std::int32_t>(std::clamp(day, -1e6, 1e7));
    std::memcpy(mask.data(), &whole, sizeof whole);
  }
  for (std::size_t i = 0; i < size; ++i) {
    if (page[kAt + i] != mask[i % mask.size()]) return true;
  }
  return false;
}

/// What is wrong with a file as such, or "".
std::string faultOfFile(const std::string& path) {
  // Without waiting: a pipe would be opened only when somebody writes to it.
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return std::strerror(errno);
  struct stat status = {};
  fstat(descriptor, &status);
  std::string page(kFirstPage, '\0');
  const ssize_t got = S_ISREG(status.st_mode) ? pread(descriptor, page.data(), page.size(), 0) : 0;
  close(descriptor);
  if (S_ISDIR(status.st_mode)) return "it is a folder";
  if (!S_ISREG(status.st_mode)) return "it is a pipe or a device; give a file";
  const std::string_view kind = std::string_view(page).substr(4, 15);
  const auto version = static_cast<std::uint8_t>(page[kVersionAt]);
  if (got < static_cast<ssize_t>(kFirstPage) ||
      (kind != "Standard Jet DB" && kind != "Standard ACE DB")) {
    return "it is no database of the Jet engine (.mdb)";
  }
  if (kind == "Standard ACE DB" || version > kJet4) {
    return "it is of 2007 or later (.accdb), which is not read: save it as a database of 2000 or "
           "2002-2003 (.mdb)";
  }
  const off_t pageSize = version == kJet3 ? 2048 : 4096;
  if (status.st_size % pageSize != 0) return "it is cut off: its last page is not whole";
  if (hasPassword(page, version)) {
    return "it has a password: take it off in the program that made the file";
  }
  return {};
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// The process

class OldDatabase::Process {
 public:
  explicit Process(const std::string& path) {
    std::array<int, 2> ends = {};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
      throw FileError(fmt::format("no process can be asked to read it: {}", std::strerror(errno)));
    }
    process_ = fork();
    if (process_ == 0) {
      close(ends[0]);
      old_database::serve(path, ends[1]);
    }
    close(ends[1]);
    socket_ = ends[0];
    if (process_ < 0) {
      close(socket_);
      throw FileError(
          fmt::format("no process can be started to read it: {}", std::strerror(errno)));
    }
  }
  ~Process() {
    close(socket_);
    if (process_ > 0) {
      kill(process_, SIGKILL);
      waitpid(process_, nullptr, 0);
    }
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  void ask(std::uint32_t table) {
    if (send(socket_, &table, sizeof table, MSG_NOSIGNAL) != sizeof table) raiseEnd();
  }

  /// The next message; valid until the next call.
  std::pair<Message, std::string_view> next() {
    constexpr std::size_t kHead = 1 + sizeof(std::uint32_t);
    fill(kHead);
    std::uint32_t size = 0;
    std::memcpy(&size, buffer_.data() + at_ + 1, sizeof size);
    if (size > kLongestMessage) throw FileError("what is read of it makes no sense");
    fill(kHead + size);
    const auto kind = static_cast<Message>(buffer_[at_]);
    const std::string_view text(buffer_.data() + at_ + kHead, size);
    at_ += kHead + size;
    if (kind == Message::kFailure) throw FileError(printable(text));
    return {kind, text};
  }

 private:
  /// Until so many bytes are there to be taken.
  void fill(std::size_t wanted) {
    if (buffer_.size() - at_ >= wanted) return;
    buffer_.erase(0, at_);
    at_ = 0;
    while (buffer_.size() < wanted) {
      pollfd waiting = {socket_, POLLIN, 0};
      const int ready = poll(&waiting, 1, kPatienceMs);
      if (ready < 0 && errno == EINTR) continue;
      if (ready == 0) throw FileError("it is damaged: reading it comes to no end");
      const std::size_t old = buffer_.size();
      buffer_.resize(std::max(wanted, old + (std::size_t{64} << 10U)));
      const ssize_t got = recv(socket_, buffer_.data() + old, buffer_.size() - old, 0);
      buffer_.resize(old + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
      if (got < 0 && errno == EINTR) continue;
      if (got <= 0) raiseEnd();
    }
  }

  [[noreturn]] void raiseEnd() {
    int status = 0;
    waitpid(std::exchange(process_, -1), &status, 0);
    throw FileError(WIFSIGNALED(status)
                        ? fmt::format("it is damaged: the program that reads it was ended by a "
                                      "fault ({})",
                                      strsignal(WTERMSIG(status)))
                        : std::string("it is damaged: the program that reads it has given up"));
  }

  pid_t process_ = -1;
  int socket_ = -1;
  std::string buffer_;
  std::size_t at_ = 0;
};

// ---------------------------------------------------------------------------------------------
// What it tells

namespace {

/// Takes a message apart.
class MessageReader {
 public:
  explicit MessageReader(std::string_view rest) : rest_(rest) {}

  bool isAtEnd() const { return rest_.empty(); }
  std::string_view take(std::size_t size) {
    if (size > rest_.size()) throw FileError("what is read of it makes no sense");
    const std::string_view taken = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return taken;
  }
  template <typename T>
  T plain() {
    T value;
    std::memcpy(&value, take(sizeof value).data(), sizeof value);
    return value;
  }
  std::string_view text() { return take(plain<std::uint32_t>()); }

 private:
  std::string_view rest_;
};

Variant valueOf(MessageReader& row, std::string& fault) {
  switch (row.plain<Cell>()) {
    case Cell::kNull:
      return Null();
    case Cell::kFlag:
      return row.plain<std::uint8_t>() != 0;
    case Cell::kInteger:
      return row.plain<std::int32_t>();
    case Cell::kMoney:
      return Currency::fromScaled(row.plain<std::int64_t>());
    case Cell::kSingle:
      return row.plain<float>();
    case Cell::kDouble:
      return row.plain<double>();
    case Cell::kDate:
      return Date(row.plain<double>());
    case Cell::kText:
      return row.text();
    case Cell::kBytes: {
      const std::string_view bytes = row.text();
      const auto* const first = reinterpret_cast<const std::byte*>(bytes.data());
      return Bytes(first, first + bytes.size());
    }
    case Cell::kUnreadable: {
      const std::string_view what = row.text();
      if (fault.empty()) fault = what;
      return Null();
    }
  }
  throw FileError("what is read of it makes no sense");
}

/// Pairs of columns come one behind the other.
void addPair(MessageReader text, std::string& last, std::vector<OldRelation>& relations) {
  const std::string name(text.text());
  const std::string child(text.text());
  const std::string childColumn(text.text());
  const std::string parent(text.text());
  const std::string parentColumn(text.text());
  if (relations.empty() || name != last) relations.push_back({child, {}, parent, {}});
  last = name;
  relations.back().childColumns.push_back(childColumn);
  relations.back().parentColumns.push_back(parentColumn);
}

OldTable tableOf(MessageReader text) {
  OldTable table;
  table.name = text.text();
  table.rows = text.plain<std::uint64_t>();
  while (!text.isAtEnd()) {
    const auto type = text.plain<OldType>();
    table.columns.push_back({std::string(text.text()), type});
  }
  return table;
}

}  // namespace

OldDatabase::OldDatabase(const std::string& path) : path_(path) {
  if (const std::string fault = faultOfFile(path); !fault.empty()) fail(fault);
  try {
    process_ = std::make_unique<Process>(path);
    readStructure();
  } catch (const FileError& error) {
    fail(error.what());
  }
}

OldDatabase::~OldDatabase() = default;

void OldDatabase::fail(std::string_view what) const {
  throw FileError(fmt::format("{}: {}", printable(path_), what));
}

void OldDatabase::readStructure() {
  std::string last;
  while (true) {
    const auto [kind, text] = process_->next();
    if (kind == Message::kStructure) return;
    if (kind == Message::kTable) tables_.push_back(tableOf(MessageReader(text)));
    if (kind == Message::kLinked) linked_.emplace_back(text);
    if (kind == Message::kRelation) addPair(MessageReader(text), last, relations_);
  }
}

void OldDatabase::read(std::size_t table, const Callback<void(OldRow&)>& take) {
  const OldTable& told = tables_[table];
  OldRow row;
  std::uint64_t unreadable = 0;
  const auto next = [&] {
    try {
      const auto [kind, text] = process_->next();
      MessageReader cells(text);
      if (kind == Message::kTableEnd) unreadable = cells.plain<std::uint64_t>();
      if (kind != Message::kRow) return false;
      ++row.number;
      row.values.clear();
      row.fault.clear();
      for (std::size_t i = 0; i < told.columns.size(); ++i) {
        row.values.push_back(valueOf(cells, row.fault));
      }
      return true;
    } catch (const FileError& error) {
      fail(fmt::format("table {}: {}", printable(told.name), error.what()));
    }
  };
  try {
    process_->ask(static_cast<std::uint32_t>(table));
  } catch (const FileError& error) {
    fail(error.what());
  }
  while (next()) take(row);
  if (unreadable > 0 || row.number < told.rows) {
    fail(fmt::format(
        "it is damaged: {} of {} rows of table {} can be read; repair it in the "
        "program that made the file",
        row.number, std::max(told.rows, row.number + unreadable), printable(told.name)));
  }
}

}  // namespace tavelor::tools
