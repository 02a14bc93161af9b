// SPDX-License-Identifier: MIT
// Many rows of a record set at once: as rows of Python's, and as columns of numpy's.
#include "blocks.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string_view>

#include "recordsets.hpp"
#include "values.hpp"

namespace tavelor::python {

namespace {

constexpr int64_t kIteratedRows = 256;
// As many as the processor's cache holds of a wide table; a multiple of 8, for the bits.
constexpr int64_t kColumnRows = 2048;
constexpr size_t kFirstText = 16;  // bytes of a cell that a block begins with

Object* asObject(PyObject* self) {
  return objectOf(self);
}

}  // namespace

int32_t layoutOf(int32_t type, bool datesAsMicroseconds) {
  switch (type) {
    case TAVELOR_COLUMN_INT16:
    case TAVELOR_COLUMN_BYTE:
      return TAVELOR_AS_INT16;
    case TAVELOR_COLUMN_INT32:
      return TAVELOR_AS_INT32;
    case TAVELOR_COLUMN_SINGLE:
      return TAVELOR_AS_SINGLE;
    case TAVELOR_COLUMN_DOUBLE:
      return TAVELOR_AS_DOUBLE;
    case TAVELOR_COLUMN_MONEY:
      return TAVELOR_AS_INT64;
    case TAVELOR_COLUMN_DATE:
      return datesAsMicroseconds ? TAVELOR_AS_UNIX_US : TAVELOR_AS_DOUBLE;
    case TAVELOR_COLUMN_BOOLEAN:
      return TAVELOR_AS_BOOL8;
    default:
      return TAVELOR_AS_TEXT;
  }
}

size_t cellSize(int32_t as) {
  switch (as) {
    case TAVELOR_AS_BOOL8:
      return 1;
    case TAVELOR_AS_INT16:
      return 2;
    case TAVELOR_AS_INT32:
    case TAVELOR_AS_UNIX_DAY:
    case TAVELOR_AS_SINGLE:
      return 4;
    case TAVELOR_AS_TEXT:
      return 0;
    default:
      return 8;
  }
}

Block::Block(std::vector<BlockColumn> columns, int64_t rows)
    : columns_(std::move(columns)), rows_(rows) {
  const auto height = static_cast<size_t>(rows);
  const size_t count = columns_.size();
  cells_.resize(count);
  validity_.resize(count);
  offsets_.resize(count);
  texts_.resize(count);
  buffers_.resize(count);
  for (size_t i = 0; i < count; ++i) {
    tavelor_column_buffer& buffer = buffers_[i];
    buffer = {};
    buffer.size = sizeof buffer;
    buffer.column = columns_[i].column;
    buffer.as = columns_[i].as;
    validity_[i].resize(height / 8 + 1);
    buffer.validity = validity_[i].data();
    if (buffer.as == TAVELOR_AS_TEXT) {
      offsets_[i].resize(height + 1);
      texts_[i].resize(height * kFirstText);
      buffer.offsets = offsets_[i].data();
    } else {
      cells_[i].resize(height * cellSize(buffer.as) / sizeof(double) + 1);
      buffer.values = cells_[i].data();
    }
  }
}

int64_t Block::read(Object* recordset, int64_t first) {
  for (;;) {
    for (size_t i = 0; i < columns_.size(); ++i) {
      if (columns_[i].as != TAVELOR_AS_TEXT) continue;
      buffers_[i].bytes = texts_[i].data();
      buffers_[i].capacity = texts_[i].size();
    }
    int64_t found = 0;
    if (!done(recordset->apartment, [&](tavelor_error** error) {
          return tavelor_recordset_read(recordset->handle, first, rows_, buffers_.data(),
                                        buffers_.size(), &found, error);
        })) {
      return -1;
    }
    // Fewer rows than asked for: the last ones, or texts had no room. More room, and once more.
    bool hasGrown = false;
    if (found < rows_) {
      Object* const object = recordset;
      int32_t all = 0;
      if (!done(object->apartment, [&](tavelor_error** error) {
            return tavelor_recordset_where(object->handle, nullptr, nullptr, &all, nullptr, error);
          })) {
        return -1;
      }
      if (first + found >= all) return found;
      for (size_t i = 0; i < columns_.size(); ++i) {
        if (columns_[i].as != TAVELOR_AS_TEXT) continue;
        texts_[i].resize(std::max(texts_[i].size() * 2, buffers_[i].used * 2));
        hasGrown = true;
      }
    }
    if (!hasGrown) return found;
  }
}

bool columnTypes(Object* recordset, std::vector<int32_t>& types) {
  int32_t count = 0;
  if (!done(recordset->apartment, [&](tavelor_error** error) {
        return tavelor_recordset_column_count(recordset->handle, &count, error);
      })) {
    return false;
  }
  types.resize(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; ++i) {
    tavelor_column column = {};
    column.size = sizeof column;
    if (!done(recordset->apartment, [&](tavelor_error** error) {
          return tavelor_recordset_column(recordset->handle, i, &column, error);
        })) {
      return false;
    }
    types[static_cast<size_t>(i)] = column.type;
  }
  return true;
}

namespace {

/// All columns of a set, in the layouts that rows are made from.
bool allColumns(Object* recordset, std::vector<BlockColumn>& columns) {
  std::vector<int32_t> types;
  if (!columnTypes(recordset, types)) return false;
  for (size_t i = 0; i < types.size(); ++i) {
    columns.push_back({static_cast<int32_t>(i), types[i], layoutOf(types[i], false)});
  }
  return true;
}

/// One cell of a block as Python has it.
PyObject* cellOf(const Block& block, size_t column, int64_t row) {
  if (block.isNull(column, row)) return none();
  const BlockColumn& of = block.columns()[column];
  switch (of.as) {
    case TAVELOR_AS_BOOL8:
      return PyBool_FromLong(block.cells<uint8_t>(column)[row]);
    case TAVELOR_AS_INT16:
      return PyLong_FromLong(block.cells<int16_t>(column)[row]);
    case TAVELOR_AS_INT32:
      return PyLong_FromLong(block.cells<int32_t>(column)[row]);
    case TAVELOR_AS_INT64:
      return fromMoney(block.cells<int64_t>(column)[row]);
    case TAVELOR_AS_SINGLE:
      return PyFloat_FromDouble(static_cast<double>(block.cells<float>(column)[row]));
    case TAVELOR_AS_DOUBLE: {
      const double number = block.cells<double>(column)[row];
      return of.type == TAVELOR_COLUMN_DATE ? fromDate(number) : PyFloat_FromDouble(number);
    }
    default: {
      Py_ssize_t size = 0;
      const char* const text = block.text(column, row, size);
      return of.type == TAVELOR_COLUMN_BYTES ? PyBytes_FromStringAndSize(text, size)
                                             : PyUnicode_DecodeUTF8(text, size, "replace");
    }
  }
}

PyObject* rowOf(PyTypeObject* type, const Block& block, int64_t row) {
  const size_t count = block.columns().size();
  Ref made(type->tp_alloc(type, static_cast<Py_ssize_t>(count)));
  for (size_t i = 0; made && i < count; ++i) {
    PyObject* const cell = cellOf(block, i, row);
    if (cell == nullptr) return nullptr;
    PyTuple_SET_ITEM(made.get(), static_cast<Py_ssize_t>(i), cell);
  }
  return made.release();
}

/// Rows of a view one after the other, a block at a time. The cursor stays.
struct Rows {
  PyObject head;
  PyObject* recordset;
  PyObject* rowType;
  Block* block;
  int64_t first;  ///< row that the block begins with
  int64_t read;   ///< rows in the block
  int64_t next;   ///< row of the block that comes next
};

PyTypeObject* rowsType = nullptr;

Rows* rowsOf(PyObject* self) {
  return reinterpret_cast<Rows*>(self);
}

PyObject* nextRow(PyObject* self) {
  Rows* const rows = rowsOf(self);
  if (rows->block == nullptr) return nullptr;
  if (rows->next == rows->read) {
    if (rows->read < rows->block->rows() && rows->first >= 0) return nullptr;
    rows->first = rows->first < 0 ? 0 : rows->first + rows->read;
    rows->next = 0;
    // Another thread may have a look at it meanwhile, and finds nothing.
    std::unique_ptr<Block> mine(std::exchange(rows->block, nullptr));
    rows->read = 0;
    int64_t read = -1;
    try {
      read = mine->read(asObject(rows->recordset), rows->first);
    } catch (const std::bad_alloc&) {
      PyErr_NoMemory();
    }
    if (read < 0) return nullptr;
    rows->read = read;
    rows->block = mine.release();
    if (read == 0) return nullptr;
  }
  return rowOf(reinterpret_cast<PyTypeObject*>(rows->rowType), *rows->block, rows->next++);
}

int traverseRows(PyObject* self, visitproc visit, void* arg) {
  Py_VISIT(Py_TYPE(self));
  Py_VISIT(rowsOf(self)->recordset);
  Py_VISIT(rowsOf(self)->rowType);
  return 0;
}

void deallocRows(PyObject* self) {
  PyTypeObject* const type = Py_TYPE(self);
  PyObject_GC_UnTrack(self);
  delete rowsOf(self)->block;
  Py_CLEAR(rowsOf(self)->recordset);
  Py_CLEAR(rowsOf(self)->rowType);
  type->tp_free(self);
  Py_DECREF(type);
}

PyType_Slot rowsSlots[] = {{Py_tp_iter, slot(PyObject_SelfIter)},
                           {Py_tp_iternext, slot(nextRow)},
                           {Py_tp_traverse, slot(traverseRows)},
                           {Py_tp_dealloc, slot(deallocRows)},
                           {0, nullptr}};
PyType_Spec rowsSpec = {"tavelor._native.Rows", sizeof(Rows), 0,
                        Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC | Py_TPFLAGS_DISALLOW_INSTANTIATION,
                        rowsSlots};

/// The texts of a column, of which many are the same: each is made once, as long as it is seen
/// again soon.
class Texts {
 public:
  Texts() = default;
  ~Texts() {
    for (Entry& entry : entries_) Py_XDECREF(entry.text);
  }
  Texts(const Texts&) = delete;
  Texts& operator=(const Texts&) = delete;

