// SPDX-License-Identifier: MIT
// A shop's day: sales, returns, closings, recovery, receipts, transactions, reconciliation, records
// of invoices.
#include "flows.hpp"

#include <memory>
#include <string>
#include <vector>

#include "objects.hpp"
#include "values.hpp"

namespace tavelor::python {

namespace {

Apartment* apartmentOf(PyObject* self) {
  return reinterpret_cast<Apartment*>(self);
}

/// Reads attributes of a Python object, and keeps what its texts are borrowed from.
class Fields {
 public:
  explicit Fields(const char* what) : what_(what) {}

  bool text(PyObject* from, const char* name, const char*& to) {
    PyObject* const object = keep(from, name);
    if (object == nullptr) return false;
    to = object == Py_None ? "" : toText(object, told(name).c_str());
    return to != nullptr;
  }
  bool number(PyObject* from, const char* name, double& to) {
    PyObject* const object = keep(from, name);
    return object != nullptr && toNumber(object, told(name).c_str(), to);
  }
  bool date(PyObject* from, const char* name, double& to) {
    PyObject* const object = keep(from, name);
    return object != nullptr && toDate(object, told(name).c_str(), to);
  }
  bool flag(PyObject* from, const char* name, int32_t& to) {
    PyObject* const object = keep(from, name);
    to = object != nullptr ? PyObject_IsTrue(object) : -1;
    return to >= 0;
  }
  /// The attribute as a tuple.
  PyObject* list(PyObject* from, const char* name) {
    PyObject* const object = keep(from, name);
    if (object == nullptr) return nullptr;
    kept_.emplace_back(PySequence_Tuple(object));
    return kept_.back().get();
  }

 private:
  PyObject* keep(PyObject* from, const char* name) {
    kept_.emplace_back(PyObject_GetAttrString(from, name));
    return kept_.back().get();
  }
  std::string told(const char* name) const { return std::string(what_) + ": " + name; }

  const char* what_;
  std::vector<Ref> kept_;
};

/// A sale as the library takes it, with all that it points to.
class Sale {
 public:
  bool read(PyObject* object) {
    sale_.size = sizeof sale_;
    return fields_.text(object, "reference", sale_.reference) &&
           fields_.text(object, "till", sale_.till) && fields_.date(object, "day", sale_.day) &&
           fields_.text(object, "time", sale_.time) &&
           fields_.text(object, "customer", sale_.customer) &&
           fields_.text(object, "name", sale_.name) && fields_.text(object, "place", sale_.place) &&
           fields_.text(object, "payment", sale_.payment) &&
           fields_.text(object, "comment", sale_.comment) &&
           fields_.number(object, "delivered", sale_.delivered) &&
           fields_.flag(object, "credit_granted", sale_.is_credit_granted) && readLines(object);
  }
  const tavelor_sale* get() const { return &sale_; }

 private:
  bool readLines(PyObject* object) {
    PyObject* const all = fields_.list(object, "lines");
    if (all == nullptr) return false;
    lines_.resize(static_cast<size_t>(PyTuple_GET_SIZE(all)));
    for (size_t i = 0; i < lines_.size(); ++i) {
      PyObject* const from = PyTuple_GET_ITEM(all, static_cast<Py_ssize_t>(i));
      tavelor_sale_line& line = lines_[i];
      line = {};
      line.size = sizeof line;
      if (!fields_.text(from, "code", line.code) ||
          !fields_.text(from, "description", line.description) ||
          !fields_.text(from, "family", line.family) || !fields_.text(from, "lot", line.lot) ||
          !fields_.number(from, "quantity", line.quantity) || !readPrice(from, line) ||
          !fields_.number(from, "tax", line.tax) ||
          !fields_.number(from, "surcharge", line.surcharge) ||
          !fields_.number(from, "discount", line.discount) ||
          !fields_.flag(from, "free", line.is_free)) {
        return false;
      }
    }
    sale_.lines = lines_.data();
    sale_.line_count = lines_.size();
    return true;
  }
  /// A line without a price is sold at the shop's own.
  bool readPrice(PyObject* from, tavelor_sale_line& line) {
    const Ref price(PyObject_GetAttrString(from, "price"));
    if (!price) return false;
    line.wants_price = price.get() == Py_None ? 1 : 0;
    return line.wants_price != 0 || fields_.number(from, "price", line.price);
  }

