# Installs the simulated HIP runtime as the component `simulator`, with its machines. The folder is
# no loader's and no linker's: a program gets the runtime only when it is told where that is.

include(CMakePackageConfigHelpers)

set(simulator_dir "${CMAKE_INSTALL_LIBDIR}/kestrelcore/simulator")
set(simulator_machines_dir "${CMAKE_INSTALL_DATADIR}/kestrelcore/machines")
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" "${PROJECT_SOURCE_DIR}/THIRD_PARTY_LICENSES"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT simulator)

set(simulator_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/kestrelcore")

# As a file, since what is to be laid down is what a loader opens, and no import library.
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
