// The same calls through the C interface.

#include <kestrelcore.h>

#include <cstdint>

#include "bench/comparison.h"
#include "tests/c/records.h"

namespace kestrel::bench {

namespace {

using tests::NewRecord;

kestrel_result result = NewRecord<kestrel_result>();

std::int32_t SurveyCpu() {
  auto cpu = NewRecord<kestrel_cpu>();
  return kestrel_survey_cpu(&cpu, &result);
}

std::uint64_t MachinePhysicalRam() {
  std::uint64_t bytes = 0;
  kestrel_machine_physical_ram(&bytes, &result);
  return bytes;
}

std::uint64_t AvailableRam() {
  std::uint64_t bytes = 0;
  kestrel_available_ram(&bytes, &result);
  return bytes;
}

std::int32_t WillFail() {
  std::int32_t will_fail = 0;
  kestrel_will_fail_to_allocate(1 << 20, &will_fail, &result);
  return will_fail;
}

std::uint64_t ProcessUsedRam(int process) {
  std::uint64_t bytes = 0;
  kestrel_process_used_ram(process, &bytes, &result);
  return bytes;
}

float CpuUsage(int process) {
  float percent = 0;
  kestrel_cpu_usage(process, 0, &percent, &result);
  return percent;
}

const char kWay[] = "C interface";

const bool added[] = {
    Compare("SurveyCpu", kWay, SurveyCpu),
    Compare("getMachinePhysicalRAM", kWay, MachinePhysicalRam),
    Compare("getAvailableRAM", kWay, AvailableRam),
    Compare("willFailToAllocate", kWay, WillFail),
    ComparePerProcess("getProcessUsedRAM", kWay, ProcessUsedRam),
    ComparePerProcess("GetCpuUsage", kWay, CpuUsage),
};

}  // namespace

}  // namespace kestrel::bench
