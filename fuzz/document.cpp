// SPDX-License-Identifier: MIT
// Any bytes as a saved record set: refused, or a set that can be read from end to end and that,
// saved and loaded once more, stays as it is.
#include <string>

#include "fuzz/input.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor::fuzz {

namespace {

void readAll(Recordset& set) {
  const std::int32_t columns = set.Fields().Count();
  std::int32_t rows = 0;
  for (; !set.Eof(); set.MoveNext(), ++rows) {
    for (std::int32_t i = 0; i < columns; ++i) {
      Field field = set.Field(i);
      (void)field.Value();
      (void)field.OriginalValue();
      (void)field.ActualSize();
    }
    (void)set.Status();
  }
  require(rows == set.RecordCount(), "as many rows as are counted");
}

}  // namespace

}  // namespace tavelor::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavelor;
  RecordsetPtr set;
  try {
    set = Recordset::LoadXml({reinterpret_cast<const char*>(data), size});
  } catch (const Error& error) {
    fuzz::require(error.number() == errors::kInvalidArgument, "a bad document is 3001",
                  error.what());
    return 0;
  }
  try {
    fuzz::readAll(*set);
    const std::string saved = set->SaveXml();
    const std::string again = Recordset::LoadXml(saved)->SaveXml();
    fuzz::require(saved == again, "what was saved loads as it is", saved + "\n" + again);
  } catch (const Error& error) {
    fuzz::require(false, "what was loaded can be read and saved", error.what());
  }
  return 0;
}
