# Checks what the built library of the C interface exports and needs.
#
#   cmake -DHEADER=... -DDEF=... -DLIBRARY=... -DNM=... -DREADELF=... [-DFLOORS=ON]
#         -P check_library.cmake                                                       on Linux
#   cmake -DHEADER=... -DDEF=... -DLIBRARY=... -DOBJDUMP=... -P check_library.cmake    on Windows
#
# DEF is the list of exports that the Windows library is linked with. FLOORS compares the symbol
# versions that the library needs with those of the systems that it is promised to run on.

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

# Stops unless both lists hold the same entries.
function(expect_same what actual expected)
  list(REMOVE_DUPLICATES actual)
  list(SORT actual)
  list(SORT expected)
  if(NOT actual STREQUAL expected)
    message(FATAL_ERROR "${what} of ${LIBRARY}\n  ${actual}\nexpected\n  ${expected}")
  endif()
endfunction()

# Every capture of the first group of `pattern` in `text`.
function(find_all result pattern text)
  string(REGEX MATCHALL "${pattern}" matches "${text}")
  list(TRANSFORM matches REPLACE "^${pattern}$" "\\1")
  set(${result} "${matches}" PARENT_SCOPE)
endfunction()

# Stops if the library needs a later version of `name` than `floor`.
function(expect_floor name floor versions)
  find_all(needed "Name: ${name}_([0-9.]+)" "${versions}")
  list(SORT needed COMPARE NATURAL)
  list(POP_BACK needed latest)
  message("${name}_${latest}")
  if(latest VERSION_GREATER floor)
    message(FATAL_ERROR "${LIBRARY} needs ${name}_${latest}, later than ${name}_${floor}")
  endif()
endfunction()

file(STRINGS "${DEF}" exports REGEX "^  ")
list(TRANSFORM exports STRIP)
file(READ "${HEADER}" header)
find_all(declared "(kestrel_[a-z_]+)\\([a-z]" "${header}")
expect_same("The declarations in the header" "${declared}" "${exports}")

if(OBJDUMP)
  run("${OBJDUMP}" -p "${LIBRARY}")
  string(REGEX REPLACE "^.*\n\\[Ordinal/Name Pointer\\] Table" "" names "${output}")
  find_all(exported "\n[ \t]+\\[ *[0-9]+\\] ([^\n]+)" "${names}")
  find_all(needed "DLL Name: ([^\n]+)" "${output}")
  # ADVAPI32 seeds the stack protector.
  set(expected ADVAPI32.dll KERNEL32.dll msvcrt.dll)
else()
  run("${NM}" --dynamic --defined-only "${LIBRARY}")
  find_all(exported "[0-9a-f]+ [A-Za-z] ([^\n]+)" "${output}")
  run("${READELF}" --dynamic --wide "${LIBRARY}")
  find_all(needed "Shared library: \\[([^]]+)\\]" "${output}")
  set(expected libc.so.6 libgcc_s.so.1 libstdc++.so.6)
endif()
expect_same("The exports" "${exported}" "${exports}")
expect_same("The imported libraries" "${needed}" "${expected}")

if(FLOORS)
  run("${READELF}" --version-info --wide "${LIBRARY}")
  expect_floor(GLIBC 2.34 "${output}")
  expect_floor(GLIBCXX 3.4.29 "${output}")
  expect_floor(CXXABI 1.3.9 "${output}")
endif()
