// SPDX-License-Identifier: MIT
// Writing a record set as XML.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>

#include <fcntl.h>
#include <unistd.h>

#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/criteria.hpp"
#include "tavelor/services/recordset/field_types.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"
#include "tavelor/services/recordset/xml_format.hpp"

namespace tavelor {

using Operation = RecordsetStore::Operation;

/// Writes the rows of a set piece by piece, so that a large one needs no second copy in memory.
class XmlWriter {
 public:
  using Sink = std::function<void(std::string_view)>;
  using Row = RecordsetStore::Row;

  /// Of a filter text, those rows only that it shows; null for all.
  XmlWriter(const RecordsetStore& store, const criteria::Program* filter, Sink sink)
      : store_(store),
        filter_(filter),
        names_(xml::attributeNames(store_.schema())),
        sink_(std::move(sink)) {}

  void write();

 private:
  void writeSchema();
  void writeField(std::size_t column);
  void writeRow(Row row);
  void writeBase(Row row);
  void writeChanged(const std::vector<WrittenCell>& cells);
  void attribute(std::string_view name, std::string_view value);
  void value(std::size_t column, const Variant& value);
  void escaped(std::string_view text);
  bool isSaved(Row row) const;
  void drain(std::size_t limit);

  const RecordsetStore& store_;
  const criteria::Program* filter_;
  std::vector<std::string> names_;
  Sink sink_;
  std::string out_;
};

namespace {

/// A file that takes the place of `path` when it is complete, and leaves nothing when it is not.
class ReplacingFile {
 public:
  explicit ReplacingFile(const std::string& path)
      : path_(path), temporary_(path + ".part-" + std::to_string(::getpid())) {
    file_ = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file_ < 0) fail();
  }
  ReplacingFile(const ReplacingFile&) = delete;
  ReplacingFile& operator=(const ReplacingFile&) = delete;
  ~ReplacingFile() {
    if (file_ >= 0) ::close(file_);
    if (!complete_) ::unlink(temporary_.c_str());
  }

