// SPDX-License-Identifier: MIT
// Hands prompts to the application, or keeps them.
#include "tavelor/services/prompt_global.hpp"

namespace tavelor {

void PromptGlobal::Message(const Variant& text, std::string_view title, std::string_view /*help*/) {
  Message(text.toText(*locale_), title, PromptKind::kPlain);
}

void PromptGlobal::Message(std::string_view text, std::string_view title, PromptKind kind) {
  Prompt prompt{std::string(text), std::string(title), kind};
  if (handler_) {
    handler_->message(prompt);
    return;
  }
  if (messages_.size() == kKept) messages_.erase(messages_.begin());
  messages_.push_back(std::move(prompt));
}

Variant PromptGlobal::AskInput(const std::string& prompt) {
  return handler_ ? handler_->askInput(prompt) : Variant("");
}

bool PromptGlobal::Question(std::string_view text, std::string_view title) {
  return handler_ &&
         handler_->question({std::string(text), std::string(title), PromptKind::kPlain});
}

void PromptGlobal::Beep() {
  if (handler_) {
    handler_->beep();
  } else {
    ++beeps_;
  }
}

}  // namespace tavelor
