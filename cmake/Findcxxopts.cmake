# Finds cxxopts: its CMake package or, in a cross build, the host's header, which suits any system.
#
# Provides cxxopts::cxxopts and sets cxxopts_FOUND.

find_package(cxxopts ${cxxopts_FIND_VERSION} QUIET CONFIG)
if(cxxopts_FOUND OR NOT CMAKE_CROSSCOMPILING)
  return()
endif()

include(HostHeaders)
kestrelcore_host_headers(cxxopts_INCLUDE_DIR cxxopts.hpp cxxopts.hpp)
if(cxxopts_INCLUDE_DIR)
  file(STRINGS "${cxxopts_INCLUDE_DIR}/cxxopts.hpp" cxxopts_VERSION
       REGEX "#define CXXOPTS__VERSION_MAJOR ")
  string(REGEX REPLACE "[^0-9]" "" cxxopts_VERSION "${cxxopts_VERSION}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(cxxopts REQUIRED_VARS cxxopts_INCLUDE_DIR
                                  VERSION_VAR cxxopts_VERSION)
if(cxxopts_FOUND AND NOT TARGET cxxopts::cxxopts)
  add_library(cxxopts::cxxopts INTERFACE IMPORTED)
  target_include_directories(cxxopts::cxxopts INTERFACE "${cxxopts_INCLUDE_DIR}")
endif()
