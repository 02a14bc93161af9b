// SPDX-License-Identifier: MIT
// The process that reads a database file. The library reads pages, definitions and rows; long
// values and texts are read here, since the library cuts or mends them without a word.
#include "tools/old_database_reader.hpp"

#include <algorithm>
#include <csignal>
#include <stdexcept>
#include <tuple>
#include <unordered_map>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <mdbtools.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include "tools/old_database.hpp"

namespace tavelor::tools::old_database {

namespace {

constexpr std::size_t kBuffer = std::size_t{64} << 10U;
// Flags of a row's place, and the place itself.
constexpr int kMovedAway = 0x4000;
constexpr int kPlaceMask = 0x1FFF;
// The two highest bits of a long value's size tell where it lies.
constexpr std::uint32_t kInItsRow = 0x8000'0000;
constexpr std::uint32_t kInOneRow = 0x4000'0000;
constexpr std::uint32_t kSizeMask = 0x3FFF'FFFF;
constexpr std::uint32_t kNotKept = 2;  // of a relation: drawn only

/// Damage, or what is not read. What the parent tells of it.
class ReadFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Messages on their way to the parent. When nobody reads them any more, the process ends.
class Outlet {
 public:
  explicit Outlet(int socket) : socket_(socket) {}
  void send(Message kind, std::string_view text) {
    buffer_ += static_cast<char>(kind);
    putText(buffer_, text);
    if (buffer_.size() > kBuffer) flush();
  }
  void flush() {
    std::string_view rest = buffer_;
    while (!rest.empty()) {
      const ssize_t written = ::send(socket_, rest.data(), rest.size(), MSG_NOSIGNAL);
      if (written <= 0) _exit(1);
      rest.remove_prefix(static_cast<std::size_t>(written));
    }
    buffer_.clear();
  }

