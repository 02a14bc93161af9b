# SPDX-License-Identifier: MIT
# The pages of the till and the back office, as scripts/lib/pages.sh leaves them in web/dist, go into the
# library. AUTO takes them where they are; without them the server tells how they are made.
set(TAVELOR_PAGES AUTO CACHE STRING "Embed the pages of web/dist: AUTO (where they are), ON, OFF")
set_property(CACHE TAVELOR_PAGES PROPERTY STRINGS AUTO ON OFF)

set(pages_folder ${PROJECT_SOURCE_DIR}/web/dist)
set(pages_made ${PROJECT_BINARY_DIR}/pages)
set(pages_source ${pages_made}/pages_text.cpp)
# What was there at the last configuration; with CONFIGURE_DEPENDS the build looks again.
file(GLOB pages_files CONFIGURE_DEPENDS ${pages_folder}/*)
if(TAVELOR_PAGES STREQUAL "ON" AND NOT EXISTS ${pages_folder}/manifest.json)
  message(FATAL_ERROR "TAVELOR_PAGES is ON and there is no web/dist/manifest.json: run scripts/lib/pages.sh")
endif()
if(TAVELOR_PAGES STREQUAL "OFF")
  set(pages_files "")
endif()
find_program(TAVELOR_GZIP gzip REQUIRED)
add_custom_command(OUTPUT ${pages_source}
  COMMAND ${CMAKE_COMMAND} -D "OUTPUT=${pages_source}" -D "FOLDER=${pages_folder}" -D "MADE=${pages_made}"
          -D "GZIP=${TAVELOR_GZIP}" -D "WANTED=${TAVELOR_PAGES}" -P ${CMAKE_CURRENT_LIST_DIR}/embed_pages.cmake
  DEPENDS ${pages_files} ${CMAKE_CURRENT_LIST_DIR}/embed_pages.cmake
  COMMENT "Embedding the pages"
  VERBATIM)
target_sources(tavelor_web PRIVATE ${pages_source})
set_source_files_properties(${pages_source} PROPERTIES SKIP_PRECOMPILE_HEADERS ON SKIP_UNITY_BUILD_INCLUSION ON)
