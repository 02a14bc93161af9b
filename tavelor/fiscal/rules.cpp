// SPDX-License-Identifier: MIT
// What the tax office refuses, asked before it does.
#include "tavelor/fiscal/rules.hpp"

#include <algorithm>
#include <array>
#include <cstdlib>

#include <fmt/format.h>

#include "tavelor/platform/fiscal_number.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/utf8.hpp"

namespace tavelor::fiscal {

namespace {

constexpr std::int64_t kTolerance = 10'00;  // cents, of each sum and quota

/// A rate that the law has, or had, in hundredths of a percent.
struct LegalRate {
  std::int64_t rate;
  std::int64_t surcharge;
  Date from = Date();
  Date to = Date::of(9999, 12, 31);
};

const std::array<LegalRate, 9>& legalRates() {
  static const Date kOctober = Date::of(2024, 10, 1);
  static const Date kNewYear = Date::of(2024, 12, 31);
  static const std::array<LegalRate, 9> kRates = {{
      {0, 0},
      {4'00, 50},
      {10'00, 1'40},
      {21'00, 5'20},
      {21'00, 1'75},  // tobacco
      {2'00, 26, kOctober, kNewYear},
      {7'50, 1'00, kOctober, kNewYear},
      {5'00, 50, Date::of(2022, 7, 1), Date::of(2022, 12, 31)},
      {5'00, 62, Date::of(2023, 1, 1), Date::of(2024, 9, 30)},
  }};
  return kRates;
}

std::int64_t centsOf(const std::optional<Amount>& amount) {
  return amount ? amount->cents() : 0;
}

/// Control characters, and the two characters of UTF-8 that no XML may hold.
bool isControl(char32_t code) {
  return code < 0x20 || code == 0x7f || code == 0xFFFE || code == 0xFFFF;
}

/// As given, with a blank for each control character.
std::string withoutControls(std::string_view given) {
  std::string clean;
  clean.reserve(given.size());
  for (std::size_t i = 0; i < given.size();) {
    const utf8::Character character = utf8::decode(given, i);
    if (isControl(character.code)) {
      clean += ' ';
    } else {
      clean += given.substr(i, character.size);
    }
    i += character.size;
  }
  return clean;
}

/// Collects sentences.
class Faults {
 public:
  void add(std::string sentence) {
    if (!sentence.empty()) sentences_.push_back(std::move(sentence));
  }
  template <typename... Values>
  void addIf(bool isWrong, fmt::format_string<Values...> sentence, Values&&... values) {
    if (isWrong) add(fmt::format(sentence, std::forward<Values>(values)...));
  }
  std::vector<std::string> take() { return std::move(sentences_); }

 private:
  std::vector<std::string> sentences_;
};

std::string faultOfText(std::string_view what, std::string_view text, std::size_t most) {
  if (text.find_first_not_of(' ') == std::string_view::npos) {
    return fmt::format("{} is missing", what);
  }
  if (!text::isValidUtf8(text)) return fmt::format("{} is no UTF-8 text", what);
  if (withoutControls(text) != text) {
    return fmt::format("{} holds control characters", what);
  }
  if (text::length(text) > most) {
    return fmt::format("{} has more than {} characters", what, most);
  }
  return {};
}

void lookAtDays(const Registration& record, Date today, Faults& faults) {
  const Date day = record.invoice.day;
  faults.addIf(day > today, "the day of issue lies in the future: {}", dayText(day));
  faults.addIf(day < kFirstDay, "the day of issue lies before {}", dayText(kFirstDay));
  if (record.operationDay) {
    faults.addIf(*record.operationDay > today, "the day of the operation lies in the future: {}",
                 dayText(*record.operationDay));
  }
}

void lookAtParties(const Registration& record, Faults& faults) {
  const bool wantsRecipient = hasRecipient(record.kind) && !record.hasNoRecipientByLaw;
  faults.addIf(wantsRecipient && record.recipients.empty(), "an invoice {} names who buys",
               word(record.kind));
  faults.addIf(!hasRecipient(record.kind) && !record.recipients.empty(),
               "an invoice {} names nobody who buys", word(record.kind));
  faults.add(faultOfText("the name of who issues it", record.issuerName, kLongestName));
  for (const Party& recipient : record.recipients) faults.add(faultOf(recipient));
}

void lookAtKind(const Registration& record, Faults& faults) {
  const std::string_view kind = word(record.kind);
  faults.addIf(!isRectifying(record.kind) && !record.rectified.empty(),
               "an invoice {} rectifies none", kind);
  faults.addIf(isRectifying(record.kind) && record.isSubstitution != record.substituted.has_value(),
               "what is replaced is told with a substitution, and only then");
  faults.addIf(!isRectifying(record.kind) && (record.isSubstitution || record.substituted),
               "an invoice {} substitutes none", kind);
  faults.addIf(record.kind != InvoiceKind::kReplacing && !record.replaced.empty(),
               "an invoice {} replaces no tickets", kind);
  faults.addIf(record.kind == InvoiceKind::kSimplified && !record.hasNoRecipientByLaw &&
                   record.total.cents() > kTicketLimit + kTolerance,
               "above {} EUR an invoice must name who buys", Amount::ofCents(kTicketLimit).text());
  faults.addIf(record.priorRefusal == "X" && !record.isCorrection,
               "what was never sent is sent as a correction");
  faults.addIf(record.isLarge != (std::abs(record.total.cents()) >= kLargeInvoice),
               "from {} EUR on, and only then, an invoice is marked as large",
               Amount::ofCents(kLargeInvoice).text());
}

void lookAtDetail(const Registration& record, const Detail& detail, Faults& faults) {
  const std::int64_t base = detail.base.cents();
  const std::string_view operation = word(detail.operation);
  if (isExempt(detail.operation) || isNotSubject(detail.operation)) {
    faults.addIf(detail.rate || detail.quota || detail.surchargeRate || detail.surchargeQuota,
                 "what is {} has no tax", operation);
    return;
  }
  if (detail.operation == Operation::kReverseCharge) {
    faults.addIf(centsOf(detail.rate) != 0 || centsOf(detail.quota) != 0,
                 "where who buys owes the tax, the invoice has none");
    faults.addIf(!hasRecipient(record.kind),
                 "where who buys owes the tax, an invoice {} cannot tell it", word(record.kind));
    return;
  }
  faults.addIf(!detail.rate || !detail.quota, "what is taxed has a rate and a quota");
  if (!detail.rate || !detail.quota) return;
  const Date day = record.operationDay.value_or(record.invoice.day);
  faults.addIf(!isLegalRate(detail.rate->cents(), centsOf(detail.surchargeRate), day),
               "on {} the law knows no tax of {} %{}", dayText(day), detail.rate->text(),
               detail.surchargeRate
                   ? fmt::format(" with a surcharge of {} %", detail.surchargeRate->text())
                   : std::string());
  const auto lookAtQuota = [&](const Amount& quota, const Amount& rate) {
    const std::int64_t due = base * rate.cents() / 100'00;
    faults.addIf(std::abs(quota.cents() - due) > kTolerance, "{} % of {} is not {}", rate.text(),
                 detail.base.text(), quota.text());
    faults.addIf((quota.cents() < 0 && base > 0) || (quota.cents() > 0 && base < 0),
                 "base {} and quota {} have other signs", detail.base.text(), quota.text());
  };
  lookAtQuota(*detail.quota, *detail.rate);
  faults.addIf(detail.surchargeRate.has_value() != detail.surchargeQuota.has_value(),
               "a surcharge has a rate and a quota");
  if (detail.surchargeRate && detail.surchargeQuota) {
    lookAtQuota(*detail.surchargeQuota, *detail.surchargeRate);
  }
}

void lookAtSums(const Registration& record, Faults& faults) {
  faults.addIf(record.details.empty(), "it has no lines");
  faults.addIf(record.details.size() > kMostDetails, "it has more than {} rates", kMostDetails);
  std::int64_t base = 0;
  std::int64_t quota = 0;
  for (const Detail& detail : record.details) {
    lookAtDetail(record, detail, faults);
    base += detail.base.cents();
    quota += centsOf(detail.quota) + centsOf(detail.surchargeQuota);
  }
  faults.addIf(std::abs(quota - record.quota.cents()) > kTolerance,
               "its quotas come to {}, and not to {}", Amount::ofCents(quota).text(),
               record.quota.text());
  constexpr std::array<std::string_view, 5> kOtherSums = {"03", "05", "06", "08", "09"};
  const bool isCompared =
      std::none_of(record.details.begin(), record.details.end(), [&](const Detail& detail) {
        return std::find(kOtherSums.begin(), kOtherSums.end(), detail.regime) != kOtherSums.end();
      });
  faults.addIf(isCompared && std::abs(base + quota - record.total.cents()) > kTolerance,
               "its bases and quotas come to {}, and not to {}",
               Amount::ofCents(base + quota).text(), record.total.text());
}

}  // namespace

bool isLegalRate(std::int64_t rate, std::int64_t surcharge, Date day) {
  const auto& rates = legalRates();
  return std::any_of(rates.begin(), rates.end(), [&](const LegalRate& legal) {
    return legal.rate == rate && (surcharge == 0 || legal.surcharge == surcharge) &&
           day >= legal.from && day <= legal.to;
  });
}

std::string faultOf(const Party& party) {
  if (std::string fault = faultOfText("the name", party.name, kLongestName); !fault.empty()) {
    return fault;
  }
  if (!party.foreign) {
    const FiscalNumber number = readFiscalNumber(party.number, FiscalReading::kStrict);
    if (!number.isValid()) {
      return number.fault == FiscalFault::kEmpty
                 ? fmt::format("{} has no fiscal number", party.name)
                 : fmt::format("the fiscal number {} of {} {}", number.text, party.name,
                               faultText(number.fault));
    }
    if (number.text != party.number) {
      return fmt::format("the fiscal number {} is not written as {}", party.number, number.text);
    }
    return {};
  }
  constexpr std::array<std::string_view, 6> kTypes = {"02", "03", "04", "05", "06", "07"};
  const ForeignId& foreign = *party.foreign;
  if (std::find(kTypes.begin(), kTypes.end(), foreign.type) == kTypes.end()) {
    return fmt::format("{} has an identification of the type {}, which there is not", party.name,
                       foreign.type);
  }
  if (foreign.type != "02" && foreign.country.size() != 2) {
    return fmt::format("{} has no country", party.name);
  }
  return faultOfText(fmt::format("the identification of {}", party.name), foreign.id, 20);
}

std::string faultOfNumber(std::string_view number) {
  if (number.empty()) return "it has no number";
  if (number.size() > kLongestNumber) {
    return fmt::format("its number has more than {} characters", kLongestNumber);
  }
  const auto isForbidden = [](char c) {
    return c < ' ' || c > '~' || std::string_view("\"'<>=").find(c) != std::string_view::npos;
  };
  if (std::any_of(number.begin(), number.end(), isForbidden)) {
    return "its number holds a character that no number may";
  }
  return text::trim(number) == number ? std::string() : "its number has blanks around it";
}

std::vector<std::string> faultsOf(const Registration& record, Date today) {
  Faults faults;
  faults.add(faultOfNumber(record.invoice.number));
  lookAtDays(record, today, faults);
  lookAtParties(record, faults);
  lookAtKind(record, faults);
  faults.add(faultOfText("the description", record.description, kLongestDescription));
  lookAtSums(record, faults);
  return faults.take();
}

std::string faultOfSums(const Registration& record) {
  std::int64_t base = 0;
  std::int64_t quota = 0;
  for (const Detail& detail : record.details) {
    base += detail.base.cents();
    quota += centsOf(detail.quota) + centsOf(detail.surchargeQuota);
  }
  if (quota == record.quota.cents() && base + quota == record.total.cents()) return {};
  return fmt::format("does not add up: bases {}, quotas {}, total {}", Amount::ofCents(base).text(),
                     Amount::ofCents(quota).text(), record.total.text());
}

std::string recordText(std::string_view given, std::size_t most) {
  const std::string clean = withoutControls(given);
  return std::string(text::trim(text::left(text::trim(clean), most)));
}

}  // namespace tavelor::fiscal
