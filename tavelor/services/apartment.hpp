// SPDX-License-Identifier: MIT
// What one thread works with: an installation and the objects that the services share.
#pragma once

#include <memory>
#include <string_view>

#include "tavelor/platform/export.hpp"

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
class SessionLease;
class StatementTrace;
struct Locale;
struct VersionRecord;

/// Binds an installation to the calling thread for as long as it lives. Two threads, two
/// apartments; a second one on the same thread covers the first until it ends, or until a Scope
/// binds the first again. It is used by the thread that made it. Ended by another one, which must
/// not happen while it is in use, it is unbound all the same. There is no other global state.
///
/// Objects belong to the apartment that they were made in: a record class refuses to work while
/// another one is bound, so that nothing meant for one shop is written to the next. Their
/// connections may outlive the apartment; they stay open and are closed, not kept, when dropped.
class TAVELOR_API Apartment {
 public:
  class Home;
  class Scope;

  /// Binds it to the calling thread.
  explicit Apartment(std::shared_ptr<Installation> installation);
  ~Apartment();
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

  /// Of the calling thread. Raises 91 when it has none.
  static Apartment& current();
  /// The same, or null.
  static Apartment* find() noexcept;

  /// The one that it binds.
  Installation& installation() const;
  /// Whose component it is, and where it lives.
  const VersionRecord& version() const;
  /// By which texts read and values print.
  const Locale& locale() const;

  /// One object each, made at first use.
  RegistryTree& registry();
  /// The registry as lists use it.
  RegistryStore& registryStore();
  /// The shop's formats.
  FormatGlobal& formatGlobal();
  /// Values of the session.
  SessionGlobal& sessionGlobal();
  /// Messages and questions.
  PromptGlobal& promptGlobal();

  /// Who shows messages and asks questions; null for nobody.
  void setPromptHandler(std::shared_ptr<PromptHandler> handler);
  /// What was sent to the databases.
  StatementTrace& trace();
  /// The time that classes and statements go by.
  Clock& clock();

  /// An open connection to a database, idle or new; see DataSession::OpenConnection.
  std::shared_ptr<Connection> openConnection(int selector);
  /// The same for a reader that was given none: while another connection of this apartment has a
  /// transaction open on that database, its rows are those that the transaction sees.
  std::shared_ptr<Connection> openForReading(int selector);
  /// Moves all that is committed in a file-based database into its own file, for whoever copies or
  /// reads that one alone. Raises errors::kBusy while others read or write.
  void settle(int selector);

 private:
  struct Binding;
  struct State;
  std::shared_ptr<Connection> connect(int selector, std::shared_ptr<SessionLease> lease);
  std::unique_ptr<State> state_;
};

/// Where an object was made.
class TAVELOR_API Apartment::Home {
 public:
  /// The calling thread's apartment; none where there is none, and then the object works in
  /// whatever apartment it is used.
  Home();
  /// Raises, with `source`: 91 when the apartment has ended; 5 when the calling thread is not its
  /// own, or has another one bound.
  void mustBeBound(std::string_view source) const;

 private:
  std::shared_ptr<Binding> binding_;
};

/// Binds an apartment of this thread again over those that cover it, until the scope ends.
class TAVELOR_API Apartment::Scope {
 public:
  /// Raises 5 for an apartment of another thread.
  explicit Scope(Apartment& apartment);
  ~Scope();
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;

 private:
  std::shared_ptr<Binding> binding_;
};

}  // namespace tavelor
