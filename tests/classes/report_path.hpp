// SPDX-License-Identifier: MIT
// Whether a class has the frame's report path, which some do not.
#pragma once

namespace tavelor::test {

template <typename Class>
concept HasReportPath = requires(Class& of) {
  of.GetRptPath({});
};

}  // namespace tavelor::test
