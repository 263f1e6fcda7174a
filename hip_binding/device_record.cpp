#include "hip_binding/device_record.h"

#include <array>
#include <cstring>

namespace kestrel::hip_binding {

namespace {

constexpr std::size_t kTextSize = 256;

// Later releases append fields to the record of HIP 6, so there is room for many more.
constexpr std::size_t kBufferSize = 4096;
static_assert(kBufferSize >= 2 * kRecordOfHip6.size);

void CopyFields(const DeviceRecord& from, const unsigned char* source, const DeviceRecord& to,
                unsigned char* target) noexcept {
  std::memset(target, 0, to.size);
  std::memcpy(target + to.name, source + from.name, kTextSize);
  std::memcpy(target + to.total_global_mem, source + from.total_global_mem, sizeof(std::size_t));
  std::memcpy(target + to.integrated, source + from.integrated, sizeof(int));
  std::memcpy(target + to.gcn_arch_name, source + from.gcn_arch_name, kTextSize);
}

}  // namespace

const DeviceRecord* RecordOf(void* runtime) noexcept {
  for (const DeviceRecord* record : {&kRecordOfHip6, &kRecordOfHip5}) {
    if (FindFunction(runtime, record->function) != nullptr) {
      return record;
    }
  }
  return nullptr;
}

int FillRecord(void* runtime, const DeviceRecord& wanted, void* output, int device) {
  const DeviceRecord& filled = *RecordOf(runtime);
  const auto fill = reinterpret_cast<int (*)(void*, int)>(FindFunction(runtime, filled.function));
  alignas(std::max_align_t) std::array<unsigned char, kBufferSize> buffer{};
  const int status = fill(buffer.data(), device);
  if (status == 0) {
    CopyFields(filled, buffer.data(), wanted, static_cast<unsigned char*>(output));
  }
  return status;
}

}  // namespace kestrel::hip_binding
