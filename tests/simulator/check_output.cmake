# Runs a program on a simulated machine and compares all that it writes, character by character,
# with a text that was kept.
#
#   cmake -DRUN=... -DRUNTIME=... -DMACHINE=... -DEXPECTED=... -DACTUAL=... -P check_output.cmake
#
# RUN       the command, with an emulator before it in a cross build
# RUNTIME   the folder that holds the simulated runtime; empty if it is found beside the program
# MACHINE   the machine file; run in its folder, so that messages name it without one
# EXPECTED  the text; ACTUAL gets what there was instead

cmake_minimum_required(VERSION 3.25)

cmake_path(GET MACHINE PARENT_PATH folder)
cmake_path(GET MACHINE FILENAME file)
if(RUNTIME)
  set(ENV{LD_LIBRARY_PATH} "${RUNTIME}")
endif()
set(ENV{KESTREL_SIM_MACHINE} "${file}")
execute_process(
  COMMAND ${RUN}
  WORKING_DIRECTORY "${folder}"
  OUTPUT_VARIABLE output
  ERROR_VARIABLE errors
  RESULT_VARIABLE status)

set(actual "${output}---- standard error ----\n${errors}---- exit status ${status} ----\n")
string(REPLACE "\r\n" "\n" actual "${actual}")
# The RAM is the real machine's.
string(REGEX REPLACE "(Machine physical RAM|Free RAM)( \\.+ )[^\n]*" "\\1\\2(real)" actual
                     "${actual}")
file(WRITE "${ACTUAL}" "${actual}")

set(expected "")
if(EXISTS "${EXPECTED}")
  file(READ "${EXPECTED}" expected)
endif()
if(NOT actual STREQUAL expected)
  message(FATAL_ERROR "${EXPECTED} and ${ACTUAL} differ. There was:\n${actual}")
endif()
