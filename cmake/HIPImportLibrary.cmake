# HIP for a Windows build without the HIP SDK for Windows: the HIP headers of this machine, and an
# import library that names only the functions that the library calls. The DLL itself comes with the
# graphics driver or the SDK of the machine that the program runs on.
#
# Sets HIP_INCLUDE_DIR and HIP_LIBRARY; leaves them unset if the host has no HIP headers.

include(HIPFunctions)
include(HostHeaders)

function(kestrelcore_add_hip_import_library result include_dir)
  kestrelcore_hip_generation(generation "${include_dir}")
  set(dll amdhip64.dll)
  if(generation GREATER 5)
    set(dll "amdhip64_${generation}.dll")
  endif()
  set(KESTRELCORE_HIP_DLL "${dll}" CACHE STRING
      "The HIP runtime to bind to: amdhip64.dll, or amdhip64_6.dll for that of HIP 6")
  kestrelcore_hip_calls(exports "${include_dir}")
  list(JOIN exports "\n" exports)
  set(definition "${CMAKE_CURRENT_BINARY_DIR}/hip-import/amdhip64.def")
  file(CONFIGURE OUTPUT "${definition}" CONTENT "LIBRARY @KESTRELCORE_HIP_DLL@\nEXPORTS\n@exports@\n"
       @ONLY)
  set(library "${CMAKE_CURRENT_BINARY_DIR}/hip-import/libamdhip64.dll.a")
  add_custom_command(
    OUTPUT "${library}"
    COMMAND "${CMAKE_DLLTOOL}" --machine i386:x86-64 --input-def "${definition}" --output-lib
            "${library}"
    DEPENDS "${definition}"
    COMMENT "Making the import library of ${KESTRELCORE_HIP_DLL}"
    VERBATIM)
  add_custom_target(hip_import_library DEPENDS "${library}")
  set(${result} "${library}" PARENT_SCOPE)
endfunction()

kestrelcore_host_headers(HIP_INCLUDE_DIR hip hip/hip_runtime_api.h)
if(HIP_INCLUDE_DIR)
  kestrelcore_add_hip_import_library(HIP_LIBRARY "${HIP_INCLUDE_DIR}")
endif()
