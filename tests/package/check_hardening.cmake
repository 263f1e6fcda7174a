# Reads how a built program or shared library is protected against attacks on memory errors.
#
#   cmake -DREADELF=... -DFILE=... [-DFORTIFIED=ON] -P check_hardening.cmake
#
# FORTIFIED  whether the file has calls that _FORTIFY_SOURCE checks

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

run("${READELF}" --wide --file-header --program-headers --dynamic --dyn-syms "${FILE}")

function(expect_match pattern what)
  if(NOT output MATCHES "${pattern}")
    message(FATAL_ERROR "${FILE}: ${what}\n${output}")
  endif()
endfunction()

function(expect_no_match pattern what)
  if(output MATCHES "${pattern}")
    message(FATAL_ERROR "${FILE}: ${what}: ${CMAKE_MATCH_0}\n${output}")
  endif()
endfunction()

# A position-independent program has the type of a shared library.
expect_match("\n +Type: +DYN " "is loaded at a fixed address")
expect_match("\n +GNU_RELRO " "leaves relocated data writable")
expect_match("FLAGS\\) +[^\n]*BIND_NOW" "binds symbols late, so the table of them stays writable")
expect_match("\n +GNU_STACK +[^\n]* RW +0x" "has an executable stack")
expect_match(" UND __stack_chk_fail@" "has no stack protector")

# An empty element names the current directory.
expect_no_match("\\((RUNPATH|RPATH)\\)[^\n]*(\\[:|::|:\\]|\\[\\])" "searches an empty element")

# GCC replaces a checked call that it can prove correct, so not every call stays a checked one.
if(FORTIFIED)
  expect_match(" UND __[a-z]+printf_chk@" "is built without _FORTIFY_SOURCE")
endif()
