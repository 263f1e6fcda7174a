# Installs the project, moves the install tree, and uses the simulated runtime from there as an
# outside project does.
#
#   cmake -DBUILD=... -DWORK=... -DSOURCE=... -DEMULATOR=... -DHARNESS=... \
#         -DCOPY_RUNTIME=... -DGENERATOR=... -P check_package.cmake
#
# BUILD         the build tree; WORK a folder for this test alone; SOURCE the project's sources
# EMULATOR      the program that runs programs of a cross build; empty in a native one
# GENERATOR     the generator of BUILD; the machine may have no other build tool
# HARNESS       the file name of the installed program
# COPY_RUNTIME  ON where the loader searches the program's own folder, so that the runtime is copied
#               there; otherwise LD_LIBRARY_PATH names the runtime's folder

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

# Each runtime is installed in a folder of its own, where no loader or linker finds it by accident.
file(GLOB_RECURSE installed "${prefix}/*amdhip64*")
list(SORT installed)
if(NOT installed STREQUAL runtimes)
  message(FATAL_ERROR "Expected ${runtimes} alone, found ${installed}")
endif()
if(NOT runtime IN_LIST runtimes)
  message(FATAL_ERROR "${runtime} is none of ${runtimes}")
endif()
foreach(index 0 1 2)
  list(GET folders ${index} generation_folder)
  list(GET runtimes ${index} generation_runtime)
  file(GLOB files "${generation_folder}/*")
  if(NOT files STREQUAL generation_runtime)
    message(FATAL_ERROR "Expected ${generation_runtime} alone in its folder, found ${files}")
  endif()
endforeach()

if(COPY_RUNTIME)
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
