# Compiles a host of the C library, runs it on a simulated machine and looks for a text in its
# output.
#
#   cmake -DCOMPILE=... -DSOURCE=... -DINCLUDE=... -DLIBRARY=... -DRUNTIME=... -DMACHINE=...
#         -DEXPECTED=... -DHOST=... -P check_host.cmake
#
# COMPILE  the compiler with its options; LIBRARY the folder of the C library; RUNTIME that of the
#          simulated HIP runtime; HOST the program to make

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../../run_command.cmake")

run(${COMPILE} "-I${INCLUDE}" "${SOURCE}" -o "${HOST}" "-L${LIBRARY}" -lkestrelcore-c)
set(ENV{LD_LIBRARY_PATH} "${LIBRARY}:${RUNTIME}")
set(ENV{KESTREL_SIM_MACHINE} "${MACHINE}")
run("${HOST}")
string(FIND "${output}" "${EXPECTED}" position)
if(position EQUAL -1)
  message(FATAL_ERROR "'${EXPECTED}' is not in the output:\n${output}")
endif()
