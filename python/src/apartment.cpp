// SPDX-License-Identifier: MIT
// An apartment as a Python object: open, close, clock, prompts, and errors as exceptions.
#include "apartment.hpp"

#include <cstring>

#include <pthread.h>

#include "connections.hpp"
#include "flows.hpp"
#include "objects.hpp"
#include "recordsets.hpp"
#include "values.hpp"

namespace tavelor::python {

PyTypeObject* apartmentType = nullptr;

namespace {

PyObject* errorFactory = nullptr;
unsigned processGeneration = 0;

Apartment* apartmentOf(PyObject* self) {
  return reinterpret_cast<Apartment*>(self);
}

const char* textOr(const char* text, const char* other) {
  return text != nullptr ? text : other;
}

/// (line or None, article, sentence) of each thing that is wrong with a sale.
Ref faultsOf(const tavelor_error* error) {
  const size_t count = tavelor_error_fault_count(error);
  Ref faults(PyTuple_New(static_cast<Py_ssize_t>(count)));
  for (size_t i = 0; faults && i < count; ++i) {
    size_t line = 0;
    const char* article = nullptr;
    const char* sentence = tavelor_error_fault(error, i, &line, &article);
    PyObject* const fault = Py_BuildValue("nss", static_cast<Py_ssize_t>(line), textOr(article, ""),
                                          textOr(sentence, ""));
    if (fault == nullptr) return Ref();
    PyTuple_SET_ITEM(faults.get(), static_cast<Py_ssize_t>(i), fault);
  }
  return faults;
}

/// Raises an error of this layer as one of the library.
void raiseOwn(int32_t number, int32_t kind, const char* description) {
  const Ref error(PyObject_CallFunction(errorFactory, "iissssNNnLLi", number, kind, "tavelor",
                                        description, "", "", PyUnicode_FromString(""),
                                        PyTuple_New(0), Py_ssize_t{-1}, 0LL, 0LL, 0));
  if (error) PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.get())), error.get());
}

PyObject* openApartment(PyTypeObject* type, PyObject* arguments, PyObject* /*named*/) {
  PyObject* pathObject = nullptr;
  PyObject* settingsObject = Py_None;
  if (!PyArg_ParseTuple(arguments, "U|O", &pathObject, &settingsObject)) return nullptr;
  const char* const path = toText(pathObject, "path");
  if (path == nullptr) return nullptr;
  tavelor_installation* installation = nullptr;
  if (settingsObject == Py_None) {
    if (!doneAnywhere([&](tavelor_error** error) {
          return tavelor_installation_open(path, &installation, error);
        })) {
      return nullptr;
    }
  } else {
    tavelor_settings settings = {};
    settings.size = sizeof settings;
    int unsynchronised = 0;
    int strict = 0;
    if (!PyArg_ParseTuple(settingsObject, "zzzzzipip", &settings.file, &settings.server,
                          &settings.locale, &settings.amount_format, &settings.quantity_format,
                          &settings.currency_decimals, &unsynchronised, &settings.busy_timeout_ms,
                          &strict)) {
      return nullptr;
    }
    settings.unsynchronised = unsynchronised;
    settings.strict_modes = strict;
    if (!doneAnywhere([&](tavelor_error** error) {
          return tavelor_installation_create(path, &settings, &installation, error);
        })) {
      return nullptr;
    }
  }
  tavelor_apartment* handle = nullptr;
  const bool opened = doneAnywhere(
      [&](tavelor_error** error) { return tavelor_apartment_open(installation, &handle, error); });
  Ref folder(opened ? PyUnicode_DecodeFSDefault(tavelor_installation_folder(installation))
                    : nullptr);
  Ref made(folder ? type->tp_alloc(type, 0) : nullptr);
  if (made) {
    apartmentOf(made.get())->folder = folder.release();
    apartmentOf(made.get())->installation = std::exchange(installation, nullptr);
    apartmentOf(made.get())->handle = handle;
    apartmentOf(made.get())->process = processGeneration;
  } else {
    tavelor_apartment_close(handle);
  }
  tavelor_installation_release(installation);
  return made.release();
}

