# Installs the C interface: the components `c`, the library that programs run with, and
# `c-development`, what they are built with.

install(
  TARGETS kestrelcore_c
  EXPORT kestrelcore-c
  RUNTIME COMPONENT c
  LIBRARY COMPONENT c NAMELINK_COMPONENT c-development
  ARCHIVE COMPONENT c-development)
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${kestrelcore_docdir}-c" COMPONENT c)
install(FILES "${PROJECT_SOURCE_DIR}/c/kestrelcore.h"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/kestrelcore" COMPONENT c-development)
if(WIN32)
  install(FILES "${PROJECT_SOURCE_DIR}/c/kestrelcore-c.def" DESTINATION "${CMAKE_INSTALL_LIBDIR}"
          COMPONENT c-development)
  if(kestrelcore_c_import_library)
    install(FILES "${kestrelcore_c_import_library}" DESTINATION "${CMAKE_INSTALL_LIBDIR}"
            COMPONENT c-development)
  endif()
endif()

# find_package(kestrelcore COMPONENTS c) reads this file and so defines kestrelcore::c.
install(EXPORT kestrelcore-c NAMESPACE kestrelcore:: FILE kestrelcore-c.cmake
        DESTINATION "${kestrelcore_package_dir}" COMPONENT c-development)
install(FILES "${PROJECT_BINARY_DIR}/kestrelcoreConfig.cmake"
              "${PROJECT_BINARY_DIR}/kestrelcoreConfigVersion.cmake"
        DESTINATION "${kestrelcore_package_dir}" COMPONENT c-development)

kestrelcore_install_pkg_config("${PROJECT_SOURCE_DIR}/c/kestrelcore-c.pc.in" c-development)