  PyObject* make(const char* data, Py_ssize_t size) {
    if (size == 0) return PyUnicode_New(0, 0);
    if (size > kLongest) return PyUnicode_DecodeUTF8(data, size, "replace");
    uint64_t words[2] = {};
    std::memcpy(words, data, static_cast<size_t>(size));
    const uint64_t mixed =
        (words[0] ^ (words[1] * 0x9E3779B97F4A7C15U) ^ static_cast<uint64_t>(size)) *
        0xD6E8FEB86659FD93U;
    Entry& entry = entries_[mixed >> (64 - kBits)];
    if (entry.text == nullptr || entry.size != size || entry.words[0] != words[0] ||
        entry.words[1] != words[1]) {
      PyObject* const made = PyUnicode_DecodeUTF8(data, size, "replace");
      if (made == nullptr) return nullptr;
      Py_XSETREF(entry.text, made);
      entry.size = size;
      entry.words[0] = words[0];
      entry.words[1] = words[1];
    }
    return Py_NewRef(entry.text);
  }

 private:
  static constexpr Py_ssize_t kLongest = 16;
  static constexpr int kBits = 8;
  struct Entry {
    PyObject* text = nullptr;
    Py_ssize_t size = 0;
    uint64_t words[2] = {};
  };
  std::array<Entry, 1U << kBits> entries_;
};

/// Memory of a Python object, given back when it goes.
class Memory {
 public:
  Memory() = default;
  ~Memory() {
    if (isHeld_) PyBuffer_Release(&view_);
  }
  Memory(const Memory&) = delete;
  Memory& operator=(const Memory&) = delete;

