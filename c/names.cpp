#include "c/kestrelcore.h"

// Names and versions. These calls work on processors without AVX2, and so call nothing of the
// library: the texts are the same as those of its own names.

uint32_t kestrel_version() { return KESTREL_VERSION; }

#define KESTREL_TEXT_OF(number) #number
#define KESTREL_VERSION_TEXT(major, minor, patch) \
  KESTREL_TEXT_OF(major) "." KESTREL_TEXT_OF(minor) "." KESTREL_TEXT_OF(patch)

const char* kestrel_version_text() {
  return KESTREL_VERSION_TEXT(KESTREL_VERSION_MAJOR, KESTREL_VERSION_MINOR, KESTREL_VERSION_PATCH);
}

const char* kestrel_status_name(kestrel_status status) {
  switch (status) {
    case KESTREL_OK:
      return "KESTREL_OK";
    case KESTREL_INVALID_ARGUMENT:
      return "KESTREL_INVALID_ARGUMENT";
    case KESTREL_CAPACITY_TOO_SMALL:
      return "KESTREL_CAPACITY_TOO_SMALL";
    case KESTREL_OUT_OF_MEMORY:
      return "KESTREL_OUT_OF_MEMORY";
    case KESTREL_PROCESSOR_UNSUPPORTED:
      return "KESTREL_PROCESSOR_UNSUPPORTED";
    case KESTREL_ARCHITECTURE_UNSUPPORTED:
      return "KESTREL_ARCHITECTURE_UNSUPPORTED";
    case KESTREL_NO_DEVICES:
      return "KESTREL_NO_DEVICES";
    case KESTREL_DEVICE_QUERY_FAILED:
      return "KESTREL_DEVICE_QUERY_FAILED";
    case KESTREL_PROCESS_QUERY_FAILED:
      return "KESTREL_PROCESS_QUERY_FAILED";
    case KESTREL_MEMORY_QUERY_FAILED:
      return "KESTREL_MEMORY_QUERY_FAILED";
    case KESTREL_RUNTIME_FAILED:
      return "KESTREL_RUNTIME_FAILED";
    default:
      return "KESTREL_STATUS_UNKNOWN";
  }
}

// The only architecture that this library is built for is also the answer to a number that is none.
const char* kestrel_cpu_architecture_name(int32_t architecture) {
  switch (architecture) {
    case KESTREL_CPU_ARCHITECTURE_ARM64:
      return "ARM64";
    case KESTREL_CPU_ARCHITECTURE_UNKNOWN:
      return "Unknown";
    default:
      return "x86_64";
  }
}

const char* kestrel_cpu_extension_name(uint32_t extension) {
  switch (extension) {
    case KESTREL_CPU_EXTENSION_AVX2:
      return "AVX2";
    case KESTREL_CPU_EXTENSION_ADVSIMD:
      return "AdvSIMD";
    default:
      return "AVX";
  }
}

const char* kestrel_cpu_extension_names(uint32_t extensions) {
  // Indexed by the sum of the three bits.
  static const char* const kNames[] = {
      "",        "AVX",          "AVX2",          "AVX, AVX2",
      "AdvSIMD", "AVX, AdvSIMD", "AVX2, AdvSIMD", "AVX, AVX2, AdvSIMD",
  };
  constexpr uint32_t kAll =
      KESTREL_CPU_EXTENSION_AVX | KESTREL_CPU_EXTENSION_AVX2 | KESTREL_CPU_EXTENSION_ADVSIMD;
  return kNames[extensions & kAll];
}

const char* kestrel_gpu_integration_name(int32_t integration_type) {
  switch (integration_type) {
    case KESTREL_GPU_INTEGRATION_INTEGRATED:
      return "Integrated";
    case KESTREL_GPU_INTEGRATION_DISCRETE:
      return "Discrete";
    default:
      return "Unknown";
  }
}

const char* kestrel_gpu_platform_name(int32_t detection_platform) {
  switch (detection_platform) {
    case KESTREL_GPU_PLATFORM_ROCM:
      return "ROCm";
    case KESTREL_GPU_PLATFORM_CUDA:
      return "Cuda";
    case KESTREL_GPU_PLATFORM_OPENCL:
      return "OpenCl";
    case KESTREL_GPU_PLATFORM_METAL:
      return "Metal";
    case KESTREL_GPU_PLATFORM_DIRECTML:
      return "DirectML";
    case KESTREL_GPU_PLATFORM_VULKAN:
      return "Vulkan";
    default:
      return "Unknown";
  }
}
