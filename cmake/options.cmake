# SPDX-License-Identifier: MIT
# Compiler settings shared by everything that is built here.

add_library(tavelor_options INTERFACE)
target_compile_options(tavelor_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Woverloaded-virtual -Werror)
# The library's code may end in a shared one of somebody else (hence its position independence), but
# nobody puts functions of his own in the place of ours: let calls among them be inlined.
target_compile_options(tavelor_options INTERFACE -fno-semantic-interposition)
# What the shared library shows is marked (tavelor/platform/export.hpp).
target_compile_options(tavelor_options INTERFACE -fvisibility=hidden)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 14)
  # g++ 12 sees dangling references and overruns in the standard library's own inlined code.
  target_compile_options(tavelor_options INTERFACE
    $<$<CONFIG:Release,RelWithDebInfo>:-Wno-restrict -Wno-maybe-uninitialized -Wno-stringop-overflow -Wno-array-bounds>)
endif()

if(TAVELOR_SANITIZE)
  add_compile_options(-fsanitize=${TAVELOR_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TAVELOR_SANITIZE})
endif()

# A test program holds all floors below it: lld links one in a fifth of the time.
find_program(TAVELOR_LLD ld.lld)
if(TAVELOR_LLD)
  add_link_options(-fuse-ld=lld)
endif()

find_program(TAVELOR_CCACHE ccache)
if(TAVELOR_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Sources that use a precompiled header are cached only when its date is left out of the key.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${TAVELOR_CCACHE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
  else()
    add_compile_options(-fpch-preprocess)
  endif()
endif()
