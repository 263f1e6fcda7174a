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

# The whole of a find module: finds `package` by its CMake package or, in a cross build, as headers of
# the host, which suit any system. Provides the target package::package and sets package_FOUND. A
# fourth argument names the macro of `header` that gives the major version. A macro, so that the
# caller of find_package() sees what the CMake package sets.
macro(kestrelcore_find_headers package entry header)
  find_package(${package} ${${package}_FIND_VERSION} QUIET CONFIG)
  if(NOT ${package}_FOUND AND CMAKE_CROSSCOMPILING)
    kestrelcore_find_host_package(${package} ${entry} ${header} ${ARGN})
  endif()
endmacro()

function(kestrelcore_find_host_package package entry header)
  kestrelcore_host_headers(include_dir "${entry}" "${header}")
  set(check_version "")
  if(ARGC GREATER 3 AND include_dir)
    file(STRINGS "${include_dir}/${header}" version REGEX "#define ${ARGV3} ")
    string(REGEX REPLACE "[^0-9]" "" version "${version}")
    set(check_version VERSION_VAR version)
  endif()
  include(FindPackageHandleStandardArgs)
  find_package_handle_standard_args(${package} REQUIRED_VARS include_dir ${check_version})
  set(${package}_FOUND "${${package}_FOUND}" PARENT_SCOPE)
  if(${package}_FOUND AND NOT TARGET ${package}::${package})
    add_library(${package}::${package} INTERFACE IMPORTED)
    target_include_directories(${package}::${package} INTERFACE "${include_dir}")
  endif()
endfunction()
