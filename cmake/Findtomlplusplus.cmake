# Finds toml++: its CMake package or, in a cross build, the host's headers, which suit any system.
#
# Provides tomlplusplus::tomlplusplus and sets tomlplusplus_FOUND.

find_package(tomlplusplus ${tomlplusplus_FIND_VERSION} QUIET CONFIG)
if(tomlplusplus_FOUND OR NOT CMAKE_CROSSCOMPILING)
  return()
endif()

include(HostHeaders)
kestrelcore_host_headers(tomlplusplus_INCLUDE_DIR toml++ toml++/toml.h)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(tomlplusplus REQUIRED_VARS tomlplusplus_INCLUDE_DIR)
if(tomlplusplus_FOUND AND NOT TARGET tomlplusplus::tomlplusplus)
  add_library(tomlplusplus::tomlplusplus INTERFACE IMPORTED)
  target_include_directories(tomlplusplus::tomlplusplus INTERFACE "${tomlplusplus_INCLUDE_DIR}")
endif()
