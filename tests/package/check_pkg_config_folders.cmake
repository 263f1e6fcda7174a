# Installs the descriptions for pkg-config where the folders of libraries and headers are absolute, and
# checks that they lead there.
#
#   cmake -DSOURCE=... -DWORK=... -DGENERATOR=... -P check_pkg_config_folders.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

find_program(PKG_CONFIG pkg-config REQUIRED)

# The folders of libraries and headers as CMake receives them, and as they are.
function(check lib include full_lib full_include)
  file(REMOVE_RECURSE "${WORK}")
  run("${CMAKE_COMMAND}" -S "${CMAKE_CURRENT_LIST_DIR}/pkg_config_folders" -B "${WORK}/build" -G
      "${GENERATOR}" "-DSOURCE=${SOURCE}" "-DCMAKE_INSTALL_PREFIX=${WORK}/prefix"
      "-DCMAKE_INSTALL_LIBDIR=${lib}" "-DCMAKE_INSTALL_INCLUDEDIR=${include}")
  run("${CMAKE_COMMAND}" --install "${WORK}/build")
  set(ENV{PKG_CONFIG_PATH} "${full_lib}/pkgconfig")
  foreach(description kestrelcore kestrelcore-c)
    foreach(variable lib include)
      run("${PKG_CONFIG}" --variable=${variable}dir ${description})
      string(STRIP "${output}" folder)
      string(REPLACE "\\ " " " folder "${folder}")
      file(REAL_PATH "${folder}" folder)
      file(REAL_PATH "${full_${variable}}" expected)
      if(NOT folder STREQUAL expected)
        message(FATAL_ERROR "${variable}dir of ${description}.pc with the folders ${lib} and "
                            "${include} leads to ${folder}")
      endif()
    endforeach()
  endforeach()
endfunction()

check(lib/x include "${WORK}/prefix/lib/x" "${WORK}/prefix/include")
check("${WORK}/the libraries" include "${WORK}/the libraries" "${WORK}/prefix/include")
check(lib "${WORK}/the headers" "${WORK}/prefix/lib" "${WORK}/the headers")
check("${WORK}/the libraries" "${WORK}/far/the headers" "${WORK}/the libraries"
      "${WORK}/far/the headers")
