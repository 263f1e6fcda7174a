#pragma once

#include <hip/hip_runtime_api.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace kestrel::tests {

// A HIP runtime that misbehaves as the simulated one never does: it throws, and it fails although
// it has written its figures. A program links hip_fake.cpp in place of the simulator.
struct HipFake {
  int device_count = 0;
  std::uint64_t properties_memory = 0;  // bytes, of every device
  std::size_t free_memory = 0;          // bytes, of every device
  std::size_t total_memory = 0;         // bytes, of every device

  // What an operation returns, by its name; hipSuccess for the others. Its figures are written
  // either way, unless it is silent.
  std::map<std::string, hipError_t> statuses;
  std::set<std::string> silent;  // operations that write no figure
  // What an operation does first, by its name: throw, for example.
  std::map<std::string, std::function<void()>> actions;

  std::vector<std::string> calls;
};

// The fake behind HIP's functions; assign a new one to begin a test.
HipFake& Hip();

}  // namespace kestrel::tests
