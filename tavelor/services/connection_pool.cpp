// SPDX-License-Identifier: MIT
// Lends the sessions of an apartment.
#include "tavelor/services/connection_pool.hpp"

#include <algorithm>

#include "tavelor/platform/locale.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engines.hpp"
#include "tavelor/services/installation.hpp"

namespace tavelor {

struct ConnectionPool::Session {
  std::shared_ptr<const engine::Catalogue> catalogue;
  std::unique_ptr<engine::Session> session;
  std::unique_ptr<dialect::PlanCache> plans;  // after the session: it goes first
};

class ConnectionPool::Lease final : public SessionLease {
 public:
  Lease(const std::shared_ptr<ConnectionPool>& pool, int selector, std::unique_ptr<Session> session)
      : pool_(pool), selector_(selector), session_(std::move(session)) {
    pool->lent_.push_back(this);
  }
  ~Lease() override {
    // The apartment may be gone already: then the session just ends.
    if (const auto pool = pool_.lock()) pool->giveBack(*this);
  }
  Lease(const Lease&) = delete;
  Lease& operator=(const Lease&) = delete;

  engine::Session& session() override { return *session_->session; }
  dialect::PlanCache& plans() override { return *session_->plans; }

 private:
  friend class ConnectionPool;
  std::weak_ptr<ConnectionPool> pool_;
  int selector_;
  std::unique_ptr<Session> session_;
};

ConnectionPool::ConnectionPool(std::shared_ptr<const Installation> installation)
    : installation_(std::move(installation)) {}

ConnectionPool::~ConnectionPool() = default;

std::shared_ptr<SessionLease> ConnectionPool::take(int selector) {
  std::unique_ptr<Session> session;
  if (auto& idle = idle_[selector]; !idle.empty()) {
    session = std::move(idle.back());
    idle.pop_back();
  } else {
    session = open(selector);
  }
  auto catalogue = installation_->catalogue(selector);
  if (session->catalogue != catalogue) {
    session->plans->reset(catalogue);
    session->catalogue = std::move(catalogue);
  }
  return std::make_shared<Lease>(shared_from_this(), selector, std::move(session));
}

std::unique_ptr<ConnectionPool::Session> ConnectionPool::open(int selector) {
  const engine::Engine& engine = installation_->databaseEngine(selector);
  engine::OpenOptions options;
  options.path = installation_->databaseFile(selector);
  options.synchronous = installation_->settings().synchronous;
  options.busyTimeoutMs = installation_->settings().busyTimeoutMs;
  options.locale = installation_->locale();

  auto session = std::make_unique<Session>();
  session->catalogue = installation_->catalogue(selector);
  session->session = engine.open(options);
  session->plans = std::make_unique<dialect::PlanCache>(*session->session, session->catalogue,
                                                        installation_->locale(), writerOf(engine));
  return session;
}

void ConnectionPool::giveBack(Lease& lease) {
  std::erase(lent_, &lease);
  engine::Session& session = *lease.session_->session;
  try {
    while (session.depth() > 0) session.rollback();
  } catch (const std::exception&) {
    return;  // ends with the lease, and rolls back so
  }
  auto& idle = idle_[lease.selector_];
  if (idle.size() < kMostIdle) idle.push_back(std::move(lease.session_));
}

}  // namespace tavelor
