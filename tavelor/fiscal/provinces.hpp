// SPDX-License-Identifier: MIT
// The provinces of Spain, by number and by name.
#pragma once

#include <optional>
#include <string_view>

namespace tavelor::fiscal {

/// 1 to 52: by the first two digits of a postcode, which are the province's, else by its name, in
/// whatever case and with or without accents, as people write it in either language. Nothing where
/// neither tells one.
std::optional<int> provinceOf(std::string_view postcode, std::string_view name);

/// "Illes Balears" for 7; "" for no province.
std::string_view provinceName(int province);

}  // namespace tavelor::fiscal
