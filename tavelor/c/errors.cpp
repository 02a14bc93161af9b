// SPDX-License-Identifier: MIT
// Errors as values.
#include <array>
#include <new>
#include <vector>

#include "tavelor/c/calls.hpp"
#include "tavelor/flows/sale.hpp"

struct tavelor_error final {
  explicit tavelor_error(const tavelor::Error& raised) : error(raised) {}

  tavelor::Error error;
  std::vector<tavelor::flows::SaleFault> faults;  ///< of a sale that was refused
};

namespace tavelor::c {

namespace {

/// Tells the error where somebody wants it. Without memory for that the number must do.
tavelor_status told(const Error& raised, const std::vector<flows::SaleFault>* faults,
                    tavelor_error** error) noexcept {
  // Success is 0, so no error is.
  const tavelor_status number = raised.number() == 0 ? errors::kUnspecified : raised.number();
  if (error == nullptr) return number;
  try {
    auto made = std::make_unique<tavelor_error>(
        raised.number() == number ? raised : Error(number, raised.source(), raised.description()));
    if (faults != nullptr) made->faults = *faults;
    *error = made.release();
  } catch (const std::bad_alloc&) {
    *error = nullptr;
  }
  return number;
}

}  // namespace

tavelor_status caught(tavelor_error** error) noexcept {
  try {
    throw;
  } catch (const flows::RefusedSale& refused) {
    return told(refused, &refused.faults(), error);
  } catch (const Error& raised) {
    return told(raised, nullptr, error);
  } catch (const std::exception& other) {
    try {
      return told(Error(errors::kUnspecified, std::string(kSource), other.what()), nullptr, error);
    } catch (const std::bad_alloc&) {
      return errors::kUnspecified;
    }
  } catch (...) {
    return errors::kUnspecified;
  }
}

}  // namespace tavelor::c

int32_t tavelor_error_number(const tavelor_error* error) {
  return error == nullptr ? 0 : error->error.number();
}

int32_t tavelor_error_kind(const tavelor_error* error) {
  return error == nullptr ? 0 : static_cast<std::int32_t>(error->error.kind());
}

const char* tavelor_error_source(const tavelor_error* error) {
  return error == nullptr ? "" : error->error.source().c_str();
}

const char* tavelor_error_description(const tavelor_error* error) {
  return error == nullptr ? "" : error->error.description().c_str();
}

const char* tavelor_error_notes(const tavelor_error* error) {
  return error == nullptr ? "" : error->error.notes().c_str();
}

const char* tavelor_error_message(const tavelor_error* error) {
  return error == nullptr ? "" : error->error.what();
}

const char* tavelor_error_statement(const tavelor_error* error) {
  return error == nullptr ? "" : error->error.statement().c_str();
}

int64_t tavelor_error_place(const tavelor_error* error, int64_t* line, int64_t* column) {
  const std::int64_t offset = error == nullptr ? -1 : error->error.offset();
  tavelor::TextPlace place{0, 0};
  if (offset >= 0) place = tavelor::placeOf(error->error.statement(), offset);
  if (line != nullptr) *line = place.line;
  if (column != nullptr) *column = place.column;
  return offset;
}

int32_t tavelor_error_native_code(const tavelor_error* error) {
  return error == nullptr ? 0 : error->error.nativeCode();
}

size_t tavelor_error_fault_count(const tavelor_error* error) {
  return error == nullptr ? 0 : error->faults.size();
}

const char* tavelor_error_fault(const tavelor_error* error, size_t index, size_t* line,
                                const char** article) {
  const bool isThere = index < tavelor_error_fault_count(error);
  if (line != nullptr) *line = isThere ? error->faults[index].line : 0;
  if (article != nullptr) *article = isThere ? error->faults[index].code.c_str() : "";
  return isThere ? error->faults[index].reason.c_str() : "";
}

void tavelor_error_free(tavelor_error* error) {
  delete error;
}
