# Records a simulated machine and compares its survey with that of the recorded one.
#
#   cmake -DRUN=... -DRUNTIME=... -DMACHINE=... -DRECORDED=... -P check_recorded.cmake
#
# RUN       the program, with an emulator before it in a cross build
# RUNTIME   the folder of the simulated runtime; empty if it is next to the program
# MACHINE   the machine file to begin with
# RECORDED  the name of the file to record, in the current folder

cmake_minimum_required(VERSION 3.25)

if(RUNTIME)
  set(ENV{LD_LIBRARY_PATH} "${RUNTIME}")
endif()

# The survey without the memory, which changes from call to call, and its status.
function(survey result)
  execute_process(COMMAND ${RUN} survey --format json OUTPUT_VARIABLE text RESULT_VARIABLE status
                  ERROR_VARIABLE errors)
  string(JSON text REMOVE "${text}" memory)
  set(${result} "${text}${status}${errors}" PARENT_SCOPE)
endfunction()

set(ENV{KESTREL_SIM_MACHINE} "${MACHINE}")
survey(expected)
execute_process(COMMAND ${RUN} record "${RECORDED}" RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "recording ended with ${status}")
endif()
set(ENV{KESTREL_SIM_MACHINE} "${RECORDED}")
survey(actual)
if(NOT actual STREQUAL expected)
  file(READ "${RECORDED}" recorded)
  message(FATAL_ERROR "${expected}\nbecame\n${actual}\nby\n${recorded}")
endif()
