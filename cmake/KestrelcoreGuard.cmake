# What the export header checks about the host.

# <X11/Xlib.h> defines a macro with the name of an enumerator. The header sees it only if X11's header is
# included first.
set(kestrelcore_macro_guard [[

#ifdef Success
#error "A macro Success, such as that of <X11/Xlib.h>, hides kestrel::system::ResultCode::Success. Include the headers of kestrelcore first, or #undef Success."
#endif
]])

# The text by which the installed export header stops a host whose C++ standard library differs from
# the one that the library is built with: strings and containers cross the boundary by value, so such
# a host would link, and then corrupt memory.
#
# The header of the build tree does without: there a parent project may give its own directories other
# settings than this one, which no header can know.

# Sets `result` to whether `condition` of the preprocessor holds with the flags of this build.
function(kestrelcore_check_macros result condition)
  get_directory_property(options COMPILE_OPTIONS)
  get_directory_property(definitions COMPILE_DEFINITIONS)
  list(TRANSFORM definitions PREPEND -D)
  set(flags ${options} ${definitions})
  list(FILTER flags EXCLUDE REGEX "\\$<")
  set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
  try_compile(
    holds
    SOURCE_FROM_CONTENT check.cpp "#include <string>\n#if !(${condition})\n#error\n#endif\n"
    COMPILE_DEFINITIONS ${flags}
    CXX_STANDARD 17 NO_CACHE)
  if(holds)
    set(${result} 1 PARENT_SCOPE)
  else()
    set(${result} 0 PARENT_SCOPE)
  endif()
endfunction()

# Sets `result` to the text.
function(kestrelcore_standard_library_guard result)
  set(first_header cstddef)
  kestrelcore_check_macros(libstdcxx "defined(__GLIBCXX__)")
  kestrelcore_check_macros(libcxx "defined(_LIBCPP_VERSION)")
  if(libstdcxx)
    kestrelcore_check_macros(cxx11_abi "_GLIBCXX_USE_CXX11_ABI")
    kestrelcore_check_macros(debug "defined(_GLIBCXX_DEBUG)")
    set(library "libstdc++ with _GLIBCXX_USE_CXX11_ABI=${cxx11_abi}")
    if(debug)
      string(APPEND library " and _GLIBCXX_DEBUG")
    endif()
    set(differs "!defined(__GLIBCXX__) || _GLIBCXX_USE_CXX11_ABI != ${cxx11_abi} || \\
    defined(_GLIBCXX_DEBUG) != ${debug}")
  elseif(libcxx)
    set(library "libc++")
    set(differs "!defined(_LIBCPP_VERSION)")
  elseif(MSVC)
    set(first_header string) # <cstddef> does not define _ITERATOR_DEBUG_LEVEL
    set(level "$<IF:$<CONFIG:Debug>,2,0>")
    set(library "the library of Visual C++ with _ITERATOR_DEBUG_LEVEL=${level}")
    set(differs "!defined(_MSVC_STL_VERSION) || _ITERATOR_DEBUG_LEVEL != ${level}")
  else()
    set(${result} "" PARENT_SCOPE)
    return()
  endif()
  string(CONFIGURE [[

#include <@first_header@>  /* defines the macros of the standard library */
#if @differs@
#error "kestrelcore was built with @library@. Build this program with the same, or rebuild kestrelcore."
#endif
]] guard @ONLY)
  set(${result} "${guard}" PARENT_SCOPE)
endfunction()
