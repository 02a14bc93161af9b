// SPDX-License-Identifier: MIT
// The static site: its pages in their common dress, and the index that its search reads.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tavelor::reference {

/// How an address begins in the HTML of a page: at the root of the site, wherever the page lies.
inline constexpr std::string_view kRoot = "@/";

/// Something that can be found.
struct Entry {
  std::string title;
  std::string kind;     ///< "class", "member", "mode", "column"...
  std::string address;  ///< with kRoot
  std::string text;     ///< plain: what is shown below, and looked through last
};

class Site {
 public:
  explicit Site(std::filesystem::path folder) : folder_(std::move(folder)) {}

  const std::filesystem::path& folder() const { return folder_; }

  struct Dress {
    std::string title;
    std::string language = "en";
    std::string_view alternate;  ///< the same page in the other language, with kRoot, or ""
  };
  /// Writes a page, "classes/ClsBancos.html", whose folder is made when it is missing.
  void write(const std::string& path, const Dress& dress, std::string_view body) const;

  void add(Entry entry) { entries_.push_back(std::move(entry)); }
  /// The file that the search reads; `assets` holds the style and the script, which are copied.
  void finish(const std::filesystem::path& assets) const;

 private:
  std::filesystem::path folder_;
  std::vector<Entry> entries_;
};

/// Raises std::runtime_error for a file that cannot be read, or written.
std::string readText(const std::filesystem::path& file);
void writeText(const std::filesystem::path& file, std::string_view text);

}  // namespace tavelor::reference
