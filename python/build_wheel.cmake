# Builds the wheel of one platform.
#
#   cmake -DPYTHON=... -DSOURCE=... -DPYPROJECT=... -DLIBRARY=... -DLIBRARY_NAME=... -DSTRIP=...
#         -DPLATFORM=... -DLICENSES=... -DSTAGE=... -DOUTPUT=... -P build_wheel.cmake
#
# SOURCE     the root of the repository; PYPROJECT the configured pyproject.toml
# LIBRARY    the C library, which the package holds as LIBRARY_NAME, without its debug information
# PLATFORM   the platform tag of the wheel
# LICENSES   a folder with the licences of what else the library holds
# STAGE      a folder to work in; OUTPUT the folder for the wheel, which is emptied before

cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE "${STAGE}" "${OUTPUT}")
file(COPY "${SOURCE}/python/kestrelcore" "${SOURCE}/python/setup.py" "${SOURCE}/python/README.md"
          "${SOURCE}/LICENSE" "${PYPROJECT}"
     DESTINATION "${STAGE}" PATTERN __pycache__ EXCLUDE)
file(GLOB licenses "${LICENSES}/LICENSE.*")
file(COPY ${licenses} DESTINATION "${STAGE}")
execute_process(COMMAND "${STRIP}" --strip-debug "${LIBRARY}" -o
                        "${STAGE}/kestrelcore/${LIBRARY_NAME}" COMMAND_ERROR_IS_FATAL ANY)
set(ENV{KESTRELCORE_WHEEL_PLATFORM} "${PLATFORM}")
execute_process(
  COMMAND "${PYTHON}" -m build --wheel --no-isolation --outdir "${OUTPUT}" "${STAGE}"
  OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${output}")
endif()
file(GLOB wheels "${OUTPUT}/*.whl")
message("${wheels}")
