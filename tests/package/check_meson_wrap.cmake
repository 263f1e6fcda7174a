# Builds and runs a Meson project that takes kestrelcore by the wrap, from a tarball of the sources.
#
#   cmake -DSOURCE=... -DWORK=... -DMESON=... -DVERSION=... -DSIMULATOR=... -P check_meson_wrap.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

file(REMOVE_RECURSE "${WORK}")
file(COPY "${SOURCE}/packaging/meson/" DESTINATION "${WORK}/host/subprojects")
set(folder "kestrelcore-${VERSION}")
foreach(part c cmake hip_binding platform system utils)
  file(COPY "${SOURCE}/${part}" DESTINATION "${WORK}/${folder}")
endforeach()
execute_process(
  COMMAND "${CMAKE_COMMAND}" -E tar czf "host/subprojects/packagefiles/${folder}.tar.gz" "${folder}"
  WORKING_DIRECTORY "${WORK}" COMMAND_ERROR_IS_FATAL ANY)

foreach(file main.cpp meters.cpp meters.h)
  file(COPY "${SOURCE}/tests/consumer/${file}" DESTINATION "${WORK}/host")
endforeach()
file(WRITE "${WORK}/host/meson.build"
     "project('host', 'cpp', default_options: ['cpp_std=c++17'])\n"
     "executable('host', 'main.cpp', 'meters.cpp', dependencies: dependency('kestrelcore'))\n")
run("${MESON}" setup "${WORK}/build" "${WORK}/host" --wrap-mode=forcefallback --buildtype=plain)
run("${MESON}" compile -C "${WORK}/build")

unset(ENV{KESTREL_SIM_MACHINE})
cmake_path(GET SIMULATOR PARENT_PATH simulator_folder)
set(ENV{LD_LIBRARY_PATH} "${simulator_folder}")
run("${WORK}/build/host")
if(NOT output MATCHES "The library answers.")
  message(FATAL_ERROR "${output}")
endif()

# The same names as those of the build by CMake.
file(GLOB library "${WORK}/build/subprojects/*/libkestrelcore.so.${VERSION}")
run("${CMAKE_COMMAND}" "-DNM=${NM}" "-DLIBRARY=${library}" -P
    "${CMAKE_CURRENT_LIST_DIR}/check_exports.cmake")
