// SPDX-License-Identifier: MIT
// A form layer's controls behind the frame: a search form filters a grid, and the grid is printed.
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "tavelor/frame/controls.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/reference/transportistas.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace {

// What some form layer has: plain widgets that know nothing of this library.
struct Widget {
  std::string field = {};
  std::string text = {};
  bool isTick = false;
  bool ticked = false;
};

struct Column {
  std::string title;
  bool shown;
  bool number;
};

// [controls]
/// A widget as the frame sees it.
class WidgetControl final : public tavelor::Control {
 public:
  explicit WidgetControl(const Widget& widget) : widget_(widget) {}

  tavelor::ControlKind kind() const override {
    return widget_.isTick ? tavelor::ControlKind::kCheckBox : tavelor::ControlKind::kTextBox;
  }
  std::string DataField() const override { return widget_.field; }
  std::string defaultText() const override {
    return widget_.isTick ? std::to_string(Value()) : widget_.text;
  }
  std::int32_t Value() const override { return widget_.ticked ? 1 : 0; }

 private:
  const Widget& widget_;
};

/// The columns of a grid as the frame sees them, in the order of the record set's fields.
class ColumnsOfGrid final : public tavelor::GridColumns {
 public:
  explicit ColumnsOfGrid(const std::vector<Column>& columns) : columns_(columns) {}

  std::int32_t Count() const override { return static_cast<std::int32_t>(columns_.size()); }
  tavelor::GridColumn Item(std::int32_t index) const override {
    constexpr std::int32_t kRight = 1;
    constexpr std::int32_t kLeft = 3;
    const Column& column = columns_.at(static_cast<std::size_t>(index));
    return {column.shown, column.title, column.number ? kRight : kLeft};
  }

 private:
  const std::vector<Column>& columns_;
};
// [controls]

void addCarrier(tavelor::ClsTransportistas& carriers, const char* name, const char* town,
                bool active, double discount) {
  const auto rows = carriers.DataMember("Primary");
  carriers.AddNew(true);
  rows->Field("Empresa").Value(name);
  rows->Field("Población").Value(town);
  rows->Field("Activo").Value(active);
  rows->Field("Dto").Value(discount);
  carriers.Update();
}

}  // namespace

int main() {
  try {
    tavelor::Apartment apartment(tavelor::Installation::create("shop"));
    tavelor::ClsTransportistas carriers;
    carriers.IniciaRs({}, "todos");
    addCarrier(carriers, "Portes del Sur", "Sevilla", true, 5);
    addCarrier(carriers, "Portes Núñez", "Salamanca", true, 2.5);
    addCarrier(carriers, "Portes Lentos", "Salamanca", false, 20);

    // [form]
    // What was typed: names that begin with "portes", active ones, in two of the fields.
    const Widget name{.field = "Empresa", .text = "portes"};
    const Widget active{.field = "Activo", .isTick = true, .ticked = true};
    const Widget town{.field = "Población"};

    std::string filter;
    for (const Widget* widget : {&name, &active, &town}) {
      WidgetControl control(*widget);
      const std::string criterion = carriers.CreateFilter(control);
      if (criterion.empty()) continue;
      if (!filter.empty()) filter += "And ";
      filter += criterion;
    }
    carriers.AplyFilter(filter);
    carriers.SetFilter(filter, "Filter");
    // [form]
    std::cout << "Filter: " << filter << '\n';
    std::cout << carriers.DataMember("Primary")->RecordCount() << " rows\n";

    // The form asks what fits before it takes a key press or leaves a field.
    const Widget code{.field = "Código", .text = "1234567890"};
    const Widget discount{.field = "Dto", .text = "mucho"};
    std::cout << "Room of the code: " << carriers.ValidaDefinedSize(WidgetControl(code))
              << "; one more key: " << carriers.ValidaKey(WidgetControl(code), 'x')
              << "; a discount of mucho: " << carriers.ValidaValue(WidgetControl(discount)) << '\n';

    // [page]
    std::vector<Column> columns;
    const auto fields = carriers.DataMember("Primary")->Fields();
    for (std::int32_t i = 0; i < fields.Count(); ++i) {
      const std::string& title = fields.Item(i).Name();
      columns.push_back({title, title == "Empresa" || title == "Dto", title == "Dto"});
    }
    // A clone in the grid's order, with the filter that was stored: the form's own rows stay put.
    carriers.ToHtmlGrid(ColumnsOfGrid(columns), true, "todos", true);
    // [page]

    std::cout << "Page: " << std::filesystem::path(carriers.GetHtmlFile()).filename() << '\n';
    return 0;
  } catch (const tavelor::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
