// SPDX-License-Identifier: MIT
// Telling the trace of a statement around running it.
#pragma once

#include <chrono>
#include <cstdint>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor {

template <typename TextOf, typename Work>
std::int64_t Connection::traced(const TextOf& textOf, Work&& work) const {
  if (!trace_ || !trace_->isOn()) return work();
  // What is only asked for is told when somebody takes its answer.
  if (lease_->session().ahead() == engine::Session::Ahead::kAsk) return work();
  const std::int64_t waitedBefore = waits();
  const auto started = std::chrono::steady_clock::now();
  const auto tell = [&](std::int64_t rows, std::int32_t error) {
    const auto taken = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - started);
    trace_->statement({selector_, textOf(), taken.count(), rows, error, waits() - waitedBefore});
  };
  std::int64_t rows = 0;
  try {
    rows = work();
  } catch (const Error& error) {
    tell(0, error.number());
    throw;
  }
  tell(rows, 0);
  return rows;
}

}  // namespace tavelor
