# SPDX-License-Identifier: MIT
# What `cmake --install` lays down: the library, what stands upon it, their public headers, what
# find_package(Tavelor) and pkg-config read, and the tavelor command with its manual. Each file belongs to
# a component, and each component is a package (cmake/package.cmake).
include(CMakePackageConfigHelpers)

foreach(header IN LISTS TAVELOR_PUBLIC_HEADERS)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()

install(TARGETS tavelor tavelor_fiscal_library tavelor_flows_library EXPORT TavelorTargets)
if(TAVELOR_SHARED)
  install(TARGETS tavelor_shared tavelor_flows_shared EXPORT TavelorTargets
    LIBRARY COMPONENT library NAMELINK_COMPONENT development)
endif()
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Tavelor)
install(EXPORT TavelorTargets NAMESPACE Tavelor:: DESTINATION ${package_folder})
configure_package_config_file(cmake/TavelorConfig.cmake.in ${PROJECT_BINARY_DIR}/TavelorConfig.cmake
  INSTALL_DESTINATION ${package_folder} NO_SET_AND_CHECK_MACRO)
# Of their own, as who neither signs nor sends needs nothing of what they need:
# find_package(Tavelor COMPONENTS signing sending).
foreach(part IN ITEMS signing sending)
  install(TARGETS tavelor_${part}_library EXPORT Tavelor_${part}_targets)
  install(EXPORT Tavelor_${part}_targets NAMESPACE Tavelor:: DESTINATION ${package_folder})
endforeach()
# The C interface needs nothing to be built with: find_package(Tavelor COMPONENTS c), or pkg-config.
if(TARGET tavelor_c_library)
  install(FILES tavelor/c/tavelor.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(TARGETS tavelor_c_library EXPORT Tavelor_c_targets
    LIBRARY COMPONENT c NAMELINK_COMPONENT development)
  install(EXPORT Tavelor_c_targets NAMESPACE Tavelor:: DESTINATION ${package_folder})
  file(RELATIVE_PATH TAVELOR_PC_TO_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  configure_file(cmake/tavelor-c.pc.in ${PROJECT_BINARY_DIR}/tavelor-c.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/tavelor-c.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TavelorConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TavelorConfig.cmake ${PROJECT_BINARY_DIR}/TavelorConfigVersion.cmake
  DESTINATION ${package_folder})
include(cmake/pkgconfig.cmake)

if(TAVELOR_SHARED)
  tavelor_package(library NAME libtavelor${PROJECT_VERSION_MAJOR} SECTION libs SHARED "libtavelor ${PROJECT_VERSION_MAJOR}"
    SUMMARY "business layer of a Spanish shop - shared library"
    DESCRIPTION "Banks, taxes, articles, stock, customers, suppliers, tickets, closings and\nledgers, each a class that browses and edits its table and knows its rules.")
  set(library =libtavelor${PROJECT_VERSION_MAJOR})
endif()
if(TARGET tavelor_c_library)
  tavelor_package(c NAME libtavelor-c0 SECTION libs SHARED "libtavelor_c 0"
    SUMMARY "business layer of a Spanish shop - library for C"
    DESCRIPTION "Installations, classes, record sets and a shop's sales and closings behind one\nheader, for programs in C and in all languages that call C.")
  list(APPEND library =libtavelor-c0)
endif()
tavelor_package(development NAME libtavelor-dev SECTION libdevel
  SUMMARY "business layer of a Spanish shop - development files"
  DESCRIPTION "Headers, static libraries and what CMake and pkg-config read to build programs\non Tavelor, a C++20 library."
  DEPENDS ${library} libfmt-dev libpugixml-dev libsqlite3-dev libutf8proc-dev libpq-dev libssl-dev libqrencode-dev
  RECOMMENDS g++ pkg-config cmake libxmlsec1-dev libxml2-dev libcurl4-openssl-dev)

if(TARGET tavelor_command)
  install(TARGETS tavelor_command COMPONENT command)
  tavelor_package(command NAME tavelor SECTION database
    SUMMARY "makes, looks into and mends the installations of a shop"
    DESCRIPTION "A command that makes an installation, sells and closes a day, takes articles,\ncustomers, suppliers, deliveries and old databases from files, shows and edits\nthe rows of every class, keeps the records of invoices that the law wants and\nsends them to the tax office."
    RECOMMENDS libxmlsec1-openssl ca-certificates)
endif()
