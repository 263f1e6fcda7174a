# Installs the C++ runtime of the compiler and its licences next to the DLL. Strings and containers
# cross the library's boundary, so the library and its host must use the same runtime.

option(KESTRELCORE_INSTALL_RUNTIME "Install the compiler's runtime DLLs next to kestrelcore.dll" ON)
if(NOT KESTRELCORE_INSTALL_RUNTIME)
  return()
endif()

# "<installed name>=<file on Debian>". GCC's runtime is under the GPL 3 with an exception for programs
# that link it; winpthreads is part of mingw-w64.
set(runtime_licences
    "gcc-runtime.txt=/usr/share/doc/gcc-mingw-w64-base/copyright"
    "gpl-3.txt=/usr/share/common-licenses/GPL-3"
    "mingw-w64.txt=/usr/share/doc/mingw-w64-x86-64-dev/copyright")

function(kestrelcore_install_runtime_file file destination name)
  if(NOT IS_ABSOLUTE "${file}" OR NOT EXISTS "${file}")
    message(FATAL_ERROR "${name} of the compiler's runtime is not at '${file}'. Set "
                        "KESTRELCORE_INSTALL_RUNTIME=OFF and put the runtime's DLLs and licences "
                        "next to kestrelcore.dll yourself.")
  endif()
  install(FILES "${file}" DESTINATION "${destination}" RENAME "${name}" COMPONENT runtime)
endfunction()

foreach(dll libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
  execute_process(COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${dll}"
                  OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  kestrelcore_install_runtime_file("${file}" "${CMAKE_INSTALL_BINDIR}" "${dll}")
endforeach()
foreach(licence IN LISTS runtime_licences)
  string(REGEX MATCH "^(.*)=(.*)$" licence "${licence}")
  kestrelcore_install_runtime_file("${CMAKE_MATCH_2}" "${CMAKE_INSTALL_BINDIR}/licenses"
                                   "${CMAKE_MATCH_1}")
  if(KESTRELCORE_BUILD_C)
    # kestrelcore-c.dll holds parts of that runtime.
    install(FILES "${CMAKE_MATCH_2}" DESTINATION "${CMAKE_INSTALL_BINDIR}/licenses"
            RENAME "${CMAKE_MATCH_1}" COMPONENT c)
  endif()
  if(KESTRELCORE_BUILD_COMMAND)
    # So does kestrel.exe.
    install(FILES "${CMAKE_MATCH_2}" DESTINATION "${CMAKE_INSTALL_BINDIR}/licenses"
            RENAME "${CMAKE_MATCH_1}" COMPONENT command)
  endif()
endforeach()
