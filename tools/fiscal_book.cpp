// SPDX-License-Identifier: MIT
// The records of the installation that a command works in.
#include "tools/fiscal_book.hpp"

#include <stdexcept>

#include "tavelor/frame/class_info.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::tools {

KeptBook::KeptBook(const Common& common)
    : session(common),
      documents(DataSession().OpenConnection(selector::kDocuments)),
      book(fiscal::Book::open(documents)) {
  if (!book) {
    throw std::runtime_error(
        "this shop keeps no records of invoices; `tavelor fiscal setup` begins them");
  }
}

}  // namespace tavelor::tools
