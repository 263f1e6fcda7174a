# Installs the simulated HIP runtimes as the component `simulator`, with their machines: one folder for
# each generation of HIP, which no loader and no linker searches by itself.

include(CMakePackageConfigHelpers)

set(simulator_dir "${CMAKE_INSTALL_LIBDIR}/kestrelcore/simulator")
set(simulator_machines_dir "${CMAKE_INSTALL_DATADIR}/kestrelcore/machines")
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" "${PROJECT_SOURCE_DIR}/THIRD_PARTY_LICENSES"
        DESTINATION "${kestrelcore_docdir}-simulator" COMPONENT simulator)

set(simulator_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/kestrelcore")

set(simulator_generations 5 6 7)
set(simulator_files "")
foreach(generation IN LISTS simulator_generations)
  set(target kestrel_simulator_${generation})
  # PROGRAMS, not TARGETS: only the file that a loader opens is installed, no import library.
  install(PROGRAMS "$<TARGET_FILE:${target}>" DESTINATION "${simulator_dir}/${generation}"
          COMPONENT simulator)
  if(WIN32)
    get_target_property(name ${target} OUTPUT_NAME)
    list(APPEND simulator_files "${name}.dll")
  else()
    list(APPEND simulator_files "libamdhip64.so.${generation}")
  endif()
endforeach()
get_target_property(simulator_default kestrel_simulator KESTREL_SIMULATED_GENERATION)
install(
  DIRECTORY "${PROJECT_SOURCE_DIR}/simulator/machines/"
  DESTINATION "${simulator_machines_dir}"
  COMPONENT simulator
  FILES_MATCHING
  PATTERN "*.toml")

configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/kestrelcore-simulator.cmake.in"
  "${PROJECT_BINARY_DIR}/kestrelcore-simulator.cmake"
  INSTALL_DESTINATION "${simulator_package_dir}"
  PATH_VARS simulator_dir simulator_machines_dir
  NO_CHECK_REQUIRED_COMPONENTS_MACRO)
install(FILES "${PROJECT_BINARY_DIR}/kestrelcore-simulator.cmake"
        DESTINATION "${simulator_package_dir}" COMPONENT simulator)
