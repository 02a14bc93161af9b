// SPDX-License-Identifier: MIT
// Running a flow again where the engine, and not the flow, is why it did not get through.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <random>
#include <thread>
#include <type_traits>

#include "tavelor/flows/outage.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

/// What a run of a flow has to know of the one before it.
enum class Before : std::uint8_t {
  kNothing,  ///< there was none, or nothing is left of it
  kUnknown   ///< its line was lost, perhaps in its commit: it looks for what it wrote itself
};

/// How long one call tries to get through: a minute from the first error on.
class Patience {
 public:
  /// Whether there was an error.
  bool isNeeded() const { return since_.has_value(); }
  /// Whether it was once that of a lost line.
  bool hasLostLine() const { return hasLostLine_; }
  /// Whether to try again after that error: it is that of a lost line or of a lock, and the minute
  /// is not over. Tells of the first one.
  bool bears(const Error& error);
  /// Until the next try.
  static void pause();
  /// Gives what `work` gives, and tells that the outage is over if there was one.
  template <typename Work>
  auto rewarded(Work&& work) {
    if constexpr (std::is_void_v<decltype(work())>) {
      work();
      end();
    } else {
      auto result = work();
      end();
      return result;
    }
  }

 private:
  using Clock = std::chrono::steady_clock;

  void end();
  void tell() const;

  Outage outage_;
  std::optional<Clock::time_point> since_;
  bool hasLostLine_ = false;
};

/// Calls `flow`, which begins and ends its own transaction on that connection, until it gets
/// through: some times where it had to give way to another transaction or where another one has
/// just added a row that it was about to add, and for a while where the line to the server was
/// lost, as when a second server takes the place of the first, or where what it needs stays locked,
/// as by a till whose machine has died. It runs once inside a transaction of the caller's, because
/// what is lost is the caller's too, and where a transaction has the database for itself. `forget`
/// is called between two runs.
///
/// A commit without an answer may be on its way still: the server keeps its locks until it is done.
/// So a flow looks for what it wrote behind the locks that it takes anyway, or once more there.
template <typename Flow, typename Forget>
auto untilThrough(const Connection& connection, Flow&& flow, Forget&& forget) {
  using std::chrono::milliseconds;
  constexpr int kMostWays = 20;  // given to others
  constexpr int kMostRows = 8;   // of others

  int ways = 0;
  int rows = 0;
  Patience patience;
  while (true) {
    const bool isOwn = connection.transactionLevel() == 0;
    try {
      return patience.rewarded(
          [&] { return flow(patience.hasLostLine() ? Before::kUnknown : Before::kNothing); });
    } catch (const Error& error) {
      // Who never waits for a line has the database for itself.
      if (!isOwn || connection.waits() == 0) throw;
      if (error.number() == errors::kTryAgain) {
        if (++ways == kMostWays) throw;
      } else if (error.number() == errors::kIntegrityViolation) {
        if (++rows == kMostRows) throw;
      } else if (!patience.bears(error)) {
        throw;
      }
    }
    forget();
    if (patience.isNeeded()) {
      Patience::pause();
    } else {
      // Those that met once must not meet at the same place again.
      static thread_local std::minstd_rand random{std::random_device{}()};
      std::this_thread::sleep_for(
          milliseconds(random() % (5U * static_cast<unsigned>(ways + rows))));
    }
  }
}

/// The same of what only reads, over whatever connections, where nothing but a lost line is to be
/// waited for. Inside a transaction of the caller's, what that one is lost by is raised.
template <typename Work>
auto throughOutages(Work&& work) {
  Patience patience;
  while (true) {
    try {
      return patience.rewarded(work);
    } catch (const Error& error) {
      if (error.number() != errors::kConnectionLost || !patience.bears(error)) throw;
    }
    Patience::pause();
  }
}

}  // namespace tavelor::flows
