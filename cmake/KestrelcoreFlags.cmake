# What all targets of this project share: the language, the warnings, the include root.

set(CMAKE_CXX_EXTENSIONS OFF)

# The sanitizers apply to everything that is built here, GoogleTest included.
set(KESTRELCORE_SANITIZERS "" CACHE STRING
    "Sanitizers to build with, as -fsanitize takes them: \"address,undefined\" or \"thread\"")
if(KESTRELCORE_SANITIZERS)
  # The vptr check opens a pipe, so it fails in the test that leaves no file descriptor free.
  # GCC misreports maybe-uninitialized in the standard library when it instruments it.
  add_compile_options(-fsanitize=${KESTRELCORE_SANITIZERS} -fno-sanitize-recover=all
                      -fno-sanitize=vptr -fno-omit-frame-pointer -Wno-maybe-uninitialized)
  # The sanitizers do not see a vector read between its size and its capacity, or an empty optional.
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
  add_link_options(-fsanitize=${KESTRELCORE_SANITIZERS})
endif()

add_library(kestrelcore_common INTERFACE)
target_compile_features(kestrelcore_common INTERFACE cxx_std_17)
target_include_directories(
  kestrelcore_common INTERFACE "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
                               "$<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include/kestrelcore>")
if(MSVC)
  target_compile_options(kestrelcore_common INTERFACE /W4 /permissive- /utf-8)
  target_compile_definitions(kestrelcore_common INTERFACE NOMINMAX)
else()
  target_compile_options(kestrelcore_common INTERFACE -Wall -Wextra -Wpedantic -Wconversion
                                                      -Wshadow)
endif()

# What an attacker who finds a memory error in the host should not find useful.
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
if(NOT MSVC)
  target_compile_options(kestrelcore_common INTERFACE -fstack-protector-strong)
endif()
if(MINGW)
  # Address space layout randomization over all 64 bits, and no execution of data: defaults of other
  # linkers for Windows. The stack protector's library is linked in: its DLL would be one more file
  # to install.
  target_link_options(kestrelcore_common INTERFACE
                      "LINKER:--dynamicbase,--high-entropy-va,--nxcompat")
  target_link_libraries(kestrelcore_common INTERFACE -l:libssp.a)
elseif(NOT WIN32)
  # Symbols bound at load time need no writable table; and the first call of a function does not run
  # the loader, which takes some 10 KiB of the caller's stack.
  target_link_options(kestrelcore_common INTERFACE "LINKER:-z,relro,-z,now,-z,noexecstack")
  if(NOT KESTRELCORE_SANITIZERS) # they check the same calls themselves
    # Without optimization glibc warns that it cannot check. Some compilers define a level already.
    set(optimized "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")
    target_compile_options(
      kestrelcore_common INTERFACE "$<${optimized}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  endif()
endif()

# The processor that the library requires.
add_library(kestrelcore_avx2 INTERFACE)
if(MSVC)
  target_compile_options(kestrelcore_avx2 INTERFACE /arch:AVX2)
else()
  target_compile_options(kestrelcore_avx2 INTERFACE -mavx2)
endif()
if(MINGW)
  # GCC aligns the stack of 64-bit Windows to 16 bytes only, yet spills 32-byte registers to it with
  # aligned moves (GCC bug 54412): the assembler makes them unaligned.
  target_compile_options(kestrelcore_avx2 INTERFACE -Wa,-muse-unaligned-vector-move)
endif()

# Where an installed program finds the library: at a path relative to its own, which serves in the
# build tree too, since that has the same layout. With two different paths CMake would reserve room
# for the longer one by an empty element in the build tree's RUNPATH, which is the current directory.
function(kestrelcore_set_program_layout program)
  set_target_properties(${program} PROPERTIES RUNTIME_OUTPUT_DIRECTORY
                                              "${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_BINDIR}")
  if(NOT WIN32)
    file(RELATIVE_PATH lib_from_bin "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    set_target_properties(${program} PROPERTIES INSTALL_RPATH "$ORIGIN/${lib_from_bin}"
                                                BUILD_WITH_INSTALL_RPATH ON)
  endif()
endfunction()
