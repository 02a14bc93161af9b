// SPDX-License-Identifier: MIT
// Properties that a kind of control does not have.
#include "tavelor/frame/controls.hpp"

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"

namespace tavelor {

namespace {
[[noreturn]] void raiseMissing(const Control& control, std::string_view property) {
  raise(errors::kMemberNotFound, "Control",
        fmt::format("The control of the field {} has no {}", control.DataField(), property));
}
}  // namespace

std::int32_t Control::Value() const {
  raiseMissing(*this, "Value");
}
std::int32_t Control::ListCount() const {
  raiseMissing(*this, "ListCount");
}
void Control::ListIndex(std::int32_t /*entry*/) {
  raiseMissing(*this, "ListIndex");
}
std::string Control::BoundText() const {
  raiseMissing(*this, "BoundText");
}

}  // namespace tavelor
