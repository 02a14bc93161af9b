// SPDX-License-Identifier: MIT
// What the shared library of the Qt adapter shows.
#pragma once

/// Before a class or function of a public header of the adapter: a part of its interface.
#define TAVELOR_QT_API __attribute__((visibility("default")))
