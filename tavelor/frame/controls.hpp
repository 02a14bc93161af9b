// SPDX-License-Identifier: MIT
// What the frame asks of a form's controls and of a grid's columns. Any form layer implements
// these.
#pragma once

#include <cstdint>
#include <string>

#include "tavelor/platform/export.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor {

/// Kinds of controls that a form has.
enum class ControlKind : std::uint8_t {
  kTextBox,
  kCheckBox,
  kListBox,
  kComboBox,
  kBoundCombo,
  kOther
};

/// A control of a form, bound to a field. A kind of control has some of the properties only: those
/// that it lacks keep these defaults, which raise 438.
class TAVELOR_API Control : public Object {
 public:
  std::string typeName() const override { return "Control"; }

  /// What it is, which decides on the members that it has.
  virtual ControlKind kind() const = 0;
  /// Name of the field that it is bound to.
  virtual std::string DataField() const = 0;
  /// The default property, as text.
  virtual std::string defaultText() const = 0;

  /// 0 or 1, of a check box.
  virtual std::int32_t Value() const;
  /// Of all but a check box; a list box gives that of its selected entry.
  virtual std::string Text() const { return defaultText(); }
  /// Entries of a list box.
  virtual std::int32_t ListCount() const;
  /// Selects an entry, from 0.
  virtual void ListIndex(std::int32_t entry);
  /// The code behind the text of a bound combo.
  virtual std::string BoundText() const;
};

/// A column of a grid.
struct TAVELOR_API GridColumn {
  bool visible = true;
  std::string caption;
  std::int32_t alignment = 0;  ///< 1 right, 3 left, all others centred
};

/// The columns of a grid, in the order of the record set's fields.
class TAVELOR_API GridColumns : public Object {
 public:
  std::string typeName() const override { return "GridColumns"; }
  /// Number of columns.
  virtual std::int32_t Count() const = 0;
  /// From 0.
  virtual GridColumn Item(std::int32_t index) const = 0;
};

}  // namespace tavelor
