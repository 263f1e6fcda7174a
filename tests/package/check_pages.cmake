# Installed headers and pages name only pages that are installed with them.
#
#   cmake -DBUILD=... -DWORK=... -P check_pages.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

file(REMOVE_RECURSE "${WORK}")
foreach(component development c-development)
  run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${WORK}" --component ${component})
endforeach()
file(GLOB_RECURSE pages "${WORK}/*.md")
file(GLOB_RECURSE headers "${WORK}/*.h")
list(TRANSFORM pages REPLACE "^.*/" "" OUTPUT_VARIABLE installed)
set(count 0)
foreach(file IN LISTS pages headers)
  file(READ "${file}" text)
  string(REPLACE "](" "docs/" text "${text}") # brackets would keep a list from being split
  string(REGEX MATCHALL "docs/[A-Za-z0-9_./-]+\\.md" names "${text}")
  list(TRANSFORM names REPLACE "^docs/" "")
  foreach(name IN LISTS names)
    math(EXPR count "${count} + 1")
    if(NOT name IN_LIST installed)
      message(FATAL_ERROR "${file} names ${name}, which is not installed")
    endif()
  endforeach()
endforeach()
if(count EQUAL 0)
  message(FATAL_ERROR "No header and no page names a page.")
endif()
message("${count} names of pages, all installed")
