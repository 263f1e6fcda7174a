# The harness takes at least as long as it has to wait. There is no upper bound to test, since a
# busy machine may take any time.
#
# OWN_PID in the command stands for the process that runs this script, on Linux.
#
#   cmake -DRUN=... -DRUNTIME=... -DMILLISECONDS=... -P check_pause.cmake

cmake_minimum_required(VERSION 3.25)

if(RUNTIME)
  set(ENV{LD_LIBRARY_PATH} "${RUNTIME}")
endif()

# Sets `result` to a time in hundredths of a second. CMake reads the clock that a user can set; that of
# Linux, on which Wine runs, too, cannot be set.
function(read_clock result)
  if(EXISTS "/proc/uptime")
    file(READ "/proc/uptime" time)
    string(REGEX REPLACE "^([0-9]+)\\.([0-9][0-9]) .*" "\\1\\2" time "${time}")
  else()
    string(TIMESTAMP time "%s%f")
    string(REGEX REPLACE "....$" "" time "${time}")
  endif()
  set(${result} "${time}" PARENT_SCOPE)
endfunction()

if(IS_SYMLINK "/proc/self")
  file(READ_SYMLINK "/proc/self" pid)
  list(TRANSFORM RUN REPLACE "^OWN_PID$" "${pid}")
endif()
read_clock(start)
execute_process(COMMAND ${RUN} OUTPUT_QUIET ERROR_QUIET
                RESULT_VARIABLE status)
read_clock(end)
math(EXPR milliseconds "10 * (${end} - ${start})")
if(NOT status EQUAL 0 OR milliseconds LESS MILLISECONDS)
  message(FATAL_ERROR "Exit status ${status} after ${milliseconds} ms")
endif()
