# SPDX-License-Identifier: MIT
# TAVELOR_PUBLIC_HEADERS: the headers that are installed and that the reference tells of, from the
# root of the repository.

# Whether a header stays at home, by private_headers.txt: the last line that matches wins.
file(STRINGS cmake/private_headers.txt private_lines REGEX "^[^#]")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS cmake/private_headers.txt)
function(tavelor_is_private header result)
  set(private FALSE)
  foreach(line IN LISTS private_lines)
    string(REGEX REPLACE "^!" "" glob "${line}")
    string(REPLACE "." "\\." pattern "${glob}")
    string(REPLACE "*" ".*" pattern "${pattern}")
    if(header MATCHES "^${pattern}$")
      if(line MATCHES "^!")
        set(private FALSE)
      else()
        set(private TRUE)
      endif()
    endif()
  endforeach()
  set(${result} ${private} PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} tavelor/*.hpp)
set(TAVELOR_PUBLIC_HEADERS "")
foreach(header IN LISTS headers)
  tavelor_is_private(${header} private)
  if(NOT private)
    list(APPEND TAVELOR_PUBLIC_HEADERS ${header})
  endif()
endforeach()
