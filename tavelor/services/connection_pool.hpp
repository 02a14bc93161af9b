// SPDX-License-Identifier: MIT
// The sessions of one apartment: those in use and the idle ones, with their prepared plans.
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "tavelor/services/recordset/connection.hpp"

namespace tavelor {

class Installation;

/// Lends sessions, each with its plans, and takes them back when the last holder lets go. Used by
/// one thread.
class ConnectionPool : public std::enable_shared_from_this<ConnectionPool> {
 public:
  explicit ConnectionPool(std::shared_ptr<const Installation> installation);
  ~ConnectionPool();
  ConnectionPool(const ConnectionPool&) = delete;
  ConnectionPool& operator=(const ConnectionPool&) = delete;

  /// An idle session of that database, or a new one. Raises 9 for an unknown selector and what the
  /// engine raises on opening.
  std::shared_ptr<SessionLease> take(int selector);

 private:
  class Lease;
  struct Session;
  static constexpr std::size_t kMostIdle = 8;  // of one database

  std::unique_ptr<Session> open(int selector);
  void giveBack(Lease& lease);

  std::shared_ptr<const Installation> installation_;
  std::unordered_map<int, std::vector<std::unique_ptr<Session>>> idle_;
  std::vector<Lease*> lent_;
};

}  // namespace tavelor
