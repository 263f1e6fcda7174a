#pragma once

#include <cstddef>

namespace kestrel::tests {

// Lets every pread of this program return at most `size` bytes, as file systems in user space may;
// 0 ends that.
void ShortenReads(std::size_t size);

}  // namespace kestrel::tests
