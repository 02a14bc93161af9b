# SPDX-License-Identifier: MIT
# tavelor_package(COMPONENT NAME package SUMMARY text DESCRIPTION text [SECTION section]
#                 [ARCHITECTURE all] [DEPENDS package...] [RECOMMENDS package...] [SHARED library]
#                 [CONTROL file...])
#
# What install() lays down for COMPONENT is a Debian package of that name, which `cpack` makes. The
# packages of the libraries that its programs and shared libraries need are found by themselves
# (dpkg-shlibdeps); DEPENDS names others, "=NAME" one of these here in the same version. SHARED is a shared
# library that others link, "libtavelor 1". CONTROL are scripts of the package itself, such as postinst.
# A component whose public files are for developers joins `development`, in place of a package of its own.
# tavelor_packages() comes behind the last one.

# Public files that name no component of their own are for developers.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tavelor)
set(CPACK_PACKAGE_VENDOR Tavelor)
set(CPACK_PACKAGE_CONTACT "Tavelor maintainers <maintainers@tavelor.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Libraries of one package may be linked by another one of these.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each has its own
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# Debian wants each package to say whose it is and what has changed.
find_program(TAVELOR_GZIP gzip)
string(TIMESTAMP day "%a, %d %b %Y 00:00:00 +0000" UTC)
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/packages/changelog @ONLY CONTENT
"tavelor (@PROJECT_VERSION@) stable; urgency=medium

  * Release @PROJECT_VERSION@. CHANGELOG.md of the sources tells what has changed.

 -- @CPACK_PACKAGE_CONTACT@  @day@
")
execute_process(COMMAND ${TAVELOR_GZIP} -9nkf ${PROJECT_BINARY_DIR}/packages/changelog COMMAND_ERROR_IS_FATAL ANY)

function(tavelor_package component)
  cmake_parse_arguments(PARSE_ARGV 1 package "" "NAME;SUMMARY;DESCRIPTION;SECTION;ARCHITECTURE;SHARED" "DEPENDS;RECOMMENDS;CONTROL")
  list(TRANSFORM package_DEPENDS REPLACE "^=(.*)$" "\\1 (= ${PROJECT_VERSION})")
  list(JOIN package_DEPENDS ", " depends)
  list(JOIN package_RECOMMENDS ", " recommends)
  if(package_SHARED)
    set(control ${PROJECT_BINARY_DIR}/packages/${component})
    file(WRITE ${control}/shlibs "${package_SHARED} ${package_NAME} (>= ${PROJECT_VERSION})\n")
    file(WRITE ${control}/triggers "activate-noawait ldconfig\n")
    list(APPEND package_CONTROL ${control}/shlibs ${control}/triggers)
  endif()
  # Kept for the whole project, as cpack reads the variables of its root.
  set_property(GLOBAL APPEND PROPERTY TAVELOR_PACKAGES ${component})
  set_property(GLOBAL PROPERTY TAVELOR_PACKAGE_${component}_NAME "${package_NAME}")
  set_property(GLOBAL PROPERTY TAVELOR_PACKAGE_${component}_SECTION "${package_SECTION}")
  set_property(GLOBAL PROPERTY TAVELOR_PACKAGE_${component}_ARCHITECTURE "${package_ARCHITECTURE}")
  set_property(GLOBAL PROPERTY TAVELOR_PACKAGE_${component}_DEPENDS "${depends}")
  set_property(GLOBAL PROPERTY TAVELOR_PACKAGE_${component}_RECOMMENDS "${recommends}")
  set_property(GLOBAL PROPERTY TAVELOR_PACKAGE_${component}_CONTROL_EXTRA "${package_CONTROL}")
  set_property(GLOBAL PROPERTY TAVELOR_PACKAGE_${component}_DESCRIPTION "${package_SUMMARY}\n${package_DESCRIPTION}")
  # Only in packages: an installation by hand does without.
  install(FILES ${PROJECT_SOURCE_DIR}/cmake/package/copyright ${PROJECT_BINARY_DIR}/packages/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package_NAME} COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

macro(tavelor_packages)
  get_property(CPACK_COMPONENTS_ALL GLOBAL PROPERTY TAVELOR_PACKAGES)
  foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    foreach(field IN ITEMS NAME SECTION ARCHITECTURE DEPENDS RECOMMENDS CONTROL_EXTRA)
      get_property(CPACK_DEBIAN_${upper}_PACKAGE_${field} GLOBAL PROPERTY TAVELOR_PACKAGE_${component}_${field})
    endforeach()
    get_property(CPACK_DEBIAN_${upper}_DESCRIPTION GLOBAL PROPERTY TAVELOR_PACKAGE_${component}_DESCRIPTION)
  endforeach()
  include(CPack)
endmacro()
