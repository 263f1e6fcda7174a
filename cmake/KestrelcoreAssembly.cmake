# How the library's objects become a library, shared or static, and how that reaches HIP.

# Adds the library's objects to `library`. `binding` is `linked`, where the loader resolves an import
# of the HIP runtime, or `lazy`, where hip_binding/ finds a runtime at the first call.
function(kestrelcore_assemble library binding)
  set(objects $<TARGET_OBJECTS:kestrelcore_logic> $<TARGET_OBJECTS:kestrelcore_platform>)
  if(binding STREQUAL "lazy")
    list(APPEND objects $<TARGET_OBJECTS:kestrelcore_hip_binding>)
    target_link_libraries(${library} PRIVATE ${CMAKE_DL_LIBS})
  else()
    target_link_libraries(${library} PRIVATE HIP::runtime)
  endif()
  get_target_property(type ${library} TYPE)
  if(type STREQUAL "STATIC_LIBRARY")
    kestrelcore_set_up_archive(${library} ${binding} "${objects}")
  else()
    kestrelcore_set_up_shared(${library} "${objects}")
  endif()
endfunction()

function(kestrelcore_set_up_shared library objects)
  target_sources(${library} PRIVATE ${objects})
  target_link_libraries(${library} PRIVATE kestrelcore_common)
  # Before 1.0, each minor version is an interface of its own; the CMake package says the same.
  set_target_properties(
    ${library} PROPERTIES LINKER_LANGUAGE CXX OUTPUT_NAME kestrelcore VERSION "${PROJECT_VERSION}"
                          SOVERSION "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
  if(WIN32)
    target_sources(${library} PRIVATE "${PROJECT_SOURCE_DIR}/platform/windows/dll_main.cpp")
    target_link_libraries(${library} PRIVATE kestrelcore_avx2)
    set_target_properties(${library} PROPERTIES PREFIX "")
  else()
    # Hidden visibility leaves the standard library's template instances visible; this list does not.
    set(version_script "${PROJECT_SOURCE_DIR}/cmake/kestrelcore.map")
    target_link_options(${library} PRIVATE "LINKER:--version-script=${version_script}"
                        "LINKER:--no-undefined")
    set_target_properties(${library} PROPERTIES LINK_DEPENDS "${version_script}")
  endif()
endfunction()

# HIP's header declares its functions with default visibility, so the ones of hip_binding/ would also
# serve the HIP calls of a host that links the archive. They get out of its way.
function(kestrelcore_set_up_archive library binding objects)
  if(binding STREQUAL "lazy")
    if(NOT CMAKE_OBJCOPY OR MSVC)
      message(FATAL_ERROR "A static library with KESTRELCORE_HIP=lazy needs the GNU linker and "
                          "objcopy. Set BUILD_SHARED_LIBS=ON or KESTRELCORE_HIP=linked.")
    endif()
    set(functions hipGetDeviceCount hipGetDeviceProperties hipGetDevicePropertiesR0600
                  hipGetErrorString hipMemGetInfo hipSetDevice)
    if(MINGW)
      kestrelcore_rename_in_archive(${library} "${functions}")
    else()
      kestrelcore_prelink(objects "${functions}" "${objects}")
    endif()
  endif()
  target_sources(${library} PRIVATE ${objects})
  set_target_properties(${library} PROPERTIES LINKER_LANGUAGE CXX)
  target_compile_definitions(${library} PUBLIC KESTRELCORE_STATIC_DEFINE)
  if(MINGW)
    target_link_libraries(${library} INTERFACE -l:libssp.a) # of the stack protector
  endif()
endfunction()

# Sets `result` to one object made of `objects`, in which `functions` are local.
function(kestrelcore_prelink result functions objects)
  list(TRANSFORM functions PREPEND --localize-symbol=)
  set(object "${CMAKE_CURRENT_BINARY_DIR}/kestrelcore_lazy.o")
  add_custom_command(
    OUTPUT "${object}"
    COMMAND "${CMAKE_LINKER}" -r -o "${object}" ${objects}
    COMMAND "${CMAKE_OBJCOPY}" ${functions} "${object}"
    DEPENDS ${objects}
    COMMENT "Making the HIP functions local to the library"
    COMMAND_EXPAND_LISTS VERBATIM)
  set_source_files_properties("${object}" PROPERTIES EXTERNAL_OBJECT ON GENERATED ON)
  set(${result} "${object}" PARENT_SCOPE)
endfunction()

# The linker for Windows cannot make one object out of several: it separates functions from their unwind
# data. So there the functions get other names.
function(kestrelcore_rename_in_archive library functions)
  list(TRANSFORM functions REPLACE "(.+)" "--redefine-sym=\\1=kestrelcore_\\1")
  add_custom_command(
    TARGET ${library} POST_BUILD
    COMMAND "${CMAKE_OBJCOPY}" ${functions} "$<TARGET_FILE:${library}>"
    VERBATIM)
endfunction()
