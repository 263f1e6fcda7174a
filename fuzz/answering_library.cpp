#include "fuzz/answering_library.h"

#include <algorithm>
#include <string>

#include "c/kestrelcore.h"

namespace {

FuzzedDataProvider* answers;

// As much of an answer as fits, with a NUL.
template <std::size_t kSize>
void FillText(char (&field)[kSize]) {
  const std::string text = answers->ConsumeRandomLengthString(kSize - 1);
  std::fill(std::copy(text.begin(), text.end(), field), field + kSize, '\0');
}

// Mostly success, so that the figures are looked at.
kestrel_status Answer(kestrel_result* result) {
  const int number = std::max(0, answers->ConsumeIntegralInRange(-20, 12));
  const auto status = static_cast<kestrel_status>(number);
  if (result != nullptr && status != KESTREL_OK) {
    FillText(result->message);
  }
  return status;
}

kestrel_status AnswerFigure(std::uint64_t* bytes, kestrel_result* result) {
  *bytes = answers->ConsumeIntegral<std::uint64_t>();
  return Answer(result);
}

}  // namespace

namespace kestrel::fuzz {

void AnswerFrom(FuzzedDataProvider& input) { answers = &input; }

}  // namespace kestrel::fuzz

extern "C" {

kestrel_status kestrel_survey_cpu(kestrel_cpu* cpu, kestrel_result* result) {
  cpu->architecture = answers->ConsumeIntegralInRange(-1, 3);
  cpu->extensions = answers->ConsumeIntegral<std::uint32_t>();
  return Answer(result);
}

// There may be more than the caller first has room for; it then asks again.
kestrel_status kestrel_survey_gpus(kestrel_gpu* gpus, std::size_t capacity, std::size_t* count,
                                   kestrel_result* result) {
  constexpr std::size_t kCounts[] = {0, 1, 2, 17};
  const std::size_t there_are = answers->PickValueInArray(kCounts);
  *count = there_are;
  if (there_are > capacity) {
    return KESTREL_CAPACITY_TOO_SMALL;
  }
  for (std::size_t i = 0; i < there_are; ++i) {
    gpus[i].device_id = answers->ConsumeIntegral<std::int32_t>();
    gpus[i].integration_type = answers->ConsumeIntegralInRange(-1, 4);
    gpus[i].detection_platform = answers->ConsumeIntegralInRange(-1, 8);
    gpus[i].total_memory = answers->ConsumeIntegral<std::uint64_t>();
    FillText(gpus[i].name);
    FillText(gpus[i].architecture_name);
  }
  const kestrel_status status = Answer(result);
  if (status != KESTREL_OK) {
    *count = 0;
  }
  return status == KESTREL_CAPACITY_TOO_SMALL ? KESTREL_RUNTIME_FAILED : status;
}

kestrel_status kestrel_gpu_memory(std::int32_t /*device*/, std::uint64_t* free_bytes,
                                  std::uint64_t* /*total_bytes*/, kestrel_result* result) {
  return AnswerFigure(free_bytes, result);
}

kestrel_status kestrel_process_used_ram(std::int32_t /*pid*/, std::uint64_t* bytes,
                                        kestrel_result* result) {
  return AnswerFigure(bytes, result);
}

kestrel_status kestrel_machine_physical_ram(std::uint64_t* bytes, kestrel_result* result) {
  return AnswerFigure(bytes, result);
}

kestrel_status kestrel_available_ram(std::uint64_t* bytes, kestrel_result* result) {
  return AnswerFigure(bytes, result);
}

kestrel_status kestrel_memory_forecast(std::uint64_t /*bytes*/, kestrel_forecast* forecast,
                                       kestrel_result* result) {
  forecast->available = answers->ConsumeIntegral<std::uint64_t>();
  forecast->committable = answers->ConsumeIntegral<std::uint64_t>();
  forecast->limit = answers->ConsumeIntegralInRange(-1, 4);
  FillText(forecast->limit_group);
  return Answer(result);
}

}  // extern "C"
