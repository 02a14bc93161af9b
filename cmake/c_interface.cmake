# SPDX-License-Identifier: MIT
# The C interface: Tavelor::c, a shared library that holds all it needs of the floors below and shows
# only what tavelor/c/tavelor.h tells.
target_compile_definitions(tavelor_c PRIVATE TAVELOR_VERSION="${PROJECT_VERSION}")

# What tavelor_member_documentation() gives.
set(documented ${TAVELOR_PUBLIC_HEADERS})
list(FILTER documented EXCLUDE REGEX "^tavelor/(platform|fiscal|flows|sending|signing)/")
list(TRANSFORM documented PREPEND ${PROJECT_SOURCE_DIR}/)
set(tables ${PROJECT_BINARY_DIR}/c/documentation_tables.cpp)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/c)
set(reader ${PROJECT_SOURCE_DIR}/tavelor/c/documentation.awk)
add_custom_command(OUTPUT ${tables}
  COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C awk -v to=${tables}.new -f ${reader} ${documented}
  COMMAND ${CMAKE_COMMAND} -E copy_if_different ${tables}.new ${tables}
  DEPENDS ${documented} ${reader}
  COMMENT "Reading the comments of the public headers for the C interface"
  VERBATIM)
target_sources(tavelor_c PRIVATE ${tables})
set_source_files_properties(${tables} PROPERTIES SKIP_PRECOMPILE_HEADERS ON SKIP_UNITY_BUILD_INCLUSION ON)

if(NOT TAVELOR_SHARED)
  return()
endif()
set(exports ${PROJECT_SOURCE_DIR}/cmake/c_exports.map)
add_library(tavelor_c_library SHARED $<TARGET_OBJECTS:tavelor_c>)
add_library(Tavelor::c ALIAS tavelor_c_library)
set_target_properties(tavelor_c_library PROPERTIES LINKER_LANGUAGE CXX OUTPUT_NAME tavelor_c EXPORT_NAME c
  SOVERSION 0 VERSION 0.${PROJECT_VERSION} LINK_DEPENDS ${exports})
target_include_directories(tavelor_c_library INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/tavelor/c> $<INSTALL_INTERFACE:include>)
target_link_libraries(tavelor_c_library PRIVATE tavelor_flows_library fmt::fmt)
target_link_options(tavelor_c_library PRIVATE -Wl,--version-script=${exports} -Wl,--as-needed)

# A program in C that holds the sanitizers of the library must hold what they need for C++ too.
function(tavelor_links_sanitizers target)
  if(TAVELOR_SANITIZE)
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
  endif()
endfunction()
