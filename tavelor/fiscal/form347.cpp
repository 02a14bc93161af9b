// SPDX-License-Identifier: MIT
// Writes form 347 by the positions of its design.
#include "tavelor/fiscal/form347.hpp"

#include <algorithm>
#include <cstdlib>
#include <numeric>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/fiscal_number.hpp"
#include "tavelor/platform/text.hpp"

namespace tavelor::fiscal {

namespace {

constexpr std::size_t kRecord = 500;
constexpr std::size_t kPhone = 9;
constexpr std::uint64_t kFirstNumber = 3'470'000'000'000;
constexpr std::uint64_t kNumberEnd = 3'480'000'000'000;
constexpr std::uint64_t kNumbersOfYear = 1'000'000;
constexpr int kAbroad = 99;  // the province of who does not live in Spain

bool isFormLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '&';
}
bool isPhoneDigit(char c) {
  return c >= '0' && c <= '9';
}

/// In capitals without accents, ISO-8859-1; points vanish, what else is no letter or digit becomes
/// a blank, and no two blanks follow each other.
std::string capitals(std::string_view given) {
  const std::string upper = text::composed(text::upper(given));
  const std::size_t length = text::length(upper);
  std::string plain;
  const auto add = [&](char c) {
    if (c != ' ' || (!plain.empty() && plain.back() != ' ')) plain += c;
  };
  for (std::size_t at = 0; at < length; ++at) {
    const std::string_view letter = text::mid(upper, at, 1);
    if (letter == ".") continue;
    if (letter == "Ñ") {
      add('\xD1');
    } else if (letter == "Ç") {
      add('\xC7');
    } else {
      for (const char c : text::upper(text::foldAccents(letter))) add(isFormLetter(c) ? c : ' ');
    }
  }
  if (!plain.empty() && plain.back() == ' ') plain.pop_back();
  return plain;
}

/// A record, filled by positions, which count from 1.
class FormRecord {
 public:
  void put(std::size_t from, std::size_t to, std::string_view text) {
    text_.replace(from - 1, std::min(text.size(), to - from + 1), text.substr(0, to - from + 1));
  }
  void number(std::size_t from, std::size_t to, std::uint64_t value) {
    const std::string digits = std::to_string(value);
    const std::size_t width = to - from + 1;
    if (digits.size() > width) {
      raise(errors::kOverflow, "Fiscal",
            fmt::format("{} has more than {} digits, which form 347 has no place for.", digits,
                        width));
    }
    put(from, to, std::string(width - digits.size(), '0') + digits);
  }
  /// Sign, then cents.
  void amount(std::size_t from, std::size_t to, std::int64_t cents) {
    if (cents < 0) put(from, from, "N");
    number(from + 1, to, static_cast<std::uint64_t>(std::abs(cents)));
  }
  /// A fiscal number stands at the right, behind zeros.
  void fiscalNumber(std::size_t from, std::size_t to, const std::string& number) {
    const std::size_t width = to - from + 1;
    put(from, to, std::string(width - std::min(width, number.size()), '0') + number);
  }
  std::string take() { return std::move(text_) + "\r\n"; }

