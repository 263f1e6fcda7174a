# A HIP installation in a folder of its own, named by HIP_ROOT: the installed library finds its
# runtime there, for programs that run and for projects that link; and a folder that holds no HIP is
# refused, not passed over in favour of the system's.
#
#   cmake -DSOURCE=... -DCONSUMER=... -DWORK=... -DHEADERS=... -DRUNTIME=... -DGENERATOR=... \
#         -P check_hip_root.cmake
#
# HEADERS   the include folder of HIP; RUNTIME a file that is a HIP runtime

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

file(REMOVE_RECURSE "${WORK}")
set(root "${WORK}/hip")
file(MAKE_DIRECTORY "${root}/include")
file(CREATE_LINK "${HEADERS}/hip" "${root}/include/hip" SYMBOLIC)
cmake_path(GET RUNTIME FILENAME soname)
file(COPY "${RUNTIME}" DESTINATION "${root}/lib" FOLLOW_SYMLINK_CHAIN)
file(CREATE_LINK "${soname}" "${root}/lib/libamdhip64.so" SYMBOLIC)

set(configure "${CMAKE_COMMAND}" -S "${SOURCE}" -B "${WORK}/build" -G "${GENERATOR}"
              -DKESTRELCORE_BUILD_C=OFF -DKESTRELCORE_BUILD_COMMAND=OFF
              -DKESTRELCORE_BUILD_SIMULATOR=OFF)
run_expecting(1 ${configure} "-DHIP_ROOT=${WORK}/nothing")
if(NOT output MATCHES "nothing', which")
  message(FATAL_ERROR "The refusal does not name the folder:\n${output}")
endif()
run(${configure} "-DHIP_ROOT=${root}")
run("${CMAKE_COMMAND}" --build "${WORK}/build")
run("${CMAKE_COMMAND}" --install "${WORK}/build" --prefix "${WORK}/prefix")

unset(ENV{LD_LIBRARY_PATH})
unset(ENV{KESTREL_SIM_MACHINE})
set(harness "${WORK}/prefix/bin/kestrel-harness")
run(ldd "${harness}")
if(NOT output MATCHES "${root}/lib/${soname}")
  message(FATAL_ERROR "The runtime is not that of HIP_ROOT:\n${output}")
endif()
run("${harness}" --hardware-test --split_ms=0)

run("${CMAKE_COMMAND}" -S "${CONSUMER}" -B "${WORK}/consumer" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${WORK}/prefix")
run("${CMAKE_COMMAND}" --build "${WORK}/consumer")
run("${WORK}/consumer/host")
