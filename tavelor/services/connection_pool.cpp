// SPDX-License-Identifier: MIT
// Lends the sessions of an apartment.
#include "tavelor/services/connection_pool.hpp"

#include <algorithm>

#include "tavelor/platform/locale.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/installation.hpp"

namespace tavelor {

struct ConnectionPool::Session {
  std::unique_ptr<engine::Session> session;
  std::unique_ptr<dialect::PlanCache> plans;  // after the session: it goes first
};

class ConnectionPool::Lease final : public SessionLease {
 public:
  Lease(const std::shared_ptr<ConnectionPool>& pool, int selector, Reads reads,
        std::unique_ptr<Session> session)
      : pool_(pool), selector_(selector), reads_(reads), session_(std::move(session)) {
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
  dialect::PlanCache& readingPlans() override {
    if (reads_ == Reads::kOpenTransaction && session().depth() == 0) {
      const auto pool = pool_.lock();
      if (Lease* const holder = pool ? pool->inTransaction(selector_) : nullptr) {
        return holder->plans();
      }
    }
    return plans();
  }

 private:
  friend class ConnectionPool;
  std::weak_ptr<ConnectionPool> pool_;
  int selector_;
  Reads reads_;
  std::unique_ptr<Session> session_;
};

ConnectionPool::ConnectionPool(std::shared_ptr<const Installation> installation,
                               std::shared_ptr<const Clock> clock)
    : installation_(std::move(installation)), clock_(std::move(clock)) {}

ConnectionPool::~ConnectionPool() = default;

std::shared_ptr<engine::Shared>& ConnectionPool::shared() {
  return shared_;
}

std::shared_ptr<SessionLease> ConnectionPool::take(int selector, Reads reads) {
  std::unique_ptr<Session> session;
  if (auto& idle = idle_[selector]; !idle.empty()) {
    session = std::move(idle.back());
    idle.pop_back();
  } else {
    session = open(selector);
  }
  return std::make_shared<Lease>(shared_from_this(), selector, reads, std::move(session));
}

std::unique_ptr<ConnectionPool::Session> ConnectionPool::open(int selector) {
  const engine::Engine& engine = installation_->databaseEngine(selector);
  engine::OpenOptions options = installation_->openOptions(selector);
  options.shared = &shared_;
  options.now = [clock = clock_] { return clock->now(); };

  auto session = std::make_unique<Session>();
  session->session = engine.open(options);
  session->plans = std::make_unique<dialect::PlanCache>(
      *session->session,
      [installation = installation_, selector, &over = *session->session] {
        return installation->catalogue(selector, over);
      },
      installation_->locale(), installation_->writer(selector));
  return session;
}

ConnectionPool::Lease* ConnectionPool::inTransaction(int selector) const {
  const auto found = std::find_if(lent_.begin(), lent_.end(), [selector](const Lease* lease) {
    return lease->selector_ == selector && lease->session_->session->depth() > 0;
  });
  return found == lent_.end() ? nullptr : *found;
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
