// SPDX-License-Identifier: MIT
// A user's program that looks at signatures.
#include <iostream>

#include "tavelor/signing/signature.hpp"

int main() {
  std::cout << tavelor::signing::lookAtSignature("<a/>").fault << '\n';
}
