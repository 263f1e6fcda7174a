/* A host that is not linked with the library: it loads, asks and unloads it, several times. */

#include <dlfcn.h>
#include <kestrelcore.h>
#include <stdio.h>

typedef kestrel_status SurveyGpus(kestrel_gpu*, size_t, size_t*, kestrel_result*);
typedef kestrel_status SurveyCpu(kestrel_cpu*, kestrel_result*);
typedef const char* ExtensionNames(uint32_t);

/* Each function with the address that POSIX returns as a pointer to data. */
static union {
  void* address;
  SurveyGpus* call;
} survey_gpus;
static union {
  void* address;
  SurveyCpu* call;
} survey_cpu;
static union {
  void* address;
  ExtensionNames* call;
} extension_names;

static kestrel_gpu gpus[2];
static kestrel_cpu cpu;

/* Returns 0 if a call fails or finds other than two GPUs. */
static int Ask(void* library) {
  size_t count = 0;
  survey_gpus.address = dlsym(library, "kestrel_survey_gpus");
  survey_cpu.address = dlsym(library, "kestrel_survey_cpu");
  extension_names.address = dlsym(library, "kestrel_cpu_extension_names");
  if (!survey_gpus.address || !survey_cpu.address || !extension_names.address) {
    return 0;
  }
  gpus[0].struct_size = sizeof gpus[0];
  cpu.struct_size = sizeof cpu;
  if (survey_gpus.call(gpus, 2, &count, NULL) != KESTREL_OK || count != 2 ||
      survey_cpu.call(&cpu, NULL) != KESTREL_OK) {
    return 0;
  }
  printf("%s, %s; %s\n", gpus[0].name, gpus[1].name, extension_names.call(cpu.extensions));
  return 1;
}

int main(void) {
  int round;
  for (round = 0; round < 10; ++round) {
    void* const library = dlopen("libkestrelcore-c.so.0", RTLD_NOW | RTLD_LOCAL);
    if (!library) {
      fprintf(stderr, "%s\n", dlerror());
      return 1;
    }
    if (!Ask(library) || dlclose(library) != 0) {
      return 1;
    }
  }
  return dlopen("libkestrelcore-c.so.0", RTLD_NOW | RTLD_NOLOAD) == NULL ? 0 : 1;
}
