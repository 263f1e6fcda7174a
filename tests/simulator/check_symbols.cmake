# Checks what a simulated runtime exports and how it reads the environment.
#
#   cmake -DSOURCE=... -DNM=... -DRUNTIME=... -DGENERATION=... -P check_symbols.cmake
#
# SOURCE      the project's sources; NM the program of that name
# RUNTIME     the file of the runtime
# GENERATION  its generation of HIP

cmake_minimum_required(VERSION 3.25)

include("${SOURCE}/cmake/HIPFunctions.cmake")
include("${SOURCE}/tests/run_command.cmake")

set(expected "")
foreach(version hip_4.2 hip_6.0)
  kestrelcore_hip_exports(functions ${GENERATION} SYMBOL_VERSION ${version})
  list(TRANSFORM functions APPEND "@@${version}")
  list(APPEND expected ${functions})
endforeach()
list(SORT expected)

run("${NM}" --dynamic --defined-only --with-symbol-versions "${RUNTIME}")
string(REGEX MATCHALL " T [^\n]+" exported "${output}")
list(TRANSFORM exported REPLACE " T " "")
list(SORT exported)
if(NOT exported STREQUAL expected)
  message(FATAL_ERROR "Exported: ${exported}\nExpected: ${expected}")
endif()

# A setuid program must not open a file that its user names, so getenv is not called.
run("${NM}" --dynamic --undefined-only "${RUNTIME}")
if(output MATCHES " getenv[@\n]" OR NOT output MATCHES " secure_getenv[@\n]")
  message(FATAL_ERROR "The environment is not read by secure_getenv alone:\n${output}")
endif()

# The loader allocates what __tls_get_addr returns at the first use, and ends the process if it
# cannot.
if(output MATCHES " __tls_get_addr[@\n]")
  message(FATAL_ERROR "The variables of a thread are not initial-exec:\n${output}")
endif()
