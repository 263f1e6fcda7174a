#ifndef KESTRELCORE_H_
#define KESTRELCORE_H_

/// @file
/// kestrelcore from C and from every language that can call C: what the machine offers to a
/// program, and how much of it is free.
///
/// Every call measures afresh on the caller's thread and writes plain values through the caller's
/// pointers. Nothing that a call returns has to be freed. The library keeps no state but which GPU
/// runtime it found, starts no threads and reads no configuration. No C++ exception leaves a call.
///
/// **Status.** A call that can fail returns a `kestrel_status`. After a failure its outputs hold
/// the values that the call's comment names. A call with a null pointer that must not be null, or
/// with a record whose `struct_size` is not set, returns `KESTREL_INVALID_ARGUMENT` and leaves all
/// its outputs unchanged; it reports the failure to each `kestrel_result` that is valid.
///
/// **Failure text.** The last parameter of such a call is a `kestrel_result*`, which receives the
/// status again and the text of the failure. It may be null: then the call writes to standard error
/// what its C++ counterpart writes there. Where it is not null, the call writes nothing to standard
/// error.
///
/// **Records.** Every record begins with `struct_size`, which the caller sets to the `sizeof` of
/// the record before each call. Later versions only append fields. A library that is newer than its
/// host writes only the fields that the host's record has. A library that is older than its host
/// sets the fields that it does not know to zero; zero always means "not known" there.
///
/// **Text.** All texts are NUL-terminated. A text that does not fit its field is cut.
///
/// **Threads.** Every call may be made from any number of threads at once. Calls that ask the GPU
/// runtime may change the calling thread's current HIP device; each says so. On Linux a call needs
/// up to 24 KiB of stack (measured: less than 20 KiB), and what the GPU runtime takes on top of
/// that. Do not cancel (`pthread_cancel`) a thread inside a call.
///
/// **Blocking.** `kestrel_cpu_usage` blocks for the interval that its caller chooses. Calls that
/// ask the GPU runtime block for as long as that does: it initialises itself at the first call in a
/// process. The other calls only query the operating system.
///
/// **Processor.** The library requires AVX2, enabled by the operating system. Elsewhere every call
/// that returns a status returns `KESTREL_PROCESSOR_UNSUPPORTED` and leaves its outputs unchanged;
/// the calls that return names and versions work on every x86-64 processor.

#include <stddef.h>
#include <stdint.h>

/// The version of this header. `kestrel_version()` returns that of the library.
#define KESTREL_VERSION_MAJOR 0
#define KESTREL_VERSION_MINOR 2
#define KESTREL_VERSION_PATCH 0
#define KESTREL_VERSION \
  ((KESTREL_VERSION_MAJOR << 16) | (KESTREL_VERSION_MINOR << 8) | KESTREL_VERSION_PATCH)

