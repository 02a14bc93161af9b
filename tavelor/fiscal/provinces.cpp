// SPDX-License-Identifier: MIT
// The provinces of Spain, by number and by name.
#include "tavelor/fiscal/provinces.hpp"

#include <algorithm>
#include <array>
#include <string>

#include "tavelor/platform/text.hpp"

namespace tavelor::fiscal {

namespace {

constexpr int kProvinces = 52;

constexpr std::array<std::string_view, kProvinces> kProvinceNames = {
    "Álava",         "Albacete",
    "Alicante",      "Almería",
    "Ávila",         "Badajoz",
    "Illes Balears", "Barcelona",
    "Burgos",        "Cáceres",
    "Cádiz",         "Castellón",
    "Ciudad Real",   "Córdoba",
    "A Coruña",      "Cuenca",
    "Girona",        "Granada",
    "Guadalajara",   "Gipuzkoa",
    "Huelva",        "Huesca",
    "Jaén",          "León",
    "Lleida",        "La Rioja",
    "Lugo",          "Madrid",
    "Málaga",        "Murcia",
    "Navarra",       "Ourense",
    "Asturias",      "Palencia",
    "Las Palmas",    "Pontevedra",
    "Salamanca",     "Santa Cruz Tenerife",
    "Cantabria",     "Segovia",
    "Sevilla",       "Soria",
    "Tarragona",     "Teruel",
    "Toledo",        "Valencia",
    "Valladolid",    "Bizkaia",
    "Zamora",        "Zaragoza",
    "Ceuta",         "Melilla"};

struct OtherProvinceName {
  std::string_view folded;
  int province;
};
constexpr std::array<OtherProvinceName, 20> kOtherProvinceNames = {{
    {"araba", 1},     {"alava/araba", 1},  {"araba/alava", 1},
    {"alacant", 3},   {"baleares", 7},     {"islas baleares", 7},
    {"mallorca", 7},  {"castello", 12},    {"la coruna", 15},
    {"coruna", 15},   {"gerona", 17},      {"guipuzcoa", 20},
    {"lerida", 25},   {"rioja", 26},       {"nafarroa", 31},
    {"orense", 32},   {"palmas, las", 35}, {"santa cruz de tenerife", 38},
    {"tenerife", 38}, {"vizcaya", 48},
}};

bool isFigure(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

std::optional<int> provinceOf(std::string_view postcode, std::string_view name) {
  constexpr std::size_t kPostcode = 5;
  postcode = text::trim(postcode);
  if (postcode.size() == kPostcode && std::all_of(postcode.begin(), postcode.end(), isFigure)) {
    const int province = (postcode[0] - '0') * 10 + (postcode[1] - '0');
    if (province >= 1 && province <= kProvinces) return province;
  }
  const std::string folded = text::foldAccents(text::trim(name));
  if (folded.empty()) return std::nullopt;
  for (int province = 1; province <= kProvinces; ++province) {
    if (text::foldAccents(provinceName(province)) == folded) return province;
  }
  const auto* const other =
      std::find_if(kOtherProvinceNames.begin(), kOtherProvinceNames.end(),
                   [&](const OtherProvinceName& each) { return each.folded == folded; });
  if (other == kOtherProvinceNames.end()) return std::nullopt;
  return other->province;
}

std::string_view provinceName(int province) {
  if (province < 1 || province > kProvinces) return {};
  return kProvinceNames.at(static_cast<std::size_t>(province - 1));
}

}  // namespace tavelor::fiscal
