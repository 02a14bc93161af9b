// SPDX-License-Identifier: MIT
// Classes as an address names them, and what the columns of their rows are.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/variant.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/web/json.hpp"

namespace tavelor {
class Component;
class RecordClass;
class Recordset;
}  // namespace tavelor

namespace tavelor::web {

class Context;

/// A column of the rows of a mode.
struct ClassColumn {
  std::string name;        ///< as the mode calls it: "Código"
  std::string baseColumn;  ///< as the table calls it: "Codigo"; "" for one that is computed
  engine::ColumnType type = engine::ColumnType::kText;
  std::int32_t size = 0;  ///< characters of a text; 0 of the others
  bool isNullable = true;
  bool isKey = false;       ///< of what tells the row from all others
  bool isHidden = false;    ///< a key that the mode does not show
  bool isWritable = false;  ///< the record set can write it
  bool isNumbered = false;  ///< by the engine
  std::size_t place = 0;    ///< among all columns of the record set, hidden ones too
};

/// "text", "memo", "integer", "number", "money", "date", "flag" or "binary".
std::string_view wordOf(engine::ColumnType type);

/// The columns that an API tells: those that the mode shows, then the hidden ones of the key.
using ClassColumns = std::vector<ClassColumn>;
ClassColumns columnsOf(const RecordClass& record, const Recordset& rows);
Json toJson(const ClassColumns& columns);
/// Without regard to case; null for none. By what the mode calls it, or else by its own name.
const ClassColumn* findColumn(const ClassColumns& columns, std::string_view name);

/// An object of a class that has rows.
class OpenClass {
 public:
  /// Of the class in the path of the request. Raises Failure 404 for a name that no class has, 422
  /// for a class without rows, 403 where the caller may not do `what` with it.
  OpenClass(const Context& context, std::string_view what);
  ~OpenClass();
  OpenClass(const OpenClass&) = delete;
  OpenClass& operator=(const OpenClass&) = delete;

  const Component& component() const { return component_; }
  RecordClass& record() const { return *record_; }
  /// Its rows; it must be open.
  Recordset& rows() const;
  ClassColumns columns() const { return columnsOf(*record_, rows()); }

  /// The mode of the request's parameters "mode" and "id", "todos" where none is given. Raises
  /// Failure 400 for a word that is none of the class's, 422 for a mode that does not open.
  void openMode(const Context& context) const;
  /// The same mode's row of a key, or none of its rows where there is no key.
  void openByKey(const Context& context, const std::vector<Variant>& key = {}) const;

 private:
  const Component& component_;
  std::unique_ptr<Object> object_;
  RecordClass* record_;
};

/// The class of a path, whether it has rows or not. Raises Failure 404 with the nearest name.
const Component& classCalled(std::string_view name);
/// The mode that a request asks for. Raises Failure 400 for a word that is none of the class's.
std::string modeOf(const Context& context, const RecordClass& record);
/// Raises Failure 403 where the caller may not do `what` ("read", "write", "call") with a class.
void mustWithClass(const Context& context, const Component& component, std::string_view what);

/// The values of the key's columns, out of an object by their names, an array in their order or a
/// single value. Raises Failure 400 for anything else, and names what is missing.
std::vector<Variant> keyOf(const Json& json, const RecordClass& record,
                           const ClassColumns& columns);

}  // namespace tavelor::web
