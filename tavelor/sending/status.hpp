// SPDX-License-Identifier: MIT
// What waits to be sent and why, and what the tax office has answered.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tavelor/fiscal/book.hpp"

namespace tavelor::sending {

/// Where a record stands.
enum class Standing : std::uint8_t {
  kWaiting,       ///< not sent
  kUnanswered,    ///< sent, and no answer came: it is sent again
  kApart,         ///< the same, and alone its message was refused whole: it comes behind others
  kAccepted,      ///< the tax office has it
  kWithErrors,    ///< the same, and wants it corrected
  kRefused,       ///< the tax office does not have it, and wants it corrected
  kOtherIsThere,  ///< the same, and has another record of that invoice, not sent from here
};

/// A record and what the tax office says of it.
struct RecordStatus {
  std::int32_t chain = 0;
  std::int32_t position = 0;
  fiscal::InvoiceId invoice;
  bool isCancellation = false;
  Standing standing = Standing::kWaiting;
  std::int32_t code = 0;         ///< of the error; 0 for none
  std::string text{};            ///< of it, or why there is no answer
  std::string csv{};             ///< of the answer
  std::string moment{};          ///< of the answer
  std::int32_t correctedBy = 0;  ///< position of the record that corrects it; 0 for none
};

/// A chain and where its sending stands.
struct ChainStatus {
  std::int32_t chain = 0;
  std::int64_t waiting = 0;     ///< all that have no answer
  std::int64_t unanswered = 0;  ///< of those: sent
  std::int64_t apart = 0;       ///< the same: their message was refused whole
  std::int64_t accepted = 0;    ///< with errors too
  std::int64_t withErrors = 0;
  std::int64_t refused = 0;
  std::string oldest{};              ///< when the oldest that waits was made
  std::int32_t messages = 0;         ///< begun so far
  std::string lastMessage{};         ///< when the last one was begun, or answered
  std::int32_t failures = 0;         ///< messages without an answer since the last answer
  std::string reason{};              ///< why the last one had none, or not for all; "" for neither
  std::int64_t next = 0;             ///< seconds since 1970 at Greenwich: no message before it
  std::int32_t wait = 0;             ///< seconds between two messages
  std::string sender{};              ///< who has one under way; "" for nobody
  std::vector<RecordStatus> open{};  ///< what somebody must correct, the oldest first
};

/// All chains of the book's taxpayer, the oldest first. `most` bounds what is listed of each.
std::vector<ChainStatus> statusOf(const fiscal::Book& book, std::int32_t most = 100);

/// All records of an invoice, the oldest first: it, what corrects it, what cancels it.
std::vector<RecordStatus> recordsOf(const fiscal::Book& book, const std::string& number);

}  // namespace tavelor::sending
