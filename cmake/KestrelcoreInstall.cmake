# What `cmake --install` lays down: the library, its headers, the CMake package, the harness.

include(CMakePackageConfigHelpers)
include(KestrelcorePkgConfig)

set(kestrelcore_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/kestrelcore")

install(
  TARGETS kestrelcore
  EXPORT kestrelcoreTargets
  RUNTIME COMPONENT runtime
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development)
foreach(header IN LISTS kestrelcore_public_headers)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES "${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/kestrelcore/${folder}"
          COMPONENT development)
endforeach()
install(FILES "${kestrelcore_include_dir}/kestrelcore/kestrelcore_export.h"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/kestrelcore" COMPONENT development)
install(FILES LICENSE CHANGELOG.md DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT runtime)
if(NOT WIN32 AND KESTRELCORE_HIP STREQUAL "linked")
  # A HIP outside the folders that the loader searches stays where it was found.
  cmake_path(GET HIP_LIBRARY PARENT_PATH hip_folder)
  if(NOT hip_folder IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
    set_target_properties(kestrelcore PROPERTIES INSTALL_RPATH "${hip_folder}"
                                                 BUILD_WITH_INSTALL_RPATH ON)
  endif()
endif()

install(EXPORT kestrelcoreTargets NAMESPACE kestrelcore:: DESTINATION "${kestrelcore_package_dir}"
        COMPONENT development)
set(kestrelcore_needs_hip OFF)
if(kestrelcore_type STREQUAL "STATIC" AND KESTRELCORE_HIP STREQUAL "linked")
  # Programs that link the archive link HIP, so the package finds it as this build did.
  set(kestrelcore_needs_hip ON)
  install(FILES cmake/FindHIP.cmake cmake/HIPFunctions.cmake cmake/HIPImportLibrary.cmake
                cmake/HostHeaders.cmake DESTINATION "${kestrelcore_package_dir}"
          COMPONENT development)
endif()
configure_package_config_file(
  cmake/kestrelcoreConfig.cmake.in "${PROJECT_BINARY_DIR}/kestrelcoreConfig.cmake"
  INSTALL_DESTINATION "${kestrelcore_package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/kestrelcoreConfigVersion.cmake"
                                 COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/kestrelcoreConfig.cmake"
              "${PROJECT_BINARY_DIR}/kestrelcoreConfigVersion.cmake"
        DESTINATION "${kestrelcore_package_dir}" COMPONENT development)

kestrelcore_set_pkg_config_flags()
kestrelcore_install_pkg_config("${PROJECT_SOURCE_DIR}/cmake/kestrelcore.pc.in" development)

if(KESTRELCORE_BUILD_C)
  include(KestrelcoreCInstall)
endif()
if(KESTRELCORE_BUILD_COMMAND)
  include(KestrelcoreCommandInstall)
endif()
if(KESTRELCORE_BUILD_HARNESS)
  install(TARGETS kestrel-harness RUNTIME COMPONENT harness)
  install(FILES LICENSE THIRD_PARTY_LICENSES DESTINATION "${CMAKE_INSTALL_DOCDIR}"
          COMPONENT harness)
endif()

if(KESTRELCORE_BUILD_SIMULATOR)
  include(KestrelcoreSimulatorInstall)
endif()
if(MINGW)
  include(KestrelcoreWindowsInstall)
endif()
