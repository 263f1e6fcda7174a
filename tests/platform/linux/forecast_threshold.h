#pragma once

#include <cstdint>

namespace kestrel::tests {

// Returns the smallest size in bytes, to a page, that is predicted to fail.
std::uint64_t FindThreshold();

// Allocates the memory and writes to every page; returns false if the kernel refuses it, and does
// not return if the kernel kills the process. So many percent of each page are random, which
// cannot be compressed.
bool AllocateAndUse(std::uint64_t bytes, std::uint64_t random_percent = 0);

}  // namespace kestrel::tests
