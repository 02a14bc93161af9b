// SPDX-License-Identifier: MIT
// Values that try to be more than values, for every place that takes one.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/dialect/corpus_case.hpp"

namespace tavelor::test {

/// Those that people have thought of, and the seeds of the fuzzing.
inline std::vector<std::string> hostileValues() {
  std::vector<std::string> values{"'",
                                  "''",
                                  "\"",
                                  "x'",
                                  "x'); DELETE FROM Bancos; --",
                                  "' or '1'='1",
                                  "x', 0, 0 --",
                                  "1 AS a, 2",
                                  "(SELECT 1)",
                                  "1; DELETE FROM Bancos",
                                  "Saldo",
                                  "1 OR 1=1",
                                  "\\",
                                  "\\'",
                                  "\\'; DROP TABLE Bancos; --",
                                  "$1",
                                  "$$x$$",
                                  "$tag$",
                                  "?1",
                                  ":1",
                                  "%s",
                                  "E'x'",
                                  "U&'\\0041'",
                                  "x\\000y",
                                  "\\x41",
                                  "'; SELECT pg_sleep(9); --",
                                  "'||version()||'",
                                  "1::text",
                                  "current_user",
                                  "/* x */",
                                  "--",
                                  "-- x\n",
                                  "#",
                                  "1#",
                                  "01/01/2025# OR #01/01/2025",
                                  "NULL",
                                  "",
                                  " ",
                                  "\t",
                                  "\n",
                                  "\r\n",
                                  ";",
                                  "ñandú",
                                  "\xE2\x80\x99",
                                  "\xC2\xA0",
                                  "\xEF\xBC\x87",
                                  "\xF0\x9F\x90\x9F",
                                  "[x]",
                                  "[",
                                  "*",
                                  "?",
                                  "_",
                                  "%",
                                  "1e400",
                                  "-1e400",
                                  "99999999999999999999",
                                  "-0",
                                  "0x10",
                                  "1,5",
                                  "1.5.5",
                                  "+-1",
                                  "01/01/0001",
                                  "31/31/2025",
                                  "99/99/9999",
                                  std::string(300, 'x'),
                                  std::string(70'000, 'y'),
                                  "true",
                                  "infinity",
                                  "NaN",
                                  "epoch",
                                  "now",
                                  "tomorrow"};
  for (const auto& entry :
       std::filesystem::directory_iterator(tests::detail::kSource / "fuzz/seeds/value")) {
    values.push_back(tests::readFile(entry.path()));
  }
  return values;
}

}  // namespace tavelor::test
