// SPDX-License-Identifier: MIT
// What of a chain was sent and what waits, in the documents database. Nothing here touches what a
// sale writes, and each transaction is a few statements long.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tavelor/fiscal/chains.hpp"
#include "tavelor/fiscal/record.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/sending/answer.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::sending {

/// States of Fiscal_Envios.
namespace state {
inline constexpr std::string_view kUnknown = "E";
inline constexpr std::string_view kApart = "S";
inline constexpr std::string_view kAccepted = "C";
inline constexpr std::string_view kWithErrors = "A";
inline constexpr std::string_view kRefused = "I";
inline constexpr std::string_view kForeign = "D";
}  // namespace state

inline constexpr std::int32_t kFirstWait = 60;  // seconds, until the tax office tells

/// The row of a chain in Fiscal_Remisiones; as a chain that was never sent where there is none.
struct Pace {
  bool isThere = false;
  std::int32_t messages = 0;
  std::int32_t upTo = 0;
  std::int32_t wait = kFirstWait;
  double next = 0;
  std::int32_t most = 0;
  std::int32_t failures = 0;
  std::string reason{};
  std::string moment{};
  std::string sender{};
  double lease = 0;
};

/// A record that waits.
struct WaitingRecord {
  std::int32_t position = 0;
  std::int32_t times = 0;  ///< how many messages it was in
  bool isCancellation = false;
  std::string number{};
  Date day{};
  std::string moment{};
  std::string xml{};
};

/// What is to be stored of a record.
struct Outcome {
  std::int32_t position = 0;
  std::string_view state = state::kUnknown;
  std::int32_t code = 0;
  std::string text{};
};

/// Of one chain, over one connection.
class Outbox {
 public:
  Outbox(std::int32_t chain, ConnectionPtr documents);

  std::int32_t chain() const { return chain_; }
  Pace pace() const;
  /// The first thousand that wait, in the chain's order. Those whose message was refused whole
  /// come when no other one waits.
  std::vector<WaitingRecord> waiting(const Pace& pace) const;

  /// Notes that these records are about to be sent, and by whom, until when. Gives the message's
  /// number; nothing where somebody else has begun one since `pace` was read.
  std::optional<std::int32_t> begin(const Pace& pace, const std::vector<WaitingRecord>& records,
                                    const std::string& sender, double now, double lease,
                                    const std::string& moment);
  /// Notes what became of them, and lets the next one send. What another message has taken over
  /// meanwhile is left to its answer.
  void finish(std::int32_t message, const Pace& after, const std::vector<Outcome>& outcomes,
              const std::string& csv);
  /// Takes back that they were sent: nothing has left this computer.
  void takeBack(std::int32_t message, const Pace& after);

  /// " FROM .. WHERE ..", the records behind `upTo` that wait; those apart too, or only they.
  enum class Which : std::uint8_t { kInOrder, kApart, kAll };
  Statement whereWaiting(std::int32_t upTo, Which which) const;

 private:
  template <typename Work>
  auto stored(Work&& work);
  void closePace(std::int32_t message, const Pace& after);
  Statement ofMessage(std::int32_t message) const;
  std::vector<WaitingRecord> read(const Pace& pace, Which which) const;

  std::int32_t chain_;
  ConnectionPtr documents_;
  std::vector<fiscal::PositionRange> kept_;
};

}  // namespace tavelor::sending
