# SPDX-License-Identifier: MIT
# The private PostgreSQL server of a test run: ctest starts it when a test needs it, and it is gone
# with ctest. Runs of the same build at the same time share it.
string(MD5 hash ${PROJECT_BINARY_DIR})
string(SUBSTRING ${hash} 0 8 hash)
set(folder /tmp/tavelor-server-${hash})
# How the tests reach it, as a line of libpq; nothing listens there where the server is not installed.
set(TAVELOR_TEST_SERVER "host=${folder} port=5432 dbname=postgres user=tavelor")

foreach(action IN ITEMS start stop)
  add_test(NAME server.${action} COMMAND ${PROJECT_SOURCE_DIR}/scripts/server ${action} ${folder} --with-caller)
  set_tests_properties(server.${action} PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)
endforeach()
set_tests_properties(server.start PROPERTIES FIXTURES_SETUP server)
set_tests_properties(server.stop PROPERTIES FIXTURES_CLEANUP server)

# tavelor_needs_server(TEST... [ENVIRONMENT variable=value...]): tests of add_test() that need it. One
# that finds no server ends with 77 or tells so, and is skipped.
function(tavelor_needs_server)
  cmake_parse_arguments(PARSE_ARGV 0 needs "" "" "ENVIRONMENT")
  set_tests_properties(${needs_UNPARSED_ARGUMENTS} PROPERTIES FIXTURES_REQUIRED server SKIP_RETURN_CODE 77
    SKIP_REGULAR_EXPRESSION "No server to test on"
    ENVIRONMENT "TAVELOR_TEST_SERVER=${TAVELOR_TEST_SERVER};${needs_ENVIRONMENT}")
endfunction()
