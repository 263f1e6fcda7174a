# What `cpack` makes: on Linux one Debian package for each group of components, on Windows one zip file.
# script/package builds what goes into them and runs it.

set(CPACK_PACKAGE_NAME kestrelcore)
set(CPACK_PACKAGE_VENDOR "kestrelcore")
set(CPACK_PACKAGE_CONTACT "kestrelcore developers <kestrelcore@localhost>" CACHE STRING
    "Who maintains the packages: a name and an e-mail address")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ
                                                GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/packaging/finish_tree.cmake")
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_MONOLITHIC_INSTALL ON)
  set(CPACK_PACKAGE_FILE_NAME "kestrelcore-${PROJECT_VERSION}-windows-x86_64")
  include(CPack)
  return()
endif()

set(CPACK_GENERATOR DEB)
# CPack puts any other summary in front of the summaries below.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${CMAKE_PROJECT_NAME} built using CMake")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The harness links the library of the same build, which no installed package describes.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR}")
set(kestrelcore_deb_version "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")
set(kestrelcore_deb_library
    "libkestrelcore${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")

# kestrelcore_deb(<group> PACKAGE <name> SECTION <section> SUMMARY <text> DESCRIPTION <text>
#                 COMPONENTS <component>... [DEPENDS <package>...] [SUGGESTS <package>...])
# Files for the package itself, such as `symbols`, are in packaging/debian/<group>.
set(CPACK_COMPONENTS_ALL "")
macro(kestrelcore_deb group)
  cmake_parse_arguments(deb "" "PACKAGE;SECTION;SUMMARY;DESCRIPTION"
                        "COMPONENTS;DEPENDS;SUGGESTS" ${ARGN})
  string(TOUPPER "${group}" key)
  list(APPEND CPACK_COMPONENTS_ALL ${deb_COMPONENTS})
  foreach(component IN LISTS deb_COMPONENTS)
    string(TOUPPER "${component}" component)
    set(CPACK_COMPONENT_${component}_GROUP ${group})
  endforeach()
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME "${deb_PACKAGE}")
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION "${deb_SECTION}")
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${deb_SUMMARY}\n${deb_DESCRIPTION}")
  list(JOIN deb_DEPENDS ", " CPACK_DEBIAN_${key}_PACKAGE_DEPENDS)
  list(JOIN deb_SUGGESTS ", " CPACK_DEBIAN_${key}_PACKAGE_SUGGESTS)
  file(GLOB CPACK_DEBIAN_${key}_PACKAGE_CONTROL_EXTRA
       "${PROJECT_SOURCE_DIR}/packaging/debian/${group}/*")
endmacro()

# Debian's packages of the HIP runtime: 5 in Debian 12 and 13, 6 in unstable, none yet of HIP 7.
set(hip_packages "libamdhip64-6 | libamdhip64-5")
set(hip "")
if(KESTRELCORE_HIP STREQUAL "lazy")
  set(hip "${hip_packages}")
endif()
kestrelcore_deb(
  library
  PACKAGE ${kestrelcore_deb_library}
  SECTION libs
  SUMMARY "survey of processor, AMD GPUs and free memory (C++ library)"
  DESCRIPTION
    "kestrelcore reports to a program what its machine offers and how much of\nit is free: processor, AMD GPUs, RAM, VRAM, the share of one process, and\nwhether an allocation would fail. It respects the memory limits of\ncontainers. GPUs are found through the HIP runtime, if one is installed."
  COMPONENTS runtime
  SUGGESTS ${hip})
kestrelcore_deb(
  dev
  PACKAGE libkestrelcore-dev
  SECTION libdevel
  SUMMARY "survey of processor, AMD GPUs and free memory (development files)"
  DESCRIPTION
    "kestrelcore reports to a program what its machine offers and how much of\nit is free.\n\nThis package holds the headers, the CMake package and the pkg-config files\nof the C++ library and of the C library."
  COMPONENTS development c-development
  DEPENDS "${kestrelcore_deb_library} (= ${kestrelcore_deb_version})"
          "libkestrelcore-c0 (= ${kestrelcore_deb_version})")
if(KESTRELCORE_BUILD_C)
  kestrelcore_deb(
    c_library
    PACKAGE libkestrelcore-c0
    SECTION libs
    SUMMARY "survey of processor, AMD GPUs and free memory (C library)"
    DESCRIPTION
      "kestrelcore reports to a program what its machine offers and how much of\nit is free: processor, AMD GPUs, RAM, VRAM, the share of one process, and\nwhether an allocation would fail.\n\nThis package holds the library for C and for languages that can call C.\nIt finds GPUs through the HIP runtime, if one is installed."
    COMPONENTS c
    SUGGESTS "${hip_packages}")
  kestrelcore_deb(
    python
    PACKAGE python3-kestrelcore
    SECTION python
    SUMMARY "survey of processor, AMD GPUs and free memory (Python package)"
    DESCRIPTION
      "kestrelcore reports to a program what its machine offers and how much of\nit is free: processor, AMD GPUs, RAM, VRAM, the share of one process, and\nwhether an allocation would fail.\n\nThis package holds the module for Python 3."
    COMPONENTS python
    DEPENDS "python3 (>= 3.9)" "libkestrelcore-c0 (>= ${kestrelcore_deb_version})")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
  install(
    DIRECTORY "${PROJECT_SOURCE_DIR}/python/kestrelcore"
    DESTINATION lib/python3/dist-packages
    COMPONENT python EXCLUDE_FROM_ALL
    PATTERN __pycache__ EXCLUDE)
endif()
if(KESTRELCORE_BUILD_COMMAND AND KESTRELCORE_BUILD_HARNESS)
  kestrelcore_deb(
    tools
    PACKAGE kestrel-tools
    SECTION utils
    SUMMARY "survey of processor, AMD GPUs and free memory (programs)"
    DESCRIPTION
      "kestrel reports what the machine offers and how much of it is free, for\npeople, scripts and monitoring systems. kestrel-harness is the diagnostic\nprogram of the library kestrelcore."
    COMPONENTS command harness
    DEPENDS "${kestrelcore_deb_library} (= ${kestrelcore_deb_version})"
    SUGGESTS "${hip_packages}")
endif()
if(KESTRELCORE_BUILD_SIMULATOR)
  kestrelcore_deb(
    simulator
    PACKAGE kestrelcore-simulator
    SECTION devel
    SUMMARY "simulated AMD HIP runtimes for tests without a GPU"
    DESCRIPTION
      "Libraries that replace the HIP runtimes of the generations 5 to 7 and read\ntheir GPUs from a file, so that a program can be tested with one, two or\neight GPUs, an APU or a failing card on a machine that has none. The\nprogram is not changed and not rebuilt."
    COMPONENTS simulator)
endif()
include(CPack)
