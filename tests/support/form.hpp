// SPDX-License-Identifier: MIT
// A form's controls and a grid, as plain data.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tavelor/frame/controls.hpp"

namespace tavelor::test {

/// A control of any kind. What its kind lacks it leaves to the base class.
class FormControl : public Control {
 public:
  FormControl(ControlKind kind, std::string field, std::string text = {})
      : kind_(kind), field_(std::move(field)), text_(std::move(text)) {}

  ControlKind kind() const override { return kind_; }
  std::string DataField() const override { return field_; }
  std::string defaultText() const override { return text_; }

 private:
  ControlKind kind_;
  std::string field_;
  std::string text_;
};

class TextBox final : public FormControl {
 public:
  TextBox(std::string field, std::string text)
      : FormControl(ControlKind::kTextBox, std::move(field), std::move(text)) {}
};

class ComboBox final : public FormControl {
 public:
  ComboBox(std::string field, std::string text)
      : FormControl(ControlKind::kComboBox, std::move(field), std::move(text)) {}
};

/// Its text is that of its value, as a check box's default property is.
class CheckBox final : public FormControl {
 public:
  CheckBox(std::string field, std::int32_t value)
      : FormControl(ControlKind::kCheckBox, std::move(field), std::to_string(value)),
        value_(value) {}
  std::int32_t Value() const override { return value_; }

 private:
  std::int32_t value_;
};

/// A kind that the frame does not know, with a value: an option button.
class OptionButton final : public FormControl {
 public:
  OptionButton(std::string field, std::int32_t value)
      : FormControl(ControlKind::kOther, std::move(field), std::to_string(value)), value_(value) {}
  std::int32_t Value() const override { return value_; }

 private:
  std::int32_t value_;
};

class BoundCombo final : public FormControl {
 public:
  BoundCombo(std::string field, std::string text, std::string boundText)
      : FormControl(ControlKind::kBoundCombo, std::move(field), std::move(text)),
        boundText_(std::move(boundText)) {}
  std::string BoundText() const override { return boundText_; }

 private:
  std::string boundText_;
};

class ListBox final : public FormControl {
 public:
  ListBox(std::string field, std::vector<std::string> entries)
      : FormControl(ControlKind::kListBox, std::move(field)), entries_(std::move(entries)) {}
  std::int32_t ListCount() const override { return static_cast<std::int32_t>(entries_.size()); }
  void ListIndex(std::int32_t entry) override { selected_ = entry; }
  std::int32_t selected() const { return selected_; }
  std::string Text() const override {
    return selected_ < 0 ? std::string() : entries_.at(static_cast<std::size_t>(selected_));
  }

 private:
  std::vector<std::string> entries_;
  std::int32_t selected_ = -1;
};

class Grid final : public GridColumns {
 public:
  explicit Grid(std::vector<GridColumn> columns) : columns_(std::move(columns)) {}
  std::int32_t Count() const override { return static_cast<std::int32_t>(columns_.size()); }
  GridColumn Item(std::int32_t index) const override {
    return columns_.at(static_cast<std::size_t>(index));
  }

 private:
  std::vector<GridColumn> columns_;
};

}  // namespace tavelor::test
