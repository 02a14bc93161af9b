// SPDX-License-Identifier: MIT
// Names of files of an installation that parts above the services read and write.
#pragma once

#include <string_view>

namespace tavelor {

/// What the shop has told about its invoices and the tax office, beside the settings file.
inline constexpr std::string_view kFiscalSettingsFile = "fiscal.xml";

}  // namespace tavelor
