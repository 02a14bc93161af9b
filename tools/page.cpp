// SPDX-License-Identifier: MIT
// The page of a class.
#include "tools/page.hpp"

#include "tavelor/customers/clientes.hpp"
#include "tavelor/frame/controls.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor::tools {

namespace {

constexpr std::int32_t kRight = 1;
constexpr std::int32_t kLeft = 3;
// What a field that is no number has as its precision.
constexpr std::int32_t kNoPrecision = 255;

/// A column for each field, numbers at the right.
class FieldColumns final : public GridColumns {
 public:
  FieldColumns(Recordset& rows, const std::vector<std::string>& shown) {
    for (std::int32_t i = 0; i < rows.Fields().Count(); ++i) {
      const Field field = rows.Field(i);
      const auto type = static_cast<DataType>(field.Type());
      columns_.push_back({.visible = shown.empty() && type != DataType::kLongVarBinary,
                          .caption = field.Name(),
                          .alignment = field.Precision() == kNoPrecision ? kLeft : kRight});
    }
    for (const std::string& name : shown) columns_[rows.Field(name).column()].visible = true;
  }

  std::int32_t Count() const override { return static_cast<std::int32_t>(columns_.size()); }
  GridColumn Item(std::int32_t index) const override {
    return columns_.at(static_cast<std::size_t>(index));
  }

 private:
  std::vector<GridColumn> columns_;
};

}  // namespace

std::string writePage(RecordClass& record, const std::vector<std::string>& columns) {
  const FieldColumns grid(*record.DataMember("Primary"), columns);
  if (auto* const customers = dynamic_cast<ClsClientes*>(&record)) {
    customers->ToHtmlGrid("", grid);  // which takes a user's folder first
  } else {
    record.ToHtmlGrid(grid);
  }
  return record.GetHtmlFile();
}

}  // namespace tavelor::tools
