# GoogleTest, and the functions that add tests.

include(GoogleTest)
include(HIPFunctions)

# Debian's sources of GoogleTest come first: built with this build's compiler and flags, they suit
# cross builds and sanitizers. Elsewhere an installed package is used, or a download.
include(FetchContent)
set(debian_googletest /usr/src/googletest)
if(EXISTS "${debian_googletest}" AND NOT FETCHCONTENT_SOURCE_DIR_GOOGLETEST)
  set(FETCHCONTENT_SOURCE_DIR_GOOGLETEST "${debian_googletest}")
endif()
FetchContent_Declare(
  googletest
  GIT_REPOSITORY https://github.com/google/googletest.git
  GIT_TAG f8d7d77c06936315286eb55f8de22cd23c188571 # 1.14.0
  SYSTEM
  FIND_PACKAGE_ARGS NAMES GTest)
set(CMAKE_POLICY_DEFAULT_CMP0077 NEW) # so that GoogleTest's options take the values set here
set(BUILD_GMOCK OFF)
set(INSTALL_GTEST OFF)
FetchContent_MakeAvailable(googletest)

# The tests' own code compiles faster with little optimization and line tables alone. The library under
# test keeps its own flags.
set(kestrelcore_test_options "")
if(KESTRELCORE_SANITIZERS OR MINGW)
  set(kestrelcore_test_options -O0 -g1)
elseif(NOT MSVC)
  set(kestrelcore_test_options -O1 -g1)
endif()
foreach(target gtest gtest_main)
  if(TARGET ${target}) # not where an installed package was found
    target_compile_options(${target} PRIVATE ${kestrelcore_test_options})
  endif()
endforeach()

# What test sources compile with. They link the library's objects, so nothing is imported.
add_library(kestrelcore_test_common INTERFACE)
target_compile_definitions(kestrelcore_test_common INTERFACE KESTRELCORE_STATIC_DEFINE)
target_link_libraries(kestrelcore_test_common INTERFACE kestrelcore_common HIP::headers
                                                      GTest::gtest)
target_compile_options(kestrelcore_test_common INTERFACE ${kestrelcore_test_options})

# GoogleTest's header takes most of the time that a test source takes to compile, so it is compiled once.
# An executable's object files suit executables alone, and so does a precompiled header.
if(NOT MSVC)
  add_executable(kestrelcore_test_headers EXCLUDE_FROM_ALL
                                          "${PROJECT_SOURCE_DIR}/tests/test_headers.cpp")
  target_link_libraries(kestrelcore_test_headers PRIVATE kestrelcore_test_common)
  target_precompile_headers(kestrelcore_test_headers PRIVATE <filesystem> <fstream> <gtest/gtest.h>)
endif()

# The suites that start threads. With the thread sanitizer no others are built, since a single thread
# has no data races.
set(kestrelcore_threaded_suites binding_test c_threads_test hip_runtime_test process_test
                                threads_test)

# Adds a test program, with one ctest test for each test case. PREFIX goes before the names of the
# cases, for cases that several programs contain.
function(kestrelcore_add_test name)
  cmake_parse_arguments(arg "" "PREFIX" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE kestrelcore_test_common GTest::gtest_main ${arg_LIBRARIES})
  if(TARGET kestrelcore_test_headers)
    target_precompile_headers(${name} REUSE_FROM kestrelcore_test_headers)
  endif()
  if(KESTRELCORE_SANITIZERS STREQUAL "thread" AND NOT name IN_LIST kestrelcore_threaded_suites)
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
    return()
  endif()
  set(prefix "")
  if(arg_PREFIX)
    set(prefix TEST_PREFIX "${arg_PREFIX}")  # newer CMakes warn of an empty one
  endif()
  gtest_discover_tests(${name} ${prefix} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120
                       PROPERTIES TIMEOUT 120)
endfunction()

# Adds a suite over the portable logic, the fake operating system and the simulated GPUs. It has the
# name of its source file. Further sources may follow.
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

# The shared library with the other HIP binding, linked from the same objects, to run the same tests
# over both.
set(kestrelcore_other_binding lazy)
if(KESTRELCORE_HIP STREQUAL "lazy")
  set(kestrelcore_other_binding linked)
endif()
set(kestrelcore_other_folder "${PROJECT_BINARY_DIR}/tests/${kestrelcore_other_binding}")
add_library(kestrelcore_other SHARED)
kestrelcore_assemble(kestrelcore_other ${kestrelcore_other_binding})
set_target_properties(
  kestrelcore_other PROPERTIES LIBRARY_OUTPUT_DIRECTORY "${kestrelcore_other_folder}"
                               RUNTIME_OUTPUT_DIRECTORY "${kestrelcore_other_folder}"
                               ARCHIVE_OUTPUT_DIRECTORY "${kestrelcore_other_folder}")

