# Checks the wheel for Windows as far as it can be without a Python for Windows: it holds the package
# and the licences, and a host in C runs over its DLL on a simulated machine.
#
#   cmake -DDIST=... -DHOST=... -DSIMULATOR=... -DMACHINE=... -DEMULATOR=... -DWORK=...
#         -P check_windows_wheel.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

file(REMOVE_RECURSE "${WORK}")
file(GLOB wheel "${DIST}/kestrelcore-*-py3-none-win_amd64.whl")
file(ARCHIVE_EXTRACT INPUT "${wheel}" DESTINATION "${WORK}")
foreach(name kestrelcore/__init__.py kestrelcore/py.typed)
  if(NOT EXISTS "${WORK}/${name}")
    message(FATAL_ERROR "${wheel} lacks ${name}")
  endif()
endforeach()
foreach(license LICENSE LICENSE.gcc-runtime LICENSE.gpl-3 LICENSE.mingw-w64)
  file(GLOB found "${WORK}/kestrelcore-*.dist-info/${license}")
  if(NOT found)
    message(FATAL_ERROR "${wheel} lacks ${license}")
  endif()
endforeach()

file(COPY "${HOST}" "${SIMULATOR}" DESTINATION "${WORK}/kestrelcore")
cmake_path(GET HOST FILENAME host)
set(ENV{KESTREL_SIM_MACHINE} "${MACHINE}")
run(${EMULATOR} "${WORK}/kestrelcore/${host}")
if(NOT output MATCHES "AMD Radeon 780M")
  message(FATAL_ERROR "Over the DLL of ${wheel} the host printed:\n${output}")
endif()
