// SPDX-License-Identifier: MIT
// Forms and controls of Spanish fiscal numbers.
#include "tavelor/platform/fiscal_number.hpp"

#include <algorithm>
#include <array>

#include "tavelor/platform/text.hpp"

namespace tavelor {

namespace {

constexpr std::size_t kLength = 9;
constexpr std::string_view kPersonalLetters = "TRWAGMYFPDXBNJZSQVHLCKE";
constexpr std::string_view kForeignerLetters = "XYZ";
constexpr std::string_view kSpecialLetters = "KLM";
constexpr std::string_view kCompanyLetters = "ABCDEFGHJNPQRSUVW";
constexpr std::string_view kEndInLetter = "PQRSNW";
constexpr std::string_view kEndInDigit = "ABEHJUV";
constexpr std::array<std::string_view, 4> kReserved = {"X0000000T", "00000001R", "00000000T",
                                                       "99999999R"};
constexpr int kProvinces = 56;

bool oneOf(char c, std::string_view characters) {
  return characters.find(c) != std::string_view::npos;
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool allDigits(std::string_view text) {
  return std::all_of(text.begin(), text.end(), isDigit);
}

std::uint32_t numberOf(std::string_view digits) {
  std::uint32_t number = 0;
  for (const char c : digits) number = number * 10 + static_cast<std::uint32_t>(c - '0');
  return number;
}

FiscalKind kindOf(std::string_view text) {
  if (!allDigits(text.substr(1, 7))) return FiscalKind::kNone;
  const char first = text.front();
  if (isDigit(first)) return FiscalKind::kNif;
  if (oneOf(first, kForeignerLetters)) return FiscalKind::kNie;
  if (oneOf(first, kSpecialLetters)) return FiscalKind::kSpecialNif;
  return oneOf(first, kCompanyLetters) ? FiscalKind::kCif : FiscalKind::kNone;
}

// What the letter of a person is computed of; a foreigner's first letter stands for its place.
std::uint32_t personalNumber(FiscalKind kind, std::string_view text) {
  switch (kind) {
    case FiscalKind::kNie:
      return static_cast<std::uint32_t>(kForeignerLetters.find(text.front())) * 10'000'000 +
             numberOf(text.substr(1, 7));
    case FiscalKind::kSpecialNif:
      return numberOf(text.substr(1, 7));
    default:
      return numberOf(text.substr(0, 8));
  }
}

FiscalFault companyFault(std::string_view text, bool strict) {
  const CompanyControl control = companyControl(text.substr(1, 7));
  const bool bearsDigit = text.back() == control.digit;
  const bool bearsLetter = text.back() == control.letter;
  if (!bearsDigit && !bearsLetter) return FiscalFault::kControl;
  const bool wrongEnding =
      bearsDigit ? oneOf(text.front(), kEndInLetter) : oneOf(text.front(), kEndInDigit);
  return strict && wrongEnding ? FiscalFault::kEnding : FiscalFault::kNone;
}

FiscalFault faultOf(FiscalKind kind, std::string_view text, bool strict) {
  if (kind == FiscalKind::kNone) return FiscalFault::kForm;
  if (kind == FiscalKind::kCif) return companyFault(text, strict);
  if (text.back() != personalControl(personalNumber(kind, text))) return FiscalFault::kControl;
  if (!strict) return FiscalFault::kNone;
  if (kind == FiscalKind::kSpecialNif) {
    const std::uint32_t province = numberOf(text.substr(1, 2));
    if (province < 1 || province > kProvinces) return FiscalFault::kProvince;
  }
  const bool reserved = std::find(kReserved.begin(), kReserved.end(), text) != kReserved.end();
  return reserved ? FiscalFault::kReserved : FiscalFault::kNone;
}

}  // namespace

std::string compactFiscalNumber(std::string_view typed) {
  constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";
  const std::size_t first = typed.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return {};
  typed = typed.substr(first, typed.find_last_not_of(kWhiteSpace) - first + 1);
  std::string text = text::upper(typed);
  std::erase_if(text, [](char c) { return c == ' ' || c == '-'; });
  if (text.starts_with("ES")) text.erase(0, 2);
  return text;
}

FiscalNumber readFiscalNumber(std::string_view typed, FiscalReading reading) {
  FiscalNumber number;
  number.text = compactFiscalNumber(typed);
  if (number.text.empty()) {
    number.fault = FiscalFault::kEmpty;
  } else if (text::length(number.text) != kLength) {
    number.fault = FiscalFault::kLength;
  } else if (number.text.size() != kLength) {
    number.fault = FiscalFault::kForm;
  } else {
    number.kind = kindOf(number.text);
    number.fault = faultOf(number.kind, number.text, reading == FiscalReading::kStrict);
  }
  return number;
}

char personalControl(std::uint32_t number) {
  return kPersonalLetters[number % kPersonalLetters.size()];
}

// The digits at even places go in plain, those at odd places doubled, as the sum of their digits.
CompanyControl companyControl(std::string_view sevenDigits) {
  int sum = 0;
  for (std::size_t i = 0; i < sevenDigits.size(); ++i) {
    const int digit = sevenDigits[i] - '0';
    const int counted = i % 2 == 0 ? 2 * digit : digit;
    sum += counted / 10 + counted % 10;
  }
  const auto control = static_cast<std::size_t>((10 - sum % 10) % 10);
  return {static_cast<char>('0' + control), "JABCDEFGHI"[control]};
}

std::string_view faultText(FiscalFault fault) {
  switch (fault) {
    case FiscalFault::kNone:
      return "";
    case FiscalFault::kEmpty:
      return "is empty";
    case FiscalFault::kLength:
      return "has not nine characters";
    case FiscalFault::kForm:
      return "has not the form of a NIF, a NIE or a CIF";
    case FiscalFault::kControl:
      return "has a wrong control character";
    case FiscalFault::kEnding:
      return "ends in a digit or a letter where its kind ends in the other";
    case FiscalFault::kProvince:
      return "names a province that there is not";
    case FiscalFault::kReserved:
      return "is reserved by the tax office";
  }
  return "";
}

std::string_view kindWord(FiscalKind kind) {
  switch (kind) {
    case FiscalKind::kNone:
      return "";
    case FiscalKind::kNif:
    case FiscalKind::kSpecialNif:
      return "NIF";
    case FiscalKind::kNie:
      return "NIE";
    case FiscalKind::kCif:
      return "CIF";
  }
  return "";
}

}  // namespace tavelor
