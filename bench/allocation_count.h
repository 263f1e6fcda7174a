#pragma once

#include <cstdint>

namespace kestrel::bench {

// How many times this process has allocated heap memory, by whatever library.
std::uint64_t AllocationCount() noexcept;

}  // namespace kestrel::bench
