// SPDX-License-Identifier: MIT
// The pages: answered from memory, so that no path leads to a file.
#include "tavelor/web/answer.hpp"
#include "tavelor/web/context.hpp"
#include "tavelor/web/endpoints.hpp"
#include "tavelor/web/pages.hpp"

namespace tavelor::web {

namespace {

constexpr std::string_view kLacking =
    "<!doctype html><html lang=\"en\"><meta charset=\"utf-8\"><title>Tavelor</title>"
    "<p>This program was built without its pages: they need Node.js and npm. Install them "
    "(<code>apt-get install nodejs npm</code>), run <code>scripts/lib/pages.sh</code> and build "
    "again. All of <code>/api/v1</code> works without.</p></html>";

Answer fileOf(const Page& page, const Request& request) {
  Answer made{.type = std::string(page.type),
              .headers = {{"ETag", std::string(page.tag)},
                          {"Cache-Control",
                           page.isForever ? "public, max-age=31536000, immutable" : "no-cache"},
                          {"Vary", "Accept-Encoding"}}};
  if (made.type.starts_with("text/")) made.type += "; charset=utf-8";
  if (request.header("if-none-match").find(page.tag) != std::string_view::npos) {
    made.status = 304;
    made.type.clear();
    return made;
  }
  const bool isPacked = request.header("accept-encoding").find("gzip") != std::string_view::npos;
  if (isPacked) made.headers.emplace_back("Content-Encoding", "gzip");
  made.body = isPacked ? page.packed : page.plain;
  return made;
}

}  // namespace

void addPages(Routes& routes) {
  for (const Page& page : pages()) {
    routes.add(Method::kGet, page.path, Right::kAnyone,
               [&page](Context& context) { return fileOf(page, context.request()); });
  }
  if (!pages().empty()) return;
  for (const char* const path : {"/", "/till"}) {
    routes.add(Method::kGet, path, Right::kAnyone, [](Context&) {
      Answer made = page(std::string(kLacking));
      made.status = 503;
      return made;
    });
  }
}

}  // namespace tavelor::web