  Fields fields_{"sale"};
  tavelor_sale sale_ = {};
  std::vector<tavelor_sale_line> lines_;
};

/// A day of a Python object's, in room of the caller's, or none for None. False with an exception.
bool optionalDay(PyObject* object, const char* name, double& room, const double*& day) {
  day = object == Py_None ? nullptr : &room;
  return object == Py_None || toDate(object, name, room);
}

/// A paper, as its text or None.
template <auto kFunction>
PyObject* paper(PyObject* self, PyObject* object) {
  Apartment* const apartment = apartmentOf(self);
  double number = 0;
  tavelor_value text = tavelor_of_empty();
  if (!toNumber(object, "number", number) || !done(apartment, [&](tavelor_error** error) {
        return kFunction(apartment->handle, number, &text, error);
      })) {
    return nullptr;
  }
  PyObject* const made = fromValue(apartment, text);
  tavelor_value_clear(&text);
  return made;
}

// ---- Transactions

PyTypeObject* transactionType = nullptr;

struct Transaction {
  PyObject head;
  tavelor_transaction* handle;
  Apartment* apartment;
};

Transaction* transactionOf(PyObject* self) {
  return reinterpret_cast<Transaction*>(self);
}

PyObject* connectionsOf(PyObject* self, PyObject* /*none*/) {
  Transaction* const transaction = transactionOf(self);
  tavelor_object* main = nullptr;
  tavelor_object* documents = nullptr;
  if (!done(transaction->apartment, [&](tavelor_error** error) {
        return tavelor_transaction_connections(transaction->handle, &main, &documents, error);
      })) {
    return nullptr;
  }
  const Ref first(wrap(transaction->apartment, main));
  const Ref second(wrap(transaction->apartment, documents));
  return first && second ? PyTuple_Pack(2, first.get(), second.get()) : nullptr;
}

PyObject* commit(PyObject* self, PyObject* /*none*/) {
  Transaction* const transaction = transactionOf(self);
  return done(transaction->apartment,
              [&](tavelor_error** error) {
                return tavelor_transaction_commit(transaction->handle, error);
              })
             ? none()
             : nullptr;
}

/// Undoes what was not committed.
PyObject* end(PyObject* self, PyObject* /*none*/) {
  Transaction* const transaction = transactionOf(self);
  tavelor_transaction* const handle = std::exchange(transaction->handle, nullptr);
  if (handle != nullptr) tavelor_transaction_release(handle);
  return none();
}

void deallocTransaction(PyObject* self) {
  PyTypeObject* const type = Py_TYPE(self);
  Py_DECREF(end(self, nullptr));
  Py_CLEAR(transactionOf(self)->apartment);
  type->tp_free(self);
  Py_DECREF(type);
}

PyMethodDef transactionMethods[] = {{"connections", connectionsOf, METH_NOARGS, nullptr},
                                    {"commit", commit, METH_NOARGS, nullptr},
                                    {"end", end, METH_NOARGS, nullptr},
                                    {nullptr, nullptr, 0, nullptr}};
PyType_Slot transactionSlots[] = {
    {Py_tp_dealloc, slot(deallocTransaction)}, {Py_tp_methods, transactionMethods}, {0, nullptr}};
PyType_Spec transactionSpec = {"tavelor._native.Transaction", sizeof(Transaction), 0,
                               Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION,
                               transactionSlots};

// ---- Reconciliation

struct GiveBack {
  void operator()(tavelor_reconciliation* reconciliation) const {
    tavelor_reconciliation_release(reconciliation);
  }
  void operator()(tavelor_fiscal_check* check) const { tavelor_fiscal_check_release(check); }
};

/// [(till, day, place, what)]
Ref differencesOf(Apartment* apartment, tavelor_reconciliation* reconciliation, size_t count) {
  Ref all(PyList_New(0));
  for (size_t i = 0; all && i < count; ++i) {
    tavelor_difference difference = {};
    difference.size = sizeof difference;
    if (!done(apartment, [&](tavelor_error** error) {
          return tavelor_reconciliation_difference(reconciliation, i, &difference, error);
        })) {
      return Ref();
    }
    const Ref day(fromDate(difference.day));
    if (!day) return Ref();
    const Ref entry(
        Py_BuildValue("sOss", difference.till, day.get(), difference.place, difference.what));
    if (!entry || PyList_Append(all.get(), entry.get()) < 0) return Ref();
  }
  return all;
}

/// [(tickets, lines, units, money, money owed)], one a place.
Ref talliesOf(Apartment* apartment, tavelor_reconciliation* reconciliation) {
  Ref all(PyList_New(0));
  for (int32_t place = TAVELOR_PLACE_MEANT; all && place <= TAVELOR_PLACE_ACCOUNTS; ++place) {
    tavelor_tally tally = {};
    tally.size = sizeof tally;
    if (!done(apartment, [&](tavelor_error** error) {
          return tavelor_reconciliation_tally(reconciliation, place, &tally, error);
        })) {
      return Ref();
    }
    constexpr int64_t kParts = TAVELOR_MONEY_SCALE / 100;
    const Ref money(fromMoney(tally.cents * kParts));
    const Ref owed(fromMoney(tally.owed * kParts));
    if (!money || !owed) return Ref();
    const Ref entry(Py_BuildValue("LLdOO", static_cast<long long>(tally.tickets),
                                  static_cast<long long>(tally.lines), tally.units, money.get(),
                                  owed.get()));
    if (!entry || PyList_Append(all.get(), entry.get()) < 0) return Ref();
  }
  return all;
}

}  // namespace

PyObject* seed(PyObject* self, PyObject* /*none*/) {
  Apartment* const apartment = apartmentOf(self);
  return done(apartment,
              [&](tavelor_error** error) { return tavelor_seed(apartment->handle, error); })
             ? none()
             : nullptr;
}

PyObject* setIssuer(PyObject* self, PyObject* arguments) {
  tavelor_issuer issuer = {};
  issuer.size = sizeof issuer;
  if (!PyArg_ParseTuple(arguments, "sssssss", &issuer.name, &issuer.company, &issuer.fiscal_number,
                        &issuer.address, &issuer.place, &issuer.postcode, &issuer.province)) {
    return nullptr;
  }
  Apartment* const apartment = apartmentOf(self);
  return done(apartment,
              [&](tavelor_error** error) {
                return tavelor_set_issuer(apartment->handle, &issuer, error);
              })
             ? none()
             : nullptr;
}

PyObject* openTills(PyObject* self, PyObject* tills) {
  std::vector<const char*> codes;
  for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(tills); ++i) {
    codes.push_back(toText(PyTuple_GET_ITEM(tills, i), "open_tills"));
    if (codes.back() == nullptr) return nullptr;
  }
  Apartment* const apartment = apartmentOf(self);
  tavelor_shop* const shop = flowsOf(apartment);
  return shop != nullptr &&
                 done(apartment,
                      [&](tavelor_error** error) {
                        return tavelor_shop_open_tills(shop, codes.data(), codes.size(), error);
                      })
             ? none()
             : nullptr;
}

