// SPDX-License-Identifier: MIT
// tax_office FOLDER MILLISECONDS: a stand-in of the tax office that takes so long for each answer,
// and wants no pause between messages. Its address stands in FOLDER/url, a line for each record
// that it has taken in FOLDER/taken, written before the answer. Runs until it is killed.
#include "tests/support/tax_office.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include <unistd.h>

int main(int count, char** words) {
  if (count != 3) {
    std::cerr << "usage: tax_office FOLDER MILLISECONDS\n";
    return 2;
  }
  const std::filesystem::path folder = words[1];
  std::ofstream taken(folder / "taken");
  tavelor::sending::TaxOffice office;
  office.setWait("0");
  office.setDelay(std::atoi(words[2]));
  office.onTaken([&](const std::string& record) { taken << record << std::endl; });
  std::ofstream(folder / "url.new") << office.url() << '\n';
  std::filesystem::rename(folder / "url.new", folder / "url");
  while (true) pause();
}
