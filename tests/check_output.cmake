# Runs a program and compares its whole output, character by character, with an expected text.
#
#   cmake -DRUN=... -DRUNTIME=... -DMACHINE=... -DEXPECTED=... -DACTUAL=... -P check_output.cmake
#
# RUN       the command, with an emulator before it in a cross build; OWN_PID stands for the process that
#           runs this script, on Linux
# RUNTIME   the folder that holds the HIP runtime; empty if it is next to the program
# MACHINE   the machine file to simulate; without one there is no GPU. The program runs in the folder
#           of the file, so that messages name the file without its folder.
# EXPECTED  the file with the expected text
# ACTUAL    the file that the output is written to
# STATUSES  the list of HIP's statuses, if the runtime describes a status by a sentence instead of the
#           name that the expected text has
# MASK      a script that masks figures of the machine in the variable `actual`
#
# The text consists of standard output, standard error and the exit status. If there is anything on
# standard error, both streams follow once more as one, to show their order.

cmake_minimum_required(VERSION 3.25)

if(RUNTIME)
  set(ENV{LD_LIBRARY_PATH} "${RUNTIME}")
endif()
set(folder "${CMAKE_CURRENT_BINARY_DIR}")
unset(ENV{KESTREL_SIM_MACHINE})
unset(ENV{ROCR_VISIBLE_DEVICES})
unset(ENV{HIP_VISIBLE_DEVICES})
if(MACHINE)
  cmake_path(GET MACHINE PARENT_PATH folder)
  cmake_path(GET MACHINE FILENAME file)
  set(ENV{KESTREL_SIM_MACHINE} "${file}")
else()
  set(ENV{HIP_VISIBLE_DEVICES} -1) # hides real GPUs from the real runtime
endif()

set(pid OWN_PID)
if(IS_SYMLINK "/proc/self")
  file(READ_SYMLINK "/proc/self" pid)
endif()
list(TRANSFORM RUN REPLACE "^OWN_PID$" "${pid}")
execute_process(
  COMMAND ${RUN}
  WORKING_DIRECTORY "${folder}"
  OUTPUT_VARIABLE output
  ERROR_VARIABLE errors
  RESULT_VARIABLE status)
set(actual "${output}---- standard error ----\n${errors}")
if(NOT errors STREQUAL "")
  execute_process(
    COMMAND ${RUN}
    WORKING_DIRECTORY "${folder}"
    OUTPUT_VARIABLE both
    ERROR_VARIABLE both)
  string(APPEND actual "---- both in their order ----\n${both}")
endif()

string(REPLACE "\r\n" "\n" actual "${actual}")
# The C++ runtimes report an uncaught exception in different ways.
if(actual MATCHES "terminate called after throwing an instance of '([a-zA-Z_:]+)'")
  string(REGEX REPLACE "terminate called after throwing[^\n]*\n  what\\(\\):[^\n]*\n"
                       "(terminated by ${CMAKE_MATCH_1})\n" actual "${actual}")
  if(status STREQUAL "Subprocess aborted" OR status EQUAL 3)
    set(status "of an abort")
  endif()
endif()
string(APPEND actual "---- exit status ${status} ----\n")
# Figures of the real machine.
string(REPLACE "PID '${pid}'" "PID 'OWN_PID'" actual "${actual}")
string(REGEX REPLACE "(Machine physical RAM|Free RAM)( \\.+ )[0-9]+\\.[0-9][0-9] [KMGT]iB\n"
                     "\\1\\2(real)\n" actual "${actual}")
string(REGEX REPLACE "(CPU Usage [^.]* \\.+ )[0-9][0-9.e+-]*%" "\\1(real)%" actual "${actual}")
string(REGEX REPLACE "(Mem Usage [^.]* \\.+ )[0-9.]+ [KMG]B%" "\\1(real)%" actual "${actual}")
if(MASK)
  include("${MASK}")
endif()
file(WRITE "${ACTUAL}" "${actual}")

set(expected "")
if(EXISTS "${EXPECTED}")
  file(READ "${EXPECTED}" expected)
endif()
if(STATUSES)
  file(STRINGS "${STATUSES}" lines REGEX "^STATUS\\(.*\"\\)$")
  foreach(line IN LISTS lines)
    string(REGEX MATCH "([A-Za-z]+), \"(.*)\"\\)$" _ "${line}")
    string(REGEX REPLACE "( failed[^:\n]*: )${CMAKE_MATCH_1}\n" "\\1${CMAKE_MATCH_2}\n" expected
                         "${expected}")
  endforeach()
endif()
if(NOT actual STREQUAL expected)
  message(FATAL_ERROR "${EXPECTED} and ${ACTUAL} differ. There was:\n${actual}")
endif()
