# Builds the fuzz targets.
#
#   cmake -DSOURCE=... -DBUILD=... -DGENERATOR=... -DCOMPILER=... -P build_targets.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

run("${CMAKE_COMMAND}" -S "${SOURCE}" -B "${BUILD}" -G "${GENERATOR}"
    "-DCMAKE_CXX_COMPILER=${COMPILER}")
run("${CMAKE_COMMAND}" --build "${BUILD}")
