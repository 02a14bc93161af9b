// SPDX-License-Identifier: MIT
// Messages, questions and the beep.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor {

struct Locale;

/// How a message is shown.
enum class PromptKind { kPlain, kInformation, kCritical };

/// Something to be shown to a person.
struct TAVELOR_API Prompt {
  std::string text;
  std::string title;
  PromptKind kind = PromptKind::kPlain;
};

/// What the application gives to an apartment so that its user is asked and told.
class TAVELOR_API PromptHandler {
 public:
  virtual ~PromptHandler() = default;
  /// Shows a message and waits until it has been read.
  virtual void message(const Prompt& prompt) = 0;
  /// The line that the user typed; an empty text when there was none.
  virtual Variant askInput(const std::string& prompt) = 0;
  /// True for Yes.
  virtual bool question(const Prompt& prompt) = 0;
  /// Makes a sound.
  virtual void beep() = 0;
};

/// Hands prompts to the apartment's handler. Without one a message is kept, a question answers No,
/// an input is an empty text and a beep is counted.
class TAVELOR_API PromptGlobal {
 public:
  /// By whose words it asks.
  explicit PromptGlobal(std::shared_ptr<const Locale> locale) : locale_(std::move(locale)) {}

  /// `title` is the box's; `help` is taken and not shown. Raises 94 for a Null text.
  void Message(const Variant& text, std::string_view title = {}, std::string_view help = {});
  /// The same with a kind.
  void Message(std::string_view text, std::string_view title, PromptKind kind);
  /// The line that the user typed.
  Variant AskInput(const std::string& prompt);
  /// True for Yes.
  bool Question(std::string_view text, std::string_view title = {});
  /// Makes a sound.
  void Beep();

  /// The last messages that no handler took, oldest first, at most kKept.
  static constexpr std::size_t kKept = 256;
  /// Messages that no handler took.
  const std::vector<Prompt>& messages() const { return messages_; }
  /// Forgets them.
  void clearMessages() { messages_.clear(); }
  /// Beeps that no handler took.
  int beeps() const { return beeps_; }

  /// Who shows messages and asks questions; null for nobody.
  void setHandler(std::shared_ptr<PromptHandler> handler) { handler_ = std::move(handler); }

 private:
  std::shared_ptr<const Locale> locale_;
  std::shared_ptr<PromptHandler> handler_;
  std::vector<Prompt> messages_;
  int beeps_ = 0;
};

}  // namespace tavelor
