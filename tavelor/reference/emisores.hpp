// SPDX-License-Identifier: MIT
// Issuers of documents.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// A short numbered list of issuers with a logo.
class TAVELOR_API Emisores final : public OpensOnConnection {
 public:
  Emisores();
  std::string typeName() const override { return "Emisores"; }
  static const Component& component();

  /// Description of an issuer; "no" for one that is not there or has none. An empty `vId` breaks
  /// the statement.
  std::string GetValor(const Variant& vId, ObjCn objCn = {}) const;
  /// Number of issuers. Raises 6 for more than 32,767.
  std::int16_t CuantosRegistros(ObjCn objCn = {}) const;
  /// Loads a picture into the current row; see readLogotipo().
  void ReadBLOB(InOut<std::string> Source);
};

}  // namespace tavelor
