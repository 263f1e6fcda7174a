# Installs each component alone. No two install the same document, so that each can be a package of its
# own, and each has a licence.
#
#   cmake -DBUILD=... -DWORK=... -DCOMPONENTS=... -P check_components.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

file(REMOVE_RECURSE "${WORK}")
set(all "")
foreach(component IN LISTS COMPONENTS)
  run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${WORK}/${component}" --component ${component})
  file(GLOB_RECURSE files RELATIVE "${WORK}/${component}" "${WORK}/${component}/*")
  list(FILTER files INCLUDE REGEX "^share/doc/")
  if(NOT files MATCHES "/LICENSE")
    message(FATAL_ERROR "The component ${component} has no licence: ${files}")
  endif()
  foreach(file IN LISTS files)
    if(file IN_LIST all)
      message(FATAL_ERROR "${file} belongs to ${component} and to another component")
    endif()
  endforeach()
  list(APPEND all ${files})
endforeach()
