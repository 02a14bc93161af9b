// SPDX-License-Identifier: MIT
// /health: whether sales can be made here.
#include <chrono>

#include "tavelor/platform/statement.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/application.hpp"
#include "tavelor/web/context.hpp"
#include "tavelor/web/endpoints.hpp"
#include "tavelor/web/transaction.hpp"

namespace tavelor::web {

namespace {

Answer health(Context& context) {
  Application& application = context.application();
  RecordsetPtr rows;
  ConnectionPtr connection;
  // Raises what the database does: then the answer is that of an error.
  DataSession().OpenRecordset(kMain, Statement("SELECT Count(*) FROM Web_Pines"), rows, connection);
  const auto uptime = std::chrono::duration_cast<std::chrono::seconds>(
      std::chrono::steady_clock::now() - application.since());
  return answer({{"status", "ok"},
                 {"version", TAVELOR_VERSION},
                 {"engine", application.installation()->database(kMain).engine},
                 {"workers", application.options().workers},
                 {"uptime", uptime.count()}});
}

}  // namespace

void addHealth(Routes& routes) {
  routes.add(Method::kGet, "/health", Right::kAnyone, health,
             {.summary = "Whether the server can work"});
}

}  // namespace tavelor::web
