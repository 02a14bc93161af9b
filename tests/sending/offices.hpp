// SPDX-License-Identifier: MIT
// A shop that sends to a stand-in of the tax office.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tavelor/fiscal/check.hpp"
#include "tavelor/sending/correction.hpp"
#include "tavelor/sending/sender.hpp"
#include "tavelor/sending/status.hpp"
#include "tests/fiscal/samples.hpp"
#include "tests/fiscal/shops.hpp"
#include "tests/support/tax_office.hpp"

namespace tavelor::sending {

using What = Round::What;

/// On 1 February 2027; each message and each proper answer keeps to the schemas, where the machine
/// has them, and the chain is whole at the end.
class OfficeTest : public fiscal::BookTest {
 protected:
  OfficeTest() { shop_.apartment().trace().turn(false); }

  void TearDown() override {
    const fiscal::CheckReport report = fiscal::check(*book_, {});
    for (const fiscal::Flaw& flaw : report.flaws) {
      // These shops sell without tickets.
      EXPECT_EQ(flaw.kind, fiscal::Flaw::Kind::kTicket) << flaw.sentence;
    }
    if (std::getenv("TAVELOR_LAW_SCHEMAS") == nullptr) return;
    for (const std::string& message : office_.messages()) {
      EXPECT_EQ(fiscal::complaintsOf(message, "SuministroLR.xsd"), "") << message;
    }
    for (const std::string& answer : office_.answers()) {
      EXPECT_EQ(fiscal::complaintsOf(answer, "RespuestaSuministro.xsd"), "") << answer;
    }
  }

  Endpoint endpoint() const { return {.url = office_.url()}; }
  Round send() { return Sender(*book_, endpoint()).sendNext(); }
  Round send(Way way) {
    office_.next(way);
    return send();
  }
  /// As above, once the tax office takes a message again.
  Round sendLater(Way way = Way::kProperly) {
    wait(61);
    return send(way);
  }
  /// Tickets T/1 and so on.
  void sellMany(int count) {
    documents_->BeginTrans();
    for (int at = 0; at < count; ++at) book_->add(fiscal::ticket(), {});
    documents_->CommitTrans();
  }
  /// The state of each record in the chain's order; "-" where it was not sent.
  std::string states() {
    std::string all;
    const int count = std::stoi(documents("SELECT Count(*) FROM Fiscal_Registros"));
    for (int at = 1; at <= count; ++at) {
      const std::string state =
          documents("SELECT Estado FROM Fiscal_Envios WHERE Posicion = " + std::to_string(at));
      all += state.empty() ? "-" : state;
    }
    return all;
  }
  std::string column(const std::string& name, int position) {
    return documents("SELECT " + name +
                     " FROM Fiscal_Envios WHERE Posicion = " + std::to_string(position));
  }
  std::string record(int position) {
    return documents("SELECT Registro FROM Fiscal_Registros WHERE Posicion = " +
                     std::to_string(position));
  }
  ChainStatus status() { return statusOf(*book_).at(0); }
  std::int64_t time() {
    return fiscal::secondsOf(fiscal::momentOf(shop_.apartment().clock())).value();
  }

  TaxOffice office_;
};

}  // namespace tavelor::sending
