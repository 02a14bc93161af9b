# SPDX-License-Identifier: MIT
# What `cmake --install` lays down: the library, what stands upon it, their public headers, what find_package(Tavelor)
# reads, and the tavelor command.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

foreach(header IN LISTS TAVELOR_PUBLIC_HEADERS)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()

install(TARGETS tavelor tavelor_fiscal_library tavelor_flows_library EXPORT TavelorTargets)
if(TAVELOR_SHARED)
  install(TARGETS tavelor_shared EXPORT TavelorTargets)
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
  install(TARGETS tavelor_c_library EXPORT Tavelor_c_targets)
  install(EXPORT Tavelor_c_targets NAMESPACE Tavelor:: DESTINATION ${package_folder})
  file(RELATIVE_PATH TAVELOR_PC_TO_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  configure_file(cmake/tavelor-c.pc.in ${PROJECT_BINARY_DIR}/tavelor-c.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/tavelor-c.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TavelorConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TavelorConfig.cmake ${PROJECT_BINARY_DIR}/TavelorConfigVersion.cmake
  DESTINATION ${package_folder})

if(TARGET tavelor_command)
  install(TARGETS tavelor_command)
endif()
