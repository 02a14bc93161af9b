// SPDX-License-Identifier: MIT
// A shop's day: sales, returns, closings, recovery, receipts, transactions, reconciliation. Methods
// of an apartment.
#pragma once

#include "python.hpp"

namespace tavelor::python {

PyObject* seed(PyObject* apartment, PyObject* none);
/// set_issuer(name, company, fiscal_number, address, place, postcode, province)
PyObject* setIssuer(PyObject* apartment, PyObject* arguments);
PyObject* openTills(PyObject* apartment, PyObject* tills);
/// The number of the ticket, or None for a sale that was there.
PyObject* sell(PyObject* apartment, PyObject* sale);
/// take_back(ticket, till, day, time, payment, comment, [(line, quantity)])
PyObject* takeBack(PyObject* apartment, PyObject* arguments);
/// close_till(till, day): (number, total, tickets)
PyObject* closeTill(PyObject* apartment, PyObject* arguments);
/// recover(decision): the counts of what was found
PyObject* recover(PyObject* apartment, PyObject* arguments);
PyObject* ticketText(PyObject* apartment, PyObject* number);
PyObject* slipText(PyObject* apartment, PyObject* number);
PyObject* beginTransaction(PyObject* apartment, PyObject* none);
/// reconcile(sales): (differences, tallies by place)
PyObject* reconcile(PyObject* apartment, PyObject* sales);

/// Makes the type of transactions. False with an exception.
bool addFlows(PyObject* module);

}  // namespace tavelor::python
