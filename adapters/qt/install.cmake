# SPDX-License-Identifier: MIT
# What the adapter adds to an installation: find_package(Tavelor COMPONENTS qt), or pkg-config, and two
# packages: the shared library, and what builds on it.
foreach(header IN LISTS headers)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tavelor/qt COMPONENT qt_development)
endforeach()
set(targets tavelor_qt_library)
if(TARGET tavelor_qt_shared)
  list(APPEND targets tavelor_qt_shared)
endif()
install(TARGETS ${targets} EXPORT Tavelor_qt_targets
  ARCHIVE COMPONENT qt_development
  LIBRARY COMPONENT qt NAMELINK_COMPONENT qt_development)
install(EXPORT Tavelor_qt_targets NAMESPACE Tavelor:: COMPONENT qt_development
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Tavelor)

set(name libtavelor-qt6-${PROJECT_VERSION_MAJOR})
set(depends =libtavelor-dev qt6-base-dev)
if(TARGET tavelor_qt_shared)
  tavelor_package(qt NAME ${name} SECTION libs SHARED "libtavelor_qt6 ${PROJECT_VERSION_MAJOR}"
    SUMMARY "business layer of a Spanish shop - Qt adapter"
    DESCRIPTION "Models and forms over the record sets and classes of Tavelor, for programs with\nQt 6."
    DEPENDS =libtavelor${PROJECT_VERSION_MAJOR})
  list(APPEND depends =${name})
endif()
tavelor_package(qt_development NAME libtavelor-qt6-dev SECTION libdevel
  SUMMARY "business layer of a Spanish shop - development files of the Qt adapter"
  DESCRIPTION "Headers, the static library and what CMake and pkg-config read to build programs\nwith Qt 6 on Tavelor."
  DEPENDS ${depends})
