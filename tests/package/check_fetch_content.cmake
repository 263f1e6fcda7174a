# Builds and runs an outside project that uses FetchContent: over the sources, and over an installation.
#
#   cmake -DBUILD=... -DSOURCE=... -DWORK=... -DGENERATOR=... -DSIMULATOR=... -P check_fetch_content.cmake
#
# BUILD, SOURCE      this project's build and source folders; WORK a folder to work in
# SIMULATOR          the simulated HIP runtime to run over

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

file(REMOVE_RECURSE "${WORK}")
unset(ENV{KESTREL_SIM_MACHINE})
cmake_path(GET SIMULATOR PARENT_PATH simulator_folder)
set(ENV{LD_LIBRARY_PATH} "${simulator_folder}")

function(check_host build expected)
  run("${CMAKE_COMMAND}" -S "${CMAKE_CURRENT_LIST_DIR}/fetch_content" -B "${build}" -G "${GENERATOR}"
      "-DKESTRELCORE_SOURCES=${SOURCE}" "-DHOST_SOURCES=${SOURCE}/tests/consumer" ${ARGN})
  if(NOT output MATCHES "${expected}")
    message(FATAL_ERROR "Expected \"${expected}\":\n${output}")
  endif()
  run("${CMAKE_COMMAND}" --build "${build}")
  run("${build}/host")
  if(NOT output MATCHES "The library answers.")
    message(FATAL_ERROR "${output}")
  endif()
endfunction()

check_host("${WORK}/fetched" "kestrelcore is fetched" -DCMAKE_DISABLE_FIND_PACKAGE_kestrelcore=ON)
run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${WORK}/prefix")
check_host("${WORK}/found" "kestrelcore is installed" "-DCMAKE_PREFIX_PATH=${WORK}/prefix")
