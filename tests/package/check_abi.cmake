# Compares the binary interface of a shared library with a recorded one.
#
#   cmake -DABIDW=... -DABIDIFF=... -DHEADERS=... -DLIBRARY=... -DBASELINE=... [-DRENEW=ON]
#         -P check_abi.cmake
#
# LIBRARY    the library, with its debug information
# HEADERS    the folder of the public headers; types that are defined elsewhere are not recorded
# RENEW      records the interface of LIBRARY instead

cmake_minimum_required(VERSION 3.25)

if(RENEW)
  execute_process(
    COMMAND "${ABIDW}" --drop-private-types --headers-dir "${HEADERS}" --exported-interfaces-only
            --no-show-locs --no-corpus-path --no-comp-dir-path --type-id-style hash
            --out-file "${BASELINE}" "${LIBRARY}" COMMAND_ERROR_IS_FATAL ANY)
  return()
endif()

# Not --drop-private-types: abidiff 2.2 then takes a changed public record for a private one.
execute_process(
  COMMAND "${ABIDIFF}" --exported-interfaces-only "${BASELINE}" "${LIBRARY}"
  OUTPUT_VARIABLE report ERROR_VARIABLE report RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  cmake_path(GET LIBRARY FILENAME name)
  message("${report}")
  message(
    FATAL_ERROR
      "The binary interface of ${name} is not the recorded one (abidiff returned ${status}). If "
      "programs that were built with the last release run as before, renew the record with "
      "\"cmake --build --preset linux --target kestrelcore_renew_abi\". If they do not, raise the "
      "SOVERSION first, as docs/compatibility.md describes (that of the C library only with a new "
      "major version), and then renew the record.")
endif()
message("The binary interface is the recorded one")
