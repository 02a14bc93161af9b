// SPDX-License-Identifier: MIT
// A number that nobody else gets: read, used and written in one transaction of its own connection.
#include <algorithm>
#include <iostream>
#include <string_view>
#include <thread>
#include <vector>

#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace {

using tavelor::ConnectionPtr;

// [safe-number]
/// Takes the next number of series a and makes its document by `use(number, connection)`, all of it
/// or nothing: when `use` raises, or the program dies, the next one gets the same number.
template <typename Use>
double takeNumber(std::string_view family, Use use) {
  const tavelor::clsNumeradores counters;
  const ConnectionPtr connection = tavelor::DataSession().OpenConnection(tavelor::selector::kMain);
  connection->BeginTrans();  // takes the right to write: whoever wants a number too waits here
  double a = 0, b = 0, c = 0;
  counters.GetNewNum(family, a, b, c, connection);
  use(a, connection);
  counters.SetNewNum(family, a, b - 1, c - 1, connection);  // b and c were not used
  connection->CommitTrans();
  return a;
}
// [safe-number]

void sell(double number, const ConnectionPtr& connection) {
  tavelor::Statement statement("INSERT INTO Ventas (Numero) VALUES (");
  statement << tavelor::spliced(std::to_string(static_cast<long>(number))) << ")";
  connection->Execute(statement);
}

}  // namespace

int main() {
  try {
    const auto shop = tavelor::Installation::create("shop");
    shop->addToSchema(tavelor::selector::kMain, "CREATE TABLE Ventas (Numero DOUBLE)");
    tavelor::Apartment apartment(shop);
    apartment.clock().fix(tavelor::Date::of(2026, 11, 21));  // so that it prints the same each day
    tavelor::clsNumeradores().CrearPeriodoActual();

    // Reading alone reserves nothing.
    double first = 0, second = 0, b = 0, c = 0;
    tavelor::clsNumeradores().GetNewNum("Facturas", first, b, c);
    tavelor::clsNumeradores().GetNewNum("Facturas", second, b, c);
    std::cout << std::fixed;
    std::cout.precision(0);
    std::cout << "Two reads: " << first << " and " << second << '\n';

    // Two tills, a thread each. They could be two programs on two computers' worth of processes.
    std::vector<double> taken[2];
    const auto till = [&shop](std::vector<double>& numbers) {
      tavelor::Apartment own(shop);
      for (int i = 0; i < 50; ++i) numbers.push_back(takeNumber("Facturas", sell));
    };
    std::thread left(till, std::ref(taken[0]));
    std::thread right(till, std::ref(taken[1]));
    left.join();
    right.join();
    std::vector<double> all = taken[0];
    all.insert(all.end(), taken[1].begin(), taken[1].end());
    std::sort(all.begin(), all.end());
    const bool unique = std::adjacent_find(all.begin(), all.end()) == all.end();
    std::cout << "Two tills: " << all.size() << " numbers from " << all.front() << " to "
              << all.back() << (unique ? ", none twice" : ", some twice") << '\n';

    // A sale that fails gives its number back.
    try {
      takeNumber("Facturas", [](double number, const ConnectionPtr&) {
        std::cout << "Failed with " << number << '\n';
        tavelor::raise(tavelor::errors::kOperationCanceled, "till");
      });
    } catch (const tavelor::Error&) {
      std::cout << "Then comes " << takeNumber("Facturas", sell) << '\n';
    }
    return 0;
  } catch (const tavelor::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