PyObject* sell(PyObject* self, PyObject* object) {
  Apartment* const apartment = apartmentOf(self);
  Sale sale;
  tavelor_shop* const shop = sale.read(object) ? flowsOf(apartment) : nullptr;
  double ticket = 0;
  if (shop == nullptr || !done(apartment, [&](tavelor_error** error) {
        return tavelor_shop_sell(shop, sale.get(), &ticket, error);
      })) {
    return nullptr;
  }
  return ticket != 0 ? PyLong_FromDouble(ticket) : none();
}

PyObject* price(PyObject* self, PyObject* arguments) {
  tavelor_price_question question = {};
  question.size = sizeof question;
  PyObject* quantity = nullptr;
  PyObject* day = nullptr;
  double date = 0;
  if (!PyArg_ParseTuple(arguments, "ssOssO", &question.article, &question.customer, &quantity,
                        &question.tariff, &question.family, &day) ||
      !toNumber(quantity, "price: quantity", question.quantity) ||
      !optionalDay(day, "price: day", date, question.day)) {
    return nullptr;
  }
  Apartment* const apartment = apartmentOf(self);
  tavelor_shop* const shop = flowsOf(apartment);
  tavelor_price found = {};
  found.size = sizeof found;
  if (shop == nullptr || !done(apartment, [&](tavelor_error** error) {
        return tavelor_shop_price(shop, &question, &found, error);
      })) {
    return nullptr;
  }
  return Py_BuildValue("dddd", found.price, found.discount, found.tax, found.surcharge);
}