/// Ends it; nothing of it is in use.
void closeHandles(Apartment* apartment) {
  // A copy that fork() has made must not touch the files of the process that it is one of.
  if (apartment->process == processGeneration) {
    tavelor_shop_release(apartment->shop);
    tavelor_apartment_close(apartment->handle);
    tavelor_installation_release(apartment->installation);
  }
  apartment->shop = nullptr;
  apartment->handle = nullptr;
  apartment->installation = nullptr;
}

PyObject* close(PyObject* self, PyObject* /*none*/) {
  Apartment* const apartment = apartmentOf(self);
  if (apartment->handle == nullptr) return none();
  if (apartment->calls != 0) {
    raiseOwn(
        TAVELOR_E_NOT_ALLOWED_IN_CONTEXT, TAVELOR_KIND_NOT_ALLOWED,
        "The shop is in use: a call of it is under way, on another thread or around a handler. "
        "Close it when that has returned");
    return nullptr;
  }
  closeHandles(apartment);
  if (apartment->raised != nullptr) {
    raise(apartment, TAVELOR_OK, nullptr);
    return nullptr;
  }
  return none();
}

int traverse(PyObject* self, visitproc visit, void* arg) {
  Py_VISIT(Py_TYPE(self));
  Py_VISIT(apartmentOf(self)->prompts);
  Py_VISIT(apartmentOf(self)->raised);
  return 0;
}

int clear(PyObject* self) {
  Py_CLEAR(apartmentOf(self)->prompts);
  Py_CLEAR(apartmentOf(self)->raised);
  Py_CLEAR(apartmentOf(self)->typed);
  Py_CLEAR(apartmentOf(self)->folder);
  return 0;
}

void dealloc(PyObject* self) {
  PyTypeObject* const type = Py_TYPE(self);
  PyObject_GC_UnTrack(self);
  closeHandles(apartmentOf(self));
  clear(self);
  type->tp_free(self);
  Py_DECREF(type);
}

PyObject* now(PyObject* self, PyObject* /*none*/) {
  double moment = 0;
  Apartment* const apartment = apartmentOf(self);
  if (!done(apartment, [&](tavelor_error** error) {
        return tavelor_apartment_now(apartment->handle, &moment, error);
      })) {
    return nullptr;
  }
  return fromDate(moment);
}

PyObject* fixClock(PyObject* self, PyObject* object) {
  double moment = 0;
  Apartment* const apartment = apartmentOf(self);
  if (object != Py_None && !toDate(object, "fix_clock", moment)) return nullptr;
  if (!done(apartment, [&](tavelor_error** error) {
        return tavelor_apartment_fix_clock(apartment->handle, object == Py_None ? nullptr : &moment,
                                           error);
      })) {
    return nullptr;
  }
  return none();
}

/// Asks Python's handler (kind, severity, text, title) and reads its answer: true for yes, or a
/// text that was typed.
tavelor_status answer(void* user, tavelor_prompt* prompt) {
  const PyGILState_STATE state = PyGILState_Ensure();
  auto* const apartment = static_cast<Apartment*>(user);
  tavelor_status status = TAVELOR_OK;
  {
    const Ref handler = Ref::to(apartment->prompts);
    const Ref answered(PyObject_CallFunction(handler.get(), "iiss", prompt->prompt,
                                             prompt->severity, textOr(prompt->text, ""),
                                             textOr(prompt->title, "")));
    if (!answered) {
      status = keepException(apartment);
    } else if (prompt->prompt == TAVELOR_PROMPT_INPUT && answered.get() != Py_None) {
      prompt->input = toText(answered.get(), "answer");
      if (prompt->input == nullptr) status = keepException(apartment);
      // The library reads it as soon as this returns, and the apartment keeps it that long.
      Py_XSETREF(apartment->typed, Py_NewRef(answered.get()));
    } else {
      prompt->answer = PyObject_IsTrue(answered.get());
      if (prompt->answer < 0) status = keepException(apartment);
    }
  }
  PyGILState_Release(state);
  return status;
}

PyObject* addToSchema(PyObject* self, PyObject* arguments) {
  int selector = 0;
  PyObject* object = nullptr;
  if (!PyArg_ParseTuple(arguments, "iO", &selector, &object)) return nullptr;
  const char* const ddl = toText(object, "add_to_schema");
  Apartment* const apartment = apartmentOf(self);
  if (ddl == nullptr || !done(apartment, [&](tavelor_error** error) {
        return tavelor_installation_add_to_schema(apartment->installation, selector, ddl, error);
      })) {
    return nullptr;
  }
  return none();
}

