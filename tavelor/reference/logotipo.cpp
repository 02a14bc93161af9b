// SPDX-License-Identifier: MIT
// Reading a picture in blocks.
#include "tavelor/reference/logotipo.hpp"

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/paths_service.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {
// Large blocks, then small ones, then single bytes: listeners of the record set see these writes.
constexpr std::array<std::size_t, 3> kBlocks = {32'768, 256, 1};
}  // namespace

void readLogotipo(Recordset& rows, const std::string& source) {
  if (!PathsService().FileExists(source)) return;
  std::ifstream file(source, std::ios::binary | std::ios::ate);
  const auto fail = [&] {
    raise(errors::kPathAccess, "ReadBLOB",
          fmt::format("The file {} cannot be read: {}", source, std::strerror(errno)));
  };
  if (!file) fail();
  auto left = static_cast<std::size_t>(file.tellg());
  if (left == 0) return;
  file.seekg(0);

  Field logotipo = rows.Field("Logotipo");
  // Reading another field ends the pieces of an earlier picture, so that this one takes its place.
  rows.Field(0).Value();
  for (const std::size_t size : kBlocks) {
    for (; left >= size; left -= size) {
      Bytes block(size);
      if (!file.read(reinterpret_cast<char*>(block.data()), static_cast<std::streamsize>(size))) {
        fail();
      }
      logotipo.AppendChunk(std::move(block));
    }
  }
}

}  // namespace tavelor
