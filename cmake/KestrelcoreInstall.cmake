# The install rules of the library, its headers, the CMake package and the harness.

include(CMakePackageConfigHelpers)
include(KestrelcorePkgConfig)

# In a subproject, CMAKE_INSTALL_DOCDIR may be that of the parent project.
set(kestrelcore_docdir "${CMAKE_INSTALL_DATAROOTDIR}/doc/kestrelcore")
if(PROJECT_IS_TOP_LEVEL)
  set(kestrelcore_docdir "${CMAKE_INSTALL_DOCDIR}")
endif()
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
kestrelcore_standard_library_guard(standard_library_guard)
set(installed_guards "${standard_library_guard}${kestrelcore_macro_guard}")
generate_export_header(
  kestrelcore EXPORT_FILE_NAME "${PROJECT_BINARY_DIR}/installed/kestrelcore_export.h.in"
  CUSTOM_CONTENT_FROM_VARIABLE installed_guards)
# Evaluates the generator expressions of the guards.
set(installed_export_header "${PROJECT_BINARY_DIR}/installed/$<CONFIG>/kestrelcore_export.h")
file(GENERATE OUTPUT "${installed_export_header}"
     INPUT "${PROJECT_BINARY_DIR}/installed/kestrelcore_export.h.in")
install(FILES "${installed_export_header}"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/kestrelcore" COMPONENT development)
install(FILES LICENSE CHANGELOG.md DESTINATION "${kestrelcore_docdir}" COMPONENT runtime)
foreach(page quick-start figures memory-in-containers simulator deployment hip-runtimes c-and-python
             windows compatibility fleet)
  install(FILES "docs/${page}.md" DESTINATION "${kestrelcore_docdir}" COMPONENT development)
endforeach()
if(NOT WIN32 AND KESTRELCORE_HIP STREQUAL "linked")
  # The loader would not find a HIP outside the folders that it searches.
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
  # In a folder of its own: two packages must not install the same file.
  install(FILES LICENSE THIRD_PARTY_LICENSES DESTINATION "${kestrelcore_docdir}-harness"
          COMPONENT harness)
endif()

if(KESTRELCORE_BUILD_SIMULATOR)
  include(KestrelcoreSimulatorInstall)
endif()
if(MINGW)
  include(KestrelcoreWindowsInstall)
endif()
if(PROJECT_IS_TOP_LEVEL)
  include(KestrelcorePackages)
endif()
