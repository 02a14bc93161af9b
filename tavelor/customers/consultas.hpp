// SPDX-License-Identifier: MIT
// Conditions that the modes of the customers share with the marks for reports.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/platform/statement.hpp"

namespace tavelor::consultas {

/// " WHERE ... ;" of a mode that looks at delivery notes; an empty statement for any other word.
Statement byDeliveryNotes(std::string_view word);

/// The series that the annual declaration is about, in capitals: "A" where the session names none.
/// 0 for a word that is not A, B or C: all series.
char declaredSeries();

/// 1 January and 31 December of the year before this one, as date literals.
struct LastYear {
  std::string first;
  std::string last;
};
LastYear lastYear();

}  // namespace tavelor::consultas
