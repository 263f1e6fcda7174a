# script/kernels refuses arguments that it does not know before it builds anything or boots a kernel.
#
#   cmake -DSOURCE=... -P check_refusals.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

foreach(arguments IN ITEMS "no_such_case" "own_limit;no_such_case" "--on;5.0" "--jobs;0" "--jobs;two"
                           "--fill")
  run_expecting(2 "${SOURCE}/script/kernels" ${arguments})
endforeach()
