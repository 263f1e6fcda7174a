// `kestrel explain` over any facts: its text can be printed, every fact is in it once, and the
// cards are matched with the GPUs as by a reference. The input is the masks, the figures and the
// answers of the library.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "command/amounts.h"
#include "command/explain.h"
#include "command/explanation.h"
#include "command/processor_state.h"
#include "command/system_facts.h"
#include "command/text.h"
#include "fuzz/answering_library.h"
#include "fuzz/property.h"
#include "fuzz/text_reference.h"
#include "hip_binding/binding_report.h"

namespace kestrel::fuzz {

namespace {

using command::Card;
using command::Gpu;

// What the operating system and the loader answer in this run.
struct Facts {
  command::ProcessorState processor;
  std::vector<Card> cards;
  std::vector<command::DeviceFile> files;
  std::string runtime;               // its path
  std::vector<std::string> reasons;  // why others were passed over
};
Facts facts;

std::optional<std::uint64_t> FigureFrom(FuzzedDataProvider& input) {
  return input.ConsumeBool() ? std::optional(input.ConsumeIntegral<std::uint64_t>()) : std::nullopt;
}

// A text of the environment or the loader, which ends with NUL.
std::string TextFrom(FuzzedDataProvider& input, std::size_t most) {
  const std::string text = input.ConsumeRandomLengthString(most);
  return text.substr(0, text.find('\0'));
}

Facts FactsFrom(FuzzedDataProvider& input) {
  Facts made;
  made.processor = {input.ConsumeBool(), input.ConsumeBool(), FigureFrom(input)};
  for (int i = input.ConsumeIntegralInRange(0, 4); i > 0; --i) {
    made.cards.push_back({"card" + std::to_string(i), "", input.ConsumeBool() ? "amdgpu" : "",
                          FigureFrom(input), FigureFrom(input), FigureFrom(input),
                          FigureFrom(input)});
  }
  for (int i = input.ConsumeIntegralInRange(0, 3); i > 0; --i) {
    made.files.push_back(
        {"/dev/dri/renderD" + std::to_string(i),
         input.PickValueInArray({command::FileState::kUsable, command::FileState::kMissing,
                                 command::FileState::kDenied}),
         "Permission denied", "render", input.ConsumeBool(), input.ConsumeBool()});
  }
  made.runtime = TextFrom(input, 64);
  for (int i = input.ConsumeIntegralInRange(0, 3); i > 0; --i) {
    made.reasons.push_back(TextFrom(input, 64));
  }
  return made;
}

std::string WithNewline(const std::string& line) { return "  " + line + "\n"; }

std::size_t CountOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

constexpr std::array kMasks = {"ROCR_VISIBLE_DEVICES", "HIP_VISIBLE_DEVICES",
                               "CUDA_VISIBLE_DEVICES", "GPU_DEVICE_ORDINAL"};

// The section of the masks.
std::string MaskTextOf(const std::vector<std::optional<std::string>>& values) {
  std::string seen = "Masks in the environment\n";
  std::string advice;
  for (std::size_t i = 0; i < kMasks.size(); ++i) {
    const std::string name = kMasks[i];
    seen += WithNewline(
        name + (values[i] ? "='" + command::PrintableText(*values[i]) + "'" : " is not set"));
    const bool hides = values[i] && (i == 0 || !values[i]->empty());
    advice += hides ? WithNewline("-> " + name + " may hide GPUs: to see all, unset it") : "";
  }
  return seen + advice + "\n";
}

std::vector<std::optional<std::string>> SetMasks(FuzzedDataProvider& input) {
  std::vector<std::optional<std::string>> values;
  for (const char* const name : kMasks) {
    values.push_back(input.ConsumeBool() ? std::optional(TextFrom(input, 32)) : std::nullopt);
    if (values.back()) {
      setenv(name, values.back()->c_str(), 1);
    } else {
      unsetenv(name);
    }
  }
  return values;
}

__extension__ using Wide = unsigned __int128;

// Within 5 percent of the greater one.
bool IsAbout(Wide left, Wide right) {
  const auto [less, more] = std::minmax(left, right);
  return (more - less) * 20 <= more;
}

// Both are memory of one machine only if their sum has 64 bits.
bool IsAboutSum(std::uint64_t left, std::uint64_t right, std::uint64_t size) {
  const Wide sum = Wide{left} + right;
  return sum <= UINT64_MAX && IsAbout(sum, size);
}

// Takes for each card in turn the first GPU left of about its size, then, if there are as many
// cards as GPUs, the first GPU left.
std::vector<std::size_t> MatchesOf(const std::vector<Card>& cards, const std::vector<Gpu>& gpus) {
  std::vector<std::size_t> matches(cards.size(), gpus.size());
  std::vector<std::size_t> left;
  for (std::size_t j = 0; j < gpus.size(); ++j) {
    left.push_back(j);
  }
  const int rounds = cards.size() == gpus.size() ? 2 : 1;
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < cards.size(); ++i) {
      const std::uint64_t vram = cards[i].vram_total.value_or(0);
      const std::uint64_t gtt = cards[i].gtt_total.value_or(0);
      const auto found = std::find_if(left.begin(), left.end(), [&](std::size_t j) {
        const std::uint64_t size = gpus[j].total_bytes;
        return round == 1 || IsAbout(vram, size) || IsAbout(gtt, size) ||
               IsAboutSum(vram, gtt, size);
      });
      if (matches[i] == gpus.size() && found != left.end()) {
        matches[i] = *found;
        left.erase(found);
      }
    }
  }
  return matches;
}