namespace {

/// Takes back or cancels, by the same arguments.
template <auto kFunction>
PyObject* returned(PyObject* self, PyObject* arguments) {
  tavelor_return what = {};
  what.size = sizeof what;
  PyObject* ticket = nullptr;
  PyObject* day = nullptr;
  PyObject* lines = nullptr;
  if (!PyArg_ParseTuple(arguments, "OsOsszO!", &ticket, &what.till, &day, &what.time, &what.payment,
                        &what.comment, &PyList_Type, &lines) ||
      !toNumber(ticket, "take_back: ticket", what.ticket) ||
      !toDate(day, "take_back: day", what.day)) {
    return nullptr;
  }
  std::vector<tavelor_returned_line> returned(static_cast<size_t>(PyList_GET_SIZE(lines)));
  for (size_t i = 0; i < returned.size(); ++i) {
    PyObject* const entry = PyList_GET_ITEM(lines, static_cast<Py_ssize_t>(i));
    Py_ssize_t line = 0;
    PyObject* quantity = nullptr;
    if (!PyTuple_Check(entry)) {
      PyErr_SetString(PyExc_TypeError, "take_back: lines are (line from 1, quantity)");
      return nullptr;
    }
    if (!PyArg_ParseTuple(entry, "nO", &line, &quantity) ||
        !toNumber(quantity, "take_back: quantity", returned[i].quantity)) {
      return nullptr;
    }
    if (line < 1) {
      PyErr_Format(PyExc_IndexError, "take_back: there is no line %zd; they are counted from 1",
                   line);
      return nullptr;
    }
    returned[i].line = static_cast<size_t>(line);
  }
  what.lines = returned.data();
  what.line_count = returned.size();
  Apartment* const apartment = apartmentOf(self);
  tavelor_shop* const shop = flowsOf(apartment);
  double number = 0;
  if (shop == nullptr || !done(apartment, [&](tavelor_error** error) {
        return kFunction(shop, &what, &number, error);
      })) {
    return nullptr;
  }
  return PyLong_FromDouble(number);
}

}  // namespace

PyObject* takeBack(PyObject* self, PyObject* arguments) {
  return returned<tavelor_shop_take_back>(self, arguments);
}

PyObject* cancel(PyObject* self, PyObject* arguments) {
  return returned<tavelor_shop_cancel>(self, arguments);
}

PyObject* invoiceTickets(PyObject* self, PyObject* arguments) {
  tavelor_invoice_wish wish = {};
  wish.size = sizeof wish;
  PyObject* numbers = nullptr;
  PyObject* day = nullptr;
  if (!PyArg_ParseTuple(arguments, "O!Osss", &PyList_Type, &numbers, &day, &wish.customer,
                        &wish.name, &wish.fiscal_number) ||
      !toDate(day, "invoice_tickets: day", wish.day)) {
    return nullptr;
  }
  std::vector<double> tickets(static_cast<size_t>(PyList_GET_SIZE(numbers)));
  for (size_t i = 0; i < tickets.size(); ++i) {
    PyObject* const ticket = PyList_GET_ITEM(numbers, static_cast<Py_ssize_t>(i));
    if (!toNumber(ticket, "invoice_tickets: ticket", tickets[i])) return nullptr;
  }
  wish.tickets = tickets.data();
  wish.ticket_count = tickets.size();
  Apartment* const apartment = apartmentOf(self);
  tavelor_shop* const shop = flowsOf(apartment);
  tavelor_value number = tavelor_of_empty();
  if (shop == nullptr || !done(apartment, [&](tavelor_error** error) {
        return tavelor_shop_invoice_tickets(shop, &wish, &number, error);
      })) {
    return nullptr;
  }
  PyObject* const made = fromValue(apartment, number);
  tavelor_value_clear(&number);
  return made;
}

PyObject* closeTill(PyObject* self, PyObject* arguments) {
  const char* till = nullptr;
  PyObject* day = nullptr;
  double date = 0;
  if (!PyArg_ParseTuple(arguments, "sO", &till, &day) || !toDate(day, "close_till: day", date)) {
    return nullptr;
  }
  Apartment* const apartment = apartmentOf(self);
  tavelor_shop* const shop = flowsOf(apartment);
  tavelor_closing closing = {};
  closing.size = sizeof closing;
  if (shop == nullptr || !done(apartment, [&](tavelor_error** error) {
        return tavelor_shop_close_till(shop, till, date, &closing, error);
      })) {
    return nullptr;
  }
  return Py_BuildValue("Ldn", static_cast<long long>(closing.number), closing.total,
                       static_cast<Py_ssize_t>(closing.tickets));
}

PyObject* recover(PyObject* self, PyObject* arguments) {
  int decision = TAVELOR_DECIDE_NOTHING;
  if (!PyArg_ParseTuple(arguments, "i", &decision)) return nullptr;
  Apartment* const apartment = apartmentOf(self);
  tavelor_shop* const shop = flowsOf(apartment);
  tavelor_recovered found = {};
  found.size = sizeof found;
  if (shop == nullptr || !done(apartment, [&](tavelor_error** error) {
        return tavelor_shop_recover(shop, decision, &found, error);
      })) {
    return nullptr;
  }
  const auto number = [](size_t count) { return static_cast<Py_ssize_t>(count); };
  return Py_BuildValue("nnnnnn", number(found.sales), number(found.closings),
                       number(found.rewritten), number(found.taken_back), number(found.kept),
                       number(found.undecided));
}