# How programs find a HIP runtime. On Linux the tests put the folder of one into LD_LIBRARY_PATH.
# Windows searches the program's own folder first, so there the tests run copies of the programs in
# a folder with the simulated runtime, where no other test finds it.
if(WIN32)
  set(kestrelcore_run_folder "${PROJECT_BINARY_DIR}/tests/run")
  set(kestrelcore_other_run_folder "${PROJECT_BINARY_DIR}/tests/run-${kestrelcore_other_binding}")
  set(kestrelcore_simulated_runtime "")
  set(kestrelcore_harness "${kestrelcore_run_folder}/$<TARGET_FILE_NAME:kestrel-harness>")
  add_custom_target(
    kestrelcore_fill_run_folder ALL
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${kestrelcore_run_folder}"
            "${kestrelcore_other_run_folder}"
    COMMAND
      "${CMAKE_COMMAND}" -E copy_if_different "$<TARGET_FILE:kestrel-harness>"
      "$<TARGET_FILE:kestrelcore>" "$<TARGET_FILE:every_call>" "$<TARGET_FILE:kestrel_simulator>"
      "${kestrelcore_run_folder}"
    COMMAND
      "${CMAKE_COMMAND}" -E copy_if_different "$<TARGET_FILE:kestrel-harness>"
      "$<TARGET_FILE:kestrelcore_other>" "$<TARGET_FILE:kestrel_simulator>"
      "${kestrelcore_other_run_folder}"
    DEPENDS kestrel-harness kestrelcore kestrelcore_other every_call kestrel_simulator
    VERBATIM)

  # A suite over the shared library or the harness, run in that folder with a simulated card.
  function(kestrelcore_add_run_folder_test source)
    cmake_path(GET source STEM name)
    add_executable(${name} ${source})
    target_link_libraries(${name} PRIVATE kestrelcore_common GTest::gtest_main ${ARGN})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${kestrelcore_run_folder}")
    add_dependencies(${name} kestrelcore_fill_run_folder)
    gtest_discover_tests(
      ${name} WORKING_DIRECTORY "${kestrelcore_run_folder}" DISCOVERY_MODE PRE_TEST
      DISCOVERY_TIMEOUT 120
      PROPERTIES TIMEOUT 300 ENVIRONMENT
                 "KESTREL_SIM_MACHINE=${PROJECT_SOURCE_DIR}/simulator/machines/consumer-card.toml")
  endfunction()
else()
  set(kestrelcore_simulated_runtime "$<TARGET_FILE_DIR:kestrel_simulator>")
  set(kestrelcore_harness "$<TARGET_FILE:kestrel-harness>")
  # Folders with one simulated generation each. The lazy binding would prefer a newer runtime that the
  # machine has; files that are no libraries stand in its place.
  foreach(generation 5 6 7)
    set(folder "${PROJECT_BINARY_DIR}/tests/only-hip${generation}")
    set(kestrelcore_hip${generation}_runtime "${folder}")
    file(MAKE_DIRECTORY "${folder}")
    foreach(newer 6 7)
      if(newer GREATER generation)
        file(WRITE "${folder}/libamdhip64.so.${newer}" "no library\n")
      endif()
    endforeach()
    get_target_property(runtime kestrel_simulator_${generation} LIBRARY_OUTPUT_DIRECTORY)
    file(CREATE_LINK "${runtime}/libamdhip64.so.${generation}"
         "${folder}/libamdhip64.so.${generation}" SYMBOLIC)
  endforeach()
  cmake_path(GET HIP_LIBRARY PARENT_PATH kestrelcore_real_runtime)
  kestrelcore_hip_version(kestrelcore_real_version "${HIP_INCLUDE_DIR}")
endif()

# Adds a test that compares all output of a program with the file EXPECTED. RUNTIME is the folder of
# the HIP runtime and HIP_VERSION its version, by default those of the simulated runtime; MACHINE is the
# machine that it simulates; MASK is a script that masks figures of the real machine. The harness is
# run over both bindings.
function(kestrelcore_add_output_test name)
  cmake_parse_arguments(arg "" "PROGRAM;MACHINE;EXPECTED;RUNTIME;HIP_VERSION;MASK" "ARGUMENTS" ${ARGN})
  if(NOT arg_RUNTIME)
    set(arg_RUNTIME "${kestrelcore_simulated_runtime}")
  endif()
  if(NOT arg_HIP_VERSION)
    get_target_property(arg_HIP_VERSION kestrel_simulator KESTREL_SIMULATED_GENERATION)
  endif()
  set(statuses "")
  if(arg_HIP_VERSION VERSION_GREATER_EQUAL 5.3)
    set(statuses "${PROJECT_SOURCE_DIR}/simulator/statuses.inc")
  endif()
  set(program "$<TARGET_FILE:${arg_PROGRAM}>")
  if(WIN32)
    set(program "${kestrelcore_run_folder}/$<TARGET_FILE_NAME:${arg_PROGRAM}>")
  endif()
  kestrelcore_add_one_output_test(${name} "${program}" "${arg_RUNTIME}")
  if(arg_PROGRAM STREQUAL "kestrel-harness")
    if(WIN32)
      set(program "${kestrelcore_other_run_folder}/$<TARGET_FILE_NAME:${arg_PROGRAM}>")
    else()
      string(PREPEND arg_RUNTIME "${kestrelcore_other_folder}:")
    endif()
    kestrelcore_add_one_output_test(${name}.${kestrelcore_other_binding} "${program}"
                                    "${arg_RUNTIME}")
  endif()
endfunction()

# Also reads the parsed arguments (arg_...) of the function that calls it.
function(kestrelcore_add_one_output_test name program runtime)
  set(run ${CMAKE_CROSSCOMPILING_EMULATOR} "${program}" ${arg_ARGUMENTS})
  add_test(NAME ${name}
           COMMAND "${CMAKE_COMMAND}" "-DRUN=${run}" "-DRUNTIME=${runtime}"
                   "-DMACHINE=${arg_MACHINE}" "-DEXPECTED=${arg_EXPECTED}"
                   "-DACTUAL=${CMAKE_CURRENT_BINARY_DIR}/${name}.actual" "-DSTATUSES=${statuses}"
                   "-DMASK=${arg_MASK}" -P "${PROJECT_SOURCE_DIR}/tests/check_output.cmake")
  set_tests_properties(${name} PROPERTIES TIMEOUT 120)
endfunction()
