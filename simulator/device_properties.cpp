// The exported names of hipGetDeviceProperties. HIP's header is not included: it declares one of
// them with its own type of the record.

#include "simulator/device_properties.h"

using kestrel::simulator::GetDeviceProperties;
using kestrel::simulator::PropertiesR0000;
using kestrel::simulator::PropertiesR0600;

extern "C" {

int hipGetDeviceProperties(PropertiesR0000* prop, int device) {
  return GetDeviceProperties(prop, device);
}

int hipGetDevicePropertiesR0000(PropertiesR0000* prop, int device) {
  return GetDeviceProperties(prop, device);
}

int hipGetDevicePropertiesR0600(PropertiesR0600* prop, int device) {
  return GetDeviceProperties(prop, device);
}

}  // extern "C"