  void write(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t written = ::write(file_, bytes.data(), bytes.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) fail();
      bytes.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  void finish() {
    if (::fsync(file_) != 0) fail();
    const int closed = ::close(file_);
    file_ = -1;
    if (closed != 0 || std::rename(temporary_.c_str(), path_.c_str()) != 0) fail();
    complete_ = true;
    syncFolder();
  }

 private:
  [[noreturn]] void fail() const {
    const std::string reason = std::strerror(errno);
    raise(errors::kPathAccess, "Recordset.Save", path_ + ": " + reason);
  }

  /// The new name is on the disk only when the folder is. A folder that cannot be opened is left to
  /// the system's own time.
  void syncFolder() const {
    const std::size_t slash = path_.find_last_of('/');
    const std::string folder = slash == std::string::npos ? "." : path_.substr(0, slash + 1);
    const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return;
    ::fsync(handle);
    ::close(handle);
  }

  std::string path_;
  std::string temporary_;
  int file_ = -1;
  bool complete_ = false;
};

}  // namespace

void XmlWriter::write() {
  out_ =
      "<xml xmlns:s='uuid:BDC6E3F0-6DA3-11d1-A2A3-00AA00C14882'\n"
      "\txmlns:dt='uuid:C2F41010-65B3-11d1-A29F-00AA00C14882'\n"
      "\txmlns:rs='urn:schemas-microsoft-com:rowset'\n"
      "\txmlns:z='#RowsetSchema'\n"
      "\txmlns:tv='";
  out_ += xml::kOwnNamespace;
  out_ += "'>\n";
  writeSchema();
  out_ += "<rs:data>\n";
  const auto rows = static_cast<Row>(store_.rows().rows());
  for (Row row = 0; row < rows; ++row) {
    if (isSaved(row)) writeRow(row);
  }
  out_ += "</rs:data>\n</xml>\n";
  drain(0);
}

void XmlWriter::writeSchema() {
  out_ += "<s:Schema id='RowsetSchema'>\n<s:ElementType name='row' content='eltOnly'";
  const std::string& rowTable = store_.schema().plan->updateTable;
  const bool isUpdatable =
      std::any_of(store_.columns().begin(), store_.columns().end(),
                  [](const dialect::OutputColumn& column) { return column.updatable; });
  if (isUpdatable) attribute("rs:updatable", "true");
  if (isUpdatable && !rowTable.empty()) attribute("tv:rowtable", rowTable);
  out_ += ">\n";
  for (std::size_t i = 0; i < store_.columns().size(); ++i) writeField(i);
  out_ += "<s:extends type='rs:rowbase'/>\n</s:ElementType>\n</s:Schema>\n";
}

void XmlWriter::writeField(std::size_t column) {
  const dialect::OutputColumn& field = store_.columns()[column];
  out_ += "<s:AttributeType";
  attribute("name", names_[column]);
  if (names_[column] != field.name) attribute("rs:name", xml::escapeControls(field.name));
  attribute("rs:number", std::to_string(column + 1));
  if (field.nullable) attribute("rs:nullable", "true");
  if (store_.detached || field.updatable) attribute("rs:write", "true");
  if (!field.baseTable.empty()) attribute("rs:basetable", field.baseTable);
  if (!field.baseColumn.empty()) attribute("rs:basecolumn", field.baseColumn);
  if (field.key) attribute("rs:keycolumn", "true");
  if (field.autoNumber) attribute("rs:autoincrement", "true");
  if (field.hidden) attribute("rs:hidden", "true");
  out_ += ">\n<s:datatype";
  const auto type = static_cast<DataType>(store_.schema().typeNumber(column));
  const xml::TypeName name = xml::nameOf(type);
  attribute("dt:type", name.name);
  if (!name.dbType.empty()) attribute("rs:dbtype", name.dbType);
  if (field.definedSize > 0) attribute("dt:maxLength", std::to_string(field.definedSize));
  const bool isLong =
      field.type == engine::ColumnType::kMemo || field.type == engine::ColumnType::kBinary;
  if (isLong) attribute("rs:long", "true");
  if (!field.nullable) attribute("rs:maybenull", "false");
  attribute("tv:type", std::to_string(store_.schema().typeNumber(column)));
  out_ += "/>\n</s:AttributeType>\n";
}

/// All rows but those that are gone; under a filter text those that it shows, or showed before they
/// were deleted.
bool XmlWriter::isSaved(Row row) const {
  const std::uint8_t flags = store_.flags(row);
  if ((flags & (RecordsetStore::kDead | RecordsetStore::kDraft)) != 0) return false;
  if (filter_ == nullptr) return true;
  if ((flags & RecordsetStore::kDeleted) != 0) return filter_->matchesBase(store_, row);
  return filter_->matches(store_, row);
}

void XmlWriter::writeRow(Row row) {
  const RecordsetStore::Edit* edit = store_.edit(row);
  if (edit == nullptr) {
    writeBase(row);
  } else if (edit->operation == Operation::kInsert) {
    out_ += "<rs:insert>\n";
    writeChanged(edit->cells);
    out_ += "</rs:insert>\n";
  } else if (edit->operation == Operation::kDelete) {
    out_ += "<rs:delete>\n";
    writeBase(row);
    out_ += "</rs:delete>\n";
  } else {
    out_ += "<rs:update>\n<rs:original>\n";
    writeBase(row);
    out_ += "</rs:original>\n";
    writeChanged(edit->cells);
    out_ += "</rs:update>\n";
  }
  constexpr std::size_t kPiece = std::size_t{1} << 20;
  drain(kPiece);
}

void XmlWriter::writeBase(Row row) {
  out_ += "<z:row";
  for (std::size_t i = 0; i < store_.columns().size(); ++i) {
    if (!store_.rows().isNull(row, i)) value(i, store_.baseValue(row, i));
  }
  out_ += "/>\n";
}

void XmlWriter::writeChanged(const std::vector<WrittenCell>& cells) {
  out_ += "<z:row";
  std::string nulls;
  for (const WrittenCell& cell : cells) {
    if (!cell.value.isNull()) {
      value(cell.column, cell.value);
      continue;
    }
    if (!nulls.empty()) nulls += ' ';
    nulls += names_[cell.column];
  }
  if (!nulls.empty()) attribute("rs:forcenull", nulls);
  out_ += "/>\n";
}

void XmlWriter::value(std::size_t column, const Variant& value) {
  const std::string* held = value.getIf<std::string>();
  if (held != nullptr && !text::isValidUtf8(*held)) {
    raise(errors::kWrongType, "Recordset.Save",
          "Field '" + store_.columns()[column].name + "' holds a text that is no valid UTF-8");
  }
  attribute(names_[column], xml::textOf(value));
}

void XmlWriter::attribute(std::string_view name, std::string_view value) {
  out_ += ' ';
  out_ += name;
  out_ += "='";
  escaped(value);
  out_ += '\'';
}

void XmlWriter::escaped(std::string_view text) {
  for (const char c : text) {
    switch (c) {
      case '&':
        out_ += "&amp;";
        break;
      case '<':
        out_ += "&lt;";
        break;
      case '>':
        out_ += "&gt;";
        break;
      case '\'':
        out_ += "&apos;";
        break;
      case '\t':
        out_ += "&#9;";
        break;
      case '\n':
        out_ += "&#10;";
        break;
      case '\r':
        out_ += "&#13;";
        break;
      default:
        out_ += c;
    }
  }
}

void XmlWriter::drain(std::size_t limit) {
  if (out_.size() <= limit) return;
  sink_(out_);
  out_.clear();
}

std::string Recordset::SaveXml() {
  parts_->opened();
  parts_->leaveRow();
  std::string result;
  XmlWriter(*parts_->store, parts_->view.filter().program.get(), [&](std::string_view piece) {
    result += piece;
  }).write();
  parts_->moving(EventReason::kMoveFirst, [&] { parts_->standOnFirst(); });
  return result;
}

void Recordset::Save(const std::string& path) {
  parts_->opened();
  parts_->leaveRow();
  ReplacingFile file(path);
  XmlWriter(*parts_->store, parts_->view.filter().program.get(), [&](std::string_view piece) {
    file.write(piece);
  }).write();
  file.finish();
  parts_->moving(EventReason::kMoveFirst, [&] { parts_->standOnFirst(); });
}

}  // namespace tavelor
