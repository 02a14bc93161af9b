# SPDX-License-Identifier: MIT
# Run with cmake -P: runs DOXYGEN with the Doxyfile in FOLDER, and fails for any warning, with the
# header and the line. Fields of a struct need no comments of their own where their names say all:
# the struct has one.
cmake_policy(VERSION 3.25)

file(REMOVE_RECURSE ${FOLDER}/xml ${FOLDER}/site)
file(MAKE_DIRECTORY ${FOLDER}/site)
execute_process(COMMAND ${DOXYGEN} ${FOLDER}/Doxyfile RESULT_VARIABLE result)
file(STRINGS ${FOLDER}/warnings.txt warnings)
list(FILTER warnings EXCLUDE REGEX "\\(variable\\) of struct .* is not documented")
list(REMOVE_DUPLICATES warnings)
list(LENGTH warnings count)
if(count OR result)
  file(REMOVE ${FOLDER}/xml/index.xml)
  list(JOIN warnings "\n" warnings)
  message(FATAL_ERROR "Doxygen has ended with ${result} and ${count} warnings\n${warnings}")
endif()
