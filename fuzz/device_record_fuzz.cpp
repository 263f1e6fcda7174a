// The conversion of device records between the kinds of HIP 5 and HIP 6, with records of any bytes,
// such as names without an end. The input is the kinds, the status and the record.

#include <fuzzer/FuzzedDataProvider.h>

#include <cstring>
#include <memory>
#include <string>

#include "fuzz/property.h"
#include "hip_binding/device_record.h"

namespace {

using kestrel::hip_binding::DeviceRecord;

// The runtime behind the loader.
const DeviceRecord* filled_kind;
std::string filled_bytes;
int reported_status;

int Fill(void* output, int /*device*/) {
  std::memcpy(output, filled_bytes.data(), std::min(filled_bytes.size(), filled_kind->size));
  return reported_status;
}

}  // namespace

namespace kestrel::hip_binding {

Function FindFunction(void* /*library*/, const char* name) noexcept {
  return std::string(name) == filled_kind->function ? reinterpret_cast<Function>(Fill) : nullptr;
}

}  // namespace kestrel::hip_binding

namespace kestrel::fuzz {

namespace {

void RequireField(const unsigned char* record, std::size_t wanted, std::size_t filled,
                  std::size_t size, std::string& expected) {
  std::string bytes = filled_bytes;
  bytes.resize(filled_kind->size);
  Require(std::memcmp(record + wanted, bytes.data() + filled, size) == 0,
          "a field is the one that the runtime filled");
  expected.replace(wanted, size, bytes, filled, size);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const DeviceRecord* const kinds[] = {&hip_binding::kRecordOfHip5, &hip_binding::kRecordOfHip6};
  filled_kind = input.PickValueInArray(kinds);
  const DeviceRecord& wanted = *input.PickValueInArray(kinds);
  reported_status = input.ConsumeBool() ? 0 : input.ConsumeIntegral<int>();
  filled_bytes = input.ConsumeRemainingBytesAsString();

  int runtime = 0;
  Require(hip_binding::RecordOf(&runtime) == filled_kind, "the kind is the one that is filled");
  // Of exactly its size, so that the address sanitizer sees a byte too many.
  const auto record = std::make_unique<unsigned char[]>(wanted.size);
  std::memset(record.get(), 0xA5, wanted.size);
  std::string expected(wanted.size, '\xA5');
  Require(hip_binding::FillRecord(&runtime, wanted, record.get(), 0) == reported_status,
          "the status is the runtime's");
  if (reported_status == 0) {
    expected.assign(wanted.size, '\0');
    const DeviceRecord& filled = *filled_kind;
    RequireField(record.get(), wanted.name, filled.name, 256, expected);
    RequireField(record.get(), wanted.gcn_arch_name, filled.gcn_arch_name, 256, expected);
    RequireField(record.get(), wanted.integrated, filled.integrated, 4, expected);
    RequireField(record.get(), wanted.total_global_mem, filled.total_global_mem, 8, expected);
  }
  Require(std::memcmp(record.get(), expected.data(), wanted.size) == 0,
          "all other fields are 0, and a failure leaves the record as it was");
  return 0;
}

}  // namespace kestrel::fuzz
