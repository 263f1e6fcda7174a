/* Makes every call on a processor without AVX2: names and versions are right, every other call
   returns KESTREL_PROCESSOR_UNSUPPORTED and writes its result alone. */

#include <kestrelcore.h>
#include <stdio.h>
#include <string.h>

static int failures = 0;
static kestrel_result result;

static void Expect(const char* what, int holds) {
  if (!holds) {
    printf("%s: not as expected\n", what);
    ++failures;
  }
}

static void ExpectUnsupported(const char* call, kestrel_status status) {
  Expect(call, status == KESTREL_PROCESSOR_UNSUPPORTED && result.status == status &&
                   strcmp(result.message,
                          "The processor lacks AVX2, or the operating system has "
                          "not enabled it") == 0);
  result.status = KESTREL_OK;
}

static void CallSurveys(void) {
  kestrel_result cpu_result = result;
  kestrel_gpu gpu;
  kestrel_cpu cpu;
  size_t count = 77;
  gpu.struct_size = sizeof gpu;
  gpu.device_id = 77;
  cpu.struct_size = sizeof cpu;
  cpu.architecture = 77;
  ExpectUnsupported("kestrel_survey_cpu", kestrel_survey_cpu(&cpu, &result));
  ExpectUnsupported("kestrel_survey_gpus", kestrel_survey_gpus(&gpu, 1, &count, &result));
  ExpectUnsupported("kestrel_survey_hardware",
                    kestrel_survey_hardware(&gpu, 1, &count, &result, &cpu, &cpu_result));
  Expect("outputs", cpu.architecture == 77 && gpu.device_id == 77 && count == 77 &&
                        cpu_result.status == KESTREL_PROCESSOR_UNSUPPORTED);
}

static void CallMeters(void) {
  kestrel_forecast forecast;
  uint64_t bytes = 77;
  int32_t will_fail = 77;
  float percent = 77;
  forecast.struct_size = sizeof forecast;
  forecast.outcome = 77;
  ExpectUnsupported("kestrel_gpu_memory", kestrel_gpu_memory(0, &bytes, &bytes, &result));
  ExpectUnsupported("kestrel_cpu_usage", kestrel_cpu_usage(1, 0, &percent, &result));
  ExpectUnsupported("kestrel_process_used_ram", kestrel_process_used_ram(1, &bytes, &result));
  ExpectUnsupported("kestrel_machine_physical_ram", kestrel_machine_physical_ram(&bytes, &result));
  ExpectUnsupported("kestrel_available_ram", kestrel_available_ram(&bytes, &result));
  ExpectUnsupported("kestrel_used_ram", kestrel_used_ram(&bytes, &result));
  ExpectUnsupported("kestrel_machine_physical_vram",
                    kestrel_machine_physical_vram(&bytes, &result));
  ExpectUnsupported("kestrel_available_vram", kestrel_available_vram(&bytes, &result));
  ExpectUnsupported("kestrel_will_fail_to_allocate",
                    kestrel_will_fail_to_allocate(1, &will_fail, &result));
  ExpectUnsupported("kestrel_memory_forecast", kestrel_memory_forecast(1, &forecast, &result));
  Expect("outputs", bytes == 77 && will_fail == 77 && percent > 76 && forecast.outcome == 77);
}

static void CallNames(void) {
  Expect("kestrel_version", kestrel_version() == KESTREL_VERSION);
  Expect("kestrel_version_text", strchr(kestrel_version_text(), '.') != NULL);
  Expect("kestrel_status_name", strcmp(kestrel_status_name(KESTREL_OK), "KESTREL_OK") == 0);
  Expect("kestrel_cpu_architecture_name", strcmp(kestrel_cpu_architecture_name(1), "ARM64") == 0);
  Expect("kestrel_cpu_extension_name", strcmp(kestrel_cpu_extension_name(2), "AVX2") == 0);
  Expect("kestrel_cpu_extension_names", strcmp(kestrel_cpu_extension_names(3), "AVX, AVX2") == 0);
  Expect("kestrel_gpu_integration_name", strcmp(kestrel_gpu_integration_name(2), "Discrete") == 0);
  Expect("kestrel_gpu_platform_name", strcmp(kestrel_gpu_platform_name(1), "ROCm") == 0);
}

int main(void) {
  memset(&result, 0, sizeof result);
  result.struct_size = sizeof result;
  CallSurveys();
  CallMeters();
  CallNames();
  if (failures == 0) {
    printf("Every call is refused.\n");
  }
  return failures;
}
