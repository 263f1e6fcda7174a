# Checks that lines end with a line feed alone, as the readers of metrics and labels demand.
#
#   cmake -DRUN=<program> -DFORMAT=<format> -P check_newlines.cmake

cmake_minimum_required(VERSION 3.25)

set(file "${FORMAT}.newlines")
execute_process(COMMAND ${RUN} survey --format ${FORMAT} OUTPUT_FILE "${file}"
                RESULT_VARIABLE status)
file(READ "${file}" bytes HEX)
if(NOT status EQUAL 0 OR NOT bytes MATCHES "0a$" OR bytes MATCHES "^(..)*0d")
  message(FATAL_ERROR "${status}: ${bytes}")
endif()
