# What this project knows of the functions of HIP.

# Sets `result` to the name that HIP's header gives to hipGetDeviceProperties: since HIP 6 it is a
# macro for another function, which programs then import.
function(kestrelcore_hip_properties_function result header)
  file(STRINGS "${header}" line REGEX "^#define hipGetDeviceProperties ")
  if(line)
    string(REGEX REPLACE "^#define hipGetDeviceProperties +" "" name "${line}")
  else()
    set(name hipGetDeviceProperties)
  endif()
  set(${result} "${name}" PARENT_SCOPE)
endfunction()

# Sets `result` to the functions that the library calls, by the names in the HIP headers in
# `include_dir`.
function(kestrelcore_hip_calls result include_dir)
  kestrelcore_hip_properties_function(properties "${include_dir}/hip/hip_runtime_api.h")
  set(${result} hipGetDeviceCount ${properties} hipGetErrorString hipMemGetInfo hipSetDevice
      PARENT_SCOPE)
endfunction()

# Sets `result` to the version of the HIP headers in `include_dir`, for instance 5.2.
function(kestrelcore_hip_version result include_dir)
  foreach(part MAJOR MINOR)
    file(STRINGS "${include_dir}/hip/hip_version.h" line REGEX "define HIP_VERSION_${part}")
    string(REGEX MATCH "[0-9]+$" ${part} "${line}")
  endforeach()
  set(${result} "${MAJOR}.${MINOR}" PARENT_SCOPE)
endfunction()

# Sets `result` to the generation of HIP whose headers are in `include_dir`: 5, 6, ...
function(kestrelcore_hip_generation result include_dir)
  kestrelcore_hip_version(version "${include_dir}")
  string(REGEX REPLACE "\\..*" "" generation "${version}")
  set(${result} "${generation}" PARENT_SCOPE)
endfunction()

# Sets `result` to the functions that a runtime of that generation exports, as far as this project
# knows them; SYMBOL_VERSION restricts them to those of one symbol version.
function(kestrelcore_hip_exports result generation)
  cmake_parse_arguments(arg "" "SYMBOL_VERSION" "" ${ARGN})
  file(STRINGS "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../simulator/operations.inc" lines
       REGEX "^OPERATION\\(")
  set(names "")
  foreach(line IN LISTS lines)
    string(REGEX MATCH "\\(([^,]+), [^,]+, ([0-9]+), ([^)]+)\\)" _ "${line}")
    if(CMAKE_MATCH_2 LESS_EQUAL generation AND (NOT arg_SYMBOL_VERSION OR CMAKE_MATCH_3 STREQUAL
                                                                           arg_SYMBOL_VERSION))
      list(APPEND names "${CMAKE_MATCH_1}")
    endif()
  endforeach()
  set(${result} "${names}" PARENT_SCOPE)
endfunction()
