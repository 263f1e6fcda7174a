/* A host that needs no C runtime: its exit status says which call did not answer as expected. */

#include <kestrelcore.h>

__declspec(dllimport) void __stdcall ExitProcess(unsigned status);

static kestrel_gpu gpus[2];
static kestrel_cpu cpu;
static kestrel_forecast forecast;

static unsigned FirstFailure(void) {
  size_t count = 0;
  uint64_t bytes = 0;
  gpus[0].struct_size = sizeof gpus[0];
  cpu.struct_size = sizeof cpu;
  forecast.struct_size = sizeof forecast;
  if (kestrel_version() != KESTREL_VERSION) {
    return 1;
  }
  if (kestrel_survey_cpu(&cpu, NULL) != KESTREL_OK ||
      (cpu.extensions & KESTREL_CPU_EXTENSION_AVX2) == 0) {
    return 2;
  }
  if (kestrel_survey_gpus(gpus, 2, &count, NULL) != KESTREL_OK || count != 2 ||
      gpus[1].name[0] != 'A') {
    return 3;
  }
  if (kestrel_machine_physical_ram(&bytes, NULL) != KESTREL_OK || bytes == 0) {
    return 4;
  }
  if (kestrel_memory_forecast(0, &forecast, NULL) != KESTREL_OK ||
      forecast.outcome != KESTREL_FORECAST_FITS) {
    return 5;
  }
  return 0;
}

void start(void) { ExitProcess(FirstFailure()); }
