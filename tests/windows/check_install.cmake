# Installs what a Windows machine gets and follows its imports: every DLL is either there or the
# system's own, but for the HIP runtime, which comes with the graphics driver. Then runs the harness
# there, without that runtime and with a simulated one.
#
#   cmake -D BUILD=... -D WORK=... -D OBJDUMP=... -D HIP_DLL=... -D EMULATOR=... -D SIMULATOR=...
#         -P check_install.cmake

cmake_minimum_required(VERSION 3.25)

set(prefix "${WORK}/prefix")
file(REMOVE_RECURSE "${prefix}")
foreach(component runtime harness)
  execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${prefix}" --component
                          "${component}" OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()

set(expected
    kestrel-harness.exe
    kestrelcore.dll
    libgcc_s_seh-1.dll
    libstdc++-6.dll
    libwinpthread-1.dll
    licenses/gcc-runtime.txt
    licenses/gpl-3.txt
    licenses/mingw-w64.txt)
file(GLOB_RECURSE installed RELATIVE "${prefix}/bin" "${prefix}/bin/*")
list(SORT installed)
if(NOT installed STREQUAL expected)
  message(FATAL_ERROR "Installed: ${installed}")
endif()

set(from_elsewhere KERNEL32.dll msvcrt.dll "${HIP_DLL}")
file(GLOB images "${prefix}/bin/*.exe" "${prefix}/bin/*.dll")
foreach(image IN LISTS images)
  execute_process(COMMAND "${OBJDUMP}" -p "${image}" OUTPUT_VARIABLE text
                  COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "DLL Name: [^\n]+" imports "${text}")
  list(TRANSFORM imports REPLACE "^DLL Name: " "")
  if(NOT imports)
    message(FATAL_ERROR "${image} imports nothing")
  endif()
  list(REMOVE_ITEM imports ${installed} ${from_elsewhere})
  if(imports)
    message(FATAL_ERROR "${image} needs ${imports}")
  endif()
endforeach()

function(run_harness)
  execute_process(COMMAND ${EMULATOR} "${prefix}/bin/kestrel-harness.exe" --hardware-test -s 0
                  OUTPUT_VARIABLE output RESULT_VARIABLE status)
  set(output "${output}" PARENT_SCOPE)
  set(status "${status}" PARENT_SCOPE)
endfunction()

# The loader ends the program with STATUS_DLL_NOT_FOUND, 0xC0000135; Wine hands on the last byte, 53.
run_harness()
if(NOT status EQUAL 53 OR NOT output STREQUAL "")
  message(FATAL_ERROR "Without the HIP runtime: exit status ${status}\n${output}")
endif()
file(COPY_FILE "${SIMULATOR}" "${prefix}/bin/${HIP_DLL}")
run_harness()
if(NOT status EQUAL 0 OR NOT output MATCHES "CPU Architecture: x86_64")
  message(FATAL_ERROR "With a HIP runtime: exit status ${status}\n${output}")
endif()
