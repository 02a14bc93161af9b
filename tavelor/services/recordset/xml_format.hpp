// SPDX-License-Identifier: MIT
// The shape of a record set as XML: what writer and reader must agree on.
//
//   <xml>
//     <s:Schema> <s:ElementType name='row'> a <s:AttributeType> with its <s:datatype> a field
//     <rs:data>  <z:row/> a row, its values as attributes; an absent one is Null
//                <rs:insert>, <rs:update> (<rs:original> and the changed values), <rs:delete>
//
// Names that are no XML names become c0, c1... with the real one in rs:name. A value changed to
// Null stands in rs:forcenull. Files of our own carry the exact field type in tv:type and the table
// that rows are added to in tv:rowtable, and write characters that XML has not as _x0001_.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/recordset/constants.hpp"
#include "tavelor/services/recordset/recordset_store.hpp"

namespace tavelor::xml {

inline constexpr std::string_view kOwnNamespace = "urn:tavelor:recordset";

/// How a type is called in s:datatype.
struct TypeName {
  DataType type;
  std::string_view name;    ///< dt:type
  std::string_view dbType;  ///< rs:dbtype, or ""
};
TypeName nameOf(DataType type);
/// Nothing for a name that is not known.
std::optional<DataType> typeOf(std::string_view name, std::string_view dbType, bool isLong);

/// The attribute names of all columns, hidden ones included.
std::vector<std::string> attributeNames(const RecordsetSchema& schema);

/// A value as it stands in an attribute, before &, < and quotes are escaped. The cell is not null.
std::string textOf(const Variant& value);
/// The value that such a text is for a column of that type; nothing when it is none.
std::optional<Variant> valueOf(std::string_view text, engine::ColumnType type);

/// _x0001_ for the characters that XML has not, and back.
std::string escapeControls(std::string_view text);
std::string unescapeControls(std::string_view text);

}  // namespace tavelor::xml
