// SPDX-License-Identifier: MIT
// Reading a record set from XML, which may come from anywhere and be anything.
#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <pugixml.hpp>
#include <set>
#include <system_error>
#include <unordered_map>

#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/field_types.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"
#include "tavelor/services/recordset/xml_format.hpp"

namespace tavelor {

namespace {

using Operation = RecordsetStore::Operation;
constexpr std::string_view kSource = "Recordset.LoadXml";
constexpr std::size_t kMaxColumns = 4096;

void appendUtf8(std::string& text, char32_t c) {
  const auto append = [&](char32_t bits) { text += static_cast<char>(bits); };
  if (c < 0x80) return append(c);
  if (c < 0x800) {
    append(0xC0 | c >> 6);
  } else if (c < 0x10000) {
    append(0xE0 | c >> 12);
    append(0x80 | (c >> 6 & 0x3F));
  } else {
    append(0xF0 | c >> 18);
    append(0x80 | (c >> 12 & 0x3F));
    append(0x80 | (c >> 6 & 0x3F));
  }
  append(0x80 | (c & 0x3F));
}

/// A text in UTF-16 with its mark, for places are counted in the text that is parsed; "" for any
/// other. Half of a pair reads as U+FFFD.
std::string fromUtf16(std::string_view bytes) {
  const bool bigEndian = bytes.starts_with("\xFE\xFF");
  if (!bigEndian && !bytes.starts_with("\xFF\xFE")) return {};
  const auto unitAt = [&](std::size_t i) -> char32_t {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    return static_cast<char32_t>(bigEndian ? first << 8 | second : second << 8 | first);
  };
  const auto isHalf = [](char32_t unit, char32_t first) { return (unit & 0xFC00U) == first; };
  constexpr char32_t kHigh = 0xD800;
  constexpr char32_t kLow = 0xDC00;
  std::string text;
  for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
    char32_t c = unitAt(i);
    if (isHalf(c, kHigh) && i + 3 < bytes.size() && isHalf(unitAt(i + 2), kLow)) {
      i += 2;
      c = 0x10000 + ((c & 0x3FFU) << 10) + (unitAt(i) & 0x3FFU);
    } else if (isHalf(c, kHigh) || isHalf(c, kLow)) {
      c = 0xFFFD;
    }
    appendUtf8(text, c);
  }
  return text;
}

class XmlReader {
 public:
  explicit XmlReader(std::string_view text) : text_(text) {}

  std::shared_ptr<RecordsetStore> read(const std::shared_ptr<const Locale>& locale);

 private:
  [[noreturn]] void fail(std::string_view what, std::ptrdiff_t offset) const;
  [[noreturn]] void fail(std::string_view what, const pugi::xml_node& node) const {
    fail(what, node.offset_debug());
  }

  RecordsetSchema readSchema(const pugi::xml_node& elementType);
  void markUpdatable(const pugi::xml_node& elementType, dialect::Plan& plan) const;
  void readField(const pugi::xml_node& node, dialect::Plan& plan,
                 std::vector<std::int32_t>& declared);
  DataType readType(const pugi::xml_node& node, const pugi::xml_node& datatype) const;
  void readRows(const pugi::xml_node& data);
  void readUpdates(const pugi::xml_node& update);
  RowNumber readBase(const pugi::xml_node& node);
  std::vector<WrittenCell> readCells(const pugi::xml_node& row) const;
  std::vector<WrittenCell> readChanged(const pugi::xml_node& row) const;
  void edit(RowNumber row, Operation operation, std::vector<WrittenCell> cells);
  std::string unescaped(std::string_view text) const {
    return own_ ? xml::unescapeControls(text) : std::string(text);
  }

