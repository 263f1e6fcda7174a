# Installs the project, moves the install tree, and uses the simulated runtime out of it as an
# outside project would.
#
#   cmake -DBUILD=... -DWORK=... -DSOURCE=... -DEMULATOR=... -DHARNESS=... -DBESIDE=... \
#         -DGENERATOR=... -P check_package.cmake
#
# BUILD     the build tree; WORK a folder for this test alone; SOURCE the project's sources
# EMULATOR  what runs a program in a cross build
# GENERATOR as in BUILD: a machine may have no other build tool
# HARNESS   the file name of the installed program
# BESIDE    whether programs look for the runtime beside themselves, not in a folder that is named

cmake_minimum_required(VERSION 3.25)

set(prefix "${WORK}/moved")
file(REMOVE_RECURSE "${WORK}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${WORK}/prefix"
                COMMAND_ERROR_IS_FATAL ANY)
file(RENAME "${WORK}/prefix" "${prefix}")
execute_process(
  COMMAND "${CMAKE_COMMAND}" -S "${SOURCE}/tests/simulator/package" -B "${WORK}/user"
          -G "${GENERATOR}" "-DCMAKE_PREFIX_PATH=${prefix}"
  COMMAND_ERROR_IS_FATAL ANY)
include("${WORK}/user/found.cmake")

# Where a loader or a linker would find it by accident, there is none.
file(GLOB_RECURSE runtimes "${prefix}/*amdhip64*")
if(NOT runtimes STREQUAL runtime)
  message(FATAL_ERROR "Instead of ${runtime} alone there is ${runtimes}")
endif()
file(GLOB beside_it "${folder}/*")
if(NOT beside_it STREQUAL runtime)
  message(FATAL_ERROR "The runtime's folder also holds others: ${beside_it}")
endif()

if(BESIDE)
  file(COPY "${runtime}" DESTINATION "${prefix}/bin")
  set(folder "")
endif()
set(command ${EMULATOR} "${prefix}/bin/${HARNESS}" --hardware-test --mem-test --split_ms=0)
execute_process(
  COMMAND
    "${CMAKE_COMMAND}" "-DRUN=${command}" "-DRUNTIME=${folder}"
    "-DMACHINE=${machines}/eight-gpu-server.toml"
    "-DEXPECTED=${SOURCE}/simulator/machines/eight-gpu-server.expected"
    "-DACTUAL=${WORK}/actual" -P "${SOURCE}/tests/check_output.cmake"
  COMMAND_ERROR_IS_FATAL ANY)
