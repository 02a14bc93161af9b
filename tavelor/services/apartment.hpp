// SPDX-License-Identifier: MIT
// What one thread works with: an installation and the objects that the services share.
#pragma once

#include <memory>
#include <string_view>

namespace tavelor {

class Clock;
class Connection;
class FormatGlobal;
class Installation;
class PromptGlobal;
class PromptHandler;
class RegistryStore;
class RegistryTree;
class SessionGlobal;
class StatementTrace;
struct Locale;
struct VersionRecord;

/// Binds an installation to the calling thread for as long as it lives. Two threads, two
/// apartments; a second one on the same thread covers the first until it ends. It is used, and
/// ended, by the thread that made it. There is no other global state.
///
/// Objects made in an apartment may outlive it: their connections stay open and are closed, not
/// kept, when dropped.
class Apartment {
 public:
  explicit Apartment(std::shared_ptr<Installation> installation);
  ~Apartment();
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

  /// Of the calling thread. Raises 91 when it has none.
  static Apartment& current();
  /// The same, or null.
  static Apartment* find() noexcept;

  Installation& installation() const;
  const VersionRecord& version() const;
  const Locale& locale() const;

  /// One object each, made at first use.
  RegistryTree& registry();
  RegistryStore& registryStore();
  FormatGlobal& formatGlobal();
  SessionGlobal& sessionGlobal();
  PromptGlobal& promptGlobal();

  /// Who shows messages and asks questions; null for nobody.
  void setPromptHandler(std::shared_ptr<PromptHandler> handler);
  StatementTrace& trace();
  Clock& clock();

  /// An open connection to a database, idle or new; see DataSession::OpenConnection.
  std::shared_ptr<Connection> openConnection(int selector);
  /// Moves all that is committed in a file-based database into its own file, for whoever copies or
  /// reads that one alone. Raises errors::kBusy while others read or write.
  void settle(int selector);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tavelor
