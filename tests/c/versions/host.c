/* A host whose header has other records than the library's: with a later header (KESTREL_LATER),
   every record has one more field at its end. Every record is followed by guard bytes. */

#include <kestrelcore.h>
#include <stdio.h>
#include <string.h>

enum { kGuardSize = 64, kGuard = 0xAA };

#ifdef KESTREL_LATER
#define PREPARE(record) ((record).later = 99)
#define LATER_IS_ZERO(record) ((record).later == 0)
#else
#define PREPARE(record) ((void)(record))
#define LATER_IS_ZERO(record) 1
#endif

static int failures = 0;

static void Expect(const char* what, int holds) {
  if (!holds) {
    printf("%s: not as expected\n", what);
    ++failures;
  }
}

static int IsUntouched(const unsigned char* guard) {
  int i = 0;
  while (i < kGuardSize && guard[i] == kGuard) {
    ++i;
  }
  return i == kGuardSize;
}

static void SurveyTheProcessor(void) {
  struct {
    kestrel_cpu cpu;
    unsigned char cpu_guard[kGuardSize];
    kestrel_result result;
    unsigned char result_guard[kGuardSize];
  } host;
  memset(&host, kGuard, sizeof host);
  host.cpu.struct_size = sizeof host.cpu;
  host.result.struct_size = sizeof host.result;
  PREPARE(host.cpu);
  PREPARE(host.result);
  Expect("kestrel_survey_cpu", kestrel_survey_cpu(&host.cpu, &host.result) == KESTREL_OK);
  Expect("cpu", (host.cpu.extensions & KESTREL_CPU_EXTENSION_AVX2) != 0);
  Expect("later field of cpu", LATER_IS_ZERO(host.cpu));
  Expect("bytes after cpu", IsUntouched(host.cpu_guard));
  Expect("result", host.result.status == KESTREL_OK && host.result.message[0] == '\0');
  Expect("later field of result", LATER_IS_ZERO(host.result));
  Expect("bytes after result", IsUntouched(host.result_guard));
}

static void SurveyTheGpus(void) {
  struct {
    kestrel_gpu gpus[2];
    unsigned char guard[kGuardSize];
  } host;
  size_t count = 0;
  memset(&host, kGuard, sizeof host);
  host.gpus[0].struct_size = sizeof host.gpus[0];
  PREPARE(host.gpus[1]);
  Expect("kestrel_survey_gpus", kestrel_survey_gpus(host.gpus, 2, &count, NULL) == KESTREL_OK);
  Expect("count", count == 2);
  Expect("first GPU", strcmp(host.gpus[0].name, "AMD Radeon RX 7600") == 0);
  Expect("second GPU", strcmp(host.gpus[1].name, "AMD Radeon 780M") == 0);
  Expect("last field of the second GPU", host.gpus[1].detection_platform_version[0] == '\0');
  Expect("later field of the second GPU", LATER_IS_ZERO(host.gpus[1]));
  Expect("size of the second GPU", host.gpus[1].struct_size == sizeof host.gpus[1]);
  Expect("bytes after the GPUs", IsUntouched(host.guard));
}

static void ForecastAnAllocation(void) {
  struct {
    kestrel_forecast forecast;
    unsigned char guard[kGuardSize];
  } host;
  memset(&host, kGuard, sizeof host);
  host.forecast.struct_size = sizeof host.forecast;
  PREPARE(host.forecast);
  Expect("kestrel_memory_forecast", kestrel_memory_forecast(0, &host.forecast, NULL) == KESTREL_OK);
  Expect("forecast", host.forecast.outcome == KESTREL_FORECAST_FITS);
  Expect("later field of the forecast", LATER_IS_ZERO(host.forecast));
  Expect("bytes after the forecast", IsUntouched(host.guard));
}

int main(void) {
  SurveyTheProcessor();
  SurveyTheGpus();
  ForecastAnAllocation();
  return failures;
}