void RequireGpus(const std::string& text, const std::vector<Gpu>& gpus) {
  for (const Card& card : facts.cards) {
    Require(CountOf(text, "\n  " + card.name + ": driver ") == 1, "a card is named once");
  }
  Require(CountOf(text, "\n    HIP: device ") == gpus.size(), "every GPU is described once");
  const auto matches = MatchesOf(facts.cards, gpus);
  Require(command::MatchCards(facts.cards, gpus) == matches,
          "the cards are matched as by the reference");
  const auto missed = std::count(matches.begin(), matches.end(), gpus.size());
  Require(CountOf(text, "\n    HIP does not show it\n") == static_cast<std::size_t>(missed),
          "it says which cards HIP does not show");
}

void RequireRuntime(const std::string& text) {
  std::string expected = "HIP runtime\n";
  for (const std::string& reason : facts.reasons) {
    expected += WithNewline("libamdhip64.so.7: " + command::PrintableText(reason));
  }
  const std::string path = command::PrintableText(facts.runtime);
  expected += WithNewline(path.empty() ? "none is used" : "used: " + path);
  Require(text.rfind(expected, 0) == 0, "each runtime has its reason");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const auto masks = SetMasks(input);
  facts = FactsFrom(input);
  const auto answers = input.ConsumeRemainingBytes<std::uint8_t>();
  FuzzedDataProvider first(answers.data(), answers.size());
  AnswerFrom(first);
  std::vector<std::string> steps;
  command::RunExplain([&](const std::string& step) { steps.push_back(step); });

  const bool can_run =
      facts.processor.avx2 && (facts.processor.saved_registers.value_or(0) & 6U) == 6;
  Require(steps.size() == (can_run ? 6 : 5), "without AVX2 the library is not called");
  for (const std::string& step : steps) {
    for (const std::string& line : Split(step, '\n')) {
      Require(IsUtf8(line) && !HasControlCharacter(line), "every line can be printed");
    }
  }
  Require(steps[2] == MaskTextOf(masks), "the masks are shown as they are set");
  RequireRuntime(steps[3]);
  if (can_run) {
    FuzzedDataProvider again(answers.data(), answers.size());
    AnswerFrom(again);
    RequireGpus(steps[4], command::SurveyMachine().gpus);
  }
  return 0;
}

}  // namespace kestrel::fuzz

namespace kestrel::command {

ProcessorState ReadProcessorState() { return fuzz::facts.processor; }
bool HasDeviceFiles() { return true; }
std::vector<DeviceFile> ReadDeviceFiles(const std::string& /*root*/) { return fuzz::facts.files; }
std::vector<Card> ReadCards(const std::string& /*root*/) { return fuzz::facts.cards; }

}  // namespace kestrel::command

namespace kestrel::hip_binding {

void ReportBinding(BindingReport& report) noexcept {
  const auto copy = [](const std::string& text, auto& field) {
    const std::size_t size = std::min(text.size(), field.size() - 1);
    std::fill(std::copy_n(text.begin(), size, field.begin()), field.end(), '\0');
  };
  copy(fuzz::facts.runtime, report.path);
  report.attempt_count = 0;
  for (const std::string& reason : fuzz::facts.reasons) {
    Attempt& attempt = report.attempts[report.attempt_count++];
    attempt.candidate = {Origin::kSearch, "libamdhip64.so.7"};
    copy(reason, attempt.reason);
  }
}

}  // namespace kestrel::hip_binding
