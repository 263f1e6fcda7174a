# Compares what a shared library exports with exports.txt, name for name.
#
#   cmake -DNM=... -DLIBRARY=... -P check_exports.cmake
#
# A standard library may mark its types in our names: libc++ with a namespace, libstdc++ with a tag.

cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND "${NM}" --extern-only --demangle --defined-only --dynamic "${LIBRARY}"
                OUTPUT_VARIABLE actual COMMAND_ERROR_IS_FATAL ANY)
string(STRIP "${actual}" actual)
string(REGEX REPLACE "\\[abi:[a-z0-9]+\\]" "" actual "${actual}")
string(REPLACE "std::__1::" "std::" actual "${actual}")
string(REPLACE "\n" ";" actual "${actual}")
list(TRANSFORM actual REPLACE "^[0-9a-f]+ . " "")
list(SORT actual)

file(STRINGS "${CMAKE_CURRENT_LIST_DIR}/exports.txt" expected REGEX "^[^#]")
list(SORT expected)

list(LENGTH expected count)
if(count EQUAL 0 OR NOT actual STREQUAL expected)
  list(JOIN actual "\n  " actual)
  list(JOIN expected "\n  " expected)
  message(FATAL_ERROR "Exported:\n  ${actual}\nExpected:\n  ${expected}\nAn added name needs a line in "
                      "tests/package/exports.txt, a removed one another SOVERSION, too: "
                      "docs/compatibility.md")
endif()
message("${count} names, as expected")
