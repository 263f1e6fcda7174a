# Where the package tools are not all there, script/bootstrap installs nothing: it lists what to
# install by hand. apt-get alone, as on some other distributions, is not enough.
#
#   cmake -DSOURCE=... -DWORK=... -P check_bootstrap.cmake

cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE "${WORK}")
file(WRITE "${WORK}/apt-get" "#!/bin/sh\necho called >> '${WORK}/calls'\n")
file(CHMOD "${WORK}/apt-get" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
find_program(cat cat REQUIRED)
find_program(bash bash REQUIRED)
file(CREATE_LINK "${cat}" "${WORK}/cat" SYMBOLIC)

set(ENV{PATH} "${WORK}")
execute_process(COMMAND "${bash}" "${SOURCE}/script/bootstrap" RESULT_VARIABLE status
                ERROR_VARIABLE message)
if(NOT status EQUAL 1 OR NOT message MATCHES "by hand" OR NOT message MATCHES "libamdhip64-dev")
  message(FATAL_ERROR "Exit status ${status}: ${message}")
endif()
if(EXISTS "${WORK}/calls")
  message(FATAL_ERROR "apt-get was called")
endif()
