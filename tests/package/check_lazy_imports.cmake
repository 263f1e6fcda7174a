# A library with lazily bound HIP imports no HIP runtime, so that it loads where none is installed.
#
#   cmake -DOBJDUMP=... -DLIBRARY=... -P check_lazy_imports.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

run("${OBJDUMP}" -p "${LIBRARY}")
if(NOT output MATCHES "(NEEDED +|DLL Name: )libstdc\\+\\+")
  message(FATAL_ERROR "The imports cannot be read:\n${output}")
endif()
if(output MATCHES "(NEEDED +|DLL Name: )[^\n]*amdhip64[^\n]*")
  message(FATAL_ERROR "${LIBRARY} imports HIP: ${CMAKE_MATCH_0}")
endif()
