// A HIP runtime with two devices that fails, throws and lies as ATTACK_HIP says.

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "hip_binding/device_record.h"
#include "tests/attack/lying_runtime/behaviour.h"

namespace kestrel::tests {

namespace {

using hip_binding::DeviceRecord;

constexpr int kInvalidValue = 1;
constexpr int kInvalidDevice = 101;
constexpr std::size_t kTextSize = 256;
constexpr std::size_t kGigabyte = std::size_t{1} << 30;
constexpr std::size_t kNonsense = 0xDEADDEADDEADDEAD;

struct Card {
  const char* name;
  const char* arch;
  int integrated;
  std::size_t properties_memory;
  std::size_t free;
  std::size_t total;
};

// The odd byte shows where a name is read beyond its end, into the amount that follows it.
constexpr std::array<Card, 2> kCards = {
    {{"First Card", "gfx1100", 0, 9 * kGigabyte + 1, 6 * kGigabyte, 8 * kGigabyte},
     {"Second Card", "gfx1103", 7, 17 * kGigabyte + 1, 12 * kGigabyte, 16 * kGigabyte}}};

thread_local int current_device = 0;

bool IsDevice(int device) { return device >= 0 && device < static_cast<int>(kCards.size()); }

const Card& CardAt(int device) { return kCards[static_cast<std::size_t>(device)]; }

// Makes the call as the behaviour says. `act` does what the call is for and returns its status;
// `lie` writes nonsense to its outputs.
template <typename Act, typename Lie>
int Answer(const char* operation, std::optional<int> device, Act act, Lie lie) {
  const Behaviour behaviour = TheBehaviour();
  if (!Concerns(behaviour, operation, device)) {
    return act(behaviour);
  }
  if (behaviour.writes) {
    lie();
  }
  Throw(behaviour);
  return behaviour.status.value_or(0);
}

void FillText(char* field, const char* text, bool unterminated) {
  std::memset(field, unterminated ? 'x' : '\0', kTextSize);
  if (!unterminated) {
    std::strcpy(field, text);
  }
}

template <typename Value>
void Store(unsigned char* field, Value value) {
  std::memcpy(field, &value, sizeof(value));
}

int Fill(const DeviceRecord& layout, void* properties, int device) {
  auto* const record = static_cast<unsigned char*>(properties);
  const auto act = [&](const Behaviour& behaviour) {
    if (!IsDevice(device)) {
      return kInvalidDevice;
    }
    const Card& card = CardAt(device);
    std::memset(record, 0, layout.size);
    FillText(reinterpret_cast<char*>(record + layout.name), card.name, behaviour.unterminated);
    FillText(reinterpret_cast<char*>(record + layout.gcn_arch_name), card.arch,
             behaviour.unterminated);
    Store(record + layout.total_global_mem, card.properties_memory);
    Store(record + layout.integrated, card.integrated);
    return 0;
  };
  return Answer("hipGetDeviceProperties", device, act,
                [&] { std::memset(record, 0xAB, layout.size); });
}

}  // namespace

}  // namespace kestrel::tests

using namespace kestrel::tests;

extern "C" {

int hipGetDeviceCount(int* count) {
  const auto act = [&](const Behaviour& behaviour) {
    *count = behaviour.count.value_or(static_cast<int>(kCards.size()));
    return 0;
  };
  return Answer("hipGetDeviceCount", std::nullopt, act, [&] { *count = 77; });
}

int hipGetDeviceProperties(void* properties, int device) {
  return Fill(kestrel::hip_binding::kRecordOfHip5, properties, device);
}

int hipGetDevicePropertiesR0600(void* properties, int device) {
  return Fill(kestrel::hip_binding::kRecordOfHip6, properties, device);
}

int hipSetDevice(int device) {
  const auto act = [&](const Behaviour&) {
    if (!IsDevice(device)) {
      return kInvalidDevice;
    }
    current_device = device;
    return 0;
  };
  return Answer("hipSetDevice", device, act, [] {});
}

int hipMemGetInfo(std::size_t* free, std::size_t* total) {
  const auto act = [&](const Behaviour&) {
    if (free == nullptr || total == nullptr) {
      return kInvalidValue;
    }
    *free = CardAt(current_device).free;
    *total = CardAt(current_device).total;
    return 0;
  };
  return Answer("hipMemGetInfo", current_device, act, [&] { *free = *total = kNonsense; });
}

const char* hipGetErrorString(int status) {
  const Behaviour behaviour = TheBehaviour();
  if (behaviour.operation == "hipGetErrorString") {
    Throw(behaviour);
  }
  thread_local std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "status %d", status);
  return behaviour.null_text ? nullptr : text.data();
}

}  // extern "C"
