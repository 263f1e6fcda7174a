// Calls the C interface over a GPU runtime that throws while the process can allocate nothing. An
// exception that left a call, or needed memory to be caught, would end this program.

#include <kestrelcore.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" {
// glibc's allocator under its other names.
void* __libc_malloc(std::size_t size);                     // NOLINT
void* __libc_calloc(std::size_t count, std::size_t size);  // NOLINT
void* __libc_realloc(void* memory, std::size_t size);      // NOLINT
}

namespace {

bool is_memory_exhausted = false;
int failures = 0;
kestrel_result result{};

void Expect(const char* call, kestrel_status status, kestrel_status expected) {
  if (status != expected || result.status != expected) {
    static_cast<void>(std::fprintf(stdout, "%s: %s instead of %s\n", call,
                                   kestrel_status_name(status), kestrel_status_name(expected)));
    ++failures;
  }
}

// A survey that fails leaves an unknown processor.
void ExpectRecord(const kestrel_cpu& cpu, bool known) {
  const bool unknown = cpu.architecture == KESTREL_CPU_ARCHITECTURE_UNKNOWN && cpu.extensions == 0;
  if (known == unknown) {
    static_cast<void>(std::fprintf(stdout, "kestrel_survey_cpu: a wrong record\n"));
    ++failures;
  }
}

struct Statuses {
  kestrel_status cpu;
  kestrel_status gpus;
  kestrel_status vram;
};

void CallAll(Statuses expected) {
  std::uint64_t bytes = 0;
  std::size_t count = 0;
  kestrel_gpu gpu{};
  gpu.struct_size = sizeof(gpu);
  kestrel_cpu cpu{};
  cpu.struct_size = sizeof(cpu);
  cpu.extensions = 55;
  Expect("kestrel_survey_cpu", kestrel_survey_cpu(&cpu, &result), expected.cpu);
  ExpectRecord(cpu, expected.cpu == KESTREL_OK);
  Expect("kestrel_survey_gpus", kestrel_survey_gpus(&gpu, 1, &count, &result), expected.gpus);
  Expect("kestrel_gpu_memory", kestrel_gpu_memory(0, &bytes, nullptr, &result), expected.vram);
  Expect("kestrel_available_vram", kestrel_available_vram(&bytes, &result), expected.vram);
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) { return is_memory_exhausted ? nullptr : __libc_malloc(size); }

void* calloc(std::size_t count, std::size_t size) {
  return is_memory_exhausted ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
  return is_memory_exhausted ? nullptr : __libc_realloc(memory, size);
}

}  // extern "C"

int main() {
  result.struct_size = sizeof(result);
  CallAll({KESTREL_OK, KESTREL_OK, KESTREL_OK});  // loads the runtime, which needs memory

  setenv("KESTREL_THROW", "bad_alloc", 1);
  is_memory_exhausted = true;
  CallAll({KESTREL_OUT_OF_MEMORY, KESTREL_OUT_OF_MEMORY, KESTREL_NO_DEVICES});
  is_memory_exhausted = false;

  setenv("KESTREL_THROW", "number", 1);
  is_memory_exhausted = true;
  CallAll({KESTREL_OUT_OF_MEMORY, KESTREL_RUNTIME_FAILED, KESTREL_NO_DEVICES});
  is_memory_exhausted = false;

  setenv("KESTREL_THROW", "nothing", 1);
  is_memory_exhausted = true;  // the surveys cannot allocate their lists
  CallAll({KESTREL_OUT_OF_MEMORY, KESTREL_OUT_OF_MEMORY, KESTREL_OK});
  is_memory_exhausted = false;
  CallAll({KESTREL_OK, KESTREL_OK, KESTREL_OK});
  return failures;
}
