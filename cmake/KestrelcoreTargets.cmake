# What all targets of this project share: the language, the warnings, the include root.

add_library(kestrelcore_common INTERFACE)
target_compile_features(kestrelcore_common INTERFACE cxx_std_17)
target_include_directories(
  kestrelcore_common INTERFACE "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
                               "$<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>")
if(MSVC)
  target_compile_options(kestrelcore_common INTERFACE /W4 /permissive- /utf-8)
  target_compile_definitions(kestrelcore_common INTERFACE NOMINMAX)
else()
  target_compile_options(kestrelcore_common INTERFACE -Wall -Wextra -Wpedantic -Wconversion
                                                      -Wshadow)
endif()
if(MINGW)
  # What other linkers for Windows do unasked: random addresses, out of the whole 64-bit space, and
  # no execution of data.
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
  # GCC keeps the stack of 64-bit Windows at 16 bytes only, yet spills 32-byte registers to it with
  # aligned moves (GCC bug 54412): the assembler makes them unaligned.
  target_compile_options(kestrelcore_avx2 INTERFACE -Wa,-muse-unaligned-vector-move)
endif()
