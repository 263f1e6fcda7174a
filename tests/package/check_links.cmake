# Links from page to page of the sources lead to files that exist. script/docs checks those of the built
# pages, which the README and CONTRIBUTING.md are not part of.
#
#   cmake -DSOURCE=... -P check_links.cmake

cmake_minimum_required(VERSION 3.25)

set(generated python-reference.md) # by script/docs
file(GLOB pages "${SOURCE}/*.md" "${SOURCE}/docs/*.md" "${SOURCE}/python/*.md")
set(count 0)
foreach(page IN LISTS pages)
  cmake_path(GET page PARENT_PATH folder)
  file(READ "${page}" text)
  string(REPLACE "](" "@link " text "${text}")
  string(REGEX REPLACE "[][;]" "" text "${text}") # which keep a list from being split
  string(REGEX MATCHALL "@link [^)#]+" links "${text}")
  list(TRANSFORM links REPLACE "^@link " "")
  list(FILTER links EXCLUDE REGEX "^https?://")
  list(REMOVE_ITEM links ${generated})
  foreach(link IN LISTS links)
    math(EXPR count "${count} + 1")
    if(NOT EXISTS "${folder}/${link}")
      message(FATAL_ERROR "${page} links to ${link}, which does not exist")
    endif()
  endforeach()
endforeach()
if(count EQUAL 0)
  message(FATAL_ERROR "No page has a link.")
endif()
message("${count} links")
