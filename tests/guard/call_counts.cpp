// Makes every public call over a recorded machine, for script/guard:
//
//   call_counts MACHINE          prints the system calls and heap allocations of each call
//   call_counts MACHINE REPEATS  makes each call so often, and has callgrind dump its instructions
//
// MACHINE is the folder of the recorded files.

#include <gnu/libc-version.h>
#include <kestrelcore.h>
#include <valgrind/callgrind.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>

#include "bench/trace.h"
#include "system/hardware_survey.h"
#include "tests/c/records.h"
#include "tests/guard/recorded_machine.h"
#include "utils/cpu_usage.h"
#include "utils/memory_observer.h"

namespace kestrel::tests {
namespace {

using kestrel_utils::GetCpuUsage;
using kestrel_utils::MemoryObserver;

const MemoryObserver observer;

kestrel_result result = NewRecord<kestrel_result>();
kestrel_cpu cpu = NewRecord<kestrel_cpu>();
std::array<kestrel_gpu, 4> gpus = {NewRecord<kestrel_gpu>()};
kestrel_forecast forecast = NewRecord<kestrel_forecast>();
std::size_t count = 0;
std::uint64_t bytes = 0;
std::uint64_t total_bytes = 0;
float percent = 0;
std::int32_t will_fail = 0;

struct Call {
  const char* name;
  bool (*make)();  // returns whether it succeeded
  Place place = Place::kOutsideOfContainers;
};

const Call kCalls[] = {
    {"SurveyCpu", [] { return system::SurveyCpu().first.message.empty(); }},
    {"SurveyGpus", [] { return system::SurveyGpus().second.size() == 4; }},
    {"SurveyHardware", [] { return system::SurveyHardware().gpuSurvey.second.size() == 4; }},
    {"GetCpuUsage", [] { return GetCpuUsage(kOwnPid, 0) >= 0; }},
    {"GetCpuUsage-of-other", [] { return GetCpuUsage(kOtherPid, 0) >= 0; }},
    {"getMachinePhysicalRAM", [] { return MemoryObserver::getMachinePhysicalRAM() > 0; }},
    {"getAvailableRAM", [] { return observer.getAvailableRAM() > 0; }},
    {"getAvailableRAM-in-container", [] { return observer.getAvailableRAM() > 0; },
     Place::kContainer},
    {"getUsedRAM", [] { return observer.getUsedRAM() > 0; }},
    {"getProcessUsedRAM", [] { return MemoryObserver::getProcessUsedRAM(kOwnPid) > 0; }},
    {"getProcessUsedRAM-of-other", [] { return MemoryObserver::getProcessUsedRAM(kOtherPid) > 0; }},
    {"getMachinePhysicalVRAM", [] { return MemoryObserver::getMachinePhysicalVRAM() > 0; }},
    {"getAvailableVRAM", [] { return observer.getAvailableVRAM() > 0; }},
    {"willFailToAllocate", [] { return observer.willFailToAllocate(-1); }},
    {"kestrel_survey_cpu", [] { return kestrel_survey_cpu(&cpu, &result) == KESTREL_OK; }},
    {"kestrel_survey_gpus",
     [] { return kestrel_survey_gpus(gpus.data(), 4, &count, &result) == KESTREL_OK; }},
    {"kestrel_survey_hardware",
     [] {
       return kestrel_survey_hardware(gpus.data(), 4, &count, &result, &cpu, &result) == KESTREL_OK;
     }},
    {"kestrel_gpu_memory",
     [] { return kestrel_gpu_memory(3, &bytes, &total_bytes, &result) == KESTREL_OK; }},
    {"kestrel_cpu_usage",
     [] { return kestrel_cpu_usage(kOwnPid, 0, &percent, &result) == KESTREL_OK; }},
    {"kestrel_process_used_ram",
     [] { return kestrel_process_used_ram(kOwnPid, &bytes, &result) == KESTREL_OK; }},
    {"kestrel_machine_physical_ram",
     [] { return kestrel_machine_physical_ram(&bytes, &result) == KESTREL_OK; }},
    {"kestrel_available_ram", [] { return kestrel_available_ram(&bytes, &result) == KESTREL_OK; }},
    {"kestrel_used_ram", [] { return kestrel_used_ram(&bytes, &result) == KESTREL_OK; }},
    {"kestrel_machine_physical_vram",
     [] { return kestrel_machine_physical_vram(&bytes, &result) == KESTREL_OK; }},
    {"kestrel_available_vram",
     [] { return kestrel_available_vram(&bytes, &result) == KESTREL_OK; }},
    {"kestrel_will_fail_to_allocate",
     [] { return kestrel_will_fail_to_allocate(1, &will_fail, &result) == KESTREL_OK; }},
    {"kestrel_memory_forecast",
     [] { return kestrel_memory_forecast(1, &forecast, &result) == KESTREL_OK; }},
};

// The first call may prepare what later ones find, such as the C library's locks.
void Prepare(const Call& call) {
  SetPlace(call.place);
  if (!call.make()) {
    std::cerr << "call_counts: " << call.name << " failed\n";
    std::exit(1);
  }
}

void PrintCounts() {
  for (const Call& call : kCalls) {
    const bench::Trace trace = bench::TraceCall(
        [&call, prepared = false]() mutable {
          prepared ? static_cast<void>(call.make()) : Prepare(call);
          prepared = true;
        },
        /*warm_up=*/true);
    std::cout << call.name << " " << trace.system_calls << " " << trace.allocations << "\n";
  }
}

void DumpInstructions(int repeats) {
  for (const Call& call : kCalls) {
    Prepare(call);
    CALLGRIND_ZERO_STATS;
    for (int repeat = 0; repeat < repeats; ++repeat) {
      call.make();
    }
    CALLGRIND_DUMP_STATS_AT(call.name);
  }
}

}  // namespace
}  // namespace kestrel::tests

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << "usage: call_counts MACHINE [REPEATS]\n";
    return 2;
  }
  kestrel::tests::UseRecordedMachine(argv[1]);
  if (argc > 2) {
    kestrel::tests::DumpInstructions(std::atoi(argv[2]));
    return 0;
  }
  // Which instructions a call takes depends on these.
  std::cout << "build " KESTRELCORE_BUILD ", glibc " << gnu_get_libc_version() << "\n";
  kestrel::tests::PrintCounts();
}
