// SPDX-License-Identifier: MIT
// A member of a class as a callable: its parameters are looked up once, its outputs are a tuple.
#include "members.hpp"

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "objects.hpp"
#include "values.hpp"

namespace tavelor::python {

namespace {

constexpr size_t kMostParameters = 64;

PyObject* resultFactory = nullptr;
PyTypeObject* memberType = nullptr;
PyTypeObject* propertyType = nullptr;

/// A parameter as Python's callers see it.
struct Wanted {
  Ref name;
  std::string_view type;
  bool isInput = true;
  bool isOutput = false;
  bool isRequired = false;
  int32_t none = TAVELOR_NULL;  ///< what None becomes
  std::string byDefault;        ///< as Python writes it
};

/// What is looked up once of a member.
struct Shape {
  const tavelor_member* member = nullptr;
  std::vector<Wanted> parameters;
  std::vector<size_t> inputs;  ///< positions among the parameters, as Python's callers count them
  size_t atLeast = 0;          ///< places that every call has, for its outputs
  size_t outputs = 0;
  bool hasResult = false;
  bool givesList = false;
  Ref name;
  Ref owner;
  Ref tuple;  ///< the class of its outputs, made by the first call
};

struct MemberObject {
  PyObject head;
  vectorcallfunc call;
  Shape* shape;
};

Shape& shapeOf(PyObject* self) {
  return *reinterpret_cast<MemberObject*>(self)->shape;
}

/// A connection, a record set or another object; every other type of the table is a value.
bool isObject(std::string_view type) {
  constexpr std::string_view kValues[] = {"String",   "Variant",    "Boolean", "Integer",
                                          "Long",     "Single",     "Double",  "Date",
                                          "Currency", "Collection", "Byte",    "Byte()"};
  for (const std::string_view value : kValues) {
    if (type == value) return false;
  }
  return true;
}

/// As Python writes the value that stands for one left out.
std::string defaultText(const tavelor_parameter& parameter) {
  const tavelor_value& value = parameter.by_default;
  const std::string_view type = parameter.type;
  switch (value.type) {
    case TAVELOR_TEXT: {
      const Ref text(PyUnicode_FromStringAndSize(value.as.text.data,
                                                 static_cast<Py_ssize_t>(value.as.text.size)));
      const Ref written(text ? PyObject_Repr(text.get()) : nullptr);
      const char* const shown = written ? PyUnicode_AsUTF8(written.get()) : nullptr;
      if (shown == nullptr) PyErr_Clear();
      return shown != nullptr ? shown : "''";
    }
    case TAVELOR_BOOLEAN:
      return value.as.boolean != 0 ? "True" : "False";
    case TAVELOR_INT16:
      return std::to_string(value.as.int16);
    case TAVELOR_INT32:
      return std::to_string(value.as.int32);
    case TAVELOR_DOUBLE: {
      const Ref written(PyUnicode_FromFormat("%S", Ref(PyFloat_FromDouble(value.as.number)).get()));
      const char* const shown = written ? PyUnicode_AsUTF8(written.get()) : nullptr;
      return shown != nullptr ? shown : "0.0";
    }
    default:
      break;
  }
  if (type == "String" || type == "Collection") return "''";
  if (type == "Boolean") return "False";
  if (type == "Integer" || type == "Long") return "0";
  if (type == "Double" || type == "Single") return "0.0";
  return "None";
}

/// Reads a member's parameters. An input must be given when it is the first, or stands before all
/// outputs, and is not optional; whoever reads many outputs passes what he knows.
bool readShape(const tavelor_member* member, Shape& shape) {
  shape.member = member;
  shape.name = Ref(PyUnicode_InternFromString(tavelor_member_name(member)));
  const std::string_view result = tavelor_member_result(member);
  shape.hasResult = !result.empty();
  shape.givesList = result == "Collection";
  const size_t count = tavelor_member_parameter_count(member);
  if (!shape.name || count > kMostParameters) {
    if (shape.name) PyErr_Format(PyExc_ImportError, "%U: too many parameters", shape.name.get());
    return false;
  }
  bool outputSeen = false;
  for (size_t i = 0; i < count; ++i) {
    tavelor_parameter parameter = {};
    parameter.size = sizeof parameter;
    tavelor_error* error = nullptr;
    const tavelor_status status = tavelor_member_parameter(member, i, &parameter, &error);
    if (status != TAVELOR_OK) {
      raise(nullptr, status, error);
      return false;
    }
    Wanted wanted;
    wanted.name = Ref(PyUnicode_InternFromString(parameter.name));
    if (!wanted.name) return false;
    wanted.type = parameter.type;
    wanted.isInput = parameter.direction != TAVELOR_OUT;
    // What is optional and goes both ways is a connection or a word that the member only corrects.
    wanted.isOutput =
        parameter.direction == TAVELOR_OUT ||
        (parameter.direction == TAVELOR_INOUT && parameter.optional == 0 && !isObject(wanted.type));
    wanted.isRequired =
        wanted.isInput && parameter.optional == 0 && (shape.inputs.empty() || !outputSeen);
    wanted.none = isObject(wanted.type) ? TAVELOR_EMPTY : TAVELOR_NULL;
    wanted.byDefault = defaultText(parameter);
    if (wanted.isInput) shape.inputs.push_back(i);
    if (wanted.isOutput) {
      outputSeen = true;
      ++shape.outputs;
      shape.atLeast = i + 1;
    }
    if (wanted.isRequired && i >= shape.atLeast) shape.atLeast = i + 1;
    shape.parameters.push_back(std::move(wanted));
  }
  return true;
}

/// A text of a list, a line an entry.
PyObject* lines(PyObject* text) {
  if (text == nullptr || !PyUnicode_Check(text)) return text;
  const Ref held(text);
  if (PyUnicode_GET_LENGTH(text) == 0) return PyList_New(0);
  const Ref end(PyUnicode_FromString("\n"));
  return end ? PyUnicode_Split(text, end.get(), -1) : nullptr;
}

PyObject* output(Apartment* apartment, tavelor_value& value, bool isList) {
  PyObject* const made = fromValue(apartment, value);
  return isList ? lines(made) : made;
}

/// The class of the outputs: "clsArticulos_GetDatos".
PyTypeObject* tupleOf(Shape& shape) {
  if (!shape.tuple) {
    const Ref names(PyList_New(0));
    if (!names) return nullptr;
    if (shape.hasResult) {
      const Ref result(PyUnicode_FromString("result"));
      if (!result || PyList_Append(names.get(), result.get()) < 0) return nullptr;
    }
    for (const Wanted& wanted : shape.parameters) {
      if (wanted.isOutput && PyList_Append(names.get(), wanted.name.get()) < 0) return nullptr;
    }
    shape.tuple = Ref(PyObject_CallFunctionObjArgs(resultFactory, shape.owner.get(),
                                                   shape.name.get(), names.get(), nullptr));
    if (shape.tuple &&
        PyType_IsSubtype(reinterpret_cast<PyTypeObject*>(shape.tuple.get()), &PyTuple_Type) == 0) {
      PyErr_SetString(PyExc_TypeError, "the class of outputs is no tuple");
      shape.tuple = Ref();
    }
  }
  return reinterpret_cast<PyTypeObject*>(shape.tuple.get());
}

/// The arguments of one call: borrowed inputs, and what the member has written into them.
class Arguments {
 public:
  Arguments() = default;
  ~Arguments() {
    for (size_t i = 0; i < count_; ++i) {
      if (values_[i].owned != 0) tavelor_value_clear(&values_[i]);
    }
  }
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;

