# Runs stand-ins for Wine's programs and reads how the kernel places them.
#
#   cmake -D RUN_UNDER_WINE=... -D WORK=... -P check_fixed_addresses.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

set(flags /proc/self/personality)
file(REMOVE_RECURSE "${WORK}")

function(write_program name commands)
  file(WRITE "${WORK}/bin/${name}" "#!/bin/sh\n${commands}\n")
  file(CHMOD "${WORK}/bin/${name}" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
endfunction()

write_program(wine "cat ${flags}")
# `wineserver -k0` asks whether the server is there.
write_program(wineserver "cat ${flags}; test \"$1\" != -k0")

function(check_flags prefix)
  # Some containers forbid the setting.
  execute_process(COMMAND setarch -R cat ${flags} OUTPUT_VARIABLE expected RESULT_VARIABLE status
                  ERROR_QUIET)
  if(NOT status EQUAL 0)
    file(READ ${flags} expected)
  endif()
  run("${RUN_UNDER_WINE}" "${WORK}/${prefix}" program.exe)
  if(NOT output STREQUAL expected)
    message(FATAL_ERROR "The program runs with the flags ${output}instead of ${expected}")
  endif()
  file(READ "${WORK}/${prefix}/log" output)
  if(NOT output STREQUAL "${expected}${expected}${expected}")
    message(FATAL_ERROR "The server and wineboot run with the flags\n${output}instead of ${expected}")
  endif()
endfunction()

set(ENV{PATH} "${WORK}/bin:$ENV{PATH}")
check_flags(prefix)
write_program(setarch "exit 1")
check_flags("prefix of a container")
