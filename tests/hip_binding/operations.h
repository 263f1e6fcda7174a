#pragma once

#include <cstddef>

// The operations as the binding defines them, with both functions of the device record, of which
// HIP's header declares one.

extern "C" {
int hipGetDeviceCount(int* count);
int hipSetDevice(int device);
int hipMemGetInfo(std::size_t* free, std::size_t* total);
const char* hipGetErrorString(int status);
int hipGetDeviceProperties(void* properties, int device);
int hipGetDevicePropertiesR0600(void* properties, int device);
}
