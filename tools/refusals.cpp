// SPDX-License-Identifier: MIT
// Rows of a file that were not taken, or not without a remark.
#include "tools/refusals.hpp"

#include <utility>

#include <fmt/format.h>

#include "tools/input_file.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

namespace {

std::string quoted(const std::string& text) {
  std::string all = "\"";
  for (const char c : printable(text)) {
    all += c;
    if (c == '"') all += c;
  }
  return all + '"';
}

}  // namespace

Refusals::Refusals(const std::string& file, const std::string& input, const Installation& shop,
                   std::string unit)
    : path_(file), unit_(std::move(unit)) {
  if (file.empty()) return;
  file_ = beginOutput("--report", file, unit_ + ",code,reason\n", input, shop);
}

/// Whether it arrived is asked at the end: a full disk must not end what is reported on.
void Refusals::write(const std::string& text) {
  if (file_) std::fputs(text.c_str(), file_.get());
}

void Refusals::add(const std::vector<Refusal>& refusals) {
  for (const Refusal& refusal : refusals) {
    if (shown_.size() < kShown) shown_.push_back(refusal);
    ++count_;
    if (refusal.isRemark) ++remarks_;
    write(fmt::format("{},{},{}\n", refusal.line, quoted(refusal.code), quoted(refusal.reason)));
  }
}

void Refusals::print() const {
  for (const Refusal& refusal : shown_) {
    complain(fmt::format("{} {}, {}: {}\n", unit_, refusal.line,
                         refusal.code.empty() ? "no code" : printable(refusal.code),
                         printable(refusal.reason)));
  }
  if (count_ > shown_.size()) {
    complain(fmt::format("and {} rows more{}\n", count_ - shown_.size(),
                         path_.empty() ? "; --report FILE writes them all" : ""));
  }
  if (file_ && (std::fflush(file_.get()) != 0 || std::ferror(file_.get()) != 0)) {
    throw FileError(fmt::format("{}: the report cannot be written", printable(path_)));
  }
}

}  // namespace tavelor::tools
