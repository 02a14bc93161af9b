// SPDX-License-Identifier: MIT
// Objects of the library as Python objects: made, wrapped, compared, given back.
#include "objects.hpp"

#include <cstddef>

#include "connections.hpp"
#include "members.hpp"
#include "recordsets.hpp"
#include "values.hpp"

namespace tavelor::python {

PyTypeObject* objectType = nullptr;

namespace {

/// Bases by tavelor_object_kind(): what Python's own layer gives.
PyObject* bases[3] = {};
/// Types by the address of their class.
PyObject* types = nullptr;

PyObject* classFactory(PyTypeObject* type, PyObject* arguments, PyObject* /*named*/) {
  PyObject* shop = nullptr;
  if (!PyArg_ParseTuple(arguments, "O", &shop)) return nullptr;
  const Ref capsule(PyObject_GetAttrString(reinterpret_cast<PyObject*>(type), "_class"));
  if (!capsule) {
    PyErr_Clear();
    PyErr_Format(PyExc_TypeError, "%s is no class of the library: it cannot be made",
                 type->tp_name);
    return nullptr;
  }
  const auto* of = static_cast<const tavelor_class*>(PyCapsule_GetPointer(capsule.get(), nullptr));
  Ref apartmentRef = Ref::to(shop);
  if (!PyObject_TypeCheck(shop, apartmentType)) {
    apartmentRef = Ref(PyObject_GetAttrString(shop, "_apartment"));
    if (!apartmentRef || !PyObject_TypeCheck(apartmentRef.get(), apartmentType)) {
      PyErr_Format(PyExc_TypeError, "%s: wants a shop, not %R", type->tp_name, Py_TYPE(shop));
      return nullptr;
    }
  }
  auto* const apartment = reinterpret_cast<Apartment*>(apartmentRef.get());
  tavelor_object* handle = nullptr;
  if (of == nullptr || !done(apartment, [&](tavelor_error** error) {
        return tavelor_object_new(apartment->handle, of, &handle, error);
      })) {
    return nullptr;
  }
  PyObject* const made = type->tp_alloc(type, 0);
  if (made == nullptr) {
    tavelor_object_release(handle);
    return nullptr;
  }
  objectOf(made)->handle = handle;
  objectOf(made)->apartment = reinterpret_cast<Apartment*>(apartmentRef.release());
  return made;
}

void dealloc(PyObject* self) {
  Object* const object = objectOf(self);
  PyTypeObject* const type = Py_TYPE(self);
  if (object->weak != nullptr) PyObject_ClearWeakRefs(self);
  tavelor_object_release(object->handle);
  Py_CLEAR(object->rowType);
  Py_CLEAR(object->apartment);
  type->tp_free(self);
  Py_DECREF(type);
}

PyObject* compare(PyObject* a, PyObject* b, int operation) {
  if ((operation != Py_EQ && operation != Py_NE) || !PyObject_TypeCheck(b, objectType)) {
    Py_RETURN_NOTIMPLEMENTED;
  }
  const bool same = tavelor_object_is_same(objectOf(a)->handle, objectOf(b)->handle) != 0;
  return PyBool_FromLong(same == (operation == Py_EQ) ? 1 : 0);
}

/// Names are found as they are written; in another case than the table's, at the second try.
PyObject* attribute(PyObject* self, PyObject* name) {
  PyObject* const found = PyObject_GenericGetAttr(self, name);
  if (found != nullptr || PyErr_ExceptionMatches(PyExc_AttributeError) == 0) return found;
  const tavelor_class* const of = tavelor_object_class(objectOf(self)->handle);
  const char* const text = PyUnicode_AsUTF8(name);
  if (of == nullptr || text == nullptr || text[0] == '_') return nullptr;
  PyErr_Clear();
  const tavelor_member* member = nullptr;
  tavelor_error* error = nullptr;
  if (tavelor_class_find_member(of, text, &member, &error) != TAVELOR_OK) {
    PyErr_Format(PyExc_AttributeError, "%s", tavelor_error_description(error));
    tavelor_error_free(error);
    return nullptr;
  }
  const Ref proper(PyUnicode_FromString(tavelor_member_name(member)));
  if (!proper || PyUnicode_Compare(proper.get(), name) == 0) return nullptr;
  return PyObject_GenericGetAttr(self, proper.get());
}

/// Another object of the same class: shop.ClsBancos() beside shop.ClsBancos.
PyObject* another(PyObject* self, PyObject* arguments, PyObject* /*named*/) {
  if (!PyArg_ParseTuple(arguments, "")) return nullptr;
  return PyObject_CallOneArg(reinterpret_cast<PyObject*>(Py_TYPE(self)),
                             reinterpret_cast<PyObject*>(objectOf(self)->apartment));
}

PyObject* rowsOf(PyObject* self, PyObject* arguments) {
  PyObject* nameObject = nullptr;
  if (!PyArg_ParseTuple(arguments, "|U", &nameObject)) return nullptr;
  const char* const name = nameObject != nullptr ? toText(nameObject, "rows") : "Primary";
  tavelor_object* recordset = nullptr;
  Object* const object = objectOf(self);
  if (name == nullptr || !done(object->apartment, [&](tavelor_error** error) {
        return tavelor_object_rows(object->handle, name, &recordset, error);
      })) {
    return nullptr;
  }
  return wrap(object->apartment, recordset);
}

PyMethodDef objectMethods[] = {{"rows", rowsOf, METH_VARARGS,
                                "rows(name=\"Primary\")\n--\n\nThe rows that IniciaRs has opened: "
                                "\"Primary\", or another of the "
                                "class's data members."},
                               {nullptr, nullptr, 0, nullptr}};
PyMemberDef objectMembers[] = {
    {"__weaklistoffset__", T_PYSSIZET, offsetof(Object, weak), READONLY, nullptr},
    {nullptr, 0, 0, 0, nullptr}};
PyType_Slot objectSlots[] = {{Py_tp_new, slot(classFactory)},
                             {Py_tp_dealloc, slot(dealloc)},
                             {Py_tp_richcompare, slot(compare)},
                             {Py_tp_hash, slot(PyObject_HashNotImplemented)},
                             {Py_tp_getattro, slot(attribute)},
                             {Py_tp_call, slot(another)},
                             {Py_tp_methods, objectMethods},
                             {Py_tp_members, objectMembers},
                             {0, nullptr}};
PyType_Spec objectSpec = {"tavelor._native.Object", sizeof(Object), 0,
                          Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, objectSlots};

PyObject* makeBase(PyObject* module, const char* name, PyMethodDef* methods,
                   PyGetSetDef* properties, PyType_Slot iterator, PyType_Slot length) {
  PyType_Slot slots[] = {
      {Py_tp_methods, methods}, {Py_tp_getset, properties}, iterator, length, {0, nullptr}};
  PyType_Spec spec = {name, sizeof(Object), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, slots};
  const Ref under(PyTuple_Pack(1, reinterpret_cast<PyObject*>(objectType)));
  PyObject* const type = under ? PyType_FromSpecWithBases(&spec, under.get()) : nullptr;
  const char* const shortName = name + sizeof "tavelor._native." - 1;
  if (type == nullptr || PyModule_AddObjectRef(module, shortName, type) < 0) return nullptr;
  return type;
}

/// The bases of classes whose objects have more than members.
int32_t kindOf(const char* className) {
  if (PyOS_stricmp(className, "Recordset") == 0) return TAVELOR_IS_RECORDSET;
  if (PyOS_stricmp(className, "Connection") == 0) return TAVELOR_IS_CONNECTION;
  return TAVELOR_IS_OBJECT;
}

PyObject* makeType(const tavelor_class* of) {
  const char* const name = tavelor_class_name(of);
  const Ref nameObject(PyUnicode_FromString(name));
  const Ref content(PyDict_New());
  if (!nameObject || !content) return nullptr;
  const size_t count = tavelor_class_member_count(of);
  for (size_t i = 0; i < count; ++i) {
    const tavelor_member* const member = tavelor_class_member_at(of, i);
    const Ref descriptor(memberObject(member, nameObject.get()));
    if (!descriptor ||
        PyDict_SetItemString(content.get(), tavelor_member_name(member), descriptor.get()) < 0) {
      return nullptr;
    }
  }
  // The table's classes are immortal, so an address is enough.
  const Ref capsule(PyCapsule_New(const_cast<tavelor_class*>(of), nullptr, nullptr));
  const Ref documentation(PyUnicode_FromString(tavelor_class_documentation(of)));
  const Ref identifier(PyUnicode_FromString(tavelor_class_identifier(of)));
  const Ref module(PyUnicode_FromString("tavelor"));
  const Ref slots(PyTuple_New(0));
  if (!capsule || !documentation || !identifier || !module || !slots ||
      PyDict_SetItemString(content.get(), "_class", capsule.get()) < 0 ||
      PyDict_SetItemString(content.get(), "__doc__", documentation.get()) < 0 ||
      PyDict_SetItemString(content.get(), "identifier", identifier.get()) < 0 ||
      PyDict_SetItemString(content.get(), "__module__", module.get()) < 0 ||
      PyDict_SetItemString(content.get(), "__slots__", slots.get()) < 0) {
    return nullptr;
  }
  return PyObject_CallFunction(reinterpret_cast<PyObject*>(&PyType_Type), "O(O)O", nameObject.get(),
                               bases[kindOf(name)], content.get());
}

}  // namespace

tavelor_object* handleOf(PyObject* object) {
  return PyObject_TypeCheck(object, objectType) ? objectOf(object)->handle : nullptr;
}

PyTypeObject* typeOf(const tavelor_class* of) {
  const Ref key(PyLong_FromVoidPtr(const_cast<tavelor_class*>(of)));
  if (!key) return nullptr;
  PyObject* found = PyDict_GetItemWithError(types, key.get());
  if (found == nullptr && PyErr_Occurred() == nullptr) {
    const Ref made(makeType(of));
    if (!made || PyDict_SetItem(types, key.get(), made.get()) < 0) return nullptr;
    found = made.get();  // the dictionary holds it
  }
  return reinterpret_cast<PyTypeObject*>(found);
}

PyObject* wrap(Apartment* apartment, tavelor_object* handle) {
  const int32_t kind = tavelor_object_kind(handle);
  if (kind < 0) return none();
  const tavelor_class* const of = tavelor_object_class(handle);
  auto* const type = of != nullptr ? typeOf(of) : reinterpret_cast<PyTypeObject*>(bases[kind]);
  PyObject* const made = type != nullptr ? type->tp_alloc(type, 0) : nullptr;
  if (made == nullptr) {
    tavelor_object_release(handle);
    return nullptr;
  }
  objectOf(made)->handle = handle;
  objectOf(made)->apartment = apartment;
  Py_INCREF(apartment);
  return made;
}

bool setBases(PyObject* object, PyObject* recordset, PyObject* connection) {
  PyObject* const given[] = {object, recordset, connection};
  for (int i = 0; i < 3; ++i) {
    if (!PyType_Check(given[i]) ||
        PyType_IsSubtype(reinterpret_cast<PyTypeObject*>(given[i]), objectType) == 0) {
      PyErr_SetString(PyExc_TypeError, "setup: the bases are types of objects");
      return false;
    }
    Py_XSETREF(bases[i], Py_NewRef(given[i]));
  }
  return true;
}

bool addObjects(PyObject* module) {
  types = PyDict_New();
  PyObject* const type = PyType_FromSpec(&objectSpec);
  if (types == nullptr || type == nullptr) return false;
  objectType = reinterpret_cast<PyTypeObject*>(type);
  return PyModule_AddObjectRef(module, "Object", type) == 0 &&
         makeBase(module, "tavelor._native.Recordset", recordsetMethods, recordsetProperties,
                  {Py_tp_iter, slot(iterateRows)}, {Py_mp_length, slot(countRows)}) != nullptr &&
         makeBase(module, "tavelor._native.Connection", connectionMethods, connectionProperties,
                  {Py_tp_hash, slot(PyObject_HashNotImplemented)},
                  {Py_tp_richcompare, slot(compare)}) != nullptr;
}

}  // namespace tavelor::python