  std::string_view text_;
  bool own_ = false;  // written by us: control characters are escaped
  std::unordered_map<std::string, std::size_t> columns_;
  std::shared_ptr<RecordsetStore> store_;
};

bool isTrue(const pugi::xml_attribute& attribute) {
  const std::string_view value = attribute.value();
  return value == "1" || text::equalsIgnoreCase(value, "true");
}

void XmlReader::fail(std::string_view what, std::ptrdiff_t offset) const {
  std::string detail = "The XML of the record set does not read: " + std::string(what);
  // Of a text that ends too soon the parser may tell a place behind its end.
  const auto end = static_cast<std::ptrdiff_t>(text_.size());
  const TextPlace place = placeOf(text_, std::clamp<std::ptrdiff_t>(offset, 0, end));
  detail += " at line " + std::to_string(place.line) + ", column " + std::to_string(place.column);
  raise(errors::kInvalidArgument, kSource, detail);
}

std::shared_ptr<RecordsetStore> XmlReader::read(const std::shared_ptr<const Locale>& locale) {
  pugi::xml_document document;
  const pugi::xml_parse_result parsed = document.load_buffer(text_.data(), text_.size());
  if (!parsed) fail(parsed.description(), parsed.offset);
  const pugi::xml_node root = document.child("xml");
  if (!root) fail("the root element <xml> is missing", 0);
  own_ = xml::kOwnNamespace == root.attribute("xmlns:tv").value();
  const pugi::xml_node elementType = root.child("s:Schema").child("s:ElementType");
  if (!elementType) fail("there is no s:Schema with an s:ElementType", root);
  store_ = std::make_shared<RecordsetStore>(readSchema(elementType), locale);
  store_->detached =
      std::none_of(store_->columns().begin(), store_->columns().end(),
                   [](const dialect::OutputColumn& column) { return column.updatable; });
  readRows(root.child("rs:data"));
  return store_;
}

// ---- Fields

RecordsetSchema XmlReader::readSchema(const pugi::xml_node& elementType) {
  auto plan = std::make_shared<dialect::Plan>();
  RecordsetSchema schema{plan, {}};
  for (const pugi::xml_node& node : elementType.children("s:AttributeType")) {
    readField(node, *plan, schema.declared);
  }
  if (plan->columns.empty()) fail("there are no fields", elementType);
  markUpdatable(elementType, *plan);
  return schema;
}

/// Other writers do not tell which columns can be written, nor which of several tables the rows are
/// those of: columns can be whose table has a key among them, and rows are of the only table.
void XmlReader::markUpdatable(const pugi::xml_node& elementType, dialect::Plan& plan) const {
  const bool any = isTrue(elementType.attribute("rs:updatable"));
  std::set<std::string_view> tables;
  std::set<std::string_view> keyed;
  for (dialect::OutputColumn& column : plan.columns) {
    const bool isStored = !column.baseTable.empty() && !column.baseColumn.empty();
    column.updatable = any && isStored && (!own_ || column.updatable);
    if (isStored) tables.insert(column.baseTable);
    if (column.updatable && column.key) keyed.insert(column.baseTable);
  }
  for (dialect::OutputColumn& column : plan.columns) {
    column.updatable = column.updatable && keyed.contains(column.baseTable);
  }
  std::string_view rowTable = elementType.attribute("tv:rowtable").value();
  if (rowTable.empty() && tables.size() == 1) rowTable = *tables.begin();
  if (keyed.contains(rowTable)) plan.updateTable = rowTable;
}

void XmlReader::readField(const pugi::xml_node& node, dialect::Plan& plan,
                          std::vector<std::int32_t>& declared) {
  if (plan.columns.size() == kMaxColumns) fail("there are too many fields", node);
  const std::string attributeName = node.attribute("name").value();
  if (attributeName.empty()) fail("a field has no name", node);
  if (!columns_.emplace(attributeName, plan.columns.size()).second) {
    fail("there are two fields '" + attributeName + "'", node);
  }
  const pugi::xml_node child = node.child("s:datatype");
  const pugi::xml_node& datatype = child ? child : node;
  const DataType type = readType(node, datatype);
  const std::optional<engine::ColumnType> storage = storageOf(type);
  if (!storage) fail("the type of field '" + attributeName + "' is not supported", node);

  dialect::OutputColumn column;
  const pugi::xml_attribute realName = node.attribute("rs:name");
  column.name = realName ? unescaped(realName.value()) : attributeName;
  column.type = *storage;
  column.definedSize = fixedSize(*storage);
  if (*storage == engine::ColumnType::kText) {
    const int size = datatype.attribute("dt:maxLength").as_int(0);
    if (size < 0) fail("a size is negative", node);
    column.definedSize = size;
  }
  column.nullable =
      isTrue(node.attribute("rs:nullable")) || isTrue(datatype.attribute("rs:maybenull"));
  column.baseTable = node.attribute("rs:basetable").value();
  column.baseColumn = node.attribute("rs:basecolumn").value();
  column.updatable = isTrue(node.attribute("rs:write"));
  column.key = isTrue(node.attribute("rs:keycolumn"));
  column.autoNumber = isTrue(node.attribute("rs:autoincrement"));
  column.hidden = isTrue(node.attribute("rs:hidden"));
  if (!column.hidden && !plan.columns.empty() && plan.columns.back().hidden) {
    fail("hidden fields must come last", node);
  }
  plan.columns.push_back(std::move(column));
  declared.push_back(static_cast<std::int32_t>(type));
}

DataType XmlReader::readType(const pugi::xml_node& node, const pugi::xml_node& datatype) const {
  if (own_) {
    const auto exact = static_cast<DataType>(datatype.attribute("tv:type").as_int(0));
    if (storageOf(exact)) return exact;
  }
  const std::string_view name = datatype.attribute("dt:type").value();
  const std::optional<DataType> type = xml::typeOf(name, datatype.attribute("rs:dbtype").value(),
                                                   isTrue(datatype.attribute("rs:long")));
  if (!type) fail("the type '" + std::string(name) + "' is not known", node);
  return *type;
}

// ---- Rows

void XmlReader::readRows(const pugi::xml_node& data) {
  for (const pugi::xml_node& node : data.children()) {
    const std::string_view name = node.name();
    if (name == "z:row") {
      readBase(node);
    } else if (name == "rs:insert") {
      for (const pugi::xml_node& row : node.children("z:row")) {
        edit(store_->append(), Operation::kInsert, readChanged(row));
      }
    } else if (name == "rs:delete") {
      for (const pugi::xml_node& row : node.children("z:row")) {
        const RowNumber deleted = readBase(row);
        edit(deleted, Operation::kDelete, {});
        store_->setFlags(deleted, RecordsetStore::kEdited | RecordsetStore::kDeleted);
      }
    } else if (name == "rs:update") {
      readUpdates(node);
    } else if (node.type() == pugi::node_element) {
      fail("<" + std::string(name) + "> is not known among the rows", node);
    }
  }
}

void XmlReader::readUpdates(const pugi::xml_node& update) {
  pugi::xml_node original;
  for (const pugi::xml_node& node : update.children()) {
    const std::string_view name = node.name();
    if (name == "rs:original") {
      original = node.child("z:row");
    } else if (name == "z:row") {
      if (!original) fail("a changed row has no original", node);
      edit(readBase(original), Operation::kUpdate, readChanged(node));
      original = {};
    }
  }
}

RowNumber XmlReader::readBase(const pugi::xml_node& node) {
  const RowNumber row = store_->append();
  for (const WrittenCell& cell : readCells(node)) store_->setBase(row, cell.column, cell.value);
  return row;
}

std::vector<WrittenCell> XmlReader::readCells(const pugi::xml_node& row) const {
  std::vector<WrittenCell> cells;
  for (const pugi::xml_attribute& attribute : row.attributes()) {
    const auto found = columns_.find(attribute.name());
    if (found == columns_.end()) continue;
    const dialect::OutputColumn& column = store_->columns()[found->second];
    const bool isText = engine::isText(column.type);
    std::optional<Variant> value = isText ? Variant(unescaped(attribute.value()))
                                          : xml::valueOf(attribute.value(), column.type);
    if (!value) {
      fail("'" + std::string(attribute.value()) + "' is no value of field '" + column.name + "'",
           row);
    }
    const std::string* held = value->getIf<std::string>();
    if (held != nullptr && !text::isValidUtf8(*held)) {
      fail("field '" + column.name + "' holds a text that is no valid UTF-8", row);
    }
    cells.push_back({static_cast<std::uint32_t>(found->second), std::move(*value)});
  }
  return cells;
}

/// The values that a pending change writes, those changed to Null included.
std::vector<WrittenCell> XmlReader::readChanged(const pugi::xml_node& row) const {
  std::vector<WrittenCell> cells = readCells(row);
  std::string_view nulls = row.attribute("rs:forcenull").value();
  while (!nulls.empty()) {
    const std::size_t blank = std::min(nulls.find(' '), nulls.size());
    const auto found = columns_.find(std::string(nulls.substr(0, blank)));
    if (found != columns_.end()) putCell(cells, found->second, Null{});
    nulls.remove_prefix(std::min(blank + 1, nulls.size()));
  }
  return cells;
}

void XmlReader::edit(RowNumber row, Operation operation, std::vector<WrittenCell> cells) {
  RecordsetStore::Edit& edit = store_->editOf(row);
  edit.operation = operation;
  edit.cells = std::move(cells);
}

std::string readFile(const std::string& path) {
  constexpr std::string_view kOpenFile = "Recordset.OpenFile";
  std::error_code error;
  if (std::filesystem::status(path, error).type() == std::filesystem::file_type::not_found) {
    raise(errors::kFileNotFound, kOpenFile, path);
  }
  std::ifstream file(path, std::ios::binary);
  std::string text;
  std::array<char, 65536> block{};
  while (file) {
    file.read(block.data(), block.size());
    text.append(block.data(), static_cast<std::size_t>(file.gcount()));
  }
  // What was read to its end stands at it; a folder opens and does not read.
  if (!file.eof()) raise(errors::kPathAccess, kOpenFile, path);
  return text;
}

}  // namespace

RecordsetPtr Recordset::LoadXml(std::string_view xml, const std::shared_ptr<const Locale>& locale) {
  auto set = std::make_shared<Recordset>();
  const std::string converted = fromUtf16(xml);
  set->parts_->open(XmlReader(converted.empty() ? xml : converted).read(locale));
  set->parts_->standOnFirst();
  return set;
}

RecordsetPtr Recordset::OpenFile(const std::string& path,
                                 const std::shared_ptr<const Locale>& locale) {
  return LoadXml(readFile(path), locale);
}

}  // namespace tavelor
