# SPDX-License-Identifier: MIT
# Run with cmake -P: writes the families of FOLDER and the lines of databases.txt to OUTPUT as C++.
cmake_policy(VERSION 3.25)

set(families "")
file(GLOB files LIST_DIRECTORIES false ${FOLDER}/*.sql)
list(SORT files)
foreach(file IN LISTS files)
  get_filename_component(name ${file} NAME_WE)
  file(READ ${file} text)
  string(APPEND families "    {\"${name}\", R\"ddl(${text})ddl\"},\n")
endforeach()

set(version "")
set(counters "")
set(searches "")
set(assignments "")
file(STRINGS ${FOLDER}/databases.txt lines)
foreach(line IN LISTS lines)
  if(line MATCHES "^version ([0-9]+)$")
    set(version ${CMAKE_MATCH_1})
  elseif(line MATCHES "^([0-9]+): ([a-z ]+)$")
    set(selector ${CMAKE_MATCH_1})
    set(names ${CMAKE_MATCH_2})
    string(REPLACE " " ";" each "${names}")
    foreach(name IN LISTS each)
      if(NOT EXISTS ${FOLDER}/${name}.sql)
        message(FATAL_ERROR "databases.txt: there is no family ${name}")
      endif()
    endforeach()
    string(APPEND assignments "    {${selector}, \"${names}\"},\n")
  elseif(line MATCHES "^counters ([A-Za-z_ ]+)$")
    string(REPLACE " " "\", \"" counters "\"${CMAKE_MATCH_1}\"")
  elseif(line MATCHES "^search ([0-9]+) ([A-Za-z_]+) ([A-Za-z_]+) ([A-Za-z_]+) ([A-Za-z_]+): ([A-Za-z_0-9.= ]+)$")
    string(APPEND searches "    {${CMAKE_MATCH_1}, \"${CMAKE_MATCH_2}\", \"${CMAKE_MATCH_3}\", "
           "\"${CMAKE_MATCH_4}\", \"${CMAKE_MATCH_5}\", \"${CMAKE_MATCH_6}\"},\n")
  elseif(NOT line MATCHES "^(#.*)?$")
    message(FATAL_ERROR "databases.txt: this line says nothing: ${line}")
  endif()
endforeach()
if(version STREQUAL "")
  message(FATAL_ERROR "databases.txt: no version")
endif()

file(WRITE ${OUTPUT} "// Made from the files in schema/. Do not edit.
#include \"tavelor/services/schema.hpp\"

namespace tavelor::schema {

namespace {

constexpr Family kFamilies[] = {
${families}};

constexpr Assignment kAssignments[] = {
${assignments}};

constexpr Search kSearches[] = {
${searches}};

constexpr std::string_view kCounters[] = {${counters}};

}  // namespace

std::span<const Family> families() { return kFamilies; }
std::span<const Assignment> assignments() { return kAssignments; }
std::span<const Search> searches() { return kSearches; }
std::span<const std::string_view> counters() { return kCounters; }
int currentVersion() { return ${version}; }

}  // namespace tavelor::schema
")
