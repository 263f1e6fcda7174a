# Builds an outside project over the library and runs it.
#
#   cmake -DBUILD=... -DSOURCE=... -DCONSUMER=... -DWORK=... -DSIMULATOR=... -P check_consumer.cmake
#
# BUILD, SOURCE      this project's build and source folders
# CONSUMER, WORK     the outside project, and a folder to work in
# SUBDIRECTORY       builds this project along; otherwise BUILD is installed first
# SIMULATOR          the simulated HIP runtime to run over
# GENERATOR, BUILD_TYPE, FLAGS, TOOLCHAIN, EMULATOR: as in BUILD

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

file(REMOVE_RECURSE "${WORK}")
set(configure -S "${CONSUMER}" -B "${WORK}/build" -G "${GENERATOR}"
              "-DCMAKE_BUILD_TYPE=${BUILD_TYPE}" "-DCMAKE_CXX_FLAGS=${FLAGS}")
if(TOOLCHAIN)
  list(APPEND configure "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}")
endif()
if(SUBDIRECTORY)
  list(APPEND configure "-DKESTRELCORE_SOURCE_DIR=${SOURCE}")
else()
  run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${WORK}/prefix")
  # Found by its folder: a cross build does not look at prefixes of the host.
  file(GLOB_RECURSE package "${WORK}/prefix/kestrelcoreConfig.cmake")
  cmake_path(GET package PARENT_PATH package)
  list(APPEND configure "-Dkestrelcore_DIR=${package}")
endif()
run("${CMAKE_COMMAND}" ${configure})
run("${CMAKE_COMMAND}" --build "${WORK}/build")

file(GLOB_RECURSE host "${WORK}/build/host" "${WORK}/build/host.exe")
cmake_path(GET host PARENT_PATH host_folder)
if(EMULATOR)
  # Windows looks beside the program: there goes all that it loads.
  file(GLOB_RECURSE libraries "${WORK}/kestrelcore.dll")
  file(COPY ${libraries} "${SIMULATOR}" DESTINATION "${host_folder}")
else()
  cmake_path(GET SIMULATOR PARENT_PATH simulator_folder)
  set(ENV{LD_LIBRARY_PATH} "${simulator_folder}")
endif()
unset(ENV{KESTREL_SIM_MACHINE})
run(${EMULATOR} "${host}")
if(NOT output MATCHES "The library answers.")
  message(FATAL_ERROR "${output}")
endif()

if(NOT SUBDIRECTORY AND NOT EMULATOR)
  # The installed harness finds the library by itself.
  file(GLOB_RECURSE harness "${WORK}/prefix/kestrel-harness")
  run("${harness}" --hardware-test --split_ms=0)
  if(NOT output MATCHES "CPU Architecture: x86_64")
    message(FATAL_ERROR "${output}")
  endif()
endif()
