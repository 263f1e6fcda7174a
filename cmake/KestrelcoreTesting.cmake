# GoogleTest, and the functions that add tests.

include(GoogleTest)

# Built from source, with this build's compiler and flags: the sanitizers and the cross compiler
# need that.
set(KESTRELCORE_GOOGLETEST_DIR "/usr/src/googletest" CACHE PATH "The sources of GoogleTest")
if(NOT EXISTS "${KESTRELCORE_GOOGLETEST_DIR}/CMakeLists.txt")
  message(FATAL_ERROR "The tests need the sources of GoogleTest. On Debian and Ubuntu install the "
                      "package googletest, or set KESTRELCORE_GOOGLETEST_DIR.")
endif()
set(INSTALL_GTEST OFF)
add_subdirectory("${KESTRELCORE_GOOGLETEST_DIR}" "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL
                 SYSTEM)

# What test sources compile with. They link the library's objects, so nothing is imported.
add_library(kestrelcore_test_common INTERFACE)
target_compile_definitions(kestrelcore_test_common INTERFACE KESTRELCORE_STATIC_DEFINE)
target_link_libraries(kestrelcore_test_common INTERFACE kestrelcore_common HIP::headers gtest)

# One program, one ctest test a test case; PREFIX tells cases apart that several programs share.
function(kestrelcore_add_test name)
  cmake_parse_arguments(arg "" "PREFIX" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE kestrelcore_test_common gtest_main ${arg_LIBRARIES})
  gtest_discover_tests(
    ${name} TEST_PREFIX "${arg_PREFIX}" DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120
    PROPERTIES TIMEOUT 120)
endfunction()

# A suite over the portable logic, the fake operating system and the simulated GPUs; named after
# its source file. Further sources may follow.
function(kestrelcore_add_unit_test source)
  cmake_path(GET source STEM name)
  kestrelcore_add_test(${name} SOURCES ${source} ${ARGN}
                       LIBRARIES kestrelcore_logic kestrelcore_fakes kestrel_simulator_core)
endfunction()

# A suite over the native layer of this system and, where it calls them, the meters above it.
function(kestrelcore_add_native_test source)
  cmake_path(GET source STEM name)
  kestrelcore_add_test(${name} SOURCES ${source} ${ARGN}
                       LIBRARIES kestrelcore_logic kestrelcore_platform kestrel_simulator_core
                                 kestrelcore_native_test_support)
endfunction()
