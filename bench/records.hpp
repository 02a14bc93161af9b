// SPDX-License-Identifier: MIT
// The shop's own sales, with the record of each invoice and without.
#pragma once

#include <memory>
#include <string>

#include "bench/runner.hpp"
#include "tavelor/flows/sale.hpp"
#include "tavelor/services/installation.hpp"

namespace tavelor::bench {

/// Of so many articles, one a line; `turn` makes its reference.
flows::Sale shopSale(int turn, int lines, Date day);

/// A sale of five lines in a shop that keeps records, beside one that does not. Both are empty, of
/// the same engine; `where` begins the line of the report.
void compareRecordedSale(const std::string& where, std::shared_ptr<Installation> plain,
                         std::shared_ptr<Installation> recording, Report& report,
                         const Scale& scale);

}  // namespace tavelor::bench
