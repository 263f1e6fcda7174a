# Header-only packages of the building machine, for a cross build. They are in /usr/include, which must
# not precede the cross compiler's headers, so each package is linked into a folder of its own.

# Sets `result` to a folder that contains only `entry` of the host's include folder, or to "" if the
# host has no `header` there. `header` is `entry` itself, or a file in it.
function(kestrelcore_host_headers result entry header)
  find_path(
    host_include_dir "${header}"
    PATHS /usr/include /usr/local/include /opt/rocm/include
    NO_CACHE NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(NOT host_include_dir)
    set(${result} "" PARENT_SCOPE)
    return()
  endif()
  set(folder "${CMAKE_BINARY_DIR}/host-headers/${entry}")
  file(MAKE_DIRECTORY "${folder}")
  file(CREATE_LINK "${host_include_dir}/${entry}" "${folder}/${entry}" SYMBOLIC)
  set(${result} "${folder}" PARENT_SCOPE)
endfunction()
