# Finds toml++ 3, a library of headers. Provides Tomlplusplus::Tomlplusplus.

# On the building machine, also when what is built is for another: the headers are the same.
find_path(
  TOMLPLUSPLUS_INCLUDE_DIR toml++/toml.h
  PATHS /usr/include /usr/local/include
  NO_CMAKE_FIND_ROOT_PATH)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(
  Tomlplusplus
  REQUIRED_VARS TOMLPLUSPLUS_INCLUDE_DIR
  REASON_FAILURE_MESSAGE
    "toml++ 3 is needed for the simulated HIP runtime. On Debian and Ubuntu install the package libtomlplusplus-dev, or set KESTRELCORE_BUILD_SIMULATOR=OFF.")

if(Tomlplusplus_FOUND AND NOT TARGET Tomlplusplus::Tomlplusplus)
  # A copy of its folder alone: a cross compiler must not see the other headers of /usr/include.
  set(_tomlplusplus_alone "${CMAKE_CURRENT_BINARY_DIR}/tomlplusplus")
  file(COPY "${TOMLPLUSPLUS_INCLUDE_DIR}/toml++" DESTINATION "${_tomlplusplus_alone}")
  add_library(Tomlplusplus::Tomlplusplus INTERFACE IMPORTED)
  target_include_directories(Tomlplusplus::Tomlplusplus INTERFACE "${_tomlplusplus_alone}")
endif()
mark_as_advanced(TOMLPLUSPLUS_INCLUDE_DIR)
