# Builds and runs a host of two translation units with plain compilers and pkg-config, over an installation
# that was made by way of DESTDIR and moved to a path with a blank.
#
#   cmake -DBUILD=... -DHOST=... -DWORK=... -DSIMULATOR=... -DCOMPILERS=... -DVERSION=...
#         -P check_pkg_config.cmake
#
# BUILD, HOST        this project's build folder, and the folder of the host's sources
# WORK               a folder to work in
# SIMULATOR          the simulated HIP runtime to run over
# COMPILERS          the compilers to try
# MESON              where it is set, the host is built by Meson, too

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

file(REMOVE_RECURSE "${WORK}")
run("${CMAKE_COMMAND}" -E env "DESTDIR=${WORK}/stage" "${CMAKE_COMMAND}" --install "${BUILD}" --prefix
    /opt/kestrel)
file(RENAME "${WORK}/stage/opt/kestrel" "${WORK}/moved prefix")

find_program(PKG_CONFIG pkg-config REQUIRED)
file(GLOB_RECURSE description "${WORK}/moved prefix/kestrelcore.pc")
cmake_path(GET description PARENT_PATH folder)
set(ENV{PKG_CONFIG_PATH} "${folder}")
cmake_path(GET folder PARENT_PATH libraries)
cmake_path(GET SIMULATOR PARENT_PATH simulator_folder)
set(ENV{LD_LIBRARY_PATH} "${libraries}:${simulator_folder}")
unset(ENV{KESTREL_SIM_MACHINE})

function(run_host host)
  run("${host}")
  if(NOT output MATCHES "The library answers.")
    message(FATAL_ERROR "${host}: ${output}")
  endif()
endfunction()

run("${PKG_CONFIG}" --modversion kestrelcore)
if(NOT output MATCHES "^${VERSION}\n$")
  message(FATAL_ERROR "pkg-config reports version ${output}")
endif()
foreach(static "" --static)
  run("${PKG_CONFIG}" --cflags --libs ${static} kestrelcore)
  separate_arguments(flags UNIX_COMMAND "${output}")
  foreach(compiler IN LISTS COMPILERS)
    foreach(standard 17 20 2b)
      run("${compiler}" "-std=c++${standard}" -Wall -Wextra -Werror "${HOST}/main.cpp"
          "${HOST}/meters.cpp" -o "${WORK}/host" ${flags})
      run_host("${WORK}/host")
      if(static)
        break() # the sources are compiled as before, only the linking may differ
      endif()
    endforeach()
  endforeach()
endforeach()

if(MESON)
  file(COPY "${HOST}/main.cpp" "${HOST}/meters.cpp" "${HOST}/meters.h"
       DESTINATION "${WORK}/meson host")
  file(WRITE "${WORK}/meson host/meson.build"
       "project('host', 'cpp', default_options: ['cpp_std=c++17'])\n"
       "executable('host', 'main.cpp', 'meters.cpp', dependencies: dependency('kestrelcore'))\n")
  run("${MESON}" setup "${WORK}/meson build" "${WORK}/meson host")
  run("${MESON}" compile -C "${WORK}/meson build")
  run_host("${WORK}/meson build/host")
endif()
