# Finds the AMD HIP runtime. Looks at HIP_ROOT, then ROCM_PATH, then HIP_PATH (CMake or environment
# variables; the HIP SDK for Windows sets the last), then at the system's own places. A Windows
# build without the SDK uses the host's headers and an import library made here.
#
# Provides HIP::headers (to compile with) and HIP::runtime (to link with), and sets HIP_FOUND,
# HIP_INCLUDE_DIR and HIP_LIBRARY.

set(_hip_roots "${HIP_ROOT}" "$ENV{HIP_ROOT}" "${ROCM_PATH}" "$ENV{ROCM_PATH}" "${HIP_PATH}"
               "$ENV{HIP_PATH}")
list(FILTER _hip_roots EXCLUDE REGEX "^$")
file(TO_CMAKE_PATH "${_hip_roots}" _hip_roots)

# A root that the user names is taken as it is, in a cross build too.
find_path(
  HIP_INCLUDE_DIR hip/hip_runtime_api.h
  PATHS ${_hip_roots}
  PATH_SUFFIXES include
  NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
find_library(
  HIP_LIBRARY amdhip64
  PATHS ${_hip_roots}
  PATH_SUFFIXES lib lib64
  NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
find_path(HIP_INCLUDE_DIR hip/hip_runtime_api.h PATHS /opt/rocm/include)
find_library(HIP_LIBRARY amdhip64 PATHS /opt/rocm/lib /opt/rocm/lib64)
if(MINGW AND NOT HIP_LIBRARY)
  include(HIPImportLibrary)
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(
  HIP
  REQUIRED_VARS HIP_LIBRARY HIP_INCLUDE_DIR
  REASON_FAILURE_MESSAGE
    "The AMD HIP runtime's headers and library are needed. On Debian and Ubuntu install the package libamdhip64-dev, elsewhere install AMD's ROCm (on Windows its HIP SDK) and set HIP_ROOT to its folder.")

if(HIP_FOUND AND NOT TARGET HIP::headers)
  add_library(HIP::headers INTERFACE IMPORTED)
  target_include_directories(HIP::headers INTERFACE "${HIP_INCLUDE_DIR}")
  target_compile_definitions(HIP::headers INTERFACE __HIP_PLATFORM_AMD__)

  add_library(HIP::runtime UNKNOWN IMPORTED)
  set_target_properties(HIP::runtime PROPERTIES IMPORTED_LOCATION "${HIP_LIBRARY}")
  target_link_libraries(HIP::runtime INTERFACE HIP::headers)
  if(TARGET hip_import_library)
    add_dependencies(HIP::runtime hip_import_library)
  endif()
endif()
mark_as_advanced(HIP_INCLUDE_DIR HIP_LIBRARY)