PyObject* setPrompts(PyObject* self, PyObject* handler) {
  Apartment* const apartment = apartmentOf(self);
  const bool wanted = handler != Py_None;
  if (wanted && PyCallable_Check(handler) == 0) {
    PyErr_Format(PyExc_TypeError, "on_prompt: wants a function or None, not %R", Py_TYPE(handler));
    return nullptr;
  }
  if (!done(apartment, [&](tavelor_error** error) {
        return tavelor_apartment_set_prompts(apartment->handle, wanted ? answer : nullptr,
                                             apartment, error);
      })) {
    return nullptr;
  }
  Py_XSETREF(apartment->prompts, wanted ? Py_NewRef(handler) : nullptr);
  return none();
}

/// [(severity, text, title)], and they are forgotten.
PyObject* takeMessages(PyObject* self, PyObject* /*none*/) {
  Apartment* const apartment = apartmentOf(self);
  size_t count = 0;
  if (!done(apartment, [&](tavelor_error** error) {
        return tavelor_apartment_message_count(apartment->handle, &count, error);
      })) {
    return nullptr;
  }
  Ref all(PyList_New(0));
  for (size_t i = 0; all && i < count; ++i) {
    tavelor_prompt message = {};
    message.size = sizeof message;
    if (!done(apartment, [&](tavelor_error** error) {
          return tavelor_apartment_message(apartment->handle, i, &message, error);
        })) {
      return nullptr;
    }
    const Ref entry(
        Py_BuildValue("iss", static_cast<int>(message.severity), message.text, message.title));
    if (!entry || PyList_Append(all.get(), entry.get()) < 0) return nullptr;
  }
  if (!all || !done(apartment, [&](tavelor_error** error) {
        return tavelor_apartment_clear_messages(apartment->handle, error);
      })) {
    return nullptr;
  }
  return all.release();
}

PyObject* isClosed(PyObject* self, void* /*none*/) {
  return PyBool_FromLong(apartmentOf(self)->handle == nullptr ? 1 : 0);
}

PyObject* folderOf(PyObject* self, void* /*none*/) {
  return Py_NewRef(apartmentOf(self)->folder);
}

PyMethodDef apartmentMethods[] = {{"close", close, METH_NOARGS, nullptr},
                                  {"now", now, METH_NOARGS, nullptr},
                                  {"fix_clock", fixClock, METH_O, nullptr},
                                  {"add_to_schema", addToSchema, METH_VARARGS, nullptr},
                                  {"set_prompts", setPrompts, METH_O, nullptr},
                                  {"connection", openConnection, METH_VARARGS, nullptr},
                                  {"new_rows", newRows, METH_VARARGS, nullptr},
                                  {"seed", seed, METH_NOARGS, nullptr},
                                  {"set_issuer", setIssuer, METH_VARARGS, nullptr},
                                  {"open_tills", openTills, METH_VARARGS, nullptr},
                                  {"sell", sell, METH_O, nullptr},
                                  {"price", price, METH_VARARGS, nullptr},
                                  {"take_back", takeBack, METH_VARARGS, nullptr},
                                  {"cancel", cancel, METH_VARARGS, nullptr},
                                  {"invoice_tickets", invoiceTickets, METH_VARARGS, nullptr},
                                  {"close_till", closeTill, METH_VARARGS, nullptr},
                                  {"recover", recover, METH_VARARGS, nullptr},
                                  {"ticket_text", ticketText, METH_O, nullptr},
                                  {"slip_text", slipText, METH_O, nullptr},
                                  {"begin", beginTransaction, METH_NOARGS, nullptr},
                                  {"reconcile", reconcile, METH_O, nullptr},
                                  {"check_records", checkRecords, METH_VARARGS, nullptr},
                                  {"take_messages", takeMessages, METH_NOARGS, nullptr},
                                  {nullptr, nullptr, 0, nullptr}};
