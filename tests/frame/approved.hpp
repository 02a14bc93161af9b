// SPDX-License-Identifier: MIT
// Pages compared byte by byte with the ones that were looked at and approved.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

namespace tavelor::test {

inline std::string bytesOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  EXPECT_TRUE(in) << file << " is not there";
  return {std::istreambuf_iterator<char>(in), {}};
}

/// With TAVELOR_APPROVE=1 the page becomes the approved one: look at the difference and commit it.
inline void expectApproved(const std::filesystem::path& page, const std::string& name,
                           const std::string& folder = "tests/frame/approved") {
  const std::filesystem::path approved = std::filesystem::path(TAVELOR_SOURCE_DIR) / folder / name;
  const std::string bytes = bytesOf(page);
  const char* approve = std::getenv("TAVELOR_APPROVE");
  if (approve != nullptr && std::string(approve) == "1") {
    std::ofstream(approved, std::ios::binary) << bytes;
  }
  EXPECT_EQ(bytes, bytesOf(approved)) << "see " << approved;
}

}  // namespace tavelor::test
