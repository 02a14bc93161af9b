// SPDX-License-Identifier: MIT
// A record set as an Arrow stream: its rows as they are when it is asked for, in batches. Whoever
// reads it may do so on any thread, without Python's lock, and after the shop is closed.
#include "arrow.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "blocks.hpp"
#include "recordsets.hpp"

namespace tavelor::python {

namespace {

constexpr int64_t kBatchRows = 65536;
constexpr int64_t kNullable = 2;

/// A column of one batch, as Arrow lays it down.
struct Column {
  std::vector<uint8_t> validity;
  std::vector<uint64_t> cells;  // so that it is aligned for all
  std::vector<int64_t> offsets;
  std::vector<char> bytes;
  int64_t nulls = 0;
};

/// Some rows.
struct Batch {
  std::vector<Column> columns;
  int64_t rows = 0;
};

/// What a stream hands out.
struct Stream {
  std::vector<std::string> names;
  std::vector<int32_t> types;
  std::deque<std::unique_ptr<Batch>> batches;
};

const char* formatOf(int32_t type) {
  switch (type) {
    case TAVELOR_COLUMN_INT16:
    case TAVELOR_COLUMN_BYTE:
      return "s";
    case TAVELOR_COLUMN_INT32:
      return "i";
    case TAVELOR_COLUMN_SINGLE:
      return "f";
    case TAVELOR_COLUMN_DOUBLE:
      return "g";
    case TAVELOR_COLUMN_MONEY:
      return "d:19,4";
    case TAVELOR_COLUMN_DATE:
      return "tsu:";
    case TAVELOR_COLUMN_BOOLEAN:
      return "b";
    case TAVELOR_COLUMN_BYTES:
      return "Z";
    default:
      return "U";
  }
}

// ---- Schemas

/// A schema's children and texts.
struct SchemaData {
  std::string name;
  std::vector<std::unique_ptr<ArrowSchema>> children;
  std::vector<ArrowSchema*> pointers;
};

void releaseSchema(ArrowSchema* schema) {
  auto* const data = static_cast<SchemaData*>(schema->private_data);
  for (ArrowSchema* child : data->pointers) {
    if (child->release != nullptr) child->release(child);
  }
  delete data;
  schema->release = nullptr;
}

void fillSchema(ArrowSchema& schema, const char* format, const std::string& name, int64_t flags) {
  auto data = std::make_unique<SchemaData>();
  data->name = name;
  schema = {};
  schema.format = format;
  schema.flags = flags;
  schema.name = data->name.c_str();
  schema.private_data = data.release();
  schema.release = releaseSchema;
}

int getSchema(ArrowArrayStream* from, ArrowSchema* schema) {
  const auto& stream = *static_cast<const Stream*>(from->private_data);
  try {
    fillSchema(*schema, "+s", "", 0);
  } catch (const std::bad_alloc&) {
    schema->release = nullptr;
    return ENOMEM;
  }
  try {
    auto& data = *static_cast<SchemaData*>(schema->private_data);
    data.pointers.reserve(stream.names.size());
    for (size_t i = 0; i < stream.names.size(); ++i) {
      data.children.push_back(std::make_unique<ArrowSchema>());
      fillSchema(*data.children.back(), formatOf(stream.types[i]), stream.names[i], kNullable);
      data.pointers.push_back(data.children.back().get());
    }
    schema->n_children = static_cast<int64_t>(data.pointers.size());
    schema->children = data.pointers.data();
  } catch (const std::bad_alloc&) {
    releaseSchema(schema);
    return ENOMEM;
  }
  return 0;
}

// ---- Arrays

/// An array's memory: of a batch, or of one of its columns.
struct ArrayData {
  Column column;
  std::vector<const void*> buffers;
  std::vector<std::unique_ptr<ArrowArray>> children;
  std::vector<ArrowArray*> pointers;
};

void releaseArray(ArrowArray* array) {
  auto* const data = static_cast<ArrayData*>(array->private_data);
  for (ArrowArray* child : data->pointers) {
    // A child may have been moved out and released by whoever has it now.
    if (child->release != nullptr) child->release(child);
  }
  delete data;
  array->release = nullptr;
}

void fillColumn(ArrowArray& array, Column column, int64_t rows, int32_t type) {
  auto data = std::make_unique<ArrayData>();
  data->column = std::move(column);
  const Column& kept = data->column;
  data->buffers.push_back(kept.nulls > 0 ? kept.validity.data() : nullptr);
  if (layoutOf(type, true) == TAVELOR_AS_TEXT) {
    data->buffers.push_back(kept.offsets.data());
    data->buffers.push_back(kept.bytes.data());
  } else {
    data->buffers.push_back(kept.cells.data());
  }
  array = {};
  array.length = rows;
  array.null_count = kept.nulls;
  array.n_buffers = static_cast<int64_t>(data->buffers.size());
  array.buffers = data->buffers.data();
  array.private_data = data.release();
  array.release = releaseArray;
}

int getNext(ArrowArrayStream* from, ArrowArray* array) {
  auto& stream = *static_cast<Stream*>(from->private_data);
  *array = {};  // released: the end
  if (stream.batches.empty()) return 0;
  std::unique_ptr<ArrayData> data;
  try {
    Batch& batch = *stream.batches.front();
    data = std::make_unique<ArrayData>();
    data->pointers.reserve(batch.columns.size());
    data->buffers.push_back(nullptr);
    for (size_t i = 0; i < batch.columns.size(); ++i) {
      data->children.push_back(std::make_unique<ArrowArray>());
      fillColumn(*data->children.back(), std::move(batch.columns[i]), batch.rows, stream.types[i]);
      data->pointers.push_back(data->children.back().get());
    }
    array->length = batch.rows;
    stream.batches.pop_front();
  } catch (const std::bad_alloc&) {
    if (data) {
      for (ArrowArray* child : data->pointers) child->release(child);
    }
    return ENOMEM;
  }
  array->n_buffers = 1;
  array->buffers = data->buffers.data();
  array->n_children = static_cast<int64_t>(data->pointers.size());
  array->children = data->pointers.data();
  array->private_data = data.release();
  array->release = releaseArray;
  return 0;
}

const char* lastError(ArrowArrayStream* /*from*/) {
  return "no memory is left";
}

void releaseStream(ArrowArrayStream* stream) {
  delete static_cast<Stream*>(stream->private_data);
  stream->release = nullptr;
}

void destroyCapsule(PyObject* capsule) {
  auto* const stream =
      static_cast<ArrowArrayStream*>(PyCapsule_GetPointer(capsule, "arrow_array_stream"));
  // Whoever has taken the stream over has left it released.
  if (stream != nullptr && stream->release != nullptr) stream->release(stream);
  delete stream;
}

// ---- Reading

/// Flags a bit each, and money 16 bytes each: what Arrow lays down otherwise than the library.
void packFlags(Column& column, const uint8_t* flags, int64_t rows) {
  column.cells.assign(static_cast<size_t>(rows) / 64 + 1, 0);
  auto* const bytes = reinterpret_cast<uint8_t*>(column.cells.data());
  for (int64_t i = 0; i < rows; ++i) {
    bytes[i / 8] = static_cast<uint8_t>(bytes[i / 8] | (flags[i] != 0 ? 1U << (i % 8) : 0U));
  }
}

void widenMoney(Column& column, const int64_t* money, int64_t rows) {
  column.cells.resize(static_cast<size_t>(rows) * 2);
  for (size_t i = 0; i < static_cast<size_t>(rows); ++i) {
    column.cells[2 * i] = static_cast<uint64_t>(money[i]);
    column.cells[2 * i + 1] = money[i] < 0 ? ~uint64_t{0} : 0;
  }
}

/// How many bytes each column of texts has in some rows.
bool measure(Object* recordset, int64_t first, int64_t rows,
             std::vector<tavelor_column_buffer>& buffers) {
  std::vector<tavelor_column_buffer> texts;
  for (const tavelor_column_buffer& buffer : buffers) {
    if (buffer.as != TAVELOR_AS_TEXT) continue;
    texts.push_back({});
    texts.back().size = sizeof(tavelor_column_buffer);
    texts.back().column = buffer.column;
    texts.back().as = TAVELOR_AS_TEXT;
  }
  int64_t read = 0;
  if (!texts.empty() && !done(recordset->apartment, [&](tavelor_error** error) {
        return tavelor_recordset_read(recordset->handle, first, rows, texts.data(), texts.size(),
                                      &read, error);
      })) {
    return false;
  }
  size_t next = 0;
  for (tavelor_column_buffer& buffer : buffers) {
    if (buffer.as == TAVELOR_AS_TEXT) buffer.capacity = texts[next++].used;
  }
  return true;
}

/// Reads some rows. None with an exception.
std::unique_ptr<Batch> readBatch(Object* recordset, const std::vector<int32_t>& types,
                                 int64_t first, int64_t rows) {
  auto batch = std::make_unique<Batch>();
  batch->rows = rows;
  batch->columns.resize(types.size());
  const auto height = static_cast<size_t>(rows);
  std::vector<tavelor_column_buffer> buffers(types.size());
  for (size_t i = 0; i < types.size(); ++i) {
    buffers[i].size = sizeof buffers[i];
    buffers[i].column = static_cast<int32_t>(i);
    buffers[i].as = layoutOf(types[i], true);
  }
  if (!measure(recordset, first, rows, buffers)) return nullptr;
  std::vector<std::vector<uint64_t>> scratch(types.size());
  for (size_t i = 0; i < types.size(); ++i) {
    Column& column = batch->columns[i];
    column.validity.resize(height / 8 + 1);
    buffers[i].validity = column.validity.data();
    if (buffers[i].as == TAVELOR_AS_TEXT) {
      column.offsets.resize(height + 1);
      column.bytes.resize(buffers[i].capacity + 1);
      buffers[i].offsets = column.offsets.data();
      buffers[i].bytes = column.bytes.data();
      continue;
    }
    const bool isOther = types[i] == TAVELOR_COLUMN_MONEY || types[i] == TAVELOR_COLUMN_BOOLEAN;
    std::vector<uint64_t>& cells = isOther ? scratch[i] : column.cells;
    cells.resize(height * cellSize(buffers[i].as) / sizeof(uint64_t) + 1);
    buffers[i].values = cells.data();
  }
  int64_t read = 0;
  if (!done(recordset->apartment, [&](tavelor_error** error) {
        return tavelor_recordset_read(recordset->handle, first, rows, buffers.data(),
                                      buffers.size(), &read, error);
      })) {
    return nullptr;
  }
  if (read != rows) {
    PyErr_SetString(PyExc_RuntimeError, "__arrow_c_stream__: the set has lost rows meanwhile");
    return nullptr;
  }
  for (size_t i = 0; i < types.size(); ++i) {
    Column& column = batch->columns[i];
    column.nulls = static_cast<int64_t>(buffers[i].null_count);
    if (types[i] == TAVELOR_COLUMN_MONEY) {
      widenMoney(column, reinterpret_cast<const int64_t*>(scratch[i].data()), rows);
    } else if (types[i] == TAVELOR_COLUMN_BOOLEAN) {
      packFlags(column, reinterpret_cast<const uint8_t*>(scratch[i].data()), rows);
    }
  }
  return batch;
}

/// Reads the names of all columns. False with an exception.
bool readNames(Object* recordset, Stream& stream) {
  if (!columnTypes(recordset, stream.types)) return false;
  for (size_t i = 0; i < stream.types.size(); ++i) {
    tavelor_column column = {};
    column.size = sizeof column;
    if (!done(recordset->apartment, [&](tavelor_error** error) {
          return tavelor_recordset_column(recordset->handle, static_cast<int32_t>(i), &column,
                                          error);
        })) {
      return false;
    }
    stream.names.emplace_back(column.name);
  }
  return true;
}

}  // namespace

PyObject* arrowStream(PyObject* self, PyObject* arguments) {
  PyObject* requested = Py_None;  // a wish, which a producer need not grant
  if (!PyArg_ParseTuple(arguments, "|O", &requested)) return nullptr;
  Object* const recordset = objectOf(self);
  try {
    auto stream = std::make_unique<Stream>();
    const Py_ssize_t rows = countRows(self);
    if (rows < 0 || !readNames(recordset, *stream)) return nullptr;
    for (int64_t first = 0; first < rows; first += kBatchRows) {
      auto batch =
          readBatch(recordset, stream->types, first, std::min<int64_t>(kBatchRows, rows - first));
      if (!batch || PyErr_CheckSignals() < 0) return nullptr;
      stream->batches.push_back(std::move(batch));
    }
    auto given = std::make_unique<ArrowArrayStream>();
    given->get_schema = getSchema;
    given->get_next = getNext;
    given->get_last_error = lastError;
    given->release = releaseStream;
    given->private_data = stream.get();
    PyObject* const capsule = PyCapsule_New(given.get(), "arrow_array_stream", destroyCapsule);
    if (capsule != nullptr) {
      given.release();   // NOLINT(bugprone-unused-return-value): the capsule's now
      stream.release();  // NOLINT(bugprone-unused-return-value): the stream's now
    }
    return capsule;
  } catch (const std::bad_alloc&) {
    return PyErr_NoMemory();
  }
}

}  // namespace tavelor::python
