// SPDX-License-Identifier: MIT
// The log of changes: who, when, what, from where.
#pragma once

#include <memory>

namespace tavelor {
class Connection;
}

namespace tavelor::web {

class Context;

/// Writes a line into Web_Registro, over `main` or over a connection of its own.
void logChange(const Context& context, int status, std::shared_ptr<Connection> main);

}  // namespace tavelor::web
