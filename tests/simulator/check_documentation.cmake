# Compares the operations that docs/simulator.md lists with those that the simulated runtimes export.
#
#   cmake -DSOURCE=... -P check_documentation.cmake
#
# SOURCE  the project's sources

cmake_minimum_required(VERSION 3.25)

include("${SOURCE}/cmake/HIPFunctions.cmake")

kestrelcore_hip_exports(exported 7)
list(SORT exported)

file(READ "${SOURCE}/docs/simulator.md" page)
string(REGEX MATCH "\n## What is simulated\n\n[^.]*\\." sentence "${page}")
string(REGEX MATCHALL "`hip[A-Za-z0-9]+`" documented "${sentence}")
list(TRANSFORM documented REPLACE "`" "")
list(SORT documented)

if(NOT documented STREQUAL exported)
  message(FATAL_ERROR "Documented: ${documented}\nExported: ${exported}")
endif()
