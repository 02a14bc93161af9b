// SPDX-License-Identifier: MIT
// Files that the user names for what the command writes.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace tavelor {
class Installation;
}

namespace tavelor::tools {

/// Raises UsageError where a file that an option names is one of the shop's own, by whatever name
/// or link: its settings, its databases and their write-ahead files, its registry, and what is
/// there in its folders for slips, pages and documents.
void requireForeign(const std::string& option, const std::string& file, const Installation& shop);

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using OutputFile = std::unique_ptr<std::FILE, FileCloser>;

/// Begins the file that an option names with its first line, in the place of an earlier one that
/// begins with the same line. Raises UsageError as requireForeign, and where it is the file that is
/// read, `input`; FileError where it cannot be written.
OutputFile beginOutput(const std::string& option, const std::string& file, std::string_view head,
                       const std::string& input, const Installation& shop);

}  // namespace tavelor::tools