PyObject* ticketText(PyObject* self, PyObject* number) {
  return paper<tavelor_ticket_text>(self, number);
}

PyObject* slipText(PyObject* self, PyObject* number) {
  return paper<tavelor_slip_text>(self, number);
}

PyObject* beginTransaction(PyObject* self, PyObject* /*none*/) {
  Apartment* const apartment = apartmentOf(self);
  tavelor_shop* const shop = flowsOf(apartment);
  if (shop == nullptr) return nullptr;
  Ref made(transactionType->tp_alloc(transactionType, 0));
  if (!made) return nullptr;
  Transaction* const transaction = transactionOf(made.get());
  transaction->apartment = apartment;
  Py_INCREF(self);
  if (!done(apartment, [&](tavelor_error** error) {
        return tavelor_transaction_begin(shop, &transaction->handle, error);
      })) {
    return nullptr;
  }
  return made.release();
}

PyObject* reconcile(PyObject* self, PyObject* sales) {
  Apartment* const apartment = apartmentOf(self);
  tavelor_reconciliation* opened = nullptr;
  const Ref all(PySequence_Tuple(sales));
  if (!all || !done(apartment, [&](tavelor_error** error) {
        return tavelor_reconciliation_new(apartment->handle, &opened, error);
      })) {
    return nullptr;
  }
  const std::unique_ptr<tavelor_reconciliation, GiveBack> reconciliation(opened);
  for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(all.get()); ++i) {
    Sale sale;
    if (!sale.read(PyTuple_GET_ITEM(all.get(), i)) || !done(apartment, [&](tavelor_error** error) {
          return tavelor_reconciliation_expect(opened, sale.get(), error);
        })) {
      return nullptr;
    }
  }
  size_t count = 0;
  if (!done(apartment, [&](tavelor_error** error) {
        return tavelor_reconciliation_compare(opened, &count, error);
      })) {
    return nullptr;
  }
  const Ref differences = differencesOf(apartment, opened, count);
  const Ref tallies = differences ? talliesOf(apartment, opened) : Ref();
  return tallies ? PyTuple_Pack(2, differences.get(), tallies.get()) : nullptr;
}

PyObject* checkRecords(PyObject* self, PyObject* arguments) {
  PyObject* first = nullptr;
  PyObject* last = nullptr;
  double dates[2] = {};
  const double* from = nullptr;
  const double* to = nullptr;
  if (!PyArg_ParseTuple(arguments, "OO", &first, &last) ||
      !optionalDay(first, "check_records: first", dates[0], from) ||
      !optionalDay(last, "check_records: last", dates[1], to)) {
    return nullptr;
  }
  Apartment* const apartment = apartmentOf(self);
  tavelor_fiscal_check* opened = nullptr;
  tavelor_fiscal_report report = {};
  report.size = sizeof report;
  if (!done(apartment, [&](tavelor_error** error) {
        return tavelor_fiscal_check_new(apartment->handle, from, to, &opened, &report, error);
      })) {
    return nullptr;
  }
  const std::unique_ptr<tavelor_fiscal_check, GiveBack> check(opened);
  const Ref flaws(PyList_New(0));
  for (size_t i = 0; flaws && i < report.flaws; ++i) {
    tavelor_flaw flaw = {};
    flaw.size = sizeof flaw;
    if (!done(apartment, [&](tavelor_error** error) {
          return tavelor_fiscal_check_flaw(opened, i, &flaw, error);
        })) {
      return nullptr;
    }
    const Ref isOfEvent(PyBool_FromLong(flaw.is_of_event));
    const Ref entry(Py_BuildValue("iOiiss", static_cast<int>(flaw.flaw), isOfEvent.get(),
                                  static_cast<int>(flaw.chain), static_cast<int>(flaw.position),
                                  flaw.invoice, flaw.sentence));
    if (!entry || PyList_Append(flaws.get(), entry.get()) < 0) return nullptr;
  }
  const Ref total(fromMoney(report.total_cents * (TAVELOR_MONEY_SCALE / 100)));
  if (!flaws || !total) return nullptr;
  return Py_BuildValue("KKKOO", static_cast<unsigned long long>(report.records),
                       static_cast<unsigned long long>(report.events),
                       static_cast<unsigned long long>(report.tickets), total.get(), flaws.get());
}

bool addFlows(PyObject* module) {
  PyObject* const type = PyType_FromSpec(&transactionSpec);
  if (type == nullptr) return false;
  transactionType = reinterpret_cast<PyTypeObject*>(type);
  return PyModule_AddObjectRef(module, "Transaction", type) == 0;
}

}  // namespace tavelor::python
