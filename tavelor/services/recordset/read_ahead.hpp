// SPDX-License-Identifier: MIT
// Several reads with one wait for a server.
#pragma once

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/export.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor {

/// The reads that a flow is about to make by several members: it asks for them together and waits
/// for the server once, and each member finds its answer there. Inside a transaction, over all
/// connections of the apartment on that server; does nothing with a file.
///
/// Answers are what the database was when they were asked for, behind all that had been written
/// until then. They go with this object, which is there as long as nothing is written that would
/// change them; that is for the flow to know. "No row" is answered once: who adds the row on being
/// told so finds it afterwards. One at a time: while another one has answers, it does nothing.
class TAVELOR_API ReadAhead {
 public:
  /// `connection` must be open.
  explicit ReadAhead(ConnectionPtr connection);
  ~ReadAhead();
  ReadAhead(const ReadAhead&) = delete;
  ReadAhead& operator=(const ReadAhead&) = delete;

  /// Calls `asking`, which calls members for what they read: each read goes on its way and finds no
  /// row, or Null as the largest number of a table. It comes back where `asking` would write, or
  /// cannot go on without a row.
  template <typename Asking>
  void ask(Asking&& asking) {
    if (!isFar_ || connection_->transactionLevel() == 0) return;
    const Question question(*connection_);
    try {
      asking();
    } catch (const Error& error) {
      question.mustBeItsEnd(error);
    }
  }

 private:
  class TAVELOR_API Question {
   public:
    explicit Question(Connection& connection);
    ~Question();
    Question(const Question&) = delete;
    Question& operator=(const Question&) = delete;
    /// Raises any other error again.
    void mustBeItsEnd(const Error& error) const;

   private:
    Connection& connection_;
  };

  ConnectionPtr connection_;
  bool isFar_;
};

}  // namespace tavelor
