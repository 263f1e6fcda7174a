/* Whether a model of some size fits, and where: does_it_fit GIB */

#include <kestrelcore.h>
#include <stdio.h>
#include <stdlib.h>

static const uint64_t kGiB = (uint64_t)1 << 30;
static const uint64_t kMaxGib = 1000000000; /* in bytes less than 2^63 */

/* Whether the first GPU has that much free memory; prints the answer if it has. */
static int FitsOnGpu(uint64_t gib) {
  kestrel_gpu gpus[16];
  size_t count = 0;
  uint64_t free_bytes = 0;
  gpus[0].struct_size = sizeof gpus[0];
  if (kestrel_survey_gpus(gpus, 16, &count, NULL) != KESTREL_OK || count == 0 ||
      kestrel_available_vram(&free_bytes, NULL) != KESTREL_OK || free_bytes < gib * kGiB) {
    return 0;
  }
  printf("%u GiB fit on %s, which has %u GiB free.\n", (unsigned)gib, gpus[0].name,
         (unsigned)(free_bytes / kGiB));
  return 1;
}

int main(int argc, char** argv) {
  const uint64_t gib = argc > 1 ? strtoull(argv[1], NULL, 10) : 8;
  int32_t will_fail = 0;
  kestrel_result result;
  result.struct_size = sizeof result;
  if (gib < 1 || gib > kMaxGib) {
    fprintf(stderr, "GIB must be a number from 1 to %u.\n", (unsigned)kMaxGib);
    return 2;
  }
  if (FitsOnGpu(gib)) {
    return 0;
  }
  if (kestrel_will_fail_to_allocate(gib * kGiB, &will_fail, &result) != KESTREL_OK) {
    fprintf(stderr, "%s\n", result.message);
    return 1;
  }
  printf("%u GiB %s.\n", (unsigned)gib, will_fail ? "do not fit" : "fit into RAM alone");
  return 0;
}
