# Builds the library with an SDK of HIP 6 laid out as its installer does: HIP_PATH names its folder, a
# macro of its header selects the second form of a function, and its import library names another
# DLL. The build must use all three instead of the files that this project generates.
#
#   cmake -D SOURCE=... -D WORK=... -D GENERATOR=... -D TOOLCHAIN=... -D HIP_INCLUDE_DIR=...
#         -D DLLTOOL=... -D OBJDUMP=... -D IMPORT_LIST=... -P check_hip_sdk.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

set(sdk "${WORK}/ROCm 6.2")
file(REMOVE_RECURSE "${WORK}")
file(REAL_PATH "${HIP_INCLUDE_DIR}/hip" headers)
file(COPY "${headers}" DESTINATION "${sdk}/include")
file(RENAME "${sdk}/include/hip/hip_runtime_api.h" "${sdk}/include/hip/declarations.h")
file(WRITE "${sdk}/include/hip/hip_runtime_api.h"
     "#pragma once\n"
     "#define hipGetDeviceProperties hipGetDevicePropertiesR0600\n"
     "#define hipDeviceProp_t hipDeviceProp_tR0600\n"
     "#include \"declarations.h\"\n")
file(WRITE "${WORK}/sdk.def"
     "LIBRARY amdhip64_6.dll\nEXPORTS\nhipGetDeviceCount\nhipGetDeviceProperties\n"
     "hipGetDevicePropertiesR0600\nhipGetErrorString\nhipMemGetInfo\nhipSetDevice\n")
file(MAKE_DIRECTORY "${sdk}/lib")
run("${DLLTOOL}" --machine i386:x86-64 --input-def "${WORK}/sdk.def" --output-lib
    "${sdk}/lib/amdhip64.lib")

set(ENV{HIP_PATH} "${sdk}/")
run("${CMAKE_COMMAND}" -S "${SOURCE}" -B "${WORK}/build" -G "${GENERATOR}"
    "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}" -DKESTRELCORE_BUILD_C=OFF
    -DKESTRELCORE_BUILD_HARNESS=OFF -DKESTRELCORE_BUILD_SIMULATOR=OFF)
run("${CMAKE_COMMAND}" --build "${WORK}/build")
run("${CMAKE_COMMAND}" -D CHECK=imports -D "IMAGE=${WORK}/build/kestrelcore.dll" -D
    "OBJDUMP=${OBJDUMP}" -D "IMPORT_LIST=${IMPORT_LIST}" -D HIP_DLL=amdhip64_6.dll -D
    HIP_PROPERTIES=hipGetDevicePropertiesR0600 -P "${CMAKE_CURRENT_LIST_DIR}/check_image.cmake")
