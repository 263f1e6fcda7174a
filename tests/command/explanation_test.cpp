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
  EXPECT_TRUE(Contains(SectionText(command::ExplainProcessor({true, false, 0x7})),
                       "-> kestrelcore needs a processor with AVX2"));
}

TEST(ExplanationTest, RegistersThatAreNotSavedAreNamed) {
  for (const auto saved : {std::optional<std::uint64_t>(), std::optional<std::uint64_t>(0x3)}) {
    EXPECT_FALSE(command::CanUseAvx2({true, true, saved}));
    const std::string text = SectionText(command::ExplainProcessor({true, true, saved}));
    EXPECT_TRUE(Contains(text, "saves the AVX registers: no")) << text;
    EXPECT_TRUE(Contains(text, "-> the operating system or the hypervisor")) << text;
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
  EXPECT_TRUE(Contains(text, "which this process is in")) << text;
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
  EXPECT_TRUE(Contains(SectionText(command::ExplainDeviceFiles(files, {DiscreteCard()})),
                       "-> the kernel shows a card but no /dev/kfd"));
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
  const std::string text = SectionText(command::ExplainRuntime({}));
  EXPECT_TRUE(Contains(text, "none is used")) << text;
  EXPECT_TRUE(Contains(text, "-> install a HIP runtime")) << text;
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

TEST(ExplanationTest, ApuOfWhichHipCountsTheCarveOutIsExplained) {
  const std::string text =
      SectionText(command::ExplainCards(Seen({Apu()}, {HipGpu(0, "Integrated", 512 * kMiB)})));
  EXPECT_TRUE(Contains(text, "HIP counts only the part of the RAM that the firmware set apart"));
  EXPECT_TRUE(Contains(text, "-> for more memory on device 0")) << text;
  const std::string mapped =
      SectionText(command::ExplainCards(Seen({Apu()}, {HipGpu(0, "Integrated", 12 * kGiB)})));
  EXPECT_FALSE(Contains(mapped, "->")) << mapped;
}

TEST(ExplanationTest, CardThatHipDoesNotShowIsNamed) {
  const std::string text = SectionText(
      command::ExplainCards(Seen({Apu(), DiscreteCard()}, {HipGpu(0, "Discrete", 8176 * kMiB)})));
  EXPECT_TRUE(Contains(text, "-> HIP does not show card1 (0000:04:00.0)")) << text;
  EXPECT_FALSE(Contains(text, "HIP does not show card0")) << text;
}

TEST(ExplanationTest, CardWithoutDriverIsNamed) {
  Card card = DiscreteCard();
  card.driver = "";
  card.vram_total = card.vram_used = card.gtt_total = card.gtt_used = std::nullopt;
  EXPECT_TRUE(Contains(SectionText(command::ExplainCards(Seen({card}, {}))),
                       "-> no kernel driver is bound to card0 (0000:03:00.0): load amdgpu"));
}

TEST(ExplanationTest, CardWithoutRuntimeGivesTheRuntimesMessage) {
  auto seen = Seen({DiscreteCard()}, {});
  seen.survey->gpu_part = {KESTREL_NO_DEVICES, "No hip devices found!"};
  const std::string text = SectionText(command::ExplainCards(seen));
  EXPECT_TRUE(Contains(text, "  HIP: No hip devices found!\n")) << text;
}

TEST(ExplanationTest, GpuThatOnlyHipShowsIsListed) {
  const std::string text =
      SectionText(command::ExplainCards(Seen({}, {HipGpu(0, "Discrete", kGiB)})));
  EXPECT_TRUE(Contains(text, "a GPU that only HIP shows\n    HIP: device 0")) << text;
  EXPECT_TRUE(Contains(text, "the operating system shows no card of AMD")) << text;
}

TEST(ExplanationTest, HipIsNotAskedWithoutAvx2) {
  auto seen = Seen({DiscreteCard()}, {});
  seen.survey.reset();
  const std::string text = SectionText(command::ExplainCards(seen));
  EXPECT_TRUE(Contains(text, "HIP was not asked, since the processor lacks AVX2")) << text;
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
