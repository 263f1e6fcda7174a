#include "command/explanation.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace kestrel::tests {
namespace {

using command::Card;
using command::DeviceFile;
using command::FileState;
using command::Gpu;
using command::SectionText;

constexpr std::uint64_t kMiB = std::uint64_t{1} << 20U;
constexpr std::uint64_t kGiB = std::uint64_t{1} << 30U;

Card DiscreteCard() {
  return {"card0", "0000:03:00.0", "amdgpu", 8176 * kMiB, 1 * kGiB, 16 * kGiB, 64 * kMiB};
}

// An APU whose firmware sets 512 MiB apart.
Card Apu() {
  return {"card1", "0000:04:00.0", "amdgpu", 512 * kMiB, 100 * kMiB, 12 * kGiB, 50 * kMiB};
}

Gpu HipGpu(int device, const char* integration, std::uint64_t total) {
  return {device, "GPU", "gfx1100", integration, "ROCm", total, total / 2};
}

command::Observation Seen(std::vector<Card> cards, std::vector<Gpu> gpus) {
  command::Observation seen;
  seen.cards = std::move(cards);
  seen.survey = command::MachineSurvey();
  seen.survey->gpus = std::move(gpus);
  return seen;
}

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(ExplanationTest, ProcessorWithEverythingNeedsNoAdvice) {
  EXPECT_EQ(SectionText(command::ExplainProcessor({true, true, 0x7})),
            "Processor\n"
            "  AVX yes, AVX2 yes (CPUID)\n"
            "  the operating system saves the AVX registers: yes (XGETBV)\n");
  EXPECT_TRUE(command::CanUseAvx2({true, true, 0x7}));
}

TEST(ExplanationTest, ProcessorWithoutAvx2IsNamed) {
  EXPECT_FALSE(command::CanUseAvx2({true, false, 0x7}));
  EXPECT_EQ(SectionText(command::ExplainProcessor({true, false, 0x7})),
            "Processor\n"
            "  AVX yes, AVX2 no (CPUID)\n"
            "  the operating system saves the AVX registers: yes (XGETBV)\n"
            "  -> kestrelcore needs a processor with AVX2; in a virtual machine, pass the host's "
            "processor through\n");
}

TEST(ExplanationTest, RegistersOfOtherInstructionsDoNotMatter) {
  EXPECT_TRUE(command::CanUseAvx2({true, true, 0x6}));
  EXPECT_TRUE(command::CanUseAvx2({true, true, 0xE7}));
}

TEST(ExplanationTest, RegistersThatAreNotSavedAreNamed) {
  for (const auto saved : {std::optional<std::uint64_t>(), std::optional<std::uint64_t>(0x3),
                           std::optional<std::uint64_t>(0x5)}) {
    EXPECT_FALSE(command::CanUseAvx2({true, true, saved}));
    const std::string text = SectionText(command::ExplainProcessor({true, true, saved}));
    EXPECT_TRUE(Contains(text, "saves the AVX registers: no")) << text;
    EXPECT_TRUE(Contains(text,
                         "-> the operating system or the hypervisor has switched AVX off (on "
                         "Linux: noxsave)\n"))
        << text;
  }
}

TEST(ExplanationTest, FileOfAGroupThatTheProcessIsNotInGivesTheCommand) {
  const std::vector<DeviceFile> files = {
      {"/dev/kfd", FileState::kDenied, "Permission denied", "render", true, false},
      {"/dev/dri/renderD128", FileState::kDenied, "Permission denied", "render", true, false}};
  EXPECT_EQ(SectionText(command::ExplainDeviceFiles(files, {DiscreteCard()})),
            "Device files\n"
            "  /dev/kfd: cannot be opened (Permission denied); its group is 'render', which this "
            "process is not in\n"
            "  /dev/dri/renderD128: cannot be opened (Permission denied); its group is 'render', "
            "which this process is not in\n"
            "  -> add the user to the group: sudo usermod -aG render USER, then log in again; in a "
            "container: --group-add render\n");
}

TEST(ExplanationTest, FileThatIsDeniedInSpiteOfTheGroupPointsToTheContainer) {
  const std::string text = SectionText(command::ExplainDeviceFiles(
      {{"/dev/kfd", FileState::kDenied, "Operation not permitted", "render", true, true}}, {}));
  EXPECT_TRUE(Contains(text, "; its group is 'render', which this process is in\n")) << text;
  EXPECT_TRUE(Contains(text,
                       "-> the permissions of /dev/kfd allow its use, so something else denies it: "
                       "in a container, start that with --device /dev/kfd\n"))
      << text;
}

TEST(ExplanationTest, FileWhoseGroupMayNotUseItPointsToTheRulesOfUdev) {
  for (const bool in_group : {true, false}) {
    const std::string text = SectionText(command::ExplainDeviceFiles(
        {{"/dev/kfd", FileState::kDenied, "Permission denied", "root", false, in_group}}, {}));
    EXPECT_TRUE(Contains(text,
                         "-> the permissions of /dev/kfd do not let its group 'root' use it: "
                         "correct the udev rules of the machine\n"))
        << text;
  }
}

TEST(ExplanationTest, MissingFileIsOnlyAFaultWhereThereIsACard) {
  const std::vector<DeviceFile> files = {{"/dev/kfd", FileState::kMissing, "", "", false, false}};
  EXPECT_EQ(SectionText(command::ExplainDeviceFiles(files, {})),
            "Device files\n  /dev/kfd: missing\n");
  EXPECT_EQ(SectionText(command::ExplainDeviceFiles(files, {DiscreteCard()})),
            "Device files\n"
            "  /dev/kfd: missing\n"
            "  -> the kernel shows a card but no /dev/kfd: load the module amdgpu; in a container "
            "pass --device /dev/kfd\n");
}

TEST(ExplanationTest, FileThatCanBeOpenedNeedsNoAdvice) {
  EXPECT_EQ(SectionText(command::ExplainDeviceFiles(
                {{"/dev/kfd", FileState::kUsable, "", "render", true, true}}, {DiscreteCard()})),
            "Device files\n  /dev/kfd: can be opened\n");
}

TEST(ExplanationTest, MasksThatHideAreNamed) {
  EXPECT_EQ(SectionText(command::ExplainMasks({{"ROCR_VISIBLE_DEVICES", ""},
                                               {"HIP_VISIBLE_DEVICES", ""},
                                               {"CUDA_VISIBLE_DEVICES", "-1"},
                                               {"GPU_DEVICE_ORDINAL", std::nullopt}})),
            "Masks in the environment\n"
            "  ROCR_VISIBLE_DEVICES=''\n"
            "  HIP_VISIBLE_DEVICES=''\n"
            "  CUDA_VISIBLE_DEVICES='-1'\n"
            "  GPU_DEVICE_ORDINAL is not set\n"
            "  -> ROCR_VISIBLE_DEVICES may hide GPUs: to see all, unset it\n"
            "  -> CUDA_VISIBLE_DEVICES may hide GPUs: to see all, unset it\n");
}

TEST(ExplanationTest, MachineWithoutRuntimeIsAdvisedToInstallOne) {
  EXPECT_EQ(
      SectionText(command::ExplainRuntime({})),
      "HIP runtime\n"
      "  none is used\n"
      "  -> install a HIP runtime: AMD's ROCm or the distribution's, such as Debian's package "
      "libamdhip64-5; on Windows AMD's graphics driver\n");
}

TEST(ExplanationTest, RuntimeThatIsUsedNeedsNoAdvice) {
  EXPECT_EQ(SectionText(command::ExplainRuntime({"/lib/libamdhip64.so.6", {}})),
            "HIP runtime\n  used: /lib/libamdhip64.so.6\n");
}

TEST(ExplanationTest, FiguresOfKernelAndHipStandNextToEachOther) {
  EXPECT_EQ(SectionText(command::ExplainCards(
                Seen({DiscreteCard()}, {HipGpu(0, "Discrete", 8176 * kMiB)}))),
            "GPUs\n"
            "  card0 (0000:03:00.0): driver amdgpu\n"
            "    kernel, VRAM (mem_info_vram_*): 7.98 GiB in total, 1.00 GiB used\n"
            "    kernel, mappable RAM (mem_info_gtt_*): 16.00 GiB in total, 64.00 MiB used\n"
            "    HIP: device 0, GPU, 7.98 GiB in total, 3.99 GiB free\n");
}

TEST(ExplanationTest, FiguresOfVramNameTheirSource) {
  Card card = DiscreteCard();
  card.vram_source = "HardwareInformation.qwMemorySize";
  EXPECT_TRUE(Contains(SectionText(command::ExplainCards(Seen({card}, {}))),
                       "    kernel, VRAM (HardwareInformation.qwMemorySize): 7.98 GiB in total"));
}

TEST(ExplanationTest, FiguresThatTheKernelLacksAreSaidToBe) {
  Card card = DiscreteCard();
  card.gtt_total = card.gtt_used = card.vram_used = std::nullopt;
  EXPECT_EQ(SectionText(command::ExplainCards(
                Seen({card}, {{0, "GPU", "gfx1100", "Discrete", "ROCm", 8 * kGiB, std::nullopt}}))),
            "GPUs\n"
            "  card0 (0000:03:00.0): driver amdgpu\n"
            "    kernel, VRAM (mem_info_vram_*): 7.98 GiB in total, not reported used\n"
            "    HIP: device 0, GPU, 8.00 GiB in total, not reported free\n");
  card = DiscreteCard();
  card.vram_total = card.vram_used = std::nullopt;
  EXPECT_TRUE(Contains(SectionText(command::ExplainCards(Seen({card}, {}))),
                       "    kernel, VRAM (mem_info_vram_*): not reported in total, not reported "
                       "used\n    kernel, mappable RAM (mem_info_gtt_*): 16.00 GiB in total, 64.00 "
                       "MiB used\n"));
}

TEST(ExplanationTest, CarveOutIsExplainedForIntegratedGpusWithMoreMappableMemoryAlone) {
  const auto advises = [](const Card& card, const char* integration) {
    return Contains(
        SectionText(command::ExplainCards(Seen({card}, {HipGpu(0, integration, 512 * kMiB)}))),
        "->");
  };
  EXPECT_TRUE(advises(Apu(), "Integrated"));
  EXPECT_FALSE(advises(Apu(), "Discrete"));
  Card card = Apu();
  card.gtt_total = card.vram_total;
  EXPECT_FALSE(advises(card, "Integrated"));
  card.gtt_total = std::nullopt;
  EXPECT_FALSE(advises(card, "Integrated"));
  card = Apu();
  card.vram_total = std::nullopt;
  EXPECT_FALSE(advises(card, "Integrated"));
}

TEST(ExplanationTest, ApuOfWhichHipCountsTheCarveOutIsExplained) {
  const std::string text =
      SectionText(command::ExplainCards(Seen({Apu()}, {HipGpu(0, "Integrated", 512 * kMiB)})));
  EXPECT_TRUE(
      Contains(text, "\n    HIP counts only the part of the RAM that the firmware set apart\n"));
  EXPECT_TRUE(Contains(text,
                       "-> for more memory on device 0, raise the graphics memory in the "
                       "firmware's settings\n"))
      << text;
  const std::string mapped =
      SectionText(command::ExplainCards(Seen({Apu()}, {HipGpu(0, "Integrated", 12 * kGiB)})));
  EXPECT_FALSE(Contains(mapped, "->")) << mapped;
}

TEST(ExplanationTest, CardThatHipDoesNotShowIsNamed) {
  const std::string text = SectionText(
      command::ExplainCards(Seen({Apu(), DiscreteCard()}, {HipGpu(0, "Discrete", 8176 * kMiB)})));
  EXPECT_TRUE(Contains(text, "50.00 MiB used\n    HIP does not show it\n  card0 (0000:03:00.0): "))
      << text;
  EXPECT_TRUE(Contains(text,
                       "-> HIP does not show card1 (0000:04:00.0): see the steps above; if all is "
                       "well there, AMD's documentation lists the GPUs that each release "
                       "supports\n"))
      << text;
  EXPECT_FALSE(Contains(text, "HIP does not show card0")) << text;
}

TEST(ExplanationTest, CardWithoutDriverIsNamed) {
  Card card = DiscreteCard();
  card.driver = "";
  card.vram_total = card.vram_used = card.gtt_total = card.gtt_used = std::nullopt;
  const std::string text = SectionText(command::ExplainCards(Seen({card}, {})));
  EXPECT_TRUE(Contains(text,
                       "GPUs\n"
                       "  card0 (0000:03:00.0): driver none\n"
                       "    HIP does not show it\n"
                       "  -> no kernel driver is bound to card0 (0000:03:00.0): load amdgpu\n"))
      << text;
}

// On Windows, cards have no slot.
TEST(ExplanationTest, CardWithoutSlotHasItsNameAlone) {
  Card card = DiscreteCard();
  card.slot = "";
  EXPECT_TRUE(Contains(SectionText(command::ExplainCards(Seen({card}, {}))),
                       "GPUs\n  card0: driver amdgpu\n"));
}

TEST(ExplanationTest, CardWithoutRuntimeGivesTheRuntimesMessage) {
  auto seen = Seen({DiscreteCard()}, {});
  seen.survey->gpu_part = {KESTREL_NO_DEVICES, "No hip devices found!"};
  const std::string text = SectionText(command::ExplainCards(seen));
  EXPECT_TRUE(Contains(text, "  HIP: No hip devices found!\n")) << text;
}

TEST(ExplanationTest, GpuThatOnlyHipShowsIsListed) {
  EXPECT_EQ(SectionText(command::ExplainCards(Seen({}, {HipGpu(0, "Discrete", kGiB)}))),
            "GPUs\n"
            "  a GPU that only HIP shows\n"
            "    HIP: device 0, GPU, 1.00 GiB in total, 512.00 MiB free\n"
            "  the operating system shows no card of AMD\n");
}

TEST(ExplanationTest, HipIsNotAskedWithoutAvx2) {
  auto seen = Seen({DiscreteCard()}, {});
  seen.survey.reset();
  const std::string text = SectionText(command::ExplainCards(seen));
  EXPECT_TRUE(Contains(text, "\n  HIP was not asked, since the processor lacks AVX2\n")) << text;
  EXPECT_FALSE(Contains(text, "HIP does not show")) << text;
}

TEST(ExplanationTest, CardsAreMatchedByTheirSizes) {
  const std::vector<Card> cards = {Apu(), DiscreteCard()};
  EXPECT_EQ(command::MatchCards(cards, {HipGpu(0, "Discrete", 8 * kGiB),
                                        HipGpu(1, "Integrated", 512 * kMiB + 12 * kGiB)}),
            (std::vector<std::size_t>{1, 0}));
  EXPECT_EQ(command::MatchCards(cards, {HipGpu(0, "Discrete", 8 * kGiB)}),
            (std::vector<std::size_t>{1, 0}));
}

TEST(ExplanationTest, SizesWithinFivePercentMatch) {
  const auto matches = [](const Card& card, std::uint64_t total) {
    // The second GPU keeps the order from deciding.
    return command::MatchCards({card}, {HipGpu(0, "Discrete", total), HipGpu(1, "Discrete", kGiB)})
               .front() == 0;
  };
  const Card vram = {"card0", "", "amdgpu", 1000, std::nullopt, std::nullopt, std::nullopt};
  const Card gtt = {"card0", "", "amdgpu", std::nullopt, std::nullopt, 1000, std::nullopt};
  const Card both = {"card0", "", "amdgpu", 300, std::nullopt, 700, std::nullopt};
  for (const Card& card : {vram, gtt, both}) {
    EXPECT_FALSE(matches(card, 949));
    EXPECT_TRUE(matches(card, 950));
    EXPECT_TRUE(matches(card, 1000));
    EXPECT_TRUE(matches(card, 1052));
    EXPECT_FALSE(matches(card, 1053));
  }
  EXPECT_TRUE(matches(both, 300));
  EXPECT_TRUE(matches(both, 700));
}

TEST(ExplanationTest, FiguresWhoseSumExceeds64BitsMatchNoGpuByIt) {
  constexpr std::uint64_t kHalf = std::uint64_t{1} << 63U;
  const Card card = {"card0", "", "amdgpu", kHalf, std::nullopt, kHalf + 1000, std::nullopt};
  EXPECT_EQ(command::MatchCards({card}, {HipGpu(0, "Discrete", 1000), HipGpu(1, "Discrete", 1)}),
            (std::vector<std::size_t>{2}));
}

TEST(ExplanationTest, GpuWithTheLargestSumOf64BitsMatches) {
  constexpr std::uint64_t kHalf = std::uint64_t{1} << 63U;
  const Card card = {"card0", "", "amdgpu", kHalf, std::nullopt, kHalf - 1, std::nullopt};
  EXPECT_EQ(
      command::MatchCards({card}, {HipGpu(0, "Discrete", 1), HipGpu(1, "Discrete", UINT64_MAX)}),
      (std::vector<std::size_t>{1}));
}

// Neither kernel nor HIP has a figure.
TEST(ExplanationTest, CardAndGpuWithoutMemoryMatch) {
  const Card card = {"card0", "", "", std::nullopt, std::nullopt, std::nullopt, std::nullopt};
  EXPECT_EQ(command::MatchCards({card}, {HipGpu(0, "Discrete", 1), HipGpu(1, "Discrete", 0)}),
            (std::vector<std::size_t>{1}));
}

TEST(ExplanationTest, GpuIsMatchedOnce) {
  const std::vector<Card> cards = {DiscreteCard(), DiscreteCard(), DiscreteCard()};
  EXPECT_EQ(command::MatchCards(cards,
                                {HipGpu(0, "Discrete", 8 * kGiB), HipGpu(1, "Discrete", 8 * kGiB)}),
            (std::vector<std::size_t>{0, 1, 2}));
}

TEST(ExplanationTest, CardsWhoseSizesDecideNothingAreMatchedInOrder) {
  const std::vector<Card> cards = {Apu(), DiscreteCard()};
  EXPECT_EQ(command::MatchCards(
                cards, {HipGpu(0, "Discrete", 100 * kGiB), HipGpu(1, "Discrete", 100 * kGiB)}),
            (std::vector<std::size_t>{0, 1}));
  EXPECT_EQ(command::MatchCards(cards, {HipGpu(0, "Discrete", 100 * kGiB)}),
            (std::vector<std::size_t>{1, 1}));
}

TEST(ExplanationTest, MemoryNamesTheLimit) {
  command::Memory memory;
  memory.physical_bytes = 16 * kGiB;
  memory.available_bytes = kGiB;
  memory.limit = KESTREL_LIMIT_GROUP;
  memory.limit_group = "/sys/fs/cgroup/box";
  EXPECT_EQ(SectionText(command::ExplainMemory(memory)),
            "Memory\n"
            "  16.00 GiB physical, 1.00 GiB available, 0 B committable beyond that\n"
            "  limited by memory group /sys/fs/cgroup/box\n");
  memory.part = {KESTREL_MEMORY_QUERY_FAILED, "Failed to get global memory status."};
  EXPECT_EQ(SectionText(command::ExplainMemory(memory)),
            "Memory\n  Failed to get global memory status.\n");
}

}  // namespace
}  // namespace kestrel::tests
