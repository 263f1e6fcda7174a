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
if(MINGW)
  # Address space layout randomization over all 64 bits, and no execution of data: defaults of other
  # linkers for Windows.
  target_link_options(kestrelcore_common INTERFACE
                      "LINKER:--dynamicbase,--high-entropy-va,--nxcompat")
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