  bool take(PyObject* object, size_t bytes) {
    isHeld_ =
        PyObject_GetBuffer(object, &view_, PyBUF_WRITABLE | PyBUF_C_CONTIGUOUS | PyBUF_FORMAT) == 0;
    if (isHeld_ && static_cast<size_t>(view_.len) < bytes) {
      PyErr_SetString(PyExc_ValueError, "read_columns: a buffer is too small");
      return false;
    }
    return isHeld_;
  }
  char* data() const { return static_cast<char*>(view_.buf); }
  size_t size() const { return static_cast<size_t>(view_.len); }

 private:
  Py_buffer view_ = {};
  bool isHeld_ = false;
};

/// Where one column of read_columns() goes: numbers into memory of the caller's, texts into a
/// bytearray that grows.
struct Destination {
  Memory values;
  Memory validity;
  bool hasValidity = false;
  Memory offsets;
  PyObject* bytes = nullptr;  ///< borrowed from the wish; of texts only
  size_t used = 0;
  size_t nulls = 0;
};

bool readDestinations(PyObject* wishes, int64_t rows, std::vector<tavelor_column_buffer>& buffers,
                      std::vector<std::unique_ptr<Destination>>& to) {
  const auto height = static_cast<size_t>(rows);
  for (Py_ssize_t i = 0; i < PyList_GET_SIZE(wishes); ++i) {
    tavelor_column_buffer buffer = {};
    buffer.size = sizeof buffer;
    PyObject* values = nullptr;
    PyObject* validity = nullptr;
    PyObject* offsets = nullptr;
    PyObject* const wish = PyList_GET_ITEM(wishes, i);
    if (!PyTuple_Check(wish) || !PyArg_ParseTuple(wish, "iiOOO", &buffer.column, &buffer.as,
                                                  &values, &validity, &offsets)) {
      if (PyErr_Occurred() == nullptr) {
        PyErr_SetString(PyExc_TypeError, "read_columns: wants tuples");
      }
      return false;
    }
    auto destination = std::make_unique<Destination>();
    if (buffer.as == TAVELOR_AS_TEXT) {
      if (!PyByteArray_Check(values)) {
        PyErr_SetString(PyExc_TypeError, "read_columns: texts go into a bytearray");
        return false;
      }
      destination->bytes = values;
      if (!destination->offsets.take(offsets, (height + 1) * sizeof(int64_t))) return false;
    } else if (!destination->values.take(values, height * cellSize(buffer.as))) {
      return false;
    }
    destination->hasValidity = validity != Py_None;
    if (destination->hasValidity && !destination->validity.take(validity, (height + 7) / 8)) {
      return false;
    }
    buffers.push_back(buffer);
    to.push_back(std::move(destination));
  }
  return true;
}

/// Points the buffers to where a block of rows goes.
void aim(std::vector<tavelor_column_buffer>& buffers,
         const std::vector<std::unique_ptr<Destination>>& to, size_t first) {
  for (size_t i = 0; i < to.size(); ++i) {
    const Destination& at = *to[i];
    if (at.hasValidity) {
      buffers[i].validity = reinterpret_cast<uint8_t*>(at.validity.data()) + first / 8;
    }
    if (at.bytes == nullptr) {
      buffers[i].values = at.values.data() + first * cellSize(buffers[i].as);
      continue;
    }
    buffers[i].offsets = reinterpret_cast<int64_t*>(at.offsets.data()) + first;
    buffers[i].bytes = PyByteArray_AS_STRING(at.bytes) + at.used;
    buffers[i].capacity = static_cast<size_t>(PyByteArray_GET_SIZE(at.bytes)) - at.used;
  }
}

/// Makes room for texts: a half more than what the rows so far let expect. False with an exception.
bool makeRoom(const std::vector<tavelor_column_buffer>& buffers,
              std::vector<std::unique_ptr<Destination>>& to, int64_t first, int64_t rows) {
  for (size_t i = 0; i < to.size(); ++i) {
    Destination& at = *to[i];
    if (at.bytes == nullptr) continue;
    const auto size = static_cast<size_t>(PyByteArray_GET_SIZE(at.bytes));
    const auto expected =
        first > 0 ? static_cast<size_t>(static_cast<double>(at.used) * 1.5 *
                                        static_cast<double>(rows) / static_cast<double>(first))
                  : size * 2;
    const size_t wanted =
        std::max({expected, at.used + buffers[i].used * 2, size * 5 / 4, kFirstText});
    if (PyByteArray_Resize(at.bytes, static_cast<Py_ssize_t>(wanted)) < 0) return false;
  }
  return true;
}

/// Reads `rows` rows into their destinations, a block at a time, so that Ctrl-C is heard. False
/// with an exception.
bool fill(Object* recordset, int64_t rows, std::vector<tavelor_column_buffer>& buffers,
          std::vector<std::unique_ptr<Destination>>& to) {
  for (int64_t first = 0; first < rows;) {
    const int64_t wanted = std::min(kColumnRows, rows - first);
    aim(buffers, to, static_cast<size_t>(first));
    int64_t read = 0;
    if (!done(recordset->apartment, [&](tavelor_error** error) {
          return tavelor_recordset_read(recordset->handle, first, wanted, buffers.data(),
                                        buffers.size(), &read, error);
        })) {
      return false;
    }
    if (read < wanted) {
      if (countRows(reinterpret_cast<PyObject*>(recordset)) < rows) {
        if (PyErr_Occurred() == nullptr) {
          PyErr_SetString(PyExc_RuntimeError, "read_columns: the set has lost rows meanwhile");
        }
        return false;
      }
      if (!makeRoom(buffers, to, first, rows)) return false;
      continue;
    }
    for (size_t i = 0; i < to.size(); ++i) {
      to[i]->nulls += buffers[i].null_count;
      if (to[i]->bytes == nullptr) continue;
      const auto before = static_cast<int64_t>(to[i]->used);
      for (int64_t row = 0; row <= read; ++row) buffers[i].offsets[row] += before;
      to[i]->used += buffers[i].used;
    }
    first += read;
    if (PyErr_CheckSignals() < 0) return false;
  }
  for (const std::unique_ptr<Destination>& at : to) {
    if (at->bytes == nullptr) continue;
    if (rows == 0) *reinterpret_cast<int64_t*>(at->offsets.data()) = 0;
    if (PyByteArray_Resize(at->bytes, static_cast<Py_ssize_t>(at->used)) < 0) return false;
  }
  return true;
}

}  // namespace

bool addBlocks(PyObject* module) {
  PyObject* const type = PyType_FromSpec(&rowsSpec);
  if (type == nullptr) return false;
  rowsType = reinterpret_cast<PyTypeObject*>(type);
  return PyModule_AddObjectRef(module, "Rows", type) == 0;
}

PyObject* iterateRows(PyObject* self) {
  Object* const recordset = asObject(self);
  PyTypeObject* const rowType = rowTypeOf(recordset);
  std::vector<BlockColumn> columns;
  if (rowType == nullptr || !allColumns(recordset, columns)) return nullptr;
  Ref made(rowsType->tp_alloc(rowsType, 0));
  if (!made) return nullptr;
  Rows* const rows = rowsOf(made.get());
  rows->recordset = Py_NewRef(self);
  rows->rowType = Py_NewRef(reinterpret_cast<PyObject*>(rowType));
  rows->block = new Block(std::move(columns), kIteratedRows);
  rows->first = -1;
  return made.release();
}

PyObject* rowAt(PyObject* self, PyObject* position) {
  Object* const recordset = asObject(self);
  const Py_ssize_t first = PyNumber_AsSsize_t(position, PyExc_IndexError);
  if (first == -1 && PyErr_Occurred() != nullptr) return nullptr;
  PyTypeObject* const rowType = rowTypeOf(recordset);
  std::vector<BlockColumn> columns;
  if (rowType == nullptr || !allColumns(recordset, columns)) return nullptr;
  Block block(std::move(columns), 1);
  const int64_t read = first < 0 ? 0 : block.read(recordset, first);
  if (read < 0) return nullptr;
  if (read == 0) {
    PyErr_Format(PyExc_IndexError, "there is no row %zd", first);
    return nullptr;
  }
  return rowOf(rowType, block, 0);
}

PyObject* readColumns(PyObject* self, PyObject* arguments) {
  PyObject* wishes = nullptr;
  Py_ssize_t rows = 0;
  if (!PyArg_ParseTuple(arguments, "nO!", &rows, &PyList_Type, &wishes)) return nullptr;
  std::vector<tavelor_column_buffer> buffers;
  std::vector<std::unique_ptr<Destination>> to;
  try {
    if (!readDestinations(wishes, rows, buffers, to) || !fill(asObject(self), rows, buffers, to)) {
      return nullptr;
    }
  } catch (const std::bad_alloc&) {
    return PyErr_NoMemory();
  }
  Ref nulls(PyList_New(static_cast<Py_ssize_t>(to.size())));
  for (size_t i = 0; nulls && i < to.size(); ++i) {
    PyObject* const count = PyLong_FromSize_t(to[i]->nulls);
    if (count == nullptr) return nullptr;
    PyList_SET_ITEM(nulls.get(), static_cast<Py_ssize_t>(i), count);
  }
  return nulls.release();
}

PyObject* makeTexts(PyObject* /*module*/, PyObject* arguments) {
  PyObject* bytes = nullptr;
  PyObject* offsetsObject = nullptr;
  PyObject* validityObject = nullptr;
  PyObject* array = nullptr;
  int isBytes = 0;
  if (!PyArg_ParseTuple(arguments, "YOOOp", &bytes, &offsetsObject, &validityObject, &array,
                        &isBytes)) {
    return nullptr;
  }
  Memory offsets;
  Memory validity;
  Memory objects;
  if (!offsets.take(offsetsObject, sizeof(int64_t)) || !objects.take(array, 0)) return nullptr;
  const size_t rows = offsets.size() / sizeof(int64_t) - 1;
  const bool mayBeNull = validityObject != Py_None;
  if (objects.size() != rows * sizeof(PyObject*)) {
    PyErr_SetString(PyExc_ValueError, "make_texts: the array is not as long as the column");
    return nullptr;
  }
  if (mayBeNull && !validity.take(validityObject, (rows + 7) / 8)) return nullptr;
  const auto* const from = reinterpret_cast<const int64_t*>(offsets.data());
  const auto* const bits = reinterpret_cast<const uint8_t*>(validity.data());
  auto* const to = reinterpret_cast<PyObject**>(objects.data());
  const char* const data = PyByteArray_AS_STRING(bytes);
  if (from[0] < 0 || from[rows] > PyByteArray_GET_SIZE(bytes)) {
    PyErr_SetString(PyExc_ValueError, "make_texts: the offsets are beyond the bytes");
    return nullptr;
  }
  const auto texts = std::make_unique<Texts>();
  for (size_t row = 0; row < rows; ++row) {
    PyObject* made = nullptr;
    const Py_ssize_t size = from[row + 1] - from[row];
    if (mayBeNull && (bits[row / 8] >> (row % 8) & 1) == 0) {
      made = none();
    } else {
      made = isBytes != 0 ? PyBytes_FromStringAndSize(data + from[row], size)
                          : texts->make(data + from[row], size);
    }
    if (made == nullptr) return nullptr;
    PyObject* const old = to[row];
    to[row] = made;
    Py_XDECREF(old);
  }
  return none();
}

}  // namespace tavelor::python
