// SPDX-License-Identifier: MIT
// What a check has found, as the log of events tells it.
#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

#include "tavelor/fiscal/check.hpp"
#include "tavelor/fiscal/rules.hpp"

namespace tavelor::fiscal {

namespace {

/// The law's word for what is wrong.
std::string_view anomalyOf(Flaw::Kind kind) {
  switch (kind) {
    case Flaw::Kind::kChanged:
      return "01";
    case Flaw::Kind::kRemoved:
      return "04";
    case Flaw::Kind::kInserted:
    case Flaw::Kind::kReordered:
      return "06";
    case Flaw::Kind::kDate:
      return "11";
    case Flaw::Kind::kSum:
      return "03";
    case Flaw::Kind::kSignature:
      return "02";
    case Flaw::Kind::kSeries:
    case Flaw::Kind::kTicket:
      break;
  }
  return "90";
}

}  // namespace

void logCheck(Book& book, const CheckReport& report) {
  const auto tell = [&](bool isOfEvent, std::uint64_t count) {
    book.log(isOfEvent ? EventKind::kEventCheck : EventKind::kCheck, Checked{count, count, count});
    const auto flaw = std::find_if(report.flaws.begin(), report.flaws.end(),
                                   [&](const Flaw& each) { return each.isOfEvent == isOfEvent; });
    if (flaw == report.flaws.end()) return;
    Anomaly anomaly;
    anomaly.kind = anomalyOf(flaw->kind);
    anomaly.text = recordText(flaw->sentence, kLongestEventText);
    // Whoever changed the record may have put anything there; the sentence tells where it is.
    if (flaw->invoice && faultOfNumber(flaw->invoice->number).empty() &&
        flaw->invoice->issuer == book.settings().taxpayer.number) {
      anomaly.invoice = flaw->invoice;
    }
    book.log(isOfEvent ? EventKind::kEventAnomaly : EventKind::kAnomaly, std::move(anomaly));
  };
  tell(false, report.records);
  tell(true, report.events);
}

}  // namespace tavelor::fiscal
