// SPDX-License-Identifier: MIT
// Sends the records of a shop to the tax office, a message at a time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tavelor/fiscal/book.hpp"
#include "tavelor/sending/transport.hpp"

namespace tavelor::sending {

class Outbox;
struct Pace;
struct WaitingRecord;

/// What became of one look at what waits.
struct Round {
  /// How it ended.
  enum class What : std::uint8_t {
    kNothing,   ///< nothing waits
    kNotYet,    ///< something does, and the tax office wants no message before `next`
    kBusy,      ///< another program has a message under way, until `next` at most
    kAnswered,  ///< a message was sent, and its answer stored
    kFailed     ///< a message was sent, or tried to be, and there is no answer: `reason`
  };
  What what = What::kNothing;
  std::int32_t chain = 0;
  std::int32_t message = 0;  ///< its number in the chain
  std::int32_t records = 0;  ///< in it; of kNotYet how many wait, up to a thousand
  std::int32_t accepted = 0;
  std::int32_t withErrors = 0;  ///< accepted, and to be corrected
  std::int32_t refused = 0;     ///< set apart
  std::int32_t unanswered = 0;  ///< the answer has no line for them: they wait
  std::string reason{};         ///< why there is no answer, or not for all
  std::int64_t next = 0;        ///< seconds since 1970 at Greenwich; 0 for at once
};

/// Sends what waits in the chains of the book's taxpayer. It only reads what sales write, and a
/// message travels outside of any transaction: no sale waits for it. What is noted before and after
/// it keeps two senders, and one that was killed, from losing a record or counting it twice:
///
/// - who begins a message counts it and notes its records as sent without an answer, in one
///   transaction that only one of two can make, and holds the chain for the message's time. Where
///   it dies, another one goes on when that time is over; at once on the same computer;
/// - records without an answer are sent again, and those that the tax office then knows as
///   duplicates are taken for accepted, as it tells them. A duplicate of what was never sent from
///   here is refused: the tax office has another record of that invoice;
/// - the time of the next message is stored with them.
class Sender {
 public:
  /// Over the book's connection.
  Sender(const fiscal::Book& book, Endpoint endpoint);

  /// Sends one message of up to a thousand records, in the chain's order, if one waits and may go.
  /// Raises what the database does; what was sent then waits for its answer as after a lost line.
  Round sendNext();

 private:
  Round look(Outbox& outbox);
  Round deliver(Outbox& outbox, const Pace& pace, std::vector<WaitingRecord> records,
                std::int32_t message);
  std::int64_t now() const;
  bool isDead(const std::string& sender) const;

  const fiscal::Book& book_;
  Endpoint endpoint_;
  std::string name_;  // of this sender, among all
};

}  // namespace tavelor::sending
