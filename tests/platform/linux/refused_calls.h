#pragma once

#include <cstdint>
#include <optional>

namespace kestrel::tests {

// Makes every call of a system call by this process fail with `error` from now on, as the filter of
// a sandbox does; with `first_argument`, only calls with that one. Throws if the filter cannot be
// installed.
void RefuseCalls(int system_call, int error, std::optional<std::uint32_t> first_argument = {});

}  // namespace kestrel::tests
