#include "tests/platform/linux/refused_calls.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <system_error>

namespace kestrel::tests {

namespace {

constexpr std::uint32_t kNumber = offsetof(seccomp_data, nr);
constexpr std::uint32_t kFirstArgument = offsetof(seccomp_data, args);  // its lower half

sock_filter Load(std::uint32_t offset) { return {BPF_LD | BPF_W | BPF_ABS, 0, 0, offset}; }

// Skips so many of the next instructions unless the loaded word is `value`.
sock_filter SkipUnless(std::uint32_t value, std::uint8_t count) {
  return {BPF_JMP | BPF_JEQ | BPF_K, 0, count, value};
}

sock_filter Return(std::uint32_t action) { return {BPF_RET | BPF_K, 0, 0, action}; }

void Check(int result, const char* what) {
  if (result != 0) {
    throw std::system_error(errno, std::generic_category(), what);
  }
}

}  // namespace

void RefuseCalls(int system_call, int error, std::optional<std::uint32_t> first_argument) {
  const std::uint32_t refuse = SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(error);
  std::array<sock_filter, 6> filter = {
      Load(kNumber),        SkipUnless(static_cast<std::uint32_t>(system_call), 3),
      Load(kFirstArgument), SkipUnless(first_argument.value_or(0), 1),
      Return(refuse),       Return(SECCOMP_RET_ALLOW)};
  if (!first_argument) {
    filter[3] = SkipUnless(0, 0);
  }
  const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
  Check(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), "no new privileges");
  Check(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), "seccomp");
}

}  // namespace kestrel::tests
