// SPDX-License-Identifier: MIT
// The process that reads a database file for OldDatabase, and what the two say to each other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace tavelor::tools::old_database {

/// What a message of the reading process is. Each is its kind, the size of what follows in four
/// bytes, and that. It answers whoever writes the four bytes of a table's number.
enum class Message : std::uint8_t {
  kTable = 'T',      ///< name, rows, then type and name of each column
  kLinked = 'L',     ///< name
  kRelation = 'R',   ///< child, its columns, parent, its columns
  kStructure = 'E',  ///< all that was told is all there is
  kRow = 'V',        ///< a Cell for each column
  kTableEnd = 'Z',   ///< rows that could not be read
  kFailure = 'F',    ///< why nothing more comes
};

/// What begins a value in a kRow.
enum class Cell : std::uint8_t {
  kNull = 'N',
  kFlag = 'B',
  kInteger = 'I',  ///< four bytes
  kMoney = 'C',    ///< ten-thousandths, eight bytes
  kSingle = 'S',
  kDouble = 'D',
  kDate = 'T',  ///< day number
  kText = 'X',
  kBytes = 'Y',
  kUnreadable = '!',  ///< why, a text
};

/// Adds plain values and texts with their sizes to a message.
template <typename T>
void put(std::string& message, T value) requires std::is_trivially_copyable_v<T> {
  char bytes[sizeof value];  // NOLINT(*-c-arrays)
  std::memcpy(bytes, &value, sizeof value);
  message.append(bytes, sizeof value);
}
inline void putText(std::string& message, std::string_view text) {
  put(message, static_cast<std::uint32_t>(text.size()));
  message += text;
}

/// Reads the file and answers at `socket` until nobody asks any more. Never comes back.
[[noreturn]] void serve(const std::string& path, int socket);

}  // namespace tavelor::tools::old_database
