// SPDX-License-Identifier: MIT
// Sales that are paid in several ways. Their tickets bear one payment method, as all do; what was
// paid by each lies beside them.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tavelor/flows/known.hpp"
#include "tavelor/flows/sale.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

/// Euros by the code of their payment method.
using PaymentSums = std::vector<std::pair<std::string, double>>;

/// What is wrong with the parts of a sale; nothing for one that has none.
std::vector<std::string> faultsOfParts(const Sale& sale, Known& known);
/// What was handed over in all ways: Sale::delivered, and of parts those that are no cash.
double handedOver(const Sale& sale, Known& known);
/// In whatever order, to the cent.
bool areSame(const std::vector<PaymentPart>& some, const std::vector<PaymentPart>& others);

/// Of a ticket, in their order.
std::vector<PaymentPart> partsOf(double ticket, const ConnectionPtr& documents);
/// Writes those that a sale has.
void writeParts(const Sale& sale, double ticket, const ConnectionPtr& documents);

/// Sums over tickets by the method that each bears, made right by the parts of those tickets:
/// `which` is a condition on the live tickets.
void splitByParts(PaymentSums& sums, const Statement& which, const ConnectionPtr& documents);

/// How the money of a return goes back that is `back`'s total, of a sale paid in parts: by the
/// sale's own method first, then by the others, of each what `earlier` returns have left of its
/// part. One part where one method has enough.
std::vector<PaymentPart> givenBack(const Sale& back, const Sale& sold,
                                   const std::vector<Sale>& earlier);

}  // namespace tavelor::flows
