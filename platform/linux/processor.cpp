#include <cpuid.h>
#include <sys/utsname.h>

#include <array>

#include "platform/linux/line_reader.h"
#include "platform/linux/machine_name.h"
#include "platform/linux/online_processors.h"
#include "platform/linux/text_file.h"
#include "platform/platform.h"

namespace kestrel::platform {

namespace {

// The lines of the processors come first and others follow. If none follows, reading stopped early.
std::optional<std::uint32_t> CountProcessorsInProcStat() noexcept {
  LineReader lines("", "/proc/stat");
  std::uint32_t count = 0;
  auto line = lines.Next();
  for (; line && IsProcessorsLine(*line); line = lines.Next()) {
    count += IsOneProcessorsLine(*line) ? 1 : 0;
  }
  return line && count > 0 ? std::optional(count) : std::nullopt;
}

}  // namespace

std::uint16_t ProcessorArchitecture() noexcept {
  struct utsname names {};
  return uname(&names) == 0 ? ArchitectureOfMachineName(names.machine) : kArchitectureUnknown;
}

CpuidRegisters Cpuid(std::uint32_t leaf, std::uint32_t subleaf) noexcept {
  CpuidRegisters registers;
  __cpuid_count(leaf, subleaf, registers.eax, registers.ebx, registers.ecx, registers.edx);
  return registers;
}

// Not sysconf(_SC_NPROCESSORS_ONLN): if it cannot open these files, it returns the number of
// processors that the calling thread may run on, without an error. A host may lack "/sys", so
// /proc/stat comes second; it costs more, since the kernel formats the times of every processor.
std::optional<std::uint32_t> LogicalProcessorCount() noexcept {
  std::array<char, 1024> buffer;
  const auto list = ReadTextFile("/sys/devices/system/cpu/online", buffer.data(), buffer.size());
  const auto count = list ? CountListedProcessors(*list) : std::nullopt;
  return count ? count : CountProcessorsInProcStat();
}

}  // namespace kestrel::platform
