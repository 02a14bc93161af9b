# SPDX-License-Identifier: MIT
# Run with cmake -P: writes the files of FOLDER that order.txt names, and its version, to OUTPUT as C++.
cmake_policy(VERSION 3.25)

set(version "")
set(texts "")
set(named "")
file(STRINGS ${FOLDER}/order.txt lines REGEX "^[^#]")
foreach(line IN LISTS lines)
  if(line MATCHES "^version ([0-9]+)$")
    set(version ${CMAKE_MATCH_1})
  elseif(EXISTS ${FOLDER}/${line}.sql)
    file(READ ${FOLDER}/${line}.sql text)
    string(APPEND texts "    R\"sql(${text})sql\",\n")
    list(APPEND named ${FOLDER}/${line}.sql)
  else()
    message(FATAL_ERROR "order.txt: there is no ${line}.sql")
  endif()
endforeach()
if(version STREQUAL "")
  message(FATAL_ERROR "order.txt: no version")
endif()
file(GLOB files LIST_DIRECTORIES false ${FOLDER}/*.sql)
foreach(file IN LISTS files)
  if(NOT file IN_LIST named)
    message(FATAL_ERROR "order.txt: it does not name ${file}")
  endif()
endforeach()

file(WRITE ${OUTPUT} "// Made from the files in tavelor/services/postgres/functions/. Do not edit.
#include \"tavelor/services/postgres/functions.hpp\"

namespace tavelor::engine::postgres {

namespace {

constexpr std::string_view kTexts[] = {
${texts}};

}  // namespace

std::span<const std::string_view> functionTexts() { return kTexts; }
int functionsVersion() { return ${version}; }

}  // namespace tavelor::engine::postgres
")
