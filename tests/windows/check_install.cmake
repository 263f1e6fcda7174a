# Installs the files for a Windows machine and follows their imports: every DLL is installed or part
# of the system, except the HIP runtime, which the graphics driver installs. Then runs the installed
# harness, without that runtime and with a simulated one.
#
#   cmake -D BUILD=... -D WORK=... -D OBJDUMP=... -D HIP_DLL=... -D EMULATOR=... -D SIMULATOR=...
#         -P check_install.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

set(prefix "${WORK}/prefix")
file(REMOVE_RECURSE "${prefix}")
foreach(component runtime harness)
  run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${prefix}" --component "${component}")
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

set(provided_by_the_system ADVAPI32.dll KERNEL32.dll msvcrt.dll "${HIP_DLL}")
file(GLOB images "${prefix}/bin/*.exe" "${prefix}/bin/*.dll")
foreach(image IN LISTS images)
  run("${OBJDUMP}" -p "${image}")
  string(REGEX MATCHALL "DLL Name: [^\n]+" imports "${output}")
  list(TRANSFORM imports REPLACE "^DLL Name: " "")
  if(NOT imports)
    message(FATAL_ERROR "${image} has no imports")
  endif()
  list(REMOVE_ITEM imports ${installed} ${provided_by_the_system})
  if(imports)
    message(FATAL_ERROR "${image} needs ${imports}")
  endif()
endforeach()

set(harness ${EMULATOR} "${prefix}/bin/kestrel-harness.exe" --hardware-test -s 0)

# Without the HIP runtime the loader ends the program with STATUS_DLL_NOT_FOUND, 0xC0000135; Wine
# returns the last byte, 53.
run_expecting(53 ${harness})
file(COPY_FILE "${SIMULATOR}" "${prefix}/bin/${HIP_DLL}")
run(${harness})
if(NOT output MATCHES "CPU Architecture: x86_64")
  message(FATAL_ERROR "With a simulated HIP runtime the harness printed:\n${output}")
endif()
