// SPDX-License-Identifier: MIT
// A record set's events, told to a Python function.

#include "objects.hpp"
#include "recordsets.hpp"

namespace tavelor::python {

namespace {

PyTypeObject* listenerType = nullptr;

/// Tells for as long as it is kept. It keeps its record set.
struct Listener {
  PyObject head;
  tavelor_listener* handle;
  PyObject* recordset;
  PyObject* handler;
};

Listener* listenerOf(PyObject* self) {
  return reinterpret_cast<Listener*>(self);
}

/// Tells the handler (event, reason, status, column, records, error); what it gives back is the
/// status that it leaves, None leaving it as it is, and False saying no.
tavelor_status tell(void* user, tavelor_event* event) {
  const PyGILState_STATE state = PyGILState_Ensure();
  tavelor_status status = TAVELOR_OK;
  {
    // The handler may remove its own listener.
    const Ref self = Ref::to(static_cast<PyObject*>(user));
    Listener* const listener = listenerOf(self.get());
    const Ref recordset = Ref::to(listener->recordset);
    const Ref handler = Ref::to(listener->handler);
    if (recordset && handler) {
      Apartment* const apartment = objectOf(recordset.get())->apartment;
      const Ref answer(PyObject_CallFunction(handler.get(), "iiiiii", event->event, event->reason,
                                             event->status, event->column, event->records,
                                             event->error_number));
      if (!answer) {
        status = keepException(apartment);
      } else if (answer.get() == Py_False) {
        event->status = TAVELOR_EVENT_CANCEL;
      }
    }
  }
  PyGILState_Release(state);
  return status;
}

PyObject* remove(PyObject* self, PyObject* /*none*/) {
  Listener* const listener = listenerOf(self);
  tavelor_listener* const handle = std::exchange(listener->handle, nullptr);
  if (handle != nullptr) tavelor_listener_remove(handle);
  Py_CLEAR(listener->handler);
  Py_CLEAR(listener->recordset);
  return none();
}

int clear(PyObject* self) {
  Py_DECREF(remove(self, nullptr));
  return 0;
}

int traverse(PyObject* self, visitproc visit, void* arg) {
  Py_VISIT(Py_TYPE(self));
  Py_VISIT(listenerOf(self)->handler);
  Py_VISIT(listenerOf(self)->recordset);
  return 0;
}

void dealloc(PyObject* self) {
  PyTypeObject* const type = Py_TYPE(self);
  PyObject_GC_UnTrack(self);
  clear(self);
  type->tp_free(self);
  Py_DECREF(type);
}

PyMethodDef listenerMethods[] = {{"remove", remove, METH_NOARGS, "remove()\n--\n\nTells no more."},
                                 {nullptr, nullptr, 0, nullptr}};
PyType_Slot listenerSlots[] = {{Py_tp_dealloc, slot(dealloc)},
                               {Py_tp_traverse, slot(traverse)},
                               {Py_tp_clear, slot(clear)},
                               {Py_tp_methods, listenerMethods},
                               {0, nullptr}};
PyType_Spec listenerSpec = {
    "tavelor._native.Listener", sizeof(Listener), 0,
    Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC | Py_TPFLAGS_DISALLOW_INSTANTIATION, listenerSlots};

}  // namespace

bool addListeners(PyObject* module) {
  PyObject* const type = PyType_FromSpec(&listenerSpec);
  if (type == nullptr) return false;
  listenerType = reinterpret_cast<PyTypeObject*>(type);
  return PyModule_AddObjectRef(module, "Listener", type) == 0;
}

PyObject* listen(PyObject* self, PyObject* handler) {
  if (PyCallable_Check(handler) == 0) {
    PyErr_Format(PyExc_TypeError, "listen: wants a function, not %R", Py_TYPE(handler));
    return nullptr;
  }
  Ref made(listenerType->tp_alloc(listenerType, 0));
  if (!made) return nullptr;
  Listener* const listener = listenerOf(made.get());
  listener->recordset = Py_NewRef(self);
  listener->handler = Py_NewRef(handler);
  Object* const object = objectOf(self);
  if (!done(object->apartment, [&](tavelor_error** error) {
        return tavelor_recordset_listen(object->handle, tell, listener, &listener->handle, error);
      })) {
    return nullptr;
  }
  return made.release();
}

}  // namespace tavelor::python
