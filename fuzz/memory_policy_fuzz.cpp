// ToMemoryStatus over arbitrary figures: no figure exceeds what limits it, and more of any figure
// never leaves less memory. The input is the figures.

#include <fuzzer/FuzzedDataProvider.h>

#include "fuzz/property.h"
#include "platform/linux/memory_policy.h"

namespace kestrel::fuzz {

namespace {

void RequireNoLess(const platform::MemoryStatus& status, const platform::MemoryStatus& with_more) {
  Require(with_more.available_physical >= status.available_physical,
          "more of a figure leaves no less RAM available");
  Require(with_more.available_physical > status.available_physical ||
              with_more.committable >= status.committable,
          "more of a figure leaves no less to commit");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const auto figure = [&] { return input.ConsumeIntegral<std::uint64_t>() >> (size % 64); };
  platform::MemorySettings settings;
  settings.strict_overcommit = input.ConsumeBool();
  settings.swaps = input.ConsumeBool();
  settings.commit_reserve = figure();
  const platform::Meminfo meminfo{figure(), figure(), figure(), figure(), figure()};
  platform::CgroupRoom room;
  room.physical = figure();
  room.swap = figure();
  room.memory_and_swap = figure();

  const auto status = ToMemoryStatus(meminfo, settings, room);
  Require(status.total_physical == meminfo.total, "the total is the machine's");
  Require(status.available_physical <= std::min(meminfo.available, room.Memory()),
          "no more is available than the machine and the groups leave");
  Require(status.committable <= std::min(meminfo.swap_free, room.swap),
          "no more can be committed beyond it than the swap holds");
  Require(settings.swaps || status.committable == 0, "without swap nothing goes beyond the RAM");
  Require(status.committable <= room.memory_and_swap - status.available_physical,
          "both stay within the limit of memory and swap");
  Require(!settings.strict_overcommit ||
              status.committable <= meminfo.commit_limit - status.available_physical,
          "both stay within the commit limit");
  Require(status.limit != platform::MemoryLimit::kMachine ||
              status.available_physical == meminfo.available,
          "the machine decides only with its own figure");

  auto more = meminfo;
  more.available += more.available < UINT64_MAX ? 1 : 0;
  RequireNoLess(status, ToMemoryStatus(more, settings, room));
  more = meminfo;
  more.swap_free += more.swap_free < UINT64_MAX ? 1 : 0;
  RequireNoLess(status, ToMemoryStatus(more, settings, room));
  auto wider = room;
  wider.memory_and_swap += wider.memory_and_swap < UINT64_MAX ? 1 : 0;
  RequireNoLess(status, ToMemoryStatus(meminfo, settings, wider));
  return 0;
}

}  // namespace kestrel::fuzz
