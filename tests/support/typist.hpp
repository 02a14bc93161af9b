// SPDX-License-Identifier: MIT
// A user who types one line, whatever is asked.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tavelor/services/prompt_global.hpp"

namespace tavelor::test {

/// Sees no message and says No to every question.
class Typist final : public PromptHandler {
 public:
  explicit Typist(std::string line) : line_(std::move(line)) {}
  void message(const Prompt& /*prompt*/) override {}
  Variant askInput(const std::string& prompt) override {
    asked.push_back(prompt);
    return line_;
  }
  bool question(const Prompt& /*prompt*/) override { return false; }
  void beep() override {}

  std::vector<std::string> asked;  ///< for a line

 private:
  std::string line_;
};

}  // namespace tavelor::test
