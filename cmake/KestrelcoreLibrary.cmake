# The library: portable logic and the native layer, each an object library, both in one shared
# library.

include(GenerateExportHeader)

set(kestrelcore_public_headers
    system/cpu_info.h
    system/cpu_survey.h
    system/gpu_info.h
    system/gpu_survey.h
    system/hardware_survey.h
    system/result.h
    utils/cpu_usage.h
    utils/memory_observer.h)

add_library(
  kestrelcore_logic OBJECT
  system/cpu_info.cpp
  system/cpu_survey.cpp
  system/gpu_info.cpp
  system/gpu_survey.cpp
  system/hardware_survey.cpp
  utils/cpu_usage.cpp
  utils/diagnostic_line.cpp
  utils/memory_observer.cpp
  utils/vram_rocm.cpp)
target_link_libraries(kestrelcore_logic PRIVATE kestrelcore_common kestrelcore_avx2 HIP::headers)

if(WIN32)
  add_library(
    kestrelcore_platform OBJECT
    platform/windows/clock.cpp
    platform/windows/memory.cpp
    platform/windows/process.cpp
    platform/windows/processor.cpp)
else()
  add_library(
    kestrelcore_platform OBJECT
    platform/linux/cgroup_location.cpp
    platform/linux/cgroup_memory.cpp
    platform/linux/clock.cpp
    platform/linux/line_reader.cpp
    platform/linux/machine_name.cpp
    platform/linux/meminfo.cpp
    platform/linux/memory.cpp
    platform/linux/memory_policy.cpp
    platform/linux/memory_status.cpp
    platform/linux/process.cpp
    platform/linux/processor.cpp
    platform/linux/statm.cpp
    platform/linux/text_file.cpp)
endif()
target_link_libraries(kestrelcore_platform PRIVATE kestrelcore_common kestrelcore_avx2)

add_library(kestrelcore SHARED $<TARGET_OBJECTS:kestrelcore_logic>
                               $<TARGET_OBJECTS:kestrelcore_platform>)
add_library(kestrelcore::kestrelcore ALIAS kestrelcore)
if(WIN32)
  target_sources(kestrelcore PRIVATE platform/windows/dll_main.cpp)
  target_link_libraries(kestrelcore PRIVATE kestrelcore_common kestrelcore_avx2)
endif()
target_link_libraries(kestrelcore PRIVATE HIP::runtime)
target_compile_features(kestrelcore PUBLIC cxx_std_17)
target_include_directories(
  kestrelcore PUBLIC "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
                     "$<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>"
                     "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/kestrelcore>")
# Before 1.0, each minor version is an interface of its own; the CMake package says the same.
set(kestrelcore_soversion "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
set_target_properties(
  kestrelcore PROPERTIES LINKER_LANGUAGE CXX VERSION "${PROJECT_VERSION}"
                         SOVERSION "${kestrelcore_soversion}")
if(WIN32)
  set_target_properties(kestrelcore PROPERTIES PREFIX "")
else()
  # Hidden visibility leaves the standard library's template instances visible; the list does not.
  set(export_list "${PROJECT_SOURCE_DIR}/cmake/kestrelcore.map")
  target_link_options(kestrelcore PRIVATE "LINKER:--version-script=${export_list}"
                      "LINKER:--no-undefined")
  set_target_properties(kestrelcore PROPERTIES LINK_DEPENDS "${export_list}")
endif()

generate_export_header(kestrelcore EXPORT_FILE_NAME
                       "${PROJECT_BINARY_DIR}/include/kestrelcore_export.h")
set_target_properties(
  kestrelcore_logic kestrelcore_platform
  PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden
             VISIBILITY_INLINES_HIDDEN ON)
target_compile_definitions(kestrelcore_logic PRIVATE kestrelcore_EXPORTS)
