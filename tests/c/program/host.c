/* A host in C99 that makes every call and prints what each returns. Compiled as C++, too. Figures
   of the machine that runs the test are only compared with each other. */

#include <inttypes.h>
#include <kestrelcore.h>
#include <stdio.h>
#include <string.h>

enum { kMostGpus = 16 };

static kestrel_result result;

static void Report(const char* call, kestrel_status status) {
  printf("%s: %s%s%s\n", call, kestrel_status_name(status), result.message[0] != '\0' ? ": " : "",
         result.message);
}

/* A figure of the simulated machine. */
static void ReportFigure(const char* call, kestrel_status status, uint64_t figure) {
  Report(call, status);
  printf("  %" PRIu64 "\n", figure);
}

/* A figure of the real machine. */
static void ReportRelation(const char* call, kestrel_status status, int holds) {
  Report(call, status);
  printf("  %s\n", holds ? "as expected" : "not as expected");
}

static void SurveyTheProcessor(void) {
  kestrel_cpu cpu;
  memset(&cpu, 0, sizeof cpu);
  cpu.struct_size = sizeof cpu;
  Report("kestrel_survey_cpu", kestrel_survey_cpu(&cpu, &result));
  printf("  %s: %s\n", kestrel_cpu_architecture_name(cpu.architecture),
         kestrel_cpu_extension_names(cpu.extensions));
}

static void PrintGpu(const kestrel_gpu* gpu) {
  printf("  %" PRId32 ": %s, %s, %s, %s, %" PRIu64 " bytes\n", gpu->device_id, gpu->name,
         gpu->architecture_name, kestrel_gpu_integration_name(gpu->integration_type),
         kestrel_gpu_platform_name(gpu->detection_platform), gpu->total_memory);
}

static void SurveyTheGpus(void) {
  kestrel_gpu gpus[kMostGpus];
  size_t count = 0;
  size_t i = 0;
  Report("kestrel_survey_gpus", kestrel_survey_gpus(NULL, 0, &count, &result));
  printf("  %u\n", (unsigned)count);
  gpus[0].struct_size = sizeof gpus[0];
  Report("kestrel_survey_gpus", kestrel_survey_gpus(gpus, kMostGpus, &count, &result));
  for (i = 0; i < count; ++i) {
    PrintGpu(&gpus[i]);
  }
  if (count > 0) {
    Report("kestrel_survey_gpus", kestrel_survey_gpus(gpus, count - 1, &count, &result));
    printf("  %u\n", (unsigned)count);
  }
}

static void SurveyBoth(void) {
  kestrel_result cpu_result;
  kestrel_cpu cpu;
  size_t count = 0;
  cpu_result.struct_size = sizeof cpu_result;
  cpu.struct_size = sizeof cpu;
  Report("kestrel_survey_hardware",
         kestrel_survey_hardware(NULL, 0, &count, &result, &cpu, &cpu_result));
  printf("  %u, %s\n", (unsigned)count, kestrel_status_name(cpu_result.status));
}

static void MeasureVram(void) {
  uint64_t bytes = 0;
  uint64_t total = 0;
  kestrel_status status = kestrel_machine_physical_vram(&bytes, &result);
  ReportFigure("kestrel_machine_physical_vram", status, bytes);
  status = kestrel_available_vram(&bytes, &result);
  ReportFigure("kestrel_available_vram", status, bytes);
  status = kestrel_gpu_memory(1, &bytes, &total, &result);
  ReportFigure("kestrel_gpu_memory", status, bytes);
  printf("  %" PRIu64 "\n", total);
}

static void MeasureRam(void) {
  uint64_t physical = 0;
  uint64_t bytes = 0;
  kestrel_status status = kestrel_machine_physical_ram(&physical, &result);
  ReportRelation("kestrel_machine_physical_ram", status, physical > 0);
  status = kestrel_available_ram(&bytes, &result);
  ReportRelation("kestrel_available_ram", status, bytes <= physical);
  status = kestrel_used_ram(&bytes, &result);
  ReportRelation("kestrel_used_ram", status, bytes <= physical);
}

static void ForecastAllocations(void) {
  kestrel_forecast forecast;
  int32_t will_fail = 77;
  kestrel_status status = kestrel_will_fail_to_allocate(0, &will_fail, &result);
  ReportRelation("kestrel_will_fail_to_allocate", status, will_fail == 0);
  status = kestrel_will_fail_to_allocate(UINT64_MAX, &will_fail, &result);
  ReportRelation("kestrel_will_fail_to_allocate", status, will_fail == 1);
  forecast.struct_size = sizeof forecast;
  status = kestrel_memory_forecast(UINT64_MAX, &forecast, &result);
  ReportRelation("kestrel_memory_forecast", status,
                 forecast.outcome == KESTREL_FORECAST_FAILS && forecast.spare == 0 &&
                     forecast.missing == UINT64_MAX - forecast.available - forecast.committable &&
                     forecast.limit != KESTREL_LIMIT_UNKNOWN);
}

static void MeasureProcesses(void) {
  float percent = 77;
  uint64_t bytes = 0;
  kestrel_status status = kestrel_cpu_usage(-1, 0, &percent, &result);
  ReportRelation("kestrel_cpu_usage", status, percent < 0);
  status = kestrel_process_used_ram(-1, &bytes, &result);
  ReportRelation("kestrel_process_used_ram", status, bytes == 0);
}

int main(void) {
  memset(&result, 0, sizeof result);
  result.struct_size = sizeof result;
  printf("%s\n", kestrel_version() == KESTREL_VERSION ? "same version" : "another version");
  SurveyTheProcessor();
  SurveyTheGpus();
  SurveyBoth();
  MeasureVram();
  MeasureRam();
  ForecastAllocations();
  MeasureProcesses();
  return 0;
}
