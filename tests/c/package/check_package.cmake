# Installs the C interface alone, moves the installed folder to a path with a blank, and builds and runs a
# host in C there: by the CMake package and by pkg-config.
#
#   cmake -DBUILD=... -DCONSUMER=... -DWORK=... -DGENERATOR=... -DTOOLCHAIN=... -DCOMPILER=...
#         -DEMULATOR=... -DVERSION=... -P check_package.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../../run_command.cmake")

file(REMOVE_RECURSE "${WORK}")
foreach(component c c-development)
  run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${WORK}/installed" --component ${component})
endforeach()
set(prefix "${WORK}/moved prefix")
file(RENAME "${WORK}/installed" "${prefix}")

# Stops unless the host runs and prints the version. Windows looks for DLLs next to the program.
function(expect_host_to_run host)
  if(EMULATOR)
    cmake_path(GET host PARENT_PATH folder)
    file(COPY "${prefix}/bin/kestrelcore-c.dll" DESTINATION "${folder}")
  endif()
  run(${EMULATOR} "${host}")
  if(NOT output MATCHES "^${VERSION} KESTREL_OK[\r\n]+$")
    message(FATAL_ERROR "${host} printed: ${output}")
  endif()
endfunction()

file(GLOB_RECURSE package "${prefix}/kestrelcoreConfig.cmake")
cmake_path(GET package PARENT_PATH package)
run("${CMAKE_COMMAND}" -S "${CONSUMER}" -B "${WORK}/build" -G "${GENERATOR}"
    "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}" "-Dkestrelcore_DIR=${package}"
    -DCMAKE_BUILD_TYPE=Release)
run("${CMAKE_COMMAND}" --build "${WORK}/build")
file(GLOB host "${WORK}/build/host" "${WORK}/build/host.exe")
expect_host_to_run("${host}")

find_program(PKG_CONFIG pkg-config REQUIRED)
file(GLOB_RECURSE description "${prefix}/kestrelcore-c.pc")
cmake_path(GET description PARENT_PATH folder)
set(ENV{PKG_CONFIG_PATH} "${folder}")
set(ENV{PKG_CONFIG_ALLOW_SYSTEM_LIBS} 1)
run("${PKG_CONFIG}" --modversion kestrelcore-c)
if(NOT output MATCHES "^${VERSION}\n$")
  message(FATAL_ERROR "pkg-config reports version ${output}")
endif()
run("${PKG_CONFIG}" --cflags --libs kestrelcore-c)
separate_arguments(flags UNIX_COMMAND "${output}")
file(MAKE_DIRECTORY "${WORK}/pkgconfig")
set(host "${WORK}/pkgconfig/host.exe")
run("${COMPILER}" "${CONSUMER}/host.c" -o "${host}" ${flags})
if(NOT EMULATOR)
  file(GLOB library "${prefix}/lib/*/libkestrelcore-c.so.0" "${prefix}/lib*/libkestrelcore-c.so.0")
  cmake_path(GET library PARENT_PATH folder)
  set(ENV{LD_LIBRARY_PATH} "${folder}")
endif()
expect_host_to_run("${host}")
