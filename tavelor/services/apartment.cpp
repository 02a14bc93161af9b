// SPDX-License-Identifier: MIT
// The services of one thread.
#include "tavelor/services/apartment.hpp"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <thread>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/connection_pool.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/format_global.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/prompt_global.hpp"
#include "tavelor/services/registry_store.hpp"
#include "tavelor/services/registry_tree.hpp"
#include "tavelor/services/session_global.hpp"
#include "tavelor/services/trace.hpp"

namespace tavelor {

/// What a thread, and the objects that were made in it, know of an apartment. It outlives it.
struct Apartment::Binding {
  explicit Binding(Apartment& made) : apartment(&made) {}

  /// Those of the calling thread, the innermost last. One that another thread has ended stays until
  /// it is looked at.
  static std::vector<std::shared_ptr<Binding>>& stack() noexcept {
    thread_local std::vector<std::shared_ptr<Binding>> bound;
    return bound;
  }
  static Binding* innermost() noexcept {
    auto& bound = stack();
    while (!bound.empty() && bound.back()->apartment == nullptr) bound.pop_back();
    return bound.empty() ? nullptr : bound.back().get();
  }

  std::atomic<Apartment*> apartment;  // null once it has ended
  const std::thread::id thread = std::this_thread::get_id();
};

struct Apartment::State {
  std::shared_ptr<Installation> installation;
  std::shared_ptr<ConnectionPool> connections;
  std::shared_ptr<StatementTrace> trace = std::make_shared<StatementTrace>();
  std::shared_ptr<PromptHandler> promptHandler;
  std::shared_ptr<Clock> clock = std::make_shared<Clock>();
  std::unique_ptr<RegistryTree> registry;
  std::unique_ptr<RegistryStore> registryStore;
  std::unique_ptr<FormatGlobal> formatGlobal;
  std::unique_ptr<SessionGlobal> sessionGlobal;
  std::unique_ptr<PromptGlobal> promptGlobal;
  std::shared_ptr<Binding> binding;
};

Apartment::Apartment(std::shared_ptr<Installation> installation)
    : state_(std::make_unique<State>()) {
  if (!installation) {
    raise(errors::kObjectNotSet, "Apartment", "There is no installation to work with.");
  }
  State& s = *state_;
  s.installation = std::move(installation);
  s.connections = std::make_shared<ConnectionPool>(s.installation, s.clock);
  const Settings& settings = s.installation->settings();
  s.trace->turn(settings.trace);
  if (settings.trace && !settings.traceFile.empty()) {
    s.trace->writeTo(
        (std::filesystem::path(s.installation->folder()) / settings.traceFile).string());
  }
  s.binding = std::make_shared<Binding>(*this);
  Binding::stack().push_back(s.binding);
}

Apartment::~Apartment() {
  state_->binding->apartment = nullptr;
  std::erase(Binding::stack(), state_->binding);
}

Apartment& Apartment::current() {
  Apartment* const apartment = find();
  if (apartment == nullptr) {
    raise(errors::kObjectNotSet, "Apartment", "No apartment on this thread.");
  }
  return *apartment;
}

Apartment* Apartment::find() noexcept {
  Binding* const binding = Binding::innermost();
  return binding == nullptr ? nullptr : binding->apartment.load();
}

Apartment::Home::Home() {
  if (Binding::innermost() != nullptr) binding_ = Binding::stack().back();
}

void Apartment::Home::mustBeBound(std::string_view source) const {
  const Binding* const bound = Binding::innermost();
  if (!binding_ || binding_.get() == bound) return;
  const Apartment* const home = binding_->apartment;
  if (home == nullptr) {
    raise(errors::kObjectNotSet, source, "The apartment that the object was made in has ended.");
  }
  if (binding_->thread != std::this_thread::get_id()) {
    raise(errors::kInvalidCall, source, "The object was made in the apartment of another thread.");
  }
  raise(errors::kInvalidCall, source,
        fmt::format("The object was made in the apartment of {}, which that of {} covers: bind its "
                    "own again while it is used.",
                    home->installation().folder(), current().installation().folder()));
}

Apartment::Scope::Scope(Apartment& apartment) : binding_(apartment.state_->binding) {
  if (binding_->thread != std::this_thread::get_id()) {
    raise(errors::kInvalidCall, "Apartment", "The apartment is of another thread.");
  }
  Binding::stack().push_back(binding_);
}

Apartment::Scope::~Scope() {
  auto& bound = Binding::stack();
  const auto ours = std::find(bound.rbegin(), bound.rend(), binding_);
  if (ours != bound.rend()) bound.erase(std::next(ours).base());
}

Installation& Apartment::installation() const {
  return *state_->installation;
}

const VersionRecord& Apartment::version() const {
  return state_->installation->version();
}

const Locale& Apartment::locale() const {
  return *state_->installation->locale();
}

RegistryTree& Apartment::registry() {
  State& s = *state_;
  if (!s.registry) {
    s.registry = std::make_unique<RegistryTree>(*s.installation, &s.connections->shared());
  }
  return *s.registry;
}

RegistryStore& Apartment::registryStore() {
  State& s = *state_;
  if (!s.registryStore) s.registryStore = std::make_unique<RegistryStore>(registry());
  return *s.registryStore;
}

FormatGlobal& Apartment::formatGlobal() {
  State& s = *state_;
  if (!s.formatGlobal) s.formatGlobal = std::make_unique<FormatGlobal>(s.installation);
  return *s.formatGlobal;
}

SessionGlobal& Apartment::sessionGlobal() {
  State& s = *state_;
  if (!s.sessionGlobal) s.sessionGlobal = std::make_unique<SessionGlobal>(registry());
  return *s.sessionGlobal;
}

PromptGlobal& Apartment::promptGlobal() {
  State& s = *state_;
  if (!s.promptGlobal) {
    s.promptGlobal = std::make_unique<PromptGlobal>(s.installation->locale());
    s.promptGlobal->setHandler(s.promptHandler);
  }
  return *s.promptGlobal;
}

void Apartment::setPromptHandler(std::shared_ptr<PromptHandler> handler) {
  state_->promptHandler = std::move(handler);
  if (state_->promptGlobal) state_->promptGlobal->setHandler(state_->promptHandler);
}

StatementTrace& Apartment::trace() {
  return *state_->trace;
}

Clock& Apartment::clock() {
  return *state_->clock;
}

ConnectionPtr Apartment::openConnection(int selector) {
  return connect(selector, state_->connections->take(selector));
}

ConnectionPtr Apartment::openForReading(int selector) {
  return connect(selector,
                 state_->connections->take(selector, ConnectionPool::Reads::kOpenTransaction));
}

ConnectionPtr Apartment::connect(int selector, std::shared_ptr<SessionLease> lease) {
  const Installation& installation = *state_->installation;
  ConnectionSettings settings;
  settings.lease = std::move(lease);
  settings.locale = installation.locale();
  settings.connectionString = installation.connectionString(selector);
  settings.selector = selector;
  settings.trace = state_->trace;
  return Connection::open(std::move(settings));
}

void Apartment::settle(int selector) {
  state_->connections->take(selector)->session().settle();
}

}  // namespace tavelor
