# Compares what a library exports with the list that dpkg derives versions of dependencies from.
#
#   cmake -DNM=... -DLIBRARY=... -DSYMBOLS=... -P check_symbols.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

run("${NM}" --dynamic --defined-only "${LIBRARY}")
string(STRIP "${output}" exported)
string(REPLACE "\n" ";" exported "${exported}")
list(TRANSFORM exported REPLACE "^[0-9a-f]+ . " "")
list(SORT exported)
file(STRINGS "${SYMBOLS}" lines)
list(POP_FRONT lines head)
cmake_path(GET LIBRARY FILENAME file_name)
string(REGEX MATCH "^[^ ]+" soname "${head}")
if(NOT file_name MATCHES "^${soname}")
  message(FATAL_ERROR "${SYMBOLS} is of ${soname}, the library is ${file_name}")
endif()
set(listed "${lines}")
list(TRANSFORM listed REPLACE "^ ([^@]+)@Base .*$" "\\1")
list(SORT listed)
if(NOT exported STREQUAL listed)
  list(JOIN exported "\n  " exported)
  list(JOIN listed "\n  " listed)
  message(FATAL_ERROR "Exported:\n  ${exported}\nIn ${SYMBOLS}:\n  ${listed}\nAn added name needs a "
                      "line there with the version that adds it.")
endif()
