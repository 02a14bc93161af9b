// SPDX-License-Identifier: MIT
// tavelor serve: the till and the back office for browsers.
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <fmt/format.h>

#include "tavelor/flows/findings.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/web/pins.hpp"
#include "tavelor/web/server.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(Who may sign in is told by `tavelor pin`, which other programs by `tavelor key`.
It listens on this machine only unless --listen names another address, and then
wants a certificate or a proxy before it. It logs a line of JSON for each request
on standard error, or in the file of --log.

  tavelor serve shop
  tavelor serve shop --listen 0.0.0.0 --certificate shop.pem --key shop.key --host till.example.com
  tavelor serve shop --behind-proxy --host till.example.com)";

/// As the next sale would; what a person has to decide is told.
void mend(const Common& common) {
  const Session session(common);
  flows::Shop shop;
  for (const std::string& sentence : flows::told(shop.recover().undecided)) {
    complain(fmt::format("tavelor: {}; see `tavelor recover`\n", sentence));
  }
  if (web::employeesWithPin().empty()) {
    complain(
        "tavelor: nobody has a PIN yet, so nobody can sign in: `tavelor pin CODE --role owner` "
        "gives one to an employee\n");
  }
}

void serve(const web::ServerOptions& options, const Common& common) {
  mend(common);
  // Who closes a line, or standard error, ends nothing here.
  std::signal(SIGPIPE, SIG_IGN);
  web::Server server(openInstallation(common), options);
  for (const std::string& warning : server.warnings())
    complain(fmt::format("tavelor: {}\n", warning));
  fmt::print("till         {}till\nback office  {}\n", server.url(), server.url());
  std::fflush(stdout);
  if (!server.run()) {
    complain("tavelor: a request was not answered in time; what it had begun is undone\n");
    std::_Exit(1);
  }
}

}  // namespace

void addServe(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("serve", "Serve the till and the back office to browsers");
  command->add_option("folder", common.folder, "Folder of the installation")->type_name("FOLDER");
  auto options = std::make_shared<web::ServerOptions>();
  options->takesSignals = true;
  command->add_option("--port", options->port, "Where it listens; 0 takes a free one")
      ->type_name("NUMBER");
  command->add_option("--listen", options->address, "Address; 0.0.0.0 for all of this machine")
      ->type_name("ADDRESS");
  command->add_option("--host", options->hosts, "A name by which it is called; may be repeated")
      ->type_name("NAME");
  command->add_option("--certificate", options->certificate, "For TLS, in PEM")->type_name("FILE");
  command->add_option("--key", options->key, "Of the certificate, in PEM")->type_name("FILE");
  command->add_flag("--behind-proxy", options->isBehindProxy,
                    "A proxy before it tells who asks, and does the TLS");
  command->add_flag("--without-tls", options->isOpen,
                    "Listen for others all the same: they can read PINs on their way");
  command
      ->add_option("--workers", options->workers, "Requests at a time; as many as cores by default")
      ->type_name("NUMBER");
  command
      ->add_option("--rate", options->requestsPerSecond,
                   "Requests a second of one address; 0 for no limit")
      ->type_name("NUMBER");
  command->add_option("--log", options->log, "File of the log; - for none")->type_name("FILE");
  addInstallationOptions(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { serve(*options, common); });
}

}  // namespace tavelor::tools
