#include "fuzz/answering_runtime.h"

#include <cstring>
#include <string>

namespace {

using kestrel::fuzz::ReportedDevice;

kestrel::fuzz::ReportedMachine machine;
const ReportedDevice* current;

// Mostly success, so that what follows is looked at. Failures may be outside the enumeration.
hipError_t StatusFrom(FuzzedDataProvider& input) {
  const bool fails = input.ConsumeIntegralInRange(0, 31) == 31;
  return fails ? static_cast<hipError_t>(input.ConsumeIntegralInRange(1, 1100)) : hipSuccess;
}

// A text that may fill the field without a NUL.
template <std::size_t kSize>
void FillText(char (&field)[kSize], FuzzedDataProvider& input) {
  const std::string text = input.ConsumeRandomLengthString(kSize);
  std::memcpy(field, text.data(), text.size());
}

ReportedDevice DeviceFrom(FuzzedDataProvider& input) {
  ReportedDevice device;
  device.described = StatusFrom(input);
  FillText(device.properties.name, input);
  FillText(device.properties.gcnArchName, input);
  device.properties.integrated = input.ConsumeIntegral<int>();
  device.properties.totalGlobalMem = input.ConsumeIntegral<std::size_t>();
  device.selected = StatusFrom(input);
  device.queried = StatusFrom(input);
  device.free = input.ConsumeIntegral<std::size_t>();
  device.total = input.ConsumeIntegral<std::size_t>();
  return device;
}

}  // namespace

namespace kestrel::fuzz {

const ReportedMachine& ReportFrom(FuzzedDataProvider& input) {
  machine = {};
  current = nullptr;
  machine.counted = StatusFrom(input);
  machine.count = input.ConsumeIntegralInRange(-4, 8);
  for (int device = 0; device < machine.count; ++device) {
    machine.devices.push_back(DeviceFrom(input));
  }
  return machine;
}

}  // namespace kestrel::fuzz

// What the operations write although they fail must not be used either.
extern "C" {

hipError_t hipGetDeviceCount(int* count) {
  *count = machine.count;
  return machine.counted;
}

hipError_t hipGetDeviceProperties(hipDeviceProp_t* properties, int device) {
  const ReportedDevice& reported = machine.devices.at(static_cast<std::size_t>(device));
  *properties = reported.properties;
  return reported.described;
}

hipError_t hipSetDevice(int device) {
  current = &machine.devices.at(static_cast<std::size_t>(device));
  return current->selected;
}

hipError_t hipMemGetInfo(std::size_t* free, std::size_t* total) {
  *free = current->free;
  *total = current->total;
  return current->queried;
}

}  // extern "C"
