// SPDX-License-Identifier: MIT
// Where the registry keeps how a class's lists are shown.
#pragma once

#include <string_view>

#include "tavelor/platform/export.hpp"
#include "tavelor/services/list_config.hpp"

namespace tavelor {

struct ClassInfo;

/// Under which names SetFilter and SetOrder store.
namespace list_value {
inline constexpr std::string_view kFilter = "Criteria";        ///< a text for Filter
inline constexpr std::string_view kOrder = "IndexOrderField";  ///< a position, from 0
inline constexpr std::string_view kDirection = "Mode";         ///< behind the name of the field
}  // namespace list_value

/// The settings of a use of a class: "...\\Configuracion\\registros\\Bancos\\todos\\".
TAVELOR_API ListConfig listSettings(const ClassInfo& info, std::string_view sLlave);

}  // namespace tavelor
