// SPDX-License-Identifier: MIT
// A sale and what a program writes beside it, as one.
#pragma once

#include <memory>

namespace tavelor {
class Connection;
}

namespace tavelor::flows {

class Shop;

/// A transaction over the main database and the documents, which what this shop does joins: its
/// sales, returns and closings, deliveries of a Receiving of the same thread, and whatever the
/// program itself writes over main() and documents(). Undone unless commit() is called. Inside
/// another one it is a part of that, and only the outermost commit stores anything.
///
/// A call that raises has undone its own part; what was done before it stands, and may be committed
/// or undone. Members that are given no connection read what the transaction has written so far;
/// one that writes without it fails at once with errors::kBusy.
///
/// No commit spans both databases: the documents' comes first, as a ticket tells its stock. Of a
/// program that dies between the two, or whose second commit fails, tickets and closings are mended
/// by the next flow, and so is their stock; what the program itself wrote into the main database is
/// not there. What must not be without its ticket belongs in the documents.
///
/// A closing inside one writes no slip: writeMissingPapers() does, after the commit.
class Transaction {
 public:
  /// Waits for its turn to write. Raises errors::kBusy where that takes too long.
  explicit Transaction(Shop& shop);
  /// Undoes what was not committed.
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  /// To be handed to members and to DataSession::Execute.
  const std::shared_ptr<Connection>& main() const;
  /// The same, of tickets.
  const std::shared_ptr<Connection>& documents() const;

  /// Once; the transaction is over then. Raises what the engine does; the database whose commit
  /// failed has nothing of it.
  void commit();

 private:
  struct Inner;
  std::unique_ptr<Inner> inner_;
};

}  // namespace tavelor::flows
