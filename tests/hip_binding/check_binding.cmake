# Runs a program where just the given HIP runtimes are found, and compares what it writes.
#
#   cmake -DPROGRAM=... -DSTEPS=... -DRUNTIMES=... -DWORK=... -DEMULATOR=... -DEXPECTED=...
#         -P check_binding.cmake
#
# PROGRAM   a program over the lazy binding, and STEPS its arguments
# RUNTIMES  "<name>=<file>" for each library: the file is copied to that name. With
#           "<name>=truncated:<file>" its first 8000 bytes, with "<name>=foreign:<file>" under the mark of
#           another processor
# WORK      the folder to make and run in; it holds the runtimes and the program
# ELSEWHERE if set, the program is in a folder of its own within it
# FOLDERS   if set, the loader searches that many empty folders first
# MACHINE   the machine file of a simulated runtime, if any
# EXPECTED  a regular expression for all that the program writes

cmake_minimum_required(VERSION 3.25)
include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

# Sets the field of the header that names the processor to that of 64-bit Arm.
function(mark_as_foreign file)
  file(READ "${file}" magic LIMIT 4 HEX)
  if(magic STREQUAL "7f454c46")
    set(offset 18)
    set(processor "\\267\\000")
  else()
    file(READ "${file}" header OFFSET 60 LIMIT 2 HEX) # the offset of the PE header, low byte first
    string(REGEX REPLACE "^(..)(..)$" "0x\\2\\1" header "${header}")
    math(EXPR offset "${header} + 4")
    set(processor "\\144\\252")
  endif()
  # Not the macro `run`, which would evaluate the backslashes.
  run_expecting(
    0 sh -c
    "printf '${processor}' | dd of='${file}' bs=1 seek=${offset} conv=notrunc status=none")
endfunction()

function(provide name file)
  string(REGEX MATCH "^(truncated|foreign):" damage "${file}")
  string(REGEX REPLACE "^(truncated|foreign):" "" file "${file}")
  if(damage STREQUAL "truncated:")
    run(sh -c "head -c 8000 '${file}' > '${WORK}/${name}'")
    return()
  endif()
  file(COPY_FILE "${file}" "${WORK}/${name}")
  if(damage STREQUAL "foreign:")
    mark_as_foreign("${WORK}/${name}")
  endif()
endfunction()

file(REMOVE_RECURSE "${WORK}")
file(MAKE_DIRECTORY "${WORK}")
foreach(runtime IN LISTS RUNTIMES)
  string(REGEX MATCH "^([^=]*)=(.*)$" runtime "${runtime}")
  provide("${CMAKE_MATCH_1}" "${CMAKE_MATCH_2}")
endforeach()
set(folder "${WORK}")
if(ELSEWHERE)
  set(folder "${WORK}/elsewhere")
  file(MAKE_DIRECTORY "${folder}")
endif()
cmake_path(GET PROGRAM FILENAME name)
file(COPY_FILE "${PROGRAM}" "${folder}/${name}")
set(search "${folder}")
if(FOLDERS)
  foreach(number RANGE 1 ${FOLDERS})
    file(MAKE_DIRECTORY "${WORK}/empty-${number}")
    string(PREPEND search "${WORK}/empty-${number}:")
  endforeach()
endif()
set(ENV{LD_LIBRARY_PATH} "${search}")
unset(ENV{HIP_VISIBLE_DEVICES})
unset(ENV{ROCR_VISIBLE_DEVICES})
set(ENV{KESTREL_SIM_MACHINE} "${MACHINE}")
run("${CMAKE_COMMAND}" -E chdir "${WORK}" ${EMULATOR} "${folder}/${name}" ${STEPS})
string(REPLACE "\r\n" "\n" output "${output}")
if(NOT output MATCHES "^${EXPECTED}\n$")
  message(FATAL_ERROR "Expected:\n${EXPECTED}\nbut there was:\n${output}")
endif()
