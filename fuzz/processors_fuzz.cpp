// The count of processors from the kernel's two files against a reference. The input describes a
// tree of files (made_up_tree.h) with /sys/devices/system/cpu/online or /proc/stat.

#include "fuzz/kernel_files.h"
#include "fuzz/machine_reference.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "platform/linux/line_reader.h"
#include "platform/platform.h"

namespace kestrel::fuzz {

namespace {

// Counts the lines of processors, which are at the beginning and before others.
std::optional<std::uint32_t> CountInStat(const std::string& text) {
  std::uint32_t count = 0;
  for (const std::string& line : CompleteLines(text)) {
    if (line.rfind("cpu", 0) != 0) {
      return count > 0 ? std::optional(count) : std::nullopt;
    }
    count += LeadingDigits(line.substr(3)).empty() ? 0 : 1;
  }
  return std::nullopt;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kListCapacity = 1024;
  const MadeUpTree tree(TextOf(data, size));
  const auto list = tree.Read(tree.root() + "/sys/devices/system/cpu/online").text;
  const auto stat = tree.Read(tree.root() + "/proc/stat").text;
  const auto listed = CountOfList(list.value_or("").substr(0, kListCapacity));
  const KernelFiles files(tree.root());
  const auto count = platform::LogicalProcessorCount();
  for (const std::string& line : Split(stat.value_or(""), '\n')) {
    if (line.size() >= platform::LineReader::kCapacity) {
      return 0;  // is read in part, which the target of the reader compares
    }
  }
  Require(count == (listed ? listed : CountInStat(stat.value_or(""))),
          "the processors are counted as by the reference");
  return 0;
}

}  // namespace kestrel::fuzz
