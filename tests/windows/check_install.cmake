# Installs what a Windows machine gets and follows its imports: every DLL is either there or the
# system's own, but for the HIP runtime, which comes with the graphics driver.
#
#   cmake -D BUILD=... -D WORK=... -D OBJDUMP=... -D HIP_DLL=... -P check_install.cmake

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
