// SPDX-License-Identifier: MIT
// Reads files block by block, through the decompressor where they are compressed.
#include "tools/input_file.hpp"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <fmt/format.h>
#include <lzma.h>
#include <sys/stat.h>

#include "tavelor/platform/text.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16U;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kXzMagic(
    "\xFD"
    "7zXZ\0",
    6);

struct Closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

/// Blocks of the file as they are, or of what is compressed in it.
class InputFile::Source {
 public:
  explicit Source(const std::string& path) {
    // Without waiting: a pipe would be opened only when somebody writes into it.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor >= 0) file_.reset(fdopen(descriptor, "rb"));
    if (!file_) throw FileError(fmt::format("{}: {}", printable(path), std::strerror(errno)));
    struct stat status = {};
    fstat(descriptor, &status);
    if (S_ISDIR(status.st_mode)) {
      throw FileError(fmt::format("{}: it is a folder", printable(path)));
    }
    if (!S_ISREG(status.st_mode)) {
      throw FileError(fmt::format("{}: it is read twice, so save it as a file", printable(path)));
    }
    readRaw();
    compressed_ = raw_.substr(0, kXzMagic.size()) == kXzMagic;
    if (compressed_ && lzma_stream_decoder(&stream_, UINT64_MAX, LZMA_CONCATENATED) != LZMA_OK) {
      throw FileError("the decompressor cannot be started");
    }
  }
  ~Source() { lzma_end(&stream_); }
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;

  /// Appends a block; false at the end. "" or what is wrong.
  bool read(std::string& to, std::string& fault) {
    if (compressed_) return readCompressed(to, fault);
    to.append(raw_);
    const bool any = !raw_.empty();
    readRaw();
    fault = fault_;
    return any;
  }

 private:
  void readRaw() {
    const std::size_t count = std::fread(block_.data(), 1, block_.size(), file_.get());
    if (std::ferror(file_.get()) != 0) fault_ = std::strerror(errno);
    raw_ = std::string_view(block_.data(), count);
  }

  bool readCompressed(std::string& to, std::string& fault) {
    if (ended_) return false;
    const std::size_t before = to.size();
    to.resize(before + kBlock);
    stream_.next_out = reinterpret_cast<std::uint8_t*>(to.data() + before);
    stream_.avail_out = kBlock;
    while (stream_.avail_out > 0 && !ended_ && fault.empty()) {
      stream_.next_in = reinterpret_cast<const std::uint8_t*>(raw_.data());
      stream_.avail_in = raw_.size();
      const lzma_ret result = lzma_code(&stream_, raw_.empty() ? LZMA_FINISH : LZMA_RUN);
      raw_.remove_prefix(raw_.size() - stream_.avail_in);
      if (raw_.empty() && result == LZMA_OK) readRaw();
      ended_ = result == LZMA_STREAM_END;
      if (!ended_ && result != LZMA_OK) fault = "the compressed data is damaged or cut off";
      if (!fault_.empty()) fault = fault_;
    }
    to.resize(to.size() - stream_.avail_out);
    return to.size() > before;
  }

  std::unique_ptr<std::FILE, Closer> file_;
  std::array<char, kBlock> block_;
  std::string_view raw_;
  std::string fault_;
  lzma_stream stream_ = LZMA_STREAM_INIT;
  bool compressed_ = false;
  bool ended_ = false;
};

InputFile::InputFile(const std::string& path)
    : path_(path), source_(std::make_unique<Source>(path)) {
  while (buffer_.size() < kByteOrderMark.size() && fill()) {
  }
  if (buffer_.empty()) throw FileError(fmt::format("{}: the file is empty", printable(path_)));
  if (buffer_.starts_with("\xFF\xFE") || buffer_.starts_with("\xFE\xFF")) {
    throw FileError(fmt::format("{}: the file is UTF-16; convert it with iconv -f utf-16 -t utf-8",
                                printable(path_)));
  }
  if (buffer_.starts_with(kByteOrderMark)) at_ = kByteOrderMark.size();
}

InputFile::~InputFile() = default;

bool InputFile::fill() {
  buffer_.erase(0, at_);
  at_ = 0;
  std::string fault;
  const bool any = source_->read(buffer_, fault);
  if (!fault.empty()) failAt(lineNumber_ + 1, fault);
  return any;
}

bool InputFile::next(std::string_view& line) {
  std::size_t end = buffer_.find('\n', at_);
  while (end == std::string::npos) {
    const std::size_t searched = buffer_.size() - at_;
    if (searched > kLongestLine) failAt(lineNumber_ + 1, "the line is longer than 1 MiB");
    if (!fill()) break;
    end = buffer_.find('\n', searched);
  }
  if (at_ == buffer_.size()) return false;
  const std::size_t next = end == std::string::npos ? buffer_.size() : end + 1;
  line = std::string_view(buffer_).substr(at_, next - at_);
  at_ = next;
  ++lineNumber_;
  requireText(line);
  return true;
}

void InputFile::requireText(std::string_view line) const {
  if (line.find('\0') != std::string_view::npos) fail("a zero byte: this is no text");
  if (text::isValidUtf8(line)) return;
  fail(
      "bytes that are no UTF-8; if the file is Windows' own, convert it with iconv -f "
      "windows-1252 -t utf-8");
}

void InputFile::fail(std::string_view what) const {
  failAt(lineNumber_, what);
}

void InputFile::failAt(std::uint64_t line, std::string_view what) const {
  throw FileError(fmt::format("{}, line {}: {}", printable(path_), line, what));
}

}  // namespace tavelor::tools
