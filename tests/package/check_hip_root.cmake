# A HIP installation in a folder of its own, named by HIP_ROOT: the installed library finds its
# runtime there, for programs that run and for projects that link; and a folder that holds no HIP is
# refused, not passed over in favour of the system's.
#
#   cmake -DSOURCE=... -DCONSUMER=... -DWORK=... -DHEADERS=... -DRUNTIME=... -DGENERATOR=... \
#         -P check_hip_root.cmake
#
# HEADERS   the include folder of HIP; RUNTIME a file that is a HIP runtime

cmake_minimum_required(VERSION 3.25)

function(run status_expected)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE output
                  RESULT_VARIABLE status)
  if(NOT status EQUAL status_expected)
    message(FATAL_ERROR "${ARGN}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE "${WORK}")
set(root "${WORK}/hip")
file(MAKE_DIRECTORY "${root}/include")
file(CREATE_LINK "${HEADERS}/hip" "${root}/include/hip" SYMBOLIC)
cmake_path(GET RUNTIME FILENAME soname)
file(COPY "${RUNTIME}" DESTINATION "${root}/lib" FOLLOW_SYMLINK_CHAIN)
file(CREATE_LINK "${soname}" "${root}/lib/libamdhip64.so" SYMBOLIC)

set(configure "${CMAKE_COMMAND}" -S "${SOURCE}" -B "${WORK}/build" -G "${GENERATOR}"
              -DKESTRELCORE_BUILD_SIMULATOR=OFF)
run(1 ${configure} "-DHIP_ROOT=${WORK}/nothing")
if(NOT output MATCHES "nothing', which")
  message(FATAL_ERROR "The refusal does not name the folder:\n${output}")
endif()
run(0 ${configure} "-DHIP_ROOT=${root}")
run(0 "${CMAKE_COMMAND}" --build "${WORK}/build")
run(0 "${CMAKE_COMMAND}" --install "${WORK}/build" --prefix "${WORK}/prefix")

unset(ENV{LD_LIBRARY_PATH})
unset(ENV{KESTREL_SIM_MACHINE})
set(harness "${WORK}/prefix/bin/kestrel-harness")
run(0 ldd "${harness}")
if(NOT output MATCHES "${root}/lib/${soname}")
  message(FATAL_ERROR "The runtime is not that of HIP_ROOT:\n${output}")
endif()
run(0 "${harness}" --hardware-test --split_ms=0)

run(0 "${CMAKE_COMMAND}" -S "${CONSUMER}" -B "${WORK}/consumer" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${WORK}/prefix")
run(0 "${CMAKE_COMMAND}" --build "${WORK}/consumer")
run(0 "${WORK}/consumer/host")
