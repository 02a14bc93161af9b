// SPDX-License-Identifier: MIT
// The schemas that must be there before a session works: that of the dialect's functions and its
// own.
#pragma once

#include <memory>
#include <string>

#include "tavelor/services/postgres/session.hpp"

namespace tavelor::engine::postgres {

/// Looks whether they are there; with `create` makes what is not, in one transaction, which others
/// who do the same wait for. Functions of an older version are replaced in any case, if the role
/// may. Raises kFileNotFound for what is not there, and kPathAccess for what the role may not make;
/// both say what to do.
void schemasMustBeThere(const std::shared_ptr<SessionState>& state, bool create);

}  // namespace tavelor::engine::postgres
