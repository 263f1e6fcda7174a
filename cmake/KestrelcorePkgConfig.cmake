# Installs the description of a library for pkg-config. Its paths are relative to the file itself,
# so that the installed folder may be moved. They are computed from the full paths because
# CMAKE_INSTALL_LIBDIR and CMAKE_INSTALL_INCLUDEDIR may be absolute.
function(kestrelcore_install_pkg_config template component)
  set(folder "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig")
  file(RELATIVE_PATH kestrelcore_include_from_pc "${folder}" "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
  cmake_path(GET template STEM LAST_ONLY name)
  configure_file("${template}" "${PROJECT_BINARY_DIR}/${name}" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${name}" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
          COMPONENT ${component})
endfunction()

# Sets the flags that kestrelcore.pc needs in addition to those of the library itself. A program that links
# the archive also links the libraries that the archive needs, with and without --static.
function(kestrelcore_set_pkg_config_flags)
  set(kestrelcore_pc_libs "")
  set(kestrelcore_pc_cflags "")
  if(kestrelcore_type STREQUAL "STATIC")
    set(kestrelcore_pc_cflags " -DKESTRELCORE_STATIC_DEFINE")
    if(kestrelcore_needs_hip)
      cmake_path(GET HIP_LIBRARY PARENT_PATH hip_folder)
      string(REPLACE " " "\\ " hip_folder "${hip_folder}")
      string(APPEND kestrelcore_pc_libs " -L${hip_folder} -lamdhip64")
    elseif(CMAKE_DL_LIBS)
      string(APPEND kestrelcore_pc_libs " -l${CMAKE_DL_LIBS}")
    endif()
    if(MINGW)
      string(APPEND kestrelcore_pc_libs " -l:libssp.a")
    endif()
  endif()
  set(kestrelcore_pc_libs "${kestrelcore_pc_libs}" PARENT_SCOPE)
  set(kestrelcore_pc_cflags "${kestrelcore_pc_cflags}" PARENT_SCOPE)
endfunction()
