# Finds the AMD HIP runtime. Looks at HIP_ROOT, then ROCM_PATH (CMake or environment variables),
# then at the system's own places.
#
# Provides HIP::headers (to compile with) and HIP::runtime (to link with), and sets HIP_FOUND,
# HIP_INCLUDE_DIR and HIP_LIBRARY.

set(_hip_roots "${HIP_ROOT}" "$ENV{HIP_ROOT}" "${ROCM_PATH}" "$ENV{ROCM_PATH}")
list(FILTER _hip_roots EXCLUDE REGEX "^$")

find_path(
  HIP_INCLUDE_DIR hip/hip_runtime_api.h
  HINTS ${_hip_roots}
  PATH_SUFFIXES include
  PATHS /opt/rocm)
find_library(
  HIP_LIBRARY amdhip64
  HINTS ${_hip_roots}
  PATH_SUFFIXES lib lib64
  PATHS /opt/rocm)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(
  HIP
  REQUIRED_VARS HIP_LIBRARY HIP_INCLUDE_DIR
  REASON_FAILURE_MESSAGE
    "The AMD HIP runtime's headers and library are needed. On Debian and Ubuntu install the package libamdhip64-dev, elsewhere install AMD's ROCm and set HIP_ROOT to its folder.")

if(HIP_FOUND AND NOT TARGET HIP::headers)
  add_library(HIP::headers INTERFACE IMPORTED)
  target_include_directories(HIP::headers INTERFACE "${HIP_INCLUDE_DIR}")
  target_compile_definitions(HIP::headers INTERFACE __HIP_PLATFORM_AMD__)

  add_library(HIP::runtime UNKNOWN IMPORTED)
  set_target_properties(HIP::runtime PROPERTIES IMPORTED_LOCATION "${HIP_LIBRARY}")
  target_link_libraries(HIP::runtime INTERFACE HIP::headers)
endif()
mark_as_advanced(HIP_INCLUDE_DIR HIP_LIBRARY)
