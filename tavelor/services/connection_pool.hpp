// SPDX-License-Identifier: MIT
// The sessions of one apartment: those in use and the idle ones, with their prepared plans.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "tavelor/services/recordset/connection.hpp"

namespace tavelor {

class Clock;
class Installation;

namespace engine {
class Shared;
}

/// Lends sessions, each with its plans, and takes them back when the last holder lets go. Used by
/// one thread.
class ConnectionPool : public std::enable_shared_from_this<ConnectionPool> {
 public:
  /// Statements take the time from `clock`.
  ConnectionPool(std::shared_ptr<const Installation> installation,
                 std::shared_ptr<const Clock> clock);
  ~ConnectionPool();
  ConnectionPool(const ConnectionPool&) = delete;
  ConnectionPool& operator=(const ConnectionPool&) = delete;

  /// What a lease reads rows by.
  enum class Reads : std::uint8_t {
    kOwnSession,       ///< what is committed, and what its own transaction has written
    kOpenTransaction,  ///< while another lease of this pool has a transaction on that database:
                       ///< that one's state
  };
  /// An idle session of that database, or a new one. Raises 9 for an unknown selector and what the
  /// engine raises on opening.
  std::shared_ptr<SessionLease> take(int selector, Reads reads = Reads::kOwnSession);
  /// What all of its sessions share, for others of the apartment.
  std::shared_ptr<engine::Shared>& shared();

 private:
  class Lease;
  struct Session;
  static constexpr std::size_t kMostIdle = 8;  // of one database

  std::unique_ptr<Session> open(int selector);
  /// The lease with an open transaction on that database, or null. Two can't have one: the first
  /// holds the right to write.
  Lease* inTransaction(int selector) const;
  void giveBack(Lease& lease);

  std::shared_ptr<const Installation> installation_;
  std::shared_ptr<const Clock> clock_;
  std::unordered_map<int, std::vector<std::unique_ptr<Session>>> idle_;
  std::vector<Lease*> lent_;
  std::shared_ptr<engine::Shared> shared_;
};

}  // namespace tavelor
