# Builds an outside project over the library and runs it.
#
#   cmake -DBUILD=... -DSOURCE=... -DCONSUMER=... -DWORK=... -DSIMULATOR=... -P check_consumer.cmake
#
# BUILD, SOURCE      this project's build and source folders
# CONSUMER, WORK     the outside project, and a folder to work in
# SUBDIRECTORY       adds the sources to the outside project, with OPTIONS; then installs the outside
#                    project, and builds another one over what that installed. Otherwise BUILD is
#                    installed first.
# SIMULATOR          the simulated HIP runtime to run over
# GENERATOR, BUILD_TYPE, FLAGS, TOOLCHAIN, EMULATOR: as in BUILD

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

file(REMOVE_RECURSE "${WORK}")
set(prefix "${WORK}/prefix")
set(configure "${CMAKE_COMMAND}" -S "${CONSUMER}" -G "${GENERATOR}"
              "-DCMAKE_BUILD_TYPE=${BUILD_TYPE}" "-DCMAKE_CXX_FLAGS=${FLAGS}")
if(TOOLCHAIN)
  list(APPEND configure "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}")
endif()

# Sets `result` to the file `name` below `folder`.
function(find_below folder name result)
  file(GLOB_RECURSE found "${folder}/${name}")
  if(NOT found)
    message(FATAL_ERROR "There is no ${name} below ${folder}")
  endif()
  list(GET found 0 found)
  set(${result} "${found}" PARENT_SCOPE)
endfunction()

# Runs the program `host` below `folder`.
function(run_host folder)
  file(GLOB_RECURSE host "${folder}/host" "${folder}/host.exe")
  cmake_path(GET host PARENT_PATH host_folder)
  if(EMULATOR)
    # Windows looks next to the program for all that it loads.
    file(GLOB_RECURSE libraries "${WORK}/kestrelcore.dll")
    file(COPY ${libraries} "${SIMULATOR}" DESTINATION "${host_folder}")
  endif()
  run(${EMULATOR} "${host}")
  if(NOT output MATCHES "The library answers.")
    message(FATAL_ERROR "${output}")
  endif()
endfunction()

# Builds the outside project over what is installed in `prefix`, and runs it.
function(check_installed)
  find_below("${prefix}" kestrelcoreConfig.cmake package)
  cmake_path(GET package PARENT_PATH package)
  # Found by its folder: a cross build does not look at prefixes of the host.
  run(${configure} -B "${WORK}/over_installed" "-Dkestrelcore_DIR=${package}" ${ARGN})
  run("${CMAKE_COMMAND}" --build "${WORK}/over_installed")
  run_host("${WORK}/over_installed")
endfunction()

# Builds the host over the installed static library with a plain compiler. Everything that the archive needs is
# in its description, so --static changes nothing.
function(check_pkg_config)
  find_below("${prefix}" kestrelcore.pc description)
  cmake_path(GET description PARENT_PATH folder)
  set(ENV{PKG_CONFIG_PATH} "${folder}")
  foreach(static "" --static)
    run(pkg-config --cflags --libs ${static} kestrelcore)
    separate_arguments(flags UNIX_COMMAND "${output}")
    run(c++ -std=c++17 "${CONSUMER}/main.cpp" "${CONSUMER}/meters.cpp" -o "${WORK}/plain_host"
        ${flags})
    run("${WORK}/plain_host")
    if(NOT output MATCHES "The library answers.")
      message(FATAL_ERROR "${output}")
    endif()
  endforeach()
endfunction()

function(check_private_headers)
  foreach(header tests/fakes/platform_fake.h platform/platform.h)
    string(MAKE_C_IDENTIFIER "includes_${header}" target)
    execute_process(COMMAND "${CMAKE_COMMAND}" --build "${WORK}/build" --target ${target}
                    OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE status)
    if(status EQUAL 0 OR NOT output MATCHES "${header}: No such file")
      message(FATAL_ERROR "An outside project can include ${header}:\n${output}")
    endif()
  endforeach()
endfunction()

unset(ENV{KESTREL_SIM_MACHINE})
if(NOT EMULATOR)
  cmake_path(GET SIMULATOR PARENT_PATH simulator_folder)
  set(ENV{LD_LIBRARY_PATH} "${simulator_folder}")
endif()
if(SUBDIRECTORY)
  run(${configure} -B "${WORK}/build" "-DKESTRELCORE_SOURCE_DIR=${SOURCE}" -DKESTRELCORE_INSTALL=ON
      ${OPTIONS})
  run("${CMAKE_COMMAND}" --build "${WORK}/build")
  run_host("${WORK}/build")
  check_private_headers()

  run("${CMAKE_COMMAND}" --install "${WORK}/build" --prefix "${prefix}")
  run_host("${prefix}")
  if(NOT EXISTS "${prefix}/share/doc/kestrelcore/LICENSE")
    message(FATAL_ERROR "The licence is not in kestrelcore's folder of documents.")
  endif()
  find_below("${prefix}" consumerTargets.cmake targets)
  check_installed("-DCONSUMER_TARGETS=${targets}")
  if(NOT EMULATOR AND OPTIONS MATCHES "CONSUMER_STATIC=ON")
    check_pkg_config()
  endif()
else()
  run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${prefix}")
  check_installed()
  if(NOT EMULATOR)
    # The installed harness finds the library by itself.
    find_below("${prefix}" kestrel-harness harness)
    run("${harness}" --hardware-test --split_ms=0)
    if(NOT output MATCHES "CPU Architecture: x86_64")
      message(FATAL_ERROR "${output}")
    endif()
  endif()
endif()
