# SPDX-License-Identifier: MIT
# What pkg-config reads. tavelor.pc is the shared library; tavelor-static.pc is the other one, with what
# it needs as shared libraries, which `--static` would ask to be static too. The libraries upon it are
# static and use what the shared one does not show, so theirs take the static one; tavelor-flows-shared.pc brings
# that itself.
include(GNUInstallDirs)
file(RELATIVE_PATH pc_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" pc_to_prefix "${pc_to_prefix}")
set(pc_needs "fmt pugixml sqlite3 libutf8proc libpq")

function(tavelor_pkgconfig name)
  cmake_parse_arguments(PARSE_ARGV 1 pc "" "COMPONENT;DESCRIPTION;REQUIRES;REQUIRES_PRIVATE;LIBS;LIBS_PRIVATE" "")
  if(NOT pc_COMPONENT)
    set(pc_COMPONENT development)
  endif()
  set(pc_name ${name})
  foreach(line IN ITEMS description requires requires_private libs libs_private)
    string(TOUPPER ${line} upper)
    set(pc_${line} "${pc_${upper}}")
  endforeach()
  set(file ${PROJECT_BINARY_DIR}/pkgconfig/${name}.pc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/pkgconfig.pc.in ${file} @ONLY)
  # A line that says nothing is none.
  file(READ ${file} text)
  string(REGEX REPLACE "\n[A-Za-z.]+: *\n" "\n" text "${text}")
  string(REGEX REPLACE "\n[A-Za-z.]+: *\n" "\n" text "${text}")
  file(WRITE ${file} "${text}")
  install(FILES ${file} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${pc_COMPONENT})
endfunction()

# The archives of a library and of all that it stands on, in the order in which they are linked.
function(tavelor_archives result)
  set(files "")
  foreach(name IN LISTS ARGN)
    string(APPEND files "\${libdir}/lib${name}.a ")
  endforeach()
  set(${result} "${files}-pthread" PARENT_SCOPE)
endfunction()

if(TAVELOR_SHARED)
  tavelor_pkgconfig(tavelor DESCRIPTION "${PROJECT_DESCRIPTION}" REQUIRES_PRIVATE "${pc_needs}"
    LIBS "-L\${libdir} -ltavelor" LIBS_PRIVATE "-pthread")
else()
  tavelor_pkgconfig(tavelor DESCRIPTION "${PROJECT_DESCRIPTION}" REQUIRES "${pc_needs}"
    LIBS "-L\${libdir} -ltavelor -pthread")
endif()
tavelor_archives(archives tavelor)
tavelor_pkgconfig(tavelor-static DESCRIPTION "${PROJECT_DESCRIPTION} (static)" REQUIRES "${pc_needs}"
  LIBS "${archives}")
set(fiscal tavelor_fiscal tavelor)
set(flows tavelor_flows ${fiscal})
tavelor_archives(archives ${fiscal})
tavelor_pkgconfig(tavelor-fiscal DESCRIPTION "Records of invoices, as the law wants them"
  REQUIRES "${pc_needs} libcrypto libqrencode" LIBS "${archives}")
tavelor_archives(archives ${flows})
tavelor_pkgconfig(tavelor-flows DESCRIPTION "Sales, closings, deliveries: flows over several classes"
  REQUIRES "${pc_needs} libcrypto libqrencode" LIBS "${archives}")
if(TAVELOR_SHARED)
  tavelor_pkgconfig(tavelor-flows-shared DESCRIPTION "Flows over several classes, on the shared library"
    REQUIRES "tavelor fmt pugixml libcrypto libqrencode" LIBS "\${libdir}/libtavelor_flows_shared.a")
endif()
tavelor_archives(archives tavelor_sending ${flows})
tavelor_pkgconfig(tavelor-sending DESCRIPTION "Records of invoices on their way to the tax office"
  REQUIRES "${pc_needs} libcrypto libqrencode libcurl" LIBS "${archives}")
tavelor_archives(archives tavelor_signing ${fiscal})
tavelor_pkgconfig(tavelor-signing DESCRIPTION "Signatures of records and of electronic invoices"
  REQUIRES "${pc_needs} libcrypto libqrencode xmlsec1-openssl libxml-2.0" LIBS "${archives}")
# Static, the adapter stands on the static library, so that it goes with the flows.
if(TARGET tavelor_qt_library)
  if(TARGET tavelor_qt_shared)
    tavelor_pkgconfig(tavelor-qt6 COMPONENT qt_development DESCRIPTION "Models and forms for Qt 6"
      REQUIRES "tavelor Qt6Widgets" LIBS "-L\${libdir} -ltavelor_qt6")
  endif()
  tavelor_archives(archives tavelor_qt6 ${flows})
  tavelor_pkgconfig(tavelor-qt6-flows COMPONENT qt_development DESCRIPTION "Models and forms for Qt 6, and flows"
    REQUIRES "Qt6Widgets ${pc_needs} libcrypto libqrencode" LIBS "${archives}")
endif()