  /// Makes places up to `count`, Empty ones.
  void reach(size_t count) {
    while (count_ < count) values_[count_++] = tavelor_of_empty();
  }
  tavelor_value& operator[](size_t i) { return values_[i]; }
  tavelor_value* data() { return values_; }
  size_t count() const { return count_; }

 private:
  size_t count_ = 0;
  tavelor_value values_[kMostParameters];  // only what is reached is set
};

bool setInput(Shape& shape, Arguments& arguments, size_t input, PyObject* object) {
  const size_t place = shape.inputs[input];
  const Wanted& wanted = shape.parameters[place];
  arguments.reach(place + 1);
  return toValue(object, wanted.none, {shape.name.get(), wanted.name.get()}, arguments[place]);
}

/// Which input bears a name; -1 with an exception.
Py_ssize_t inputNamed(const Shape& shape, PyObject* name) {
  for (size_t i = 0; i < shape.inputs.size(); ++i) {
    if (shape.parameters[shape.inputs[i]].name.get() == name) return static_cast<Py_ssize_t>(i);
  }
  for (size_t i = 0; i < shape.inputs.size(); ++i) {
    const int differs = PyUnicode_Compare(shape.parameters[shape.inputs[i]].name.get(), name);
    if (differs == 0) return static_cast<Py_ssize_t>(i);
  }
  PyErr_Format(PyExc_TypeError, "%U: no parameter is called %U; the call is %s", shape.name.get(),
               name, tavelor_member_signature(shape.member));
  return -1;
}

bool readArguments(Shape& shape, PyObject* const* given, size_t count, PyObject* names,
                   Arguments& arguments) {
  if (count > shape.inputs.size()) {
    PyErr_Format(PyExc_TypeError, "%U: takes %zu arguments at most, not %zu; the call is %s",
                 shape.name.get(), shape.inputs.size(), count,
                 tavelor_member_signature(shape.member));
    return false;
  }
  arguments.reach(shape.atLeast);
  for (size_t i = 0; i < count; ++i) {
    if (!setInput(shape, arguments, i, given[i])) return false;
  }
  std::array<bool, kMostParameters> isNamed = {};
  const Py_ssize_t named = names != nullptr ? PyTuple_GET_SIZE(names) : 0;
  for (Py_ssize_t i = 0; i < named; ++i) {
    PyObject* const name = PyTuple_GET_ITEM(names, i);
    const Py_ssize_t input = inputNamed(shape, name);
    if (input < 0) return false;
    if (static_cast<size_t>(input) < count) {
      PyErr_Format(PyExc_TypeError, "%U: %U is given twice", shape.name.get(), name);
      return false;
    }
    isNamed[static_cast<size_t>(input)] = true;
    if (!setInput(shape, arguments, static_cast<size_t>(input),
                  given[count + static_cast<size_t>(i)])) {
      return false;
    }
  }
  for (size_t i = count; i < shape.inputs.size(); ++i) {
    const Wanted& wanted = shape.parameters[shape.inputs[i]];
    if (wanted.isRequired && !isNamed[i]) {
      PyErr_Format(PyExc_TypeError, "%U: %U is missing; the call is %s", shape.name.get(),
                   wanted.name.get(), tavelor_member_signature(shape.member));
      return false;
    }
  }
  return true;
}

PyObject* outputsOf(Shape& shape, Apartment* apartment, tavelor_value& result,
                    Arguments& arguments) {
  PyTypeObject* const type = tupleOf(shape);
  if (type == nullptr) return nullptr;
  Ref made(
      type->tp_alloc(type, static_cast<Py_ssize_t>(shape.outputs + (shape.hasResult ? 1 : 0))));
  if (!made) return nullptr;
  Py_ssize_t place = 0;
  if (shape.hasResult) {
    PyObject* const value = output(apartment, result, shape.givesList);
    if (value == nullptr) return nullptr;
    PyTuple_SET_ITEM(made.get(), place++, value);
  }
  for (size_t i = 0; i < shape.parameters.size(); ++i) {
    if (!shape.parameters[i].isOutput) continue;
    PyObject* const value =
        output(apartment, arguments[i], shape.parameters[i].type == "Collection");
    if (value == nullptr) return nullptr;
    PyTuple_SET_ITEM(made.get(), place++, value);
  }
  return made.release();
}

/// A result that is given back when it goes.
struct Result {
  tavelor_value value = tavelor_of_empty();
  Result() = default;
  ~Result() {
    if (value.owned != 0) tavelor_value_clear(&value);
  }
  Result(const Result&) = delete;
  Result& operator=(const Result&) = delete;
};

PyObject* run(Shape& shape, PyObject* self, Arguments& arguments) {
  Object* const object = objectOf(self);
  Result result;
  if (!done(object->apartment, [&](tavelor_error** error) {
        return tavelor_call(object->handle, shape.member, arguments.data(), arguments.count(),
                            shape.hasResult ? &result.value : nullptr, error);
      })) {
    return nullptr;
  }
  if (shape.outputs > 0) return outputsOf(shape, object->apartment, result.value, arguments);
  if (shape.hasResult) return output(object->apartment, result.value, shape.givesList);
  return none();
}

PyObject* callMember(PyObject* self, PyObject* const* given, size_t countAndFlag, PyObject* names) {
  Shape& shape = shapeOf(self);
  const auto count = static_cast<size_t>(PyVectorcall_NARGS(countAndFlag));
  if (count == 0 || !PyObject_TypeCheck(given[0], objectType)) {
    PyErr_Format(PyExc_TypeError, "%U.%U: is called of an object of the class", shape.owner.get(),
                 shape.name.get());
    return nullptr;
  }
  Arguments arguments;
  if (!readArguments(shape, given + 1, count - 1, names, arguments)) return nullptr;
  return run(shape, given[0], arguments);
}

PyObject* bind(PyObject* self, PyObject* object, PyObject* /*type*/) {
  if (object == nullptr || object == Py_None) return Py_NewRef(self);
  return PyMethod_New(self, object);
}

PyObject* readProperty(PyObject* self, PyObject* object, PyObject* /*type*/) {
  if (object == nullptr || object == Py_None) return Py_NewRef(self);
  Arguments arguments;
  return run(shapeOf(self), object, arguments);
}

int writeProperty(PyObject* self, PyObject* object, PyObject* value) {
  Shape& shape = shapeOf(self);
  if (value == nullptr || shape.inputs.empty()) {
    PyErr_Format(PyExc_AttributeError, "%U.%U: can only be read", shape.owner.get(),
                 shape.name.get());
    return -1;
  }
  Arguments arguments;
  if (!setInput(shape, arguments, 0, value)) return -1;
  const Ref done(run(shape, object, arguments));
  return done ? 0 : -1;
}

void dealloc(PyObject* self) {
  PyTypeObject* const type = Py_TYPE(self);
  PyObject_GC_UnTrack(self);
  delete reinterpret_cast<MemberObject*>(self)->shape;
  type->tp_free(self);
  Py_DECREF(type);
}

int traverse(PyObject* self, visitproc visit, void* arg) {
  Py_VISIT(Py_TYPE(self));
  const Shape* const shape = reinterpret_cast<MemberObject*>(self)->shape;
  if (shape != nullptr) Py_VISIT(shape->tuple.get());
  return 0;
}

PyObject* nameOf(PyObject* self, void* /*none*/) {
  return Py_NewRef(shapeOf(self).name.get());
}

PyObject* qualifiedName(PyObject* self, void* /*none*/) {
  return PyUnicode_FromFormat("%U.%U", shapeOf(self).owner.get(), shapeOf(self).name.get());
}

PyObject* documentation(PyObject* self, void* /*none*/) {
  const tavelor_member* const member = shapeOf(self).member;
  const char* const text = tavelor_member_documentation(member);
  return PyUnicode_FromFormat(text[0] != '\0' ? "%s\n\n%s" : "%s", tavelor_member_signature(member),
                              text);
}

PyObject* signature(PyObject* self, void* /*none*/) {
  return PyUnicode_FromString(tavelor_member_signature(shapeOf(self).member));
}

/// As inspect.signature() reads it.
PyObject* textSignature(PyObject* self, void* /*none*/) {
  const Shape& shape = shapeOf(self);
  std::string text = "($self, /";
  bool isLeftOut = false;
  for (const size_t input : shape.inputs) {
    const Wanted& wanted = shape.parameters[input];
    isLeftOut = isLeftOut || !wanted.isRequired;
    text += std::string(", ") + PyUnicode_AsUTF8(wanted.name.get());
    if (isLeftOut) text += "=" + wanted.byDefault;
  }
  text += ")";
  return PyUnicode_FromString(text.c_str());
}

PyObject* show(PyObject* self) {
  return PyUnicode_FromFormat("<member %s of %U>", tavelor_member_signature(shapeOf(self).member),
                              shapeOf(self).owner.get());
}

PyGetSetDef memberProperties[] = {{"__name__", nameOf, nullptr, nullptr, nullptr},
                                  {"__qualname__", qualifiedName, nullptr, nullptr, nullptr},
                                  {"__doc__", documentation, nullptr, nullptr, nullptr},
                                  {"__text_signature__", textSignature, nullptr, nullptr, nullptr},
                                  {"signature", signature, nullptr, nullptr, nullptr},
                                  {nullptr, nullptr, nullptr, nullptr, nullptr}};
PyMemberDef memberMembers[] = {
    {"__vectorcalloffset__", T_PYSSIZET, offsetof(MemberObject, call), READONLY, nullptr},
    {nullptr, 0, 0, 0, nullptr}};
PyType_Slot memberSlots[] = {{Py_tp_call, slot(PyVectorcall_Call)},
                             {Py_tp_descr_get, slot(bind)},
                             {Py_tp_dealloc, slot(dealloc)},
                             {Py_tp_traverse, slot(traverse)},
                             {Py_tp_repr, slot(show)},
                             {Py_tp_getset, memberProperties},
                             {Py_tp_members, memberMembers},
                             {0, nullptr}};
PyType_Spec memberSpec = {"tavelor._native.Member", sizeof(MemberObject), 0,
                          Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC | Py_TPFLAGS_HAVE_VECTORCALL |
                              Py_TPFLAGS_METHOD_DESCRIPTOR | Py_TPFLAGS_DISALLOW_INSTANTIATION,
                          memberSlots};
PyType_Slot propertySlots[] = {{Py_tp_descr_get, slot(readProperty)},
                               {Py_tp_descr_set, slot(writeProperty)},
                               {Py_tp_dealloc, slot(dealloc)},
                               {Py_tp_traverse, slot(traverse)},
                               {Py_tp_repr, slot(show)},
                               {Py_tp_getset, memberProperties},
                               {0, nullptr}};
PyType_Spec propertySpec = {
    "tavelor._native.Property", sizeof(MemberObject), 0,
    Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC | Py_TPFLAGS_DISALLOW_INSTANTIATION, propertySlots};

/// (name, type, is input, is output, is required, default as Python writes it) of each parameter.
Ref describeParameters(const Shape& shape) {
  Ref parameters(PyList_New(0));
  for (const Wanted& wanted : shape.parameters) {
    const Ref entry(Py_BuildValue("Os#iiis", wanted.name.get(), wanted.type.data(),
                                  static_cast<Py_ssize_t>(wanted.type.size()), wanted.isInput,
                                  wanted.isOutput, wanted.isRequired, wanted.byDefault.c_str()));
    if (!entry || PyList_Append(parameters.get(), entry.get()) < 0) return Ref();
  }
  return parameters;
}

}  // namespace

void setResultFactory(PyObject* factory) {
  Py_XSETREF(resultFactory, Py_NewRef(factory));
}

PyObject* memberObject(const tavelor_member* member, PyObject* owner) {
  auto shape = std::make_unique<Shape>();
  if (!readShape(member, *shape)) return nullptr;
  shape->owner = Ref::to(owner);
  // A property that cannot be read without an argument is called like any member.
  bool isProperty = tavelor_member_is_property(member) != 0;
  for (const Wanted& wanted : shape->parameters) isProperty = isProperty && !wanted.isRequired;
  PyTypeObject* const type = isProperty ? propertyType : memberType;
  PyObject* const made = type->tp_alloc(type, 0);
  if (made == nullptr) return nullptr;
  auto* const object = reinterpret_cast<MemberObject*>(made);
  object->call = callMember;
  object->shape = shape.release();
  return made;
}

PyObject* describe(const tavelor_class* of) {
  const Ref members(PyList_New(0));
  const size_t count = tavelor_class_member_count(of);
  for (size_t i = 0; members && i < count; ++i) {
    const tavelor_member* const member = tavelor_class_member_at(of, i);
    Shape shape;
    if (!readShape(member, shape)) return nullptr;
    const Ref parameters = describeParameters(shape);
    if (!parameters) return nullptr;
    const Ref entry(Py_BuildValue("sisssO", tavelor_member_name(member),
                                  tavelor_member_is_property(member), tavelor_member_result(member),
                                  tavelor_member_signature(member),
                                  tavelor_member_documentation(member), parameters.get()));
    if (!entry || PyList_Append(members.get(), entry.get()) < 0) return nullptr;
  }
  if (!members) return nullptr;
  return Py_BuildValue("ssssO", tavelor_class_name(of), tavelor_class_identifier(of),
                       tavelor_class_word(of), tavelor_class_documentation(of), members.get());
}

bool addMembers(PyObject* module) {
  PyObject* const member = PyType_FromSpec(&memberSpec);
  PyObject* const property = PyType_FromSpec(&propertySpec);
  if (member == nullptr || property == nullptr) return false;
  memberType = reinterpret_cast<PyTypeObject*>(member);
  propertyType = reinterpret_cast<PyTypeObject*>(property);
  return PyModule_AddObjectRef(module, "Member", member) == 0 &&
         PyModule_AddObjectRef(module, "Property", property) == 0;
}

}  // namespace tavelor::python
