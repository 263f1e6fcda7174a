#include "tests/fakes/platform_fake.h"

#include <algorithm>

namespace kestrel::tests {

void PlatformFake::Fail(const std::string& operation, int from_call) {
  failing_from_[operation] = from_call;
}

bool PlatformFake::Succeeds(const std::string& operation, const std::string& arguments) {
  calls.push_back(operation + "(" + arguments + ")");
  const int count = ++call_counts_[operation];
  const auto failure = failing_from_.find(operation);
  return failure == failing_from_.end() || count < failure->second;
}

PlatformFake& Platform() {
  static PlatformFake fake;
  return fake;
}

}  // namespace kestrel::tests

namespace kestrel::platform {

using tests::Platform;

std::uint16_t ProcessorArchitecture() noexcept {
  Platform().Succeeds("ProcessorArchitecture");
  return Platform().architecture;
}

CpuidRegisters Cpuid(std::uint32_t leaf, std::uint32_t subleaf) noexcept {
  Platform().Succeeds("Cpuid", std::to_string(leaf) + ", " + std::to_string(subleaf));
  const auto found = Platform().cpuid.find({leaf, subleaf});
  return found == Platform().cpuid.end() ? CpuidRegisters{} : found->second;
}

std::optional<std::uint32_t> LogicalProcessorCount() noexcept {
  if (!Platform().Succeeds("LogicalProcessorCount")) {
    return std::nullopt;
  }
  return Platform().logical_processors;
}

std::optional<MemoryStatus> QueryMemoryStatus() noexcept {
  if (!Platform().Succeeds("QueryMemoryStatus")) {
    return std::nullopt;
  }
  return Platform().memory;
}

std::optional<MemoryStatus> QueryMemoryLimit(GroupDirectory& directory) noexcept {
  const bool succeeds = Platform().Succeeds("QueryMemoryLimit");
  const std::string text = succeeds ? Platform().group_directory : "";
  directory[text.copy(directory.data(), directory.size() - 1)] = '\0';
  return succeeds ? std::optional(Platform().memory) : std::nullopt;
}

std::optional<std::uint64_t> QueryTotalPhysicalMemory() noexcept {
  if (!Platform().Succeeds("QueryTotalPhysicalMemory")) {
    return std::nullopt;
  }
  return Platform().memory.total_physical;
}

std::optional<Process> Process::Open(int pid, ProcessRights rights) noexcept {
  const std::string wanted = rights == ProcessRights::kTimes ? "times" : "memory";
  const bool succeeds = Platform().Succeeds("Process::Open", std::to_string(pid) + ", " + wanted);
  if (!succeeds || pid < 1 || pid == Platform().dead_pid) {
    return std::nullopt;
  }
  ++Platform().open_handles;
  return Process(pid, 1);
}

void Process::Close(std::intptr_t /*handle*/) noexcept {
  Platform().Succeeds("Process::Close");
  --Platform().open_handles;
}

std::optional<ProcessTimes> Process::Times() const noexcept {
  auto& fake = Platform();
  if (!fake.Succeeds("Process::Times")) {
    return std::nullopt;
  }
  const ProcessTimes sample = fake.times.front();
  if (fake.times.size() > 1) {
    fake.times.erase(fake.times.begin());
  } else {
    fake.times.front().user += fake.times_step;
  }
  return sample;
}

std::optional<std::uint64_t> Process::ResidentBytes() const noexcept {
  if (!Platform().Succeeds("Process::ResidentBytes")) {
    return std::nullopt;
  }
  return Platform().resident_bytes;
}

std::int64_t SteadyClockNanoseconds() noexcept {
  auto& fake = Platform();
  fake.Succeeds("SteadyClock");
  return std::exchange(fake.now, fake.now + fake.clock_step);
}

void SleepUntil(std::int64_t deadline_nanoseconds) noexcept {
  auto& fake = Platform();
  fake.Succeeds("SleepUntil", std::to_string(deadline_nanoseconds));
  if (fake.early_wake_ups.empty()) {
    fake.now = std::max(fake.now, deadline_nanoseconds);
    return;
  }
  fake.now = fake.early_wake_ups.front();
  fake.early_wake_ups.erase(fake.early_wake_ups.begin());
}

}  // namespace kestrel::platform
