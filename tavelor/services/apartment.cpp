// SPDX-License-Identifier: MIT
// The services of one thread.
#include "tavelor/services/apartment.hpp"

#include <filesystem>

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

namespace {

// The innermost apartment of this thread; it knows the one that it covers.
thread_local Apartment* innermost = nullptr;

}  // namespace

struct Apartment::State {
  std::shared_ptr<Installation> installation;
  std::shared_ptr<ConnectionPool> connections;
  std::shared_ptr<StatementTrace> trace = std::make_shared<StatementTrace>();
  std::shared_ptr<PromptHandler> promptHandler;
  Clock clock;
  std::unique_ptr<RegistryTree> registry;
  std::unique_ptr<RegistryStore> registryStore;
  std::unique_ptr<FormatGlobal> formatGlobal;
  std::unique_ptr<SessionGlobal> sessionGlobal;
  std::unique_ptr<PromptGlobal> promptGlobal;
  Apartment* covered = nullptr;
};

Apartment::Apartment(std::shared_ptr<Installation> installation)
    : state_(std::make_unique<State>()) {
  if (!installation) {
    raise(errors::kObjectNotSet, "Apartment", "There is no installation to work with.");
  }
  State& s = *state_;
  s.installation = std::move(installation);
  s.connections = std::make_shared<ConnectionPool>(s.installation);
  const Settings& settings = s.installation->settings();
  s.trace->turn(settings.trace);
  if (settings.trace && !settings.traceFile.empty()) {
    s.trace->writeTo(
        (std::filesystem::path(s.installation->folder()) / settings.traceFile).string());
  }
  s.covered = innermost;
  innermost = this;
}

Apartment::~Apartment() {
  Apartment** link = &innermost;
  while (*link != nullptr && *link != this) link = &(*link)->state_->covered;
  if (*link == this) *link = state_->covered;
}

Apartment& Apartment::current() {
  if (innermost == nullptr)
    raise(errors::kObjectNotSet, "Apartment", "No apartment on this thread.");
  return *innermost;
}

Apartment* Apartment::find() noexcept {
  return innermost;
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
    const Settings& settings = s.installation->settings();
    s.registry = std::make_unique<RegistryTree>(
        s.installation->registryFile(),
        RegistryTree::Options{false, settings.synchronous, settings.busyTimeoutMs});
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
  return state_->clock;
}

ConnectionPtr Apartment::openConnection(int selector) {
  const Installation& installation = *state_->installation;
  ConnectionSettings settings;
  settings.lease = state_->connections->take(selector);
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
