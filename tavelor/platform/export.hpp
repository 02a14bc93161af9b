// SPDX-License-Identifier: MIT
// What the shared library shows.
#pragma once

/// Before a class or function of a public header: a part of the interface, which the shared library
/// exports. All other symbols of it are hidden.
#define TAVELOR_API __attribute__((visibility("default")))
