// SPDX-License-Identifier: MIT
// Free comments on tickets.
#pragma once

#include "tavelor/platform/export.hpp"
#include "tavelor/sales/ticket_notes.hpp"

namespace tavelor {

class Component;

/// The comments of tickets.
class TAVELOR_API ClsTicketsComentarios final : public TicketNotes {
 public:
  ClsTicketsComentarios();
  std::string typeName() const override { return "ClsTicketsComentarios"; }
  static const Component& component();

  /// The comment of the current row; "" where there is none. Never raises.
  std::string sQComentario() const;
};

}  // namespace tavelor
