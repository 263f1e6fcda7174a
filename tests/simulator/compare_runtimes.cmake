# Runs every_call over the real runtime and over the simulated one, both without a device, and
# compares the outputs.
#
#   cmake -DPROGRAM=... -DREAL=... -DSIMULATED=... -P compare_runtimes.cmake
#
# REAL and SIMULATED are the files of the two runtimes.

cmake_minimum_required(VERSION 3.25)

function(run_over runtime result)
  execute_process(
    COMMAND "${PROGRAM}" "${runtime}" every-status
    OUTPUT_VARIABLE output
    ERROR_VARIABLE output
    RESULT_VARIABLE status)
  set(${result} "${output}exit status ${status}\n" PARENT_SCOPE)
endfunction()

unset(ENV{KESTREL_SIM_MACHINE})
unset(ENV{ROCR_VISIBLE_DEVICES})
set(ENV{HIP_VISIBLE_DEVICES} -1)  # hides the GPUs of the host from the real runtime
# The real runtime leaks the state of a thread.
set(ENV{ASAN_OPTIONS} "$ENV{ASAN_OPTIONS}:detect_leaks=0")
run_over("${REAL}" real)
run_over("${SIMULATED}" simulated)
if(NOT real STREQUAL simulated)
  message(FATAL_ERROR "The real runtime:\n${real}\nThe simulated one:\n${simulated}")
endif()
if(NOT real MATCHES "hipGetDeviceCount: 100, 0\n")
  message(FATAL_ERROR "The program did not reach a runtime without devices:\n${real}")
endif()
