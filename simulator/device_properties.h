#pragma once

#include <cstddef>

// The two records of device properties. They are declared here, since HIP's header declares only
// the one of its own release, and so without that header.

namespace kestrel::simulator {

// Of HIP 5, and of the older functions of HIP 6 and 7.
struct PropertiesR0000 {
  char name[256];
  std::size_t total_global_memory;  // bytes
  char unused_before_arch[132];
  char arch[256];  // gcnArchName
  int integrated;
  char unused_after_integrated[136];
};
static_assert(offsetof(PropertiesR0000, total_global_memory) == 256);
static_assert(offsetof(PropertiesR0000, arch) == 396);
static_assert(offsetof(PropertiesR0000, integrated) == 652);
static_assert(sizeof(PropertiesR0000) == 792);

// Of hipGetDevicePropertiesR0600, since HIP 6.
struct PropertiesR0600 {
  char name[256];
  char unused_before_memory[32];
  std::size_t total_global_memory;  // bytes
  char unused_before_integrated[100];
  int integrated;
  char unused_before_arch[760];
  char arch[256];  // gcnArchName
  char unused_after_arch[56];
};
static_assert(offsetof(PropertiesR0600, total_global_memory) == 288);
static_assert(offsetof(PropertiesR0600, integrated) == 396);
static_assert(offsetof(PropertiesR0600, arch) == 1160);
static_assert(sizeof(PropertiesR0600) == 1472);

// hipGetDeviceProperties: fills the fields that a machine describes and sets all others to 0.
// Returns the value of a HIP status.
int GetDeviceProperties(PropertiesR0000* record, int device);
int GetDeviceProperties(PropertiesR0600* record, int device);

}  // namespace kestrel::simulator
