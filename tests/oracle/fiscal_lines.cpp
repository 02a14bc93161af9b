// SPDX-License-Identifier: MIT
// Reads a number a line and says what the public rules find in it, for a comparison.
#include <iostream>
#include <string>

#include "tavelor/platform/bank_account.hpp"
#include "tavelor/platform/fiscal_number.hpp"

// Five fields with a tab between: whether it is a fiscal number, one for the tax office, an IBAN, a
// CCC (1 or 0), and the compact fiscal number.
int main() {
  using namespace tavelor;
  std::ios::sync_with_stdio(false);
  for (std::string line; std::getline(std::cin, line);) {
    const FiscalNumber number = readFiscalNumber(line);
    std::cout << number.isValid() << '\t'
              << readFiscalNumber(line, FiscalReading::kStrict).isValid() << '\t'
              << readIban(line).isValid() << '\t' << readCcc(line).isValid() << '\t' << number.text
              << '\n';
  }
}