 private:
  int socket_;
  std::string buffer_;
};

/// A part of a page, which must lie inside of it.
std::string_view partOf(const MdbHandle& file, const void* page, int start, std::size_t size) {
  const auto end = static_cast<std::size_t>(file.fmt->pg_size);
  if (start < 0 || size > end || static_cast<std::size_t>(start) > end - size) {
    throw ReadFault("a value lies outside of its page");
  }
  return {static_cast<const char*>(page) + start, size};
}

template <typename T>
T plain(std::string_view bytes) {
  if (bytes.size() < sizeof(T)) throw ReadFault("a value is too short");
  T value;
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

// ---------------------------------------------------------------------------------------------
// Values

/// A text of Jet 4 is UTF-16. Behind a mark only the lower halves of characters are written, until
/// a NUL tells that the next ones are whole, and so on by turns.
std::string utf16Of(std::string_view text) {
  if (text.size() < 2 || text.substr(0, 2) != "\xFF\xFE") return std::string(text);
  std::string whole;
  bool isShort = true;
  for (std::size_t i = 2; i < text.size();) {
    if (text[i] == '\0') {
      isShort = !isShort;
      ++i;
    } else if (isShort) {
      whole += text[i++];
      whole += '\0';
    } else {
      whole += text.substr(i, 2);
      i += 2;
    }
  }
  return whole;
}

/// Of the texts of Jet 3, whose first page names it.
std::string codePageOf(const MdbHandle& file) {
  constexpr unsigned kWestern = 1252;
  return fmt::format("CP{}", file.f->code_page == 0 ? kWestern : file.f->code_page);
}

std::string decoded(const MdbHandle& file, std::string_view text) {
  const bool isJet3 = file.f->jet_version == MDB_VER_JET3;
  const std::string bytes = isJet3 ? std::string(text) : utf16Of(text);
  GError* error = nullptr;
  gsize size = 0;
  gchar* const made =
      g_convert(bytes.data(), static_cast<gssize>(bytes.size()), "UTF-8",
                isJet3 ? codePageOf(file).c_str() : "UTF-16LE", nullptr, &size, &error);
  if (made == nullptr) {
    g_error_free(error);
    throw ReadFault("bytes that are no text");
  }
  std::string utf8(made, size);
  g_free(made);
  return utf8;
}

/// The bytes of a long value, from its row and the chain of rows that may hold the rest.
std::string longValue(MdbHandle& file, std::string_view head) {
  constexpr std::size_t kHead = 12;
  const auto told = plain<std::uint32_t>(head);
  auto place = plain<std::uint32_t>(head.substr(4));
  if (head.size() < kHead) throw ReadFault("a value is too short");
  const std::uint32_t size = told & kSizeMask;
  if (size > OldDatabase::kLongestValue) throw ReadFault("more than 64 MiB");
  std::string bytes;
  if ((told & kInItsRow) != 0) {
    bytes = head.substr(kHead);
  } else {
    const std::size_t link = (told & kInOneRow) != 0 ? 0 : 4;
    while (place != 0 && bytes.size() < size) {
      void* page = nullptr;
      int start = 0;
      std::size_t length = 0;
      if (mdb_find_pg_row(&file, static_cast<int>(place), &page, &start, &length) != 0) {
        throw ReadFault("a part of it is missing");
      }
      const std::string_view part = partOf(file, page, start, length);
      if (part.size() <= link) throw ReadFault("a part of it is missing");
      place = link == 0 ? 0 : plain<std::uint32_t>(part);
      bytes += part.substr(link);
    }
  }
  if (bytes.size() < size) throw ReadFault("a part of it is missing");
  bytes.resize(size);
  return bytes;
}

template <typename Make>
std::string libraryText(Make make) {
  char* const made = make();
  if (made == nullptr) throw ReadFault("a number that cannot be read");
  std::string text = made;
  g_free(made);
  return text;
}

template <typename T>
void putPlain(std::string& row, Cell cell, T value) {
  put(row, cell);
  put(row, value);
}

void putBytes(std::string& row, Cell cell, std::string_view text) {
  put(row, cell);
  putText(row, text);
}

void putValue(std::string& row, MdbHandle& file, const MdbColumn& column, const MdbField& field) {
  const auto type = static_cast<OldType>(column.col_type);
  // A flag has no value of its own: it is the bit that tells of others whether there is one.
  if (type == OldType::kFlag) return putPlain(row, Cell::kFlag, field.is_null == 0);
  if (field.is_null != 0) return put(row, Cell::kNull);
  const std::string_view bytes =
      partOf(file, file.pg_buf, field.start, static_cast<std::size_t>(std::max(field.siz, 0)));
  switch (type) {
    case OldType::kFlag:
      break;
    case OldType::kByte:
      return putPlain(row, Cell::kInteger, std::int32_t{plain<std::uint8_t>(bytes)});
    case OldType::kInt16:
      return putPlain(row, Cell::kInteger, std::int32_t{plain<std::int16_t>(bytes)});
    case OldType::kInt32:
      return putPlain(row, Cell::kInteger, plain<std::int32_t>(bytes));
    case OldType::kMoney:
      return putPlain(row, Cell::kMoney, plain<std::int64_t>(bytes));
    case OldType::kSingle:
      return putPlain(row, Cell::kSingle, plain<float>(bytes));
    case OldType::kDouble:
      return putPlain(row, Cell::kDouble, plain<double>(bytes));
    case OldType::kDate:
      return putPlain(row, Cell::kDate, plain<double>(bytes));
    case OldType::kText:
      return putBytes(row, Cell::kText, decoded(file, bytes));
    case OldType::kMemo:
      return putBytes(row, Cell::kText, decoded(file, longValue(file, bytes)));
    case OldType::kBinary:
      return putBytes(row, Cell::kBytes, bytes);
    case OldType::kLongBinary:
      return putBytes(row, Cell::kBytes, longValue(file, bytes));
    case OldType::kGuid:
      if (bytes.size() < 16) throw ReadFault("a value is too short");
      return putBytes(row, Cell::kText, libraryText([&] {
                        return mdb_uuid_to_string_fmt(file.pg_buf, field.start,
                                                      MDB_NOBRACES_4_2_2_2_6);
                      }));
    case OldType::kDecimal:
      if (bytes.size() < 17) throw ReadFault("a value is too short");
      return putBytes(row, Cell::kText, libraryText([&] {
                        return mdb_numeric_to_string(&file, field.start, column.col_scale,
                                                     column.col_prec);
                      }));
  }
  throw ReadFault(fmt::format("a type that is not read, {}", column.col_type));
}

// ---------------------------------------------------------------------------------------------
// Tables

/// A table's definition and its columns.
class Definition {
 public:
  explicit Definition(MdbCatalogEntry& entry) : table_(mdb_read_table(&entry)) {
    if (table_ == nullptr || mdb_read_columns(table_) == nullptr) {
      throw ReadFault(fmt::format("the definition of table {} cannot be read", entry.object_name));
    }
  }
  ~Definition() { mdb_free_tabledef(table_); }
  Definition(const Definition&) = delete;
  Definition& operator=(const Definition&) = delete;

  MdbTableDef* operator->() const { return table_; }
  MdbTableDef* get() const { return table_; }
  unsigned columns() const { return table_->columns->len; }
  const MdbColumn& column(unsigned place) const {
    return *static_cast<const MdbColumn*>(g_ptr_array_index(table_->columns, place));
  }

 private:
  MdbTableDef* table_;
};

/// Gives each row's fields; the number of rows that cannot be taken apart.
template <typename Take>
std::uint64_t eachRow(const Definition& table, Take take) {
  MdbHandle& file = *table->entry->mdb;
  std::vector<MdbField> fields(std::max(table->num_cols, 1U));
  std::uint64_t unreadable = 0;
  mdb_rewind_table(table.get());
  while (mdb_read_next_dpg(table.get()) != 0) {
    const int rows = mdb_get_int16(file.pg_buf, file.fmt->row_count_offset);
    for (int row = 0; row < rows; ++row) {
      int start = 0;
      std::size_t size = 0;
      const bool isThere = mdb_find_row(&file, row, &start, &size) == 0;
      if (isThere && (start & kMovedAway) != 0) continue;  // or deleted
      start &= kPlaceMask;
      if (!isThere || size == 0 || mdb_crack_row(table.get(), start, size, fields.data()) < 0) {
        ++unreadable;
        continue;
      }
      take(fields);
    }
  }
  return unreadable;
}

void sendTable(const Definition& table, Outlet& outlet) {
  std::string text;
  putText(text, table->name);
  put(text, std::uint64_t{table->num_rows});
  for (unsigned i = 0; i < table.columns(); ++i) {
    put(text, static_cast<std::uint8_t>(table.column(i).col_type));
    putText(text, table.column(i).name);
  }
  outlet.send(Message::kTable, text);
}

void sendRows(const Definition& table, Outlet& outlet) {
  std::string row;
  const std::uint64_t unreadable = eachRow(table, [&](const std::vector<MdbField>& fields) {
    row.clear();
    for (unsigned i = 0; i < table.columns(); ++i) {
      const MdbColumn& column = table.column(i);
      const std::size_t before = row.size();
      try {
        putValue(row, *table->entry->mdb, column, fields[i]);
      } catch (const ReadFault& fault) {
        row.resize(before);
        putBytes(row, Cell::kUnreadable, fmt::format("{}: {}", column.name, fault.what()));
      }
    }
    outlet.send(Message::kRow, row);
  });
  std::string end;
  put(end, unreadable);
  outlet.send(Message::kTableEnd, end);
}

/// The relations are rows of a table of the system's, one for each pair of columns.
void sendRelations(MdbCatalogEntry& entry, Outlet& outlet) {
  const Definition table(entry);
  std::unordered_map<std::string, unsigned> places;
  for (unsigned i = 0; i < table.columns(); ++i) places.emplace(table.column(i).name, i);
  const auto placed = [&](const char* name) {
    const auto found = places.find(name);
    if (found == places.end()) throw ReadFault("the table of relations is another one");
    return found->second;
  };
  const unsigned flags = placed("grbit");
  const unsigned part = placed("icolumn");
  const unsigned name = placed("szRelationship");
  const std::vector<unsigned> names = {placed("szObject"), placed("szColumn"),
                                       placed("szReferencedObject"), placed("szReferencedColumn")};
  struct Pair {
    std::string relation;
    std::int32_t part = 0;
    std::vector<std::string> names;
  };
  std::vector<Pair> pairs;
  MdbHandle& file = *table->entry->mdb;
  eachRow(table, [&](const std::vector<MdbField>& fields) {
    const auto bytes = [&](unsigned place) {
      const MdbField& field = fields[place];
      return partOf(file, file.pg_buf, field.start,
                    static_cast<std::size_t>(std::max(field.siz, 0)));
    };
    if ((plain<std::uint32_t>(bytes(flags)) & kNotKept) != 0) return;
    Pair pair{decoded(file, bytes(name)), plain<std::int32_t>(bytes(part)), {}};
    for (const unsigned place : names) pair.names.push_back(decoded(file, bytes(place)));
    pairs.push_back(std::move(pair));
  });
  std::stable_sort(pairs.begin(), pairs.end(), [](const Pair& a, const Pair& b) {
    return std::tie(a.relation, a.part) < std::tie(b.relation, b.part);
  });
  for (const Pair& pair : pairs) {
    std::string text;
    putText(text, pair.relation);
    for (const std::string& each : pair.names) putText(text, each);
    outlet.send(Message::kRelation, text);
  }
}

/// The library passes over what it cannot read of the list of tables.
void requireWholeList(MdbHandle& file) {
  constexpr unsigned long kPage = 2;
  MdbCatalogEntry list = {};
  list.mdb = &file;
  list.object_type = MDB_TABLE;
  list.table_pg = kPage;
  const Definition table(list);
  std::uint64_t rows = 0;
  const std::uint64_t unreadable = eachRow(table, [&](const std::vector<MdbField>&) { ++rows; });
  if (unreadable > 0 || rows < table->num_rows) throw ReadFault("its list of tables is damaged");
}

std::vector<MdbCatalogEntry*> sendStructure(MdbHandle& file, Outlet& outlet) {
  const GPtrArray* const catalogue = mdb_read_catalog(&file, MDB_ANY);
  if (catalogue == nullptr) throw ReadFault("its list of tables cannot be read");
  requireWholeList(file);
  std::vector<MdbCatalogEntry*> tables;
  for (guint i = 0; i < catalogue->len; ++i) {
    auto& entry = *static_cast<MdbCatalogEntry*>(g_ptr_array_index(catalogue, i));
    if (entry.object_type == MDB_LINKED_TABLE) outlet.send(Message::kLinked, entry.object_name);
    if (std::string_view(entry.object_name) == "MSysRelationships") sendRelations(entry, outlet);
    if (mdb_is_user_table(&entry) == 0) continue;
    sendTable(Definition(entry), outlet);
    tables.push_back(&entry);
  }
  outlet.send(Message::kStructure, "");
  return tables;
}

bool readNumber(int socket, std::uint32_t& number) {
  return recv(socket, &number, sizeof number, MSG_WAITALL) == sizeof number;
}

/// What the library says of damage would stand among the command's own words; the parent tells it.
void stepAside() {
  const rlimit none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  // The parent ends its work in order, and this process with it.
  std::signal(SIGINT, SIG_IGN);
  std::signal(SIGTERM, SIG_IGN);
  const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nowhere, stream);
}

}  // namespace

void serve(const std::string& path, int socket) {
  stepAside();
  Outlet outlet(socket);
  try {
    MdbHandle* const file = mdb_open(path.c_str(), MDB_NOFLAGS);
    if (file == nullptr) throw ReadFault("its first page cannot be read");
    const std::vector<MdbCatalogEntry*> tables = sendStructure(*file, outlet);
    outlet.flush();
    std::uint32_t number = 0;
    while (readNumber(socket, number) && number < tables.size()) {
      sendRows(Definition(*tables[number]), outlet);
      outlet.flush();
    }
    _exit(0);
  } catch (const std::exception& fault) {
    outlet.send(Message::kFailure, fault.what());
    outlet.flush();
  }
  _exit(1);
}

}  // namespace tavelor::tools::old_database
