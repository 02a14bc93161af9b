// SPDX-License-Identifier: MIT
// Any text as filter, order and search of a record set: it is refused and leaves all as it was, or
// the view holds rows of the set, and a search finds the first row that the filter shows.
#include <string>

#include "fuzz/input.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor::fuzz {

namespace {

RecordsetPtr sampleSet() {
  auto set = std::make_shared<Recordset>();
  set->Fields().Append("Codigo", DataType::kVarWChar, 20);
  set->Fields().Append("Razon Social", DataType::kVarWChar, 100);
  set->Fields().Append("Importe", DataType::kCurrency);
  set->Fields().Append("Cantidad", DataType::kDouble);
  set->Fields().Append("Unidades", DataType::kInt32);
  set->Fields().Append("Fecha", DataType::kDate);
  set->Fields().Append("Activo", DataType::kBoolean);
  set->Fields().Append("Nota", DataType::kLongVarWChar);
  set->Open();
  for (int row = 0; row < 12; ++row) {
    set->AddNew();
    set->Field(0).Value(Variant(std::to_string(row % 5)));
    if (row % 3 != 0)
      set->Field(1).Value(Variant(std::string(row % 2 == 0 ? "Peña's, S.L." : "a*b")));
    if (row % 4 != 0) set->Field(2).Value(Variant(row * 1.25));
    set->Field(3).Value(row == 7 ? Variant(Null{}) : Variant(row / 3.0));
    set->Field(4).Value(Variant(std::int32_t{row - 6}));
    if (row % 5 != 0) set->Field(5).Value(Variant(Date(46000 + row / 4.0)));
    set->Field(6).Value(Variant(row % 2 == 0));
    if (row % 2 == 0) set->Field(7).Value(Variant(std::string(static_cast<std::size_t>(row), 'x')));
    set->Update();
  }
  set->UpdateBatch();
  return set;
}

constexpr std::int32_t kRows = 12;

template <typename Work>
bool accepted(Work work) {
  try {
    work();
    return true;
  } catch (const Error& error) {
    require(error.number() == errors::kInvalidArgument || error.number() == errors::kItemNotFound ||
                error.number() == errors::kCriteriaTypeMismatch,
            "criteria are refused by their own numbers", error.what());
    return false;
  }
}

void check(Recordset& set, const std::string& text) {
  set.Filter("");
  set.Sort("");
  set.MoveFirst();
  const bool found = accepted([&] { set.Find(text); });
  const Variant bookmark = found && !set.Eof() ? set.Bookmark() : Variant();

  if (accepted([&] { set.Filter(text); })) {
    require(set.RecordCount() <= kRows, "a filter shows rows of the set", text);
    if (found) {
      require(set.Eof() == bookmark.isEmpty(), "a search finds what the filter shows", text);
      if (!set.Eof()) {
        require(set.Bookmark() == bookmark, "a search finds the first row of the filter", text);
      }
    }
  } else {
    require(!found || text.find_first_not_of(" \t\r\n") == std::string::npos,
            "what a search takes a filter takes", text);
    require(set.RecordCount() == kRows && set.Filter().empty(), "a refused filter changes nothing",
            text);
  }
  set.Filter("");

  if (accepted([&] { set.Sort(text); })) {
    std::int32_t rows = 0;
    for (set.MoveFirst(); !set.Eof(); set.MoveNext()) ++rows;
    require(rows == kRows, "an order keeps all rows", text);
  } else {
    require(set.Sort().empty(), "a refused order changes nothing", text);
  }
}

}  // namespace

}  // namespace tavelor::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const tavelor::RecordsetPtr set = tavelor::fuzz::sampleSet();
  tavelor::fuzz::check(*set, std::string(reinterpret_cast<const char*>(data), size));
  return 0;
}