#ifdef __cplusplus
extern "C" {
#endif

/// The library's version: major * 65536 + minor * 256 + patch, as `KESTREL_VERSION`. Never fails.
uint32_t kestrel_version(void);

/// The library's version as text, for example "1.2.3". Never fails.
const char* kestrel_version_text(void);

/// How a call ended: one of the constants below. Numbers never change; later versions may add some,
/// so a host treats every number but `KESTREL_OK` as a failure.
typedef int32_t kestrel_status;
enum {
  /// The outputs are valid.
  KESTREL_OK = 0,
  /// A pointer that must not be null is null, a `struct_size` is not that of the record, or a pid
  /// or device number is out of range.
  KESTREL_INVALID_ARGUMENT = 1,
  /// The caller's list or text is too small; nothing was written to it.
  KESTREL_CAPACITY_TOO_SMALL = 2,
  /// The library or the GPU runtime ran out of memory.
  KESTREL_OUT_OF_MEMORY = 3,
  /// The processor lacks AVX2, or the operating system has not enabled its registers.
  KESTREL_PROCESSOR_UNSUPPORTED = 4,
  /// The operating system reports a processor architecture that the CPU survey does not know.
  KESTREL_ARCHITECTURE_UNSUPPORTED = 5,
  /// The machine has no GPU runtime, or that runtime finds no device or cannot count them.
  KESTREL_NO_DEVICES = 6,
  /// The GPU runtime failed to answer a query about a device.
  KESTREL_DEVICE_QUERY_FAILED = 7,
  /// There is no such process, it ended during the call, or its figures could not be read.
  KESTREL_PROCESS_QUERY_FAILED = 8,
  /// The operating system did not report its memory figures.
  KESTREL_MEMORY_QUERY_FAILED = 9,
  /// The GPU runtime threw an exception.
  KESTREL_RUNTIME_FAILED = 10
};

/// The name of a status, for example "KESTREL_NO_DEVICES"; "KESTREL_STATUS_UNKNOWN" for a number
/// that is none. Never fails.
const char* kestrel_status_name(kestrel_status status);

/// Bytes of `kestrel_result.message`, its NUL included.
#define KESTREL_MESSAGE_SIZE 1020

/// How a call ended, with its text.
typedef struct kestrel_result {
  size_t struct_size;     ///< Set by the caller: `sizeof(kestrel_result)`.
  kestrel_status status;  ///< What the call returned.
  /// What failed, without a final newline. Empty on success. Where several devices failed, one line
  /// for each.
  char message[KESTREL_MESSAGE_SIZE];
} kestrel_result;

/// \name Processor
/// @{

/// Values of `kestrel_cpu.architecture`.
enum {
  KESTREL_CPU_ARCHITECTURE_X86_64 = 0,
  KESTREL_CPU_ARCHITECTURE_ARM64 = 1,  ///< Also stands for 32-bit Arm.
  KESTREL_CPU_ARCHITECTURE_UNKNOWN = 2
};

/// Bits of `kestrel_cpu.extensions`.
enum {
  KESTREL_CPU_EXTENSION_AVX = 1,
  KESTREL_CPU_EXTENSION_AVX2 = 2,
  KESTREL_CPU_EXTENSION_ADVSIMD = 4  ///< Arm Advanced SIMD; named for hosts, never detected here.
};

/// What the processor offers.
typedef struct kestrel_cpu {
  size_t struct_size;    ///< Set by the caller: `sizeof(kestrel_cpu)`.
  int32_t architecture;  ///< A `KESTREL_CPU_ARCHITECTURE_` value.
  uint32_t extensions;   ///< The sum of the `KESTREL_CPU_EXTENSION_` bits that CPUID shows.
} kestrel_cpu;

/// "x86_64", "ARM64" or "Unknown"; "x86_64" for a number that is none. Never fails.
const char* kestrel_cpu_architecture_name(int32_t architecture);

/// "AVX", "AVX2" or "AdvSIMD" for one `KESTREL_CPU_EXTENSION_` bit; "AVX" for any other number.
/// Never fails.
const char* kestrel_cpu_extension_name(uint32_t extension);

/// The names of all extensions, in ascending order, joined by ", ": for example "AVX, AVX2". Empty
/// if there is none. Bits that are no extension are ignored. Never fails.
const char* kestrel_cpu_extension_names(uint32_t extensions);

/// Surveys the processor: the architecture that the operating system reports, and AVX and AVX2 as
/// CPUID shows them.
///
/// Fails with `KESTREL_ARCHITECTURE_UNSUPPORTED` or `KESTREL_OUT_OF_MEMORY`: `*cpu` then holds the
/// unknown architecture without extensions. Writes nothing to standard error.
kestrel_status kestrel_survey_cpu(kestrel_cpu* cpu, kestrel_result* result);

/// @}

/// \name Graphics processors
/// @{

/// Bytes of a device's name and of its architecture's name, the NUL included.
#define KESTREL_GPU_NAME_SIZE 257

/// Bytes of the version of a detection platform, its NUL included.
#define KESTREL_GPU_PLATFORM_VERSION_SIZE 66

/// Values of `kestrel_gpu.integration_type`.
enum {
  KESTREL_GPU_INTEGRATION_UNKNOWN = 0,
  KESTREL_GPU_INTEGRATION_INTEGRATED = 1,  ///< In the processor package; shares its memory.
  KESTREL_GPU_INTEGRATION_DISCRETE = 2     ///< A device of its own.
};

/// Values of `kestrel_gpu.detection_platform`. Surveys here assign ROCm alone; a host may use the
/// others for GPUs that it found by other means.
enum {
  KESTREL_GPU_PLATFORM_UNKNOWN = 0,
  KESTREL_GPU_PLATFORM_ROCM = 1,
  KESTREL_GPU_PLATFORM_CUDA = 2,
  KESTREL_GPU_PLATFORM_OPENCL = 3,
  KESTREL_GPU_PLATFORM_METAL = 4,
  KESTREL_GPU_PLATFORM_DIRECTML = 5,
  KESTREL_GPU_PLATFORM_VULKAN = 6
};

/// One graphics processor.
typedef struct kestrel_gpu {
  size_t struct_size;                ///< Set by the caller in the first record of its list.
  uint64_t total_memory;             ///< Bytes.
  uint64_t dedicated_memory;         ///< Bytes. No survey here fills it: 0.
  int32_t device_id;                 ///< The HIP device number, from 0.
  int32_t integration_type;          ///< A `KESTREL_GPU_INTEGRATION_` value.
  int32_t detection_platform;        ///< A `KESTREL_GPU_PLATFORM_` value.
  char name[KESTREL_GPU_NAME_SIZE];  ///< As the detection platform reports it.
  /// The architecture's name, for example "gfx1100". HIP calls it gcnArchName.
  char architecture_name[KESTREL_GPU_NAME_SIZE];
  /// The HIP survey leaves it empty.
  char detection_platform_version[KESTREL_GPU_PLATFORM_VERSION_SIZE];
} kestrel_gpu;

/// "Integrated" or "Discrete"; "Unknown" for every other number. Never fails.
const char* kestrel_gpu_integration_name(int32_t integration_type);

/// "ROCm", "Cuda", "OpenCl", "Metal", "DirectML" or "Vulkan"; "Unknown" for every other number.
/// Never fails.
const char* kestrel_gpu_platform_name(int32_t detection_platform);

/// Lists every GPU that the HIP runtime sees, in ascending device order. All or nothing.
///
/// `*count` receives how many GPUs there are. With `gpus` null (and any `capacity`) that is all.
/// Otherwise `gpus` points to `capacity` records that are `gpus[0].struct_size` bytes each; the
/// first `*count` of them are written, their `struct_size` included. A later call may count other
/// devices than the call that asked for the count.
///
/// Fails with `KESTREL_CAPACITY_TOO_SMALL` if there are more GPUs than records: `*count` is what is
/// needed, and no record is written. Fails with `KESTREL_NO_DEVICES` if the runtime cannot count
/// its devices (zero devices that it did count are a success), with `KESTREL_DEVICE_QUERY_FAILED`
/// and a message that names the step and the device, with `KESTREL_OUT_OF_MEMORY` or with
/// `KESTREL_RUNTIME_FAILED`: `*count` is then 0 and no record is written. Writes nothing to
/// standard error.
///
/// Leaves the last device surveyed as the calling thread's current HIP device.
kestrel_status kestrel_survey_gpus(kestrel_gpu* gpus, size_t capacity, size_t* count,
                                   kestrel_result* result);

/// The free and the total memory of one device in bytes, as the HIP runtime counts allocations.
///
/// Fails with `KESTREL_NO_DEVICES` if the runtime has none or cannot count them, with
/// `KESTREL_INVALID_ARGUMENT` if `device` is negative or not below the number of devices, and with
/// `KESTREL_DEVICE_QUERY_FAILED` and a message that names the step: both figures are then 0. Either
/// pointer may be null, not both. Writes nothing to standard error.
///
/// Makes `device` the calling thread's current HIP device.
kestrel_status kestrel_gpu_memory(int32_t device, uint64_t* free_bytes, uint64_t* total_bytes,
                                  kestrel_result* result);

/// @}

/// \name Both surveys
/// @{

/// Surveys the GPUs and then the processor, also if the first survey fails, as
/// `kestrel_survey_gpus` and `kestrel_survey_cpu` do; `gpu_result` and `cpu_result` receive what
/// each of them reports.
///
/// Returns `KESTREL_OK` if both succeeded, otherwise the status of the first that failed. Neither
/// runs if a pointer or record of either is not valid.
kestrel_status kestrel_survey_hardware(kestrel_gpu* gpus, size_t capacity, size_t* count,
                                       kestrel_result* gpu_result, kestrel_cpu* cpu,
                                       kestrel_result* cpu_result);

/// @}

/// \name Processes
/// @{

/// How busy process `pid` keeps the machine: the processor time that it uses over the next
/// `interval_milliseconds`, in percent of all logical processors (one busy thread on eight
/// processors: 12.5; all of them busy: 100). Not clamped. Any process may be measured, the caller's
/// own included.
///
/// Blocks the calling thread for about that interval; with 0 or less it measures over the few
/// microseconds between its two samples. Ask for 100 ms or more: the processor time of another
/// process advances in steps, of 4 ms on many Linux systems and of 15.6 ms on Windows. On Linux
/// "/proc" must be mounted to measure another process than the caller's; a zombie uses 0 percent,
/// and the id of a thread is not a process.
///
/// Fails with `KESTREL_INVALID_ARGUMENT` if `pid` is below 1, and with
/// `KESTREL_PROCESS_QUERY_FAILED`: `*percent` is then -1.
kestrel_status kestrel_cpu_usage(int32_t pid, int32_t interval_milliseconds, float* percent,
                                 kestrel_result* result);

/// The resident memory (working set) of process `pid` in bytes. On Linux "/proc" must be mounted; a
/// zombie holds 0 bytes, and the id of a thread is not a process.
///
/// Fails with `KESTREL_INVALID_ARGUMENT` if `pid` is below 1, and with
/// `KESTREL_PROCESS_QUERY_FAILED`: `*bytes` is then 0.
kestrel_status kestrel_process_used_ram(int32_t pid, uint64_t* bytes, kestrel_result* result);

/// @}

/// \name Memory
/// @{

/// The machine's physical RAM in bytes, whatever limit this process runs under. Fails with
/// `KESTREL_MEMORY_QUERY_FAILED`: `*bytes` is then 0. Writes nothing to standard error.
kestrel_status kestrel_machine_physical_ram(uint64_t* bytes, kestrel_result* result);

/// The physical RAM in bytes that this process can get without swapping; on Linux no more than
/// the memory limits of its container leave it. Fails as `kestrel_machine_physical_ram` does.
kestrel_status kestrel_available_ram(uint64_t* bytes, kestrel_result* result);

/// The physical RAM less the available RAM, in bytes, both from one query. Fails as
/// `kestrel_machine_physical_ram` does.
kestrel_status kestrel_used_ram(uint64_t* bytes, kestrel_result* result);

/// The total VRAM of all HIP devices in bytes, from each device's properties.
///
/// Fails with `KESTREL_NO_DEVICES` if the runtime has none or cannot count them, and `*bytes` is 0.
/// Fails with `KESTREL_DEVICE_QUERY_FAILED` if at least one device could not be read, and `*bytes`
/// is the sum of the others.
kestrel_status kestrel_machine_physical_vram(uint64_t* bytes, kestrel_result* result);

/// The free VRAM of HIP device 0 alone in bytes, also where there are several; see
/// `kestrel_gpu_memory` for the others. Fails as that call does. Writes nothing to standard error.
/// Makes device 0 the calling thread's current HIP device.
kestrel_status kestrel_available_vram(uint64_t* bytes, kestrel_result* result);

/// Whether an allocation of `bytes` would fail now: `*will_fail` is 1 exactly when it exceeds the
/// available RAM by more than the system can still commit beyond it, with no margin, otherwise 0.
/// Fails with `KESTREL_MEMORY_QUERY_FAILED`: `*will_fail` is then 0.
kestrel_status kestrel_will_fail_to_allocate(uint64_t bytes, int32_t* will_fail,
                                             kestrel_result* result);

/// Values of `kestrel_forecast.outcome`.
enum {
  KESTREL_FORECAST_UNKNOWN = 0,  ///< The operating system did not report its figures.
  KESTREL_FORECAST_FITS = 1,
  KESTREL_FORECAST_FAILS = 2
};

/// Values of `kestrel_forecast.limit`: which figure decides how much RAM is available.
enum {
  KESTREL_LIMIT_UNKNOWN = 0,
  KESTREL_LIMIT_MACHINE = 1,  ///< The machine's own free RAM.
  KESTREL_LIMIT_GROUP = 2,    ///< The limit of a memory group (Linux), named by `limit_group`.
  KESTREL_LIMIT_COMMIT = 3    ///< The commit limit (Linux without overcommit).
};

/// Bytes of `kestrel_forecast.limit_group`, its NUL included.
#define KESTREL_PATH_SIZE 1024

/// The forecast of an allocation.
typedef struct kestrel_forecast {
  size_t struct_size;    ///< Set by the caller: `sizeof(kestrel_forecast)`.
  int32_t outcome;       ///< A `KESTREL_FORECAST_` value.
  int32_t limit;         ///< A `KESTREL_LIMIT_` value.
  uint64_t spare;        ///< Bytes that can still be allocated after it, if it fits.
  uint64_t missing;      ///< Bytes by which it is too large, if it fails.
  uint64_t available;    ///< Bytes of RAM that this process can get without swapping.
  uint64_t committable;  ///< Bytes that it can get beyond those.
  /// The directory of the memory group whose limit decides; empty unless `limit` is
  /// `KESTREL_LIMIT_GROUP`.
  char limit_group[KESTREL_PATH_SIZE];
} kestrel_forecast;

/// Forecasts an allocation of `bytes` by the rule of `kestrel_will_fail_to_allocate`, with the
/// figures that it was decided by. Fails with `KESTREL_MEMORY_QUERY_FAILED`: the outcome is then
/// unknown, and every figure 0. Writes nothing to standard error.
kestrel_status kestrel_memory_forecast(uint64_t bytes, kestrel_forecast* forecast,
                                       kestrel_result* result);

/// @}

#ifdef __cplusplus
}
#endif

#endif
