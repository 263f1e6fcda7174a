# Finds the AMD HIP runtime: in the folder that HIP_ROOT, ROCM_PATH or HIP_PATH names (CMake or
# environment variables, the first that is set; the HIP SDK for Windows sets the last) and nowhere
# else, or, if none is named, at the system's own places. A Windows build without the SDK uses the
# host's headers and an import library made here.
#
# Provides HIP::headers (to compile with) and HIP::runtime (to link with), and sets HIP_FOUND,
# HIP_INCLUDE_DIR and HIP_LIBRARY. The component `headers` requires no runtime.

set(_hip_roots "${HIP_ROOT}" "$ENV{HIP_ROOT}" "${ROCM_PATH}" "$ENV{ROCM_PATH}" "${HIP_PATH}"
               "$ENV{HIP_PATH}")
list(FILTER _hip_roots EXCLUDE REGEX "^$")
list(LENGTH _hip_roots _hip_root_count)
set(_hip_root "")
if(_hip_root_count GREATER 0)
  list(GET _hip_roots 0 _hip_root)
  file(TO_CMAKE_PATH "${_hip_root}" _hip_root)
endif()
if(NOT _hip_root STREQUAL "${_hip_root_of_results}")
  unset(HIP_INCLUDE_DIR CACHE)
  unset(HIP_LIBRARY CACHE)
  set(_hip_root_of_results "${_hip_root}" CACHE INTERNAL "Where HIP was looked for last")
endif()

if(_hip_root)
  # Header and library of one installation, since the layout of a record must match. Taken as it is
  # named, in a cross build too.
  set(_hip_search PATHS "${_hip_root}" NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  set(_hip_searched "'${_hip_root}', which HIP_ROOT, ROCM_PATH or HIP_PATH names, does not hold them.")
else()
  set(_hip_search PATHS /opt/rocm)
  set(_hip_searched "")
endif()
find_path(HIP_INCLUDE_DIR hip/hip_runtime_api.h ${_hip_search} PATH_SUFFIXES include)
find_library(HIP_LIBRARY amdhip64 ${_hip_search} PATH_SUFFIXES lib lib64)
if(MINGW AND NOT _hip_root AND NOT HIP_LIBRARY)
  include(HIPImportLibrary)
endif()

include(FindPackageHandleStandardArgs)
set(_hip_required HIP_LIBRARY HIP_INCLUDE_DIR)
if(HIP_FIND_COMPONENTS STREQUAL "headers")
  set(_hip_required HIP_INCLUDE_DIR)
  set(HIP_headers_FOUND ON)
endif()
find_package_handle_standard_args(
  HIP
  REQUIRED_VARS ${_hip_required}
  REASON_FAILURE_MESSAGE
    "The AMD HIP runtime's headers and library are needed. ${_hip_searched} On Debian and Ubuntu install the package libamdhip64-dev, elsewhere install AMD's ROCm (on Windows its HIP SDK) and set HIP_ROOT to its folder.")

if(HIP_FOUND AND NOT TARGET HIP::headers)
  add_library(HIP::headers INTERFACE IMPORTED)
  target_include_directories(HIP::headers INTERFACE "${HIP_INCLUDE_DIR}")
  target_compile_definitions(HIP::headers INTERFACE __HIP_PLATFORM_AMD__)
endif()
if(HIP_FOUND AND HIP_LIBRARY AND NOT TARGET HIP::runtime)
  add_library(HIP::runtime UNKNOWN IMPORTED)
  set_target_properties(HIP::runtime PROPERTIES IMPORTED_LOCATION "${HIP_LIBRARY}")
  target_link_libraries(HIP::runtime INTERFACE HIP::headers)
  if(TARGET hip_import_library)
    add_dependencies(HIP::runtime hip_import_library)
  endif()
endif()
mark_as_advanced(HIP_INCLUDE_DIR HIP_LIBRARY)
