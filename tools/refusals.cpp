// SPDX-License-Identifier: MIT
// Rows of a file that were not taken.
#include "tools/refusals.hpp"

#include <filesystem>

#include <fmt/format.h>

#include "tools/command.hpp"
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

Refusals::Refusals(const std::string& file, const std::string& input) : path_(file) {
  if (file.empty()) return;
  std::error_code unknown;
  if (std::filesystem::equivalent(file, input, unknown)) {
    throw UsageError(fmt::format("{}: the report would replace what it is about", printable(file)));
  }
  file_.reset(std::fopen(file.c_str(), "wb"));
  if (!file_) throw FileError(fmt::format("{}: the report cannot be written", printable(file)));
  fmt::print(file_.get(), "line,code,reason\n");
}

void Refusals::add(const std::vector<Refusal>& refusals) {
  for (const Refusal& refusal : refusals) {
    if (shown_.size() < kShown) shown_.push_back(refusal);
    ++count_;
    if (!file_) continue;
    fmt::print(file_.get(), "{},{},{}\n", refusal.line, quoted(refusal.code),
               quoted(refusal.reason));
  }
}

void Refusals::print() const {
  for (const Refusal& refusal : shown_) {
    fmt::print(stderr, "line {}, {}: {}\n", refusal.line,
               refusal.code.empty() ? "no code" : printable(refusal.code),
               printable(refusal.reason));
  }
  if (count_ > shown_.size()) {
    fmt::print(stderr, "and {} rows more{}\n", count_ - shown_.size(),
               path_.empty() ? "; --report FILE writes them all" : "");
  }
  if (file_ && (std::fflush(file_.get()) != 0 || std::ferror(file_.get()) != 0)) {
    throw FileError(fmt::format("{}: the report cannot be written", printable(path_)));
  }
}

}  // namespace tavelor::tools
