// SPDX-License-Identifier: MIT
// What a shop tells that keeps records of invoices.
#pragma once

#include "tavelor/fiscal/settings.hpp"

namespace tavelor::test {

/// Of a shop that sends no records, from that day on.
inline fiscal::Settings recordSettings(Date start = Date::of(2026, 11, 1)) {
  fiscal::Settings settings;
  settings.taxpayer = {.name = "Colmado Rius", .number = "89890001K"};
  settings.system = {.producer = {.name = "Talleres Norte SL", .number = "B12345674"},
                     .name = "Tavelor",
                     .id = "TV",
                     .version = "",
                     .installation = "1"};
  settings.start = start;
  return settings;
}

}  // namespace tavelor::test
