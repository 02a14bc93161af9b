# SPDX-License-Identifier: MIT
# What `cmake --install` lays down: the library, its public headers, what find_package(Tavelor)
# reads, and the tavelor command.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Whether a header stays at home, by private_headers.txt: the last line that matches wins.
file(STRINGS cmake/private_headers.txt private_lines REGEX "^[^#]")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS cmake/private_headers.txt)
function(tavelor_is_private header result)
  set(private FALSE)
  foreach(line IN LISTS private_lines)
    string(REGEX REPLACE "^!" "" glob "${line}")
    string(REPLACE "." "\\." pattern "${glob}")
    string(REPLACE "*" ".*" pattern "${pattern}")
    if(header MATCHES "^${pattern}$")
      if(line MATCHES "^!")
        set(private FALSE)
      else()
        set(private TRUE)
      endif()
    endif()
  endforeach()
  set(${result} ${private} PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} tavelor/*.hpp)
foreach(header IN LISTS headers)
  tavelor_is_private(${header} private)
  if(NOT private)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
  endif()
endforeach()

install(TARGETS tavelor EXPORT TavelorTargets)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Tavelor)
install(EXPORT TavelorTargets NAMESPACE Tavelor:: DESTINATION ${package_folder})
configure_package_config_file(cmake/TavelorConfig.cmake.in ${PROJECT_BINARY_DIR}/TavelorConfig.cmake
  INSTALL_DESTINATION ${package_folder} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TavelorConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TavelorConfig.cmake ${PROJECT_BINARY_DIR}/TavelorConfigVersion.cmake
  DESTINATION ${package_folder})

if(TARGET tavelor_command)
  install(TARGETS tavelor_command)
endif()
