// SPDX-License-Identifier: MIT
// First steps: an installation, a class, its rows.
#include <iostream>

#include "tavelor/tavelor.hpp"

int main() {
  try {
    // [first-steps]
    tavelor::Apartment apartment(tavelor::Installation::create("shop"));
    tavelor::ClsBancos banks;
    const std::string code = banks.CrearBanco("", "Banco de Ahorro");
    banks.CrearBanco("", "Caja Rural");

    banks.IniciaRs("seleccioncombo");
    const auto rows = banks.DataMember("Primary");
    for (; !rows->Eof(); rows->MoveNext()) {
      std::cout << rows->Field("Descripción").Value().toText(apartment.locale()) << '\n';
    }
    // [first-steps]
    std::cout << "The first one is " << code << '\n';
    return 0;
  } catch (const tavelor::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
