// SPDX-License-Identifier: MIT
// Collaborators of clinics.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// The people who work at a clinic, which is a customer. They are found by their name within the
/// clinic; nothing keeps it single.
class TAVELOR_API ClsClientesColaboradores final : public OpensOnConnection {
 public:
  ClsClientesColaboradores();
  std::string typeName() const override { return "ClsClientesColaboradores"; }
  static const Component& component();

  /// The first collaborator of a clinic. A column that is Null leaves its variable as it came, and
  /// where there is no row all are left.
  void GetDatos(const Variant& id, InOut<std::string> sNombre, InOut<Variant> vId,
                InOut<std::string> sColegiado, ObjCn objCn = {}) const;
  /// Telephone of a collaborator; a single blank where there is none.
  std::string GetTel(const Variant& id, std::string_view sNombre, ObjCn objCn = {}) const;
  /// Discount of an active collaborator, in percent; 0 where there is none.
  double GetDto(const Variant& id, std::string_view sNombre, ObjCn objCn = {}) const;
  /// Deletes the collaborators of a clinic.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;

  /// Adds a row; `bDefVal` gives it the next key and makes it active.
  void AddNew(bool bDefVal = false);
  /// Gives all rows new keys, consecutive from the next one on in the order of the view, and stands
  /// on the first row. Update writes them. Does nothing without rows.
  void UpdateId();
  /// Gives the current row the clinic `vId` and posts it; Update writes it.
  void UpdateadAffectCurrent(InOut<Variant> vId);

 protected:
  Statement modeStatement(std::string& word, const Variant& id) const override;
  void addRow(bool bDefVal) override { AddNew(bDefVal); }
};

}  // namespace tavelor
