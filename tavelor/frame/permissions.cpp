// SPDX-License-Identifier: MIT
// Whether the current user may use a function of the application.
#include "tavelor/frame/record_class.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/registry_store.hpp"

namespace tavelor {

// A value that is there, whatever it holds, denies; so a new installation allows everything.
bool RecordClass::SeguridadPermiso(std::string_view sId) const {
  mustBeHome();
  Apartment& apartment = Apartment::current();
  RegistryStore& store = apartment.registryStore();
  const std::string key = store.BaseKey(apartment.version().registryRoot() + "\\Seguridad\\") +
                          "Seguridad\\Configuraciones\\";
  return !store.TestValue(key, sId);
}

}  // namespace tavelor