PyGetSetDef apartmentProperties[] = {{"closed", isClosed, nullptr, nullptr, nullptr},
                                     {"folder", folderOf, nullptr, nullptr, nullptr},
                                     {nullptr, nullptr, nullptr, nullptr, nullptr}};
PyType_Slot apartmentSlots[] = {{Py_tp_new, slot(openApartment)},
                                {Py_tp_dealloc, slot(dealloc)},
                                {Py_tp_traverse, slot(traverse)},
                                {Py_tp_clear, slot(clear)},
                                {Py_tp_methods, apartmentMethods},
                                {Py_tp_getset, apartmentProperties},
                                {0, nullptr}};
PyType_Spec apartmentSpec = {"tavelor._native.Apartment", sizeof(Apartment), 0,
                             Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC, apartmentSlots};

}  // namespace

void setErrorFactory(PyObject* factory) {
  Py_XSETREF(errorFactory, Py_NewRef(factory));
}

bool isUsable(Apartment* apartment) {
  if (apartment->handle == nullptr) {
    raiseOwn(TAVELOR_E_OBJECT_NOT_SET, TAVELOR_KIND_CLOSED, "The shop is closed: open it again");
    return false;
  }
  if (apartment->process != processGeneration) {
    raiseOwn(TAVELOR_E_INVALID_CALL, TAVELOR_KIND_NOT_ALLOWED,
             "The shop was opened by the process that this one was forked from: open it here");
    return false;
  }
  return true;
}

PyObject* raise(Apartment* apartment, tavelor_status status, tavelor_error* error) {
  if (apartment != nullptr && apartment->raised != nullptr) {
    const Ref raised(std::exchange(apartment->raised, nullptr));
    tavelor_error_free(error);
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(raised.get())), raised.get());
    return nullptr;
  }
  int64_t line = 0;
  int64_t column = 0;
  const int64_t position = tavelor_error_place(error, &line, &column);
  Ref faults = faultsOf(error);
  const char* const description = tavelor_error_description(error);
  // A statement may be cut by a hostile text in the middle of a character.
  const char* const statementText = textOr(tavelor_error_statement(error), "");
  Ref statement(PyUnicode_DecodeUTF8(
      statementText, static_cast<Py_ssize_t>(std::strlen(statementText)), "replace"));
  if (faults && statement) {
    const Ref made(PyObject_CallFunction(
        errorFactory, "iissssOOnLLi", status, tavelor_error_kind(error),
        textOr(tavelor_error_source(error), ""),
        error != nullptr ? textOr(description, "") : "no memory is left to tell what is wrong",
        textOr(tavelor_error_notes(error), ""), textOr(tavelor_error_message(error), ""),
        statement.get(), faults.get(), static_cast<Py_ssize_t>(position),
        static_cast<long long>(line), static_cast<long long>(column),
        tavelor_error_native_code(error)));
    if (made) PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(made.get())), made.get());
  }
  tavelor_error_free(error);
  return nullptr;
}

tavelor_status keepException(Apartment* apartment) {
  PyObject* type = nullptr;
  PyObject* value = nullptr;
  PyObject* trace = nullptr;
  PyErr_Fetch(&type, &value, &trace);
  PyErr_NormalizeException(&type, &value, &trace);
  if (trace != nullptr) PyException_SetTraceback(value, trace);
  Py_XDECREF(type);
  Py_XDECREF(trace);
  // The first one is what all that follows comes from.
  if (apartment->raised == nullptr) {
    apartment->raised = value;
  } else {
    Py_XDECREF(value);
  }
  return TAVELOR_E_OPERATION_CANCELED;
}

tavelor_shop* flowsOf(Apartment* apartment) {
  if (apartment->shop == nullptr) {
    done(apartment, [&](tavelor_error** error) {
      return tavelor_shop_open(apartment->handle, &apartment->shop, error);
    });
  }
  return apartment->shop;
}

bool addApartment(PyObject* module) {
  pthread_atfork(nullptr, nullptr, [] { ++processGeneration; });
  PyObject* const type = PyType_FromSpec(&apartmentSpec);
  if (type == nullptr) return false;
  apartmentType = reinterpret_cast<PyTypeObject*>(type);
  return PyModule_AddObjectRef(module, "Apartment", type) == 0;
}

}  // namespace tavelor::python
