# Checks what `kestrel explain` says over a simulated runtime: which file is used, and the devices.
#
#   cmake -DRUN=<program> -DRUNTIME=<folder of the runtime> -DMACHINE=... -P check_explain.cmake

cmake_minimum_required(VERSION 3.25)

set(ENV{LD_LIBRARY_PATH} "${RUNTIME}")
set(ENV{KESTREL_SIM_MACHINE} "${MACHINE}")
set(ENV{ROCR_VISIBLE_DEVICES} 0,1)
set(ENV{HIP_VISIBLE_DEVICES} 1)
set(ENV{CUDA_VISIBLE_DEVICES} 3)
set(ENV{GPU_DEVICE_ORDINAL} 2)
execute_process(COMMAND ${RUN} explain OUTPUT_VARIABLE output ERROR_VARIABLE output
                RESULT_VARIABLE status)
foreach(
  line
  "AVX yes, AVX2 yes \\(CPUID\\)"
  "/dev/kfd: "
  "ROCR_VISIBLE_DEVICES='0,1'"
  "HIP_VISIBLE_DEVICES='1'"
  "CUDA_VISIBLE_DEVICES='3'"
  "GPU_DEVICE_ORDINAL='2'"
  "-> HIP_VISIBLE_DEVICES may hide GPUs"
  "libamdhip64.so.7, already loaded: not loaded by this process"
  "libamdhip64.so.5, already loaded: not loaded by this process"
  "(not loaded by this process|file too short)\n  used: ${RUNTIME}/libamdhip64.so"
  "HIP: device 0, AMD Radeon 780M, 4.00 GiB in total, 3.00 GiB free"
  "limited by ")
  if(NOT output MATCHES "${line}")
    message(FATAL_ERROR "no '${line}' in:\n${output}")
  endif()
endforeach()
if(NOT status EQUAL 0 OR output MATCHES "RX 7600")
  message(FATAL_ERROR "${status}: ${output}")
endif()