 private:
  std::string text_ = std::string(kRecord, ' ');
};

std::uint64_t numberOf(const Form347& form) {
  if (form.number != 0) return form.number;
  return kFirstNumber + static_cast<std::uint64_t>(form.year) * kNumbersOfYear + 1;
}

void beginRecord(FormRecord& record, char type, const Form347& form) {
  record.put(1, 1, std::string(1, type));
  record.put(2, 4, "347");
  record.number(5, 8, static_cast<std::uint64_t>(form.year));
  record.fiscalNumber(9, 17, form.declarant.number);
}

std::string declarantRecord(const Form347& form) {
  FormRecord record;
  beginRecord(record, '1', form);
  record.put(18, 57, capitals(form.declarant.name));
  record.put(58, 58, "T");
  record.fiscalNumber(59, 67, form.phone);
  record.put(68, 107, capitals(form.contact));
  record.number(108, 120, numberOf(form));
  if (form.kind == FormKind::kComplements) record.put(121, 121, "C");
  if (form.kind == FormKind::kReplaces) record.put(122, 122, "S");
  record.number(123, 135, form.previous);
  record.number(136, 144, form.declared.size());
  record.amount(
      145, 160,
      std::accumulate(form.declared.begin(), form.declared.end(), std::int64_t{0},
                      [](std::int64_t sum, const Declared& each) { return sum + each.total(); }));
  record.number(161, 169, 0);  // premises that are let
  record.amount(170, 185, 0);
  return record.take();
}

/// The country of a foreign number: the Union's register has letters of its own for two.
std::string countryOf(const ForeignId& id) {
  if (!id.country.empty()) return id.country;
  const std::string prefix = id.id.substr(0, 2);
  if (prefix == "EL") return "GR";
  return prefix == "XI" ? "GB" : prefix;
}

std::string declaredRecord(const Form347& form, const Declared& declared) {
  constexpr std::string_view kOfUnion = "02";
  FormRecord record;
  beginRecord(record, '2', form);
  if (!declared.party.foreign) {
    record.fiscalNumber(18, 26, declared.party.number);
    record.number(77, 78, static_cast<std::uint64_t>(declared.province.value_or(0)));
  } else {
    const ForeignId& id = *declared.party.foreign;
    record.number(77, 78, kAbroad);
    record.put(79, 80, countryOf(id));
    if (id.type == kOfUnion) record.put(264, 280, id.id);
  }
  record.put(36, 75, capitals(declared.party.name));
  record.put(76, 76, "D");
  record.put(82, 82, declared.isSupplier ? "A" : "B");
  record.amount(83, 98, declared.total());
  const bool hasCash = !declared.isSupplier && declared.cash > kCashAbove;
  record.number(101, 115, hasCash ? static_cast<std::uint64_t>(declared.cash) : 0);
  record.amount(116, 131, 0);  // real estate
  record.number(132, 135, hasCash ? static_cast<std::uint64_t>(form.year) : 0);
  constexpr std::size_t kQuarter = 32;  // an amount, and that of real estate
  for (std::size_t quarter = 0; quarter < declared.cents.size(); ++quarter) {
    const std::size_t at = 136 + quarter * kQuarter;
    record.amount(at, at + 15, declared.cents.at(quarter));
    record.amount(at + 16, at + 31, 0);
  }
  record.amount(284, 299, 0);  // by the rule of cash
  return record.take();
}

/// What is wrong with a number of Spain; "" for nothing.
std::string faultOfFiscalNumber(const Party& party) {
  if (party.foreign) return {};
  if (party.number.empty()) return "has no fiscal number";
  const FiscalFault fault = readFiscalNumber(party.number).fault;
  if (fault == FiscalFault::kNone) return {};
  return fmt::format("has the fiscal number {}, which {}", party.number, faultText(fault));
}

}  // namespace

std::vector<std::string> faultsOf(const Form347& form) {
  std::vector<std::string> faults;
  const auto add = [&](std::string_view who, const std::string& what) {
    if (!what.empty()) faults.push_back(fmt::format("{} {}", who, what));
  };
  const auto isNumber = [](std::uint64_t number) {
    return number >= kFirstNumber && number < kNumberEnd;
  };
  add("the shop", faultOfFiscalNumber(form.declarant));
  if (form.declarant.foreign) add("the shop", "has no Spanish fiscal number");
  if (capitals(form.declarant.name).empty()) add("the shop", "has no name");
  const bool isPhone = form.phone.size() == kPhone &&
                       std::all_of(form.phone.begin(), form.phone.end(), isPhoneDigit);
  if (!form.phone.empty() && !isPhone) faults.emplace_back("the phone has not nine digits");
  if (form.number != 0 && !isNumber(form.number)) {
    faults.emplace_back(
        "the number of the declaration has not thirteen digits that begin with 347");
  }
  if (form.kind != FormKind::kFirst && !isNumber(form.previous)) {
    faults.emplace_back(
        "the number of the declaration before has not thirteen digits that begin with 347");
  }
  for (const Declared& each : form.declared) {
    add(each.called, faultOfFiscalNumber(each.party));
    if (capitals(each.party.name).empty()) add(each.called, "has no name");
    if (!each.party.foreign && !each.province) {
      add(each.called, "has neither a postcode nor a province");
    }
  }
  return faults;
}

std::string textOf(const Form347& form) {
  if (const auto faults = faultsOf(form); !faults.empty()) {
    raise(errors::kInvalidCall, "Fiscal",
          fmt::format("Form 347 of {} cannot be written: {}.", form.year, fmt::join(faults, "; ")));
  }
  std::string text = declarantRecord(form);
  for (const Declared& each : form.declared) text += declaredRecord(form, each);
  return text;
}

}  // namespace tavelor::fiscal
