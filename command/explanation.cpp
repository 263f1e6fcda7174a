#include "command/explanation.h"

#include <algorithm>
#include <array>
#include <utility>

#include "command/amounts.h"
#include "command/text.h"

namespace kestrel::command {

namespace {

// Bits of XCR0: the SSE and the AVX registers (Intel 64 and IA-32 Architectures Software
// Developer's Manual volume 1, section 13.3).
constexpr std::uint64_t kAvxRegisters = 0x6;

std::string YesOrNo(bool value) { return value ? "yes" : "no"; }

bool SavesAvxRegisters(const ProcessorState& processor) {
  return (processor.saved_registers.value_or(0) & kAvxRegisters) == kAvxRegisters;
}

std::string Figure(const std::optional<std::uint64_t>& bytes) {
  return bytes ? SizeText(*bytes) : "not reported";
}

void AddAdvice(Section& section, const std::string& advice) {
  if (std::find(section.advice.begin(), section.advice.end(), advice) == section.advice.end()) {
    section.advice.push_back(advice);
  }
}

std::string StateText(const DeviceFile& file) {
  switch (file.state) {
    case FileState::kUsable:
      return "can be opened";
    case FileState::kMissing:
      return "missing";
    case FileState::kDenied:
      break;
  }
  return "cannot be opened (" + file.error + "); its group is '" + file.group + "', " +
         (file.in_group ? "which this process is in" : "which this process is not in");
}

void AdviseOnDenied(Section& section, const DeviceFile& file) {
  if (!file.group_may_use) {
    AddAdvice(section, "the permissions of " + file.path + " do not let its group '" + file.group +
                           "' use it: correct the udev rules of the machine");
  } else if (!file.in_group) {
    AddAdvice(section, "add the user to the group: sudo usermod -aG " + file.group +
                           " USER, then log in again; in a container: --group-add " + file.group);
  } else {
    AddAdvice(section, "the permissions of " + file.path +
                           " allow its use, so something else denies it: in a container, start "
                           "that with --device " +
                           file.path);
  }
}

bool HidesDevices(const Mask& mask) {
  // An empty list hides all GPUs from ROCr, and is no mask to HIP.
  return mask.value && (!mask.value->empty() || mask.name == "ROCR_VISIBLE_DEVICES");
}

std::string SlotText(const Card& card) {
  return card.slot.empty() ? card.name : card.name + " (" + card.slot + ")";
}

// 5 percent: drivers keep some of the memory for themselves.
bool IsAbout(std::uint64_t figure, std::uint64_t other) {
  const std::uint64_t difference = figure > other ? figure - other : other - figure;
  return difference <= std::max(figure, other) / 20;
}

// On an APU, HIP counts the carve-out, the memory that the graphics can map, or both. A driver may
// report figures whose sum exceeds 64 bits.
bool MayBe(const Card& card, const Gpu& gpu) {
  const std::uint64_t vram = card.vram_total.value_or(0);
  const std::uint64_t gtt = card.gtt_total.value_or(0);
  return IsAbout(vram, gpu.total_bytes) || IsAbout(gtt, gpu.total_bytes) ||
         (gtt <= UINT64_MAX - vram && IsAbout(vram + gtt, gpu.total_bytes));
}

void DescribeGpu(Section& section, const Gpu& gpu) {
  section.seen.push_back("  HIP: device " + std::to_string(gpu.device) + ", " + gpu.name + ", " +
                         SizeText(gpu.total_bytes) + " in total, " + Figure(gpu.free_bytes) +
                         " free");
}

void DescribeCard(Section& section, const Card& card) {
  section.seen.push_back(SlotText(card) + ": driver " +
                         (card.driver.empty() ? "none" : card.driver));
  if (card.driver.empty()) {
    AddAdvice(section, "no kernel driver is bound to " + SlotText(card) + ": load amdgpu");
  }
  if (card.vram_total || card.gtt_total) {
    section.seen.push_back("  kernel, VRAM (" + card.vram_source + "): " + Figure(card.vram_total) +
                           " in total, " + Figure(card.vram_used) + " used");
  }
  if (card.gtt_total) {
    section.seen.push_back("  kernel, mappable RAM (mem_info_gtt_*): " + Figure(card.gtt_total) +
                           " in total, " + Figure(card.gtt_used) + " used");
  }
}

void ExplainApu(Section& section, const Card& card, const Gpu& gpu) {
  const bool carve_out = card.vram_total && card.gtt_total && *card.gtt_total > *card.vram_total &&
                         IsAbout(*card.vram_total, gpu.total_bytes);
  if (gpu.integration == "Integrated" && carve_out) {
    section.seen.emplace_back("  HIP counts only the part of the RAM that the firmware set apart");
    AddAdvice(section, "for more memory on device " + std::to_string(gpu.device) +
                           ", raise the graphics memory in the firmware's settings");
  }
}

}  // namespace

bool CanUseAvx2(const ProcessorState& processor) {
  return processor.avx2 && SavesAvxRegisters(processor);
}

Section ExplainProcessor(const ProcessorState& processor) {
  Section section{"Processor", {}, {}};
  section.seen.push_back("AVX " + YesOrNo(processor.avx) + ", AVX2 " + YesOrNo(processor.avx2) +
                         " (CPUID)");
  section.seen.push_back("the operating system saves the AVX registers: " +
                         YesOrNo(SavesAvxRegisters(processor)) + " (XGETBV)");
  if (!processor.avx2) {
    section.advice.emplace_back(
        "kestrelcore needs a processor with AVX2; in a virtual machine, pass the host's processor "
        "through");
  } else if (!SavesAvxRegisters(processor)) {
    section.advice.emplace_back(
        "the operating system or the hypervisor has switched AVX off (on Linux: noxsave)");
  }
  return section;
}

Section ExplainDeviceFiles(const std::vector<DeviceFile>& files, const std::vector<Card>& cards) {
  Section section{"Device files", {}, {}};
  for (const DeviceFile& file : files) {
    section.seen.push_back(file.path + ": " + StateText(file));
    if (file.state == FileState::kDenied) {
      AdviseOnDenied(section, file);
    } else if (file.state == FileState::kMissing && !cards.empty()) {
      AddAdvice(section, "the kernel shows a card but no " + file.path +
                             ": load the module amdgpu; in a container pass --device " + file.path);
    }
  }
  return section;
}

Section ExplainMasks(const std::vector<Mask>& masks) {
  Section section{"Masks in the environment", {}, {}};
  for (const Mask& mask : masks) {
    section.seen.push_back(mask.name +
                           (mask.value ? "='" + PrintableText(*mask.value) + "'" : " is not set"));
    if (HidesDevices(mask)) {
      section.advice.push_back(mask.name + " may hide GPUs: to see all, unset it");
    }
  }
  return section;
}

Section ExplainRuntime(const RuntimeState& runtime) {
  Section section{"HIP runtime", {}, {}};
  for (const PassedRuntime& passed : runtime.passed) {
    section.seen.push_back(passed.name + (passed.loaded_only ? ", already loaded: " : ": ") +
                           passed.reason);
  }
  section.seen.push_back(runtime.path.empty() ? "none is used" : "used: " + runtime.path);
  if (runtime.path.empty()) {
    section.advice.emplace_back(
        "install a HIP runtime: AMD's ROCm or the distribution's, such as Debian's package "
        "libamdhip64-5; on Windows AMD's graphics driver");
  }
  return section;
}

Section ExplainCards(const Observation& observation) {
  Section section{"GPUs", {}, {}};
  const std::vector<Gpu> gpus = observation.survey ? observation.survey->gpus : std::vector<Gpu>();
  const std::vector<std::size_t> matches = MatchCards(observation.cards, gpus);
  std::vector<bool> described(gpus.size(), false);
  for (std::size_t i = 0; i < observation.cards.size(); ++i) {
    const Card& card = observation.cards[i];
    DescribeCard(section, card);
    if (matches[i] < gpus.size()) {
      described[matches[i]] = true;
      DescribeGpu(section, gpus[matches[i]]);
      ExplainApu(section, card, gpus[matches[i]]);
    } else if (observation.survey) {
      section.seen.emplace_back("  HIP does not show it");
      AddAdvice(section, "HIP does not show " + SlotText(card) +
                             ": see the steps above; if all is well there, AMD's documentation "
                             "lists the GPUs that each release supports");
    }
  }
  for (std::size_t i = 0; i < gpus.size(); ++i) {
    if (!described[i]) {
      section.seen.emplace_back("a GPU that only HIP shows");
      DescribeGpu(section, gpus[i]);
    }
  }
  if (observation.cards.empty()) {
    section.seen.emplace_back("the operating system shows no card of AMD");
  }
  if (!observation.survey) {
    section.seen.emplace_back("HIP was not asked, since the processor lacks AVX2");
  } else if (observation.survey->gpu_part.status != KESTREL_OK) {
    section.seen.push_back("HIP: " + observation.survey->gpu_part.message);
  }
  return section;
}

Section ExplainMemory(const Memory& memory) {
  Section section{"Memory", {}, {}};
  if (memory.part.status != KESTREL_OK) {
    section.seen.push_back(memory.part.message);
    return section;
  }
  section.seen.push_back(SizeText(memory.physical_bytes) + " physical, " +
                         SizeText(memory.available_bytes) + " available, " +
                         SizeText(memory.committable_bytes) + " committable beyond that");
  section.seen.push_back("limited by " + LimitText(memory.limit, memory.limit_group));
  return section;
}

std::vector<std::size_t> MatchCards(const std::vector<Card>& cards, const std::vector<Gpu>& gpus) {
  std::vector<std::size_t> matches(cards.size(), gpus.size());
  std::vector<bool> taken(gpus.size(), false);
  const auto match = [&](const auto& accepts) {
    for (std::size_t i = 0; i < cards.size(); ++i) {
      for (std::size_t j = 0; j < gpus.size() && matches[i] == gpus.size(); ++j) {
        if (!taken[j] && accepts(cards[i], gpus[j])) {
          matches[i] = j;
          taken[j] = true;
        }
      }
    }
  };
  match(MayBe);
  if (cards.size() == gpus.size()) {
    match([](const Card&, const Gpu&) { return true; });
  }
  return matches;
}

std::string SectionText(const Section& section) {
  std::string text = section.title + "\n";
  for (const std::string& line : section.seen) {
    text += "  " + line + "\n";
  }
  for (const std::string& line : section.advice) {
    text += "  -> " + line + "\n";
  }
  return text;
}

}  // namespace kestrel::command
