# Checks a Windows image with objdump.
#
#   cmake -D CHECK=<exports|imports|protection|stack_moves> -D IMAGE=... -D OBJDUMP=...
#         [-D CXXFILT=... -D EXPORT_LIST=...] [-D IMPORT_LIST=... -D HIP_DLL=...
#         -D HIP_PROPERTIES=...] -P check_image.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

function(split_lines result text)
  string(STRIP "${text}" text)
  string(REPLACE "\n" ";" text "${text}")
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

# Stops if `actual` lacks an entry of `required`, or has one that is in neither list.
function(expect_entries what actual required optional)
  set(missing ${required})
  list(REMOVE_ITEM missing ${actual})
  set(extra ${actual})
  list(REMOVE_ITEM extra ${required} ${optional})
  if(missing OR extra)
    list(JOIN missing "\n    " missing)
    list(JOIN extra "\n    " extra)
    message(FATAL_ERROR "${what} of ${IMAGE}\n  missing:\n    ${missing}\n  extra:\n    ${extra}")
  endif()
  list(LENGTH actual count)
  message("${what}: ${count} entries, as expected")
endfunction()

# The exports are those of the list for the Linux library. It has a constructor or destructor once;
# the image exports it twice, for complete objects and for bases.
function(check_exports)
  run("${OBJDUMP}" -p "${IMAGE}")
  string(REGEX REPLACE "^.*\n\\[Ordinal/Name Pointer\\] Table" "" text "${output}")
  string(REGEX MATCHALL "\n[ \t]*\\[ *[0-9]+\\] [^\n]+" names "${text}")
  list(TRANSFORM names REPLACE "^.*\\] " "")
  run("${CXXFILT}" ${names})
  split_lines(actual "${output}")
  list(REMOVE_DUPLICATES actual)
  file(STRINGS "${EXPORT_LIST}" required REGEX "^ *\".*\";$")
  list(TRANSFORM required REPLACE "^ *\"(.*)\".*$" "\\1")
  expect_entries("Exports" "${actual}" "${required}" "")
endfunction()

# Entries are "DLL function"; "DLL *" for a DLL of which any function may be imported.
function(read_imports result any_function)
  run("${OBJDUMP}" -p "${IMAGE}")
  string(REGEX REPLACE "\nThe Export Tables.*$" "" text "${output}")
  split_lines(lines "${text}")
  foreach(line IN LISTS lines)
    if(line MATCHES "^\tDLL Name: (.*)$")
      set(dll "${CMAKE_MATCH_1}")
    elseif(line MATCHES "^\t[0-9a-f]+\t *[0-9]+  ([^ ]+)$")
      set(name "${CMAKE_MATCH_1}")
      if("${dll} *" IN_LIST any_function)
        set(name "*")
      endif()
      list(APPEND entries "${dll} ${name}")
    endif()
  endforeach()
  list(REMOVE_DUPLICATES entries)
  set(${result} "${entries}" PARENT_SCOPE)
endfunction()

function(check_imports)
  file(STRINGS "${IMPORT_LIST}" expected REGEX "^[^#]")
  string(CONFIGURE "${expected}" expected @ONLY)
  set(optional ${expected})
  list(FILTER optional INCLUDE REGEX "^\\? ")
  list(TRANSFORM optional REPLACE "^\\? " "")
  set(required ${expected})
  list(FILTER required EXCLUDE REGEX "^\\? ")
  read_imports(actual "${expected}")
  expect_entries("Imports" "${actual}" "${required}" "${optional}")
  run("${OBJDUMP}" -p "${IMAGE}")
  if(NOT output MATCHES "Entry d 0+ 0+ Delay Import Directory")
    message(FATAL_ERROR "${IMAGE} has delayed imports")
  endif()
endfunction()

# Without relocations the loader ignores the flag for address space layout randomization.
function(check_protection)
  run("${OBJDUMP}" -p "${IMAGE}")
  foreach(flag HIGH_ENTROPY_VA DYNAMIC_BASE NX_COMPAT)
    if(NOT output MATCHES "\n[ \t]+${flag}\n")
      message(FATAL_ERROR "${IMAGE} lacks ${flag}")
    endif()
  endforeach()
  if(NOT output MATCHES "Entry 5 [0-9a-f]+ [0-9a-f]*[1-9a-f][0-9a-f]* Base Relocation Directory")
    message(FATAL_ERROR "${IMAGE} has no relocations")
  endif()
endfunction()

# The stack is aligned to 16 bytes only, so an aligned move of a 32-byte register to it would fault.
function(check_stack_moves)
  run("${OBJDUMP}" -d --no-show-raw-insn "${IMAGE}")
  if(NOT output MATCHES "vmov[a-z0-9]+ [^\n]*%ymm")
    message(FATAL_ERROR "${IMAGE} moves no 32-byte register: it is not built for AVX2")
  endif()
  string(REGEX MATCHALL "[^\n]*vmov(aps|apd|dqa)[^\n]*\\(%r[bs]p[^\n]*%ymm[^\n]*" moves "${output}")
  string(REGEX MATCHALL "[^\n]*vmov(aps|apd|dqa)[^\n]*%ymm[^\n]*\\(%r[bs]p[^\n]*" stores "${output}")
  if(moves OR stores)
    message(FATAL_ERROR "Aligned moves in ${IMAGE}: ${moves} ${stores}")
  endif()
endfunction()

cmake_language(CALL "check_${CHECK}")
