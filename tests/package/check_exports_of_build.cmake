# Builds the shared library without optimization, where more template instances are emitted, and
# compares what it exports with exports.txt.
#
#   cmake -DSOURCE=... -DWORK=... -DGENERATOR=... -DCOMPILER=... -DFLAGS=... -DNM=... \
#         -P check_exports_of_build.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

file(REMOVE_RECURSE "${WORK}")
run("${CMAKE_COMMAND}" -S "${SOURCE}" -B "${WORK}" -G "${GENERATOR}"
    "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_FLAGS=${FLAGS}" -DCMAKE_BUILD_TYPE=Debug
    -DKESTRELCORE_BUILD_C=OFF -DKESTRELCORE_BUILD_COMMAND=OFF -DKESTRELCORE_BUILD_HARNESS=OFF
    -DKESTRELCORE_BUILD_SIMULATOR=OFF)
run("${CMAKE_COMMAND}" --build "${WORK}")
run("${CMAKE_COMMAND}" "-DNM=${NM}" "-DLIBRARY=${WORK}/libkestrelcore.so" -P
    "${CMAKE_CURRENT_LIST_DIR}/check_exports.cmake")
