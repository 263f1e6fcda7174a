#include "simulator/statuses.h"

#include <algorithm>
#include <iterator>

namespace kestrel::simulator {

namespace {

struct Status {
  hipError_t value;
  const char* name;
  const char* text;  // null if the runtimes do not name the status
};

constexpr Status kStatuses[] = {
#define STATUS(value, name, text) {static_cast<hipError_t>(value), #name, text},
#define UNNAMED_STATUS(value, name) {static_cast<hipError_t>(value), #name, nullptr},
#include "simulator/statuses.inc"
#undef STATUS
#undef UNNAMED_STATUS
};

// Returns `hipErrorUnknown` for a value that the runtimes do not name.
const Status& StatusOf(hipError_t value) {
  const auto named_as = [](hipError_t wanted) {
    return std::find_if(std::begin(kStatuses), std::end(kStatuses), [=](const Status& status) {
      return status.value == wanted && status.text != nullptr;
    });
  };
  const auto* found = named_as(value);
  return found != std::end(kStatuses) ? *found : *named_as(hipErrorUnknown);
}

}  // namespace

const char* StatusName(hipError_t status) { return StatusOf(status).name; }

const char* StatusText(hipError_t status) { return StatusOf(status).text; }

std::optional<hipError_t> StatusNamed(std::string_view name) {
  const auto* found = std::find_if(std::begin(kStatuses), std::end(kStatuses),
                                   [=](const Status& status) { return status.name == name; });
  return found != std::end(kStatuses) ? std::optional(found->value) : std::nullopt;
}

}  // namespace kestrel::simulator
