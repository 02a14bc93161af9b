// SPDX-License-Identifier: MIT
// What the library itself tells of its classes and tables.
#pragma once

#include <string>
#include <vector>

namespace tavelor {
class Apartment;
class Component;
struct ClassInfo;
}  // namespace tavelor

namespace tavelor::reference {

struct Column {
  std::string name;
  std::string type;  ///< as the dialect's DDL writes it, its width in characters: "TEXT(50)"
  bool key = false;
  bool nullable = true;
  bool numbered = false;  ///< by the database
  std::string byDefault;
  std::string comment;
};

/// A table of an installation with what its family in schema/ says of it.
struct Table {
  std::string name;
  std::string family;
  std::string databases;  ///< "main, historic"
  std::string comment;
  std::vector<Column> columns;
};

/// All tables, family by family in the order of their files.
std::vector<Table> tables(Apartment& apartment);

/// What IniciaRs opens for one word.
struct OpenedMode {
  std::string word;       ///< "" for any other word
  std::string statement;  ///< to the letter, {id} standing for the argument of that name
  bool made = false;      ///< it depends on the moment; then it is what was sent for this one
  std::vector<Column> columns;
  std::string refusal;  ///< what the database said to it, where it refuses it
};

/// A class with its object's data; `info` is null for a class without the frame.
struct ClassData {
  const Component* component = nullptr;
  const ClassInfo* info = nullptr;
  std::string events;  ///< interface of its events, or ""
  std::vector<OpenedMode> modes;
};

/// Makes an object of the class and opens each of its modes, which are empty in an installation
/// without rows. The trace of the apartment must be on.
ClassData dataOf(const Component& component, Apartment& apartment);

}  // namespace tavelor::reference
