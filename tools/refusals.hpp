// SPDX-License-Identifier: MIT
// Rows of a file that were not taken, or not without a remark.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/output_file.hpp"

namespace tavelor::tools {

/// A row that was not taken, and why; or one that was, and what a person should look at.
struct Refusal {
  std::uint64_t line = 0;
  std::string code;  ///< what the row is known by, "" when it does not say
  std::string reason;
  bool isRemark = false;
};

/// Shows the first refusals and remarks and writes all of them to a file, when there is one.
class Refusals {
 public:
  /// `file` "" for none; `input` is the file that the rows come from; `unit` is what their numbers
  /// count. Errors: those of beginOutput.
  Refusals(const std::string& file, const std::string& input, const Installation& shop,
           std::string unit = "line");

  void add(const std::vector<Refusal>& refusals);
  /// Without the remarks.
  std::uint64_t count() const { return count_ - remarks_; }
  std::uint64_t remarks() const { return remarks_; }
  /// On standard error. Raises FileError when the file could not be written whole.
  void print() const;

 private:
  static constexpr std::size_t kShown = 20;
  void write(const std::string& text);

  std::string path_;
  std::string unit_;
  OutputFile file_;
  std::vector<Refusal> shown_;
  std::uint64_t count_ = 0;
  std::uint64_t remarks_ = 0;
};

}  // namespace tavelor::tools
