// SPDX-License-Identifier: MIT
// Forms and control digits of bank account numbers.
#include "tavelor/platform/bank_account.hpp"

#include <algorithm>
#include <array>

#include "tavelor/platform/text.hpp"

namespace tavelor {

namespace {

// What stands behind country and control digits: so many digits (n), letters (a) or either (c).
struct Country {
  std::string_view code;
  std::string_view form;
};
constexpr std::array kCountries = std::to_array<Country>({
    {"AD", "8n12c"},    {"AE", "19n"},      {"AL", "8n16c"},    {"AT", "16n"},
    {"AZ", "4a20c"},    {"BA", "16n"},      {"BE", "12n"},      {"BG", "4a6n8c"},
    {"BH", "4a14c"},    {"BI", "23n"},      {"BR", "23n1a1c"},  {"BY", "4c4n16c"},
    {"CH", "5n12c"},    {"CR", "18n"},      {"CY", "8n16c"},    {"CZ", "20n"},
    {"DE", "18n"},      {"DJ", "23n"},      {"DK", "14n"},      {"DO", "4c20n"},
    {"EE", "16n"},      {"EG", "25n"},      {"ES", "20n"},      {"FI", "14n"},
    {"FO", "14n"},      {"FR", "10n11c2n"}, {"GB", "4a14n"},    {"GE", "2a16n"},
    {"GI", "4a15c"},    {"GL", "14n"},      {"GR", "7n16c"},    {"GT", "24c"},
    {"HR", "17n"},      {"HU", "24n"},      {"IE", "4a14n"},    {"IL", "19n"},
    {"IQ", "4a15n"},    {"IS", "22n"},      {"IT", "1a10n12c"}, {"JO", "4a4n18c"},
    {"KW", "4a22c"},    {"KZ", "3n13c"},    {"LB", "4n20c"},    {"LC", "4a24c"},
    {"LI", "5n12c"},    {"LT", "16n"},      {"LU", "3n13c"},    {"LV", "4a13c"},
    {"LY", "21n"},      {"MC", "10n11c2n"}, {"MD", "20c"},      {"ME", "18n"},
    {"MK", "3n10c2n"},  {"MR", "23n"},      {"MT", "4a5n18c"},  {"MU", "4a19n3a"},
    {"NL", "4a10n"},    {"NO", "11n"},      {"PK", "4a16c"},    {"PL", "24n"},
    {"PS", "4a21c"},    {"PT", "21n"},      {"QA", "4a21c"},    {"RO", "4a16c"},
    {"RS", "18n"},      {"RU", "14n15c"},   {"SA", "2n18c"},    {"SC", "4a20n3a"},
    {"SD", "14n"},      {"SE", "20n"},      {"SI", "15n"},      {"SK", "20n"},
    {"SM", "1a10n12c"}, {"ST", "21n"},      {"SV", "4a20n"},    {"TL", "19n"},
    {"TN", "20n"},      {"TR", "6n16c"},    {"UA", "6n19c"},    {"VA", "18n"},
    {"VG", "4a16n"},    {"XK", "16n"},
});

constexpr std::size_t kHead = 4;  // country and control digits
constexpr std::size_t kCccLength = 20;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isLetter(char c) {
  return c >= 'A' && c <= 'Z';
}
bool allDigits(std::string_view text) {
  return std::all_of(text.begin(), text.end(), isDigit);
}

std::string compact(std::string_view typed, std::string_view between) {
  constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";
  const std::size_t first = typed.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return {};
  std::string text =
      text::upper(typed.substr(first, typed.find_last_not_of(kWhiteSpace) - first + 1));
  std::erase_if(text, [&](char c) { return between.find(c) != std::string_view::npos; });
  return text;
}

const Country* countryOf(std::string_view iban) {
  const auto* const found =
      std::find_if(kCountries.begin(), kCountries.end(),
                   [&](const Country& country) { return country.code == iban.substr(0, 2); });
  return found == kCountries.end() ? nullptr : found;
}

// Calls test(count, kind) for each run of a form, as long as it is true.
template <typename Test>
bool eachRun(std::string_view form, Test&& test) {
  std::size_t count = 0;
  for (const char c : form) {
    if (isDigit(c)) {
      count = count * 10 + static_cast<std::size_t>(c - '0');
      continue;
    }
    if (!test(count, c)) return false;
    count = 0;
  }
  return true;
}

std::size_t lengthOf(std::string_view form) {
  std::size_t length = 0;
  eachRun(form, [&](std::size_t count, char /*kind*/) {
    length += count;
    return true;
  });
  return length;
}

bool fits(char c, char kind) {
  if (kind == 'n') return isDigit(c);
  return isLetter(c) || (kind == 'c' && isDigit(c));
}

// The text has the form's length.
bool hasForm(std::string_view text, std::string_view form) {
  return eachRun(form, [&](std::size_t count, char kind) {
    const std::string_view run = text.substr(0, count);
    text.remove_prefix(count);
    return std::all_of(run.begin(), run.end(), [&](char c) { return fits(c, kind); });
  });
}

// Of a text read as one number, a letter counting as two digits, A being 10.
int remainder97(std::string_view text, int remainder = 0) {
  for (const char c : text) {
    remainder =
        isDigit(c) ? (remainder * 10 + (c - '0')) % 97 : (remainder * 100 + (c - 'A' + 10)) % 97;
  }
  return remainder;
}

std::string twoDigits(int number) {
  return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

// Weights are the powers of 2 from the left of ten digits, modulo 11; 11 and 10 become 0 and 1.
char cccDigit(std::string_view tenDigits) {
  int sum = 0;
  int weight = 1;
  for (const char c : tenDigits) {
    sum += (c - '0') * weight;
    weight = weight * 2 % 11;
  }
  const int rest = sum % 11;
  return static_cast<char>('0' + (rest < 2 ? rest : 11 - rest));
}

bool hasCccControl(std::string_view ccc) {
  return ccc.substr(8, 2) == cccControl(ccc.substr(0, 8), ccc.substr(10));
}

AccountFault ibanFault(std::string_view iban) {
  if (iban.empty()) return AccountFault::kEmpty;
  const Country* country = countryOf(iban);
  if (country == nullptr) return AccountFault::kCountry;
  if (text::length(iban) != kHead + lengthOf(country->form)) return AccountFault::kLength;
  const std::string_view control = iban.substr(2, 2);
  const std::string_view national = iban.substr(kHead);
  if (!allDigits(control) || national.size() != lengthOf(country->form) ||
      !hasForm(national, country->form)) {
    return AccountFault::kForm;
  }
  if (control != ibanControl(country->code, national)) return AccountFault::kControl;
  if (country->code == "ES" && !hasCccControl(national)) return AccountFault::kNational;
  return AccountFault::kNone;
}

AccountFault cccFault(std::string_view ccc) {
  if (ccc.empty()) return AccountFault::kEmpty;
  if (text::length(ccc) != kCccLength) return AccountFault::kLength;
  if (!allDigits(ccc)) return AccountFault::kForm;
  return hasCccControl(ccc) ? AccountFault::kNone : AccountFault::kNational;
}

}  // namespace

AccountNumber readIban(std::string_view typed) {
  AccountNumber account{compact(typed, " -.")};
  account.fault = ibanFault(account.text);
  return account;
}

AccountNumber readCcc(std::string_view typed) {
  AccountNumber account{compact(typed, " -")};
  account.fault = cccFault(account.text);
  return account;
}

std::string cccControl(std::string_view bankAndBranch, std::string_view account) {
  return {cccDigit("00" + std::string(bankAndBranch)), cccDigit(account)};
}

std::string ibanControl(std::string_view country, std::string_view national) {
  const int remainder = remainder97("00", remainder97(country, remainder97(national)));
  return twoDigits(98 - remainder);
}

std::string ibanOfCcc(std::string_view ccc) {
  return "ES" + ibanControl("ES", ccc) + std::string(ccc);
}

std::string_view faultText(AccountFault fault) {
  switch (fault) {
    case AccountFault::kNone:
      return "";
    case AccountFault::kEmpty:
      return "is empty";
    case AccountFault::kCountry:
      return "begins with no country that has an IBAN";
    case AccountFault::kLength:
      return "has a wrong number of characters";
    case AccountFault::kForm:
      return "has a letter or a digit where its country has another character";
    case AccountFault::kControl:
      return "has wrong control digits";
    case AccountFault::kNational:
      return "has wrong control digits of the bank or the account";
  }
  return "";
}

}  // namespace tavelor
