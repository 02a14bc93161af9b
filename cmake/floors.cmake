# SPDX-License-Identifier: MIT
# tavelor_floor(NAME FOLDER... [SHALLOW] [LINK target...])
#
# One floor of the house as an object library tavelor_NAME, made of all sources below FOLDER
# (SHALLOW: of the folder itself only; a single .cpp may be named too). Every floor may use those
# that were declared before it.
# tavelor_library() joins all floors so far into the library that users link, twice of the same
# objects: Tavelor::tavelor is static, Tavelor::tavelor_shared is not.
# tavelor_library_of(FLOOR ON library) makes a library of a floor that comes after that, upon another.
# tavelor_library_on_shared(FLOOR... INNER source...) joins such floors into a static library upon the shared one.

# One precompiled header for all floors and one for all tests: compiled once, owned by no floor.
function(tavelor_precompiled name)
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/precompiled/${name}.cpp CONTENT "")
  add_library(${name} OBJECT ${PROJECT_BINARY_DIR}/precompiled/${name}.cpp)
  target_precompile_headers(${name} PRIVATE ${ARGN})
endfunction()
tavelor_precompiled(tavelor_pch
  <algorithm> <functional> <memory> <string> <string_view> <unordered_map> <vector>)
target_link_libraries(tavelor_pch PRIVATE tavelor_options)

set_property(GLOBAL PROPERTY TAVELOR_FLOORS "")
set_property(GLOBAL PROPERTY TAVELOR_LINKS "")

function(tavelor_floor name)
  cmake_parse_arguments(PARSE_ARGV 1 floor "SHALLOW" "" "LINK")
  set(sources "")
  foreach(folder IN LISTS floor_UNPARSED_ARGUMENTS)
    if(folder MATCHES "\\.cpp$")
      set(found ${folder})
    elseif(floor_SHALLOW)
      file(GLOB found CONFIGURE_DEPENDS ${folder}/*.cpp)
    else()
      file(GLOB_RECURSE found CONFIGURE_DEPENDS ${folder}/*.cpp)
    endif()
    list(APPEND sources ${found})
  endforeach()
  if(NOT sources)
    return()
  endif()
  add_library(tavelor_${name} OBJECT ${sources})
  target_include_directories(tavelor_${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  target_link_libraries(tavelor_${name} PRIVATE $<BUILD_INTERFACE:tavelor_options> ${floor_LINK})
  target_precompile_headers(tavelor_${name} REUSE_FROM tavelor_pch)
  tavelor_unity_floor(${name})
  set_property(GLOBAL APPEND PROPERTY TAVELOR_FLOORS ${name})
  set_property(GLOBAL APPEND PROPERTY TAVELOR_LINKS ${floor_LINK})
endfunction()

function(tavelor_library)
  get_property(floors GLOBAL PROPERTY TAVELOR_FLOORS)
  get_property(links GLOBAL PROPERTY TAVELOR_LINKS)
  list(REMOVE_DUPLICATES links)
  set(objects "")
  foreach(floor IN LISTS floors)
    list(APPEND objects $<TARGET_OBJECTS:tavelor_${floor}>)
  endforeach()
  set(libraries tavelor)
  add_library(tavelor STATIC ${objects})
  if(TAVELOR_SHARED)
    list(APPEND libraries tavelor_shared)
    set(exports ${PROJECT_SOURCE_DIR}/cmake/exports.map)
    add_library(tavelor_shared SHARED ${objects})
    set_target_properties(tavelor_shared PROPERTIES OUTPUT_NAME tavelor
      SOVERSION ${PROJECT_VERSION_MAJOR} LINK_DEPENDS ${exports})
    target_link_options(tavelor_shared PRIVATE
      -Wl,--version-script=${exports} -Wl,--as-needed)
  endif()
  foreach(library IN LISTS libraries)
    add_library(Tavelor::${library} ALIAS ${library})
    set_target_properties(${library} PROPERTIES LINKER_LANGUAGE CXX VERSION ${PROJECT_VERSION})
    target_compile_features(${library} PUBLIC cxx_std_20)
    target_include_directories(${library} PUBLIC
      $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:include>)
    target_link_libraries(${library} PRIVATE ${links} Threads::Threads)
  endforeach()
endfunction()

# A floor that stands on a library, as a static library of its own: Tavelor::FLOOR.
function(tavelor_library_of floor)
  cmake_parse_arguments(PARSE_ARGV 1 stands "" "ON" "")
  get_target_property(links tavelor_${floor} LINK_LIBRARIES)
  list(FILTER links EXCLUDE REGEX "tavelor_options")
  add_library(tavelor_${floor}_library STATIC $<TARGET_OBJECTS:tavelor_${floor}>)
  add_library(Tavelor::${floor} ALIAS tavelor_${floor}_library)
  set_target_properties(tavelor_${floor}_library PROPERTIES LINKER_LANGUAGE CXX
    OUTPUT_NAME tavelor_${floor} EXPORT_NAME ${floor} VERSION ${PROJECT_VERSION})
  target_link_libraries(tavelor_${floor}_library PUBLIC ${stands_ON} PRIVATE ${links})
endfunction()

# The same floors for who links the shared library: Tavelor::LAST_shared. It brings what they use of inner rooms,
# which the shared library does not show; such a source keeps no state, or there would be two of it.
function(tavelor_library_on_shared)
  cmake_parse_arguments(PARSE_ARGV 0 shared "" "" "INNER")
  if(NOT TAVELOR_SHARED)
    return()
  endif()
  set(objects "")
  set(links "")
  foreach(floor IN LISTS shared_UNPARSED_ARGUMENTS)
    list(APPEND objects $<TARGET_OBJECTS:tavelor_${floor}>)
    get_target_property(floor_links tavelor_${floor} LINK_LIBRARIES)
    list(APPEND links ${floor_links})
  endforeach()
  list(FILTER links EXCLUDE REGEX "tavelor_options")
  list(REMOVE_DUPLICATES links)
  list(GET shared_UNPARSED_ARGUMENTS -1 last)
  set(name ${last}_shared)
  add_library(tavelor_${name} STATIC ${objects} ${shared_INNER})
  add_library(Tavelor::${name} ALIAS tavelor_${name})
  set_target_properties(tavelor_${name} PROPERTIES LINKER_LANGUAGE CXX EXPORT_NAME ${name} VERSION ${PROJECT_VERSION})
  target_link_libraries(tavelor_${name} PUBLIC tavelor_shared PRIVATE $<BUILD_INTERFACE:tavelor_options> ${links})
endfunction()
