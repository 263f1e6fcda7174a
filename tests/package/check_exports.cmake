# What the shared library exports is the list that it was linked with, name for name: nothing of the
# standard library's templates, and no name of the list missing.
#
#   cmake -DNM=... -DLIBRARY=... -DEXPORT_LIST=... -P check_exports.cmake

cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND "${NM}" -DC --defined-only "${LIBRARY}" OUTPUT_VARIABLE actual
                COMMAND_ERROR_IS_FATAL ANY)
string(STRIP "${actual}" actual)
string(REPLACE "\n" ";" actual "${actual}")
list(TRANSFORM actual REPLACE "^[0-9a-f]+ . " "")
list(REMOVE_DUPLICATES actual) # constructors and destructors stand there for objects and for bases
list(SORT actual)

file(STRINGS "${EXPORT_LIST}" expected REGEX "^ *\".*\";$")
list(TRANSFORM expected REPLACE "^ *\"(.*)\";$" "\\1")
list(SORT expected)

list(LENGTH expected count)
if(count EQUAL 0 OR NOT actual STREQUAL expected)
  list(JOIN actual "\n  " actual)
  list(JOIN expected "\n  " expected)
  message(FATAL_ERROR "Exported:\n  ${actual}\nExpected:\n  ${expected}")
endif()
