# Installs the simulated HIP runtime as the component `simulator`, with its machines, into a folder
# that no loader and no linker searches by itself.

include(CMakePackageConfigHelpers)

set(simulator_dir "${CMAKE_INSTALL_LIBDIR}/kestrelcore/simulator")
set(simulator_machines_dir "${CMAKE_INSTALL_DATADIR}/kestrelcore/machines")
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" "${PROJECT_SOURCE_DIR}/THIRD_PARTY_LICENSES"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT simulator)

set(simulator_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/kestrelcore")

# PROGRAMS, not TARGETS: only the file that a loader opens is installed, no import library.
install(PROGRAMS "$<TARGET_FILE:kestrel_simulator>" DESTINATION "${simulator_dir}"
        COMPONENT simulator)
install(
  DIRECTORY "${PROJECT_SOURCE_DIR}/simulator/machines/"
  DESTINATION "${simulator_machines_dir}"
  COMPONENT simulator
  FILES_MATCHING
  PATTERN "*.toml")

if(WIN32)
  get_target_property(simulator_name kestrel_simulator OUTPUT_NAME)
  set(simulator_file "${simulator_name}.dll")
else()
  get_target_property(simulator_version kestrel_simulator SOVERSION)
  set(simulator_file "libamdhip64.so.${simulator_version}")
endif()
configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/kestrelcore-simulator.cmake.in"
  "${PROJECT_BINARY_DIR}/kestrelcore-simulator.cmake"
  INSTALL_DESTINATION "${simulator_package_dir}"
  PATH_VARS simulator_dir simulator_machines_dir
  NO_CHECK_REQUIRED_COMPONENTS_MACRO)
install(FILES "${PROJECT_BINARY_DIR}/kestrelcore-simulator.cmake"
        DESTINATION "${simulator_package_dir}" COMPONENT simulator)
