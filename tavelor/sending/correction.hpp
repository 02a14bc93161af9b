// SPDX-License-Identifier: MIT
// A record that the tax office refused, or accepted with errors, made again.
#pragma once

#include <optional>
#include <string>

#include "tavelor/fiscal/book.hpp"

namespace tavelor::sending {

/// What is to be another. The shop's own name, its number as a system and the program's are those
/// of the settings in any case; amounts and rates stay: where they are wrong the invoice is, and a
/// rectifying one is issued.
struct Correction {
  std::string number;                        ///< of the invoice, "T/12"
  std::optional<fiscal::Party> recipient{};  ///< who bought
  std::string description{};                 ///< of what was sold; "" as it is
};

/// Adds the record that corrects the invoice's last one to the chain, in a transaction of its own:
/// a registration again (Subsanacion), or a cancellation again where that one was refused. Whether
/// the tax office has a record of the invoice already (RechazoPrevio, SinRegistroPrevio) is taken
/// from its answers. It waits to be sent as any other. Raises 5, with nothing written, for an
/// invoice that there is not, whose last record waits or is a cancellation that was accepted, and
/// for what the tax office would refuse, with all that is wrong with it.
fiscal::Record correct(fiscal::Book& book, const Correction& correction);

}  // namespace tavelor::sending
