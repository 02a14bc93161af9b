// SPDX-License-Identifier: MIT
// The records of the installation that a command works in.
#pragma once

#include <memory>

#include "tavelor/fiscal/book.hpp"
#include "tavelor/services/data_session.hpp"
#include "tools/session.hpp"

namespace tavelor::tools {

struct Common;

/// An open installation and its records. Raises std::runtime_error for a shop that keeps none.
struct KeptBook {
  explicit KeptBook(const Common& common);

  Session session;
  ConnectionPtr documents;
  std::unique_ptr<fiscal::Book> book;
};

}  // namespace tavelor::tools
