// SPDX-License-Identifier: MIT
// What a caller may do, and who that is.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tavelor::web {

/// What a route asks of its caller. All from kTillSell on have a name, and roles and keys list
/// them.
enum class Right : std::uint8_t {
  kAnyone,    ///< nobody need be signed in
  kSignedIn,  ///< whoever it is
  kTillSell,
  kTillPrice,
  kTillDiscount,
  kTillReturn,
  kTillCredit,
  kTillClose,
  kTillDrawer,
  kOfficeRead,
  kOfficeWrite,
  kOfficeCall,
  kAdmin,
};
inline constexpr std::size_t kRights = static_cast<std::size_t>(Right::kAdmin) + 1;

/// "till.sell"; "" for those without a name.
std::string_view nameOf(Right right);
/// None for a name that no right has.
std::optional<Right> rightOf(std::string_view name);

/// What somebody may, and what is denied all the same: classes by "class.ClsBancos.write".
class Rights {
 public:
  Rights() = default;
  /// Of names separated by blanks: "till.sell office.read -class.ClsBancos.write"; "till.*" is all
  /// of the till, "*" all there are. Raises 5 for a word that means nothing.
  static Rights of(std::string_view words);

  bool has(Right right) const;
  /// Whether a word stands with a "-" before it.
  bool denies(std::string_view identifier) const { return denied_.contains(identifier); }
  void add(Right right) { granted_.set(static_cast<std::size_t>(right)); }
  /// Names, in the order of the enumeration.
  std::vector<std::string> names() const;

 private:
  std::bitset<kRights> granted_;
  std::set<std::string, std::less<>> denied_;
};

/// Who asks.
struct Caller {
  enum class Kind : std::uint8_t { kNobody, kEmployee, kProgram };
  Kind kind = Kind::kNobody;
  std::string code = {};  ///< of the employee; name of the program's key
  std::string name = {};  ///< of the employee
  std::string role = {};
  Rights rights = {};
  std::string session = {};  ///< hash of the employee's session, which is its key; "" for a program

  bool isNobody() const { return kind == Kind::kNobody; }
  bool may(Right right) const;
};

}  // namespace tavelor::web
