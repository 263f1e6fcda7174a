# Compiles a host for the ABI of Visual C++, links it with the import library for Visual C++ and runs
# it.
#
#   cmake -DCLANG=... -DLINKER=... -DDLLTOOL=... -DSOURCE=... -DINCLUDE=... -DIMPORT_LIBRARY=...
#         -DFOLDER=... -DEMULATOR=... -DMACHINE=... -P check_visual_cpp.cmake
#
# FOLDER holds the DLL and the simulated HIP runtimes.

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../../run_command.cmake")

set(work "${CMAKE_CURRENT_BINARY_DIR}/visual_cpp")
file(WRITE "${work}/kernel32.def" "LIBRARY KERNEL32.dll\nEXPORTS\n  ExitProcess\n")
run("${DLLTOOL}" -m i386:x86-64 -d "${work}/kernel32.def" -l "${work}/kernel32.lib")
run("${CLANG}" --target=x86_64-pc-windows-msvc -std=c99 -pedantic -Weverything -Werror
    -Wno-language-extension-token -Wno-missing-prototypes -ffreestanding "-I${INCLUDE}" -c
    "${SOURCE}" -o "${work}/host.obj")
run("${LINKER}" /nodefaultlib /entry:start /subsystem:console "/out:${FOLDER}/visual_cpp.exe"
    "${work}/host.obj" "${IMPORT_LIBRARY}" "${work}/kernel32.lib")
set(ENV{KESTREL_SIM_MACHINE} "${MACHINE}")
run(${EMULATOR} "${FOLDER}/visual_cpp.exe")
