# SPDX-License-Identifier: MIT
# tavelor_unity(TARGET...): with TAVELOR_UNITY, the sources of the targets are compiled a few at a
# time, so that what all of them include and instantiate is read and made once for each few: a third
# of the time, for the tests and the command. With TAVELOR_UNITY_LIBRARY the library is compiled so too:
# that is for checks that compile it once more. What is shipped is compiled one by one, which proves that
# each source includes what it needs.
#
# Sources that are compiled together share their unnamed namespaces. The constants below are what
# files of one folder call alike, each its own; they get the mark of their file. Any other name that
# two files of a target would like has to be told apart.
set(TAVELOR_ALIKE
  kBreve kEsdeAlmacen kFamilyWidth kFields kFooter kFunctions kHalfACent kHoursOfADay kInfinity kInfo kLista
  kMedida kModes kNuevoCodigo kOf kRestaStock kStyle kTodos)
# Only the floors of the library call these alike, but for four where each is one thing that a header tells.
set(TAVELOR_ALIKE_IN_FLOORS kSource kTable)
set(TAVELOR_FLOORS_WITH_ONE tavelor_c tavelor_dialect tavelor_postgres tavelor_sqlite)
# Sources that like other names than constants, and are compiled alone.
set(TAVELOR_ALONE
  tavelor/articles/articulos_componente.cpp tavelor/articles/articulos_precios_ventas.cpp
  tavelor/articles/articulos_stock.cpp tavelor/c/documentation.cpp tavelor/customers/clientes_componente.cpp
  tavelor/customers/clientes_fiscal.cpp tavelor/customers/clientes_lecturas.cpp
  tavelor/customers/clientes_mantenimiento.cpp tavelor/fiscal/book.cpp tavelor/fiscal/export.cpp
  tavelor/flows/receipt.cpp tavelor/flows/shop_checks.cpp tavelor/frame/record_class.cpp tavelor/frame/recordset_components.cpp
  tavelor/platform/date_text.cpp tavelor/platform/fiscal_number.cpp tavelor/platform/format.cpp
  tavelor/platform/variant.cpp tavelor/sales/receipt.cpp tavelor/sales/tickets.cpp
  tavelor/sales/tickets_componente.cpp tavelor/sales/tickets_documento.cpp tavelor/sending/transport.cpp
  tavelor/services/dialect/sqlite_writer.cpp tavelor/services/recordset/sort.cpp
  tavelor/services/recordset/xml_save.cpp)
# Addresses of the server, whose handlers are called after what they do: list, one, print.
file(GLOB TAVELOR_ADDRESSES RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/tavelor/web/till_*.cpp ${PROJECT_SOURCE_DIR}/tavelor/web/class_*.cpp
  ${PROJECT_SOURCE_DIR}/tavelor/web/master_*.cpp ${PROJECT_SOURCE_DIR}/tavelor/web/open_api.cpp
  ${PROJECT_SOURCE_DIR}/tavelor/web/session.cpp)
list(APPEND TAVELOR_ALONE ${TAVELOR_ADDRESSES})

# g++ takes a source that is included for a header, where a class may not hold what is unnamed.
set(before "#if defined(__GNUC__) && !defined(__clang__)\n#pragma GCC diagnostic ignored \"-Wsubobject-linkage\"\n#endif\n")
string(APPEND before "#define TAVELOR_JOINED(name, mark) name##_##mark\n#define TAVELOR_MARKED(name, mark) TAVELOR_JOINED(name, mark)\n")
foreach(name IN LISTS TAVELOR_ALIKE)
  string(APPEND before "#define ${name} TAVELOR_MARKED(${name}, TAVELOR_UNIT)\n")
endforeach()
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/unity/alike.inc CONTENT "${before}" @ONLY)
foreach(name IN LISTS TAVELOR_ALIKE_IN_FLOORS)
  string(APPEND before "#define ${name} TAVELOR_MARKED(${name}, TAVELOR_UNIT)\n")
endforeach()
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/unity/alike_in_floors.inc CONTENT "${before}" @ONLY)

set_source_files_properties(${TAVELOR_ALONE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)

function(tavelor_unity)
  if(TAVELOR_UNITY)
    tavelor_joined(alike.inc ${ARGN})
  endif()
endfunction()

# A floor of the library.
function(tavelor_unity_floor floor)
  if(NOT TAVELOR_UNITY_LIBRARY)
    return()
  endif()
  set(alike alike_in_floors.inc)
  if(tavelor_${floor} IN_LIST TAVELOR_FLOORS_WITH_ONE)
    set(alike alike.inc)
  endif()
  tavelor_joined(${alike} tavelor_${floor})
endfunction()

function(tavelor_joined alike)
  set_target_properties(${ARGN} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 10
    UNITY_BUILD_UNIQUE_ID TAVELOR_UNIT
    UNITY_BUILD_CODE_BEFORE_INCLUDE "#include \"${PROJECT_BINARY_DIR}/unity/${alike}\"")
endfunction()
