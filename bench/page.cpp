// SPDX-License-Identifier: MIT
// Pages of many rows beside writing their bytes, which lie ready in memory, with the standard
// library.
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/frame/controls.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/services/clock.hpp"

namespace tavelor::bench {

namespace {

constexpr std::size_t kPageRows = 100'000;

constexpr std::array kModes = {Mode{kAnyOtherWord, "SELECT * FROM Largas"}};
constexpr ClassInfo kInfo = {
    .word = "Largas", .table = "Largas", .codeColumn = "Id", .modes = kModes};

class LongRows final : public OpensByWord {
 public:
  LongRows() : OpensByWord(kInfo) {}
  std::string typeName() const override { return "LongRows"; }
  using RecordClass::writeModernPage;
};

/// All columns, numbers at the right.
class AllColumns final : public GridColumns {
 public:
  explicit AllColumns(Recordset& rows) {
    constexpr std::int32_t kRight = 1;
    constexpr std::int32_t kLeft = 3;
    for (std::int32_t i = 0; i < rows.Fields().Count(); ++i) {
      const Field field = rows.Field(i);
      const bool text = field.Type() == static_cast<std::int32_t>(DataType::kVarWChar);
      columns_.push_back({true, field.Name(), text ? kLeft : kRight});
    }
  }
  std::int32_t Count() const override { return static_cast<std::int32_t>(columns_.size()); }
  GridColumn Item(std::int32_t index) const override {
    return columns_.at(static_cast<std::size_t>(index));
  }

 private:
  std::vector<GridColumn> columns_;
};

std::string bytesOf(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

template <typename Write>
Comparison pageWork(std::string name, double target, LongRows& rows, const BenchShop& shop,
                    Write write) {
  const std::string page = rows.GetHtmlFile();
  write();
  const std::string bytes = bytesOf(page);
  const std::string copy = (shop.folder() / "page.htm").string();
  const auto size = [](const std::string& file) {
    return static_cast<double>(std::filesystem::file_size(file));
  };
  return {std::move(name),
          static_cast<std::size_t>(rows.DataMember("Primary")->RecordCount()),
          target,
          {[bytes, copy, size] {
             std::ofstream out(copy, std::ios::binary);
             out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
             out.close();
             if (!out) throw std::runtime_error("the page cannot be written by hand");
             return size(copy);
           },
           [copy] { std::filesystem::remove(copy); }},
          {[write, page, size] {
             write();
             return size(page);
           },
           [page] { std::filesystem::remove(page); }}};
}

}  // namespace

void measurePage(Report& report, const Scale& scale) {
  BenchShop shop;
  addLongTable(shop, scale.of(kPageRows));
  shop.share();
  Apartment::current().clock().fix(Date::of(2026, 11, 21));  // which every page tells
  LongRows rows;
  rows.IniciaRs();
  const AllColumns columns(*rows.DataMember("Primary"));
  report.add(compare(
      pageWork("page of 12 columns", 2.0, rows, shop, [&] { rows.ToHtmlGrid(columns); }), scale));
  // A third less markup around the same cells: what is left is mostly the printing of values.
  report.add(compare(pageWork("modern page of 12 columns", 2.0, rows, shop,
                              [&] { rows.writeModernPage("", columns, false, "", false); }),
                     scale));
}

}  // namespace tavelor::bench
