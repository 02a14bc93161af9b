// SPDX-License-Identifier: MIT
// What parts must be, where they lie, and what they change in sums.
#include "tavelor/flows/parts.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include <fmt/format.h>

#include "tavelor/flows/amounts.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::flows {

namespace {

double cents(double amount) {
  return roundHalfAway(amount, 2);
}

std::string shown(const std::string& code) {
  return std::string(text::left(code, 40));
}

std::string faultOfAmount(double amount, bool isReturn) {
  if (!std::isfinite(amount) || std::abs(amount) > kMostMoney) return "is no amount";
  if (std::abs(amount - cents(amount)) > 1e-6) return "is no whole cents";
  if (cents(amount) == 0) return "is 0";
  if ((amount < 0) != isReturn) return "has not the sign of the sale";
  return {};
}

/// Adds to the sum of that method, which may be a new one.
void addTo(PaymentSums& sums, const std::string& payment, double amount) {
  const auto found = std::find_if(sums.begin(), sums.end(),
                                  [&](const auto& each) { return each.first == payment; });
  if (found == sums.end()) {
    sums.emplace_back(payment, cents(amount));
  } else {
    found->second = cents(found->second + amount);
  }
}

}  // namespace

std::vector<std::string> faultsOfParts(const Sale& sale, Known& known) {
  std::vector<std::string> faults;
  if (sale.parts.empty()) return faults;
  const double total = sale.total();
  std::set<std::string> methods;
  double sum = 0;
  for (const PaymentPart& part : sale.parts) {
    const std::string name = fmt::format("the part paid by {}", shown(part.payment));
    const PaymentMethod* const method = known.payment(part.payment);
    if (method == nullptr) {
      faults.push_back(fmt::format("the shop has no payment method {}", shown(part.payment)));
    } else if (method->isOnCredit) {
      faults.push_back(name + " is on credit, which only a whole sale can be");
    }
    if (!methods.insert(part.payment).second) faults.push_back(name + " comes twice");
    if (const std::string fault = faultOfAmount(part.amount, total < 0); !fault.empty()) {
      faults.push_back(fmt::format("{} {}", name, fault));
    }
    sum += part.amount;
  }
  if (!methods.contains(sale.payment)) {
    faults.push_back(
        fmt::format("no part is paid by {}, the sale's own payment method", shown(sale.payment)));
  }
  // What is no amount has been told.
  if (std::isfinite(sum) && std::isfinite(total) && cents(sum) != cents(total)) {
    faults.push_back(fmt::format("its parts are {:.2f}, and it comes to {:.2f}", sum, total));
  }
  return faults;
}

double handedOver(const Sale& sale, Known& known) {
  if (sale.parts.empty()) return sale.delivered;
  double sum = sale.delivered;
  for (const PaymentPart& part : sale.parts) {
    const PaymentMethod* const method = known.payment(part.payment);
    if (method != nullptr && !method->isCash) sum += part.amount;
  }
  return cents(sum);
}

bool areSame(const std::vector<PaymentPart>& some, const std::vector<PaymentPart>& others) {
  if (some.size() != others.size()) return false;
  return std::all_of(some.begin(), some.end(), [&](const PaymentPart& each) {
    return std::any_of(others.begin(), others.end(), [&](const PaymentPart& other) {
      return other.payment == each.payment && cents(other.amount) == cents(each.amount);
    });
  });
}

std::vector<PaymentPart> partsOf(double ticket, const ConnectionPtr& documents) {
  Statement statement("SELECT Forma_Pago, Importe FROM Tickets_Pagos WHERE Numero = ");
  statement << spliced(sqlNumber(ticket, 0)) << " ORDER BY Linea";
  std::vector<PaymentPart> parts;
  for (Rows rows(selector::kDocuments, statement, documents); rows.hasRow(); rows.next()) {
    parts.push_back({rows.text("Forma_Pago"), rows.number("Importe")});
  }
  return parts;
}

void writeParts(const Sale& sale, double ticket, const ConnectionPtr& documents) {
  ConnectionPtr connection = documents;
  int place = 0;
  for (const PaymentPart& part : sale.parts) {
    Statement statement("INSERT INTO Tickets_Pagos (Numero, Linea, Forma_Pago, Importe) VALUES (");
    statement << spliced(sqlNumber(ticket, 0)) << ", " << spliced(std::to_string(++place)) << ", "
              << sqlText(part.payment) << ", " << spliced(sqlNumber(cents(part.amount))) << ")";
    DataSession().Execute(selector::kDocuments, statement, connection);
  }
}

void splitByParts(PaymentSums& sums, const Statement& which, const ConnectionPtr& documents) {
  // From the tickets on: parts of all years lie in the other table.
  Statement statement(
      "SELECT Tickets.Forma_Pago AS Pago, Tickets_Pagos.Forma_Pago AS Parte, "
      "Sum(Tickets_Pagos.Importe) AS Importe FROM Tickets LEFT JOIN Tickets_Pagos ON "
      "Tickets.Numero = Tickets_Pagos.Numero WHERE ");
  statement << which
            << " GROUP BY Tickets.Forma_Pago, Tickets_Pagos.Forma_Pago ORDER BY "
               "Tickets.Forma_Pago, Tickets_Pagos.Forma_Pago";
  for (Rows rows(selector::kDocuments, statement, documents); rows.hasRow(); rows.next()) {
    if (rows.isNull("Parte")) continue;
    const std::string own = rows.text("Pago");
    const std::string part = rows.text("Parte");
    if (own == part) continue;
    addTo(sums, own, -rows.number("Importe"));
    addTo(sums, part, rows.number("Importe"));
  }
}

std::vector<PaymentPart> givenBack(const Sale& back, const Sale& sold,
                                   const std::vector<Sale>& earlier) {
  PaymentSums left;
  addTo(left, sold.payment, 0);
  for (const PaymentPart& part : sold.parts) addTo(left, part.payment, part.amount);
  for (const Sale& each : earlier) {
    if (each.parts.empty()) addTo(left, each.payment, each.total());
    for (const PaymentPart& part : each.parts) addTo(left, part.payment, part.amount);
  }
  double rest = cents(-back.total());
  std::vector<PaymentPart> parts;
  for (const auto& [payment, amount] : left) {
    const double taken = std::clamp(amount, 0.0, std::max(rest, 0.0));
    if (taken == 0) continue;
    parts.push_back({payment, -taken});
    rest = cents(rest - taken);
  }
  // More by one method than was paid by it, where others were told for earlier returns.
  if (rest > 0) {
    if (parts.empty() || parts.front().payment != sold.payment) {
      parts.insert(parts.begin(), {sold.payment, 0});
    }
    parts.front().amount = cents(parts.front().amount - rest);
  }
  return parts;
}

}  // namespace tavelor::flows
