# SPDX-License-Identifier: MIT
# tavelor_unity(TARGET...): with TAVELOR_UNITY, the sources of the targets are compiled a few at a
# time, so that what all of them include and instantiate is read and made once for each few: a third
# of the time, for the tests and the command. The library's own sources are compiled one by one.
#
# Sources that are compiled together share their unnamed namespaces. The constants below are what
# files of one folder call alike, each its own; they get the mark of their file. Any other name that
# two files of a target would like has to be told apart.
set(TAVELOR_ALIKE
  kEsdeAlmacen kFamilyWidth kFields kFooter kInfinity kLista kMedida kNuevoCodigo kRestaStock kTodos)

# g++ takes a source that is included for a header, where a class may not hold what is unnamed.
set(before "#if defined(__GNUC__) && !defined(__clang__)\n#pragma GCC diagnostic ignored \"-Wsubobject-linkage\"\n#endif\n")
string(APPEND before "#define TAVELOR_JOINED(name, mark) name##_##mark\n#define TAVELOR_MARKED(name, mark) TAVELOR_JOINED(name, mark)\n")
foreach(name IN LISTS TAVELOR_ALIKE)
  string(APPEND before "#define ${name} TAVELOR_MARKED(${name}, TAVELOR_UNIT)\n")
endforeach()
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/unity/alike.inc CONTENT "${before}" @ONLY)

function(tavelor_unity)
  if(NOT TAVELOR_UNITY)
    return()
  endif()
  set_target_properties(${ARGN} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 10
    UNITY_BUILD_UNIQUE_ID TAVELOR_UNIT
    UNITY_BUILD_CODE_BEFORE_INCLUDE "#include \"${PROJECT_BINARY_DIR}/unity/alike.inc\"")
endfunction()
