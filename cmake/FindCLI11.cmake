# Finds CLI11: its CMake package or, in a cross build, the host's headers, which suit any system.
#
# Provides CLI11::CLI11 and sets CLI11_FOUND.

find_package(CLI11 ${CLI11_FIND_VERSION} QUIET CONFIG)
if(CLI11_FOUND OR NOT CMAKE_CROSSCOMPILING)
  return()
endif()

include(HostHeaders)
kestrelcore_host_headers(CLI11_INCLUDE_DIR CLI CLI/CLI.hpp)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(CLI11 REQUIRED_VARS CLI11_INCLUDE_DIR)
if(CLI11_FOUND AND NOT TARGET CLI11::CLI11)
  add_library(CLI11::CLI11 INTERFACE IMPORTED)
  target_include_directories(CLI11::CLI11 INTERFACE "${CLI11_INCLUDE_DIR}")
endif()
