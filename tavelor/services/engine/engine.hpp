// SPDX-License-Identifier: MIT
// What a database engine must do. A new engine implements these three classes in a folder of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tavelor {
struct Locale;
}

namespace tavelor::engine {

class Catalogue;
class RowStore;
struct Value;

/// A statement in the engine's own text, compiled once and run many times by one session.
class Prepared {
 public:
  virtual ~Prepared() = default;
  virtual int parameterCount() const = 0;
  /// `index` from 1. Views in `value` must live until run() or fetch() returns.
  virtual void bind(int index, const Value& value) = 0;
  /// Runs to the end and gives the number of rows written. After an error the statement has changed
  /// nothing and may be run again.
  virtual std::int64_t run() = 0;
  /// Runs to the end and appends every row. A value that is not of the store's column type is
  /// converted as far as it can be; what cannot be converted raises 13. After an error `rows` holds
  /// what was fetched before it.
  virtual void fetch(RowStore& rows) = 0;
};

/// One connection to a database, used by one thread.
///
/// Errors come as tavelor::Error: errors::kBusy when another writer did not finish within the wait,
/// kIntegrityViolation for a key or a null that the table refuses, kSyntax for a text that the
/// engine refuses, kUnspecified for the rest (disk full, file damaged, read-only), each with the
/// engine's own code.
class Session {
 public:
  virtual ~Session() = default;

  virtual std::unique_ptr<Prepared> prepare(std::string_view engineText) = 0;
  /// Runs one or several statements that give no rows, without keeping them.
  virtual void execute(std::string_view engineText) = 0;

  /// Transactions nest; the number of open levels is the result. The outermost one takes the right
  /// to write at once, waiting for it if need be, so that it can't fail half way for want of it.
  virtual int begin() = 0;
  virtual int commit() = 0;
  virtual int rollback() = 0;
  virtual int depth() const = 0;

  virtual Catalogue describe() = 0;
};

struct OpenOptions {
  std::string path;             ///< of a file-based database
  bool create = false;          ///< make the file if it is not there; else that is an error
  bool readOnly = false;
  bool synchronous = true;      ///< false: a power cut may lose the last transactions, never the file
  int busyTimeoutMs = 5000;     ///< how long to wait for another writer
  std::shared_ptr<const Locale> locale;  ///< by which texts in columns read as numbers
};

class Engine {
 public:
  virtual ~Engine() = default;
  /// "sqlite".
  virtual std::string_view name() const = 0;
  /// True if a database of this engine is one file.
  virtual bool isFile() const = 0;
  virtual std::unique_ptr<Session> open(const OpenOptions& options) const = 0;
};

}  // namespace tavelor::engine
