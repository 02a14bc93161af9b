// SPDX-License-Identifier: MIT
// Whether the current user may use a function of the application.
#include "tavelor/frame/permissions.hpp"

#include "tavelor/frame/record_class.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/registry_store.hpp"

namespace tavelor {

// A value that is there, whatever it holds, denies; so a new installation allows everything.
bool isPermitted(std::string_view identifier) {
  Apartment& apartment = Apartment::current();
  RegistryStore& store = apartment.registryStore();
  const std::string key = store.BaseKey(apartment.version().registryRoot() + "\\Seguridad\\") +
                          "Seguridad\\Configuraciones\\";
  return !store.TestValue(key, identifier);
}

bool RecordClass::SeguridadPermiso(std::string_view sId) const {
  mustBeHome();
  return isPermitted(sId);
}

}  // namespace tavelor
