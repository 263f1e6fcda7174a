# The harness takes at least as long as it has to wait. There is no upper bound to test, since a
# busy machine may take any time.
#
#   cmake -DRUN=... -DRUNTIME=... -DMILLISECONDS=... -P check_pause.cmake

cmake_minimum_required(VERSION 3.25)

if(RUNTIME)
  set(ENV{LD_LIBRARY_PATH} "${RUNTIME}")
endif()
string(TIMESTAMP start "%s%f")
execute_process(COMMAND ${RUN} OUTPUT_QUIET ERROR_QUIET
                RESULT_VARIABLE status)
string(TIMESTAMP end "%s%f")
math(EXPR microseconds "${end} - ${start}")
if(NOT status EQUAL 0 OR microseconds LESS ${MILLISECONDS}000)
  message(FATAL_ERROR "Exit status ${status} after ${microseconds} microseconds")
endif()
