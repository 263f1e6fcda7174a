# Finds nlohmann-json: its CMake package or, in a cross build, the host's headers, which suit any system.
#
# Provides nlohmann_json::nlohmann_json and sets nlohmann_json_FOUND.

find_package(nlohmann_json ${nlohmann_json_FIND_VERSION} QUIET CONFIG)
if(nlohmann_json_FOUND OR NOT CMAKE_CROSSCOMPILING)
  return()
endif()

include(HostHeaders)
kestrelcore_host_headers(nlohmann_json_INCLUDE_DIR nlohmann nlohmann/json.hpp)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(nlohmann_json REQUIRED_VARS nlohmann_json_INCLUDE_DIR)
if(nlohmann_json_FOUND AND NOT TARGET nlohmann_json::nlohmann_json)
  add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
  target_include_directories(nlohmann_json::nlohmann_json INTERFACE "${nlohmann_json_INCLUDE_DIR}")
endif()
