// SPDX-License-Identifier: MIT
// A shop's day: sales, returns, closings, recovery, receipts, transactions, reconciliation, records
// of invoices. Methods of an apartment.
#pragma once

#include "python.hpp"

namespace tavelor::python {

PyObject* seed(PyObject* self, PyObject* none);
/// set_issuer(name, company, fiscal_number, address, place, postcode, province)
PyObject* setIssuer(PyObject* self, PyObject* arguments);
PyObject* openTills(PyObject* self, PyObject* tills);
/// The number of the ticket, or None for a sale that was there.
PyObject* sell(PyObject* self, PyObject* object);
/// price(article, customer, quantity, tariff, family, day or None): (price, discount, tax,
/// surcharge)
PyObject* price(PyObject* self, PyObject* arguments);
/// take_back(ticket, till, day, time, payment, comment, [(line, quantity)])
PyObject* takeBack(PyObject* self, PyObject* arguments);
/// cancel, with the same arguments and no lines
PyObject* cancel(PyObject* self, PyObject* arguments);
/// invoice_tickets([ticket], day, customer, name, fiscal_number): its number
PyObject* invoiceTickets(PyObject* self, PyObject* arguments);
/// close_till(till, day): (number, total, tickets)
PyObject* closeTill(PyObject* self, PyObject* arguments);
/// recover(decision): the counts of what was found
PyObject* recover(PyObject* self, PyObject* arguments);
PyObject* ticketText(PyObject* self, PyObject* number);
PyObject* slipText(PyObject* self, PyObject* number);
PyObject* beginTransaction(PyObject* self, PyObject* none);
/// reconcile(sales): (differences, tallies by place)
PyObject* reconcile(PyObject* self, PyObject* sales);
/// check_records(from or None, to or None): (records, events, tickets, total, flaws)
PyObject* checkRecords(PyObject* self, PyObject* arguments);

/// Makes the type of transactions. False with an exception.
bool addFlows(PyObject* module);

}  // namespace tavelor::python
