// SPDX-License-Identifier: MIT
// An answer of the tax office, read.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/fiscal/record.hpp"

namespace tavelor::sending {

/// What the tax office says of one record.
enum class Verdict : std::uint8_t { kAccepted, kAcceptedWithErrors, kRefused };

/// That it has a record of this invoice already.
struct Duplicate {
  Verdict verdict = Verdict::kAccepted;  ///< of the one that it has
  std::int32_t code = 0;                 ///< of its error; 0 for none
  std::string text{};                    ///< the same
};

/// A line of an answer: one record.
struct AnswerLine {
  fiscal::InvoiceId invoice;
  bool isCancellation = false;
  Verdict verdict = Verdict::kAccepted;
  std::int32_t code = 0;  ///< of the error; 0 for none
  std::string text{};     ///< the same
  std::optional<Duplicate> duplicate{};
};

/// An answer.
struct Answer {
  std::string csv{};                 ///< "" where all was refused
  std::optional<std::int32_t> wait;  ///< seconds until the next message; nothing told
  std::vector<AnswerLine> lines{};   ///< in the tax office's order
};

/// What came back, one of the three.
struct AnswerRead {
  std::optional<Answer> answer{};
  std::string fault{};      ///< why it is none, a sentence
  bool isOurFault = false;  ///< a SOAP fault that blames the message, and no record of it
};

/// Reads the body of an HTTP answer. Lines that do not read are left out: their records have no
/// answer then.
AnswerRead readAnswer(std::string_view xml);

/// A text of somebody else's as it may be stored: UTF-8 without control characters, a question mark
/// for each byte that is neither.
std::string legible(std::string_view text);

}  // namespace tavelor::sending
